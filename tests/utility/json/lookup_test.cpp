// SPDX-License-Identifier: Apache-2.0
#include "tests/utility/json/json_text.h"

namespace kest::test {
namespace {

const char *const kText = R"({"a":{"b":1234},"c":"b", "dd":["c"]})";
// Its tokens, in their order; no target or no match; a token of no context.
enum { kRoot, kA, kValueOfA, kB, k1234, kC, kValueOfC, kDd, kValueOfDd, kLast, kNone = -1, kStranger = 1000 };

const char *const kCantFind = "Error! Can't find this pstTargetTokenInfo in pstJsmn!\n";
const char *const kNoObject = "Error! This pstTargetTokenInfo doesn't have any object!\n";

class JsonLookup : public testing::Test {
 protected:
  JsonLookup() { EXPECT_EQ(ZE_KEST_OK, json.Fill()); }

  ZE_KEST_JsmnTokenInfo_s *Token(int s32Idx) {
    if (s32Idx == kStranger) return &stStranger;
    return s32Idx == kNone ? nullptr : &json.st.pstTokenInfo[s32Idx];
  }
  int Index(const ZE_KEST_JsmnTokenInfo_s *pst) const {
    return pst == nullptr ? kNone : static_cast<int>(pst - json.st.pstTokenInfo);
  }
  // What has been reported since the latest call, behind the function's name when it is asked for.
  std::string Reported(bool bFunction = false) {
    std::string all;
    for (const Report &report : capture.Reports())
      all += (bFunction ? report.function + " " : "") + report.text;
    capture.Clear();
    return all;
  }

  void ExpectReport(const char *pszOperation, const std::string &text) {
    EXPECT_EQ(std::string("ze_kest_Utility_Jsmn_") + pszOperation + " " + text, Reported(true));
  }
  void ExpectInvalid(uint32_t u32Result, const char *pszOperation, const std::string &text) {
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, u32Result);
    ExpectReport(pszOperation, text);
  }

  ReportCapture capture;
  JsonText json{kText};
  ZE_KEST_JsmnTokenInfo_s stStranger = {ZE_KEST_JSMN_STRING, 0, 1, 0};
};

}  // namespace

TEST_F(JsonLookup, ANameIsFoundAnywhereOrFromATargetToTheEndOfItsValue) {
  struct {
    int s32Target;
    const char *pszName;
    int s32Found;
    const char *pszReport = "";
  } const aLookups[] = {
      {kNone, "b", kB},
      {kNone, "d", kNone},  // "dd" only begins so
      {kNone, "ddd", kNone},
      {kNone, "1234", kNone},  // no string
      {kA, "b", kB},
      {kA, "a", kA},
      {kC, "b", kValueOfC},
      {kDd, "c", kLast},
      {kDd, "a", kNone},
      {kA, "dd", kNone,
       "Warning! The matched pstTokenInfoRet (26) is not inside of pstTargetTokenInfoObject (15)!\n"},
      {kLast, "c", kNone, kNoObject},
      {kStranger, "b", kNone, kCantFind},
      {kNone, nullptr, kNone, "pszDataName is NULL.\n"},
  };
  for (const auto &[s32Target, pszName, s32Found, pszReport] : aLookups) {
    EXPECT_EQ(s32Found,
              Index(ze_kest_Utility_Jsmn_GetTokenInfo_ByDataName(&json.st, Token(s32Target), pszName)));
    EXPECT_EQ(pszReport, Reported()) << s32Target;
  }
}

TEST_F(JsonLookup, TheFirstTokenAndAnEmptyTextAreFoundToo) {
  JsonText bare(R"("a":"")");
  ASSERT_EQ(ZE_KEST_OK, bare.Fill());
  ZE_KEST_JsmnTokenInfo_s *pstKey = bare.st.pstTokenInfo;
  EXPECT_EQ(pstKey, ze_kest_Utility_Jsmn_GetTokenInfo_ByDataName(&bare.st, nullptr, "a"));
  EXPECT_EQ(pstKey + 1, ze_kest_Utility_Jsmn_GetTokenInfo_ByDataName(&bare.st, pstKey, ""));
}

TEST_F(JsonLookup, TheNextStringIsAKeyOrAValue) {
  const std::tuple<int, int, const char *> aSteps[] = {
      {kNone, kA, ""},     {kRoot, kA, ""},           {kA, kB, ""},
      {kC, kValueOfC, ""}, {kLast, kNone, kNoObject}, {kStranger, kNone, kCantFind}};
  for (const auto &[s32Target, s32Next, pszReport] : aSteps) {
    EXPECT_EQ(s32Next, Index(ze_kest_Utility_Jsmn_GetNextTokenInfo(&json.st, Token(s32Target))));
    EXPECT_EQ(pszReport, Reported()) << s32Target;
  }
  JsonText number("[\"x\",1]");
  ASSERT_EQ(ZE_KEST_OK, number.Fill());
  EXPECT_EQ(nullptr, ze_kest_Utility_Jsmn_GetNextTokenInfo(&number.st, &number.st.pstTokenInfo[1]));
  EXPECT_EQ("", Reported());
}

TEST_F(JsonLookup, AValueIsReadAtExactlyItsSize) {
  const std::pair<int, std::string> aKeys[] = {{kA, "{\"b\":1234}"}, {kB, "1234"},    {kC, "b"},
                                               {kDd, "[\"c\"]"},     {kLast, "####"}, {kStranger, "####"}};
  for (const auto &[s32Key, value] : aKeys) {
    SCOPED_TRACE(s32Key);
    size_t sztSize = 4;
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_Jsmn_GetDataSize_ByTokenInfo(&json.st, Token(s32Key), &sztSize));
    ASSERT_EQ(value.size(), sztSize);
    std::string data(sztSize + 1, '#');
    EXPECT_EQ(ZE_KEST_OK,
              ze_kest_Utility_Jsmn_ReadData_ByTokenInfo(&json.st, Token(s32Key), data.data(), sztSize));
    EXPECT_EQ(value + "#", data);  // not terminated
  }
  EXPECT_EQ("", Reported());
  std::string data(8, '#');
  for (const size_t sztSize : {size_t{3}, size_t{5}}) {
    EXPECT_EQ(12u, ze_kest_Utility_Jsmn_ReadData_ByTokenInfo(&json.st, Token(kB), data.data(), sztSize));
    EXPECT_EQ("Error (0x0000000C)! Data size is not matched (" + std::to_string(sztSize) + ", 4)!\n",
              Reported());
  }
  EXPECT_EQ(std::string(8, '#'), data);
}

TEST_F(JsonLookup, AContextIsCheckedInOrderAndReportedUnderTheOperationsName) {
  ZE_KEST_Jsmn_s ast[3] = {{}, {}, {}};
  ast[1].pstTokenInfo = ast[2].pstTokenInfo = &stStranger;
  ast[2].sztTokenInfoSize = 16;
  const std::pair<ZE_KEST_Jsmn_s *, std::string> aContexts[] = {
      {nullptr, "pstJsmn is NULL.\n"},
      {&ast[0], "pstJsmn->pstTokenInfo is NULL.\n"},
      {&ast[1], "Invalid parameter: pstJsmn->sztTokenInfoSize!\n"},
      {&ast[2], "Invalid parameter: pstJsmn->u32TotalTokenCounter!\n"}};
  for (const auto &[pst, text] : aContexts) {
    EXPECT_EQ(nullptr, ze_kest_Utility_Jsmn_GetTokenInfo_ByDataName(pst, nullptr, nullptr));
    ExpectReport("GetTokenInfo_ByDataName", text);
    EXPECT_EQ(nullptr, ze_kest_Utility_Jsmn_GetNextTokenInfo(pst, nullptr));
    ExpectReport("GetNextTokenInfo", text);
    ExpectInvalid(ze_kest_Utility_Jsmn_GetDataSize_ByTokenInfo(pst, nullptr, nullptr),
                  "GetDataSize_ByTokenInfo", text);
    ExpectInvalid(ze_kest_Utility_Jsmn_ReadData_ByTokenInfo(pst, nullptr, nullptr, 0), "ReadData_ByTokenInfo",
                  text);
    if (pst == &ast[2]) continue;  // which is usable
    ExpectInvalid(ze_kest_Utility_Jsmn_FillUpTokenInfo(pst), "FillUpTokenInfo", text);
    ExpectInvalid(ze_kest_Utility_Jsmn_Destroy(pst), "Destroy", text);
  }
  ExpectInvalid(ze_kest_Utility_Jsmn_Create(nullptr), "Create", "pstJsmn is NULL.\n");
  ExpectInvalid(ze_kest_Utility_Jsmn_FillUpTokenInfo(&ast[2]), "FillUpTokenInfo",
                "pstJsmn->pszStringData is NULL.\n");
  ast[2].pszStringData = kText;
  ExpectInvalid(ze_kest_Utility_Jsmn_FillUpTokenInfo(&ast[2]), "FillUpTokenInfo",
                "Invalid parameter: pstJsmn->sztStringDataSize!\n");
}

TEST_F(JsonLookup, ATokenAndTheRoomForItsValueAreCheckedInOrder) {
  const char *const pszSize = "GetDataSize_ByTokenInfo";
  const char *const pszRead = "ReadData_ByTokenInfo";
  const auto size = ze_kest_Utility_Jsmn_GetDataSize_ByTokenInfo;
  const auto read = ze_kest_Utility_Jsmn_ReadData_ByTokenInfo;
  char cData = 0;
  ExpectInvalid(size(&json.st, nullptr, nullptr), pszSize, "pstTokenInfo is NULL.\n");
  ExpectInvalid(size(&json.st, Token(kA), nullptr), pszSize, "psztDataSize is NULL.\n");
  ExpectInvalid(read(&json.st, nullptr, nullptr, 0), pszRead, "pstTokenInfo is NULL.\n");
  ExpectInvalid(read(&json.st, Token(kA), nullptr, 0), pszRead, "pszData is NULL.\n");
  ExpectInvalid(read(&json.st, Token(kA), &cData, 0), pszRead, "Invalid parameter: sztDataSize!\n");
}

}  // namespace kest::test
