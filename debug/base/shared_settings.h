// SPDX-License-Identifier: Apache-2.0
// The settings that all processes of the framework share: log level and preset command, in the shared block
// "global".
#pragma once

#include <cstddef>
#include <cstdint>

namespace kest {

constexpr size_t kPresetCmdSize = 256;
using PresetText = char[kPresetCmdSize];

struct SharedSettings {
  uint32_t u32DebugLevel;  // 0: no process has set the block up yet
  PresetText szPresetCmd;
  uint8_t bPresetCmd;
};
static_assert(offsetof(SharedSettings, szPresetCmd) == 4 && offsetof(SharedSettings, bPresetCmd) == 260,
              "other processes read the block with this layout");

// Maps the block and takes over its settings, or sets it up when this is the first process.
void _ZE_KEST_Debug_ShmInit();

// Unmaps the block and removes it for every process.
void FreeSharedSettings();

// Writes this process's settings into the block; the last writer wins.
void _ZE_KEST_Debug_SetShm();

// Sets and publishes the preset command for the debug callbacks. ZE_KEST_FAILED for NULL.
uint32_t SetPresetCommand(const char *pszText);
void ClearPresetCommand();

// Copies the preset command that a filter gets when it registers, whichever process it was given to. False
// when none is set.
bool CopyPresetCommand(PresetText &szText);

// Copies this process's settings and those of the block. False without a block.
bool CopySharedSettings(SharedSettings *pstOwn, SharedSettings *pstShared);

}  // namespace kest
