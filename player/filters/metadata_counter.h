// SPDX-License-Identifier: Apache-2.0
// Counts the metadata blocks that reach an output and checks their order.
#pragma once

#include <cstdint>

#include "player/framework/metadata_block.h"

namespace kest::player {

class MetadataCounter {
 public:
  void Count(const MetadataBlock &block);

  [[nodiscard]] uint64_t Blocks() const { return blocks_; }
  [[nodiscard]] uint64_t OutOfOrder() const { return outOfOrder_; }

 private:
  uint64_t blocks_ = 0;
  uint64_t outOfOrder_ = 0;
  MetadataBlock latest_{};
};

}  // namespace kest::player
