// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/io_trace.h"

#include "ze_kest/debug.h"

#include "debug/base/debug_mutex.h"
#include "debug/datapath/switches.h"
#include "debug/registry/listing.h"
#include "utility/core/begins_with.h"
#include "utility/core/owned_file.h"
#include "utility/core/owned_memory.h"
#include "utility/core/report.h"
#include "utility/core/shared_value.h"

namespace kest {
namespace {

struct FilterIoNode {
  FilterIoEntry *pstEntry;
  FilterIoNode *pstPrev;
  FilterIoNode *pstNext;
};

FilterIoNode *pstFilterIoList KEST_GUARDED_BY(kDebugLock) = nullptr;
uint32_t u32IoFilterStartOffset KEST_GUARDED_BY(kDebugLock) = 0;  // deliberate: one for all pipelines

// Deliberate: without the lock. It tells only whether there is an entry, and a cycle asks it for every
// filter.
KEST_UNCHECKED_LOCKS bool IsWatching() {
  return Load(pstFilterIoList) != nullptr;
}

FilterIoNode *Tail() KEST_REQUIRES_LOCK(kDebugLock) {
  FilterIoNode *pstTail = pstFilterIoList;
  while (pstTail != nullptr && pstTail->pstNext != nullptr)
    pstTail = pstTail->pstNext;
  return pstTail;
}

void Free(FilterIoNode *pstNode) {
  const Owned<FilterIoNode> node(pstNode);
  const Owned<FilterIoEntry> entry(node->pstEntry);
  const OwnedFile file(entry->pFile);
}

// Hides the list from the tracing threads first. It can then be freed without the lock, since closing the
// files may take long.
FilterIoNode *DetachList() {
  const HoldingDebug holding;
  FilterIoNode *pstHead = pstFilterIoList;
  Store(pstFilterIoList, static_cast<FilterIoNode *>(nullptr));
  Store(pFileKestDebugPipeline, static_cast<FILE *>(nullptr));
  return pstHead;
}

// One event of a cycle.
struct IoEvent {
  const char *pszPipelineName;
  const char *pszFilterName;
  uint32_t u32Type;
  uint64_t u64Start;
  uint64_t u64Now;

  // The trace prints it as a signed 32-bit number.
  [[nodiscard]] int32_t Elapsed() const {
    return u64Now < u64Start ? 0 : static_cast<int32_t>(static_cast<uint32_t>(u64Now - u64Start));
  }
};

void WritePipelineEnd(FILE *pFile, const IoEvent &event) {
  ze_kest_Utility_LogToFile(
      pFile, "[ct:%llu,stop:%llu][p:%s,t:%d]\n\n", static_cast<unsigned long long>(event.u64Start),
      static_cast<unsigned long long>(event.u64Now), event.pszPipelineName, event.Elapsed());
}

void WriteFilterEnd(FILE *pFile, const IoEvent &event) KEST_REQUIRES_LOCK(kDebugLock) {
  if (event.pszFilterName == nullptr) return;
  const auto s32Start = static_cast<int32_t>(u32IoFilterStartOffset);
  const int32_t s32Elapsed = event.Elapsed();
  const auto s64Delta = int64_t{s32Elapsed} - s32Start;
  ze_kest_Utility_LogToFile(pFile, "[f:%s,t1:%d,t2:%d,td:%d]\n", event.pszFilterName, s32Start, s32Elapsed,
                            static_cast<int32_t>(s64Delta < 0 ? 0 : s64Delta));
}

void Trace(FILE *pFile, const IoEvent &event) KEST_REQUIRES_LOCK(kDebugLock) {
  if (event.u32Type == ZE_KEST_IO_PIPELINE_END) WritePipelineEnd(pFile, event);
  if (event.u32Type == ZE_KEST_IO_FILTER_END) WriteFilterEnd(pFile, event);
  if (event.u32Type == ZE_KEST_IO_FILTER_START) {
    u32IoFilterStartOffset = static_cast<uint32_t>(event.Elapsed());
  }
}

void TraceWatched(const IoEvent &event) KEST_REQUIRES_LOCK(kDebugLock) {
  for (const FilterIoNode *pst = pstFilterIoList; pst != nullptr; pst = pst->pstNext) {
    if (BeginsWith(event.pszPipelineName, pst->pstEntry->szPipelineName)) Trace(pst->pstEntry->pFile, event);
  }
}

}  // namespace

uint32_t WatchCount() {
  const HoldingDebug holding;
  uint32_t u32Count = 0;
  for (const FilterIoNode *pst = pstFilterIoList; pst != nullptr; pst = pst->pstNext)
    ++u32Count;
  return u32Count;
}

void _ZE_KEST_Debug_AddFilterIo(const FilterIoEntry &entry) {
  Owned<FilterIoNode> node = Allocate<FilterIoNode>();
  Owned<FilterIoEntry> copy = Allocate<FilterIoEntry>();
  if (node == nullptr || copy == nullptr) {
    KEST_ERR("Err! MALLOC failed\n");
    const OwnedFile file(entry.pFile);
    Store(pFileKestDebugPipeline, static_cast<FILE *>(nullptr));
    return;
  }
  *copy = entry;
  const HoldingDebug holding;
  FilterIoNode *pstTail = Tail();
  *node = {copy.release(), pstTail, nullptr};
  Store(pstTail == nullptr ? pstFilterIoList : pstTail->pstNext, node.release());
}

void _ZE_KEST_Debug_PrintFilterIoList() {
  PrintRule(__func__);
  KEST_PRINT("[DebugInfoList]\n");
  PrintRule(__func__);
  int s32Idx = 0;
  {
    const HoldingDebug holding;
    for (const FilterIoNode *pst = pstFilterIoList; pst != nullptr; pst = pst->pstNext) {
      KEST_PRINT("idx:%-2d p:%-20s f:%-15s pf:0x%p\n", s32Idx, pst->pstEntry->szPipelineName,
                 pst->pstEntry->szFilterName, static_cast<void *>(pst->pstEntry->pFile));
      ++s32Idx;
    }
  }
  PrintRule(__func__);
}

void _ZE_KEST_Debug_ReleaseFilterIoList() {
  FilterIoNode *pst = DetachList();
  if (pst == nullptr) {
    KEST_ERR("Error! No debug info node in this list!\n");
    return;
  }
  while (pst != nullptr) {
    FilterIoNode *pstNext = pst->pstNext;
    Free(pst);
    pst = pstNext;
  }
}

void ResetIoTrace() {
  SwitchOff(kTraceIo);
  if (IsWatching()) _ZE_KEST_Debug_ReleaseFilterIoList();
  const HoldingDebug holding;
  u32IoFilterStartOffset = 0;
}

}  // namespace kest

uint32_t ze_kest_Debug_Io_Is_Enable(void) {
  return kest::IsOn(kest::kTraceIo) && kest::IsWatching() ? 1 : 0;
}

// Unchecked for the sake of the unlock at its end.
KEST_UNCHECKED_LOCKS void ze_kest_Debug_Io(const char *pszPipelineName, const char *pszFilterName,
                                           uint32_t u32Type, uint64_t u64Start, uint64_t u64Now) {
  if (ze_kest_Debug_Io_Is_Enable() != 0) {
    kest::_ZE_KEST_Debug_Mutex_Lock();
    kest::TraceWatched({pszPipelineName, pszFilterName, u32Type, u64Start, u64Now});
  }
  // Deliberate: unlocks even when it was not locked, which does nothing.
  kest::_ZE_KEST_Debug_Mutex_Unlock();
}
