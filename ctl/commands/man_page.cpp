// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "ctl/commands/command_table.h"
#include "ctl/commands/help_text.h"

namespace kest::ctl {
namespace {

constexpr const char *kDescription =
    "Talks to the processes that use the library, through their command pipe and their log, and says "
    "whether\n"
    "they did what they were told: every command gets an answer, an exit code and a table.\n"
    "Names of pipelines, filters and parameters may be shortened as long as they are unique.";

struct Entry {
  const char *term;
  const char *text;
};

constexpr Entry kFiles[] = {
    {KEST_DEBUG_DIR "D", "The pipe from which the processes read their commands."},
    {KEST_DEBUG_DIR "KestLog.txt", "Their log, which holds the answers."},
    {"~/.local/state/kestctl/history",
     "The lines typed into the shell; below XDG_STATE_HOME when that is set."},
};

constexpr Entry kEnvironment[] = {
    {"NO_COLOR", "When set and not empty, nothing is coloured unless --color says so."},
    {"XDG_STATE_HOME", "Where the shell keeps its history; ~/.local/state unless set."},
};

constexpr Entry kExamples[] = {
    {"kestctl ls", "What runs, and how full the ports are."},
    {"kestctl set Dec/Vol Gain -6", "Sets the parameter, and says whether the filter took it."},
    {"kestctl --json status | jq .data.filters", "The status of every filter, for a program."},
    {"kestctl log -f --level wrn", "Warnings and errors as they come."},
};

// What roff would take for its own is shown as it is.
std::string Roff(std::string_view text) {
  std::string roff;
  for (const char character : text) {
    const bool atLineStart = roff.empty() || roff.back() == '\n';
    if (atLineStart && (character == '.' || character == '\'')) roff += "\\&";
    switch (character) {
      case '\\':
        roff += "\\e";
        break;
      case '-':
        roff += "\\-";
        break;
      case '~':
        roff += "\\(ti";
        break;
      default:
        roff.push_back(character);
    }
  }
  return roff;
}

std::string Item(std::string_view term, std::string_view text) {
  return fmt::format(".TP\n\\fB{}\\fR\n{}\n", Roff(term), Roff(text));
}

template <size_t kCount>
std::string Section(const char *title, const Entry (&entries)[kCount]) {
  std::string text = fmt::format(".SH {}\n", title);
  for (const Entry &entry : entries)
    text += Item(entry.term, entry.text);
  return text;
}

std::string Options(const std::vector<OptionInfo> &options) {
  std::string text;
  for (const OptionInfo &option : options)
    text += Item(ShowOption(option), std::string(option.description) + ".");
  return text;
}

std::string Section(const Command &command) {
  std::string text = fmt::format(".SS \\fB{}\\fR\n{}.\n", Roff(Synopsis(command)), Roff(command.summary));
  if (*command.description != '\0') text += Roff(command.description) + "\n";
  return text + Options(command.options);
}

}  // namespace

std::string ManPage() {
  std::string text = ".TH KESTCTL 1 \"\" \"kest " KEST_VERSION
                     "\" \"User Commands\"\n"
                     ".SH NAME\nkestctl \\- debugs the processes that use the kest library\n"
                     ".SH SYNOPSIS\n\\fBkestctl\\fR [\\fIOPTIONS\\fR] \\fICOMMAND\\fR ...\n"
                     ".SH DESCRIPTION\n";
  text += Roff(kDescription) + "\n.SH COMMANDS\n";
  for (const Command &command : Commands())
    text += Section(command);
  text += ".SH OPTIONS\nThese may stand before or behind the command.\n" + Options(GlobalOptions()) +
          Item("-h, --help", "The help, or that of a command.") + Item("--version", "The version.") +
          ".SH \"EXIT STATUS\"\n";
  for (const ExitCodeInfo &info : kExitCodes)
    text += Item(std::to_string(static_cast<int>(info.code)), std::string(info.meaning) + ".");
  return text + Section("FILES", kFiles) + Section("ENVIRONMENT", kEnvironment) +
         Section("EXAMPLES", kExamples);
}

}  // namespace kest::ctl
