// SPDX-License-Identifier: Apache-2.0
#include "player/config/layout_reader.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>

#include "ze_kest/model.h"

#include "player/base/text_list.h"
#include "player/config/filter_reader.h"
#include "player/config/json_document.h"

namespace kest::player {
namespace {

constexpr size_t kMaxName = ZE_KEST_NAME_SIZE - 1;

// What a pipeline's chain may look like.
struct Chain {
  const char *owner;
  FilterPlace first;
  std::optional<FilterPlace> last;
};

constexpr Chain kInputChain = {"an input", FilterPlace::kInputStart, std::nullopt};
constexpr Chain kOutputChain = {"the output", FilterPlace::kOutputStart, FilterPlace::kOutputEnd};

bool Fits(const std::vector<FilterLayout> &filters, const Chain &chain) {
  auto begin = filters.begin();
  auto end = filters.end();
  if (begin == end || begin++->kind->place != chain.first) return false;
  if (chain.last && (begin == end || (--end)->kind->place != *chain.last)) return false;
  return std::all_of(begin, end,
                     [](const auto &filter) { return filter.kind->place == FilterPlace::kBetween; });
}

std::string KindsFor(FilterPlace place, const FilterKinds &kinds, const char *separator) {
  FilterKinds fitting;
  std::copy_if(kinds.begin(), kinds.end(), std::back_inserter(fitting),
               [place](const FilterKind *kind) { return kind->place == place; });
  return ListNames(
      fitting, [](const auto *kind) { return kind->name; }, separator);
}

std::string Describe(const Chain &chain, const FilterKinds &kinds) {
  return std::string(chain.owner) + " is " + KindsFor(chain.first, kinds, " or ") + ", then any of " +
         KindsFor(FilterPlace::kBetween, kinds, ", ") + " and modules, in any order" +
         (chain.last ? ", then " + KindsFor(*chain.last, kinds, " or ") : "");
}

std::string Names(const std::vector<FilterLayout> &filters) {
  const std::string names = ListNames(
      filters, [](const auto &filter) { return filter.name.empty() ? filter.kind->name : filter.name; });
  return names.empty() ? "no filters" : names;
}

PipelineLayout ReadPipeline(const JsonValue &value, const FilterKinds &kinds,
                            const std::filesystem::path &directory) {
  const std::string &name = value.Name();
  if (name.empty() || name.size() > kMaxName) {
    value.Fail("the name has " + std::to_string(name.size()) + " characters; 1 to " +
               std::to_string(kMaxName) + " are allowed");
  }
  PipelineLayout pipeline{name, {}};
  for (const JsonValue &member : value.Members()) {
    pipeline.filters.push_back(ReadFilter(member, kinds, directory));
  }
  const Chain &chain = name == kOutputPipeline ? kOutputChain : kInputChain;
  if (!Fits(pipeline.filters, chain)) {
    value.Fail("has " + Names(pipeline.filters) + "; " + Describe(chain, kinds));
  }
  return pipeline;
}

}  // namespace

Layout ReadLayout(const std::string &path, const FilterKinds &kinds) {
  const JsonDocument document(path);
  const JsonValue root = document.Root();
  Layout layout;
  for (const JsonValue &member : root.Members()) {
    PipelineLayout pipeline = ReadPipeline(member, kinds, std::filesystem::path(path).parent_path());
    if (pipeline.name == kOutputPipeline) {
      layout.output = std::move(pipeline);
    } else {
      layout.inputs.push_back(std::move(pipeline));
    }
  }
  if (layout.output.filters.empty()) root.Fail("the pipeline \"SpeakerOutput\" is missing");
  if (layout.inputs.empty() || layout.inputs.size() > ZE_KEST_MAX_PORTS) {
    root.Fail(std::to_string(layout.inputs.size()) + " pipelines feed SpeakerOutput; 1 to " +
              std::to_string(ZE_KEST_MAX_PORTS) + " are needed");
  }
  return layout;
}

}  // namespace kest::player
