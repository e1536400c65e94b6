// SPDX-License-Identifier: Apache-2.0
// A JSON context on a text that ends where readable memory ends.
#pragma once

#include <cstring>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

#include "tests/support/library_test.h"

namespace kest::test {

class JsonText {
 public:
  // sztRoom: the bytes that the context is told to have for its tokens; 0 leaves what it has.
  explicit JsonText(const std::string &text, size_t sztRoom = 0) {
    const auto sztPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t sztReadable = (text.size() + sztPage - 1) / sztPage * sztPage;
    sztMapped_ = sztReadable + sztPage;
    pvMapped_ = mmap(nullptr, sztMapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    char *pszText = static_cast<char *>(pvMapped_) + sztReadable - text.size();
    memcpy(pszText, text.data(), text.size());
    mprotect(static_cast<char *>(pvMapped_) + sztReadable, sztPage, PROT_NONE);

    memset(&st, 0xA5, sizeof(st));
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_Jsmn_Create(&st));
    st.pszStringData = pszText;
    st.sztStringDataSize = text.size();
    if (sztRoom == 0) return;
    st.pstTokenInfo = static_cast<ZE_KEST_JsmnTokenInfo_s *>(realloc(st.pstTokenInfo, sztRoom));
    st.sztTokenInfoSize = sztRoom;
  }
  ~JsonText() {
    const bool bFailed = st.pstTokenInfo == nullptr;  // then there is nothing to release
    EXPECT_EQ(bFailed ? ZE_KEST_INVALID_ARGUMENT : ZE_KEST_OK, ze_kest_Utility_Jsmn_Destroy(&st));
    EXPECT_EQ(bFailed, st.pszStringData != nullptr);
    munmap(pvMapped_, sztMapped_);
  }
  JsonText(const JsonText &) = delete;
  JsonText &operator=(const JsonText &) = delete;

  uint32_t Fill() { return ze_kest_Utility_Jsmn_FillUpTokenInfo(&st); }

  // The tokens as "TYPE START-END/SIZE ...", the type as a digit; "failed" when there is no index.
  std::string Tokens() {
    if (Fill() != ZE_KEST_OK) return "failed";
    std::string tokens;
    for (uint32_t i = 0; i < st.u32TotalTokenCounter; ++i) {
      const ZE_KEST_JsmnTokenInfo_s &token = st.pstTokenInfo[i];
      tokens += (i == 0 ? "" : " ") + std::to_string(token.type) + ":" + std::to_string(token.start) + "-" +
                std::to_string(token.end) + "/" + std::to_string(token.size);
    }
    return tokens;
  }

  ZE_KEST_Jsmn_s st;

 private:
  void *pvMapped_;
  size_t sztMapped_;
};

}  // namespace kest::test
