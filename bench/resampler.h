// SPDX-License-Identifier: Apache-2.0
// libswresample used to convert sample formats only: rate and channels stay the same.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

extern "C" {
#include <libswresample/swresample.h>
}

namespace kest::bench {

constexpr uint32_t kMaxChannels = 10;

class Resampler {
 public:
  Resampler(AVSampleFormat eIn, AVSampleFormat eOut, uint32_t u32Channels);

  // The planes of one side; for an interleaved side the first plane holds all channels.
  using Planes = std::array<uint8_t *, kMaxChannels>;
  void Convert(const Planes &out, const Planes &in, uint32_t u32Frames) const;

 private:
  struct Free {
    void operator()(SwrContext *pstContext) const { swr_free(&pstContext); }
  };
  std::unique_ptr<SwrContext, Free> context_;
};

}  // namespace kest::bench
