// SPDX-License-Identifier: Apache-2.0
#include "player/session/inputs.h"

#include <algorithm>
#include <memory>

#include "player/audio/wav_header.h"
#include "player/base/player_error.h"
#include "player/filters/lpcm.h"

namespace kest::player {
namespace {

bool IsStream(const FilterLayout &input) {
  return StandardInput::IsMeantBy(input.FileName(Lpcm::kFileSetting));
}

// Before anything waits for a stream.
void CheckStreams(const Layout &layout, bool loop) {
  const auto streams = std::count_if(layout.inputs.begin(), layout.inputs.end(),
                                     [](const auto &input) { return IsStream(input.filters.front()); });
  if (streams > 1) throw PlayerError("standard input, \"-\", can be one input only");
  if (streams > 0 && loop)
    throw PlayerError("cannot loop over standard input: it cannot be read from its start again");
  for (const PipelineLayout &input : layout.inputs) {
    const FilterLayout &lpcm = input.filters.front();
    if (IsStream(lpcm) || lpcm.Text(Lpcm::kRawSetting).empty()) continue;
    throw PlayerError(input.name + ": only standard input, \"-\", can be raw; let " +
                      lpcm.FileName(Lpcm::kFileSetting) + " be standard input");
  }
}

AudioReader OpenStream(const std::string &raw, int endFd) {
  StreamFormat format{};
  if (!raw.empty()) format = ParseRawFormat(raw);
  auto stream = std::make_unique<StandardInput>();
  if (raw.empty()) {
    stream->EndWaitsBy(endFd);
    format = ReadWavHeader(*stream);
    stream->EndWaitsBy(-1);
  }
  return {std::move(stream), format};
}

AudioReader Open(const FilterLayout &lpcm, int endFd) {
  if (IsStream(lpcm)) return OpenStream(lpcm.Text(Lpcm::kRawSetting), endFd);
  return AudioReader(lpcm.FileName(Lpcm::kFileSetting));
}

void CheckReader(const AudioReader &reader, bool loop) {
  if (reader.Channels() > kMaxChannels) {
    throw PlayerError(
        "unsupported layout: " + FormatText(reader.Name(), reader.Channels(), reader.SampleRate()) +
        "; at most " + std::to_string(kMaxChannels) + " channels can be played");
  }
  if (loop && !reader.CanRewind()) {
    throw PlayerError("cannot loop over " + reader.Name() + ": it cannot be read from its start again");
  }
}

}  // namespace

std::string FormatText(const std::string &name, uint32_t channels, uint32_t sampleRate) {
  return name + " (" + std::to_string(channels) + " channels, " + std::to_string(sampleRate) + " Hz)";
}

std::vector<AudioReader> OpenInputs(const Layout &layout, bool loop, int endFd) {
  CheckStreams(layout, loop);
  std::vector<AudioReader> readers;
  readers.reserve(layout.inputs.size());
  for (const PipelineLayout &input : layout.inputs) {
    readers.push_back(Open(input.filters.front(), endFd));
  }
  for (const AudioReader &reader : readers) {
    CheckReader(reader, loop);
  }
  return readers;
}

}  // namespace kest::player
