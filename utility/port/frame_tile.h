// SPDX-License-Identifier: Apache-2.0
// A tile moves a few samples of a few channels at once between rings and the frames of a linear buffer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

// A tile stays in registers only if all its parts are inlined into one function.
#define KEST_TILE_PART __attribute__((always_inline)) inline

// On x86-64 the code that runs tiles is also flattened into one function: code compiled for AVX2 cannot be
// inlined into code that is not, and a call per tile would cost as much as the tile.
#ifdef __x86_64__
#define KEST_RUNS_TILES __attribute__((target("avx2"), flatten))
#else
#define KEST_RUNS_TILES
#endif

namespace kest {

inline bool TilesRun() {
#ifdef __x86_64__
  return __builtin_cpu_supports("avx2") != 0;
#else
  return true;
#endif
}

// The next sample of a channel, in its ring and in a frame. The channels after it follow at equal distances.
template <typename Kernel>
struct FramePlace {
  typename Kernel::Ring *pu8Ring;
  size_t sztRingPitch;  // bytes from one channel's ring to the next one's
  typename Kernel::Linear *pu8Linear;
  size_t sztStep;  // bytes from frame to frame

  void Skip(size_t sztFrames) {
    pu8Ring += sztFrames * Kernel::kRingBytes;
    pu8Linear += sztFrames * sztStep;
  }
  [[nodiscard]] typename Kernel::Ring *RingOf(size_t sztChannel) const {
    return pu8Ring + sztChannel * sztRingPitch;
  }
  [[nodiscard]] typename Kernel::Linear *Frame(size_t sztFrame) const {
    return pu8Linear + sztFrame * sztStep;
  }
  [[nodiscard]] FramePlace Channel(uint32_t u32Channel) const {
    return {RingOf(u32Channel), sztRingPitch, pu8Linear + u32Channel * Kernel::kLinearBytes, sztStep};
  }
};

struct NoTile {
  static constexpr size_t kFrames = 0;
};

// Moves kFrames frames of kChannels channels with the same result as the kernel sample by sample.
// kWholeFrames: the frames hold no other channels. The instruction sets provide specialisations.
template <typename Kernel, uint32_t kChannels, bool kWholeFrames, typename Enable = void>
struct FrameTile : NoTile {};

template <typename Kernel>
using IfOf16 = std::enable_if_t<Kernel::kLinearBytes == 2>;
template <typename Kernel>
using IfOf32 = std::enable_if_t<Kernel::kLinearBytes == 4>;
template <typename Kernel>
using If24 = std::enable_if_t<Kernel::kLinearBytes == 3>;
template <typename Kernel>
using IfNot24 = std::enable_if_t<Kernel::kLinearBytes != 3>;

// The number of channels of the widest tile that moves part of a frame.
inline constexpr uint32_t kMostTileChannels = 8;

}  // namespace kest
