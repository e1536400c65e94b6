// SPDX-License-Identifier: Apache-2.0
#include "utility/core/report.h"

#include "tests/support/library_test.h"

namespace kest::test {
namespace {

void ReportAtEveryLevel() {
  KEST_ERR("e\n");
  KEST_WRN("w\n");
  KEST_INFO("i\n");
  KEST_PRINT("p\n");
}

// Priority and label of every report that passes; each has the tag and names its site.
std::string LabelsAt(uint32_t u32Level) {
  const ReportCapture capture(u32Level);
  ReportAtEveryLevel();
  std::string labels;
  for (const Report &report : capture.Reports()) {
    EXPECT_EQ("<KEST>", report.tag);
    EXPECT_EQ("ReportAtEveryLevel", report.function);
    labels += std::to_string(report.s32Priority) + report.label;
  }
  return labels;
}

char g_szName[] = "name";

}  // namespace

TEST(Report, AReportPassesWhenTheLevelInForceIsAtLeastItsOwn) {
  EXPECT_EQ("4<PRINT>", LabelsAt(0));
  EXPECT_EQ("4<PRINT>", LabelsAt(31));
  EXPECT_EQ("6<ERR>4<PRINT>", LabelsAt(ZE_KEST_LEVEL_ERR));
  EXPECT_EQ("6<ERR>4<PRINT>", LabelsAt(ZE_KEST_LEVEL_HDMI));
  EXPECT_EQ("6<ERR>5<WRN>4<PRINT>", LabelsAt(ZE_KEST_LEVEL_WRN));
  EXPECT_EQ("6<ERR>5<WRN>4<INFO>4<PRINT>", LabelsAt(ZE_KEST_LEVEL_INFO));
  // The arguments of one that does not pass are not evaluated.
  const ReportCapture capture(ZE_KEST_LEVEL_PRINT);
  int s32Evaluated = 0;
  KEST_ERR("%d\n", ++s32Evaluated);
  EXPECT_EQ(0, s32Evaluated);
}

TEST(Report, ReachesTheLibrarysOwnLogWithNameAndLineAndPrintWithNeither) {
  const DebugLayer layer;
  const ReportCapture capture(ZE_KEST_LEVEL_WRN);
  const size_t sztBefore = ReadFile(kLogFile).size();
  ReportAtEveryLevel();
  const std::string log = ReadFile(kLogFile).substr(sztBefore);
  EXPECT_THAT(log, MatchesRegex(".*<ERR>\033\\[0mReportAtEveryLevel\\[[0-9]+ *]: e\n"
                                ".*<WRN>\033\\[0mReportAtEveryLevel\\[[0-9]+ *]: w\n"
                                "p\n"));
}

TEST(Report, BothLogsShowTheSameThoughAnArgumentHasAnEffectAndANameChangesInBetween) {
  const DebugLayer layer;
  const ReportCapture capture;
  const size_t sztBefore = ReadFile(kLogFile).size();
  int s32 = 0;
  KEST_PRINT("%d\n", ++s32);
  KEST_ERR("%d\n", ++s32);
  __android_log_set_logger([](const __android_logger_data *, const char *) { g_szName[0] = 'X'; });
  KEST_PRINT("%s\n", g_szName);
  const std::string log = ReadFile(kLogFile).substr(sztBefore);
  EXPECT_THAT(log, MatchesRegex("1\n.*]: 2\nname\n"));
  EXPECT_EQ('X', g_szName[0]);
  EXPECT_EQ((Texts{"<PRINT>1\n", "<ERR>2\n"}), capture.Lines());
}

// The Android log has a limit of its own.
TEST(Report, ALongTextIsWholeInTheLibrarysOwnLog) {
  const DebugLayer layer;
  const ReportCapture capture;
  const size_t sztBefore = ReadFile(kLogFile).size();
  const std::string text(5000, 'x');
  KEST_PRINT("%s\n", text.c_str());
  KEST_ERR("%s\n", text.c_str());
  EXPECT_THAT(ReadFile(kLogFile).substr(sztBefore), MatchesRegex(text + "\n.*]: " + text + "\n"));
  for (const Report &report : capture.Reports())
    EXPECT_THAT(report.text, AllOf(StartsWith(text.substr(0, 900)), testing::SizeIs(testing::Lt(1024))));
}

TEST(Report, AFailingThreadCallIsQuotedAsWrittenAndATimeoutIsSilent) {
  const ReportCapture capture;
  EXPECT_EQ(0, KEST_THREAD_CALL(0 + 0));
  EXPECT_EQ(ETIMEDOUT, KEST_THREAD_CALL(ETIMEDOUT));
  EXPECT_TRUE(capture.Reports().empty());
  EXPECT_EQ(EINVAL, KEST_THREAD_CALL_AS("SubStep", EINVAL + 0));
  ASSERT_EQ(1u, capture.Reports().size());
  EXPECT_EQ("<WRN>", capture.Reports()[0].label);
  EXPECT_EQ("SubStep", capture.Reports()[0].function);
  EXPECT_EQ("EINVAL + 0 error:22,Invalid argument \n", capture.Reports()[0].text);
}

}  // namespace kest::test
