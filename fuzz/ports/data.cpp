// SPDX-License-Identifier: Apache-2.0
// Metadata and raw data: queries of blocks, and forwarding from an input to the outputs.
#include <algorithm>
#include <cstring>

#include "fuzz/ports/check.h"

namespace kest::fuzz {
namespace {

struct Header {
  bool bWhole;
  uint32_t u32Tag;
  uint32_t u32Payload;
};

// The header at a distance after the read position.
Header HeaderAt(const RandomPort &port, uint32_t u32Distance) {
  const ZE_KEST_DataBuffer_s &ring = port.st.stMeta;
  if (ring.pu8Buf == nullptr) return {};
  const size_t sztPosition = (ring.sztReadOffset + ring.sztReadSize + u32Distance) % ring.sztSize;
  if (ring.sztSize - sztPosition < 16) return {};
  Header header = {true, 0, 0};
  memcpy(&header.u32Tag, &port.meta[sztPosition], 4);
  memcpy(&header.u32Payload, &port.meta[sztPosition + 4], 4);
  return header;
}

struct Blocks {
  uint32_t u32Bytes;
  uint32_t u32LastBlock;
};

Blocks ModelWalk(const RandomPort &port, uint32_t u32Blocks) {
  const uint32_t u32Held = port.st.stMeta.sztLevel - port.st.stMeta.sztReadSize;
  Blocks blocks = {};
  for (uint32_t i = 0; i < u32Blocks; ++i) {
    const Header header = HeaderAt(port, blocks.u32Bytes);
    if (!header.bWhole || header.u32Payload > 0xFFFFFFFF - 16) break;
    if (header.u32Payload != 0) {
      blocks.u32LastBlock = header.u32Payload + 16;
      blocks.u32Bytes += blocks.u32LastBlock;
    }
    if (blocks.u32Bytes >= u32Held) break;
  }
  return blocks;
}

void CheckOneBlock(Run &run, uint32_t u32Slot) {
  uint32_t au32Actual[2] = {4711, 4711};
  uint32_t au32Expected[2] = {4711, 4711};
  run.Compare(
      "one block",
      [&](ZE_KEST_Filter_s *pst) {
        return ze_kest_Utility_ReadOneBlockInputPortMetadataBuffer(pst, u32Slot, 0, &au32Actual[0],
                                                                   &au32Actual[1]);
      },
      [&](RandomFilter &image) {
        const RandomPort *pst = Served(image.In(u32Slot), u32Slot);
        if (pst == nullptr || !HeaderAt(*pst, 0).bWhole) return 8u;
        au32Expected[0] = HeaderAt(*pst, 0).u32Tag;
        au32Expected[1] = HeaderAt(*pst, 0).u32Payload + 16;
        return 0u;
      });
  if (!run.bConsistent) return;
  ExpectEqual(au32Expected[0], au32Actual[0], "the tag");
  ExpectEqual(au32Expected[1], au32Actual[1], "the block's size");
}

void CheckLength(Run &run, uint32_t u32Slot, uint32_t sztSamples) {
  Blocks actual = {4711, 4711};
  Blocks expected = actual;
  run.Compare(
      "metadata length",
      [&](ZE_KEST_Filter_s *pst) {
        return ze_kest_Utility_QueryInputPortMetadataLen(pst, u32Slot, sztSamples, &actual.u32Bytes,
                                                         &actual.u32LastBlock);
      },
      [&](RandomFilter &image) {
        const RandomPort *pst = Served(image.In(u32Slot), u32Slot);
        if (pst == nullptr) return 8u;
        const Blocks blocks = ModelWalk(*pst, sztSamples / 256);
        expected.u32Bytes = blocks.u32Bytes;
        if (blocks.u32LastBlock != 0) expected.u32LastBlock = blocks.u32LastBlock;
        return 0u;
      });
  if (!run.bConsistent) return;
  ExpectEqual(expected.u32Bytes, actual.u32Bytes, "the metadata length");
  ExpectEqual(expected.u32LastBlock, actual.u32LastBlock, "the last block's size");
}

void CheckMinimum(Run &run, uint32_t sztSamples) {
  const uint32_t u32Remainder = run.Draw(0, 300);
  const uint32_t u32MaxBytes = run.Draw(0, 400);
  uint32_t u32Left = u32Remainder;
  run.Compare(
      "metadata process size",
      [&](ZE_KEST_Filter_s *pst) {
        return ze_kest_Utility_QueryInputMinMetaProcessSize(pst, sztSamples, u32MaxBytes, &u32Left);
      },
      [&](RandomFilter &image) {
        const RandomPort *pst = image.In(0);
        const uint32_t u32Blocks = (u32Remainder + sztSamples) / 256;
        if (pst == nullptr || u32Blocks == 0) return 0u;
        const Blocks blocks = ModelWalk(*pst, u32Blocks);
        if (blocks.u32LastBlock == 0) return std::min(blocks.u32Bytes, u32MaxBytes);
        return std::min(blocks.u32Bytes, u32MaxBytes / blocks.u32LastBlock * blocks.u32LastBlock);
      });
  ExpectEqual((u32Remainder + sztSamples) % 256, u32Left, "the remainder");
}

void ModelForward(const ZE_KEST_DataBuffer_s &in, const Bytes &inBytes, const ZE_KEST_DataBuffer_s &out,
                  Bytes &outBytes, uint32_t n) {
  if (in.sztLevel < n || out.sztSpace < n) return;
  if (out.sztWriteSize + out.sztLevel + n > out.sztSize || in.sztSize < in.sztReadSize + n) return;
  for (uint32_t i = 0; i < n; ++i) {
    outBytes[(out.sztReadOffset + out.sztWriteSize + out.sztLevel + i) % out.sztSize] =
        inBytes[(in.sztReadOffset + in.sztReadSize + i) % in.sztSize];
  }
}

}  // namespace

void CheckMetadata(Run &run) {
  const uint32_t u32Slot = run.Draw(0, 8);
  const uint32_t sztSamples = run.Draw(0, 256 * 20);
  CheckOneBlock(run, u32Slot);
  CheckLength(run, u32Slot, sztSamples);
  CheckMinimum(run, sztSamples);
  run.Compare(
      "metadata output",
      [](ZE_KEST_Filter_s *pst) { return ze_kest_Utility_IsOutputMetadataBufferExist(pst); },
      [](RandomFilter &image) {
        uint32_t u32Rings = 0;
        for (const RandomPort *pst : All(image, false))
          u32Rings += pst->st.stMeta.sztSize != 0 ? 1 : 0;
        return u32Rings == 0 ? 0u : 1u;
      });
}

void CheckForward(Run &run) {
  const bool bMeta = run.bytes.ConsumeBool();
  const uint32_t u32Slot = run.Draw(0, 8);
  const uint32_t n = run.Draw(0, 200);
  run.Compare(
      "forward",
      [&](ZE_KEST_Filter_s *pst) {
        return bMeta ? ze_kest_Utility_WriteAllOutputPortMetadataBuffer(pst, u32Slot, n)
                     : ze_kest_Utility_WriteAllOutputPortRawBuffer(pst, u32Slot, n);
      },
      [&](RandomFilter &image) {
        const RandomPort *pstIn = Served(image.In(u32Slot), u32Slot);
        if (pstIn == nullptr) return 8u;
        for (RandomPort *pst : All(image, false)) {
          if (pst->st.bConnected == 0) continue;
          if (bMeta) ModelForward(pstIn->st.stMeta, pstIn->meta, pst->st.stMeta, pst->meta, n);
          if (!bMeta) ModelForward(pstIn->st.stRaw, pstIn->raw, pst->st.stRaw, pst->raw, n);
        }
        return 0u;
      });
}

}  // namespace kest::fuzz
