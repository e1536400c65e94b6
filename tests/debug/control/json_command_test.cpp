// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ze_kest/debug.h"

#include "debug/control/dispatcher.h"
#include "tests/support/debug_layer.h"
#include "tests/support/report_capture.h"

using kest::_ZE_KEST_Debug_SetParameter;
using kest::test::ReportCapture;
using kest::test::WriteFile;

namespace {

using Texts = std::vector<std::string>;

// Points and slashes are part of the path.
constexpr const char *kPath = KEST_DEBUG_DIR "a.b.json";
const std::string kLine = std::string("kest_json_parser=") + kPath;

}  // namespace

TEST(JsonCommand, PrintsTheFileAndItsTokensOneByOne) {
  WriteFile(kPath, R"({"gain": -12, "on":true, "ch":["0x1F"]})");
  for (const std::string &line : {kLine, std::string("kest_json_parser ") + kPath + " ignored"}) {
    const ReportCapture capture;
    EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_SetParameter(line.c_str()));
    Texts printed;
    for (const kest::test::Report &report : capture.Reports()) {
      if (report.label != "<PRINT>") continue;
      EXPECT_EQ("_ZE_KEST_Debug_SetParameter", report.function);
      printed.push_back(report.text);
    }
    EXPECT_EQ((Texts{"\n",
                     R"({"gain": -12, "on":true, "ch":["0x1F"]})"
                     "\n\n\n",
                     "node:    0,    OBJECT, children:     3, data:\n"
                     R"({"gain": -12, "on":true, "ch":["0x1F"]})"
                     ", \n",
                     "node:    1,    STRING, children:     1, data:\ngain, \n",
                     "node:    2, PRIMITIVE, children:     0, data:\n-12, \n", "StrToInt: -12\n",
                     "node:    3,    STRING, children:     1, data:\non, \n",
                     "node:    4, PRIMITIVE, children:     0, data:\ntrue, \n", "StrToInt: 0\n",
                     "node:    5,    STRING, children:     1, data:\nch, \n",
                     "node:    6,     ARRAY, children:     1, data:\n[\"0x1F\"], \n",
                     "node:    7,    STRING, children:     0, data:\n0x1F, \n"}),
              printed);
  }
}

TEST(JsonCommand, AFileThatCannotBeReadOrIsNoJsonLeavesTheLineToOthers) {
  const std::pair<const char *, const char *> aFailures[] = {
      {nullptr, "Err! FileToString failed!\n"},
      {"", "Err! FileToString failed!\n"},
      {"{\"a\":", "Failed to parse pszJson for tok malloc issue.\n"},
      {"[}", "Failed to parse pszJson for tok malloc issue.\n"},
      {"\n \n", "Failed to parse pszJson for tok malloc issue.\n"}};
  for (const auto &[pszContents, pszText] : aFailures) {
    kest::test::EmptyDebugDirectory();
    if (pszContents != nullptr) WriteFile(kPath, pszContents);
    const ReportCapture capture;
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, _ZE_KEST_Debug_SetParameter(kLine.c_str()));
    EXPECT_TRUE(capture.Has("<ERR>", pszText)) << pszText;
    EXPECT_FALSE(capture.Has("<PRINT>", "node:"));
  }
}
