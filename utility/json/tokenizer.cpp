// SPDX-License-Identifier: Apache-2.0
// Uses the installed jsmn. This is the only file that casts the library's tokens to jsmn's, and it does
// nothing else with them, so that no compiler sees one object under two types.
#include "utility/json/tokenizer.h"

#include <algorithm>
#include <cstddef>

#define JSMN_STATIC
#include <jsmn.h>

namespace kest {
namespace {

static_assert(sizeof(ZE_KEST_JsmnTokenInfo_s) == 16 && sizeof(jsmntok_t) == 16, "16 bytes a token");
static_assert(offsetof(jsmntok_t, type) == offsetof(ZE_KEST_JsmnTokenInfo_s, type) &&
                  offsetof(jsmntok_t, start) == offsetof(ZE_KEST_JsmnTokenInfo_s, start) &&
                  offsetof(jsmntok_t, end) == offsetof(ZE_KEST_JsmnTokenInfo_s, end) &&
                  offsetof(jsmntok_t, size) == offsetof(ZE_KEST_JsmnTokenInfo_s, size),
              "tokens are laid out as jsmn has them");
static_assert(int{JSMN_UNDEFINED} == int{ZE_KEST_JSMN_UNDEF} &&
                  int{JSMN_OBJECT} == int{ZE_KEST_JSMN_OBJECT} &&
                  int{JSMN_ARRAY} == int{ZE_KEST_JSMN_ARRAY} &&
                  int{JSMN_STRING} == int{ZE_KEST_JSMN_STRING} &&
                  int{JSMN_PRIMITIVE} == int{ZE_KEST_JSMN_PRIMITIVE},
              "token types are numbered as jsmn has them");
static_assert(int{JSMN_ERROR_NOMEM} == kNoRoom && int{JSMN_ERROR_INVAL} == kMalformed &&
                  int{JSMN_ERROR_PART} == kIncomplete,
              "jsmn's codes appear in reports");

// The token offsets are 32-bit signed.
constexpr size_t kLongestText = INT32_MAX;

}  // namespace

int32_t Tokenize(ZE_KEST_Jsmn_s &stJsmn) {
  jsmn_parser stParser = {stJsmn.pos, stJsmn.toknext, stJsmn.toksuper};
  const int32_t s32Result =
      jsmn_parse(&stParser, stJsmn.pszStringData, std::min(stJsmn.sztStringDataSize, kLongestText),
                 reinterpret_cast<jsmntok_t *>(stJsmn.pstTokenInfo),
                 static_cast<uint32_t>(stJsmn.sztTokenInfoSize / sizeof(jsmntok_t)));
  stJsmn.pos = stParser.pos;
  stJsmn.toknext = stParser.toknext;
  stJsmn.toksuper = stParser.toksuper;
  return s32Result;
}

}  // namespace kest
