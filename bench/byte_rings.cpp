// SPDX-License-Identifier: Apache-2.0
// Rows for the byte rings, which hold the metadata and raw data of ports. Their column "frames" gives bytes.
#include <array>
#include <cstring>
#include <memory>
#include <string>

#include "ze_kest/port.h"

#include "bench/pages.h"
#include "bench/plain_loops.h"
#include "bench/rows.h"
#include "bench/table.h"

namespace kest::bench {
namespace {

constexpr uint32_t kRingBytes = 4096;
constexpr uint32_t kOutputs = 2;
constexpr uint32_t kBlockBytes = 64;  // per metadata block, including the header

// One input port whose byte rings hold u32Bytes bytes, and output ports with room for them.
struct ByteRings {
  ByteRings(uint32_t u32HeldBytes, bool bWraps)
      : u32Bytes(u32HeldBytes), u32Position(bWraps ? kRingBytes - u32Bytes / 2 : kBlockBytes) {
    stIn.stMeta.pu8Buf = stIn.stRaw.pu8Buf = input.One();
    stIn.stMeta.sztSize = stIn.stRaw.sztSize = kRingBytes;
    stIn.stMeta.sztLevel = stIn.stRaw.sztLevel = u32Bytes;
    stIn.stMeta.sztReadOffset = stIn.stRaw.sztReadOffset = u32Position;
    stFilter.apstInPort[0] = &stIn;
    stFilter.u32InPortCount = 1;
    stFilter.u32OutPortCount = kOutputs;
    for (uint32_t i = 0; i < kOutputs; ++i) {
      astOut[i].bConnected = 1;
      astOut[i].stMeta.pu8Buf = astOut[i].stRaw.pu8Buf = outputs[i].Other();
      astOut[i].stMeta.sztSize = astOut[i].stRaw.sztSize = kRingBytes;
      astOut[i].stMeta.sztSpace = astOut[i].stRaw.sztSpace = kRingBytes;
      stFilter.apstOutPort[i] = &astOut[i];
    }
    for (uint32_t u32Block = 0; u32Block < kRingBytes; u32Block += kBlockBytes) {
      const uint32_t au32Header[] = {u32Block, kBlockBytes - ZE_KEST_METADATA_HEADER_SIZE};
      memcpy(input.One() + u32Block, au32Header, sizeof(au32Header));
    }
  }

  uint32_t u32Bytes;
  uint32_t u32Position;
  Pages input{kRingBytes};
  std::array<Pages, kOutputs> outputs{Pages{kRingBytes}, Pages{kRingBytes}};
  ZE_KEST_Port_s stIn = {};
  std::array<ZE_KEST_Port_s, kOutputs> astOut = {};
  ZE_KEST_Filter_s stFilter = {};
};

void CopyToRing(ByteRings &rings) {
  ze_kest_Utility_CopyFromRingToRingBuffer(rings.outputs[0].Other(), kRingBytes, 0, 0, rings.input.One(),
                                           kRingBytes, rings.u32Position, 0, rings.u32Bytes);
}

void CopyToLinear(ByteRings &rings) {
  ze_kest_Utility_CopyFromRingToNonRingBuffer(rings.outputs[0].Other(), rings.input.One(), kRingBytes,
                                              rings.u32Position, 0, rings.u32Bytes);
}

template <auto kForward>
void Forward(ByteRings &rings) {
  kForward(&rings.stFilter, 0, rings.u32Bytes);
}

struct Moving {
  const char *pszName;
  void (*pfnMove)(ByteRings &rings);
  size_t sztTargets;
};

constexpr Moving kMovings[] = {
    {"copy byte ring to byte ring", CopyToRing, 1},
    {"copy byte ring to linear buffer", CopyToLinear, 1},
    {"forward metadata to two ports", Forward<ze_kest_Utility_WriteAllOutputPortMetadataBuffer>, kOutputs},
    {"forward raw data to two ports", Forward<ze_kest_Utility_WriteAllOutputPortRawBuffer>, kOutputs},
};

void AddMoving(const Moving &moving, uint32_t u32Bytes) {
  Row row(std::string(moving.pszName) + ", bytes in the column of frames", {0, u32Bytes});
  for (const bool bWraps : {false, true}) {
    const auto rings = std::make_shared<ByteRings>(u32Bytes, bWraps);
    const std::string layout = bWraps ? "wraps" : "";
    row.Add(layout, Who::kLibrary, [rings, pfnMove = moving.pfnMove] { pfnMove(*rings); });
    row.Add(layout, Who::kLimit, [rings, sztTargets = moving.sztTargets] {
      for (size_t i = 0; i < sztTargets; ++i)
        memcpy(rings->outputs[i].Other(), rings->input.One(), rings->u32Bytes);
    });
    row.Add(layout, Who::kPlain, [rings, sztTargets = moving.sztTargets] {
      for (size_t i = 0; i < sztTargets; ++i)
        PlainCopyRings(1, {rings->outputs[i].Other(), kRingBytes, 0},
                       {rings->input.One(), kRingBytes, rings->u32Position}, 1, rings->u32Bytes);
    });
  }
}

// What a plain loop finds in the next block headers: the total size of the blocks, and the last tag.
struct Blocks {
  uint32_t u32Bytes;
  uint32_t u32Tag;
};

// The shortest possible code, but not inlined into the benchmark loop.
__attribute__((noinline)) Blocks PlainBlocks(const ZE_KEST_DataBuffer_s &stMeta, uint32_t u32Count) {
  Blocks stBlocks = {};
  uint32_t u32Position = stMeta.sztReadOffset + stMeta.sztReadSize;
  for (; u32Count != 0; --u32Count) {
    if (u32Position >= stMeta.sztSize) u32Position -= stMeta.sztSize;
    uint32_t au32Header[2];
    memcpy(au32Header, stMeta.pu8Buf + u32Position, sizeof(au32Header));
    const uint32_t u32Size = au32Header[1] + ZE_KEST_METADATA_HEADER_SIZE;
    stBlocks = {stBlocks.u32Bytes + u32Size, au32Header[0]};
    u32Position += u32Size;
  }
  return stBlocks;
}

constexpr uint32_t kBlocks = 4;
constexpr uint32_t kSamples = kBlocks * ZE_KEST_METADATA_SAMPLES;

void ReadOne(const ZE_KEST_Filter_s &stFilter) {
  Blocks stBlocks = {};
  ze_kest_Utility_ReadOneBlockInputPortMetadataBuffer(&stFilter, 0, 0, &stBlocks.u32Tag, &stBlocks.u32Bytes);
  benchmark::DoNotOptimize(stBlocks);
}

void QueryLength(const ZE_KEST_Filter_s &stFilter) {
  uint32_t u32Last = 0;
  uint32_t u32Bytes = 0;
  ze_kest_Utility_QueryInputPortMetadataLen(&stFilter, 0, kSamples, &u32Bytes, &u32Last);
  benchmark::DoNotOptimize(u32Bytes);
}

void QueryProcessSize(const ZE_KEST_Filter_s &stFilter) {
  uint32_t u32Remainder = 0;
  benchmark::DoNotOptimize(
      ze_kest_Utility_QueryInputMinMetaProcessSize(&stFilter, kSamples, kRingBytes, &u32Remainder));
}

struct Reading {
  const char *pszName;
  void (*pfnRead)(const ZE_KEST_Filter_s &stFilter);
  uint32_t u32Blocks;
};

constexpr Reading kReadings[] = {
    {"next metadata block", ReadOne, 1},
    {"length of four metadata blocks", QueryLength, kBlocks},
    {"process size of four metadata blocks", QueryProcessSize, kBlocks},
};

void AddReading(const Reading &reading) {
  const auto rings = std::make_shared<ByteRings>(kBlocks * kBlockBytes, true);
  Row(std::string(reading.pszName) + " (limit: a plain loop over the headers)")
      .Add("", Who::kLibrary, [rings, pfnRead = reading.pfnRead] { pfnRead(rings->stFilter); })
      .Add("", Who::kLimit, [rings, u32Blocks = reading.u32Blocks] {
        benchmark::DoNotOptimize(PlainBlocks(rings->stIn.stMeta, u32Blocks));
      });
}

}  // namespace

void AddByteRingRows() {
  for (const Moving &moving : kMovings)
    for (const uint32_t u32Bytes : {256u, 1024u})
      AddMoving(moving, u32Bytes);
  for (const Reading &reading : kReadings)
    AddReading(reading);
}

}  // namespace kest::bench
