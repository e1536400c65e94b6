// SPDX-License-Identifier: Apache-2.0
// The metadata that travels with the PCM: one block for every ZE_KEST_METADATA_SAMPLES frames of an input.
#pragma once

#include <cstdint>

#include "ze_kest/model.h"

namespace kest::player {

struct MetadataBlock {
  uint32_t source;         // the tag: number of the input that made it, from 1
  uint32_t payloadLength;  // bytes after the header
  uint32_t reserved[2];
  uint64_t number;         // counted from 0, within its source
  uint64_t framePosition;  // of the first of its frames, within its source
};

// All blocks have one size, so a ring of whole blocks never splits one.
constexpr uint32_t kMetadataBlockBytes = sizeof(MetadataBlock);
constexpr uint32_t kMetadataPayloadBytes = kMetadataBlockBytes - ZE_KEST_METADATA_HEADER_SIZE;
static_assert(kMetadataBlockBytes == ZE_KEST_METADATA_HEADER_SIZE + 2 * sizeof(uint64_t));

}  // namespace kest::player
