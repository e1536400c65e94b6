// SPDX-License-Identifier: Apache-2.0
// A JSON context on a text that ends where readable memory ends.
#pragma once

#include <cstring>

#include "tests/support/library_test.h"
#include "tests/support/pages.h"

namespace kest::test {

struct Token {
  bool operator==(const Token &other) const { return memcmp(&st, &other.st, sizeof(st)) == 0; }
  ZE_KEST_JsmnTokenInfo_s st;
};

class JsonText {
 public:
  // sztRoom: the bytes that the context is told to have for its tokens; 0 leaves what it has.
  explicit JsonText(const std::string &text, size_t sztRoom = 0) : pages_({text.begin(), text.end()}) {
    memset(&st, 0xA5, sizeof(st));
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_Jsmn_Create(&st));
    st.pszStringData = static_cast<const char *>(static_cast<void *>(pages_.Data()));
    st.sztStringDataSize = text.size();
    if (sztRoom == 0) return;
    st.pstTokenInfo = static_cast<ZE_KEST_JsmnTokenInfo_s *>(realloc(st.pstTokenInfo, sztRoom));
    st.sztTokenInfoSize = sztRoom;
  }
  ~JsonText() {
    const bool bFailed = st.pstTokenInfo == nullptr;  // then there is nothing to release
    EXPECT_EQ(bFailed ? ZE_KEST_INVALID_ARGUMENT : ZE_KEST_OK, ze_kest_Utility_Jsmn_Destroy(&st));
    EXPECT_EQ(bFailed, st.pszStringData != nullptr);
  }

  uint32_t Fill() { return ze_kest_Utility_Jsmn_FillUpTokenInfo(&st); }

  // Every token; none when there is no index.
  std::vector<Token> Tokens() {
    if (Fill() != ZE_KEST_OK) return {};
    std::vector<Token> tokens(st.u32TotalTokenCounter);
    memcpy(tokens.data(), st.pstTokenInfo, tokens.size() * sizeof(Token));
    return tokens;
  }

  ZE_KEST_Jsmn_s st;

 private:
  Pages pages_;
};

}  // namespace kest::test
