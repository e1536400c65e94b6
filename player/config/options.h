// SPDX-License-Identifier: Apache-2.0
// The command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kest::player {

struct Options {
  std::optional<std::string> config;  // instead of inputs, output, gainDb, delayMs, rateHz and mixMatrix
  std::vector<std::string> inputs;
  std::string output;
  bool fast = false;
  bool loop = false;
  std::optional<double> seconds;
  int gainDb = 0;
  uint32_t delayMs = 0;
  std::optional<int> rateHz;
  std::optional<std::string> mixMatrix;
  bool wide = false;
  bool logcat = false;
};

// The options, or the exit code when the command line asked for help or was wrong; the help or the error has
// then been printed.
std::variant<Options, int> ParseOptions(int argc, const char *const *argv);

}  // namespace kest::player
