// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "ze_kest/utility.h"

#include "utility/core/report.h"
#include "utility/port/port_walk.h"

namespace {

using Value = uint32_t (*)(const ZE_KEST_Port_s &);
using Counts = bool (*)(const ZE_KEST_Port_s &);

// The least value of the ports that count; 0 when none does.
template <Counts pfnCounts>
uint32_t LeastOf(const kest::PortSide &stSide, Value pfnValue) {
  uint32_t u32Least = UINT32_MAX;
  stSide.ForEach([&](const ZE_KEST_Port_s &stPort) {
    if (pfnCounts(stPort)) u32Least = std::min(u32Least, pfnValue(stPort));
  });
  return u32Least == UINT32_MAX ? 0 : u32Least;
}

// The same over inputs that may wait for their first data: ports that are empty before the first one with
// data are passed over, connected or not, while an empty connected one behind it stops the processing.
uint32_t LeastBehindFirstData(const kest::PortSide &stSide, Value pfnValue) {
  uint32_t u32Least = 0;
  bool bTaken = false;
  stSide.ForEach([&](const ZE_KEST_Port_s &stPort) {
    const uint32_t u32Value = pfnValue(stPort);
    if (!bTaken) {
      u32Least = u32Value;
      bTaken = u32Value != 0;
    } else if (stPort.bConnected != 0) {
      u32Least = std::min(u32Least, u32Value);
    }
  });
  return u32Least;
}

bool HasPcm(const ZE_KEST_Port_s &stPort) {
  return stPort.stPcm.sztPcmRingSamples != 0;
}

bool HasRaw(const ZE_KEST_Port_s &stPort) {
  return stPort.stRaw.sztSize != 0;
}

bool HasRawConnected(const ZE_KEST_Port_s &stPort) {
  return stPort.bConnected != 0 && HasRaw(stPort);
}

bool HasMetaConnected(const ZE_KEST_Port_s &stPort) {
  return stPort.bConnected != 0 && stPort.stMeta.sztSize != 0;
}

// What this cycle has consumed already stays in: PCM levels are not reduced by it, unlike the byte rings'.
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

// Which ports of a side count, and for how much.
struct Rule {
  kest::PortSide (*pfnSide)(const ZE_KEST_Filter_s &);
  uint32_t (*pfnLeast)(const kest::PortSide &, Value);
  Value pfnValue;
  uint32_t ZE_KEST_Filter_s::*pBound;  // NULL: none
};

constexpr Rule kInputPcm = {kest::InputSide, LeastBehindFirstData, PcmLevel,
                            &ZE_KEST_Filter_s::sztMaxInPcmProcessSize};
constexpr Rule kOutputPcm = {kest::OutputSide, LeastOf<HasPcm>, PcmSpace,
                             &ZE_KEST_Filter_s::sztMaxOutPcmProcessSize};
constexpr Rule kInputMeta = {kest::InputSide, LeastBehindFirstData, Unread<&ZE_KEST_Port_s::stMeta>, nullptr};
constexpr Rule kOutputMeta = {kest::OutputSide, LeastOf<HasMetaConnected>, Unwritten<&ZE_KEST_Port_s::stMeta>,
                              nullptr};
constexpr Rule kInputRaw = {kest::InputSide, LeastOf<HasRaw>, Unread<&ZE_KEST_Port_s::stRaw>, nullptr};
constexpr Rule kOutputRaw = {kest::OutputSide, LeastOf<HasRawConnected>, Unwritten<&ZE_KEST_Port_s::stRaw>,
                             nullptr};

uint32_t Calculate(const char *pszFunction, const Rule &stRule, const ZE_KEST_Filter_s *pstFilter,
                   uint32_t *psztProcessSize) {
  KEST_REQUIRE_AS(pszFunction, pstFilter != nullptr, "pstFilter is NULL.\n");
  KEST_REQUIRE_AS(pszFunction, psztProcessSize != nullptr, "psztProcessSize is NULL.\n");
  uint32_t u32Size = stRule.pfnLeast(stRule.pfnSide(*pstFilter), stRule.pfnValue);
  if (stRule.pBound != nullptr) u32Size = std::min(u32Size, pstFilter->*stRule.pBound);
  *psztProcessSize = u32Size;
  return u32Size == 0 ? ZE_KEST_NOTHING_TO_PROCESS : ZE_KEST_OK;
}

}  // namespace

uint32_t ze_kest_Utility_CalculateInputPortPcmProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                          uint32_t *psztProcessSize) {
  return Calculate(__func__, kInputPcm, pstFilter, psztProcessSize);
}

uint32_t ze_kest_Utility_CalculateOutputPortPcmProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                           uint32_t *psztProcessSize) {
  return Calculate(__func__, kOutputPcm, pstFilter, psztProcessSize);
}

uint32_t ze_kest_Utility_CalculateInputPortMetadataProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                               uint32_t *psztProcessSize) {
  return Calculate(__func__, kInputMeta, pstFilter, psztProcessSize);
}

uint32_t ze_kest_Utility_CalculateOutputPortMetadataProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                                uint32_t *psztProcessSize) {
  return Calculate(__func__, kOutputMeta, pstFilter, psztProcessSize);
}

uint32_t ze_kest_Utility_CalculateInputPortRawProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                          uint32_t *psztProcessSize) {
  return Calculate(__func__, kInputRaw, pstFilter, psztProcessSize);
}

uint32_t ze_kest_Utility_CalculateOutputPortRawProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                           uint32_t *psztProcessSize) {
  return Calculate(__func__, kOutputRaw, pstFilter, psztProcessSize);
}
