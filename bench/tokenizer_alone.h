// SPDX-License-Identifier: Apache-2.0
// jsmn without the library, in a translation unit of its own as it stands in the library.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kest::bench {

constexpr size_t kTokenBytes = 16;

// The number of tokens, or jsmn's error. pvTokens: room for so many tokens.
int32_t TokenizeAlone(const char *pszText, size_t sztText, void *pvTokens, uint32_t u32Tokens);

}  // namespace kest::bench
