// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <vector>

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
    // The limit copies the bytes of the wider side.
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

// Write the frames of a block to one port of its filter, or to all of them.
template <typename Sample, auto kWrite>
void ToOne(const Block &block) {
  kWrite(block.Filter(), 0, block.TheShape().u32Frames, reinterpret_cast<Sample *const *>(block.Sources()),
         block.Strides());
}

template <typename Sample, auto kWrite>
void ToAll(const Block &block) {
  kWrite(block.Filter(), block.TheShape().u32Frames, reinterpret_cast<Sample *const *>(block.Sources()),
         block.Strides());
}

struct Writing {
  const char *pszName;
  void (*pfnWrite)(const Block &block);
  size_t sztPorts;
  uint32_t u32Width;
  AVSampleFormat eIn;
  AVSampleFormat eOut;
};

constexpr auto kWriteOne16 = ToOne<int16_t, ze_kest_Utility_WriteOutputPort16BitPcmBuffer>;
constexpr auto kWriteOne32 = ToOne<int32_t, ze_kest_Utility_WriteOutputPort32BitPcmBuffer>;
constexpr auto kWriteAll16 = ToAll<int16_t, ze_kest_Utility_WriteAllOutputPort16BitPcmBuffer>;
constexpr auto kWriteAll32 = ToAll<int32_t, ze_kest_Utility_WriteAllOutputPort32BitPcmBuffer>;

constexpr Writing kWritings[] = {
    {"write port, 16", kWriteOne16, 1, 2, AV_SAMPLE_FMT_S16, AV_SAMPLE_FMT_S16P},
    {"write port, 24 packed", kWriteOne32, 1, 3, AV_SAMPLE_FMT_NONE, AV_SAMPLE_FMT_NONE},
    {"write port, 32", kWriteOne32, 1, 4, AV_SAMPLE_FMT_S32, AV_SAMPLE_FMT_S32P},
    {"write two ports, 16", kWriteAll16, 2, 2, AV_SAMPLE_FMT_S16, AV_SAMPLE_FMT_S16P},
    {"write two ports, 24 packed", kWriteAll32, 2, 3, AV_SAMPLE_FMT_NONE, AV_SAMPLE_FMT_NONE},
    {"write two ports, 32", kWriteAll32, 2, 4, AV_SAMPLE_FMT_S32, AV_SAMPLE_FMT_S32P},
};

// Creates a block per port. All ports are written with the frames of the first block.
std::vector<SharedBlock> BlocksOfPorts(const Writing &writing, Shape shape, Layout layout) {
  std::vector<SharedBlock> blocks;
  for (size_t i = 0; i < writing.sztPorts; ++i) {
    blocks.push_back(std::make_shared<Block>(shape, layout, writing.u32Width));
    if (i != 0) blocks[0]->AlsoWriteTo(*blocks[i]);
  }
  return blocks;
}

void AddWrite(const Writing &writing, Shape shape) {
  Row row(writing.pszName, shape);
  ForEachLayout([&](Layout layout) {
    const auto blocks = BlocksOfPorts(writing, shape, layout);
    uint8_t *const pu8Frames = blocks[0]->Frames();
    row.Add(layout.Name(), Who::kLibrary, [blocks, pfnWrite = writing.pfnWrite] { pfnWrite(*blocks[0]); });
    row.Add(layout.Name(), Who::kLimit, [blocks, pu8Frames] {
      for (const SharedBlock &block : blocks)
        memcpy(block->Rings(), pu8Frames, block->Bytes(block->Width()));
    });
    row.Add(layout.Name(), Who::kPlain, [blocks, pu8Frames, shape] {
      for (const SharedBlock &block : blocks)
        PlainDeinterleave(block->Width(), block->Plain(), pu8Frames, shape.u32Channels, shape.u32Frames);
    });
    if (writing.eIn == AV_SAMPLE_FMT_NONE) return;
    const auto resampler = std::make_shared<Resampler>(writing.eIn, writing.eOut, shape.u32Channels);
    row.Add(layout.Name(), Who::kSwresample, [blocks, pu8Frames, resampler] {
      for (const SharedBlock &block : blocks)
        block->Deinterleave(*resampler, pu8Frames);
    });
  });
}

// The start of the unread samples of every channel of a port.
template <typename Sample>
struct Channels {
  Sample *apSamples[ZE_KEST_PCM_CHANNEL_ENTRIES];
  uint16_t au16Stride[ZE_KEST_PCM_CHANNEL_ENTRIES];
  uint8_t bGroups;
};

// The shortest possible code, but not inlined into the benchmark loop.
template <typename Sample>
__attribute__((noinline)) void PlainPointers(const ZE_KEST_PcmBuffer_s &stPcm, Channels<Sample> &stChannels) {
  std::fill(std::begin(stChannels.apSamples), std::end(stChannels.apSamples), nullptr);
  std::fill(std::begin(stChannels.au16Stride), std::end(stChannels.au16Stride), uint16_t{1});
  stChannels.bGroups = 1;
  uint32_t u32Position = stPcm.sztPcmReadOffset + stPcm.sztPcmReadSize;
  if (u32Position >= stPcm.sztPcmRingSamples) u32Position -= stPcm.sztPcmRingSamples;
  for (uint32_t g = 0; g < ZE_KEST_PCM_GROUPS; ++g) {
    const ZE_KEST_PcmGroup_s &stGroup = stPcm.astPcmGroup[g];
    if (stGroup.ePcmGroupType != static_cast<int32_t>(g)) continue;
    auto *pSamples = reinterpret_cast<Sample *>(stPcm.apu8PcmGroupBuf[g]) + u32Position;
    for (uint32_t k = 0; k < stGroup.u32ChannelCount; ++k, pSamples += stPcm.sztPcmRingSamples)
      if (stGroup.as32ChMap[k] != -1) stChannels.apSamples[g * ZE_KEST_PCM_GROUP_ENTRIES + k] = pSamples;
  }
}

template <typename Sample, auto kAnalyze>
void AddPointers(const char *pszName) {
  for (const uint32_t u32Channels : {2u, 10u}) {
    const auto block =
        std::make_shared<Block>(Shape{u32Channels, 256}, Layout{true, false}, uint32_t{sizeof(Sample)});
    const auto channels = std::make_shared<Channels<Sample>>();
    Row(pszName, {u32Channels, 0})
        .Add("", Who::kLibrary,
             [block, channels] {
               kAnalyze(block->Filter(), 0, channels->apSamples, channels->au16Stride, &channels->bGroups);
             })
        .Add("", Who::kLimit, [block, channels] { PlainPointers(*block->Pcm(), *channels); });
  }
}

}  // namespace

void AddPortRows() {
  for (const Reading &reading : kReadings)
    ForEachShape([&](Shape shape) { AddRead(reading, shape); });
  for (const Writing &writing : kWritings)
    ForEachShape([&](Shape shape) { AddWrite(writing, shape); });
  AddPointers<int16_t, ze_kest_Utility_AnalyzeInputPort16BitPcmGroup>(
      "pointers to a port's channels, 16 (limit: a plain loop)");
  AddPointers<int32_t, ze_kest_Utility_AnalyzeInputPort32BitPcmGroup>(
      "pointers to a port's channels, 32 (limit: a plain loop)");
}

}  // namespace kest::bench
