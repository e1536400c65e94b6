// SPDX-License-Identifier: Apache-2.0
#include "debug/base/shared_settings.h"

#include <utility>

#include <unistd.h>

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
  void *pvAddr;  // never touched: somebody may have emptied the file, and this process would be killed
};

// Nothing may be reported while their mutex is held: the first report of a process runs the base
// initialisation, which takes it.
SharedBlock *g_pstBlock KEST_GUARDED_BY(kDebugShmLock) = nullptr;
PresetText g_szPresetCmd KEST_GUARDED_BY(kDebugShmLock) = "";
uint8_t g_bPresetCmd KEST_GUARDED_BY(kDebugShmLock) = 0;

// The block is read and written through its descriptor. While another process writes it, a reader gets each
// byte as it was before or after: a level, whose values differ in one byte only, as a whole; a text may be a
// mixture.
constexpr size_t kBlockBytes = offsetof(SharedSettings, bPresetCmd) + sizeof(SharedSettings::bPresetCmd);

// False without a block, and when somebody has emptied or shortened its file.
bool ReadBlock(SharedSettings &stShared) KEST_REQUIRES_LOCK(kDebugShmLock) {
  if (g_pstBlock == nullptr) return false;
  const ssize_t s32Read = pread(g_pstBlock->s32ShmFd, &stShared, kBlockBytes, 0);
  stShared.szPresetCmd[kPresetCmdSize - 1] = '\0';  // whatever somebody has written there
  return s32Read == static_cast<ssize_t>(kBlockBytes);
}

bool WriteBlock(const SharedSettings &stOwn) KEST_REQUIRES_LOCK(kDebugShmLock) {
  return g_pstBlock != nullptr &&
         pwrite(g_pstBlock->s32ShmFd, &stOwn, kBlockBytes, 0) == static_cast<ssize_t>(kBlockBytes);
}

SharedSettings OwnSettings() KEST_REQUIRES_LOCK(kDebugShmLock) {
  SharedSettings stOwn = {Load(u32KestDebugLevel), "", g_bPresetCmd};
  static_cast<void>(CopyText(stOwn.szPresetCmd, g_szPresetCmd));  // fails only for NULL
  return stOwn;
}

SharedBlock *AllocateBlock() {
  void *pv = nullptr;
  if (ze_kest_Utility_MemoryAlloc(&pv, sizeof(SharedBlock)) != ZE_KEST_OK) return nullptr;
  Owned<SharedBlock> block(static_cast<SharedBlock *>(pv));
  const uint32_t u32Result =
      ze_kest_Utility_ShmAlloc(kBlockName, &block->s32ShmFd, &block->s32LockFd, &block->pvAddr);
  return u32Result == ZE_KEST_OK ? block.release() : nullptr;
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
  SharedSettings stShared;
  if (!ReadBlock(stShared) || stShared.u32DebugLevel == 0) return false;
  Store(u32KestDebugLevel, stShared.u32DebugLevel);
  g_bPresetCmd = stShared.bPresetCmd;
  return CopyText(g_szPresetCmd, stShared.szPresetCmd);
}

// A block that was emptied gets settings again. Without a block, or on a full disk, each process keeps its
// own.
void ShareSettings() KEST_REQUIRES_LOCK(kDebugShmLock) {
  static_cast<void>(WriteBlock(OwnSettings()));
}

bool SetAndSharePreset(const char *pszText) {
  const HoldingShm holding;
  if (!CopyText(g_szPresetCmd, pszText)) return false;
  g_bPresetCmd = 1;
  ShareSettings();
  return true;
}

void ClearAndSharePreset() {
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
  ClearAndSharePreset();
}

void FreeSharedSettings() {
  const Owned<SharedBlock> block(ReplaceBlock(nullptr));
  if (block == nullptr) return;
  ze_kest_Utility_ShmFree(kBlockName, &block->s32ShmFd, &block->s32LockFd, block->pvAddr);
}

void _ZE_KEST_Debug_SetShm() {
  const HoldingShm holding;
  ShareSettings();
}

uint32_t SetPresetCommand(const char *pszText) {
  constexpr const char *kFunction = "_ZE_KEST_Debug_Cmd_TriggerCallback";
  KEST_PRINT_AS(kFunction, "kest_debug_preset_cmd=all\n");
  if (!SetAndSharePreset(pszText)) {
    KEST_ERR_AS(kFunction, "Err! Strncpy failed!\n");
    return ZE_KEST_FAILED;
  }
  KEST_INFO_AS(kFunction, "szPresetCmd:%.*s\n", static_cast<int>(kPresetCmdSize - 1), pszText);
  return ZE_KEST_OK;
}

void ClearPresetCommand() {
  KEST_PRINT_AS("_ZE_KEST_Debug_Cmd_TriggerCallback", "kest_debug_preset_cmd=off\n");
  ClearAndSharePreset();
}

bool CopyPresetCommand(PresetText &szText) {
  const HoldingShm holding;
  SharedSettings stShared;
  if (!ReadBlock(stShared)) stShared = OwnSettings();
  return stShared.bPresetCmd == 1 && CopyText(szText, stShared.szPresetCmd);
}

bool CopySharedSettings(SharedSettings *pstOwn, SharedSettings *pstShared) {
  const HoldingShm holding;
  *pstOwn = OwnSettings();
  return ReadBlock(*pstShared);
}

}  // namespace kest
