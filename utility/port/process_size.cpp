// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "ze_kest/utility.h"

#include "utility/core/report.h"
#include "utility/port/port_walk.h"

namespace {

using Value = uint32_t (*)(const ZE_KEST_Port_s &);
using Counts = bool (*)(const ZE_KEST_Port_s &);

uint32_t Settle(uint32_t *psztProcessSize, uint32_t u32Size) {
  *psztProcessSize = u32Size;
  return u32Size == 0 ? ZE_KEST_NOTHING_TO_PROCESS : ZE_KEST_OK;
}

// The least value of the ports that count; 0 when none does.
uint32_t LeastOf(const kest::PortSide &stSide, Counts pfnCounts, Value pfnValue) {
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

}  // namespace

uint32_t ze_kest_Utility_CalculateInputPortPcmProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                          uint32_t *psztProcessSize) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  KEST_REQUIRE(psztProcessSize != nullptr, "psztProcessSize is NULL.\n");
  const uint32_t u32Least = LeastBehindFirstData(kest::InputSide(*pstFilter), PcmLevel);
  return Settle(psztProcessSize, std::min(u32Least, pstFilter->sztMaxInPcmProcessSize));
}

uint32_t ze_kest_Utility_CalculateOutputPortPcmProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                           uint32_t *psztProcessSize) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  KEST_REQUIRE(psztProcessSize != nullptr, "psztProcessSize is NULL.\n");
  const uint32_t u32Least = LeastOf(kest::OutputSide(*pstFilter), HasPcm, PcmSpace);
  return Settle(psztProcessSize, std::min(u32Least, pstFilter->sztMaxOutPcmProcessSize));
}

uint32_t ze_kest_Utility_CalculateInputPortMetadataProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                               uint32_t *psztProcessSize) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  KEST_REQUIRE(psztProcessSize != nullptr, "psztProcessSize is NULL.\n");
  return Settle(psztProcessSize,
                LeastBehindFirstData(kest::InputSide(*pstFilter), Unread<&ZE_KEST_Port_s::stMeta>));
}

uint32_t ze_kest_Utility_CalculateOutputPortMetadataProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                                uint32_t *psztProcessSize) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  KEST_REQUIRE(psztProcessSize != nullptr, "psztProcessSize is NULL.\n");
  return Settle(psztProcessSize,
                LeastOf(kest::OutputSide(*pstFilter), HasMetaConnected, Unwritten<&ZE_KEST_Port_s::stMeta>));
}

uint32_t ze_kest_Utility_CalculateInputPortRawProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                          uint32_t *psztProcessSize) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  KEST_REQUIRE(psztProcessSize != nullptr, "psztProcessSize is NULL.\n");
  return Settle(psztProcessSize,
                LeastOf(kest::InputSide(*pstFilter), HasRaw, Unread<&ZE_KEST_Port_s::stRaw>));
}

uint32_t ze_kest_Utility_CalculateOutputPortRawProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                           uint32_t *psztProcessSize) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  KEST_REQUIRE(psztProcessSize != nullptr, "psztProcessSize is NULL.\n");
  return Settle(psztProcessSize,
                LeastOf(kest::OutputSide(*pstFilter), HasRawConnected, Unwritten<&ZE_KEST_Port_s::stRaw>));
}
