// SPDX-License-Identifier: Apache-2.0
#include "utility/core/report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/debug_layer.h"
#include "tests/support/report_capture.h"

using kest::test::Report;
using kest::test::ReportCapture;

namespace {

void ReportAtEveryLevel() {
  KEST_ERR("e\n");
  KEST_WRN("w\n");
  KEST_INFO("i\n");
  KEST_PRINT("p\n");
}

std::string LabelsAt(uint32_t u32Level) {
  const ReportCapture capture(u32Level);
  ReportAtEveryLevel();
  std::string labels;
  for (const Report &report : capture.Reports())
    labels += report.label;
  return labels;
}

int g_s32Evaluated = 0;

int Evaluated() {
  return ++g_s32Evaluated;
}

}  // namespace

TEST(Report, AReportPassesWhenTheLevelInForceIsAtLeastItsOwn) {
  EXPECT_EQ("<PRINT>", LabelsAt(0));
  EXPECT_EQ("<PRINT>", LabelsAt(ZE_KEST_LEVEL_PRINT));
  EXPECT_EQ("<PRINT>", LabelsAt(31));
  EXPECT_EQ("<ERR><PRINT>", LabelsAt(ZE_KEST_LEVEL_ERR));
  EXPECT_EQ("<ERR><PRINT>", LabelsAt(ZE_KEST_LEVEL_HDMI));
  EXPECT_EQ("<ERR><WRN><PRINT>", LabelsAt(ZE_KEST_LEVEL_WRN));
  EXPECT_EQ("<ERR><WRN><INFO><PRINT>", LabelsAt(ZE_KEST_LEVEL_INFO));
  EXPECT_EQ("<ERR><WRN><INFO><PRINT>", LabelsAt(ZE_KEST_LEVEL_ENTER));
}

TEST(Report, EveryLevelHasItsPriorityAndTheTagAndNamesItsSite) {
  const ReportCapture capture;
  ReportAtEveryLevel();
  const std::vector<Report> reports = capture.Reports();
  ASSERT_EQ(4u, reports.size());
  const int as32Priority[] = {6, 5, 4, 4};
  for (size_t i = 0; i < reports.size(); ++i) {
    EXPECT_EQ(as32Priority[i], reports[i].s32Priority);
    EXPECT_EQ("<KEST>", reports[i].tag);
    EXPECT_EQ("ReportAtEveryLevel", reports[i].function);
  }
}

TEST(Report, ReachesTheLibrarysOwnLogWithNameAndLineAndPrintWithNeither) {
  const kest::test::DebugLayer layer;
  const ReportCapture capture(ZE_KEST_LEVEL_WRN);
  const size_t sztBefore = kest::test::ReadFile(kest::test::kLogFile).size();
  ReportAtEveryLevel();
  const std::string log = kest::test::ReadFile(kest::test::kLogFile).substr(sztBefore);
  EXPECT_THAT(log, testing::MatchesRegex(".*<ERR>\033\\[0mReportAtEveryLevel\\[[0-9]+ *]: e\n"
                                         ".*<WRN>\033\\[0mReportAtEveryLevel\\[[0-9]+ *]: w\n"
                                         "p\n"));
}

TEST(Report, ArgumentsOfAGatedReportAreNotEvaluated) {
  const ReportCapture capture(ZE_KEST_LEVEL_PRINT);
  KEST_ERR("%d\n", Evaluated());
  EXPECT_EQ(0, g_s32Evaluated);
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
