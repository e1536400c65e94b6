// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstring>

#include "ze_kest/port.h"

#include "utility/core/report.h"
#include "utility/port/port_walk.h"
#include "utility/port/ring_position.h"

namespace {

// The part of a block's header that the library reads.
struct BlockHeader {
  uint32_t u32Tag;
  uint32_t u32Payload;
};

struct BlockWalk {
  uint32_t u32Bytes;          // total size of the blocks
  uint32_t u32LastBlockSize;  // of the last block with a payload; 0: there was none
};

uint32_t ReadPosition(const ZE_KEST_DataBuffer_s &stMeta) {
  return kest::WrapOnce(stMeta.sztReadOffset + stMeta.sztReadSize, stMeta.sztSize);
}

// Returns false when there is no complete header at the position.
bool ReadHeader(const ZE_KEST_DataBuffer_s &stMeta, uint32_t u32Position, BlockHeader &stHeader) {
  if (stMeta.pu8Buf == nullptr || u32Position > stMeta.sztSize) return false;
  if (stMeta.sztSize - u32Position < ZE_KEST_METADATA_HEADER_SIZE) return false;
  memcpy(&stHeader, stMeta.pu8Buf + u32Position, sizeof(stHeader));
  return true;
}

// Walks the next u32Blocks blocks, but not past the block that reaches the end of the held data.
BlockWalk WalkBlocks(const ZE_KEST_DataBuffer_s &stMeta, uint32_t u32Blocks) {
  const uint32_t u32Held = stMeta.sztLevel - stMeta.sztReadSize;
  uint32_t u32Position = ReadPosition(stMeta);
  BlockWalk stWalk = {};
  BlockHeader stHeader = {};
  for (; u32Blocks != 0 && ReadHeader(stMeta, u32Position, stHeader); --u32Blocks) {
    // A block without a payload counts as 0 bytes, so the walk could not advance past it.
    if (stHeader.u32Payload == 0) break;
    const uint32_t u32Size = stHeader.u32Payload + ZE_KEST_METADATA_HEADER_SIZE;
    if (u32Size < stHeader.u32Payload) break;  // the sum has wrapped
    stWalk.u32Bytes += u32Size;
    stWalk.u32LastBlockSize = u32Size;
    if (stWalk.u32Bytes >= u32Held) break;
    u32Position = kest::WrapOnce(u32Position + u32Size, stMeta.sztSize);
  }
  return stWalk;
}

}  // namespace

uint32_t ze_kest_Utility_ReadOneBlockInputPortMetadataBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                             uint32_t u32PortIdx, uint32_t /*u32Unused*/,
                                                             uint32_t *pu32Tag, uint32_t *pu32BlockSize) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  const ZE_KEST_Port_s *pstPort = kest::InputSide(*pstFilter).ServedAt(u32PortIdx);
  if (pstPort == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  KEST_REQUIRE(pu32Tag != nullptr, "pu32Tag is NULL.\n");
  KEST_REQUIRE(pu32BlockSize != nullptr, "pu32BlockSize is NULL.\n");

  BlockHeader stHeader = {};
  if (!ReadHeader(pstPort->stMeta, ReadPosition(pstPort->stMeta), stHeader)) return ZE_KEST_INVALID_ARGUMENT;
  *pu32Tag = stHeader.u32Tag;
  *pu32BlockSize = stHeader.u32Payload + ZE_KEST_METADATA_HEADER_SIZE;
  return ZE_KEST_OK;
}

uint32_t ze_kest_Utility_QueryInputPortMetadataLen(const ZE_KEST_Filter_s *pstFilter, uint32_t u32PortIdx,
                                                   uint32_t sztSamples, uint32_t *pu32Len,
                                                   uint32_t *pu32LastBlockSize) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  const ZE_KEST_Port_s *pstPort = kest::InputSide(*pstFilter).ServedAt(u32PortIdx);
  if (pstPort == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  KEST_REQUIRE(pu32Len != nullptr, "pu32Len is NULL.\n");
  KEST_REQUIRE(pu32LastBlockSize != nullptr, "pu32LastBlockSize is NULL.\n");

  const BlockWalk stWalk = WalkBlocks(pstPort->stMeta, sztSamples / ZE_KEST_METADATA_SAMPLES);
  *pu32Len = stWalk.u32Bytes;
  if (stWalk.u32LastBlockSize != 0) *pu32LastBlockSize = stWalk.u32LastBlockSize;
  return ZE_KEST_OK;
}

uint32_t ze_kest_Utility_QueryInputMinMetaProcessSize(const ZE_KEST_Filter_s *pstFilter, uint32_t sztSamples,
                                                      uint32_t u32MaxBytes, uint32_t *pu32Remainder) {
  if (pstFilter == nullptr || pu32Remainder == nullptr) return 0;
  const uint32_t u32Samples = *pu32Remainder + sztSamples;
  *pu32Remainder = u32Samples % ZE_KEST_METADATA_SAMPLES;
  const ZE_KEST_Port_s *pstPort = kest::InputSide(*pstFilter).At(0);
  if (pstPort == nullptr) return 0;

  const BlockWalk stWalk = WalkBlocks(pstPort->stMeta, u32Samples / ZE_KEST_METADATA_SAMPLES);
  if (stWalk.u32LastBlockSize == 0) return 0;
  return std::min(stWalk.u32Bytes, u32MaxBytes - u32MaxBytes % stWalk.u32LastBlockSize);
}
