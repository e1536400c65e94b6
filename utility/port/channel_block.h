// SPDX-License-Identifier: Apache-2.0
// Moves the samples of several channels between rings that are equally spaced in memory and the frames of a
// linear buffer in which the channels are adjacent.
//
// The frames are traversed once, in pieces of kFramesAtOnce. Within a piece the channels are handled in
// strips, each as wide as the widest tile that fits. Whatever does not fill a tile is moved sample by sample.
#pragma once

#include <algorithm>

#include "utility/port/frame_tile.h"
#include "utility/port/frame_tile_avx2.h"
#include "utility/port/frame_tile_neon.h"
#include "utility/port/packed_tile_avx2.h"
#include "utility/port/packed_tile_neon.h"
#include "utility/port/ring_plan.h"

namespace kest {

template <typename Ring, typename Linear>
struct ChannelBlock {
  Ring *pu8Ring;  // of the first channel
  size_t sztRingPitch;
  Linear *pu8Linear;   // the first channel's first sample
  uint32_t u32Stride;  // samples per frame; with 1 the block has one channel
  uint32_t u32Channels;
};

// Few enough that the frames are still in the cache when the next strip of channels is moved.
inline constexpr size_t kFramesAtOnce = 256;

// The tiles must give the same result.
template <typename Kernel>
void MoveSampleBySample(FramePlace<Kernel> stPlace, size_t sztFrames) {
  for (; sztFrames != 0; --sztFrames) {
    Kernel::Move(stPlace.pu8Ring, stPlace.pu8Linear);
    stPlace.Skip(1);
  }
}

// Requires at least Tile::kFrames frames.
template <typename Tile, typename Kernel>
void MoveTiles(FramePlace<Kernel> stPlace, size_t sztFrames) {
  const size_t sztTiles = sztFrames / Tile::kFrames;
  const size_t sztRest = sztFrames % Tile::kFrames;
  Tile::Move(stPlace, sztTiles);
  if (sztRest == 0) return;
  // The last tile overlaps the one before it and moves some frames a second time.
  stPlace.Skip(sztFrames - Tile::kFrames);
  Tile::Move(stPlace, 1);
}

template <typename Kernel, uint32_t kChannels, bool kWholeFrames>
void MoveStrip(const FramePlace<Kernel> &stPlace, size_t sztFrames) {
  using Tile = FrameTile<Kernel, kChannels, kWholeFrames>;
  if constexpr (Tile::kFrames != 0) {
    if (sztFrames >= Tile::kFrames) return MoveTiles<Tile>(stPlace, sztFrames);
  }
  for (uint32_t u32Channel = 0; u32Channel < kChannels; ++u32Channel)
    MoveSampleBySample(stPlace.Channel(u32Channel), sztFrames);
}

// Moves the channels in strips of kMost channels, then the rest in ever narrower ones.
template <typename Kernel, uint32_t kMost>
void MoveStrips(FramePlace<Kernel> stPlace, uint32_t u32Channels, size_t sztFrames) {
  if constexpr (kMost == 1 || FrameTile<Kernel, kMost, false>::kFrames != 0) {
    for (; u32Channels >= kMost; u32Channels -= kMost) {
      MoveStrip<Kernel, kMost, false>(stPlace, sztFrames);
      stPlace = stPlace.Channel(kMost);
    }
  }
  if constexpr (kMost > 1) MoveStrips<Kernel, kMost / 2>(stPlace, u32Channels, sztFrames);
}

template <typename Kernel>
void MoveInPieces(FramePlace<Kernel> stPlace, uint32_t u32Channels, size_t sztFrames) {
  while (sztFrames != 0) {
    const size_t sztPiece = std::min(sztFrames, kFramesAtOnce);
    MoveStrips<Kernel, kMostTileChannels>(stPlace, u32Channels, sztPiece);
    stPlace.Skip(sztPiece);
    sztFrames -= sztPiece;
  }
}

// Special tiles for the model's group sizes, 2 and 10 channels. They apply only if a frame holds no other
// channels. Returns false if they do not apply.
template <typename Kernel, uint32_t kChannels>
bool MovedAsWholeFrames(const FramePlace<Kernel> &stPlace, uint32_t u32Channels, size_t sztFrames) {
  if constexpr (FrameTile<Kernel, kChannels, true>::kFrames == 0) return false;
  if (u32Channels != kChannels || stPlace.sztStep != kChannels * Kernel::kLinearBytes) return false;
  MoveStrip<Kernel, kChannels, true>(stPlace, sztFrames);
  return true;
}

template <typename Kernel>
KEST_RUNS_TILES void MoveWithTiles(const FramePlace<Kernel> &stPlace, uint32_t u32Channels,
                                   size_t sztFrames) {
  if (MovedAsWholeFrames<Kernel, 2>(stPlace, u32Channels, sztFrames)) return;
  if (MovedAsWholeFrames<Kernel, 10>(stPlace, u32Channels, sztFrames)) return;
  MoveInPieces(stPlace, u32Channels, sztFrames);
}

template <typename Kernel>
void MoveFrames(const FramePlace<Kernel> &stPlace, uint32_t u32Channels, size_t sztFrames) {
  if (TilesRun()) return MoveWithTiles(stPlace, u32Channels, sztFrames);
  for (uint32_t u32Channel = 0; u32Channel < u32Channels; ++u32Channel)
    MoveSampleBySample(stPlace.Channel(u32Channel), sztFrames);
}

// Returns the linear position after the segment, where the frames of the next segment begin.
template <typename Kernel>
typename Kernel::Linear *MoveSegment(const FramePlace<Kernel> &stPlace, const RingSegment &stSegment,
                                     uint32_t u32Channels) {
  MoveFrames(stPlace, u32Channels, stSegment.sztWhole);
  FramePlace<Kernel> stEnd = stPlace;
  stEnd.Skip(stSegment.sztWhole);
  if (stSegment.sztCut == 0) return stEnd.pu8Linear;
  for (uint32_t u32Channel = 0; u32Channel < u32Channels; ++u32Channel) {
    const FramePlace<Kernel> stChannel = stEnd.Channel(u32Channel);
    Kernel::MoveCut(stChannel.pu8Ring, stChannel.pu8Linear, stSegment.sztCut);
  }
  return stEnd.pu8Linear + stEnd.sztStep;
}

// Moves a block according to a plan whose unit is the kernel's sample width in the ring.
template <typename Kernel>
void MoveBlock(const ChannelBlock<typename Kernel::Ring, typename Kernel::Linear> &stBlock,
               const RingPlan &stPlan) {
  FramePlace<Kernel> stPlace = {stBlock.pu8Ring + stPlan.sztStart, stBlock.sztRingPitch, stBlock.pu8Linear,
                                stBlock.u32Stride * Kernel::kLinearBytes};
  stPlace.pu8Linear = MoveSegment(stPlace, stPlan.stFirst, stBlock.u32Channels);
  if (stPlan.stSecond.sztWhole + stPlan.stSecond.sztCut == 0) return;
  stPlace.pu8Ring = stBlock.pu8Ring;
  MoveSegment(stPlace, stPlan.stSecond, stBlock.u32Channels);
}

}  // namespace kest
