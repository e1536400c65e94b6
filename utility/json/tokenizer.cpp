// SPDX-License-Identifier: Apache-2.0
// Uses the installed jsmn. This is the only file that casts the library's tokens to jsmn's, and it does
// nothing else with them, so that no compiler sees one object under two types.
#include "utility/json/tokenizer.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

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

constexpr size_t kPart = 1024;  // characters between two questions whether to give up

// Reads on, as if the text ended there.
int32_t ReadUpTo(ZE_KEST_Jsmn_s &stJsmn, size_t sztEnd) {
  jsmn_parser stParser = {stJsmn.pos, stJsmn.toknext, stJsmn.toksuper};
  const int32_t s32Result =
      jsmn_parse(&stParser, stJsmn.pszStringData, sztEnd, reinterpret_cast<jsmntok_t *>(stJsmn.pstTokenInfo),
                 static_cast<uint32_t>(stJsmn.sztTokenInfoSize / sizeof(jsmntok_t)));
  stJsmn.pos = stParser.pos;
  stJsmn.toknext = stParser.toknext;
  stJsmn.toksuper = stParser.toksuper;
  return s32Result;
}

// Where reading may stop and go on later: behind a character that ends a primitive. In a string, jsmn goes
// back to its start.
size_t EndOfPart(const char *pszText, size_t sztFrom, size_t sztText) {
  size_t sztEnd = sztFrom;
  while (sztEnd < sztText && strchr("\t\r\n ,]}:", pszText[sztEnd - 1]) == nullptr)
    ++sztEnd;
  return sztEnd;
}

}  // namespace

int32_t Tokenize(ZE_KEST_Jsmn_s &stJsmn, IsToGiveUp pfnIsToGiveUp) {
  const size_t sztText = std::min(stJsmn.sztStringDataSize, kLongestText);
  if (pfnIsToGiveUp == nullptr) return ReadUpTo(stJsmn, sztText);
  for (size_t sztEnd = stJsmn.pos + kPart; sztEnd < sztText; sztEnd += kPart) {
    sztEnd = EndOfPart(stJsmn.pszStringData, sztEnd, sztText);
    const int32_t s32Result = ReadUpTo(stJsmn, sztEnd);
    if (s32Result == kMalformed) return s32Result;
    if (pfnIsToGiveUp(stJsmn)) return kGivenUp;
    if (s32Result == kNoRoom) return s32Result;
  }
  return ReadUpTo(stJsmn, sztText);
}

}  // namespace kest
