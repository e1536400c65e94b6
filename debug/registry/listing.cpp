// SPDX-License-Identifier: Apache-2.0
#include "debug/registry/listing.h"

#include <algorithm>

#include "debug/base/debug_mutex.h"
#include "debug/registry/registry.h"
#include "utility/core/report.h"

namespace kest {
namespace {

constexpr const char *kFunction = "_ZE_KEST_Debug_PrintDebugInfoList";
constexpr const char *kStateNames[] = {"NONE ", "IDLE ", "STOP ", "PREPA", "RUN  ", "PAUSE", "DRAIN"};
constexpr uint32_t kStates = sizeof(kStateNames) / sizeof(kStateNames[0]);

const char *StateOf(const ZE_KEST_Pipeline_s *pstPipeline) {
  const uint32_t u32State = pstPipeline == nullptr ? kStates : Load(pstPipeline->u32State);
  return u32State < kStates ? kStateNames[u32State] : "?    ";
}

// Fields converted to the types that the printed formats want.
int Tid(const ZE_KEST_DebugInfo_s &info) {
  return static_cast<int>(info.u32Tid);
}

void *Address(ZE_KEST_DebugCallback pfnCallback) {
  return reinterpret_cast<void *>(pfnCallback);
}

size_t Size(const uint32_t &u32Size) {
  return Load(u32Size);
}

void PrintPipeline(int s32Idx, const ZE_KEST_DebugInfo_s &info) {
  KEST_PRINT_AS(kFunction,
                "idx:%-2d ===== p:%-20s ================= tid:%-4d t:%-20s================ cb:0x%p\n", s32Idx,
                info.szName, Tid(info), info.szThreadName, Address(info.pfnCallback));
}

void PrintFilter(int s32Idx, const ZE_KEST_DebugInfo_s &info) {
  const ZE_KEST_Filter_s &filter = *info.pstFilter;
  const ZE_KEST_Pipeline_s *pstPipeline = filter.pstParentPipeline;
  const int s32AutoConsume = pstPipeline == nullptr ? 0 : Load(pstPipeline->u8AutoConsume);
  KEST_PRINT_AS(kFunction,
                "idx:%-2d %s %-22s %-17s tid:%-4d t:%-20s(ds:%d,tgt:%-5d) AutoConsume: %d, cb:0x%p\n", s32Idx,
                StateOf(pstPipeline), info.szName, filter.szName, Tid(info), info.szThreadName,
                Load(filter.u8Ds), Load(filter.s32Tgt), s32AutoConsume, Address(info.pfnCallback));
}

void PrintNodes() KEST_REQUIRES_LOCK(kDebugLock) {
  int s32Idx = 0;
  for (const ZE_KEST_DebugInfo_s &info : Registry()) {
    info.pstFilter == nullptr ? PrintPipeline(s32Idx, info) : PrintFilter(s32Idx, info);
    ++s32Idx;
  }
}

void PrintPipelineConnections() KEST_REQUIRES_LOCK(kDebugLock) {
  int s32Idx = 0;
  for (const ZE_KEST_DebugInfo_s &info : Registry()) {
    if (info.pstFilter == nullptr) {
      KEST_PRINT_AS(kFunction, "idx:%-2d %s\n", s32Idx, info.szName);
      PrintConnections(kFunction, info);
    }
    ++s32Idx;
  }
}

// Prints a line on what a port's buffers hold. Returns their size in bytes.
uint64_t PrintPort(const ZE_KEST_DebugInfo_s &info, const char *pszSide, uint32_t u32Port,
                   const ZE_KEST_Port_s &port) {
  const ZE_KEST_PcmBuffer_s &stPcm = port.stPcm;
  const size_t aszt[] = {Size(stPcm.asztPcmAllocSize[0]), Size(stPcm.asztPcmAllocSize[1]),
                         Size(stPcm.asztPcmAllocSize[2])};
  const size_t sztMeta = Size(port.stMeta.sztSize);
  const size_t sztRaw = Size(port.stRaw.sztSize);
  KEST_PRINT_AS(kFunction, "%s %s %s %u %zu/%zu(%zu %zu %zu) %zu/%zu %zu/%zu (%s)\n", info.szName,
                info.pstFilter->szName, pszSide, u32Port, Size(stPcm.sztPcmLevel),
                Size(stPcm.sztPcmRingSamples), aszt[0], aszt[1], aszt[2], Size(port.stMeta.sztLevel), sztMeta,
                Size(port.stRaw.sztLevel), sztRaw, Load(port.bConnected) != 0 ? "o" : "x");
  return uint64_t{aszt[0]} + aszt[1] + aszt[2] + sztMeta + sztRaw;
}

uint64_t PrintSide(const ZE_KEST_DebugInfo_s &info, const char *pszSide, uint32_t u32Count,
                   ZE_KEST_Port_s *const *apstPort) {
  uint64_t u64Bytes = 0;
  for (uint32_t i = 0; i < std::min<uint32_t>(u32Count, ZE_KEST_MAX_PORTS); ++i) {
    if (apstPort[i] != nullptr) u64Bytes += PrintPort(info, pszSide, i, *apstPort[i]);
  }
  return u64Bytes;
}

uint64_t PrintPorts() KEST_REQUIRES_LOCK(kDebugLock) {
  uint64_t u64Bytes = 0;
  for (const ZE_KEST_DebugInfo_s &info : Registry()) {
    if (info.pstFilter == nullptr) continue;
    const ZE_KEST_Filter_s &filter = *info.pstFilter;
    u64Bytes += PrintSide(info, "in", filter.u32InPortCount, filter.apstInPort);
    u64Bytes += PrintSide(info, "ou", filter.u32OutPortCount, filter.apstOutPort);
  }
  return u64Bytes;
}

}  // namespace

void PrintRule(const char *pszFunction) {
  KEST_PRINT_AS(pszFunction, "===============\n");
}

void PrintConnections(const char *pszFunction, const ZE_KEST_DebugInfo_s &info) {
  for (int i = 0; i < kMaxConnections; ++i) {
    if (*info.aszConnected[i] == '\0') continue;
    KEST_PRINT_AS(pszFunction, "           -> (%d)%s\n", i, info.aszConnected[i]);
  }
}

void _ZE_KEST_Debug_PrintDebugInfoList() {
  const HoldingDebug holding;
  PrintRule(__func__);
  KEST_PRINT("[DebugInfoList]\n");
  PrintRule(__func__);
  PrintNodes();
  PrintRule(__func__);
  PrintPipelineConnections();
  PrintRule(__func__);
  const uint64_t u64Bytes = PrintPorts();
  KEST_PRINT("u64TotalIoSize=%llu\n", static_cast<unsigned long long>(u64Bytes));
  PrintRule(__func__);
}

}  // namespace kest
