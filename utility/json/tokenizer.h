// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ze_kest/json.h"

namespace kest {

// What Tokenize answers besides a number of tokens: as jsmn has it. Callers see the numbers in reports.
enum : int32_t { kNoRoom = -1, kMalformed = -2, kIncomplete = -3 };

// Reads the text on from where the context stands. Gives the number of tokens so far once the whole text is
// read; kNoRoom when the token array is full: enlarge it and call again.
int32_t Tokenize(ZE_KEST_Jsmn_s &stJsmn);

}  // namespace kest
