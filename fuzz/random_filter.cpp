// SPDX-License-Identifier: Apache-2.0
#include "fuzz/random_filter.h"

#include <algorithm>
#include <cstring>

namespace kest::fuzz {
namespace {

constexpr size_t kNoiseBytes = 4096;
constexpr uint32_t kChannels[ZE_KEST_PCM_GROUPS] = {2, 10, 10};
constexpr uint32_t kOdd[] = {0, 1, 15, 16, 63, 64, 65, 127, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF0, 0xFFFFFFFF};

// A number up to a limit, or an odd one when the records may contradict each other.
uint32_t UpTo(FuzzedDataProvider &bytes, uint32_t u32Most, Records records) {
  if (records == Records::kContradictory && bytes.ConsumeIntegralInRange(0, 3) == 0) {
    return bytes.PickValueInArray(kOdd);
  }
  return bytes.ConsumeIntegralInRange<uint32_t>(0, u32Most);
}

bool OneIn(FuzzedDataProvider &bytes, int s32Cases) {
  return bytes.ConsumeIntegralInRange(1, s32Cases) == s32Cases;
}

void FillRing(FuzzedDataProvider &bytes, ZE_KEST_DataBuffer_s &st, Bytes &storage, uint32_t u32Size,
              Records records) {
  storage = Noise(u32Size, u32Size);
  st.pu8Buf = u32Size == 0 ? nullptr : storage.data();
  st.sztSize = u32Size;
  st.sztLevel = UpTo(bytes, u32Size, records);
  st.sztSpace = u32Size - st.sztLevel;
  st.sztReadOffset = UpTo(bytes, u32Size == 0 ? 0 : u32Size - 1, records);
  st.sztReadSize = UpTo(bytes, st.sztLevel, records);
  st.sztWriteSize = UpTo(bytes, st.sztSpace, records);
  st.sztTotalRead = 0xFFFFFFF8;
  st.au64Count[0] = 7;
}

void FillSide(FuzzedDataProvider &bytes, std::array<RandomPort, ZE_KEST_MAX_PORTS> &ports,
              ZE_KEST_Port_s **apst, uint32_t &u32Count, Records records) {
  u32Count = UpTo(bytes, ZE_KEST_MAX_PORTS, records);
  for (uint32_t u32Slot = 0; u32Slot < ZE_KEST_MAX_PORTS && u32Slot < u32Count; ++u32Slot) {
    if (OneIn(bytes, 6)) continue;
    ports[u32Slot].Fill(bytes, records);
    apst[u32Slot] = &ports[u32Slot].st;
  }
}

}  // namespace

Bytes Noise(size_t sztCount, uint32_t u32Seed) {
  Bytes bytes;
  bytes.reserve(std::max<size_t>(sztCount, 1));  // so that an empty buffer has an address, too
  bytes.resize(sztCount);
  for (uint8_t &u8Byte : bytes) {
    u32Seed = u32Seed * 1664525u + 1013904223u;
    u8Byte = static_cast<uint8_t>(u32Seed >> 24);
  }
  return bytes;
}

Bytes WithNoise(const uint8_t *pu8Data, size_t sztSize) {
  uint32_t u32Seed = 0;
  for (size_t i = 0; i < sztSize; ++i)
    u32Seed = u32Seed * 31 + pu8Data[i];
  Bytes bytes = Noise(kNoiseBytes, u32Seed);
  // FuzzedDataProvider draws numbers from the end, so the input comes last.
  bytes.insert(bytes.end(), pu8Data, pu8Data + sztSize);
  return bytes;
}

void RandomPort::Fill(FuzzedDataProvider &bytes, Records records) {
  st.bConnected = bytes.ConsumeIntegralInRange<uint32_t>(0, 3);
  FillPcm(bytes, records);
  FillRing(bytes, st.stRaw, raw, bytes.ConsumeIntegralInRange<uint32_t>(0, 100), records);
  // A multiple of the header's size, so that no header straddles the end.
  FillRing(bytes, st.stMeta, meta, bytes.ConsumeIntegralInRange<uint32_t>(0, 20) * 16, records);
  if (records != Records::kContradictory && !meta.empty()) FillBlocks(bytes);
}

void RandomPort::FillPcm(FuzzedDataProvider &bytes, Records records) {
  ZE_KEST_PcmBuffer_s &pcm = st.stPcm;
  pcm.sztPcmRingSamples = OneIn(bytes, 8) ? 0 : bytes.ConsumeIntegralInRange<uint32_t>(1, 64);
  pcm.sztPcmLevel = UpTo(bytes, pcm.sztPcmRingSamples, records);
  pcm.sztPcmSpace = pcm.sztPcmRingSamples - pcm.sztPcmLevel;
  pcm.sztPcmReadSize = UpTo(bytes, pcm.sztPcmLevel, records);
  pcm.sztPcmWriteSize = UpTo(bytes, pcm.sztPcmSpace, records);
  pcm.sztPcmReadOffset = UpTo(bytes, pcm.sztPcmRingSamples == 0 ? 0 : pcm.sztPcmRingSamples - 1, records);
  pcm.sztPcmTotalRead = 0xFFFFFFF8;
  pcm.stPcmInfo = {0, 48000, 8 * bytes.ConsumeIntegralInRange<uint32_t>(2, 4), {1, 2}};
  pcm.u32PcmGroupNum = OneIn(bytes, 8) ? 0 : ZE_KEST_PCM_GROUPS;
  for (uint32_t u32Group = 0; u32Group < ZE_KEST_PCM_GROUPS; ++u32Group)
    FillGroup(bytes, u32Group, records);
  if (OneIn(bytes, 8)) pcm.stPcmInfo.u32TotalChannels = 1;
  // The storage fits the width above, so any smaller width, however odd, stays inside it.
  if (records == Records::kContradictory && OneIn(bytes, 4)) {
    pcm.stPcmInfo.u32BitWidth = bytes.ConsumeIntegralInRange<uint32_t>(0, pcm.stPcmInfo.u32BitWidth);
  }
}

void RandomPort::FillGroup(FuzzedDataProvider &bytes, uint32_t u32Group, Records records) {
  ZE_KEST_PcmBuffer_s &pcm = st.stPcm;
  ZE_KEST_PcmGroup_s &group = pcm.astPcmGroup[u32Group];
  group.ePcmGroupType = OneIn(bytes, 8) ? -1 : static_cast<int32_t>(u32Group);
  group.u32ChannelCount = UpTo(bytes, kChannels[u32Group], records);
  const auto u16Silent = bytes.ConsumeIntegral<uint16_t>();
  for (uint32_t u32Slot = 0; u32Slot < ZE_KEST_PCM_GROUP_SLOTS; ++u32Slot) {
    const bool bCarried = u32Slot < group.u32ChannelCount && (u16Silent >> u32Slot & 1) == 0;
    group.as32ChMap[u32Slot] = bCarried ? static_cast<int32_t>(u32Slot) : -1;
  }
  if (pcm.sztPcmRingSamples == 0 || OneIn(bytes, 4)) return;
  uint32_t u32Slots = kChannels[u32Group];
  if (records == Records::kTight) u32Slots = group.u32ChannelCount;
  if (records == Records::kContradictory) u32Slots = ZE_KEST_PCM_GROUP_SLOTS;
  const size_t sztBytes = size_t{u32Slots} * pcm.sztPcmRingSamples * (pcm.stPcmInfo.u32BitWidth / 8);
  if (sztBytes == 0) return;
  groups[u32Group] = Noise(sztBytes, u32Group + static_cast<uint32_t>(sztBytes));
  pcm.apu8PcmGroupBuf[u32Group] = groups[u32Group].data();
  pcm.asztPcmAllocSize[u32Group] = static_cast<uint32_t>(sztBytes);
  if (group.ePcmGroupType != -1) pcm.stPcmInfo.u32TotalChannels += group.u32ChannelCount;
}

// Fills the level with whole blocks; the read size covers some of them.
void RandomPort::FillBlocks(FuzzedDataProvider &bytes) {
  ZE_KEST_DataBuffer_s &ring = st.stMeta;
  ring.sztReadOffset -= ring.sztReadOffset % 16;
  const uint32_t u32Most = ring.sztLevel;
  ring.sztLevel = ring.sztReadSize = 0;
  while (true) {
    const uint32_t u32Payload = bytes.ConsumeIntegralInRange<uint32_t>(0, 4) * 16;
    if (ring.sztLevel + u32Payload + 16 > u32Most) break;
    uint8_t *pu8Header = meta.data() + (ring.sztReadOffset + ring.sztLevel) % ring.sztSize;
    memcpy(pu8Header + 4, &u32Payload, sizeof(u32Payload));
    ring.sztLevel += u32Payload + 16;
    if (bytes.ConsumeBool()) ring.sztReadSize = ring.sztLevel;
  }
  ring.sztSpace = ring.sztSize - ring.sztLevel;
  if (ring.sztWriteSize > ring.sztSpace) ring.sztWriteSize = ring.sztSpace;
}

RandomFilter::RandomFilter(FuzzedDataProvider &bytes, Records records, const char *pszPipeline,
                           const char *pszFilter) {
  strncpy(stPipeline.szName, pszPipeline, sizeof(stPipeline.szName) - 1);
  strncpy(st.szName, pszFilter, sizeof(st.szName) - 1);
  st.pstParentPipeline = &stPipeline;
  st.sztMaxInPcmProcessSize = bytes.ConsumeBool() ? ZE_KEST_NO_BOUND : UpTo(bytes, 64, records);
  st.sztMaxOutPcmProcessSize = bytes.ConsumeBool() ? ZE_KEST_NO_BOUND : UpTo(bytes, 64, records);
  st.u8Option = bytes.ConsumeIntegralInRange<uint8_t>(0, 7);
  FillSide(bytes, inputs, st.apstInPort, st.u32InPortCount, records);
  FillSide(bytes, outputs, st.apstOutPort, st.u32OutPortCount, records);
}

}  // namespace kest::fuzz
