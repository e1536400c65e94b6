// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "ze_kest/port.h"

#include "utility/core/report.h"
#include "utility/port/port_walk.h"

namespace {

// Deliberate: the caps differ. PCM sizes and the metadata write size stop at the ring's capacity; the
// metadata read size and both raw sizes do not.
void AddUpTo(uint32_t &u32Size, uint32_t u32Count, uint32_t u32Capacity) {
  u32Size = static_cast<uint32_t>(std::min<uint64_t>(uint64_t{u32Size} + u32Count, u32Capacity));
}

void AddPcmRead(ZE_KEST_Port_s &stPort, uint32_t u32Count) {
  AddUpTo(stPort.stPcm.sztPcmReadSize, u32Count, stPort.stPcm.sztPcmRingSamples);
  stPort.stPcm.sztPcmTotalRead += u32Count;
  ++stPort.stPcm.u64PcmReadCount;
}

void AddPcmWrite(ZE_KEST_Port_s &stPort, uint32_t u32Count) {
  AddUpTo(stPort.stPcm.sztPcmWriteSize, u32Count, stPort.stPcm.sztPcmRingSamples);
}

template <ZE_KEST_DataBuffer_s ZE_KEST_Port_s::*kRing>
void AddDataRead(ZE_KEST_Port_s &stPort, uint32_t u32Count) {
  ZE_KEST_DataBuffer_s &stRing = stPort.*kRing;
  stRing.sztReadSize += u32Count;
  stRing.sztTotalRead += u32Count;
  if (u32Count != 0) ++stRing.au64Count[0];
}

void AddMetaWrite(ZE_KEST_Port_s &stPort, uint32_t u32Count) {
  AddUpTo(stPort.stMeta.sztWriteSize, u32Count, stPort.stMeta.sztSize);
}

void AddRawWrite(ZE_KEST_Port_s &stPort, uint32_t u32Count) {
  stPort.stRaw.sztWriteSize += u32Count;
}

// One of the sizes that ports of one side account for. Accounts are template arguments because an indirect
// call per port would cost as much as the rest of the walk.
struct Account {
  kest::PortSide (*pfnSide)(const ZE_KEST_Filter_s &);
  void (*pfnAdd)(ZE_KEST_Port_s &, uint32_t);
  bool bRefusesZero;
};

constexpr Account kPcmRead = {kest::InputSide, AddPcmRead, true};
constexpr Account kPcmWrite = {kest::OutputSide, AddPcmWrite, true};
constexpr Account kMetaRead = {kest::InputSide, AddDataRead<&ZE_KEST_Port_s::stMeta>, false};
constexpr Account kMetaWrite = {kest::OutputSide, AddMetaWrite, false};
constexpr Account kRawRead = {kest::InputSide, AddDataRead<&ZE_KEST_Port_s::stRaw>, false};
constexpr Account kRawWrite = {kest::OutputSide, AddRawWrite, false};

template <const Account &kAccount>
uint32_t UpdateAll(const char *pszFunction, ZE_KEST_Filter_s *pstFilter, uint32_t u32Count) {
  KEST_REQUIRE_AS(pszFunction, pstFilter != nullptr, "pstFilter is NULL.\n");
  if (kAccount.bRefusesZero && u32Count == 0) return ZE_KEST_NO;
  kAccount.pfnSide(*pstFilter).ForEachServed([&](ZE_KEST_Port_s &stPort) {
    kAccount.pfnAdd(stPort, u32Count);
  });
  return ZE_KEST_OK;
}

// Deliberate: a port that does not exist is not an error here, and a port that is not connected is updated.
template <const Account &kAccount>
uint32_t UpdateOne(const char *pszFunction, ZE_KEST_Filter_s *pstFilter, uint32_t u32Count,
                   uint32_t u32PortIdx) {
  KEST_REQUIRE_AS(pszFunction, pstFilter != nullptr, "pstFilter is NULL.\n");
  if (kAccount.bRefusesZero && u32Count == 0) return ZE_KEST_NO;
  ZE_KEST_Port_s *pstPort = kAccount.pfnSide(*pstFilter).At(u32PortIdx);
  if (pstPort != nullptr) kAccount.pfnAdd(*pstPort, u32Count);
  return ZE_KEST_OK;
}

}  // namespace

uint32_t ze_kest_Utility_UpdateAllInputPortPcmReadSize(ZE_KEST_Filter_s *pstFilter, uint32_t sztSamples) {
  return UpdateAll<kPcmRead>(__func__, pstFilter, sztSamples);
}

uint32_t ze_kest_Utility_UpdateAllOutputPortPcmWriteSize(ZE_KEST_Filter_s *pstFilter, uint32_t sztSamples) {
  return UpdateAll<kPcmWrite>(__func__, pstFilter, sztSamples);
}

uint32_t ze_kest_Utility_UpdateAllInputPortMetadataReadSize(ZE_KEST_Filter_s *pstFilter, uint32_t sztBytes) {
  return UpdateAll<kMetaRead>(__func__, pstFilter, sztBytes);
}

uint32_t ze_kest_Utility_UpdateAllOutputPortMetadataWriteSize(ZE_KEST_Filter_s *pstFilter,
                                                              uint32_t sztBytes) {
  return UpdateAll<kMetaWrite>(__func__, pstFilter, sztBytes);
}

uint32_t ze_kest_Utility_UpdateAllInputPortRawReadSize(ZE_KEST_Filter_s *pstFilter, uint32_t sztBytes) {
  return UpdateAll<kRawRead>(__func__, pstFilter, sztBytes);
}

uint32_t ze_kest_Utility_UpdateAllOutputPortRawWriteSize(ZE_KEST_Filter_s *pstFilter, uint32_t sztBytes) {
  return UpdateAll<kRawWrite>(__func__, pstFilter, sztBytes);
}

uint32_t ze_kest_Utility_UpdateSpecificInputPortPcmReadSize(ZE_KEST_Filter_s *pstFilter, uint32_t sztSamples,
                                                            uint32_t u32PortIdx) {
  return UpdateOne<kPcmRead>(__func__, pstFilter, sztSamples, u32PortIdx);
}

uint32_t ze_kest_Utility_UpdateSpecificOutputPortPcmWriteSize(ZE_KEST_Filter_s *pstFilter,
                                                              uint32_t sztSamples, uint32_t u32PortIdx) {
  return UpdateOne<kPcmWrite>(__func__, pstFilter, sztSamples, u32PortIdx);
}

uint32_t ze_kest_Utility_UpdateSpecificInputPortMetadataReadSize(ZE_KEST_Filter_s *pstFilter,
                                                                 uint32_t sztBytes, uint32_t u32PortIdx) {
  return UpdateOne<kMetaRead>(__func__, pstFilter, sztBytes, u32PortIdx);
}

uint32_t ze_kest_Utility_UpdateSpecificInputPortRawReadSize(ZE_KEST_Filter_s *pstFilter, uint32_t sztBytes,
                                                            uint32_t u32PortIdx) {
  return UpdateOne<kRawRead>(__func__, pstFilter, sztBytes, u32PortIdx);
}
