// SPDX-License-Identifier: Apache-2.0
// A command of kestctl as the table describes it, and what it gives.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ctl/error.h"
#include "ctl/render/json.h"

namespace kest::ctl {

class Context;

// What can stand in a place of the command line; the shell and the completions offer it.
enum class Offer {
  kNothing,
  kTarget,  // a pipeline or a filter
  kPipeline,
  kFilter,
  kParameter,
  kLevel,
  kSeverity,  // of lines of the log
  kListing,
  kProcess,
  kThread,
  kCommand,
  kShellName,
  kColour,
  kDirectory,
  kFile,
  kPicture
};

struct ArgumentInfo {
  const char *name;
  Offer offer = Offer::kNothing;
  bool isRequired = true;
  bool isRepeated = false;
};

struct OptionInfo {
  const char *names;  // "-n,--lines"
  const char *value;  // what follows it; NULL for a switch
  const char *description;
  Offer offer = Offer::kNothing;
};

// The words of a command line behind the command.
struct Arguments {
  std::vector<std::string> words;
  std::map<std::string, std::string> options;  // by the long name, without dashes

  [[nodiscard]] bool Has(const std::string &option) const { return options.count(option) > 0; }
  [[nodiscard]] std::optional<std::string> Option(const std::string &name) const {
    const auto found = options.find(name);
    return found == options.end() ? std::nullopt : std::optional(found->second);
  }
};

struct Result {
  Json data = Json::object();
  std::string text;  // for people; may be empty
  ExitCode exit = ExitCode::kDone;
  std::string message;  // why exit is not kDone
  std::string hint;
};

struct Command {
  const char *name;
  const char *summary;
  const char *description;
  std::vector<ArgumentInfo> arguments;
  std::vector<OptionInfo> options;
  Result (*run)(Context &context, const Arguments &arguments);
};

}  // namespace kest::ctl
