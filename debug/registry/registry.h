// SPDX-License-Identifier: Apache-2.0
// The list of registered pipelines and filters. A record, too, is read and changed only with kDebugLock held.
#pragma once

#include <cstdint>

#include "ze_kest/debug.h"

#include "debug/base/debug_mutex.h"

namespace kest {

constexpr int kMaxConnections = 8;

struct ZE_KEST_DebugInfo_s {
  char szName[ZE_KEST_NAME_SIZE];  // the pipeline's name, for a filter that of its pipeline
  char aszConnected[kMaxConnections][ZE_KEST_NAME_SIZE];  // pipelines that this one feeds; "": a free slot
  ZE_KEST_Filter_s *pstFilter;                            // NULL: the entry is a pipeline
  uint32_t u32Tid;
  char szThreadName[ZE_KEST_NAME_SIZE];
  ZE_KEST_DebugCallback pfnCallback;  // may be NULL
};

struct ZE_KEST_DebugInfoNode_s {
  ZE_KEST_DebugInfo_s *pstInfo;
  ZE_KEST_DebugInfoNode_s *pstPrev;
  ZE_KEST_DebugInfoNode_s *pstNext;
};

extern ZE_KEST_DebugInfoNode_s *_pstKestDebugInfoList KEST_GUARDED_BY(kDebugLock);

// Iterates over the records from head to tail: for (ZE_KEST_DebugInfo_s &info : Registry()).
class Registry {
 public:
  class Iterator {
   public:
    explicit Iterator(ZE_KEST_DebugInfoNode_s *pstNode) : pstNode_(pstNode) {}
    ZE_KEST_DebugInfo_s &operator*() const { return *pstNode_->pstInfo; }
    Iterator &operator++() {
      pstNode_ = pstNode_->pstNext;
      return *this;
    }
    bool operator!=(const Iterator &other) const { return pstNode_ != other.pstNode_; }

   private:
    ZE_KEST_DebugInfoNode_s *pstNode_;
  };

  [[nodiscard]] Iterator begin() const KEST_REQUIRES_LOCK(kDebugLock) {
    return Iterator(_pstKestDebugInfoList);
  }
  [[nodiscard]] Iterator end() const { return Iterator(nullptr); }
};

// Compare whole names, not prefixes.
bool IsPipelineNamed(const ZE_KEST_DebugInfo_s &info, const char *pszName);
bool IsFilterNamed(const ZE_KEST_DebugInfo_s &info, const char *pszPipelineName, const char *pszFilterName);

// Frees the whole list. ZE_KEST_FAILED when it is empty.
uint32_t _ZE_KEST_Debug_ReleaseDebugInfoList();

}  // namespace kest
