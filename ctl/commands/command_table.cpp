// SPDX-License-Identifier: Apache-2.0
#include "ctl/commands/command_table.h"

#include "ctl/commands/commands.h"

namespace kest::ctl {

const std::vector<OptionInfo> &GlobalOptions() {
  static const std::vector<OptionInfo> options = {
      {"--dir", "DIR", "The directory of the pipe and the log; " KEST_DEBUG_DIR " unless given"},
      {"--pid", "PID", "The process that is meant; refuses when another reads the pipe"},
      {"--any", nullptr, "Go on although several processes read the pipe, and take what comes"},
      {"--timeout", "MS", "How long to wait for an answer; 2000 unless given"},
      {"--via", "COMMAND", "Works on another system, through its shell: \"adb shell\", \"ssh HOST\""},
      {"--json", nullptr, "One JSON document on standard output, also on failure"},
      {"-q,--quiet", nullptr, "No warnings and hints"},
      {"--color", "WHEN", "auto, always or never; auto unless given: on a terminal without NO_COLOR"},
  };
  return options;
}

const std::vector<Command> &Commands() {
  static const std::vector<Command> commands = {
      {"ps", "List the processes that read the pipe", "", {}, {}, RunPs},
      {"doctor",
       "Look for the reasons of silence",
       "Looks at the directory, the pipe, who reads it, the log, the disk and the settings, and asks for an "
       "answer;\n"
       "says what to do about what is wrong. Exit code 1 when something is.",
       {},
       {},
       RunDoctor},
      {"ls",
       "List what runs",
       "Pipelines with their filters, what they feed and what their ports hold; or only pipelines, filters, "
       "ports or\n"
       "parameters, with more about them.",
       {{"WHAT", Offer::kListing, false}},
       {},
       RunLs},
      {"status",
       "Show what the filters report about themselves",
       "",
       {{"PIPELINE[/FILTER]", Offer::kTarget, false}},
       {},
       RunStatus},
      {"set",
       "Set a parameter of a filter",
       "Names may be shortened as long as they are unique. VALUE is a whole number.",
       {{"PIPELINE/FILTER", Offer::kTarget}, {"NAME", Offer::kParameter}, {"VALUE", Offer::kValue}},
       {},
       RunSet},
      {"cmd",
       "Send a command of its own to a filter",
       "",
       {{"PIPELINE/FILTER", Offer::kTarget}, {"TEXT", Offer::kNothing, true, true}},
       {},
       RunCmd},
      {"send",
       "Send lines as they are and show the reply verbatim",
       "Each LINE is one line of the command language, such as kest_log_to_print=on.",
       {{"LINE", Offer::kNothing, true, true}},
       {},
       RunSend},
      {"level",
       "Show or set the log level",
       "LEVEL is none, err, sync, hdmi, wrn, info, trace or all. All processes share it.",
       {{"LEVEL", Offer::kLevel, false}},
       {},
       RunLevel},
      {"log",
       "Show the log",
       "",
       {},
       {{"-f,--follow", nullptr, "Go on as the log grows, through its restarts"},
        {"-n,--lines", "N", "The last N lines; 20 unless given"},
        {"--level", "LEVEL", "Only lines of this level and of more serious ones", Offer::kLevel},
        {"--tid", "TID", "Only lines of this thread"},
        {"--plain", nullptr, "Without prefixes and colours"}},
       RunLog},
  };
  return commands;
}

const Command *FindCommand(std::string_view name) {
  for (const Command &command : Commands()) {
    if (command.name == name) return &command;
  }
  return nullptr;
}

}  // namespace kest::ctl
