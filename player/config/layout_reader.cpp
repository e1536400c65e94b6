// SPDX-License-Identifier: Apache-2.0
#include "player/config/layout_reader.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "ze_kest/model.h"

#include "player/config/filter_settings.h"
#include "player/config/json_document.h"
#include "player/filters/delay.h"
#include "player/filters/lpcm.h"
#include "player/filters/mixer.h"
#include "player/filters/speaker_output.h"
#include "player/filters/volume.h"

namespace kest::player {
namespace {

constexpr size_t kMaxName = ZE_KEST_NAME_SIZE - 1;

// Between its first and last filter, a chain may have any number of Volume and Delay filters.
struct Chain {
  const FilterKind *first;
  const FilterKind *last;  // nullptr: no particular one
  const char *text;
};

constexpr Chain kInputChain = {&Lpcm::kKind, nullptr,
                               "an input is Lpcm, then any of Volume and Delay, in any order"};
constexpr Chain kOutputChain = {
    &Mixer::kKind, &SpeakerOutput::kKind,
    "the output is Mixer, then any of Volume and Delay, in any order, then SpeakerOutput"};

bool IsOptional(const FilterLayout &filter) {
  return filter.kind == &Volume::kKind || filter.kind == &Delay::kKind;
}

bool Fits(const std::vector<FilterLayout> &filters, const Chain &chain) {
  auto begin = filters.begin();
  auto end = filters.end();
  if (begin == end || begin++->kind != chain.first) return false;
  if (chain.last != nullptr && (begin == end || (--end)->kind != chain.last)) return false;
  return std::all_of(begin, end, IsOptional);
}

std::string Names(const std::vector<FilterLayout> &filters) {
  std::string names;
  for (const FilterLayout &filter : filters) {
    names += (names.empty() ? "" : ", ") + std::string(filter.kind->name);
  }
  return names.empty() ? "no filters" : names;
}

PipelineLayout ReadPipeline(const JsonValue &value, const std::filesystem::path &directory) {
  const std::string &name = value.Name();
  if (name.empty() || name.size() > kMaxName) {
    value.Fail("the name has " + std::to_string(name.size()) + " characters; 1 to " +
               std::to_string(kMaxName) + " are allowed");
  }
  PipelineLayout pipeline{name, {}};
  for (const JsonValue &member : value.Members()) {
    FilterLayout filter = ReadFilter(member);
    if (!filter.file.empty()) filter.file = directory / filter.file;
    pipeline.filters.push_back(std::move(filter));
  }
  const Chain &chain = name == kOutputPipeline ? kOutputChain : kInputChain;
  if (!Fits(pipeline.filters, chain)) {
    value.Fail("has " + Names(pipeline.filters) + "; " + chain.text);
  }
  return pipeline;
}

}  // namespace

Layout ReadLayout(const std::string &path) {
  const JsonDocument document(path);
  const JsonValue root = document.Root();
  Layout layout;
  for (const JsonValue &member : root.Members()) {
    PipelineLayout pipeline = ReadPipeline(member, std::filesystem::path(path).parent_path());
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
