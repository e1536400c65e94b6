// SPDX-License-Identifier: Apache-2.0
#include "player/session/playback.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "player/base/player_error.h"
#include "player/filters/lpcm.h"
#include "player/filters/speaker_output.h"
#include "player/session/output_check.h"

namespace kest::player {
namespace {

// How far an input may run ahead of the output.
constexpr uint32_t kLinkFrames = 16 * kCycleFrames;
constexpr uint32_t kFastLinkFrames = 64 * kCycleFrames;

std::vector<AudioReader> OpenInputs(const Layout &layout) {
  std::vector<AudioReader> readers;
  for (const PipelineLayout &input : layout.inputs) {
    readers.emplace_back(input.filters.front().FileName(Lpcm::kFileSetting));
  }
  return readers;
}

std::string LayoutText(const AudioReader &reader) {
  return reader.Path() + " (" + std::to_string(reader.Channels()) + " channels, " +
         std::to_string(reader.SampleRate()) + " Hz)";
}

void CheckInputs(const std::vector<AudioReader> &readers, bool loop) {
  for (const AudioReader &reader : readers) {
    if (reader.Channels() > kMaxChannels) {
      throw PlayerError("unsupported layout: " + LayoutText(reader) + "; at most " +
                        std::to_string(kMaxChannels) + " channels can be played");
    }
    if (reader.Channels() != readers[0].Channels() || reader.SampleRate() != readers[0].SampleRate()) {
      throw PlayerError("inputs differ: " + LayoutText(readers[0]) + " and " + LayoutText(reader) +
                        "; convert one of them first");
    }
    if (loop && !reader.CanRewind()) {
      throw PlayerError("cannot loop over " + reader.Path() + ": it cannot be read from its start again");
    }
  }
}

// 16 bits when that holds every input exactly and --wide is not given.
PcmFormat CommonFormat(const std::vector<AudioReader> &readers, bool wide) {
  const bool all16 = !wide && std::all_of(readers.begin(), readers.end(), [](const AudioReader &reader) {
    return reader.Bits() == SampleBits::k16;
  });
  return {readers[0].Channels(), readers[0].SampleRate(), all16 ? 16u : 32u};
}

uint64_t FrameLimit(const Options &options, uint32_t sampleRate) {
  if (!options.seconds) return FilterMaterial::kNoLimit;
  return static_cast<uint64_t>(std::round(*options.seconds * sampleRate));
}

}  // namespace

Playback::Playback(const Layout &layout, const Options &options)
    : outputPath_(layout.output.filters.back().FileName(SpeakerOutput::kFileSetting)) {
  std::vector<AudioReader> readers = OpenInputs(layout);
  CheckInputs(readers, options.loop);
  CheckOutput(outputPath_, readers, options.config);
  format_ = CommonFormat(readers, options.wide);
  // In real time an input may take as long as a cycle lasts.
  if (!options.fast)
    inputPatience_ = std::chrono::microseconds(kCycleFrames * 1000000ull / format_.sampleRate);

  const uint64_t limit = FrameLimit(options, format_.sampleRate);
  Pipeline &output = Build(layout.output, {format_, readers[0], 0, options.loop, !options.fast, limit});
  output_ = &static_cast<const SpeakerOutput &>(output.LastFilter());
  // In real time what comes is used at once; with --fast a pipeline sleeps until it has work for a while.
  const uint32_t linkFrames = options.fast ? kFastLinkFrames : kLinkFrames;
  const uint32_t wakeFrames = options.fast ? kFastLinkFrames / 2 : 1;
  for (uint32_t i = 0; i < readers.size(); ++i) {
    Pipeline &input =
        Build(layout.inputs[i], {format_, readers[i], i + 1, options.loop, !options.fast, limit});
    links_.push_back(
        std::make_unique<PipelineLink>(format_, PortCapacity::ForFrames(linkFrames), wakeFrames));
    input.FeedInto(output, *links_.back());
  }
}

// No pipeline may wait for one that is already destroyed.
Playback::~Playback() {
  RequestStop();
}

Pipeline &Playback::Build(const PipelineLayout &layout, const FilterMaterial &material) {
  pipelines_.push_back(std::make_unique<Pipeline>(layout.name.c_str(), format_, inputPatience_));
  for (const FilterLayout &filter : layout.filters) {
    pipelines_.back()->Append(filter.kind->make(filter, material));
  }
  return *pipelines_.back();
}

std::vector<const Filter *> Playback::Filters() const {
  std::vector<const Filter *> filters;
  for (const auto &pipeline : pipelines_) {
    for (const auto &filter : pipeline->Filters()) {
      filters.push_back(filter.get());
    }
  }
  return filters;
}

void Playback::Start() {
  for (const auto &pipeline : pipelines_) {
    pipeline->Start();
  }
}

void Playback::RequestStop() {
  for (const auto &pipeline : pipelines_) {
    pipeline->RequestStop();
  }
}

bool Playback::HasEnded() const {
  return std::all_of(pipelines_.begin(), pipelines_.end(),
                     [](const auto &pipeline) { return pipeline->HasEnded(); });
}

void Playback::Finish() {
  std::exception_ptr failure;
  for (const auto &pipeline : pipelines_) {
    try {
      pipeline->Join();
    } catch (...) {
      if (!failure) failure = std::current_exception();
    }
  }
  if (failure) std::rethrow_exception(failure);
}

double Playback::SecondsPlayed() const {
  return static_cast<double>(output_->FramesPlayed()) / format_.sampleRate;
}

std::string Playback::Summary() const {
  const MetadataCounter &metadata = output_->Metadata();
  const std::string order = metadata.OutOfOrder() == 0
                                ? "in order"
                                : "(" + std::to_string(metadata.OutOfOrder()) + " out of order)";
  char seconds[32];
  std::snprintf(seconds, sizeof(seconds), "%.2f s", SecondsPlayed());
  return "played " + std::to_string(output_->FramesPlayed()) + " frames (" + seconds + ") and " +
         std::to_string(metadata.Blocks()) + " metadata blocks " + order + " to " + outputPath_;
}

}  // namespace kest::player
