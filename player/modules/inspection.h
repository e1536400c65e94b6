// SPDX-License-Identifier: Apache-2.0
// What a module says about itself, for whoever wants to use it.
#pragma once

#include <string>

namespace kest::player {

struct Inspection {
  std::string file;
  std::string kind;    // empty: all
  std::string config;  // for the instances whose parameters are shown
};

// Several lines, the last one with its end. Throws ModuleError when the module cannot be loaded or has no
// such kind.
std::string InspectAsText(const Inspection &inspection);
std::string InspectAsJson(const Inspection &inspection);

}  // namespace kest::player
