// SPDX-License-Identifier: Apache-2.0
#include "debug/base/started.h"
#include "debug/control/dispatcher.h"
#include "tests/support/library_test.h"

namespace kest::test {
namespace {

constexpr const char *kPath = KEST_DEBUG_DIR "a.b,c.json";  // points, commas and slashes are part of the path
const std::string kLine = std::string("kest_json_parser=") + kPath;

// Arrays, with an object in the innermost.
std::string Nested(size_t sztDepth) {
  return std::string(sztDepth - 1, '[') + "{}" + std::string(sztDepth - 1, ']');
}

}  // namespace

TEST(JsonCommand, PrintsTheFileAndItsTokensOneByOne) {
  const std::string document = R"({"gain": -12, "on":true, "ch":["0x1F"]})";
  WriteFile(kPath, document);
  const ReportCapture capture(ZE_KEST_LEVEL_PRINT);
  EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_SetParameter((kLine + " ignored").c_str()));
  std::string printed;
  for (const std::string &text : capture.Texts("<PRINT>"))
    printed += text;
  EXPECT_EQ("\n" + document + "\n\n\nnode:    0,    OBJECT, children:     3, data:\n" + document +
                ", \n"
                "node:    1,    STRING, children:     1, data:\ngain, \n"
                "node:    2, PRIMITIVE, children:     0, data:\n-12, \nStrToInt: -12\n"
                "node:    3,    STRING, children:     1, data:\non, \n"
                "node:    4, PRIMITIVE, children:     0, data:\ntrue, \nStrToInt: 0\n"
                "node:    5,    STRING, children:     1, data:\nch, \n"
                "node:    6,     ARRAY, children:     1, data:\n[\"0x1F\"], \n"
                "node:    7,    STRING, children:     0, data:\n0x1F, \n",
            printed);
}

TEST(JsonCommand, AFileThatCannotBeReadOrIsNoJsonLeavesTheLineToOthers) {
  for (const char *pszContents :
       {"", "{\"a\":", "[}", "\n \n"}) {  // an empty file is one that cannot be read
    const ReportCapture capture;
    WriteFile(kPath, pszContents);
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, _ZE_KEST_Debug_SetParameter(kLine.c_str()));
    EXPECT_TRUE(capture.Has("<ERR>", *pszContents == '\0'
                                         ? "Err! FileToString failed!\n"
                                         : "Failed to parse pszJson for tok malloc issue.\n"));
    EXPECT_FALSE(capture.Has("<PRINT>", "node:"));
  }
}

TEST(JsonCommand, PrintsTokensOf64LevelsAndNoneOfATextThatIsDeeperOrLongerThanAMillionBytes) {
  ReportCapture capture;
  WriteFile(kPath, Nested(64));
  EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_SetParameter(kLine.c_str()));
  EXPECT_TRUE(capture.Has("<PRINT>", "node:   63,    OBJECT, children:     0, data:\n{}, \n"));
  WriteFile(kPath, "[" + std::string(1048574, ' ') + "]");
  EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_SetParameter(kLine.c_str()));
  for (const std::string &text : {Nested(65), Nested(200000), "[" + std::string(1048576, ' ') + "]"}) {
    capture.Clear();
    WriteFile(kPath, text);
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, _ZE_KEST_Debug_SetParameter(kLine.c_str()));
    EXPECT_FALSE(capture.Has("<PRINT>", "node:"));
    EXPECT_TRUE(capture.Has("<ERR>", text[1] == '[' ? "Err! The tokens are nested deeper than 64 levels\n"
                                                    : "a.b,c.json has more than 1048576 bytes\n"));
    // A text that would take long is given up.
    EXPECT_EQ(text.size() > 1000 && text[1] == '[', capture.Has("<ERR>", "with error -4!\n"));
  }
}

TEST(JsonCommand, LongLinesKeepTheSizeOfTheLog) {
  const DebugLayer layer;
  const ReportCapture capture(ZE_KEST_LEVEL_PRINT);
  Command("kest_log_size=100000");
  WriteFile(kPath, std::string(60, '[') + std::string(50000, ' ') + std::string(60, ']'));
  Command(kLine);
  EXPECT_LT(ReadFile(kLogFile).size(), 200000u);
  WriteFile(kPath, "[]" + std::string(150000, ' '));  // the text alone is long
  Command(kLine);
  EXPECT_LT(ReadFile(kLogFile).size(), 1000u);
}

TEST(JsonCommand, EndsWithTheDebugLayer) {
  const ReportCapture capture(ZE_KEST_LEVEL_PRINT);
  WriteFile(kPath, "[1,2]");
  SetEnding(true);
  _ZE_KEST_Debug_SetParameter(kLine.c_str());
  EXPECT_FALSE(capture.Has("<PRINT>", "node:"));
  SetEnding(false);
}

}  // namespace kest::test
