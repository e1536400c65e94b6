// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include "debug/datapath/file_name.h"
#include "debug/datapath/hook_filter.h"
#include "debug/datapath/latency_sides.h"
#include "debug/datapath/latency_state.h"
#include "debug/datapath/pcm_planes.h"
#include "utility/core/monotonic_us.h"

namespace kest {
namespace {

constexpr const char *kFunction = "_ZE_KEST_Debug_MeasureLatency_Stop";
constexpr int32_t kThreshold = 21474836;  // 1/100 of full scale
constexpr uint32_t kWordBytes = sizeof(int32_t);
constexpr uint32_t kDefaultBits = 32;

// What the end filter wrote in this cycle. Only channel 0 of group 0 is examined.
struct Output {
  const ZE_KEST_Filter_s &filter;
  const ZE_KEST_PcmBuffer_s &stPcm;
  uint32_t u32Position;  // of its first sample in the ring

  [[nodiscard]] const uint8_t *Base() const { return stPcm.apu8PcmGroupBuf[0]; }
  [[nodiscard]] size_t RingBytes(uint32_t u32Width) const {
    return size_t{stPcm.sztPcmRingSamples} * u32Width;
  }
  [[nodiscard]] size_t CycleBytes(uint32_t u32Width) const {
    return size_t{stPcm.sztPcmWriteSize} * u32Width;
  }
};

struct Hit {
  const uint8_t *pu8Position;
  int32_t s32Sample;
  size_t sztOffset;  // bytes of the cycle before it
};

std::optional<Output> OutputOf(const ZE_KEST_Filter_s &filter) {
  const ZE_KEST_Port_s *pstPort = filter.apstOutPort[0];
  if (pstPort == nullptr || pstPort->stPcm.apu8PcmGroupBuf[0] == nullptr) return std::nullopt;
  const ZE_KEST_PcmBuffer_s &stPcm = pstPort->stPcm;
  const auto position = RingPosition(stPcm.sztPcmRingSamples, stPcm.sztPcmReadOffset, stPcm.sztPcmLevel);
  if (!position || stPcm.sztPcmWriteSize == 0 || stPcm.sztPcmWriteSize > stPcm.sztPcmRingSamples) {
    return std::nullopt;
  }
  return Output{filter, stPcm, *position};
}

int32_t WordAt(const uint8_t *pu8) {
  int32_t s32Word;
  memcpy(&s32Word, pu8, sizeof(s32Word));
  return s32Word;
}

bool IsLoud(int32_t s32Sample) {
  return s32Sample > kThreshold || s32Sample < -kThreshold;
}

// Deliberate: examines 32-bit words, one for each sample of the cycle, whatever the samples' width.
// Deliberate too: the search wraps one word late. After the ring's last word it examines the one just past
// it, the first word of the next plane, before it goes on at the start; where the storage has no such word,
// it goes on at the start at once. The first position of a cycle follows the same rule.
std::optional<Hit> FindBurst(const Output &output, uint32_t u32Width) {
  const size_t sztRing = output.RingBytes(u32Width);
  const uint64_t u64Storage = GroupBytes(output.stPcm, 0, u32Width);
  if (sztRing > u64Storage || u64Storage < kWordBytes) return std::nullopt;
  const auto wrap = [sztRing, u64Storage](size_t sztPosition) {
    return sztPosition > sztRing || sztPosition + kWordBytes > u64Storage ? 0 : sztPosition;
  };
  size_t sztPosition = wrap(size_t{output.u32Position} * u32Width);
  for (size_t sztOffset = 0; sztOffset < output.CycleBytes(u32Width); sztOffset += u32Width) {
    const uint8_t *pu8Position = output.Base() + sztPosition;
    const int32_t s32Word = WordAt(pu8Position);
    if (IsLoud(s32Word)) return Hit{pu8Position, s32Word, sztOffset};
    sztPosition = wrap(sztPosition + kWordBytes);
  }
  return std::nullopt;
}

void TakeTimes() {
  const uint64_t u64Start = Load(_stKestLatency.u64StartTime);
  const uint64_t u64End = MonotonicUs();
  Store(_stKestLatency.u64EndTime, u64End);
  Store(_stKestLatency.u64ProcTime, u64End < u64Start ? 0 : u64End - u64Start);
}

// The format of a single channel of the port.
ZE_KEST_PcmInfo_s ChannelFormat(const ZE_KEST_PcmInfo_s &stInfo) {
  return {1,
          stInfo.u32SampleRate == 0 ? kDefaultSampleRate : stInfo.u32SampleRate,
          stInfo.u32BitWidth == 0 ? kDefaultBits : stInfo.u32BitWidth,
          {}};
}

unsigned long long RealLatencyMs(uint32_t u32TotalBytes, const ZE_KEST_PcmInfo_s &stFormat) {
  const uint32_t u32BytesPerMs = ze_kest_Utility_BytesPerMs(&stFormat);
  return u32BytesPerMs == 0 ? 0 : u32TotalBytes / u32BytesPerMs;
}

void PrintHit(const Output &output, const Hit &hit) {
  const char *pszPipelineName = output.filter.pstParentPipeline->szName;
  const char *pszFilterName = output.filter.szName;
  const ZE_KEST_PcmInfo_s stFormat = ChannelFormat(output.stPcm.stPcmInfo);
  const uint32_t u32TotalBytes = Load(_stKestLatency.u32TotalBytes);
  KEST_PRINT_AS(kFunction, "[latency]%s:%s ch:%u sr:%u bits:%u\n", pszPipelineName, pszFilterName,
                stFormat.u32TotalChannels, stFormat.u32SampleRate, stFormat.u32BitWidth);
  KEST_PRINT_AS(kFunction, "[latency]%s:%s find[%p]:0x%08x offset:%u\n", pszPipelineName, pszFilterName,
                static_cast<const void *>(hit.pu8Position), static_cast<uint32_t>(hit.s32Sample),
                static_cast<uint32_t>(hit.sztOffset));
  KEST_PRINT_AS(kFunction, "[latency] %s:%s %u TotalBytes:%u RealLatency:%llu ms\n", pszPipelineName,
                pszFilterName, Load(_stKestLatency.u32MeasureIndex), u32TotalBytes,
                RealLatencyMs(u32TotalBytes, stFormat));
}

void PrintTimes() {
  const LatencyNames names;
  KEST_PRINT_AS(kFunction, "[latency] %s:%s -%s:%s StartTime:%llu EndTime:%llu ProcTime:%llu us\n",
                names.start.pipeline.c_str(), names.start.filter.c_str(), names.end.pipeline.c_str(),
                names.end.filter.c_str(), static_cast<unsigned long long>(Load(_stKestLatency.u64StartTime)),
                static_cast<unsigned long long>(Load(_stKestLatency.u64EndTime)),
                static_cast<unsigned long long>(Load(_stKestLatency.u64ProcTime)));
}

// Appends bytes of the ring to a file of this measurement. The ring ends where it would with samples of
// u32Width bytes.
void Append(const Output &output, const char *pszPrefix, const uint8_t *pu8From, uint32_t u32Width,
            size_t sztBytes) {
  const FileName file(kFunction, "%s%s%s_%u.pcm", pszPrefix, LatencyNames().start.filter.c_str(),
                      output.filter.szName, Load(_stKestLatency.u32MeasureIndex));
  ze_kest_Utility_DumpRingBuffer(KEST_DEBUG_DIR, file.c_str(), pu8From, output.Base(),
                                 output.Base() + output.RingBytes(u32Width), sztBytes);
}

void Search(const Output &output) {
  if (!IsMarked(_stKestLatency.bInserted) || IsMarked(_stKestLatency.bFound)) return;
  const ZE_KEST_PcmBuffer_s &stPcm = output.stPcm;
  const uint32_t u32Width = BytesPerSample(stPcm);
  KEST_PRINT_AS(kFunction, "%p %p %p %u %zu %zu %u\n",
                static_cast<const void *>(output.Base() + size_t{output.u32Position} * u32Width),
                static_cast<const void *>(output.Base()),
                static_cast<const void *>(output.Base() + output.RingBytes(u32Width)), stPcm.sztPcmReadOffset,
                size_t{stPcm.sztPcmRingSamples}, size_t{stPcm.sztPcmLevel}, u32Width);
  const std::optional<Hit> hit = FindBurst(output, u32Width);
  const size_t sztScanned = hit ? hit->sztOffset : output.CycleBytes(u32Width);
  Store(_stKestLatency.u32TotalBytes, Load(_stKestLatency.u32TotalBytes) + static_cast<uint32_t>(sztScanned));
  if (!hit) return;
  TakeTimes();
  Mark(_stKestLatency.bFound);
  PrintHit(output, *hit);
  PrintTimes();
  Append(output, "OutSig", hit->pu8Position, u32Width, output.CycleBytes(u32Width) - hit->sztOffset);
}

// Deliberate: dumps all that the filter wrote as 4-byte samples, whatever their width. Does nothing when the
// storage is too small for a ring of such samples.
void DumpOutput(const Output &output) {
  if (output.RingBytes(kWordBytes) > GroupBytes(output.stPcm, 0, kWordBytes)) return;
  Append(output, "Out", output.Base() + size_t{output.u32Position} * kWordBytes, kWordBytes,
         output.CycleBytes(kWordBytes));
}

}  // namespace

uint32_t _ZE_KEST_Debug_MeasureLatency_Stop(const ZE_KEST_Filter_s *pstFilter) {
  KEST_REQUIRE_PIPELINE(pstFilter);
  if (!IsOn(kMeasureLatency) || !Matches(_stKestLatency.stEnd, *pstFilter)) return ZE_KEST_OK;
  const std::optional<Output> output = OutputOf(*pstFilter);
  if (!output) return ZE_KEST_OK;
  Search(*output);
  DumpOutput(*output);
  return ZE_KEST_OK;
}

}  // namespace kest
