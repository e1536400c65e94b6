// SPDX-License-Identifier: Apache-2.0
// A stream through a rig: how it is split into turns, and what comes out.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "player/check/rig.h"

namespace kest::player {

// Samples that are fed before each turn.
class Splits {
 public:
  // 0: random, 1 to most.
  Splits(uint32_t samples, uint32_t seed, uint32_t most = 256)
      : samples_(samples), seed_(seed), most_(most) {}
  uint32_t Next();

 private:
  uint32_t samples_;
  uint32_t seed_;
  uint32_t most_;
};

struct TakenBlock {
  uint64_t number;
  bool isIntact;
};

struct Stream {
  Samples out;
  std::vector<TakenBlock> blocks;
  uint64_t fed = 0;
  uint64_t blocksFed = 0;  // one with the first of every 256 samples, where the ports have metadata
  uint64_t read = 0;
  uint64_t written = 0;
  std::string stall;  // why it did not come to its end, "" when it did
};

Samples Noise(const Rig &rig, uint32_t frames, uint32_t seed);
// A quarter of full scale, so that a filter with a little gain does not saturate.
Samples QuietNoise(const Rig &rig, uint32_t frames, uint32_t seed);

// Feeds all of it and takes what comes out; the end is not announced. A part of the input may stay unread.
void Feed(Rig &rig, const Samples &in, Splits splits, Stream &stream);
// Announces the end and takes turns until the filter is done.
void End(Rig &rig, Stream &stream);
// Both on a new rig.
Stream Run(const Subject &subject, const Shape &shape, const Samples &in, Splits splits);

// Takes the output's frames and metadata into the stream.
void TakeAll(Rig &rig, Stream &stream);

// The first difference in words, "" when they are the same.
std::string Difference(const Samples &a, const Samples &b, uint32_t channels);

}  // namespace kest::player
