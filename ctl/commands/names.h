// SPDX-License-Identifier: Apache-2.0
// Finds what a typed name means: the exact name, or the only one that begins so.
#pragma once

#include <string>
#include <vector>

#include "ctl/model/listing.h"
#include "ctl/model/parameter.h"

namespace kest::ctl {

struct Target {
  const Pipeline *pipeline = nullptr;
  const Filter *filter = nullptr;  // NULL: the whole pipeline
};

// "PIPELINE/FILTER", or "PIPELINE".
std::string FullName(const Target &target);
// Throws CtlError when a name has a comma, at which the command language ends names.
void RefuseCommas(const Target &target);
// "PIPELINE/FILTER". Throws CtlError with a suggestion when there is no such or more than one.
Target FindFilter(const Listing &listing, const std::string &text);
// "PIPELINE" or "PIPELINE/FILTER".
Target FindTarget(const Listing &listing, const std::string &text);
// A parameter of the filter.
const Parameter &FindParameter(const std::vector<Parameter> &parameters, const std::string &filter,
                               const std::string &name);
// The parameters that the filter has, or may have when the host does not say whose they are.
std::vector<const Parameter *> ParametersOf(const std::vector<Parameter> &parameters,
                                            const std::string &filter);
// Of the names the one that was probably meant; empty when none is near.
std::string Nearest(const std::vector<std::string> &names, const std::string &typed);

}  // namespace kest::ctl
