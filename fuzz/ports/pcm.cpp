// SPDX-License-Identifier: Apache-2.0
// Reads PCM from input ports and writes it to output ports.
#include <algorithm>

#include "fuzz/ports/check.h"

namespace kest::fuzz {
namespace {

struct Reader {
  uint32_t (*pfnRead)(const ZE_KEST_Filter_s *, uint32_t, void *, uint32_t, uint32_t, uint32_t, uint32_t);
  uint32_t u32DstBytes;  // bytes of a sample in the destination; 0: as in the ring
  int s32ShiftOf16;
  int s32ShiftOf32;
};

constexpr Reader kReaders[] = {
    {ze_kest_Utility_ReadInputPortPcmBuffer, 0, 0, 0},
    {ze_kest_Utility_ReadInputPortPcmBuffer_To16Bit, 2, 0, -16},
    {ze_kest_Utility_ReadInputPortPcmBuffer_To24Le, 4, 8, -8},
};

struct Read {
  const Reader &reader;
  uint32_t u32Slot;
  uint32_t sztSamples;
  uint32_t u32First;
  uint32_t u32Last;
  uint32_t u32Stride;
};

uint32_t DstBytes(const Read &read, const RandomPort &port) {
  return read.reader.u32DstBytes == 0 ? Width(port) : read.reader.u32DstBytes;
}

void ModelReadChannel(const Read &read, RandomPort &port, uint32_t g, uint32_t k, uint32_t u32DstSlot,
                      Bytes &dst) {
  const ZE_KEST_PcmBuffer_s &pcm = port.st.stPcm;
  if (pcm.apu8PcmGroupBuf[g] == nullptr || pcm.astPcmGroup[g].as32ChMap[k] == -1) return;
  const uint32_t w = Width(port);
  const bool bAsIs = read.reader.u32DstBytes == 0;
  if (!bAsIs && w == 3 && read.u32Stride != 1) return;
  for (uint32_t i = 0; i < read.sztSamples; ++i) {
    const uint8_t *pu8Src = Sample(port, g, k, pcm.sztPcmReadOffset + pcm.sztPcmReadSize + i);
    if (read.u32Stride == 1) {  // bytes as they are
      CopyBytes(&dst[size_t{i} * w], pu8Src, w);
    } else {
      const uint32_t u32DstBytes = DstBytes(read, port);
      const int s32Shift = w == 2 ? read.reader.s32ShiftOf16 : read.reader.s32ShiftOf32;
      Convert(&dst[size_t{i * read.u32Stride + u32DstSlot} * u32DstBytes], u32DstBytes, pu8Src, w, s32Shift);
    }
  }
}

uint32_t ModelRead(const Read &read, RandomFilter &image, Bytes &dst) {
  constexpr uint32_t kEnd[3] = {2, 12, 22};
  constexpr uint32_t kBase[3] = {0, 2, 12};
  if (read.u32Last < read.u32First || read.u32Last - read.u32First + 1 > read.u32Stride) return 8;
  RandomPort *pst = Served(image.In(read.u32Slot), read.u32Slot);
  if (pst == nullptr) return 8;
  const bool bWhole = read.reader.u32DstBytes == 0 && pst->st.stPcm.stPcmInfo.u32BitWidth == 32;
  uint32_t g = 0;
  uint32_t k = 0;
  for (uint32_t c = read.u32First; c <= read.u32Last; ++c) {
    if (!bWhole && g == 2) return 3;
    if (c >= kEnd[g]) {
      while (g < 3 && c >= kEnd[g])
        ++g;
      if (g == 3) return 3;
      k = c - kBase[g];
    }
    ModelReadChannel(read, *pst, g, k, c - read.u32First, dst);
    ++k;
  }
  return 0;
}

struct Write {
  bool b32Bits;
  bool bAll;
  uint32_t u32Slot;
  uint32_t sztSamples;
};

struct Sources {
  std::array<Bytes, 36> data;
  std::array<void *, 36> pointers;
  std::array<uint16_t, 36> strides;

  // Long enough for samples of u32Width bytes.
  Sources(Run &run, uint32_t sztSamples, uint32_t u32Width) {
    for (uint32_t i = 0; i < 36; ++i) {
      strides[i] = static_cast<uint16_t>(run.Draw(0, 5) < 3 ? 1 : run.Draw(0, 12));
      const uint32_t u32Elements = sztSamples == 0 ? 0 : (sztSamples - 1) * strides[i] + 1;
      data[i] = Noise(size_t{u32Elements} * u32Width, i);
      pointers[i] = run.Draw(0, 7) == 7 ? nullptr : data[i].data();
    }
  }
};

uint32_t CallWrite(const Write &write, ZE_KEST_Filter_s *pst, const Sources &sources) {
  auto *aps16 = reinterpret_cast<int16_t *const *>(sources.pointers.data());
  auto *aps32 = reinterpret_cast<int32_t *const *>(sources.pointers.data());
  const uint32_t n = write.sztSamples;
  const uint16_t *au16 = sources.strides.data();
  if (write.bAll && write.b32Bits)
    return ze_kest_Utility_WriteAllOutputPort32BitPcmBuffer(pst, n, aps32, au16);
  if (write.bAll) return ze_kest_Utility_WriteAllOutputPort16BitPcmBuffer(pst, n, aps16, au16);
  if (write.b32Bits) return ze_kest_Utility_WriteOutputPort32BitPcmBuffer(pst, write.u32Slot, n, aps32, au16);
  return ze_kest_Utility_WriteOutputPort16BitPcmBuffer(pst, write.u32Slot, n, aps16, au16);
}

void ModelWritePort(RandomPort &port, uint32_t sztSamples, const Sources &sources) {
  const ZE_KEST_PcmBuffer_s &pcm = port.st.stPcm;
  const uint32_t w = Width(port);
  for (uint32_t i = 0; i < 36; ++i) {
    const uint32_t g = i / 12;
    const uint32_t k = i % 12;
    if (pcm.apu8PcmGroupBuf[g] == nullptr || k >= pcm.astPcmGroup[g].u32ChannelCount) continue;
    if (sources.pointers[i] == nullptr || pcm.astPcmGroup[g].as32ChMap[k] == -1) continue;
    for (uint32_t n = 0; n < sztSamples; ++n) {
      CopyBytes(Sample(port, g, k, pcm.sztPcmLevel + pcm.sztPcmReadOffset + n),
                &sources.data[i][size_t{n} * sources.strides[i] * w], w);
    }
  }
}

uint32_t ModelWrite(const Write &write, RandomFilter &image, const Sources &sources) {
  for (uint32_t i = 0; i < ZE_KEST_MAX_PORTS; ++i) {
    RandomPort *pst = Served(image.Out(i), i);
    if (pst != nullptr && (write.bAll || i == write.u32Slot)) ModelWritePort(*pst, write.sztSamples, sources);
  }
  return write.bAll || Served(image.Out(write.u32Slot), write.u32Slot) != nullptr ? 0 : 8;
}

// A direct write must not go past the end of the ring; that is the caller's duty.
uint32_t RoomBeforeEnd(const RandomPort &port) {
  const ZE_KEST_PcmBuffer_s &pcm = port.st.stPcm;
  if (pcm.sztPcmRingSamples == 0) return 0;
  const uint32_t u32Position = pcm.sztPcmLevel + pcm.sztPcmReadOffset;
  // Sums in contradictory records may wrap; those are never written directly.
  return pcm.sztPcmRingSamples - u32Position % pcm.sztPcmRingSamples;
}

}  // namespace

void CheckReadPcm(Run &run) {
  const Reader &reader = kReaders[run.Draw(0, 2)];
  Read read = {reader, run.Draw(0, 8), 0, run.Draw(0, 23), 0, run.Draw(0, 24)};
  read.u32Last = run.bytes.ConsumeBool() ? run.Draw(0, 24) : read.u32First + run.Draw(0, 11);
  const RandomPort *pst = run.filter.In(read.u32Slot);
  const uint32_t u32Width = pst == nullptr ? 4 : Width(*pst);
  const uint32_t sztRing = pst == nullptr ? 64 : pst->st.stPcm.sztPcmRingSamples;
  read.sztSamples = run.Draw(0, run.bConsistent ? sztRing : 200);
  const uint32_t u32DstBytes = reader.u32DstBytes == 0 || read.u32Stride == 1 ? u32Width : reader.u32DstBytes;
  Bytes dst = Noise(size_t{read.sztSamples} * read.u32Stride * u32DstBytes, 3);
  Bytes expected = dst;
  run.Compare(
      "PCM read",
      [&](ZE_KEST_Filter_s *pstFilter) {
        return reader.pfnRead(pstFilter, read.u32Slot, dst.data(), read.sztSamples, read.u32First,
                              read.u32Last, read.u32Stride);
      },
      [&](RandomFilter &image) { return ModelRead(read, image, expected); });
  if (run.bConsistent) ExpectBytes(expected, dst, "the samples read");
}

void CheckWritePcm(Run &run) {
  Write write = {run.bytes.ConsumeBool(), run.bytes.ConsumeBool(), run.Draw(0, 8), 64};
  const ZE_KEST_Filter_s &st = run.filter.st;
  const bool bDirect = st.sztMaxOutPcmProcessSize != ZE_KEST_NO_BOUND && (st.u8Option & 4) != 0;
  if (bDirect && !run.bConsistent) return;
  uint32_t u32Width = 0;
  for (RandomPort *pst : All(run.filter, false)) {
    u32Width = std::max(u32Width, Width(*pst));
    const uint32_t sztMost = bDirect ? RoomBeforeEnd(*pst) : pst->st.stPcm.sztPcmRingSamples;
    if (sztMost != 0) write.sztSamples = std::min(write.sztSamples, sztMost);
  }
  write.sztSamples = run.Draw(0, run.bConsistent ? write.sztSamples : 200);
  const Sources sources(run, write.sztSamples, u32Width);
  run.Compare(
      "PCM write", [&](ZE_KEST_Filter_s *pst) { return CallWrite(write, pst, sources); },
      [&](RandomFilter &image) { return ModelWrite(write, image, sources); });
}

}  // namespace kest::fuzz
