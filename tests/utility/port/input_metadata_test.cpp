// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ports.h"

namespace {

constexpr uint32_t kRing = 128;
constexpr uint32_t kUntouched = 77;
using Pair = std::pair<uint32_t, uint32_t>;

// A metadata ring on input port 0.
class InputMetadata : public testing::Test {
 protected:
  // One block after the other from an offset on, behind 16 bytes that this cycle has consumed.
  void Put(uint32_t u32Offset, const std::vector<uint32_t> &payloads) {
    stMeta.sztReadOffset = u32Offset - 16;
    stMeta.sztLevel = stMeta.sztReadSize = 16;
    for (const uint32_t u32Payload : payloads) {
      const uint32_t au32Header[] = {0xC0DE0000 + u32Payload, u32Payload};
      memcpy(stMeta.pu8Buf + u32Offset % kRing, au32Header, sizeof(au32Header));
      u32Offset += u32Payload + 16;
      stMeta.sztLevel += u32Payload + 16;
    }
  }
  Pair Block() {
    Pair block(kUntouched, kUntouched);
    const uint32_t u32Result =
        ze_kest_Utility_ReadOneBlockInputPortMetadataBuffer(filter, 0, 9, &block.first, &block.second);
    EXPECT_EQ(block.second == kUntouched ? ZE_KEST_INVALID_ARGUMENT : ZE_KEST_OK, u32Result);
    return block;
  }
  Pair Length(uint32_t sztSamples) {
    Pair length(kUntouched, kUntouched);
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_QueryInputPortMetadataLen(filter, 0, sztSamples, &length.first,
                                                                    &length.second));
    return length;
  }
  uint32_t Step(uint32_t sztSamples, uint32_t u32MaxBytes) {
    return ze_kest_Utility_QueryInputMinMetaProcessSize(filter, sztSamples, u32MaxBytes, &u32Remainder);
  }

  kest::test::Filter filter;
  ZE_KEST_DataBuffer_s &stMeta = filter.In(0).Ring(&ZE_KEST_Port_s::stMeta, kRing);
  uint32_t u32Remainder = 0;
};

}  // namespace

TEST_F(InputMetadata, ABlockIsReadAtTheReadPosition) {
  for (const uint32_t offset : {16u, kRing - 16, kRing}) {
    Put(offset, {24});
    EXPECT_EQ(Pair(0xC0DE0018, 40), Block());
  }
}

TEST_F(InputMetadata, TheLengthCoversABlockPer256SamplesUntilTheDataEnds) {
  Put(96, {16, 24, 8});  // 32 bytes up to the ring's end, 40 and 24 from its start
  EXPECT_EQ(Pair(0, kUntouched), Length(255));
  EXPECT_EQ(Pair(32, 32), Length(256));
  EXPECT_EQ(Pair(72, 40), Length(2 * 256 + 255));
  EXPECT_EQ(Pair(96, 24), Length(100 * 256));
  stMeta.sztLevel = 16 + 32;
  EXPECT_EQ(Pair(32, 32), Length(3 * 256));
  stMeta.sztLevel = 16;
  EXPECT_EQ(Pair(32, 32), Length(256)) << "the block at the read position of an empty ring";
  Put(16, {16, 0, 24});
  EXPECT_EQ(Pair(32, 32), Length(UINT32_MAX)) << "a block without payload is met again and again";
  stMeta.pu8Buf = nullptr;
  EXPECT_EQ(Pair(0, kUntouched), Length(256));
}

TEST_F(InputMetadata, AStepCarriesItsRemainderAndStaysBelowTheLimitInWholeBlocks) {
  Put(16, {16, 16, 16});
  u32Remainder = 200;
  EXPECT_EQ(32u, Step(100, 1000));
  EXPECT_EQ(44u, u32Remainder);
  EXPECT_EQ(0u, Step(100, 1000));
  EXPECT_EQ(64u, Step(3 * 256, 95));
  EXPECT_EQ(96u, Step(3 * 256, 96));
  filter.st->u32InPortCount = 0;
  EXPECT_EQ(0u, Step(256 + 1, 1000));
  EXPECT_EQ(145u, u32Remainder) << "kept without a port too";
  EXPECT_EQ(0u, ze_kest_Utility_QueryInputMinMetaProcessSize(nullptr, 256, 99, &u32Remainder));
  EXPECT_EQ(0u, ze_kest_Utility_QueryInputMinMetaProcessSize(filter, 256, 99, nullptr));
}

TEST_F(InputMetadata, ABadRecordIsNotReadBeyondItsRing) {
  for (const uint32_t offset : {kRing - 8, 3 * kRing}) {
    stMeta.sztReadOffset = offset;
    stMeta.sztLevel = UINT32_MAX;
    EXPECT_EQ(Pair(kUntouched, kUntouched), Block());
    EXPECT_EQ(Pair(0, kUntouched), Length(UINT32_MAX));
  }
  Put(16, {3 * kRing});
  stMeta.sztLevel = UINT32_MAX;
  EXPECT_EQ(Pair(3 * kRing + 16, 3 * kRing + 16), Length(UINT32_MAX));
  Put(16, {UINT32_MAX - 8});
  EXPECT_EQ(Pair(0, kUntouched), Length(UINT32_MAX));
}
