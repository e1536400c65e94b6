// SPDX-License-Identifier: Apache-2.0
// Conversions to and from interleaved frames, copies from port to port, and conversions of the sample width.
#include <algorithm>

#include "fuzz/ports/check.h"

namespace kest::fuzz {
namespace {

RandomPort *DrawPort(Run &run) {
  const bool bInput = run.bytes.ConsumeBool();
  const uint32_t u32Slot = run.Draw(0, 7);
  return bInput ? run.filter.In(u32Slot) : run.filter.Out(u32Slot);
}

// The image of one of the filter's ports.
RandomPort &ImageOf(const Run &run, RandomFilter &image, const RandomPort *pst) {
  const bool bInput = pst >= run.filter.inputs.data() && pst < run.filter.inputs.data() + ZE_KEST_MAX_PORTS;
  return bInput ? image.inputs[static_cast<size_t>(pst - run.filter.inputs.data())]
                : image.outputs[static_cast<size_t>(pst - run.filter.outputs.data())];
}

struct Frames {
  uint32_t u32Group;
  uint32_t u32Channels;
  uint32_t u32Advance;
  uint32_t sztSamples;
};

Frames DrawFrames(Run &run, const RandomPort &port) {
  const uint32_t sztRing = port.st.stPcm.sztPcmRingSamples;
  Frames frames = {run.Draw(0, 3), run.Draw(0, 12), 0, 0};
  frames.u32Advance = run.bConsistent ? run.Draw(0, sztRing) : run.bytes.ConsumeIntegral<uint32_t>();
  frames.sztSamples = run.Draw(0, run.bConsistent ? sztRing : 200);
  return frames;
}

// Calls move for every sample of the frames with its address in the ring and its offset in the buffer.
template <typename Move>
void ForEachSample(const Frames &frames, RandomPort &port, uint32_t u32Channels, const Move &move) {
  if (port.st.stPcm.apu8PcmGroupBuf[frames.u32Group] == nullptr) return;
  const uint32_t u32Slots = std::min(u32Channels, kGroupChannels[frames.u32Group]);
  for (uint32_t i = 0; i < frames.sztSamples; ++i) {
    for (uint32_t k = 0; k < u32Slots; ++k) {
      move(Sample(port, frames.u32Group, k, port.st.stPcm.sztPcmReadOffset + frames.u32Advance + i),
           size_t{i * u32Channels + k} * Width(port));
    }
  }
}

void CheckFromInterleaved(Run &run, const RandomPort &port, const Frames &frames) {
  const uint32_t u32Bits = port.st.stPcm.stPcmInfo.u32BitWidth;
  const uint32_t u32Given = u32Bits == 16 && run.bytes.ConsumeBool() ? 0 : u32Bits;
  const bool bWrong = frames.u32Group < 3 &&
                      (frames.u32Channels == 0 || frames.u32Channels > kGroupChannels[frames.u32Group]);
  const uint32_t u32Channels = bWrong ? 2 : frames.u32Channels;
  // A port without a width counts as 16 bits, for which its storage may be too small.
  if (u32Given == 0 && u32Bits == 0) return;
  Bytes src = Noise(size_t{frames.sztSamples} * u32Channels * Width(port), 21);
  run.Compare(
      "from interleaved",
      [&](ZE_KEST_Filter_s *) {
        return ze_kest_Utility_ConvertInterleaveToNonInterleave(frames.u32Channels, u32Given, &port.st.stPcm,
                                                                frames.u32Group, frames.u32Advance,
                                                                src.data(), frames.sztSamples);
      },
      [&](RandomFilter &image) {
        if (frames.u32Group > 2) return 8u;
        ForEachSample(
            frames, ImageOf(run, image, &port), u32Channels,
            [&](uint8_t *pu8Ring, size_t sztOffset) { CopyBytes(pu8Ring, &src[sztOffset], Width(port)); });
        return 0u;
      });
}

void CheckToInterleaved(Run &run, const RandomPort &port, const Frames &frames) {
  Bytes dst = Noise(size_t{frames.sztSamples} * frames.u32Channels * Width(port), 22);
  Bytes expected = dst;
  run.Compare(
      "to interleaved",
      [&](ZE_KEST_Filter_s *) {
        return ze_kest_Utility_ConvertNonInterleaveToInterleave(dst.data(), &port.st.stPcm, frames.u32Group,
                                                                frames.u32Channels, frames.u32Advance,
                                                                frames.sztSamples, Width(port));
      },
      [&](RandomFilter &image) {
        if (frames.u32Group > 2) return 8u;
        ForEachSample(frames, ImageOf(run, image, &port), frames.u32Channels,
                      [&](const uint8_t *pu8Ring, size_t sztOffset) {
                        CopyBytes(&expected[sztOffset], pu8Ring, Width(port));
                      });
        return 0u;
      });
  if (run.bConsistent) ExpectBytes(expected, dst, "the frames");
}

struct Conversion {
  uint32_t (*pfnConvert)(const uint8_t *pu8Src, uint8_t *pu8Dst, uint32_t u32Samples);
  uint32_t u32SrcBytes;
  uint32_t u32DstBytes;
  int s32Shift;
  bool bRefusesZero;
  bool bInPlace;
};

// Gives the functions one signature, whatever their types and order of arguments.
template <auto pfn, typename Src, typename Dst>
uint32_t SourceFirst(const uint8_t *pu8Src, uint8_t *pu8Dst, uint32_t n) {
  return pfn(reinterpret_cast<const Src *>(pu8Src), reinterpret_cast<Dst *>(pu8Dst), n);
}

template <auto pfn, typename Dst, typename Src>
uint32_t DestinationFirst(const uint8_t *pu8Src, uint8_t *pu8Dst, uint32_t n) {
  return pfn(reinterpret_cast<Dst *>(pu8Dst), reinterpret_cast<const Src *>(pu8Src), n);
}

uint32_t InPlace(const uint8_t *, uint8_t *pu8Dst, uint32_t n) {
  return ze_kest_Utility_Convert32BitPcmFromLow24BitToHigh24Bit(reinterpret_cast<int32_t *>(pu8Dst), n);
}

constexpr Conversion kConversions[] = {
    {SourceFirst<ze_kest_Utility_ConvertPcmFrom16BitTo24Bit, uint16_t, uint8_t>, 2, 3, 8, false, false},
    {SourceFirst<ze_kest_Utility_ConvertPcmFrom24BitTo16Bit, uint8_t, uint16_t>, 3, 2, -8, false, false},
    {SourceFirst<ze_kest_Utility_ConvertPcmFrom16BitTo32Bit, uint16_t, uint32_t>, 2, 4, 16, false, false},
    {SourceFirst<ze_kest_Utility_ConvertPcmFrom32BitTo16Bit, uint32_t, uint16_t>, 4, 2, -16, false, false},
    {SourceFirst<ze_kest_Utility_ConvertPcmFrom24BitTo32Bit, uint8_t, uint32_t>, 3, 4, 8, false, false},
    {SourceFirst<ze_kest_Utility_ConvertPcmFrom24LETo16Bit, uint32_t, uint16_t>, 4, 2, -8, false, false},
    {SourceFirst<ze_kest_Utility_ConvertPcmFrom24LETo32Bit, uint32_t, uint32_t>, 4, 4, 8, false, false},
    {DestinationFirst<ze_kest_Utility_Convert16BitPcmTo32BitPcm, int32_t, int16_t>, 2, 4, 16, true, false},
    {DestinationFirst<ze_kest_Utility_Convert32BitPcmFromLow24BitTo16BitPcm, int16_t, int32_t>, 4, 2, -8,
     true, false},
    {InPlace, 4, 4, 8, true, true},
};

}  // namespace

void CheckInterleave(Run &run) {
  const RandomPort *pst = DrawPort(run);
  if (pst == nullptr) return;
  const Frames frames = DrawFrames(run, *pst);
  if (run.bytes.ConsumeBool()) {
    CheckFromInterleaved(run, *pst, frames);
  } else {
    CheckToInterleaved(run, *pst, frames);
  }
}

void CheckPcmCopy(Run &run) {
  const RandomPort *pstFrom = DrawPort(run);
  const RandomPort *pstTo = DrawPort(run);
  if (pstFrom == nullptr || pstTo == nullptr || pstFrom == pstTo) return;
  if (run.bConsistent && Width(*pstFrom) != Width(*pstTo)) return;
  const uint32_t g = run.Draw(0, 3);
  const uint32_t u32From = run.Draw(0, pstFrom->st.stPcm.sztPcmRingSamples);
  const uint32_t u32To = run.Draw(0, pstTo->st.stPcm.sztPcmRingSamples);
  // Contradictory ports may have no width, which counts as 16 bits: more than their storage may hold.
  if (Width(*pstFrom) < 2 || Width(*pstTo) < 2) return;
  const uint32_t n = run.Draw(
      0, run.bConsistent ? std::min(pstFrom->st.stPcm.sztPcmRingSamples, pstTo->st.stPcm.sztPcmRingSamples)
                         : 200);
  run.Compare(
      "PCM copy",
      [&](ZE_KEST_Filter_s *) {
        return ze_kest_Utility_CopyNonInterleavePcmBuffer(&pstTo->st.stPcm, &pstFrom->st.stPcm, u32To,
                                                          u32From, n, g);
      },
      [&](RandomFilter &image) {
        if (g > 2) return 8u;
        RandomPort &from = ImageOf(run, image, pstFrom);
        RandomPort &to = ImageOf(run, image, pstTo);
        if (from.groups[g].empty() || to.groups[g].empty()) return 0u;
        const ZE_KEST_PcmGroup_s &group = from.st.stPcm.astPcmGroup[g];
        for (uint32_t k = 0; k < std::min(kGroupChannels[g], group.u32ChannelCount); ++k) {
          for (uint32_t i = 0; i < n && group.as32ChMap[k] != -1; ++i) {
            CopyBytes(Sample(to, g, k, to.st.stPcm.sztPcmReadOffset + u32To + i),
                      Sample(from, g, k, from.st.stPcm.sztPcmReadOffset + u32From + i), Width(from));
          }
        }
        return 0u;
      });
}

// Source and destination lie in one buffer and may overlap.
void CheckConversion(Run &run) {
  const Conversion &conversion = kConversions[run.Draw(0, std::size(kConversions) - 1)];
  const uint32_t n = run.Draw(0, 70);
  const size_t sztSrcBytes = size_t{n} * conversion.u32SrcBytes;
  const size_t sztDstBytes = size_t{n} * conversion.u32DstBytes;
  const bool bApart = run.bytes.ConsumeBool();
  const size_t sztSrc = run.Draw(0, 40);
  const size_t sztDst = conversion.bInPlace ? sztSrc : bApart ? sztSrc + sztSrcBytes : run.Draw(0, 40);
  Bytes actual = Noise(std::max({sztSrc + sztSrcBytes, sztDst + sztDstBytes, size_t{1}}), n);
  Bytes expected = actual;
  for (uint32_t i = 0; i < n; ++i) {
    Convert(&expected[sztDst + size_t{i} * conversion.u32DstBytes], conversion.u32DstBytes,
            &expected[sztSrc + size_t{i} * conversion.u32SrcBytes], conversion.u32SrcBytes,
            conversion.s32Shift);
  }
  const uint32_t u32Result = conversion.pfnConvert(actual.data() + sztSrc, actual.data() + sztDst, n);
  ExpectEqual(n == 0 && conversion.bRefusesZero ? 8 : 0, u32Result, "a conversion's result");
  ExpectBytes(expected, actual, "a conversion");
}

}  // namespace kest::fuzz
