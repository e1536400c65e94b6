// SPDX-License-Identifier: Apache-2.0
// Writes the metadata of a source to a filter's outputs, a block for every ZE_KEST_METADATA_SAMPLES frames.
#pragma once

#include <cstdint>

#include "ze_kest/model.h"

#include "player/framework/metadata_block.h"

namespace kest::player {

class MetadataWriter {
 public:
  explicit MetadataWriter(uint32_t source);

  void SetSource(uint32_t source) { block_.source = source; }
  // Accounts for what it writes. Gives the number of blocks.
  uint32_t Write(ZE_KEST_Filter_s &filter, uint32_t frames);

 private:
  uint32_t framesOfBlock_ = 0;  // already written of the next block
  MetadataBlock block_{};
};

}  // namespace kest::player
