// SPDX-License-Identifier: Apache-2.0
#include "bench/block.h"
#include "bench/rows.h"

namespace kest::bench {
namespace {

struct Format {
  uint32_t u32Width;
  const char *pszName;
  AVSampleFormat ePlanar;  // AV_SAMPLE_FMT_NONE: libswresample does not know the format
  AVSampleFormat ePacked;
};

constexpr Format kFormats[] = {{2, "16", AV_SAMPLE_FMT_S16P, AV_SAMPLE_FMT_S16},
                               {3, "24 packed", AV_SAMPLE_FMT_NONE, AV_SAMPLE_FMT_NONE},
                               {4, "32", AV_SAMPLE_FMT_S32P, AV_SAMPLE_FMT_S32}};

void AddInterleave(const Format &format, Shape shape) {
  Row row(std::string("interleave, ") + format.pszName, shape);
  ForEachLayout([&](Layout layout) {
    const auto block = std::make_shared<Block>(shape, layout, format.u32Width);
    row.Add(layout.Name(), Who::kLibrary, [block, shape] {
      ze_kest_Utility_ConvertNonInterleaveToInterleave(block->Frames(), block->Pcm(), block->Group(),
                                                       shape.u32Channels, 0, shape.u32Frames, block->Width());
    });
    row.Add(layout.Name(), Who::kLimit,
            [block] { memcpy(block->Frames(), block->Rings(), block->Bytes(block->Width())); });
    row.Add(layout.Name(), Who::kPlain, [block, shape] {
      PlainInterleave(block->Width(), block->Plain(), block->Frames(), shape.u32Channels, shape.u32Frames);
    });
    if (format.ePlanar == AV_SAMPLE_FMT_NONE) return;
    const auto resampler = std::make_shared<Resampler>(format.ePlanar, format.ePacked, shape.u32Channels);
    row.Add(layout.Name(), Who::kSwresample,
            [block, resampler] { block->Interleave(*resampler, block->Width()); });
  });
}

void AddDeinterleave(const Format &format, Shape shape) {
  Row row(std::string("deinterleave, ") + format.pszName, shape);
  ForEachLayout([&](Layout layout) {
    const auto block = std::make_shared<Block>(shape, layout, format.u32Width);
    row.Add(layout.Name(), Who::kLibrary, [block, shape] {
      ze_kest_Utility_ConvertInterleaveToNonInterleave(shape.u32Channels, block->Width() * 8, block->Pcm(),
                                                       block->Group(), 0, block->Frames(), shape.u32Frames);
    });
    row.Add(layout.Name(), Who::kLimit,
            [block] { memcpy(block->Rings(), block->Frames(), block->Bytes(block->Width())); });
    row.Add(layout.Name(), Who::kPlain, [block, shape] {
      PlainDeinterleave(block->Width(), block->Plain(), block->Frames(), shape.u32Channels, shape.u32Frames);
    });
    if (format.ePlanar == AV_SAMPLE_FMT_NONE) return;
    const auto resampler = std::make_shared<Resampler>(format.ePacked, format.ePlanar, shape.u32Channels);
    row.Add(layout.Name(), Who::kSwresample,
            [block, resampler] { block->Deinterleave(*resampler, block->Frames()); });
  });
}

void AddCopy(const Format &format, Shape shape) {
  Row row(std::string("copy ring to ring, ") + format.pszName, shape);
  ForEachLayout([&](Layout layout) {
    const auto source = std::make_shared<Block>(shape, layout, format.u32Width);
    const auto target = std::make_shared<Block>(shape, Layout{layout.bPadded, false}, format.u32Width);
    row.Add(layout.Name(), Who::kLibrary, [source, target, shape] {
      ze_kest_Utility_CopyNonInterleavePcmBuffer(target->Pcm(), source->Pcm(), 0, 0, shape.u32Frames,
                                                 source->Group());
    });
    row.Add(layout.Name(), Who::kLimit,
            [source, target] { memcpy(target->Rings(), source->Rings(), source->Bytes(source->Width())); });
    row.Add(layout.Name(), Who::kPlain, [source, target, shape] {
      PlainCopyRings(source->Width(), target->Plain(), source->Plain(), shape.u32Channels, shape.u32Frames);
    });
  });
}

}  // namespace

void AddInterleaveRows() {
  for (const auto pfnAdd : {AddInterleave, AddDeinterleave, AddCopy})
    for (const Format &format : kFormats)
      ForEachShape([&](Shape shape) { pfnAdd(format, shape); });
}

}  // namespace kest::bench
