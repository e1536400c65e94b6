// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "bench/block.h"
#include "bench/rows.h"

namespace kest::bench {
namespace {

using PortReader = uint32_t (*)(const ZE_KEST_Filter_s *, uint32_t, void *, uint32_t, uint32_t, uint32_t,
                                uint32_t);
using PlainReader = void (*)(const PlainRings &, void *, size_t, size_t);

template <size_t kWidth>
void PlainReadAsIs(const PlainRings &stRings, void *pvFrames, size_t sztChannels, size_t sztFrames) {
  PlainInterleave(kWidth, stRings, pvFrames, sztChannels, sztFrames);
}

struct Reading {
  const char *pszName;
  PortReader pfnRead;
  PlainReader pfnPlain;
  uint32_t u32Width;
  uint32_t u32LinearWidth;
  AVSampleFormat eIn;  // AV_SAMPLE_FMT_NONE: libswresample does not know the format
  AVSampleFormat eOut;
};

constexpr Reading kReadings[] = {
    {"read port, 16", ze_kest_Utility_ReadInputPortPcmBuffer, PlainReadAsIs<2>, 2, 2, AV_SAMPLE_FMT_S16P,
     AV_SAMPLE_FMT_S16},
    {"read port, 24 packed", ze_kest_Utility_ReadInputPortPcmBuffer, PlainReadAsIs<3>, 3, 3,
     AV_SAMPLE_FMT_NONE, AV_SAMPLE_FMT_NONE},
    {"read port, 32", ze_kest_Utility_ReadInputPortPcmBuffer, PlainReadAsIs<4>, 4, 4, AV_SAMPLE_FMT_S32P,
     AV_SAMPLE_FMT_S32},
    {"read port, 32 to 16", ze_kest_Utility_ReadInputPortPcmBuffer_To16Bit, PlainRead32To16, 4, 2,
     AV_SAMPLE_FMT_S32P, AV_SAMPLE_FMT_S16},
    {"read port, 16 to 24 in 32", ze_kest_Utility_ReadInputPortPcmBuffer_To24Le, PlainRead16To24Le, 2, 4,
     AV_SAMPLE_FMT_NONE, AV_SAMPLE_FMT_NONE},
    {"read port, 32 to 24 in 32", ze_kest_Utility_ReadInputPortPcmBuffer_To24Le, PlainRead32To24Le, 4, 4,
     AV_SAMPLE_FMT_NONE, AV_SAMPLE_FMT_NONE},
};

void AddRead(const Reading &reading, Shape shape) {
  Row row(reading.pszName, shape);
  ForEachLayout([&](Layout layout) {
    const auto block = std::make_shared<Block>(shape, layout, reading.u32Width);
    row.Add(layout.Name(), Who::kLibrary, [block, shape, pfnRead = reading.pfnRead] {
      pfnRead(block->Filter(), 0, block->Frames(), shape.u32Frames, block->FirstChannel(),
              block->LastChannel(), shape.u32Channels);
    });
    // The wider side's bytes.
    const size_t sztBytes = block->Bytes(std::max(reading.u32Width, reading.u32LinearWidth));
    row.Add(layout.Name(), Who::kLimit,
            [block, sztBytes] { memcpy(block->Frames(), block->Rings(), sztBytes); });
    row.Add(layout.Name(), Who::kPlain, [block, shape, pfnPlain = reading.pfnPlain] {
      pfnPlain(block->Plain(), block->Frames(), shape.u32Channels, shape.u32Frames);
    });
    if (reading.eIn == AV_SAMPLE_FMT_NONE) return;
    const auto resampler = std::make_shared<Resampler>(reading.eIn, reading.eOut, shape.u32Channels);
    row.Add(layout.Name(), Who::kSwresample, [block, resampler, u32LinearWidth = reading.u32LinearWidth] {
      block->Interleave(*resampler, u32LinearWidth);
    });
  });
}

template <typename Sample>
using PortWriter = uint32_t (*)(const ZE_KEST_Filter_s *, uint32_t, uint32_t, Sample *const *,
                                const uint16_t *);

template <typename Sample>
void AddWrite(const char *pszName, PortWriter<Sample> pfnWrite, AVSampleFormat eIn, AVSampleFormat eOut,
              Shape shape) {
  Row row(pszName, shape);
  ForEachLayout([&](Layout layout) {
    const auto block = std::make_shared<Block>(shape, layout, uint32_t{sizeof(Sample)});
    row.Add(layout.Name(), Who::kLibrary, [block, shape, pfnWrite] {
      pfnWrite(block->Filter(), 0, shape.u32Frames, reinterpret_cast<Sample *const *>(block->Sources()),
               block->Strides());
    });
    row.Add(layout.Name(), Who::kLimit,
            [block] { memcpy(block->Rings(), block->Frames(), block->Bytes(block->Width())); });
    row.Add(layout.Name(), Who::kPlain, [block, shape] {
      PlainDeinterleave(block->Width(), block->Plain(), block->Frames(), shape.u32Channels, shape.u32Frames);
    });
    const auto resampler = std::make_shared<Resampler>(eIn, eOut, shape.u32Channels);
    row.Add(layout.Name(), Who::kSwresample, [block, resampler] { block->Deinterleave(*resampler); });
  });
}

}  // namespace

void AddPortRows() {
  for (const Reading &reading : kReadings)
    ForEachShape([&](Shape shape) { AddRead(reading, shape); });
  ForEachShape([](Shape shape) {
    AddWrite<int16_t>("write port, 16", ze_kest_Utility_WriteOutputPort16BitPcmBuffer, AV_SAMPLE_FMT_S16,
                      AV_SAMPLE_FMT_S16P, shape);
  });
  ForEachShape([](Shape shape) {
    AddWrite<int32_t>("write port, 32", ze_kest_Utility_WriteOutputPort32BitPcmBuffer, AV_SAMPLE_FMT_S32,
                      AV_SAMPLE_FMT_S32P, shape);
  });
}

}  // namespace kest::bench
