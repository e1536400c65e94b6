// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/port.h"

#include "utility/core/report.h"
#include "utility/port/port_walk.h"

namespace {

// One kind of data: its ring, and what is reported when a ring cannot take or give the bytes.
struct Kind {
  ZE_KEST_DataBuffer_s ZE_KEST_Port_s::*pstRing;
  const char *pszOutOverflow;
  const char *pszInOverflow;
};

constexpr Kind kMetadata = {&ZE_KEST_Port_s::stMeta, "outMetaBfOverflow", "InMetaBfOverflow"};
constexpr Kind kRaw = {&ZE_KEST_Port_s::stRaw, "outRawBfOverflow", "InRawBfOverflow"};

// The sums are computed in 64 bits so that inconsistent sizes cannot wrap around and pass the checks. One
// instance per kind: it takes fewer instructions than a kind as an argument.
template <const Kind &kKind>
void ForwardTo(const char *pszFunction, const ZE_KEST_Filter_s &stFilter, const ZE_KEST_DataBuffer_s &stIn,
               const ZE_KEST_DataBuffer_s &stOut, uint32_t sztBytes) {
  if (stIn.sztLevel < sztBytes || stOut.sztSpace < sztBytes) return;
  if (uint64_t{stOut.sztWriteSize} + stOut.sztLevel + sztBytes > stOut.sztSize) {
    KEST_ERR_AS(pszFunction, "[%s:%s]%s[%zu][%zu][%zu][%zu]\n", kest::PipelineName(stFilter), stFilter.szName,
                kKind.pszOutOverflow, size_t{sztBytes}, size_t{stOut.sztLevel}, size_t{stOut.sztWriteSize},
                size_t{stOut.sztSize});
    return;
  }
  if (stIn.sztSize < uint64_t{stIn.sztReadSize} + sztBytes) {
    KEST_ERR_AS(pszFunction, "[%s:%s]%s[%zu][%zu][%zu]\n", kest::PipelineName(stFilter), stFilter.szName,
                kKind.pszInOverflow, size_t{sztBytes}, size_t{stIn.sztReadSize}, size_t{stIn.sztSize});
    return;
  }
  if (stIn.pu8Buf == nullptr || stOut.pu8Buf == nullptr) return;
  ze_kest_Utility_CopyFromRingToRingBuffer(stOut.pu8Buf, stOut.sztSize, stOut.sztReadOffset,
                                           stOut.sztWriteSize + stOut.sztLevel, stIn.pu8Buf, stIn.sztSize,
                                           stIn.sztReadOffset, stIn.sztReadSize, sztBytes);
}

template <const Kind &kKind>
uint32_t Forward(const char *pszFunction, const ZE_KEST_Filter_s *pstFilter, uint32_t u32InPortIdx,
                 uint32_t sztBytes) {
  KEST_REQUIRE_AS(pszFunction, pstFilter != nullptr, "pstFilter is NULL.\n");
  const ZE_KEST_Port_s *pstIn = kest::InputSide(*pstFilter).ServedAt(u32InPortIdx);
  if (pstIn == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  kest::OutputSide(*pstFilter).ForEachConnected([&](const ZE_KEST_Port_s &stOut) {
    ForwardTo<kKind>(pszFunction, *pstFilter, pstIn->*kKind.pstRing, stOut.*kKind.pstRing, sztBytes);
  });
  return ZE_KEST_OK;
}

}  // namespace

uint32_t ze_kest_Utility_WriteAllOutputPortMetadataBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                          uint32_t u32InPortIdx, uint32_t sztBytes) {
  return Forward<kMetadata>(__func__, pstFilter, u32InPortIdx, sztBytes);
}

uint32_t ze_kest_Utility_WriteAllOutputPortRawBuffer(const ZE_KEST_Filter_s *pstFilter, uint32_t u32InPortIdx,
                                                     uint32_t sztBytes) {
  return Forward<kRaw>(__func__, pstFilter, u32InPortIdx, sztBytes);
}

uint32_t ze_kest_Utility_IsOutputMetadataBufferExist(const ZE_KEST_Filter_s *pstFilter) {
  KEST_REQUIRE(pstFilter != nullptr, "pstFilter is NULL.\n");
  uint32_t u32Exists = 0;
  kest::OutputSide(*pstFilter).ForEach([&](const ZE_KEST_Port_s &stPort) {
    if (stPort.stMeta.sztSize != 0) u32Exists = 1;
  });
  return u32Exists;
}
