// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/sine_output.h"

#include <cstring>

#include "ze_kest/debug.h"

#include "debug/datapath/hook_filter.h"
#include "debug/datapath/pcm_planes.h"

namespace kest {

FilterSelection _stKestSineSelection = {{}, kOutputSineWave};

namespace {

constexpr uint32_t kDefaultChannels = 2;
constexpr uint32_t kSampleBytes = sizeof(int16_t);

uint32_t u32SineWavePos = 0;  // index of the next sample; one for all filters

int16_t NextSample(uint32_t &u32Pos) {
  const auto s16Sample = static_cast<int16_t>(_as32KestSine1K48Mono[u32Pos] >> 16);
  u32Pos = u32Pos + 1 == ZE_KEST_SINE_SAMPLES ? 0 : u32Pos + 1;
  return s16Sample;
}

// Deliberate: the level and the write size count samples but are used as bytes here, and the interleaved
// frames do not wrap round the ring. They stop at the end of the group's storage.
void WriteSine(const ZE_KEST_PcmBuffer_s &stPcm, uint32_t u32Channels) {
  const uint64_t u64End = GroupBytes(stPcm, 0, kSampleBytes);
  const uint64_t u64Stop = std::min(u64End, uint64_t{stPcm.sztPcmLevel} + stPcm.sztPcmWriteSize);
  const uint64_t u64FrameBytes = uint64_t{u32Channels} * kSampleBytes;
  uint32_t u32Pos = Load(u32SineWavePos);
  for (uint64_t u64Frame = stPcm.sztPcmLevel; u64Frame < u64Stop; u64Frame += u64FrameBytes) {
    const int16_t s16Sample = NextSample(u32Pos);
    const uint64_t u64FrameEnd = std::min(u64Frame + u64FrameBytes, u64End);
    for (uint64_t u64At = u64Frame; u64At + kSampleBytes <= u64FrameEnd; u64At += kSampleBytes)
      memcpy(stPcm.apu8PcmGroupBuf[0] + u64At, &s16Sample, kSampleBytes);
  }
  Store(u32SineWavePos, u32Pos);
}

}  // namespace

uint32_t _ZE_KEST_Debug_OutputSineWave(const ZE_KEST_Filter_s *pstFilter) {
  KEST_REQUIRE_PIPELINE(pstFilter);
  if (!IsSelected(_stKestSineSelection, *pstFilter)) return ZE_KEST_OK;
  const ZE_KEST_Port_s *pstPort = pstFilter->apstOutPort[0];
  if (pstPort == nullptr || pstPort->stPcm.sztPcmWriteSize == 0) return ZE_KEST_OK;
  if (pstPort->stPcm.apu8PcmGroupBuf[0] == nullptr) return ZE_KEST_OK;
  const uint32_t u32Channels = pstPort->stPcm.stPcmInfo.u32TotalChannels;
  WriteSine(pstPort->stPcm, u32Channels == 0 ? kDefaultChannels : u32Channels);
  return ZE_KEST_OK;
}

void RestartSine() {
  Store(u32SineWavePos, uint32_t{0});
}

}  // namespace kest
