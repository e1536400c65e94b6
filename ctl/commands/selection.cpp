// SPDX-License-Identifier: Apache-2.0
#include "ctl/commands/selection.h"

#include <algorithm>

#include <fmt/format.h>

#include "ctl/error.h"
#include "ctl/parse/lines.h"

namespace kest::ctl {
namespace {

constexpr size_t kLongestName = 63;  // what a process keeps of a name

bool HasSameNames(const Target &one, const Target &other) {
  return one.pipeline->name == other.pipeline->name && one.filter->name == other.filter->name;
}

void Shorten(Selection &selection, size_t room) {
  selection.pipeline.resize(std::min(selection.pipeline.size(), kLongestName));
  selection.filter.resize(std::min(selection.filter.size(), kLongestName));
  while (selection.Text().size() > room) {
    std::string &longer =
        selection.pipeline.size() > selection.filter.size() ? selection.pipeline : selection.filter;
    longer.pop_back();
  }
}

}  // namespace

std::vector<Target> SelectedBy(const Listing &listing, const std::string &pipeline,
                               const std::string &filter) {
  std::vector<Target> selected;
  for (const Pipeline &known : listing.pipelines) {
    if (!BeginsWith(known.name, pipeline)) continue;
    for (const Filter &candidate : known.filters) {
      if (BeginsWith(candidate.name, filter)) selected.push_back({&known, &candidate});
    }
  }
  return selected;
}

Selection SelectionOf(const Listing &listing, const Target &target, size_t room, bool alone) {
  Selection selection = {target.pipeline->name, target.filter->name};
  RefuseCommas(target);
  Shorten(selection, room);
  for (const Target &other : SelectedBy(listing, selection.pipeline, selection.filter)) {
    if (other.filter == target.filter || (!alone && !HasSameNames(other, target))) continue;
    throw CtlError(ExitCode::kNotFound,
                   fmt::format("{} cannot be told from filter {}, {}: names select every filter whose own "
                               "begin with them",
                               FullName(target), other.filter->index, FullName(other)));
  }
  return selection;
}

Selection NoSelection() {
  return {"no/pipeline/of/kestctl", "none"};
}

}  // namespace kest::ctl
