// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "ze_kest/port.h"

#include "utility/core/report.h"
#include "utility/port/port_walk.h"

namespace {

using Value = uint32_t (*)(const ZE_KEST_Port_s &);
using Counts = bool (*)(const ZE_KEST_Port_s &);

// One of the process sizes: the minimum of the values of the ports of one side. The rows are template
// arguments because an indirect call per port would cost as much as the rest of the walk.
struct ProcessSize {
  kest::PortSide (*pfnSide)(const ZE_KEST_Filter_s &);
  Counts pfnBegins;  // the ports before the first one for which this holds do not count
  Counts pfnCounts;  // whether a port after that one counts
  Value pfnValue;
  uint32_t (*pfnBound)(const ZE_KEST_Filter_s &);
  bool bMaxMeansNone;  // UINT32_MAX, which no ring can hold, becomes 0
};

bool IsConnected(const ZE_KEST_Port_s &stPort) {
  return stPort.bConnected != 0;
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

template <Value pfnValue>
bool HasData(const ZE_KEST_Port_s &stPort) {
  return pfnValue(stPort) != 0;
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

constexpr auto kUnreadMeta = Unread<&ZE_KEST_Port_s::stMeta>;
constexpr auto kUnreadRaw = Unread<&ZE_KEST_Port_s::stRaw>;
constexpr auto kUnwrittenMeta = Unwritten<&ZE_KEST_Port_s::stMeta>;
constexpr auto kUnwrittenRaw = Unwritten<&ZE_KEST_Port_s::stRaw>;

// Deliberate: input PCM and metadata may still be waiting for their first data. Empty ports before the first
// one with data are skipped, connected or not, but an empty connected port after it stops the processing.
// clang-format off
constexpr ProcessSize kInputPcm =
    {kest::InputSide, HasData<PcmLevel>, IsConnected, PcmLevel, InPcmBound, false};
constexpr ProcessSize kOutputPcm =
    {kest::OutputSide, HasPcm, HasPcm, PcmSpace, OutPcmBound, true};
constexpr ProcessSize kInputMeta =
    {kest::InputSide, HasData<kUnreadMeta>, IsConnected, kUnreadMeta, NoBound, false};
constexpr ProcessSize kOutputMeta =
    {kest::OutputSide, HasMetaConnected, HasMetaConnected, kUnwrittenMeta, NoBound, true};
constexpr ProcessSize kInputRaw =
    {kest::InputSide, HasRaw, HasRaw, kUnreadRaw, NoBound, true};
constexpr ProcessSize kOutputRaw =
    {kest::OutputSide, HasRawConnected, HasRawConnected, kUnwrittenRaw, NoBound, true};
// clang-format on

// Visits the ports of the last u32Slots slots before apstEnd. Unrolled, because loop overhead would be a
// third of a short visit.
template <typename Visit>
void ForEachOfLast(ZE_KEST_Port_s *const *apstEnd, uint32_t u32Slots, Visit visit) {
  static_assert(ZE_KEST_MAX_PORTS == 8);
  const auto visitSlot = [&](int32_t s32FromEnd) __attribute__((always_inline)) {
    const ZE_KEST_Port_s *pstPort = apstEnd[-s32FromEnd];
    if (__builtin_expect(pstPort != nullptr, 1)) visit(*pstPort);
  };
  // clang-format off
  switch (u32Slots) {
    case 8: visitSlot(8); [[fallthrough]];
    case 7: visitSlot(7); [[fallthrough]];
    case 6: visitSlot(6); [[fallthrough]];
    case 5: visitSlot(5); [[fallthrough]];
    case 4: visitSlot(4); [[fallthrough]];
    case 3: visitSlot(3); [[fallthrough]];
    case 2: visitSlot(2); [[fallthrough]];
    case 1: visitSlot(1); [[fallthrough]];
    default: return;
  }
  // clang-format on
}

// The minimum over the first port that counts, with u32Least, and those of the last u32Slots slots. Usually
// all ports have the same value, so whether a port counts is checked last.
template <const ProcessSize &kSize>
uint32_t LeastOfRest(ZE_KEST_Port_s *const *apstEnd, uint32_t u32Slots, uint32_t u32Least) {
  ForEachOfLast(
      apstEnd, u32Slots, [&](const ZE_KEST_Port_s &stPort) __attribute__((always_inline)) {
        const uint32_t u32Value = kSize.pfnValue(stPort);
        if (u32Value < u32Least && kSize.pfnCounts(stPort)) u32Least = u32Value;
      });
  return kSize.bMaxMeansNone && u32Least == UINT32_MAX ? 0 : u32Least;
}

// 0 when no port counts.
template <const ProcessSize &kSize>
uint32_t LeastOf(const kest::PortSide &stSide) {
  ZE_KEST_Port_s *const *const apstEnd = stSide.Slots() + stSide.Count();
  for (uint32_t u32Left = stSide.Count(); u32Left != 0; --u32Left) {
    const ZE_KEST_Port_s *pstPort = apstEnd[-static_cast<ptrdiff_t>(u32Left)];
    if (pstPort == nullptr || !kSize.pfnBegins(*pstPort)) continue;
    return LeastOfRest<kSize>(apstEnd, u32Left - 1, kSize.pfnValue(*pstPort));
  }
  return 0;
}

// Out of line, because otherwise the compiler would load what the report needs before any check.
__attribute__((cold, noinline)) uint32_t RefuseNull(const char *pszFunction,
                                                    const ZE_KEST_Filter_s *pstFilter) {
  KEST_REQUIRE_AS(pszFunction, pstFilter != nullptr, "pstFilter is NULL.\n");
  KEST_ERR_AS(pszFunction, "psztProcessSize is NULL.\n");
  return ZE_KEST_INVALID_ARGUMENT;
}

template <const ProcessSize &kSize>
uint32_t Calculate(const char *pszFunction, const ZE_KEST_Filter_s *pstFilter, uint32_t *psztProcessSize) {
  if (pstFilter == nullptr) return RefuseNull(pszFunction, pstFilter);
  if (psztProcessSize == nullptr) return RefuseNull(pszFunction, pstFilter);
  const uint32_t u32Size = std::min(LeastOf<kSize>(kSize.pfnSide(*pstFilter)), kSize.pfnBound(*pstFilter));
  *psztProcessSize = u32Size;
  return u32Size == 0 ? ZE_KEST_NOTHING_TO_PROCESS : ZE_KEST_OK;
}

}  // namespace

uint32_t ze_kest_Utility_CalculateInputPortPcmProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                          uint32_t *psztProcessSize) {
  return Calculate<kInputPcm>(__func__, pstFilter, psztProcessSize);
}

uint32_t ze_kest_Utility_CalculateOutputPortPcmProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                           uint32_t *psztProcessSize) {
  return Calculate<kOutputPcm>(__func__, pstFilter, psztProcessSize);
}

uint32_t ze_kest_Utility_CalculateInputPortMetadataProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                               uint32_t *psztProcessSize) {
  return Calculate<kInputMeta>(__func__, pstFilter, psztProcessSize);
}

uint32_t ze_kest_Utility_CalculateOutputPortMetadataProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                                uint32_t *psztProcessSize) {
  return Calculate<kOutputMeta>(__func__, pstFilter, psztProcessSize);
}

uint32_t ze_kest_Utility_CalculateInputPortRawProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                          uint32_t *psztProcessSize) {
  return Calculate<kInputRaw>(__func__, pstFilter, psztProcessSize);
}

uint32_t ze_kest_Utility_CalculateOutputPortRawProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                           uint32_t *psztProcessSize) {
  return Calculate<kOutputRaw>(__func__, pstFilter, psztProcessSize);
}
