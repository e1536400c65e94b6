// SPDX-License-Identifier: Apache-2.0
// Where the sound of a run goes.
#pragma once

#include <cstdint>

namespace kest::player {

// The width of a file's samples. Floating-point and lossy formats count as 32 bits.
enum class SampleBits : uint32_t { k16 = 16, k24 = 24, k32 = 32 };

struct AudioFormat {
  uint32_t channels;
  uint32_t sampleRate;  // Hz
  SampleBits bits;
};

class AudioSink {
 public:
  AudioSink() = default;
  virtual ~AudioSink() = default;
  AudioSink(const AudioSink &) = delete;
  AudioSink &operator=(const AudioSink &) = delete;

  // Whether its writes wait until the frames are due.
  [[nodiscard]] virtual bool SetsThePace() const { return false; }

  // Write interleaved frames with left-aligned samples, all of one width. False when the device had run empty
  // before; the frames are written all the same. Throw PlayerError unless all were written.
  virtual bool Write(const int16_t *interleaved, uint32_t frames) = 0;
  virtual bool Write(const int32_t *interleaved, uint32_t frames) = 0;

  // Completes what was written. Throws PlayerError when that fails.
  virtual void Close() = 0;
};

}  // namespace kest::player
