// SPDX-License-Identifier: Apache-2.0
// jsmn without the library, in its own translation unit, just as in the library.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kest::bench {

constexpr size_t kTokenBytes = 16;

// Returns the number of tokens, or jsmn's error. pvTokens: room for u32Tokens tokens.
int32_t TokenizeAlone(const char *pszText, size_t sztText, void *pvTokens, uint32_t u32Tokens);

}  // namespace kest::bench
