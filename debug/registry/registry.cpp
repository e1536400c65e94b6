// SPDX-License-Identifier: Apache-2.0
#include "debug/registry/registry.h"

#include <cstring>

#include "ze_kest/debug.h"

#include "debug/base/debug_mutex.h"
#include "debug/base/shared_settings.h"
#include "utility/core/owned_memory.h"
#include "utility/core/report.h"
#include "utility/core/text_field.h"

namespace kest {

ZE_KEST_DebugInfoNode_s *_pstKestDebugInfoList = nullptr;

namespace {

using Info = ZE_KEST_DebugInfo_s;
using Node = ZE_KEST_DebugInfoNode_s;

bool HasName(const Info &info, const char *pszName) {
  return strcmp(info.szName, pszName) == 0;
}

Node *Tail() KEST_REQUIRES_LOCK(kDebugLock) {
  Node *pstTail = _pstKestDebugInfoList;
  while (pstTail != nullptr && pstTail->pstNext != nullptr)
    pstTail = pstTail->pstNext;
  return pstTail;
}

// The last node of the first unbroken run of nodes that bear the name of the filter's pipeline; NULL without
// one.
Node *LastOfPipeline(const ZE_KEST_Filter_s &filter) KEST_REQUIRES_LOCK(kDebugLock) {
  if (filter.pstParentPipeline == nullptr) return nullptr;
  const char *pszName = filter.pstParentPipeline->szName;
  Node *pst = _pstKestDebugInfoList;
  while (pst != nullptr && !HasName(*pst->pstInfo, pszName))
    pst = pst->pstNext;
  while (pst != nullptr && pst->pstNext != nullptr && HasName(*pst->pstNext->pstInfo, pszName))
    pst = pst->pstNext;
  return pst;
}

void LinkAfter(Node *pstBefore, Node *pstNode) KEST_REQUIRES_LOCK(kDebugLock) {
  pstNode->pstPrev = pstBefore;
  pstNode->pstNext = pstBefore == nullptr ? nullptr : pstBefore->pstNext;
  if (pstNode->pstNext != nullptr) pstNode->pstNext->pstPrev = pstNode;
  (pstBefore == nullptr ? _pstKestDebugInfoList : pstBefore->pstNext) = pstNode;
}

void UnlinkAndFree(Node *pstNode) KEST_REQUIRES_LOCK(kDebugLock) {
  (pstNode->pstPrev == nullptr ? _pstKestDebugInfoList : pstNode->pstPrev->pstNext) = pstNode->pstNext;
  if (pstNode->pstNext != nullptr) pstNode->pstNext->pstPrev = pstNode->pstPrev;
  const Owned<Info> info(pstNode->pstInfo);
  const Owned<Node> node(pstNode);
}

uint32_t _ZE_KEST_Debug_AddDebugInfo(const Info &stInfo) {
  const HoldingDebug holding;
  Owned<Node> node = Allocate<Node>();
  KEST_REQUIRE_OR(node != nullptr, ZE_KEST_FAILED, "Err! MALLOC failed\n");
  Owned<Info> info = Allocate<Info>();
  KEST_REQUIRE_OR(info != nullptr, ZE_KEST_FAILED, "Err! MALLOC failed\n");
  *info = stInfo;
  node->pstInfo = info.release();

  Node *pstBefore = stInfo.pstFilter == nullptr ? nullptr : LastOfPipeline(*stInfo.pstFilter);
  LinkAfter(pstBefore == nullptr ? Tail() : pstBefore, node.release());
  return ZE_KEST_OK;
}

// Passes the preset command on to a filter that registers after it was set.
void DeliverPresetCommand(const Info &info) {
  char szCommand[kPresetCmdSize];
  if (info.pfnCallback == nullptr || !CopyPresetCommand(szCommand)) return;
  info.pfnCallback(info.pstFilter, reinterpret_cast<signed char *>(szCommand));
}

template <size_t kSize>
bool CopyOptional(const char *pszFunction, char (&szField)[kSize], const char *pszText) {
  if (pszText == nullptr || CopyText(szField, pszText)) return true;
  KEST_ERR_AS(pszFunction, "Err! Strncpy failed!\n");
  return false;
}

}  // namespace

bool IsPipelineNamed(const ZE_KEST_DebugInfo_s &info, const char *pszName) {
  return info.pstFilter == nullptr && HasName(info, pszName);
}

bool IsFilterNamed(const ZE_KEST_DebugInfo_s &info, const char *pszPipelineName, const char *pszFilterName) {
  return info.pstFilter != nullptr && HasName(info, pszPipelineName) &&
         strcmp(info.pstFilter->szName, pszFilterName) == 0;
}

uint32_t _ZE_KEST_Debug_ReleaseDebugInfoList() {
  const HoldingDebug holding;
  KEST_REQUIRE_OR(_pstKestDebugInfoList != nullptr, ZE_KEST_FAILED,
                  "Error! No debug info node in this list!\n");
  if (_pstKestDebugInfoList->pstInfo == nullptr) {
    _pstKestDebugInfoList = nullptr;
    KEST_ERR("Error! No debug info in this node!\n");
    return ZE_KEST_FAILED;
  }
  while (_pstKestDebugInfoList != nullptr && _pstKestDebugInfoList->pstInfo != nullptr) {
    UnlinkAndFree(_pstKestDebugInfoList);
  }
  _pstKestDebugInfoList = nullptr;
  return ZE_KEST_OK;
}

}  // namespace kest

uint32_t ze_kest_Debug_RegisterInfo(const char *pszPipelineName, ZE_KEST_Filter_s *pstFilter, uint32_t u32Tid,
                                    const char *pszThreadName, ZE_KEST_DebugCallback pfnCallback) {
  kest::ZE_KEST_DebugInfo_s stInfo = {};
  if (!kest::CopyOptional(__func__, stInfo.szName, pszPipelineName)) return ZE_KEST_FAILED;
  stInfo.pstFilter = pstFilter;
  stInfo.u32Tid = u32Tid;
  if (!kest::CopyOptional(__func__, stInfo.szThreadName, pszThreadName)) return ZE_KEST_FAILED;
  stInfo.pfnCallback = pfnCallback;

  kest::DeliverPresetCommand(stInfo);
  const uint32_t u32Result = kest::_ZE_KEST_Debug_AddDebugInfo(stInfo);
  KEST_REQUIRE_OR(u32Result == ZE_KEST_OK, ZE_KEST_FAILED, "Err! RegisterInfo failed!\n");
  return ZE_KEST_OK;
}

uint32_t ze_kest_Debug_UnRegisterInfo(const char *pszPipelineName, const ZE_KEST_Filter_s *pstFilter) {
  char szName[ZE_KEST_NAME_SIZE] = "";
  if (!kest::CopyOptional(__func__, szName, pszPipelineName)) return ZE_KEST_FAILED;

  const kest::HoldingDebug holding;
  kest::Node *pstNext = nullptr;
  for (kest::Node *pst = kest::_pstKestDebugInfoList; pst != nullptr; pst = pstNext) {
    pstNext = pst->pstNext;
    const kest::Info &info = *pst->pstInfo;
    if (pstFilter != nullptr && kest::IsFilterNamed(info, szName, pstFilter->szName)) {
      kest::UnlinkAndFree(pst);
      return ZE_KEST_OK;
    }
    if (pstFilter == nullptr && kest::HasName(info, szName)) kest::UnlinkAndFree(pst);
  }
  return ZE_KEST_OK;
}
