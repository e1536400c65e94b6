// SPDX-License-Identifier: Apache-2.0
#include "bench/tokenizer_alone.h"

#define JSMN_STATIC
#include <jsmn.h>

namespace kest::bench {

int32_t TokenizeAlone(const char *pszText, size_t sztText, void *pvTokens, uint32_t u32Tokens) {
  static_assert(sizeof(jsmntok_t) == kTokenBytes);
  jsmn_parser stParser;
  jsmn_init(&stParser);
  return jsmn_parse(&stParser, pszText, sztText, static_cast<jsmntok_t *>(pvTokens), u32Tokens);
}

}  // namespace kest::bench
