// SPDX-License-Identifier: Apache-2.0
#include "debug/base/shared_settings.h"

#include <utility>

#include <sys/stat.h>

#include "ze_kest/utility.h"

#include "debug/base/debug_mutex.h"
#include "utility/core/owned_memory.h"
#include "utility/core/report.h"
#include "utility/core/text_field.h"

namespace kest {
namespace {

constexpr const char *kBlockName = "global";

struct SharedBlock {
  int s32ShmFd;
  int s32LockFd;
  SharedSettings *pstSettings;
};

// Guarded by the shared settings' mutex. Nothing may be reported while it is held: the first report of a
// process runs the base initialisation, which takes this mutex.
SharedBlock *g_pstBlock = nullptr;
PresetText g_szPresetCmd = "";
uint8_t g_bPresetCmd = 0;

// NULL without a block, and also when somebody has emptied the file: touching the mapping would then kill the
// process with SIGBUS.
SharedSettings *MappedSettings() {
  struct stat stFile = {};
  if (g_pstBlock == nullptr || fstat(g_pstBlock->s32ShmFd, &stFile) != 0) return nullptr;
  return stFile.st_size == 0 ? nullptr : g_pstBlock->pstSettings;
}

SharedBlock *AllocateBlock() {
  void *pv = nullptr;
  if (ze_kest_Utility_MemoryAlloc(&pv, sizeof(SharedBlock)) != ZE_KEST_OK) return nullptr;
  Owned<SharedBlock> block(static_cast<SharedBlock *>(pv));
  void *pvAddr = nullptr;
  const uint32_t u32Result =
      ze_kest_Utility_ShmAlloc(kBlockName, &block->s32ShmFd, &block->s32LockFd, &pvAddr);
  if (u32Result != ZE_KEST_OK) return nullptr;
  block->pstSettings = static_cast<SharedSettings *>(pvAddr);
  return block.release();
}

SharedBlock *ReplaceBlock(SharedBlock *pstBlock) {
  const HoldingShm holding;
  std::swap(pstBlock, g_pstBlock);
  return pstBlock;
}

// Takes over the block's settings. False when there is no block or its level is 0: no process has set it up
// yet.
bool Adopt() {
  const HoldingShm holding;
  const SharedSettings *pstShared = MappedSettings();
  const uint32_t u32Level = pstShared == nullptr ? 0 : Load(pstShared->u32DebugLevel);
  if (u32Level == 0) return false;
  Store(u32KestDebugLevel, u32Level);
  g_bPresetCmd = Load(pstShared->bPresetCmd);
  // Another process may be writing the text; the copy stays within the field whatever it contains.
  return CopyText(g_szPresetCmd, pstShared->szPresetCmd);
}

// Called with the mutex held.
void ShareSettings() {
  SharedSettings *pstShared = MappedSettings();
  if (pstShared == nullptr) return;
  Store(pstShared->u32DebugLevel, Load(u32KestDebugLevel));
  Store(pstShared->bPresetCmd, g_bPresetCmd);
  static_cast<void>(CopyText(pstShared->szPresetCmd, g_szPresetCmd));  // fails only for NULL
}

bool SetAndPublishPreset(const char *pszText) {
  const HoldingShm holding;
  if (!CopyText(g_szPresetCmd, pszText)) return false;
  g_bPresetCmd = 1;
  ShareSettings();
  return true;
}

void ClearAndPublishPreset() {
  const HoldingShm holding;
  g_bPresetCmd = 0;
  ShareSettings();
}

}  // namespace

void _ZE_KEST_Debug_ShmInit() {
  SharedBlock *pstBlock = AllocateBlock();
  if (pstBlock == nullptr) {
    KEST_ERR("Err! shared memory initialization fails\n");
    return;
  }
  ReplaceBlock(pstBlock);
  if (Adopt()) return;
  Store(u32KestDebugLevel, static_cast<uint32_t>(ZE_KEST_LEVEL_PRINT));
  ClearAndPublishPreset();
}

void FreeSharedSettings() {
  const Owned<SharedBlock> block(ReplaceBlock(nullptr));
  if (block == nullptr) return;
  ze_kest_Utility_ShmFree(kBlockName, &block->s32ShmFd, &block->s32LockFd, block->pstSettings);
}

void _ZE_KEST_Debug_SetShm() {
  const HoldingShm holding;
  ShareSettings();
}

uint32_t SetPresetCommand(const char *pszText) {
  constexpr const char *kFunction = "_ZE_KEST_Debug_Cmd_TriggerCallback";
  KEST_PRINT_AS(kFunction, "kest_debug_preset_cmd=all\n");
  if (!SetAndPublishPreset(pszText)) {
    KEST_ERR_AS(kFunction, "Err! Strncpy failed!\n");
    return ZE_KEST_FAILED;
  }
  KEST_INFO_AS(kFunction, "szPresetCmd:%.*s\n", static_cast<int>(kPresetCmdSize - 1), pszText);
  return ZE_KEST_OK;
}

void ClearPresetCommand() {
  KEST_PRINT_AS("_ZE_KEST_Debug_Cmd_TriggerCallback", "kest_debug_preset_cmd=off\n");
  ClearAndPublishPreset();
}

bool CopyPresetCommand(PresetText &szText) {
  const HoldingShm holding;
  const SharedSettings *pstShared = MappedSettings();
  const uint8_t bPreset = pstShared == nullptr ? g_bPresetCmd : Load(pstShared->bPresetCmd);
  if (bPreset != 1) return false;
  return CopyText(szText, pstShared == nullptr ? g_szPresetCmd : pstShared->szPresetCmd);
}

bool CopySharedSettings(SharedSettings *pstOwn, SharedSettings *pstShared) {
  const HoldingShm holding;
  const SharedSettings *pstMapped = MappedSettings();
  if (pstMapped == nullptr) return false;
  pstOwn->u32DebugLevel = Load(u32KestDebugLevel);
  pstOwn->bPresetCmd = g_bPresetCmd;
  pstShared->u32DebugLevel = Load(pstMapped->u32DebugLevel);
  pstShared->bPresetCmd = Load(pstMapped->bPresetCmd);
  return CopyText(pstOwn->szPresetCmd, g_szPresetCmd) &&
         CopyText(pstShared->szPresetCmd, pstMapped->szPresetCmd);
}

}  // namespace kest
