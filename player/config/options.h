// SPDX-License-Identifier: Apache-2.0
// The command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "player/check/check.h"
#include "player/framework/filter_layout.h"

namespace kest::player {

// A filter from a module, "FILE[:KIND][,NAME=VALUE...]".
struct ModuleOption {
  std::string file;
  std::string kind;  // empty: the only one of the module
  std::vector<GivenParameter> parameters;
  std::string config{};
};

struct Options {
  std::optional<std::string>
      config;  // instead of inputs, raw, output, gainDb, delayMs, rateHz, mixMatrix, modules
  std::vector<std::string> inputs;
  std::optional<std::string> raw;  // format of standard input
  std::string output;
  bool fast = false;
  bool loop = false;
  std::optional<double> seconds;
  int gainDb = 0;
  uint32_t delayMs = 0;
  std::optional<int> rateHz;
  std::optional<std::string> mixMatrix;
  std::vector<ModuleOption> modules;  // behind the Volume of every input
  bool wide = false;
  bool logcat = false;
  std::optional<ModuleOption> inspect;  // instead of playing
  bool json = false;
  std::optional<CheckRequest> check;  // instead of playing
};

// The options, or the exit code when the command line asked for help or was wrong; the help or the error has
// then been printed.
std::variant<Options, int> ParseOptions(int argc, const char *const *argv);

}  // namespace kest::player
