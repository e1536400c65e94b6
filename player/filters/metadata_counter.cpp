// SPDX-License-Identifier: Apache-2.0
#include "player/filters/metadata_counter.h"

namespace kest::player {

// Sources follow each other from the first to the last; a later one begins wherever it has got to.
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
