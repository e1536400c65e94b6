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

// Makes a token of its type from where its text begins and ends, and its children.
struct TokenType {
  Token operator()(int32_t s32Start, int32_t s32End, int32_t s32Children = 0) const {
    return {{s32Type, s32Start, s32End, s32Children}};
  }
  int32_t s32Type;
};
constexpr TokenType kObject{ZE_KEST_JSMN_OBJECT}, kArray{ZE_KEST_JSMN_ARRAY}, kString{ZE_KEST_JSMN_STRING},
    kBare{ZE_KEST_JSMN_PRIMITIVE};

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
  const std::vector<Token> expected = roomy.Tokens();
  const size_t sztTokens = roomy.st.toknext;
  for (size_t sztRoom = 1; sztRoom <= sztTokens; ++sztRoom) {
    JsonText tight(text, sztRoom * kToken);
    EXPECT_EQ(expected, tight.Tokens()) << text << ", room for " << sztRoom;
  }
}

}  // namespace

TEST(TokenIndex, EveryTokenHasItsTypeItsExtentAndItsChildren) {
  const std::pair<std::string, std::vector<Token>> aTexts[] = {
      {R"({"a":{"b":1},"c":"b"})",
       {kObject(0, 21, 2), kString(2, 3, 1), kObject(5, 12, 1), kString(7, 8, 1), kBare(10, 11),
        kString(14, 15, 1), kString(18, 19)}},
      {"[ -1.5e3 ,\ttrue\r\n,null,\"\",[]]",
       {kArray(0, 29, 5), kBare(2, 8), kBare(11, 15), kBare(18, 22), kString(24, 24), kArray(26, 28)}},
      {R"({"k\"\\\/\b\f\n\r\t\u00fF":[{},{"x":[]}]})",
       {kObject(0, 41, 1), kString(2, 25, 1), kArray(27, 40, 2), kObject(28, 30), kObject(31, 39, 1),
        kString(33, 34, 1), kArray(36, 38)}},
      {"a:b c,d", {kBare(0, 1, 3), kBare(2, 3), kBare(4, 5), kBare(6, 7)}},  // no root
      {"x\"y{z[", {kBare(0, 6)}},  // a bare word holds what it does not end at
      {"{a:1 b:2}", {kObject(0, 9, 1), kBare(1, 2, 2), kBare(3, 4), kBare(5, 6, 1), kBare(7, 8)}},
      {"42", {kBare(0, 2)}},  // at the very end of the text
      {"[1]\0garbage"s, {kArray(0, 3, 1), kBare(1, 2)}},
      {"\"\xC3\xA4\"", {kString(1, 3)}},
  };
  for (const auto &[text, tokens] : aTexts) {
    JsonText json(text);
    EXPECT_EQ(tokens, json.Tokens()) << text;
    EXPECT_EQ(tokens, json.Tokens()) << "a second fill only confirms";
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
    const std::vector<Token> expected = whole.Tokens();
    JsonText parts(text);
    FillUpTokenInfo(&parts.st, [](const ZE_KEST_Jsmn_s &) { return false; });
    EXPECT_FALSE(expected.empty());
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
