// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ze_kest/json.h"

namespace kest {

// What Tokenize returns instead of a number of tokens. The values are jsmn's because they appear in reports.
enum : int32_t { kNoRoom = -1, kMalformed = -2, kIncomplete = -3 };

// Continues to read the text at the current position of the context. Returns the number of tokens so far once
// the whole text is read; kNoRoom when the token array is full: enlarge it and call again.
int32_t Tokenize(ZE_KEST_Jsmn_s &stJsmn);

}  // namespace kest
