// SPDX-License-Identifier: Apache-2.0
#include "debug/control/shared_commands.h"

#include "debug/base/shared_settings.h"
#include "utility/core/report.h"

namespace kest {

uint32_t PrintCurrentShm(const CommandArguments & /*arguments*/) {
  SharedSettings stOwn;
  SharedSettings stShared;
  if (!CopySharedSettings(&stOwn, &stShared)) {
    KEST_ERR_AS(kDispatcher, "Err! Not initialized yet!\n");
    return ZE_KEST_NOT_INITIALISED;
  }
  KEST_PRINT_AS(kDispatcher, "DebugLevel:0x%x,0x%x\n", stOwn.u32DebugLevel, stShared.u32DebugLevel);
  KEST_PRINT_AS(kDispatcher, "DebugPresetCmd:%s,%s\n", stOwn.szPresetCmd, stShared.szPresetCmd);
  KEST_PRINT_AS(kDispatcher, "bDebugPresetCmd:%d,%d\n", stOwn.bPresetCmd, stShared.bPresetCmd);
  return ZE_KEST_OK;
}

uint32_t PresetForAll(const CommandArguments &arguments) {
  return SetPresetCommand(arguments.rest.Rest());
}

uint32_t PresetOff(const CommandArguments & /*arguments*/) {
  ClearPresetCommand();
  return ZE_KEST_OK;
}

}  // namespace kest
