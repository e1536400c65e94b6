// SPDX-License-Identifier: Apache-2.0
#include "ctl/commands/help_text.h"

#include <fmt/format.h>

#include "ctl/commands/command_table.h"

namespace kest::ctl {
namespace {

std::string Synopsis(const ArgumentInfo &argument) {
  const std::string name = fmt::format("{}{}", argument.name, argument.isRepeated ? "..." : "");
  return argument.isRequired ? name : "[" + name + "]";
}

std::string OptionLines(const std::vector<OptionInfo> &options) {
  std::string text;
  for (const OptionInfo &option : options)
    text += fmt::format("  {:<20}  {}\n", ShowOption(option), option.description);
  return text;
}

std::string ExitCodeLines() {
  std::string text = "Exit code:\n";
  for (const ExitCodeInfo &info : kExitCodes)
    text += fmt::format("  {:>3}  {}\n", static_cast<int>(info.code), info.meaning);
  return text;
}

}  // namespace

const std::vector<ExitCodeInfo> kExitCodes = {
    {ExitCode::kDone, "done"},
    {ExitCode::kRefused, "refused, or a check failed"},
    {ExitCode::kUsage, "wrong command line"},
    {ExitCode::kUnreachable, "no process, no pipe, no permission, or a file that cannot be written"},
    {ExitCode::kNoAnswer, "no answer"},
    {ExitCode::kSeveralProcesses, "several processes"},
    {ExitCode::kNotFound, "no such pipeline, filter or parameter"},
    {ExitCode::kLost, "answer lost or not understood"},
    {ExitCode::kInterrupted, "interrupted"},
};

std::string LongName(const OptionInfo &option) {
  const std::string names = option.names;
  return names.substr(names.rfind("--") + 2);
}

std::string ShowOption(const OptionInfo &option) {
  std::string names = option.names;
  const size_t comma = names.find(',');
  if (comma != std::string::npos) names.insert(comma + 1, " ");
  return option.value == nullptr ? names : names + " " + option.value;
}

std::string Synopsis(const Command &command) {
  std::string text = command.name;
  for (const OptionInfo &option : command.options) {
    const std::string names = option.names;
    text += fmt::format(" [{}{}{}]", names.substr(0, names.find(',')), option.value == nullptr ? "" : " ",
                        option.value == nullptr ? "" : option.value);
  }
  for (const ArgumentInfo &argument : command.arguments)
    text += " " + Synopsis(argument);
  return text;
}

std::string HelpText() {
  std::string text =
      "Usage: kestctl [OPTIONS] COMMAND ...\n\n"
      "Talks to the processes that use the library, through their command pipe and their log,\n"
      "and says whether they did what they were told.\n\nCommands:\n";
  for (const Command &command : Commands())
    text += fmt::format("  {:<11} {}\n", command.name, command.summary);
  return text + "\nOptions, before or behind the command:\n" + OptionLines(GlobalOptions()) +
         "  -h, --help            This help, or that of a command\n"
         "  --version             The version\n\n" +
         ExitCodeLines();
}

std::string HelpText(const Command &command) {
  std::string text = fmt::format("Usage: kestctl [OPTIONS] {}\n\n{}.\n", Synopsis(command), command.summary);
  if (*command.description != '\0') text += fmt::format("{}\n", command.description);
  if (!command.options.empty()) text += "\n" + OptionLines(command.options);
  return text + "\nkestctl --help lists the options that every command takes.\n";
}

}  // namespace kest::ctl
