// SPDX-License-Identifier: Apache-2.0
// kestctl: talks to the processes that use the library, and says whether they did what they were told.
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "ctl/channel/interrupt.h"
#include "ctl/terminal/completion_request.h"
#include "ctl/terminal/run_words.h"

namespace kest::ctl {
namespace {

ExitCode Main(const std::vector<std::string> &words) {
  if (const auto answer = AnswerCompletion(words)) {
    return std::fputs(answer->c_str(), stdout) < 0 ? ExitCode::kRefused : ExitCode::kDone;
  }
  return RunWords(words, Settings());
}

}  // namespace
}  // namespace kest::ctl

int main(int argc, char **argv) {
  kest::ctl::CatchInterrupts();
  try {
    return static_cast<int>(kest::ctl::Main(std::vector<std::string>(argv + 1, argv + argc)));
  } catch (const std::exception &error) {
    std::fprintf(stderr, "kestctl: %s\n", error.what());
    return static_cast<int>(kest::ctl::ExitCode::kLost);
  }
}
