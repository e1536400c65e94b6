// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ports.h"
#include "tests/utility/json/json_text.h"
#include "utility/json/tokenizer.h"

namespace kest::test {

using namespace std::string_literals;

namespace {

constexpr size_t kToken = sizeof(ZE_KEST_JsmnTokenInfo_s);
constexpr size_t kStep = 4096;

std::string Repeated(size_t sztTimes, const std::string &text) {
  std::string all;
  for (size_t i = 0; i < sztTimes; ++i)
    all += text;
  return all;
}

// Short texts that often are JSON, and often nearly.
std::string Scribble(uint32_t u32Seed) {
  static const char *const apszBits[] = {"{",  "}",   "[", "]",       ",",   ":",  "\"a\"", "\"k\":", "1",
                                         "-2", "tru", " ", "{\"o\":", "[7,", "\\", "\"",    "\\u00",  "\x80"};
  std::string text;
  for (const uint8_t u8 : Noise(3 + u32Seed % 20, u32Seed))
    text += apszBits[u8 % std::size(apszBits)];
  return text;
}

// What the index of a text is must not depend on when its array had to grow.
void ExpectGrowthLeavesNoTrace(const std::string &text) {
  JsonText roomy(text, (text.size() + 1) * kToken);
  const std::string expected = roomy.Tokens();
  const size_t sztTokens = roomy.st.toknext;
  for (size_t sztRoom = 1; sztRoom <= sztTokens; ++sztRoom) {
    JsonText tight(text, sztRoom * kToken);
    EXPECT_EQ(expected, tight.Tokens()) << text << ", room for " << sztRoom;
  }
}

}  // namespace

TEST(TokenIndex, EveryTokenHasItsTypeItsExtentAndItsChildren) {
  const std::pair<std::string, const char *> aTexts[] = {
      {"{\"a\":{\"b\":1},\"c\":\"b\"}", "1:0-21/2 3:2-3/1 1:5-12/1 3:7-8/1 4:10-11/0 3:14-15/1 3:18-19/0"},
      {"[ -1.5e3 ,\ttrue\r\n,null,\"\",[]]", "2:0-29/5 4:2-8/0 4:11-15/0 4:18-22/0 3:24-24/0 2:26-28/0"},
      {R"({"k\"\\\/\b\f\n\r\t\u00fF":[{},{"x":[]}]})",
       "1:0-41/1 3:2-25/1 2:27-40/2 1:28-30/0 1:31-39/1 3:33-34/1 2:36-38/0"},
      {"a:b c,d", "4:0-1/3 4:2-3/0 4:4-5/0 4:6-7/0"},  // bare words, no root
      {"x\"y{z[", "4:0-6/0"},                          // a bare word holds what it does not end at
      {"{a:1 b:2}", "1:0-9/1 4:1-2/2 4:3-4/0 4:5-6/1 4:7-8/0"},
      {"42", "4:0-2/0"},  // at the very end of the text
      {"[1]\0garbage}"s, "2:0-3/1 4:1-2/0"},
      {"\"\xC3\xA4\"", "3:1-3/0"},
  };
  for (const auto &[text, pszTokens] : aTexts) {
    JsonText json(text);
    EXPECT_EQ(pszTokens, json.Tokens()) << text;
    EXPECT_EQ(pszTokens, json.Tokens()) << "a second fill only confirms";
    ExpectGrowthLeavesNoTrace(text);
  }
}

TEST(TokenIndex, WhatIsNoJsonGivesItsCodeAndTakesTheArrayAway) {
  const std::pair<int, Texts> aCodes[] = {
      {0, {"   \t\r\n", "\0{}"s, ":,"}},
      {-3, {"{\"a\":1", "[[]", "\"abc", "\"a\0\""s, "\"a\\", "\"\\u12", "[\"\\u", Repeated(100000, "[")}},
      {-2,
       {"{\"a\":1]", "[}", "]", "{}}", "\"\\x\"", "\"\\u12\"", "\"\\u00g0\"", "[tr\x01ue]", "[\x7F]",
        "\xEF\xBB\xBF{}"}}};
  for (const auto &[s32Code, texts] : aCodes) {
    const std::string report =
        "Error (0x00000003)! Fail to fill up token info with error " + std::to_string(s32Code) + "!\n";
    for (const std::string &text : texts) {
      SCOPED_TRACE(text.substr(0, 20));
      const ReportCapture capture;
      JsonText json(text);
      EXPECT_EQ(ZE_KEST_FAILED, json.Fill());
      EXPECT_EQ(nullptr, json.st.pstTokenInfo);
      EXPECT_EQ(0u, json.st.sztTokenInfoSize);
      EXPECT_EQ(capture.Texts("<ERR>"), Texts{report});
    }
  }
}

TEST(TokenIndex, ScribblesAndBinaryTextsStayInsideTheTextWhereverTheArrayGrows) {
  const ReportCapture capture(ZE_KEST_LEVEL_PRINT);
  for (uint32_t u32Seed = 0; u32Seed < 500; ++u32Seed) {
    ExpectGrowthLeavesNoTrace(Scribble(u32Seed));
    const Bytes noise = Noise(u32Seed + 1, u32Seed);
    ExpectGrowthLeavesNoTrace(std::string(noise.begin(), noise.end()));
  }
}

TEST(TokenIndex, TheArrayGrowsByStepsAsFarAsTheTextNeeds) {
  const std::tuple<std::string, uint32_t, size_t> aTexts[] = {
      {"[" + Repeated(255, "1,") + "]", 256, kStep},
      {"[" + Repeated(256, "1,") + "]", 257, 2 * kStep},
      {"{" + Repeated(150, "\"k\":2,") + "}", 301, 2 * kStep},
      {"[" + Repeated(99999, "\"s\",") + "]", 100000, 391 * kStep},
      {Repeated(3000, "[") + Repeated(3000, "]"), 3000, 12 * kStep},
      {"[" + Repeated(300, "1,") + "]" + Repeated(300, " 1"), 601, 3 * kStep}};
  for (const auto &[text, u32Tokens, sztBytes] : aTexts) {
    SCOPED_TRACE(text.substr(0, 20));
    JsonText json(text);
    JsonText roomy(text, text.size() * kToken);
    EXPECT_EQ(roomy.Tokens(), json.Tokens());
    EXPECT_EQ(u32Tokens, json.st.u32TotalTokenCounter);
    EXPECT_EQ(sztBytes, json.st.sztTokenInfoSize);
  }
}

TEST(TokenIndex, ATextThatIsReadInPartsHasTheSameIndexUnlessItIsGivenUp) {
  const ReportCapture capture(ZE_KEST_LEVEL_PRINT);
  static const char *const apszBits[] = {R"({"k": -12},)", R"("a,b]\\\"\u00e4 :",)", "true ,", "[[ ],[1]],",
                                         "x:y\n"};
  for (uint32_t u32Seed = 0; u32Seed < 100; ++u32Seed) {
    std::string text = "[";
    for (const uint8_t u8 : Noise(500, u32Seed))
      text += apszBits[u8 % std::size(apszBits)] + std::string(u8 / 64, ' ');
    text += "]";
    if (u32Seed % 2 == 1) text = Repeated(600, "[") + text + Repeated(600, "]");
    JsonText whole(text);
    const std::string expected = whole.Tokens();
    JsonText parts(text);
    FillUpTokenInfo(&parts.st, [](const ZE_KEST_Jsmn_s &) { return false; });
    EXPECT_NE("failed", expected);
    EXPECT_EQ(expected, parts.Tokens()) << text;
    JsonText givenUp(text);
    EXPECT_EQ(ZE_KEST_FAILED, FillUpTokenInfo(&givenUp.st, [](const ZE_KEST_Jsmn_s &) { return true; }));
    EXPECT_LT(givenUp.st.pos, 1100u);
  }
}

TEST(TokenIndex, ASizeThatNoMemoryHasLeavesTheArrayInPlace) {
  for (const size_t sztClaimed : {SIZE_MAX - 2 * kStep + 1, SIZE_MAX - kStep + 1}) {  // the second one wraps
    const ReportCapture capture;
    JsonText json("1");
    json.st.sztTokenInfoSize = sztClaimed;
    json.st.toknext = UINT32_MAX;  // full
    EXPECT_EQ(ZE_KEST_OUT_OF_MEMORY, json.Fill());
    EXPECT_NE(nullptr, json.st.pstTokenInfo);
    EXPECT_EQ(sztClaimed, json.st.sztTokenInfoSize);
    EXPECT_TRUE(capture.Has("<ERR>", "Error (0x0000000A)! Fail to allocate " +
                                         std::to_string(sztClaimed + kStep) +
                                         " bytes of memory to pstTokenInfoTmp!\n"));
  }
}

TEST(TokenIndex, DocumentsAreReadToTheirEnds) {
  for (const char *pszName : {"names.json", "pipelines.json", "tuning.json"}) {
    SCOPED_TRACE(pszName);
    const std::string text = ReadFile(std::string(KEST_TEST_JSON_DIR "/") + pszName);
    JsonText json(text);
    JsonText roomy(text, text.size() * kToken);
    EXPECT_EQ(roomy.Tokens(), json.Tokens());
    ASSERT_NE(0u, json.st.u32TotalTokenCounter);
    int32_t s32Children = 0;
    for (uint32_t i = 0; i < json.st.u32TotalTokenCounter; ++i)
      s32Children += json.st.pstTokenInfo[i].size;
    EXPECT_EQ(json.st.u32TotalTokenCounter - 1, static_cast<uint32_t>(s32Children));  // all but the root
    EXPECT_EQ(text.find_last_of("]}") + 1, static_cast<size_t>(json.st.pstTokenInfo[0].end));
  }
}

}  // namespace kest::test
