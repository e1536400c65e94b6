// SPDX-License-Identifier: Apache-2.0
// What a test of a module found.
#pragma once

#include <string>
#include <utility>

namespace kest::player {

enum class Verdict { kSuccess, kFailed, kCrashed, kSkipped, kWarning };
constexpr int kVerdicts = 5;

struct Finding {
  Verdict verdict = Verdict::kSuccess;
  std::string seen;  // for a person; the reason of a skipped test
};

inline Finding Success() {
  return {};
}
inline Finding Failed(std::string seen) {
  return {Verdict::kFailed, std::move(seen)};
}
inline Finding Warning(std::string seen) {
  return {Verdict::kWarning, std::move(seen)};
}
inline Finding Skipped(std::string why) {
  return {Verdict::kSkipped, std::move(why)};
}

const char *NameOf(Verdict verdict);

}  // namespace kest::player
