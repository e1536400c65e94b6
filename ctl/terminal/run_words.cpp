// SPDX-License-Identifier: Apache-2.0
#include "ctl/terminal/run_words.h"

#include <algorithm>
#include <cstdio>

#include "ctl/terminal/answer.h"
#include "ctl/terminal/command_line.h"

namespace kest::ctl {
namespace {

int RunCommand(Context &context, const CommandLine &line) {
  try {
    return PrintResult(context, *line.command, line.command->run(context, line.arguments));
  } catch (const CtlError &error) {
    return PrintFailure(&context, line.command, error, line.settings);
  }
}

int RunCommand(const CommandLine &line, Context *shared) {
  if (shared != nullptr && shared->GetSettings() == line.settings) {
    shared->Forget();
    return RunCommand(*shared, line);
  }
  Context context(line.settings);
  if (shared == nullptr) context.SayWhenLate();  // else the terminal is the shell's
  return RunCommand(context, line);
}

int Run(const std::vector<std::string> &words, Settings &settings, Context *shared) {
  // Known before the words are understood: what is wrong with them is to be said in JSON too.
  settings.json = settings.json || std::find(words.begin(), words.end(), "--json") != words.end();
  try {
    const auto parsed = ParseCommandLine(words, settings);
    if (const auto *notice = std::get_if<Notice>(&parsed))
      return std::fputs(notice->text.c_str(), stdout) < 0 ? 1 : 0;
    return RunCommand(std::get<CommandLine>(parsed), shared);
  } catch (const CtlError &error) {
    return PrintFailure(nullptr, nullptr, error, settings);
  }
}

}  // namespace

ExitCode RunWords(const std::vector<std::string> &words, Settings settings, Context *shared) {
  return static_cast<ExitCode>(Run(words, settings, shared));
}

}  // namespace kest::ctl
