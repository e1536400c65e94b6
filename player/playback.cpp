// SPDX-License-Identifier: Apache-2.0
#include "player/playback.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <sys/stat.h>

#include "player/filters/delay.h"
#include "player/filters/lpcm.h"
#include "player/filters/mixer.h"
#include "player/filters/speaker_output.h"
#include "player/filters/volume.h"
#include "player/player_error.h"

namespace kest::player {
namespace {

constexpr uint32_t kFirstDecoder = 13;
constexpr uint32_t kLinkFrames = 16 * kCycleFrames;

std::vector<AudioReader> OpenInputs(const Options &options) {
  std::vector<AudioReader> readers;
  for (const std::string &path : options.inputs) {
    readers.emplace_back(path);
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

void CheckOutputIsNoInput(const std::vector<AudioReader> &readers, const std::string &output) {
  struct stat outputStat {};
  if (stat(output.c_str(), &outputStat) != 0) return;
  for (const AudioReader &reader : readers) {
    struct stat inputStat {};
    if (fstat(reader.Descriptor(), &inputStat) == 0 && inputStat.st_dev == outputStat.st_dev &&
        inputStat.st_ino == outputStat.st_ino) {
      throw PlayerError("the output " + output + " is also an input; choose another output");
    }
  }
}

// 16 bits when that holds every input exactly, unless more are asked for.
PcmFormat CommonFormat(const std::vector<AudioReader> &readers, bool wide) {
  const bool all16 = !wide && std::all_of(readers.begin(), readers.end(), [](const AudioReader &reader) {
    return reader.Bits() == SampleBits::k16;
  });
  return {readers[0].Channels(), readers[0].SampleRate(), all16 ? 16u : 32u};
}

uint64_t FrameLimit(const Options &options, uint32_t sampleRate) {
  if (!options.seconds) return SpeakerOutput::kNoLimit;
  return static_cast<uint64_t>(std::ceil(*options.seconds * sampleRate));
}

}  // namespace

Playback::Playback(const Options &options) : outputPath_(options.output) {
  std::vector<AudioReader> readers = OpenInputs(options);
  CheckInputs(readers, options.loop);
  CheckOutputIsNoInput(readers, options.output);
  format_ = CommonFormat(readers, options.wide);
  // In real time an input has as long as a cycle lasts.
  if (!options.fast)
    inputPatience_ = std::chrono::microseconds(kCycleFrames * 1000000ull / format_.sampleRate);

  BuildOutput(options, readers[0]);
  for (uint32_t i = 0; i < readers.size(); ++i) {
    BuildDecoder(options, std::move(readers[i]), i + 1);
  }
}

// Nobody may wait for a pipeline that is gone.
Playback::~Playback() {
  RequestStop();
}

void Playback::BuildOutput(const Options &options, const AudioReader &model) {
  auto delay = std::make_unique<Delay>(format_);
  delay->SetDelayMs(options.delayMs);
  auto output = std::make_unique<SpeakerOutput>(format_, AudioWriter(options.output, model),
                                                FrameLimit(options, format_.sampleRate), !options.fast);
  output_ = output.get();
  auto pipeline = std::make_unique<Pipeline>("SpeakerOutput", format_, inputPatience_);
  pipeline->Append(std::make_unique<Mixer>(format_));
  pipeline->Append(std::move(delay));
  pipeline->Append(std::move(output));
  pipelines_.push_back(std::move(pipeline));
}

void Playback::BuildDecoder(const Options &options, AudioReader reader, uint32_t source) {
  auto volume = std::make_unique<Volume>(format_);
  volume->SetGainDb(options.gainDb);
  const std::string name = "Decoder_" + std::to_string(kFirstDecoder + source - 1);
  auto pipeline = std::make_unique<Pipeline>(name.c_str(), format_, inputPatience_);
  pipeline->Append(std::make_unique<Lpcm>(format_, std::move(reader), source, options.loop));
  pipeline->Append(std::move(volume));

  links_.push_back(std::make_unique<PipelineLink>(format_, PortCapacity::ForFrames(kLinkFrames)));
  pipeline->FeedInto(*pipelines_.front(), *links_.back());
  pipelines_.push_back(std::move(pipeline));
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
