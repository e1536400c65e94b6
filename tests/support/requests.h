// SPDX-License-Identifier: Apache-2.0
// Lines for the handlers that publish requests, and what must stand in their globals afterwards.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kest::test {

using Handler = uint32_t (*)(const char *);
using Globals = std::string (*)();

// The globals of one request: "number|pipeline|filter", then its further numbers in the order of debug.h.
std::string PerfTarget();
std::string StatusQuery();
std::string TestTone();
std::string PcmLevel();
std::string DataRate();

// A line of every form that is meant: every report behind that of the line itself, label and text, and the
// globals.
struct TakenLine {
  const char *pszLine;
  std::vector<std::string> reports;
  std::string globals;
};

// A line with something missing: the part that is reported as NULL, "" for none.
struct OddLine {
  const char *pszLine;
  uint32_t u32Result;
  std::string missing;
  std::string globals;
};

// Give the lines to the handler one after the other.
void ExpectTaken(Handler pfnHandler, Globals pfnGlobals, const std::vector<TakenLine> &lines);
void ExpectOdd(Handler pfnHandler, Globals pfnGlobals, const std::vector<OddLine> &lines);

}  // namespace kest::test
