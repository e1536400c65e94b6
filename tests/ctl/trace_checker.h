// SPDX-License-Identifier: Apache-2.0
// Reads a trace as the viewers do, which drop without a word what does not fit.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace kest::test {

// What a viewer would stumble over; empty when nothing.
std::string TraceComplaint(const nlohmann::json &document);

}  // namespace kest::test
