// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "ze_kest/port.h"

#include "utility/core/report.h"
#include "utility/port/port_walk.h"

namespace {

// The rules are template arguments because an indirect call per port would cost as much as the rest of the
// walk.
using Value = uint32_t (*)(const ZE_KEST_Port_s &);
using Counts = bool (*)(const ZE_KEST_Port_s &);

// The minimum of u32Least and the values of those of the last u32LastSlots ports that count. Usually all
// ports have the same value, so whether a port counts is checked last.
template <Counts pfnCounts, Value pfnValue>
uint32_t Least(const kest::PortSide &stSide, uint32_t u32LastSlots, uint32_t u32Least) {
  stSide.ForEachOfLast(
      u32LastSlots, [&](const ZE_KEST_Port_s &stPort) __attribute__((always_inline)) {
        const uint32_t u32Value = pfnValue(stPort);
        if (u32Value < u32Least && pfnCounts(stPort)) u32Least = u32Value;
      });
  return u32Least;
}

// The minimum over the first port that satisfies pfnCountsFirst and the ports after it that satisfy
// pfnCounts; 0 when there is no first one.
template <Counts pfnCountsFirst, Counts pfnCounts, Value pfnValue>
uint32_t LeastFrom(const kest::PortSide &stSide) {
  for (uint32_t u32Left = stSide.Count(); u32Left != 0; --u32Left) {
    const ZE_KEST_Port_s *pstPort = stSide.AtFromEnd(u32Left);
    if (pstPort == nullptr || !pfnCountsFirst(*pstPort)) continue;
    return Least<pfnCounts, pfnValue>(stSide, u32Left - 1, pfnValue(*pstPort));
  }
  return 0;
}

// The minimum over the ports that count. UINT32_MAX, which no ring can hold, also becomes 0.
template <Counts pfnCounts, Value pfnValue>
uint32_t LeastOf(const kest::PortSide &stSide) {
  const uint32_t u32Least = LeastFrom<pfnCounts, pfnCounts, pfnValue>(stSide);
  return u32Least == UINT32_MAX ? 0 : u32Least;
}

template <Value pfnValue>
bool HasData(const ZE_KEST_Port_s &stPort) {
  return pfnValue(stPort) != 0;
}

bool IsConnected(const ZE_KEST_Port_s &stPort) {
  return stPort.bConnected != 0;
}

// The minimum over inputs that may still be waiting for their first data: empty ports before the first one
// with data are skipped, connected or not, but an empty connected port after it stops the processing.
template <Value pfnValue>
uint32_t LeastBehindFirstData(const kest::PortSide &stSide) {
  return LeastFrom<HasData<pfnValue>, IsConnected, pfnValue>(stSide);
}

bool HasPcm(const ZE_KEST_Port_s &stPort) {
  return stPort.stPcm.sztPcmRingSamples != 0;
}

bool HasRaw(const ZE_KEST_Port_s &stPort) {
  return stPort.stRaw.sztSize != 0;
}

bool HasRawConnected(const ZE_KEST_Port_s &stPort) {
  return IsConnected(stPort) && HasRaw(stPort);
}

bool HasMetaConnected(const ZE_KEST_Port_s &stPort) {
  return IsConnected(stPort) && stPort.stMeta.sztSize != 0;
}

// Deliberate: PCM levels are not reduced by what this cycle has already consumed, unlike those of the byte
// rings.
uint32_t PcmLevel(const ZE_KEST_Port_s &stPort) {
  return stPort.stPcm.sztPcmLevel;
}

uint32_t PcmSpace(const ZE_KEST_Port_s &stPort) {
  return stPort.stPcm.sztPcmSpace;
}

template <ZE_KEST_DataBuffer_s ZE_KEST_Port_s::*kRing>
uint32_t Unread(const ZE_KEST_Port_s &stPort) {
  return (stPort.*kRing).sztLevel - (stPort.*kRing).sztReadSize;
}

template <ZE_KEST_DataBuffer_s ZE_KEST_Port_s::*kRing>
uint32_t Unwritten(const ZE_KEST_Port_s &stPort) {
  return (stPort.*kRing).sztSpace - (stPort.*kRing).sztWriteSize;
}

uint32_t InPcmBound(const ZE_KEST_Filter_s &stFilter) {
  return stFilter.sztMaxInPcmProcessSize;
}

uint32_t OutPcmBound(const ZE_KEST_Filter_s &stFilter) {
  return stFilter.sztMaxOutPcmProcessSize;
}

uint32_t NoBound(const ZE_KEST_Filter_s &) {
  return UINT32_MAX;
}

using SideOf = kest::PortSide (*)(const ZE_KEST_Filter_s &);
using LeastOfSide = uint32_t (*)(const kest::PortSide &);
using Bound = uint32_t (*)(const ZE_KEST_Filter_s &);

// Out of line, because otherwise the compiler would load what the report needs before any check.
__attribute__((cold, noinline)) uint32_t RefuseNull(const char *pszFunction,
                                                    const ZE_KEST_Filter_s *pstFilter) {
  KEST_REQUIRE_AS(pszFunction, pstFilter != nullptr, "pstFilter is NULL.\n");
  KEST_ERR_AS(pszFunction, "psztProcessSize is NULL.\n");
  return ZE_KEST_INVALID_ARGUMENT;
}

template <SideOf pfnSide, LeastOfSide pfnLeast, Bound pfnBound>
uint32_t Calculate(const char *pszFunction, const ZE_KEST_Filter_s *pstFilter, uint32_t *psztProcessSize) {
  if (pstFilter == nullptr) return RefuseNull(pszFunction, pstFilter);
  if (psztProcessSize == nullptr) return RefuseNull(pszFunction, pstFilter);
  const uint32_t u32Size = std::min(pfnLeast(pfnSide(*pstFilter)), pfnBound(*pstFilter));
  *psztProcessSize = u32Size;
  return u32Size == 0 ? ZE_KEST_NOTHING_TO_PROCESS : ZE_KEST_OK;
}

constexpr auto kUnreadMeta = Unread<&ZE_KEST_Port_s::stMeta>;
constexpr auto kUnreadRaw = Unread<&ZE_KEST_Port_s::stRaw>;
constexpr auto kUnwrittenMeta = Unwritten<&ZE_KEST_Port_s::stMeta>;
constexpr auto kUnwrittenRaw = Unwritten<&ZE_KEST_Port_s::stRaw>;

constexpr auto kInputPcm = Calculate<kest::InputSide, LeastBehindFirstData<PcmLevel>, InPcmBound>;
constexpr auto kOutputPcm = Calculate<kest::OutputSide, LeastOf<HasPcm, PcmSpace>, OutPcmBound>;
constexpr auto kInputMeta = Calculate<kest::InputSide, LeastBehindFirstData<kUnreadMeta>, NoBound>;
constexpr auto kOutputMeta = Calculate<kest::OutputSide, LeastOf<HasMetaConnected, kUnwrittenMeta>, NoBound>;
constexpr auto kInputRaw = Calculate<kest::InputSide, LeastOf<HasRaw, kUnreadRaw>, NoBound>;
constexpr auto kOutputRaw = Calculate<kest::OutputSide, LeastOf<HasRawConnected, kUnwrittenRaw>, NoBound>;

}  // namespace

uint32_t ze_kest_Utility_CalculateInputPortPcmProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                          uint32_t *psztProcessSize) {
  return kInputPcm(__func__, pstFilter, psztProcessSize);
}

uint32_t ze_kest_Utility_CalculateOutputPortPcmProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                           uint32_t *psztProcessSize) {
  return kOutputPcm(__func__, pstFilter, psztProcessSize);
}

uint32_t ze_kest_Utility_CalculateInputPortMetadataProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                               uint32_t *psztProcessSize) {
  return kInputMeta(__func__, pstFilter, psztProcessSize);
}

uint32_t ze_kest_Utility_CalculateOutputPortMetadataProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                                uint32_t *psztProcessSize) {
  return kOutputMeta(__func__, pstFilter, psztProcessSize);
}

uint32_t ze_kest_Utility_CalculateInputPortRawProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                          uint32_t *psztProcessSize) {
  return kInputRaw(__func__, pstFilter, psztProcessSize);
}

uint32_t ze_kest_Utility_CalculateOutputPortRawProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                           uint32_t *psztProcessSize) {
  return kOutputRaw(__func__, pstFilter, psztProcessSize);
}
