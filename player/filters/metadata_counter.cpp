// SPDX-License-Identifier: Apache-2.0
#include "player/filters/metadata_counter.h"

namespace kest::player {

// Blocks come ordered by source. A source may begin with any number: the mixer has consumed the earlier ones.
void MetadataCounter::Count(const MetadataBlock &block) {
  const bool follows =
      block.source == latest_.source ? block.number == latest_.number + 1 : block.source > latest_.source;
  const bool intact = block.payloadLength == kMetadataPayloadBytes &&
                      block.framePosition == block.number * ZE_KEST_METADATA_SAMPLES;
  if (!follows || !intact) ++outOfOrder_;
  ++blocks_;
  latest_ = block;
}

}  // namespace kest::player
