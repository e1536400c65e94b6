// SPDX-License-Identifier: Apache-2.0
#include "debug/control/shared_commands.h"

#include "ze_kest/result.h"

#include "debug/control/shared_settings.h"

namespace kest {

uint32_t PrintCurrentShm(const CommandArguments & /*arguments*/) {
  return PrintSharedSettings();
}

uint32_t PresetForAll(const CommandArguments &arguments) {
  if (arguments.pszRest == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  return SetPresetCommand(arguments.pszRest);
}

uint32_t PresetOff(const CommandArguments & /*arguments*/) {
  ClearPresetCommand();
  return ZE_KEST_OK;
}

}  // namespace kest
