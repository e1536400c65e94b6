// SPDX-License-Identifier: Apache-2.0
// The answer to kest_debug_list=print.
#pragma once

#include <string>
#include <vector>

#include "ctl/model/listing.h"

namespace kest::ctl {

struct ParsedListing {
  Listing listing;
  // From its first to its last line, with a sum that agrees with the rows.
  bool isWhole = false;
  std::vector<std::string> unknown;  // lines that are not part of it
};

ParsedListing ParseListing(const std::vector<std::string> &lines);

}  // namespace kest::ctl
