// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ze_kest/json.h"

namespace kest {

// What Tokenize returns instead of a number of tokens. The first three are jsmn's; all appear in reports.
enum : int32_t { kNoRoom = -1, kMalformed = -2, kIncomplete = -3, kGivenUp = -4 };

// Whether to give up the text; the context holds the tokens read so far.
using IsToGiveUp = bool (*)(const ZE_KEST_Jsmn_s &stJsmn);

// Continues to read the text at the current position of the context. Returns the number of tokens so far once
// the whole text is read; kNoRoom when the token array is full: enlarge it and call again.
// The time for a long text grows with the square of its length. pfnIsToGiveUp, unless NULL, is asked now and
// then.
int32_t Tokenize(ZE_KEST_Jsmn_s &stJsmn, IsToGiveUp pfnIsToGiveUp);

// ze_kest_Utility_Jsmn_FillUpTokenInfo that can be given up, which counts as invalid JSON.
uint32_t FillUpTokenInfo(ZE_KEST_Jsmn_s *pstJsmn, IsToGiveUp pfnIsToGiveUp);

}  // namespace kest
