// SPDX-License-Identifier: Apache-2.0
// kestctl: talks to the processes that use the library, and says whether they did what they were told.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "ctl/channel/interrupt.h"
#include "ctl/commands/context.h"
#include "ctl/terminal/answer.h"
#include "ctl/terminal/command_line.h"

namespace kest::ctl {
namespace {

int RunCommand(const CommandLine &line) {
  Context context(line.settings);
  try {
    return PrintResult(context, *line.command, line.command->run(context, line.arguments));
  } catch (const CtlError &error) {
    return PrintFailure(&context, line.command, error, line.settings);
  }
}

int Main(const std::vector<std::string> &words) {
  Settings settings;
  // Known before the words are understood: what is wrong with them is to be said in JSON too.
  settings.json = std::find(words.begin(), words.end(), "--json") != words.end();
  try {
    const auto parsed = ParseCommandLine(words, settings);
    if (const auto *notice = std::get_if<Notice>(&parsed))
      return std::fputs(notice->text.c_str(), stdout) < 0 ? 1 : 0;
    return RunCommand(std::get<CommandLine>(parsed));
  } catch (const CtlError &error) {
    return PrintFailure(nullptr, nullptr, error, settings);
  }
}

}  // namespace
}  // namespace kest::ctl

int main(int argc, char **argv) {
  kest::ctl::CatchInterrupts();
  try {
    return kest::ctl::Main(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const std::exception &error) {
    std::fprintf(stderr, "kestctl: %s\n", error.what());
    return static_cast<int>(kest::ctl::ExitCode::kLost);
  }
}
