// SPDX-License-Identifier: Apache-2.0
#include <functional>

#include "tests/support/report_capture.h"
#include "tests/utility/json/json_text.h"

using kest::test::JsonText;
using kest::test::Report;
using kest::test::ReportCapture;

namespace {

constexpr int kNone = -1;        // no target; no match
constexpr int kStranger = 1000;  // a token of no context

// Token:               0 1   2 3   4     5   6     7   8 9
const char *const kText = R"({"a":{"b":1234},"c":"b", "dd":["c"]})";
constexpr int kLast = 9;

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
  // What has been reported since the latest call, the function left out.
  std::string Reported() {
    std::string all;
    for (const Report &report : capture.Reports())
      all += report.text;
    capture.Clear();
    return all;
  }

  ReportCapture capture;
  JsonText json{kText};
  ZE_KEST_JsmnTokenInfo_s stStranger = {ZE_KEST_JSMN_STRING, 0, 1, 0};
};

}  // namespace

TEST_F(JsonLookup, ANameIsFoundAnywhereOrFromATargetToTheEndOfItsValue) {
  const struct {
    int s32Target;
    const char *pszName;
    int s32Found;
    const char *pszReport;
  } aLookups[] = {
      {kNone, "b", 3, ""},
      {kNone, "d", kNone, ""},  // "dd" only begins so
      {kNone, "ddd", kNone, ""},
      {kNone, "1234", kNone, ""},  // no string
      {kNone, "", kNone, ""},
      {1, "b", 3, ""},
      {1, "a", 1, ""},  // itself
      {5, "b", 6, ""},  // a value
      {7, "c", 9, ""},
      {1, "dd", kNone,
       "Warning! The matched pstTokenInfoRet (27) is not inside of pstTargetTokenInfoObject (15)!\n"},
      {7, "a", kNone, ""},
      {kLast, "c", kNone, kNoObject},
      {kStranger, "b", kNone, kCantFind},
      {kNone, nullptr, kNone, "pszDataName is NULL.\n"},
  };
  for (const auto &lookup : aLookups) {
    EXPECT_EQ(lookup.s32Found, Index(ze_kest_Utility_Jsmn_GetTokenInfo_ByDataName(
                                   &json.st, Token(lookup.s32Target), lookup.pszName)));
    EXPECT_EQ(lookup.pszReport, Reported()) << lookup.s32Target;
  }
}

TEST_F(JsonLookup, TheNextStringIsAKeyOrAValue) {
  const struct {
    int s32Target;
    int s32Next;
    const char *pszReport;
  } aSteps[] = {{kNone, 1, ""},
                {0, 1, ""},
                {1, 3, ""},
                {3, 5, ""},
                {5, 6, ""},
                {7, 9, ""},
                {kLast, kNone, kNoObject},
                {kStranger, kNone, kCantFind}};
  for (const auto &step : aSteps) {
    EXPECT_EQ(step.s32Next, Index(ze_kest_Utility_Jsmn_GetNextTokenInfo(&json.st, Token(step.s32Target))));
    EXPECT_EQ(step.pszReport, Reported()) << step.s32Target;
  }
  JsonText number("[\"x\",1]");
  ASSERT_EQ(ZE_KEST_OK, number.Fill());
  EXPECT_EQ(nullptr, ze_kest_Utility_Jsmn_GetNextTokenInfo(&number.st, &number.st.pstTokenInfo[1]));
  EXPECT_EQ("", Reported());
}

TEST_F(JsonLookup, AValueIsReadAtExactlyItsSize) {
  const struct {
    int s32Key;
    const char *pszValue;  // NULL: nothing is written
  } aKeys[] = {{1, "{\"b\":1234}"}, {3, "1234"},      {5, "b"},
               {7, "[\"c\"]"},      {kLast, nullptr}, {kStranger, nullptr}};
  for (const auto &key : aKeys) {
    const std::string expected = key.pszValue == nullptr ? "#####" : key.pszValue;
    size_t sztSize = 5;
    EXPECT_EQ(ZE_KEST_OK,
              ze_kest_Utility_Jsmn_GetDataSize_ByTokenInfo(&json.st, Token(key.s32Key), &sztSize));
    ASSERT_EQ(expected.size(), sztSize);
    std::string data(sztSize + 1, '#');
    EXPECT_EQ(ZE_KEST_OK,
              ze_kest_Utility_Jsmn_ReadData_ByTokenInfo(&json.st, Token(key.s32Key), data.data(), sztSize));
    EXPECT_EQ(expected + "#", data);  // not terminated
  }
  EXPECT_EQ("", Reported());

  char szData[8] = "#######";
  for (const size_t sztSize : {size_t{3}, size_t{5}}) {
    EXPECT_EQ(ZE_KEST_NOTHING_TO_PROCESS,
              ze_kest_Utility_Jsmn_ReadData_ByTokenInfo(&json.st, Token(3), szData, sztSize));
    EXPECT_EQ("Error (0x0000000C)! Data size is not matched (" + std::to_string(sztSize) + ", 4)!\n",
              Reported());
  }
  EXPECT_STREQ("#######", szData);
}

TEST_F(JsonLookup, ArgumentsAreCheckedInOrderAndReportedUnderTheOperationsName) {
  using Call = std::function<uint32_t(ZE_KEST_Jsmn_s *)>;
  char szData[1];
  size_t sztSize = 0;
  const auto answer = [](const void *pv) { return pv == nullptr ? 8u : 0u; };
  // Each call with its own argument faults behind those of the context: what is said of a context that is
  // NULL, has no array, an array of no size, no tokens; then of the call's own arguments.
  const std::string null = "pstJsmn is NULL.\n";
  const std::string array = "pstJsmn->pstTokenInfo is NULL.\n";
  const std::string size = "Invalid parameter: pstJsmn->sztTokenInfoSize!\n";
  const std::string counter = "Invalid parameter: pstJsmn->u32TotalTokenCounter!\n";
  const std::vector<std::string> filled = {null, array, size, counter};
  const struct {
    const char *pszFunction;
    Call call;
    std::vector<std::string> texts;
  } aCalls[] = {
      {"Create", [](auto *pst) { return pst == nullptr ? ze_kest_Utility_Jsmn_Create(pst) : 8; }, {null}},
      {"Destroy", ze_kest_Utility_Jsmn_Destroy, {null, array, size}},
      {"FillUpTokenInfo", ze_kest_Utility_Jsmn_FillUpTokenInfo, {null, array, size}},
      {"GetTokenInfo_ByDataName",
       [&](auto *pst) { return answer(ze_kest_Utility_Jsmn_GetTokenInfo_ByDataName(pst, nullptr, nullptr)); },
       filled},
      {"GetNextTokenInfo",
       [&](auto *pst) { return answer(ze_kest_Utility_Jsmn_GetNextTokenInfo(pst, nullptr)); }, filled},
      {"GetDataSize_ByTokenInfo",
       [](auto *pst) { return ze_kest_Utility_Jsmn_GetDataSize_ByTokenInfo(pst, nullptr, nullptr); }, filled},
      {"ReadData_ByTokenInfo",
       [](auto *pst) { return ze_kest_Utility_Jsmn_ReadData_ByTokenInfo(pst, nullptr, nullptr, 0); }, filled},
  };
  ZE_KEST_JsmnTokenInfo_s stToken;
  ZE_KEST_Jsmn_s ast[3] = {{}, {}, {}};
  ast[1].pstTokenInfo = ast[2].pstTokenInfo = &stToken;
  ast[2].sztTokenInfoSize = 16;
  ZE_KEST_Jsmn_s *const apst[] = {nullptr, &ast[0], &ast[1], &ast[2]};
  for (const auto &call : aCalls) {
    for (size_t i = 0; i < call.texts.size(); ++i) {
      EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, call.call(apst[i]));
      EXPECT_EQ(std::string("ze_kest_Utility_Jsmn_") + call.pszFunction, capture.Reports().at(0).function);
      EXPECT_EQ(call.texts[i], Reported()) << call.pszFunction;
    }
  }

  const auto expect = [&](uint32_t u32Result, const char *pszText) {
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, u32Result);
    EXPECT_EQ(pszText, Reported());
  };
  expect(ze_kest_Utility_Jsmn_GetDataSize_ByTokenInfo(&json.st, nullptr, nullptr), "pstTokenInfo is NULL.\n");
  expect(ze_kest_Utility_Jsmn_GetDataSize_ByTokenInfo(&json.st, Token(1), nullptr),
         "psztDataSize is NULL.\n");
  expect(ze_kest_Utility_Jsmn_ReadData_ByTokenInfo(&json.st, nullptr, nullptr, 0), "pstTokenInfo is NULL.\n");
  expect(ze_kest_Utility_Jsmn_ReadData_ByTokenInfo(&json.st, Token(1), nullptr, 0), "pszData is NULL.\n");
  expect(ze_kest_Utility_Jsmn_ReadData_ByTokenInfo(&json.st, Token(1), szData, sztSize),
         "Invalid parameter: sztDataSize!\n");
}
