// SPDX-License-Identifier: Apache-2.0
#include "player/session/playback.h"

#include <algorithm>
#include <cstdio>

#include "player/base/player_error.h"
#include "player/filters/speaker_output.h"
#include "player/session/inputs.h"
#include "player/session/output_check.h"

namespace kest::player {
namespace {

// How far an input may run ahead of the output.
constexpr uint32_t kLinkFrames = 16 * kCycleFrames;
constexpr uint32_t kFastLinkFrames = 64 * kCycleFrames;

// 16 bits when that holds every input exactly and --wide is not given.
uint32_t BitsOfPorts(const std::vector<AudioReader> &readers, bool wide) {
  const bool all16 = !wide && std::all_of(readers.begin(), readers.end(), [](const AudioReader &reader) {
    return reader.Bits() == SampleBits::k16;
  });
  return all16 ? 16 : 32;
}

// Each input as its filters leave it.
void CheckAgreement(const std::vector<std::string> &names, const std::vector<PcmFormat> &formats) {
  const auto textOf = [&](size_t input) {
    return FormatText(names[input], formats[input].channels, formats[input].sampleRate);
  };
  for (size_t input = 1; input < formats.size(); ++input) {
    if (formats[input] == formats[0]) continue;
    throw PlayerError("inputs differ: " + textOf(0) + " and " + textOf(input) +
                      "; convert one of them with Src or DownMix");
  }
}

}  // namespace

Playback::Playback(const Layout &layout, const Options &options, int endFd)
    : outputPath_(layout.output.filters.back().FileName(SpeakerOutput::kFileSetting)) {
  std::vector<AudioReader> readers = OpenInputs(layout, options.loop, endFd);
  CheckOutput(outputPath_, readers, options.config);
  const FilterMaterial material = {{},           nullptr,       readers[0].Bits(), 0,
                                   options.loop, !options.fast, options.seconds};
  BuildInputs(layout, readers, material, BitsOfPorts(readers, options.wide));
  BuildOutput(layout, material);
}

void Playback::BuildInputs(const Layout &layout, std::vector<AudioReader> &readers, FilterMaterial material,
                           uint32_t bitsOfPorts) {
  std::vector<std::string> names;
  std::vector<PcmFormat> formats;
  for (AudioReader &reader : readers) {
    names.push_back(reader.Name());
    material.format = {reader.Channels(), reader.SampleRate(), bitsOfPorts};
    material.reader = &reader;
    const PipelineLayout &input = layout.inputs[material.source++];
    pipelines_.push_back(Build(input, material, std::nullopt));
    formats.push_back(pipelines_.back()->OutputFormat());
  }
  CheckAgreement(names, formats);
}

void Playback::BuildOutput(const Layout &layout, FilterMaterial material) {
  material.format = pipelines_.front()->OutputFormat();
  // In real time an input may take as long as a cycle lasts.
  PipelineLink::Patience patience;
  if (material.realTime)
    patience = std::chrono::microseconds(kCycleFrames * 1000000ull / material.format.sampleRate);
  auto output = Build(layout.output, material, patience);
  output_ = &static_cast<const SpeakerOutput &>(output->LastFilter());
  // In real time what comes is used at once; with --fast a pipeline sleeps until it has work for a while.
  const uint32_t linkFrames = material.realTime ? kLinkFrames : kFastLinkFrames;
  const uint32_t wakeFrames = material.realTime ? 1 : kFastLinkFrames / 2;
  for (const auto &input : pipelines_) {
    links_.push_back(
        std::make_unique<PipelineLink>(material.format, PortCapacity::ForFrames(linkFrames), wakeFrames));
    input->FeedInto(*output, *links_.back());
  }
  pipelines_.insert(pipelines_.begin(), std::move(output));
}

// No pipeline may wait for one that is already destroyed.
Playback::~Playback() {
  RequestStop();
}

std::unique_ptr<Pipeline> Playback::Build(const PipelineLayout &layout, FilterMaterial material,
                                          PipelineLink::Patience inputPatience) {
  auto pipeline = std::make_unique<Pipeline>(layout.name.c_str(), inputPatience);
  for (const FilterLayout &filter : layout.filters) {
    pipeline->Append(filter.kind->make(filter, material));
    material.format = pipeline->OutputFormat();
  }
  return pipeline;
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
  return pipelines_.front()->HasEnded();
}

// Once the output has ended, an input may still wait for a stream.
void Playback::Finish() {
  std::exception_ptr failure;
  for (const auto &pipeline : pipelines_) {
    try {
      pipeline->Join();
    } catch (...) {
      if (!failure) failure = std::current_exception();
    }
    RequestStop();
  }
  if (failure) std::rethrow_exception(failure);
}

double Playback::SecondsPlayed() const {
  return output_->SecondsPlayed();
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
