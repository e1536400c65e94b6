// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include "ze_kest/debug.h"

#include "debug/base/debug_mutex.h"
#include "debug/datapath/hook_filter.h"
#include "debug/datapath/latency_sides.h"
#include "debug/datapath/latency_state.h"
#include "debug/datapath/pcm_planes.h"
#include "debug/registry/registry.h"
#include "utility/core/monotonic_us.h"

namespace kest {
namespace {

constexpr const char *kFunction = "_ZE_KEST_Debug_ChangeInputSignal";

struct Input {
  const ZE_KEST_Filter_s &filter;
  uint32_t u32Slot;
  const ZE_KEST_PcmBuffer_s &stPcm;
};

template <typename Action>
void ForEachPlane(const ZE_KEST_PcmBuffer_s &stPcm, Action &&action) {
  for (uint32_t u32Group = 0; u32Group < ZE_KEST_PCM_GROUPS; ++u32Group) {
    const uint32_t u32Planes = PlaneCount(stPcm, u32Group, BytesPerSample(stPcm));
    for (uint32_t u32Plane = 0; u32Plane < u32Planes; ++u32Plane)
      action(SlotRing(stPcm, u32Group, u32Plane));
  }
}

void Silence(const ZE_KEST_PcmBuffer_s &stPcm) {
  const size_t sztWidth = BytesPerSample(stPcm);
  const uint32_t sztToEnd = std::min(stPcm.sztPcmLevel, stPcm.sztPcmRingSamples - stPcm.sztPcmReadOffset);
  ForEachPlane(stPcm, [&stPcm, sztWidth, sztToEnd](uint8_t *pu8Plane) {
    memset(pu8Plane + stPcm.sztPcmReadOffset * sztWidth, 0, sztToEnd * sztWidth);
    memset(pu8Plane, 0, (stPcm.sztPcmLevel - sztToEnd) * sztWidth);
  });
}

// Copies the bytes of the 32-bit table unchanged, whatever the width of the port's samples.
void WriteBurst(const ZE_KEST_PcmBuffer_s &stPcm, uint32_t sztSamples) {
  const uint32_t u32Width = BytesPerSample(stPcm);
  const uint64_t u64Bytes =
      std::min<uint64_t>(uint64_t{sztSamples} * u32Width, sizeof(_as32KestSine1K48Mono));
  ForEachPlane(stPcm, [&stPcm, u32Width, u64Bytes](uint8_t *pu8Plane) {
    ze_kest_Utility_WriteDataToNonInterleaveRingBuffer(
        pu8Plane, pu8Plane + size_t{stPcm.sztPcmReadOffset} * u32Width, stPcm.sztPcmRingSamples * u32Width,
        reinterpret_cast<const uint8_t *>(_as32KestSine1K48Mono), u64Bytes, 1, u32Width);
  });
}

void PrintFilterLevel(const char *pszFunction, const ZE_KEST_DebugInfo_s &info,
                      const ZE_KEST_PcmBuffer_s &stPcm) {
  const uint32_t sztLevel = Load(stPcm.sztPcmLevel);
  const uint32_t u32Rate = Load(stPcm.stPcmInfo.u32SampleRate);
  const uint64_t u64Ms = uint64_t{sztLevel} * 1000 / (u32Rate == 0 ? kDefaultSampleRate : u32Rate);
  KEST_PRINT_AS(pszFunction, "[latency] p:%-20s f:%-15s outLvl:%-10zu, %-4llu ms\n", info.szName,
                info.pstFilter->szName, size_t{sztLevel}, static_cast<unsigned long long>(u64Ms));
}

// Prints what every filter's first output port holds, which shows where the signal is delayed.
void _ZE_KEST_Debug_PrintBufferLevel() {
  const HoldingDebug holding;
  for (const ZE_KEST_DebugInfo_s &info : Registry()) {
    if (info.pstFilter == nullptr || info.pstFilter->apstOutPort[0] == nullptr) continue;
    PrintFilterLevel(__func__, info, info.pstFilter->apstOutPort[0]->stPcm);
  }
}

void InsertBurst(const Input &input) {
  const char *pszPipelineName = input.filter.pstParentPipeline->szName;
  const char *pszFilterName = input.filter.szName;
  const uint32_t sztSamples = std::min<uint32_t>(input.stPcm.sztPcmLevel, ZE_KEST_SINE_SAMPLES);
  WriteBurst(input.stPcm, sztSamples);
  if (sztSamples < ZE_KEST_SINE_SAMPLES) {
    KEST_PRINT_AS(kFunction, "[latency] %s:%s input %u 48k sine waveonly %u not 48 samples)\n",
                  pszPipelineName, pszFilterName, input.u32Slot, sztSamples);
  }
  Store(_stKestLatency.u64StartTime, MonotonicUs());
  KEST_PRINT_AS(kFunction, "[latency] insert %s:%s input %u48k sine wave pts:%llu \n", pszPipelineName,
                pszFilterName, input.u32Slot, static_cast<unsigned long long>(input.stPcm.s64PcmPts));
  _ZE_KEST_Debug_PrintBufferLevel();
  Mark(_stKestLatency.bInserted);
}

void ChangeInput(const Input &input) {
  uint32_t &u32Cycles = _stKestLatency.au32SilentCycles[input.u32Slot];
  const uint32_t u32Served = Load(u32Cycles);
  if (u32Served > kSilentCycles) return;
  Silence(input.stPcm);
  if (u32Served == kSilentCycles) InsertBurst(input);
  Store(u32Cycles, u32Served + 1);
}

bool HasInput(const ZE_KEST_Port_s &port) {
  const ZE_KEST_PcmBuffer_s &stPcm = port.stPcm;
  return port.bConnected != 0 && stPcm.sztPcmLevel != 0 &&
         RingPosition(stPcm.sztPcmRingSamples, stPcm.sztPcmReadOffset, stPcm.sztPcmLevel);
}

// Out of line, so that a cycle without a measurement stays short.
__attribute__((noinline)) void ChangeInputs(const ZE_KEST_Filter_s &filter) {
  if (!Matches(_stKestLatency.stStart, filter)) return;
  for (uint32_t u32Slot = 0; u32Slot < ZE_KEST_MAX_PORTS; ++u32Slot) {
    const ZE_KEST_Port_s *pstPort = filter.apstInPort[u32Slot];
    if (pstPort != nullptr && HasInput(*pstPort)) ChangeInput({filter, u32Slot, pstPort->stPcm});
  }
}

}  // namespace

uint32_t _ZE_KEST_Debug_MeasureLatency_Start(const ZE_KEST_Filter_s *pstFilter) {
  KEST_REQUIRE_PIPELINE(pstFilter);
  if (IsOn(kMeasureLatency)) ChangeInputs(*pstFilter);
  return ZE_KEST_OK;
}

}  // namespace kest
