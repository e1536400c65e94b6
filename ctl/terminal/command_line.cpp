// SPDX-License-Identifier: Apache-2.0
#include "ctl/terminal/command_line.h"

#include <algorithm>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "ctl/commands/command_table.h"
#include "ctl/commands/help_text.h"
#include "ctl/commands/names.h"
#include "ctl/commands/option_values.h"

namespace kest::ctl {
namespace {

constexpr NumberRange kPositive = {1, kMostWhole};

// The words of one command line while CLI11 takes them apart.
struct Parsed {
  std::map<std::string, std::string> values;
  std::map<std::string, bool> switches;
  std::vector<std::string> words;
};

void AddOptions(CLI::App &app, const std::vector<OptionInfo> &options, Parsed &parsed) {
  for (const OptionInfo &option : options) {
    if (option.value == nullptr) {
      app.add_flag(option.names, parsed.switches[LongName(option)]);
    } else {
      app.add_option(option.names, parsed.values[LongName(option)]);
    }
  }
}

void KeepGiven(const CLI::App &app, const std::vector<OptionInfo> &options, const Parsed &parsed,
               Arguments &arguments) {
  for (const OptionInfo &option : options) {
    const std::string name = LongName(option);
    if (app.count("--" + name) == 0) continue;
    arguments.options[name] = option.value == nullptr ? "" : parsed.values.at(name);
  }
}

void CheckWords(const Command &command, const Arguments &arguments) {
  const auto &infos = command.arguments;
  const auto needed = static_cast<size_t>(
      std::count_if(infos.begin(), infos.end(), [](const ArgumentInfo &info) { return info.isRequired; }));
  const bool isOpen = !infos.empty() && infos.back().isRepeated;
  const std::string usage = fmt::format("kestctl {}", Synopsis(command));
  if (arguments.words.size() < needed) {
    throw CtlError(ExitCode::kUsage, fmt::format("{} is missing", infos[arguments.words.size()].name), usage);
  }
  if (arguments.words.size() > infos.size() && !isOpen) {
    throw CtlError(ExitCode::kUsage,
                   fmt::format("\"{}\" is one word too many", arguments.words[infos.size()]), usage);
  }
}

// What is wrong with a word that nothing takes.
CtlError NotUnderstood(const std::string &word, const Command &command) {
  std::vector<std::string> names;
  for (const std::vector<OptionInfo> *options : {&command.options, &GlobalOptions()}) {
    for (const OptionInfo &option : *options)
      names.push_back("--" + LongName(option));
  }
  const std::string nearest = Nearest(names, word);
  return {ExitCode::kUsage, fmt::format("\"{}\" is not understood", word),
          nearest.empty() ? fmt::format("kestctl {}", Synopsis(command))
                          : fmt::format("did you mean {}?", nearest)};
}

Colour ColourNamed(const std::string &name) {
  if (name == "auto") return Colour::kAuto;
  if (name == "always") return Colour::kAlways;
  if (name == "never") return Colour::kNever;
  throw CtlError(ExitCode::kUsage, fmt::format("--color: \"{}\" is neither auto, always nor never", name));
}

}  // namespace

void ApplyGlobalOptions(const Arguments &global, Settings &settings) {
  if (const auto directory = global.Option("dir")) {
    settings.directory = *directory;
    if (settings.directory.empty() || settings.directory.back() != '/') settings.directory += '/';
  }
  if (const auto pid = WholeOption(global, "pid", kPositive)) settings.pid = pid;
  if (const auto ms = WholeOption(global, "timeout", kPositive))
    settings.timeout = std::chrono::milliseconds(*ms);
  if (global.Has("via")) settings.via = *global.Option("via");
  if (global.Has("color")) settings.colour = ColourNamed(*global.Option("color"));
  settings.anyProcess = settings.anyProcess || global.Has("any");
  settings.json = settings.json || global.Has("json");
  settings.quiet = settings.quiet || global.Has("quiet");
}

std::variant<CommandLine, Notice> ParseCommandLine(const std::vector<std::string> &words,
                                                   const Settings &settings) {
  CLI::App app;
  app.set_help_flag();
  bool help = false;
  bool version = false;
  app.add_flag("-h,--help", help);
  app.add_flag("--version", version);
  Parsed global;
  AddOptions(app, GlobalOptions(), global);
  app.require_subcommand(0, 1);
  app.allow_extras();
  std::map<std::string, Parsed> own;
  for (const Command &command : Commands()) {
    CLI::App *sub = app.add_subcommand(command.name)->fallthrough();
    sub->set_help_flag();
    AddOptions(*sub, command.options, own[command.name]);
    if (!command.arguments.empty()) sub->add_option("WORDS", own[command.name].words);
  }
  try {
    app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
  } catch (const CLI::ParseError &error) {
    throw CtlError(ExitCode::kUsage, error.what(), "kestctl --help shows the options");
  }
  const auto subcommands = app.get_subcommands();
  if (version) return Notice{"kestctl " KEST_VERSION "\n"};
  if (subcommands.empty()) {
    if (help) return Notice{HelpText()};
    const auto extras = app.remaining();
    if (extras.empty()) throw CtlError(ExitCode::kUsage, "which command?", "kestctl --help lists them");
    static_cast<void>(CommandNamed(extras[0]));
    throw CtlError(ExitCode::kUsage, fmt::format("\"{}\" is not understood", extras[0]));
  }
  CommandLine line;
  line.command = FindCommand(subcommands[0]->get_name());
  if (help) return Notice{HelpText(*line.command)};
  if (!app.remaining(true).empty()) throw NotUnderstood(app.remaining(true)[0], *line.command);
  const Parsed &parsed = own[line.command->name];
  line.arguments.words = parsed.words;
  KeepGiven(*subcommands[0], line.command->options, parsed, line.arguments);
  CheckWords(*line.command, line.arguments);
  Arguments given;
  KeepGiven(app, GlobalOptions(), global, given);
  line.settings = settings;
  ApplyGlobalOptions(given, line.settings);
  return line;
}

}  // namespace kest::ctl
