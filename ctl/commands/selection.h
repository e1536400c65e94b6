// SPDX-License-Identifier: Apache-2.0
// How a filter is named to the instruments of the data path, which select filters by the beginnings of names.
#pragma once

#include <string>
#include <vector>

#include "ctl/commands/names.h"

namespace kest::ctl {

// All filters that beginnings of names select.
std::vector<Target> SelectedBy(const Listing &listing, const std::string &pipeline,
                               const std::string &filter);

struct Selection {
  std::string pipeline;
  std::string filter;

  [[nodiscard]] std::string Text() const { return pipeline + "," + filter; }
};

// The names of the filter, shortened where they have more bytes than there is room for. Throws CtlError when
// no names select it without another of the same name, or, with alone, without any other.
Selection SelectionOf(const Listing &listing, const Target &target, size_t room, bool alone);
// One that selects no filter.
Selection NoSelection();

}  // namespace kest::ctl
