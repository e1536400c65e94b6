// SPDX-License-Identifier: Apache-2.0
#include "debug/control/shared_settings.h"

#include "ze_kest/utility.h"

#include "debug/control/debug_mutex.h"
#include "utility/core/name_field.h"
#include "utility/core/owned_memory.h"
#include "utility/core/report.h"

namespace kest {
namespace {

constexpr const char *kBlockName = "global";

struct SharedBlock {
  int s32ShmFd;
  int s32LockFd;
  SharedSettings *pstSettings;
};

// All under the shared settings' mutex.
SharedBlock *g_pstBlock = nullptr;
char g_szPresetCmd[kPresetCmdSize] = "";
uint8_t g_bPresetCmd = 0;

SharedSettings *MappedSettings() {
  return g_pstBlock == nullptr ? nullptr : g_pstBlock->pstSettings;
}

bool AllocateBlock() {
  void *pv = nullptr;
  if (ze_kest_Utility_MemoryAlloc(&pv, sizeof(SharedBlock)) != ZE_KEST_OK) return false;
  Owned<SharedBlock> block(static_cast<SharedBlock *>(pv));
  void *pvAddr = nullptr;
  const uint32_t u32Result =
      ze_kest_Utility_ShmAlloc(kBlockName, &block->s32ShmFd, &block->s32LockFd, &pvAddr);
  if (u32Result != ZE_KEST_OK) return false;
  block->pstSettings = static_cast<SharedSettings *>(pvAddr);
  g_pstBlock = block.release();
  return true;
}

// Another process may be writing the text: the copy ends within the field whatever stands there.
bool CopyPresetText(const char *pszFunction, char (&szTo)[kPresetCmdSize], const char *pszFrom) {
  if (CopyText(szTo, pszFrom)) return true;
  KEST_ERR_AS(pszFunction, "Err! Strncpy failed!\n");
  return false;
}

void PublishLocked() {
  SharedSettings *pstShared = MappedSettings();
  if (pstShared == nullptr) return;
  Store(pstShared->u32DebugLevel, Load(u32KestDebugLevel));
  CopyPresetText("_ZE_KEST_Debug_SetShm", pstShared->szPresetCmd, g_szPresetCmd);
  Store(pstShared->bPresetCmd, g_bPresetCmd);
}

// A level of 0 means that no process has set the block up.
void AdoptLocked() {
  const SharedSettings &shared = *MappedSettings();
  const uint32_t u32Level = Load(shared.u32DebugLevel);
  if (u32Level == 0) {
    g_bPresetCmd = 0;
    Store(u32KestDebugLevel, static_cast<uint32_t>(ZE_KEST_LEVEL_PRINT));
    PublishLocked();
    return;
  }
  Store(u32KestDebugLevel, u32Level);
  CopyPresetText("_ZE_KEST_Debug_GetShm", g_szPresetCmd, shared.szPresetCmd);
  g_bPresetCmd = Load(shared.bPresetCmd);
}

}  // namespace

void _ZE_KEST_Debug_ShmInit() {
  const HoldingShm holding;
  if (MappedSettings() == nullptr && !AllocateBlock()) {
    KEST_ERR("Err! shared memory initialization fails\n");
    return;
  }
  AdoptLocked();
}

void FreeSharedSettings() {
  const HoldingShm holding;
  if (MappedSettings() == nullptr) return;
  const Owned<SharedBlock> block(g_pstBlock);
  g_pstBlock = nullptr;
  ze_kest_Utility_ShmFree(kBlockName, &block->s32ShmFd, &block->s32LockFd, block->pstSettings);
}

void _ZE_KEST_Debug_SetShm() {
  const HoldingShm holding;
  PublishLocked();
}

uint32_t SetPresetCommand(const char *pszText) {
  constexpr const char *kFunction = "_ZE_KEST_Debug_Cmd_TriggerCallback";
  const HoldingShm holding;
  g_bPresetCmd = 1;
  if (!CopyPresetText(kFunction, g_szPresetCmd, pszText)) return ZE_KEST_FAILED;
  KEST_INFO_AS(kFunction, "szPresetCmd:%s\n", g_szPresetCmd);
  PublishLocked();
  return ZE_KEST_OK;
}

void ClearPresetCommand() {
  const HoldingShm holding;
  g_bPresetCmd = 0;
  PublishLocked();
}

bool CopyPresetCommand(char (&szText)[kPresetCmdSize]) {
  const HoldingShm holding;
  const SharedSettings *pstShared = MappedSettings();
  const uint8_t bPreset = pstShared == nullptr ? g_bPresetCmd : Load(pstShared->bPresetCmd);
  if (bPreset != 1) return false;
  return CopyPresetText(__func__, szText, pstShared == nullptr ? g_szPresetCmd : pstShared->szPresetCmd);
}

uint32_t PrintSharedSettings() {
  const HoldingShm holding;
  const SharedSettings *pstShared = MappedSettings();
  KEST_REQUIRE_OR(pstShared != nullptr, ZE_KEST_NOT_INITIALISED, "Err! Not initialized yet!\n");
  char szSharedCmd[kPresetCmdSize];
  if (!CopyPresetText(__func__, szSharedCmd, pstShared->szPresetCmd)) return ZE_KEST_FAILED;
  KEST_PRINT("DebugLevel:0x%x,0x%x\n", Load(u32KestDebugLevel), Load(pstShared->u32DebugLevel));
  KEST_PRINT("DebugPresetCmd:%s,%s\n", g_szPresetCmd, szSharedCmd);
  KEST_PRINT("bDebugPresetCmd:%d,%d\n", g_bPresetCmd, Load(pstShared->bPresetCmd));
  return ZE_KEST_OK;
}

}  // namespace kest
