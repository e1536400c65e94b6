// SPDX-License-Identifier: Apache-2.0
// What --check prints.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "player/check/check_test.h"

namespace kest::player {

struct CheckRow {
  std::string kind;  // "" for tests of the file
  const CheckTest *test;
  Finding finding;
  std::string repeat;  // the command line that runs it again
};

class CheckReport {
 public:
  CheckReport(std::string file, uint32_t seed, bool json);

  // As it goes on; as text on stdout, beside JSON on stderr.
  void Begin(const std::string &kind, const CheckTest &test);
  void Add(CheckRow row);
  // All of it as JSON, or the sums as text.
  void Finish() const;
  [[nodiscard]] bool HasFailed() const;

 private:
  void PrintJson() const;
  void PrintSums() const;
  [[nodiscard]] int Count(Verdict verdict) const { return counts_[static_cast<size_t>(verdict)]; }

  std::string file_;
  uint32_t seed_;
  bool json_;
  std::string kind_ = "?";  // whose rows are being printed
  std::vector<CheckRow> rows_;
  std::array<int, kVerdicts> counts_{};
};

}  // namespace kest::player
