// SPDX-License-Identifier: Apache-2.0
#include "ctl/terminal/completer.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "ctl/commands/command_table.h"
#include "ctl/commands/help_text.h"
#include "ctl/commands/names.h"
#include "ctl/model/level.h"
#include "ctl/parse/lines.h"
#include "ctl/terminal/command_line.h"

namespace kest::ctl {
namespace {

using Candidates = std::vector<Candidate>;

// Who presses Tab does not wait for long.
constexpr std::chrono::milliseconds kPatience{500};

// Where on the command line the cursor stands.
struct Position {
  const Command *command = nullptr;
  bool isLost = false;             // behind a word that is no command
  std::vector<std::string> words;  // of the command, before the cursor
  Arguments given;                 // options
  const OptionInfo *valueOf = nullptr;
  bool takesOptions = true;
  std::string prefix;  // what the candidates follow: "--dir="
  std::string typed;
};

bool IsNamed(const OptionInfo &option, std::string_view name) {
  const std::string names = "," + std::string(option.names) + ",";
  return Contains(names, fmt::format(",{},", name));
}

const OptionInfo *FindOption(const Command *command, std::string_view name) {
  const auto isMeant = [&](const OptionInfo &option) { return IsNamed(option, name); };
  for (const auto *options : {command == nullptr ? nullptr : &command->options, &GlobalOptions()}) {
    if (options == nullptr) continue;
    const auto found = std::find_if(options->begin(), options->end(), isMeant);
    if (found != options->end()) return &*found;
  }
  return nullptr;
}

bool TakeOption(Position &position, const std::string &word) {
  if (!position.takesOptions || word.size() < 2 || word[0] != '-') return false;
  if (word == "--") {
    position.takesOptions = false;
    return true;
  }
  const size_t equals = word.find('=');
  const OptionInfo *option = FindOption(position.command, std::string_view(word).substr(0, equals));
  if (option == nullptr) return false;
  if (equals != std::string::npos) {
    position.given.options[LongName(*option)] = word.substr(equals + 1);
  } else if (option->value != nullptr) {
    position.valueOf = option;
  } else {
    position.given.options[LongName(*option)] = "";
  }
  return true;
}

void Pass(Position &position, const std::string &word) {
  if (position.valueOf != nullptr) {
    position.given.options[LongName(*position.valueOf)] = word;
    position.valueOf = nullptr;
    return;
  }
  if (TakeOption(position, word)) return;
  if (position.command != nullptr) {
    position.words.push_back(word);
    return;
  }
  position.command = FindCommand(word);
  position.isLost = position.isLost || position.command == nullptr;
}

Position PositionIn(const std::vector<std::string> &words) {
  Position position;
  for (size_t i = 0; i + 1 < words.size(); ++i)
    Pass(position, words[i]);
  position.typed = words.empty() ? "" : words.back();
  const size_t equals = position.typed.find('=');
  if (position.valueOf == nullptr && BeginsWith(position.typed, "--") && equals != std::string::npos) {
    position.valueOf = FindOption(position.command, position.typed.substr(0, equals));
    position.prefix = position.typed.substr(0, equals + 1);
    position.typed.erase(0, equals + 1);
  }
  return position;
}

Candidates OfferCommands(Context & /*context*/, const Position & /*position*/) {
  Candidates candidates;
  for (const Command &command : Commands())
    candidates.push_back({command.name, command.summary});
  return candidates;
}

Candidates OptionNames(const Position &position) {
  Candidates candidates = {{"--help", "The help"}};
  if (position.command == nullptr) candidates.push_back({"--version", "The version"});
  const auto add = [&](const std::vector<OptionInfo> &options) {
    for (const OptionInfo &option : options)
      if (!position.given.Has(LongName(option)))
        candidates.push_back({"--" + LongName(option), option.description});
  };
  if (position.command != nullptr) add(position.command->options);
  add(GlobalOptions());
  return candidates;
}

std::string Describe(const Pipeline &pipeline) {
  std::string text =
      fmt::format("{} filter{}", pipeline.filters.size(), pipeline.filters.size() == 1 ? "" : "s");
  if (!pipeline.feeds.empty()) text += fmt::format(", feeds {}", fmt::join(pipeline.feeds, ", "));
  return text;
}

// pipeline: its name as typed, which may be shortened.
Candidates FiltersOf(const Pipeline &pipeline, const std::string &name) {
  Candidates candidates;
  for (const Filter &filter : pipeline.filters)
    candidates.push_back({fmt::format("{}/{}", name, filter.name), filter.state});
  return candidates;
}

// Filters that need no pipeline before their names.
Candidates LoneFilters(const Listing &listing) {
  std::map<std::string, int> counts;
  for (const Pipeline &pipeline : listing.pipelines)
    for (const Filter &filter : pipeline.filters)
      ++counts[filter.name];
  Candidates candidates;
  for (const Pipeline &pipeline : listing.pipelines)
    for (const Filter &filter : pipeline.filters)
      if (counts[filter.name] == 1) candidates.push_back({filter.name, "of " + pipeline.name});
  return candidates;
}

// Pipelines first; the filters of one when only that can be meant.
Candidates TargetsIn(const Listing &listing, const std::string &typed, bool takesPipelines) {
  const size_t slash = typed.find('/');
  if (slash != std::string::npos) {
    const std::string name = typed.substr(0, slash);
    const Target target = FindTarget(listing, name);
    return target.filter == nullptr ? FiltersOf(*target.pipeline, name) : Candidates{};
  }
  std::vector<const Pipeline *> fitting;
  for (const Pipeline &pipeline : listing.pipelines)
    if (BeginsWith(pipeline.name, typed)) fitting.push_back(&pipeline);
  if (fitting.empty()) return LoneFilters(listing);
  Candidates candidates;
  for (const Pipeline *pipeline : fitting) {
    if (fitting.size() > 1 || takesPipelines)
      candidates.push_back({pipeline->name + (takesPipelines ? "" : "/"), Describe(*pipeline)});
  }
  if (fitting.size() > 1) return candidates;
  const Candidates filters = FiltersOf(*fitting[0], fitting[0]->name);
  candidates.insert(candidates.end(), filters.begin(), filters.end());
  return candidates;
}

Candidates OfferTargets(Context &context, const Position &position) {
  return TargetsIn(context.GetListing(), position.typed, true);
}

Candidates OfferFilters(Context &context, const Position &position) {
  return TargetsIn(context.GetListing(), position.typed, false);
}

Candidates OfferPipelines(Context &context, const Position & /*position*/) {
  Candidates candidates;
  for (const Pipeline &pipeline : context.GetListing().pipelines)
    candidates.push_back({pipeline.name, Describe(pipeline)});
  return candidates;
}

// Of the filter that the first word names.
Candidates OfferParameters(Context &context, const Position &position) {
  const Target target = FindFilter(context.GetListing(), position.words.at(0));
  Candidates candidates;
  for (const Parameter *parameter : ParametersOf(context.GetParameters(), target.filter->name))
    candidates.push_back({parameter->name, parameter->description});
  return candidates;
}

Candidates OfferLevels(Context & /*context*/, const Position & /*position*/) {
  Candidates candidates;
  for (const Level &level : kLevels)
    candidates.push_back({std::string(level.name), ""});
  return candidates;
}

Candidates OfferProcesses(Context &context, const Position & /*position*/) {
  Candidates candidates;
  for (const Process &process : context.GetChannel().GetReaders().processes)
    candidates.push_back({std::to_string(process.pid), process.name});
  return candidates;
}

Candidates OfferThreads(Context &context, const Position & /*position*/) {
  Candidates candidates;
  for (const Pipeline &pipeline : context.GetListing().pipelines)
    candidates.push_back({std::to_string(pipeline.tid), pipeline.name});
  return candidates;
}

Candidates FilesAt(const Position &position, bool onlyDirectories) {
  const std::string parent = position.typed.substr(0, position.typed.rfind('/') + 1);
  std::error_code error;
  Candidates candidates;
  for (std::filesystem::directory_iterator entry(parent.empty() ? "." : parent, error), end;
       !error && entry != end; entry.increment(error)) {
    std::error_code notSeen;
    const bool isDirectory = entry->is_directory(notSeen);
    if (isDirectory || !onlyDirectories)
      candidates.push_back({parent + entry->path().filename().string() + (isDirectory ? "/" : ""), ""});
  }
  return candidates;
}

// As on this system, which is the one of --dir unless it is behind a remote shell.
Candidates OfferDirectories(Context &context, const Position &position) {
  return context.GetSettings().via.empty() ? FilesAt(position, true) : Candidates{};
}

// Recordings and pictures are always on this system.
Candidates OfferFiles(Context & /*context*/, const Position &position) {
  return FilesAt(position, false);
}

template <const char *const *kWords, size_t kCount>
Candidates OfferWords(Context & /*context*/, const Position & /*position*/) {
  Candidates candidates;
  for (size_t i = 0; i < kCount; ++i)
    candidates.push_back({kWords[i], ""});
  return candidates;
}

constexpr const char *kListings[] = {"pipelines", "filters", "ports", "parameters"};
constexpr const char *kSeverities[] = {"err", "wrn", "info", "trace", "all"};
constexpr const char *kPictures[] = {"waveform", "spectrogram", "levels", "cycles", "latency"};
constexpr const char *kShells[] = {"bash", "zsh", "fish"};
constexpr const char *kColours[] = {"auto", "always", "never"};

struct OfferInfo {
  Offer offer;
  Candidates (*make)(Context &context, const Position &position);
};

constexpr OfferInfo kOffers[] = {
    {Offer::kTarget, OfferTargets},
    {Offer::kPipeline, OfferPipelines},
    {Offer::kFilter, OfferFilters},
    {Offer::kParameter, OfferParameters},
    {Offer::kLevel, OfferLevels},
    {Offer::kSeverity, OfferWords<kSeverities, std::size(kSeverities)>},
    {Offer::kListing, OfferWords<kListings, std::size(kListings)>},
    {Offer::kProcess, OfferProcesses},
    {Offer::kThread, OfferThreads},
    {Offer::kCommand, OfferCommands},
    {Offer::kShellName, OfferWords<kShells, std::size(kShells)>},
    {Offer::kColour, OfferWords<kColours, std::size(kColours)>},
    {Offer::kDirectory, OfferDirectories},
    {Offer::kFile, OfferFiles},
    {Offer::kPicture, OfferWords<kPictures, std::size(kPictures)>},
};

Offer OfferAt(const Position &position) {
  if (position.valueOf != nullptr) return position.valueOf->offer;
  if (position.isLost) return Offer::kNothing;
  if (position.command == nullptr) return Offer::kCommand;
  const auto &arguments = position.command->arguments;
  if (position.words.size() < arguments.size()) return arguments[position.words.size()].offer;
  return arguments.empty() || !arguments.back().isRepeated ? Offer::kNothing : arguments.back().offer;
}

Candidates AllAt(Context &context, const Position &position) {
  const bool isOption =
      position.valueOf == nullptr && position.takesOptions && BeginsWith(position.typed, "-");
  if (isOption) return OptionNames(position);
  const Offer offer = OfferAt(position);
  const auto info = std::find_if(std::begin(kOffers), std::end(kOffers),
                                 [&](const OfferInfo &known) { return known.offer == offer; });
  return info == std::end(kOffers) ? Candidates{} : info->make(context, position);
}

bool IsControl(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte < 0x20 || byte == 0x7f;
}

// Names with control characters cannot be typed.
Candidates Fitting(const Candidates &candidates, const Position &position) {
  Candidates fitting;
  std::set<std::string> seen;
  for (const Candidate &candidate : candidates) {
    const std::string &text = candidate.text;
    if (!BeginsWith(text, position.typed) || std::any_of(text.begin(), text.end(), IsControl)) continue;
    if (seen.insert(text).second) fitting.push_back({position.prefix + text, candidate.description});
  }
  return fitting;
}

}  // namespace

Context &Completer::ContextFor(Settings settings) {
  if (settings.via.empty()) settings.timeout = std::min(settings.timeout, kPatience);
  if (context_ == nullptr || !(context_->GetSettings() == settings))
    context_ = std::make_unique<Context>(std::move(settings));
  context_->Forget();
  return *context_;
}

std::vector<Candidate> Completer::Complete(const std::vector<std::string> &words) {
  const Position position = PositionIn(words);
  try {
    Settings settings = settings_;
    ApplyGlobalOptions(position.given, settings);
    return Fitting(AllAt(ContextFor(std::move(settings)), position), position);
  } catch (const CtlError &) {
    return {};
  }
}

}  // namespace kest::ctl
