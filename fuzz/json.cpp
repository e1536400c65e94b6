// SPDX-License-Identifier: Apache-2.0
// Runs the JSON reader on arbitrary bytes. Its index must be the one that the tokenizer alone makes, and
// every look-up must match a simple model.
#include "ze_kest/json.h"

#include <cstring>
#include <string>

#include "fuzz/expect.h"
#include "fuzz/silent_log.h"

#define JSMN_STATIC
#include <jsmn.h>

namespace kest::fuzz {
namespace {

using Token = ZE_KEST_JsmnTokenInfo_s;

constexpr uint32_t kMostLookUps = 64;

class Context {
 public:
  explicit Context(const Bytes &text) {
    ExpectEqual(ZE_KEST_OK, ze_kest_Utility_Jsmn_Create(&st), "Create");
    st.pszStringData = reinterpret_cast<const char *>(text.data());
    st.sztStringDataSize = text.size();
  }
  ~Context() {
    if (st.pstTokenInfo != nullptr) ze_kest_Utility_Jsmn_Destroy(&st);
  }
  Context(const Context &) = delete;
  Context &operator=(const Context &) = delete;

  [[nodiscard]] std::string Text(const Token &token) const {
    return {st.pszStringData + token.start, static_cast<size_t>(token.end - token.start)};
  }
  [[nodiscard]] uint32_t Index(const Token *pst) const {
    return static_cast<uint32_t>(pst - st.pstTokenInfo);
  }

  ZE_KEST_Jsmn_s st;
};

// The first string, from an index on, whose text is the name; the number of tokens when there is none.
uint32_t FirstNamed(const Context &context, uint32_t u32Idx, const char *pszName) {
  const auto named = [&](const Token &token) {
    return token.type == ZE_KEST_JSMN_STRING && context.Text(token) == pszName;
  };
  while (u32Idx < context.st.u32TotalTokenCounter && !named(context.st.pstTokenInfo[u32Idx]))
    ++u32Idx;
  return u32Idx;
}

void CheckIndex(const Context &context, const Bytes &text) {
  std::vector<jsmntok_t> tokens(text.size() + 1);
  jsmn_parser parser;
  jsmn_init(&parser);
  const int s32Count = jsmn_parse(&parser, context.st.pszStringData, text.size(), tokens.data(),
                                  static_cast<unsigned>(tokens.size()));
  ExpectEqual(s32Count > 0 ? static_cast<uint32_t>(s32Count) : 0, context.st.u32TotalTokenCounter, "tokens");
  if (s32Count <= 0) return;
  Expect(memcmp(tokens.data(), context.st.pstTokenInfo, sizeof(Token) * static_cast<size_t>(s32Count)) == 0,
         "the tokens differ from those of the tokenizer alone");
}

void CheckName(const Context &context, const Token *pstTarget, const char *pszName) {
  const Token *pstFound = ze_kest_Utility_Jsmn_GetTokenInfo_ByDataName(&context.st, pstTarget, pszName);
  const uint32_t u32First = pstTarget == nullptr ? 0 : context.Index(pstTarget);
  uint32_t u32Expected = FirstNamed(context, u32First, pszName);
  if (pstTarget != nullptr && u32Expected < context.st.u32TotalTokenCounter) {
    const bool bLast = u32First + 1 == context.st.u32TotalTokenCounter;
    const int32_t s32End = bLast ? 0 : pstTarget[1].end;
    if (bLast || context.st.pstTokenInfo[u32Expected].start > s32End) {
      u32Expected = context.st.u32TotalTokenCounter;
    }
  }
  const uint32_t u32Found = pstFound == nullptr ? context.st.u32TotalTokenCounter : context.Index(pstFound);
  ExpectEqual(u32Expected, u32Found, "the token of a name");
}

void CheckData(const Context &context, const Token &token) {
  size_t sztSize = SIZE_MAX;
  ExpectEqual(ZE_KEST_OK, ze_kest_Utility_Jsmn_GetDataSize_ByTokenInfo(&context.st, &token, &sztSize),
              "size");
  if (context.Index(&token) + 1 == context.st.u32TotalTokenCounter) {
    ExpectEqual(SIZE_MAX, sztSize, "the size behind the last token");
    return;
  }
  const std::string text = context.Text((&token)[1]);
  ExpectEqual(text.size(), sztSize, "the size of a value");
  std::vector<char> data(sztSize);
  if (sztSize == 0) return;
  ExpectEqual(ZE_KEST_OK,
              ze_kest_Utility_Jsmn_ReadData_ByTokenInfo(&context.st, &token, data.data(), sztSize), "read");
  Expect(memcmp(data.data(), text.data(), sztSize) == 0, "the text of a value");
}

void CheckLookUps(const Context &context) {
  const uint32_t u32Count = context.st.u32TotalTokenCounter;
  const uint32_t u32Step = u32Count / kMostLookUps + 1;
  for (uint32_t u32Idx = 0; u32Idx < u32Count; u32Idx += u32Step) {
    const Token &token = context.st.pstTokenInfo[u32Idx];
    const std::string name = context.Text(context.st.pstTokenInfo[u32Count - 1 - u32Idx]);
    CheckName(context, nullptr, name.c_str());
    CheckName(context, &token, name.c_str());
    CheckName(context, &token, context.Text(token).c_str());
    const Token *pstNext = ze_kest_Utility_Jsmn_GetNextTokenInfo(&context.st, &token);
    Expect(pstNext == nullptr || (pstNext > &token && pstNext->type == ZE_KEST_JSMN_STRING), "next token");
    CheckData(context, token);
  }
}

}  // namespace
}  // namespace kest::fuzz

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
  kest::fuzz::SilenceLog();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pu8Data, size_t sztSize) {
  using namespace kest::fuzz;
  // Exactly as large as the input, so that a sanitizer sees reads beyond it.
  const Bytes text(pu8Data, pu8Data + sztSize);
  Context context(text);
  const uint32_t u32Result = ze_kest_Utility_Jsmn_FillUpTokenInfo(&context.st);
  CheckIndex(context, text);
  if (u32Result == ZE_KEST_OK) CheckLookUps(context);
  return 0;
}
