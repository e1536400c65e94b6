// SPDX-License-Identifier: Apache-2.0
// The commands that the dispatcher executes itself.
#pragma once

#include "debug/base/command.h"

namespace kest {

// Reports of these commands appear under the dispatcher's name.
constexpr const char *kDispatcher = "_ZE_KEST_Debug_SetParameter";

CommandTable Commands();

}  // namespace kest
