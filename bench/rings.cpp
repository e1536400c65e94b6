// SPDX-License-Identifier: Apache-2.0
// Rows for the ring routines that move a single channel, applied to each channel of a block in turn.
#include <algorithm>

#include "bench/block.h"
#include "bench/rows.h"

namespace kest::bench {
namespace {

using RingReader = uint32_t (*)(const uint8_t *, const uint8_t *, uint32_t, uint8_t *, uint64_t, uint32_t,
                                uint32_t);

template <void (*kPlain)(const PlainRings &, void *, size_t, size_t)>
void PlainRead(Block &block) {
  kPlain(block.Plain(), block.Frames(), block.TheShape().u32Channels, block.TheShape().u32Frames);
}

template <size_t kWidth>
void PlainReadAsIs(Block &block) {
  PlainInterleave(kWidth, block.Plain(), block.Frames(), block.TheShape().u32Channels,
                  block.TheShape().u32Frames);
}

struct Reading {
  const char *pszName;
  RingReader pfnRead;
  void (*pfnPlain)(Block &block);
  uint32_t u32Width;
  uint32_t u32LinearWidth;
};

constexpr Reading kReadings[] = {
    {"read ring by ring, 16", ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer, PlainReadAsIs<2>, 2, 2},
    {"read ring by ring, 24 packed", ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer, PlainReadAsIs<3>, 3,
     3},
    {"read ring by ring, 32", ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer, PlainReadAsIs<4>, 4, 4},
    {"read ring by ring, 32 to 16", ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To16Bit,
     PlainRead<PlainRead32To16>, 4, 2},
    {"read ring by ring, 16 to 24 in 32", ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To24Le,
     PlainRead<PlainRead16To24Le>, 2, 4},
    {"read ring by ring, 32 to 24 in 32", ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To24Le,
     PlainRead<PlainRead32To24Le>, 4, 4},
    {"read ring by ring, 16 to 32", ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To32Bit,
     PlainRead<PlainRead16To32>, 2, 4},
};

// One channel's ring and the current position in it.
struct ChannelRing {
  uint8_t *pu8Ring;
  uint8_t *pu8Position;
  uint32_t u32Bytes;

  ChannelRing(Block &block, uint32_t u32Channel)
      : pu8Ring(block.Rings() + size_t{u32Channel} * block.RingSamples() * block.Width()),
        pu8Position(pu8Ring + size_t{block.Position()} * block.Width()),
        u32Bytes(block.RingSamples() * block.Width()) {}
};

void AddLimit(Row &row, Layout layout, const SharedBlock &block, size_t sztBytes) {
  row.Add(layout.Name(), Who::kLimit,
          [block, sztBytes] { memcpy(block->Frames(), block->Rings(), sztBytes); });
}

void AddRead(const Reading &reading, Shape shape) {
  Row row(reading.pszName, shape);
  ForEachLayout([&](Layout layout) {
    const auto block = std::make_shared<Block>(shape, layout, reading.u32Width);
    row.Add(layout.Name(), Who::kLibrary, [block, shape, reading] {
      for (uint32_t ch = 0; ch < shape.u32Channels; ++ch) {
        const ChannelRing ring(*block, ch);
        reading.pfnRead(ring.pu8Ring, ring.pu8Position, ring.u32Bytes,
                        block->Frames() + size_t{ch} * reading.u32LinearWidth,
                        uint64_t{shape.u32Frames} * reading.u32Width, shape.u32Channels, reading.u32Width);
      }
    });
    AddLimit(row, layout, block, block->Bytes(std::max(reading.u32Width, reading.u32LinearWidth)));
    row.Add(layout.Name(), Who::kPlain, [block, pfnPlain = reading.pfnPlain] { pfnPlain(*block); });
  });
}

void AddWrite(uint32_t u32Width, Shape shape) {
  Row row("write ring by ring, " + std::string(u32Width == 3 ? "24 packed" : std::to_string(u32Width * 8)),
          shape);
  ForEachLayout([&](Layout layout) {
    const auto block = std::make_shared<Block>(shape, layout, u32Width);
    row.Add(layout.Name(), Who::kLibrary, [block, shape, u32Width] {
      for (uint32_t ch = 0; ch < shape.u32Channels; ++ch) {
        const ChannelRing ring(*block, ch);
        ze_kest_Utility_WriteDataToNonInterleaveRingBuffer(
            ring.pu8Ring, ring.pu8Position, ring.u32Bytes, block->Frames() + size_t{ch} * u32Width,
            uint64_t{shape.u32Frames} * u32Width, shape.u32Channels, u32Width);
      }
    });
    AddLimit(row, layout, block, block->Bytes(u32Width));
    row.Add(layout.Name(), Who::kPlain, [block, shape] {
      PlainDeinterleave(block->Width(), block->Plain(), block->Frames(), shape.u32Channels, shape.u32Frames);
    });
  });
}

// In the linear buffer the channels follow one another instead of being interleaved.
void AddContiguous(Shape shape) {
  Row row("read ring by ring, stride 1, 16", shape);
  ForEachLayout([&](Layout layout) {
    const auto block = std::make_shared<Block>(shape, layout, uint32_t{sizeof(int16_t)});
    const size_t sztChannelBytes = shape.u32Frames * sizeof(int16_t);
    row.Add(layout.Name(), Who::kLibrary, [block, shape, sztChannelBytes] {
      for (uint32_t ch = 0; ch < shape.u32Channels; ++ch) {
        const ChannelRing ring(*block, ch);
        ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer(ring.pu8Ring, ring.pu8Position, ring.u32Bytes,
                                                            block->Frames() + ch * sztChannelBytes,
                                                            sztChannelBytes, 1, sizeof(int16_t));
      }
    });
    AddLimit(row, layout, block, block->Bytes(sizeof(int16_t)));
    row.Add(layout.Name(), Who::kPlain, [block, shape] {
      PlainRings stRings = block->Plain();
      for (uint32_t ch = 0; ch < shape.u32Channels; ++ch) {
        PlainInterleave(sizeof(int16_t), stRings,
                        block->Frames() + size_t{ch} * shape.u32Frames * sizeof(int16_t), 1, shape.u32Frames);
        stRings.pu8 += stRings.sztRingSamples * sizeof(int16_t);
      }
    });
  });
}

}  // namespace

void AddRingRows() {
  for (const Reading &reading : kReadings)
    ForEachShape([&](Shape shape) { AddRead(reading, shape); });
  for (const uint32_t u32Width : {2u, 3u, 4u})
    ForEachShape([&](Shape shape) { AddWrite(u32Width, shape); });
  ForEachShape(AddContiguous);
}

}  // namespace kest::bench
