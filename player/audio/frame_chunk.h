// SPDX-License-Identifier: Apache-2.0
// Interleaved frames between a file and the cycles: a file is read and written in larger pieces than a
// cycle's, because each piece costs a system call.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <vector>

namespace kest::player {

template <typename Sample>
class FrameChunk {
 public:
  static constexpr uint32_t kFrames = 4096;

  [[nodiscard]] uint32_t Held() const { return end_ - begin_; }
  [[nodiscard]] uint32_t Room() const { return kFrames - end_; }
  void Clear() { begin_ = end_ = 0; }

  // Appends as many of the frames as there is room for, and returns how many.
  uint32_t Append(const Sample *interleaved, uint32_t frames, uint32_t channels) {
    frames = std::min(frames, Room());
    std::copy_n(interleaved, size_t{frames} * channels, At(end_, channels));
    end_ += frames;
    return frames;
  }

  // Takes at most so many frames out, and returns how many.
  uint32_t Take(Sample *interleaved, uint32_t frames, uint32_t channels) {
    frames = std::min(frames, Held());
    std::copy_n(At(begin_, channels), size_t{frames} * channels, interleaved);
    begin_ += frames;
    return frames;
  }

  // Replaces the contents by what fill(samples, frames), which returns a number of frames, puts there.
  template <typename FillFrames>
  void Fill(uint32_t channels, FillFrames &&fill) {
    Clear();
    end_ = fill(At(0, channels), kFrames);
  }

  // Empties the chunk into drain(samples, frames).
  template <typename DrainFrames>
  void Drain(uint32_t channels, DrainFrames &&drain) {
    if (Held() > 0) drain(At(begin_, channels), Held());
    Clear();
  }

 private:
  // Memory comes with the first use: a run uses one of the sample types.
  Sample *At(uint32_t frame, uint32_t channels) {
    samples_.resize(size_t{kFrames} * channels);
    return samples_.data() + size_t{frame} * channels;
  }

  std::vector<Sample> samples_;
  uint32_t begin_ = 0;
  uint32_t end_ = 0;
};

using FrameChunks = std::tuple<FrameChunk<int16_t>, FrameChunk<int32_t>>;

}  // namespace kest::player
