// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/port.h"

#include "utility/core/report.h"
#include "utility/port/port_walk.h"

namespace {

// One kind of data: its ring, and the reports made when it is forwarded.
struct Metadata {
  static constexpr auto kRing = &ZE_KEST_Port_s::stMeta;

  static void ReportOut(const char *pszFunction, const ZE_KEST_Filter_s &stFilter, size_t sztBytes,
                        const ZE_KEST_DataBuffer_s &stOut) {
    KEST_ERR_AS(pszFunction, "[%s:%s]outMetaBfOverflow[%zu][%zu][%zu][%zu]\n", kest::PipelineName(stFilter),
                stFilter.szName, sztBytes, size_t{stOut.sztLevel}, size_t{stOut.sztWriteSize},
                size_t{stOut.sztSize});
  }
  static void ReportIn(const char *pszFunction, const ZE_KEST_Filter_s &stFilter, size_t sztBytes,
                       const ZE_KEST_DataBuffer_s &stIn) {
    KEST_ERR_AS(pszFunction, "[%s:%s]InMetaBfOverflow[%zu][%zu][%zu]\n", kest::PipelineName(stFilter),
                stFilter.szName, sztBytes, size_t{stIn.sztReadSize}, size_t{stIn.sztSize});
  }
};

struct Raw {
  static constexpr auto kRing = &ZE_KEST_Port_s::stRaw;

  static void ReportOut(const char *pszFunction, const ZE_KEST_Filter_s &stFilter, size_t sztBytes,
                        const ZE_KEST_DataBuffer_s &stOut) {
    KEST_ERR_AS(pszFunction, "[%s:%s]outRawBfOverflow[%zu][%zu][%zu][%zu]\n", kest::PipelineName(stFilter),
                stFilter.szName, sztBytes, size_t{stOut.sztLevel}, size_t{stOut.sztWriteSize},
                size_t{stOut.sztSize});
  }
  static void ReportIn(const char *pszFunction, const ZE_KEST_Filter_s &stFilter, size_t sztBytes,
                       const ZE_KEST_DataBuffer_s &stIn) {
    KEST_ERR_AS(pszFunction, "[%s:%s]InRawBfOverflow[%zu][%zu][%zu]\n", kest::PipelineName(stFilter),
                stFilter.szName, sztBytes, size_t{stIn.sztReadSize}, size_t{stIn.sztSize});
  }
};

// The sums are computed in 64 bits so that inconsistent sizes cannot wrap around and pass the checks.
template <typename Kind>
void ForwardTo(const char *pszFunction, const ZE_KEST_Filter_s &stFilter, const ZE_KEST_DataBuffer_s &stIn,
               const ZE_KEST_DataBuffer_s &stOut, uint32_t sztBytes) {
  if (stIn.sztLevel < sztBytes || stOut.sztSpace < sztBytes) return;
  if (uint64_t{stOut.sztWriteSize} + stOut.sztLevel + sztBytes > stOut.sztSize) {
    Kind::ReportOut(pszFunction, stFilter, sztBytes, stOut);
    return;
  }
  if (stIn.sztSize < uint64_t{stIn.sztReadSize} + sztBytes) {
    Kind::ReportIn(pszFunction, stFilter, sztBytes, stIn);
    return;
  }
  if (stIn.pu8Buf == nullptr || stOut.pu8Buf == nullptr) return;
  ze_kest_Utility_CopyFromRingToRingBuffer(stOut.pu8Buf, stOut.sztSize, stOut.sztReadOffset,
                                           stOut.sztWriteSize + stOut.sztLevel, stIn.pu8Buf, stIn.sztSize,
                                           stIn.sztReadOffset, stIn.sztReadSize, sztBytes);
}

template <typename Kind>
uint32_t Forward(const char *pszFunction, const ZE_KEST_Filter_s *pstFilter, uint32_t u32InPortIdx,
                 uint32_t sztBytes) {
  KEST_REQUIRE_AS(pszFunction, pstFilter != nullptr, "pstFilter is NULL.\n");
  const ZE_KEST_Port_s *pstIn = kest::InputSide(*pstFilter).ServedAt(u32InPortIdx);
  if (pstIn == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  kest::OutputSide(*pstFilter).ForEachConnected([&](const ZE_KEST_Port_s &stOut) {
    ForwardTo<Kind>(pszFunction, *pstFilter, pstIn->*Kind::kRing, stOut.*Kind::kRing, sztBytes);
  });
  return ZE_KEST_OK;
}

}  // namespace

uint32_t ze_kest_Utility_WriteAllOutputPortMetadataBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                          uint32_t u32InPortIdx, uint32_t sztBytes) {
  return Forward<Metadata>(__func__, pstFilter, u32InPortIdx, sztBytes);
}

uint32_t ze_kest_Utility_WriteAllOutputPortRawBuffer(const ZE_KEST_Filter_s *pstFilter, uint32_t u32InPortIdx,
                                                     uint32_t sztBytes) {
  return Forward<Raw>(__func__, pstFilter, u32InPortIdx, sztBytes);
}

uint32_t ze_kest_Utility_IsOutputMetadataBufferExist(const ZE_KEST_Filter_s *pstFilter) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  uint32_t u32Exists = 0;
  kest::OutputSide(*pstFilter).ForEach([&](const ZE_KEST_Port_s &stPort) {
    if (stPort.stMeta.sztSize != 0) u32Exists = 1;
  });
  return u32Exists;
}
