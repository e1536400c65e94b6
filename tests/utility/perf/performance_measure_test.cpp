// SPDX-License-Identifier: Apache-2.0
#include <cstring>
#include <functional>

#include <gtest/gtest.h>

#include "ze_kest/utility.h"

#include "tests/support/debug_layer.h"
#include "tests/support/fake_counters.h"
#include "tests/support/ports.h"
#include "tests/support/report_capture.h"
#include "utility/perf/perf_target.h"

using kest::test::FakeCounters;
using kest::test::OpenDescriptors;
using kest::test::ReportCapture;
using Measure = ZE_KEST_PerformanceMeasure_s;
using Texts = std::vector<std::string>;

namespace {

uint32_t StartPipeline(Measure *pst) {
  return ze_kest_Utility_PerformanceMeasure_StartPipelineMeasure("main", pst);
}
uint32_t StopPipeline(Measure *pst) {
  return ze_kest_Utility_PerformanceMeasure_StopPipelineMeasure("main", pst);
}
uint32_t StartFilter(Measure *pst) {
  return ze_kest_Utility_PerformanceMeasure_StartFilterMeasure("main", "eq", pst);
}
uint32_t StopFilter(Measure *pst) {
  return ze_kest_Utility_PerformanceMeasure_StopFilterMeasure("main", "eq", pst);
}
uint32_t StartSection(Measure *pst) {
  kest::test::Filter filter;
  return ze_kest_Utility_PerformanceMeasure_StartMeasure(filter, pst, "fir");
}
uint32_t StopSection(Measure *pst) {
  kest::test::Filter filter;
  return ze_kest_Utility_PerformanceMeasure_StopMeasure(filter, pst, "fir");
}

void Select(const std::string &target) {
  kest::_ZE_KEST_Debug_Cmd_SetPerfEventTarget(("kest_perf_event_target=" + target).c_str());
}

struct Form {
  uint32_t (*pfnStart)(Measure *);
  uint32_t (*pfnStop)(Measure *);
  std::string target;
  std::string startLabel;
  std::string cyclesLabel;
};

const std::vector<Form> &Forms() {
  static const std::vector<Form> forms = {
      {StartPipeline, StopPipeline, "pipeline,main", "[PERF_EVENT][main]", "[main]"},
      {StartFilter, StopFilter, "filter,main:eq", "[PERF_EVENT][main:eq]", "[main:eq]"},
      {StartSection, StopSection, "none", "[pipe:filter][fir]", "[pipe:filter][fir]"}};
  return forms;
}

class PerformanceMeasure : public testing::Test {
 protected:
  ~PerformanceMeasure() override { Select("none"); }

  // The PRINT lines since the last look.
  Texts Lines() {
    const Texts lines = capture.Texts("<PRINT>");
    capture.Clear();
    return lines;
  }
  // One cycle of the form, 7 us long, that ends at a time.
  void Cycle(const Form &form, uint64_t u64EndUs) {
    fake.u64NowUs = u64EndUs - 7;
    EXPECT_EQ(ZE_KEST_OK, form.pfnStart(&st));
    fake.u64NowUs = u64EndUs;
    EXPECT_EQ(ZE_KEST_OK, form.pfnStop(&st));
  }
  [[nodiscard]] bool IsZero() const {
    const Measure stZero = {};
    return memcmp(&st, &stZero, sizeof(st)) == 0;
  }

  ReportCapture capture;
  FakeCounters fake;
  const std::ptrdiff_t before = OpenDescriptors();
  Measure st = {};
};

}  // namespace

TEST_F(PerformanceMeasure, EveryFiftiethStopPrintsTheAveragesSinceTheFirstStart) {
  fake.counts = {2000000, 1010, 12346000};
  for (const Form &form : Forms()) {
    Select(form.target);
    st = {};
    for (uint64_t i = 0; i < 49; ++i)
      Cycle(form, 5000007 + i * 1000);
    EXPECT_EQ(Texts{form.startLabel + "Start to record Perf Event(timestamp=5000000 us)\n"}, Lines());
    Cycle(form, 6000000);
    EXPECT_EQ(Texts{"[PERF_EVENT][50]" + form.cyclesLabel +
                    "[MIPS=100.00][MCPS=0.05][CPU%=61.73%](HwInstr:2000000/100000000,"
                    "HwCpuCycles:1010/50500,SwTaskClock:12346000/617300000,"
                    "exe_time:7 us,curr_time:6000000 us,start_time:5000000 us)\n"},
              Lines());
    for (uint64_t i = 1; i <= 50; ++i)
      Cycle(form, 6000000 + i * 1000);
    const Texts lines = Lines();
    ASSERT_EQ(1u, lines.size());
    EXPECT_EQ(0u, lines[0].find("[PERF_EVENT][100]"));
    EXPECT_EQ(before, OpenDescriptors());
  }
}

TEST_F(PerformanceMeasure, NoTimeSinceTheFirstStartPrintsZeroes) {
  fake.counts = {1000, 1000, 1000};
  for (const uint64_t u64FirstUs : {uint64_t{101}, uint64_t{100}}) {
    st = {};
    st.u64Count = 49;
    st.u64FirstStartTime = u64FirstUs;
    fake.u64NowUs = 102;
    EXPECT_EQ(ZE_KEST_OK, StartSection(&st));
    fake.u64NowUs = 100;
    EXPECT_EQ(ZE_KEST_OK, StopSection(&st));
    EXPECT_TRUE(capture.Has("<PRINT>", "[MIPS=0.00][MCPS=0.00][CPU%=0.00%]"));
    EXPECT_TRUE(capture.Has("<PRINT>", "exe_time:0 us"));
    capture.Clear();
  }
}

TEST_F(PerformanceMeasure, OnlyTheTargetIsMeasuredAndTheOthersTellHowTheyAreSelected) {
  const std::string pipelineLine = "[PERF_EVENT][echo kest_perf_event_target=pipeline,main >D]\n";
  const std::string filterLine = "[PERF_EVENT][echo kest_perf_event_target=filter,main:eq >D]\n";
  const struct {
    std::string target;
    size_t events;  // opened by both forms together
    Texts lines;    // of their stops
  } cases[] = {{"pipeline,main", 3, {}},
               {"pipeline,mai", 0, {}},
               {"pipeline,main2", 0, {}},
               {"pipeline,", 0, {pipelineLine}},
               {"filter,main:eq", 3, {}},
               {"filter,main:eq2", 0, {}},
               {"filter,aux:eq", 0, {}},
               {"filter,main:", 0, {filterLine}},
               {"filter,:eq", 0, {filterLine}},
               {"filter,aux:", 0, {}},
               {"filter,:gain", 0, {}},
               {"filter,:", 0, {}},
               {"none", 0, {}}};
  for (const auto &c : cases) {
    Select("none");
    Select(c.target);
    Measure stPipeline = {};
    Measure stFilter = {};
    fake.events.clear();
    EXPECT_EQ(ZE_KEST_OK, StartPipeline(&stPipeline));
    EXPECT_EQ(ZE_KEST_OK, StartFilter(&stFilter));
    Lines();
    EXPECT_EQ(ZE_KEST_OK, StopPipeline(&stPipeline));
    EXPECT_EQ(ZE_KEST_OK, StopFilter(&stFilter));
    EXPECT_EQ(c.lines, Lines()) << c.target;
    EXPECT_EQ(c.events, fake.events.size()) << c.target;
    EXPECT_EQ(c.events / 3, stPipeline.u64Count + stFilter.u64Count) << c.target;
  }
}

TEST_F(PerformanceMeasure, AnotherTargetKeepsARecordAndNoTargetClearsItOnceUsed) {
  for (const Form &form : {Forms()[0], Forms()[1]}) {
    const auto used = [&] {
      Select(form.target);
      Cycle(form, 1000);
      Lines();
    };
    used();
    const Measure stUsed = st;
    Select("filter,a:b");
    EXPECT_EQ(ZE_KEST_OK, form.pfnStart(&st));
    EXPECT_EQ(ZE_KEST_OK, form.pfnStop(&st));
    EXPECT_EQ(0, memcmp(&stUsed, &st, sizeof(st)));

    Select("none");
    EXPECT_EQ(ZE_KEST_OK, form.pfnStart(&st));
    EXPECT_TRUE(IsZero());
    EXPECT_EQ(Texts{form.startLabel + "Reset Perf Event Records\n"}, Lines());
    EXPECT_EQ(ZE_KEST_OK, form.pfnStart(&st));
    EXPECT_EQ(ZE_KEST_OK, form.pfnStop(&st));
    EXPECT_TRUE(capture.Reports().empty());

    // The target goes within a cycle: whichever call sees it first closes the group.
    for (const auto pfnNext : {form.pfnStart, form.pfnStop}) {
      used();
      EXPECT_EQ(ZE_KEST_OK, form.pfnStart(&st));
      Select("none");
      EXPECT_EQ(ZE_KEST_OK, pfnNext(&st));
      EXPECT_TRUE(IsZero());
      EXPECT_EQ(before, OpenDescriptors());
    }
    EXPECT_TRUE(capture.Texts("<ERR>").empty());
  }
}

TEST_F(PerformanceMeasure, AFailureOfTheCountersEndsTheCall) {
  for (const Form &form : Forms()) {
    Select(form.target);
    capture.Clear();
    st = {};
    fake.s32OpensLeft = 0;
    EXPECT_EQ(ZE_KEST_NOT_INITIALISED, form.pfnStart(&st));
    EXPECT_EQ(0u, st.u64StartTime);
    fake.u64NowUs = 9;
    EXPECT_EQ(ZE_KEST_NOT_INITIALISED, form.pfnStop(&st));
    EXPECT_EQ(9u, st.u64StopTime);
    EXPECT_EQ((Texts{"Error opening leader 1 for  HwInstr\n", "Perf Event are not initialized\n"}),
              capture.Texts("<ERR>"));

    fake.s32OpensLeft = -1;
    fake.bReadable = false;
    EXPECT_EQ(ZE_KEST_OK, form.pfnStart(&st));
    EXPECT_EQ(ZE_KEST_NOT_INITIALISED, form.pfnStop(&st));
    fake.bReadable = true;
    EXPECT_EQ(ZE_KEST_OK, form.pfnStart(&st));
    fake.s32AllocationsLeft = 1;  // the group's, and none for the text
    EXPECT_EQ(ZE_KEST_OUT_OF_MEMORY, form.pfnStop(&st));
    EXPECT_EQ("[PERF_EVENT]MALLOC Failed\n", capture.Texts("<ERR>").back());
    fake.s32AllocationsLeft = -1;
    EXPECT_EQ(0u, st.u64Count);
    EXPECT_EQ(before, OpenDescriptors());
  }
}

TEST_F(PerformanceMeasure, AMissingArgumentIsReportedUnderTheCalledFunction) {
  kest::test::Filter filter;
  const std::string prefix = "ze_kest_Utility_PerformanceMeasure_";
  const struct {
    std::function<uint32_t()> call;
    std::string function;
    std::string argument;
  } cases[] = {{[&] { return ze_kest_Utility_PerformanceMeasure_StartPipelineMeasure(nullptr, &st); },
                "StartPipelineMeasure", "pszPipelineName"},
               {[] { return StopPipeline(nullptr); }, "StopPipelineMeasure", "pstPerformanceMeasure"},
               {[&] { return ze_kest_Utility_PerformanceMeasure_StartFilterMeasure(nullptr, "eq", &st); },
                "StartFilterMeasure", "pszPipelineName"},
               {[&] { return ze_kest_Utility_PerformanceMeasure_StopFilterMeasure("main", nullptr, &st); },
                "StopFilterMeasure", "pszFilterName"},
               {[] { return StartFilter(nullptr); }, "StartFilterMeasure", "pstPerformanceMeasure"},
               {[&] { return ze_kest_Utility_PerformanceMeasure_StartMeasure(nullptr, &st, "fir"); },
                "StartMeasure", "pstFilter"},
               {[] { return StopSection(nullptr); }, "StopMeasure", "pstPerformanceMeasure"}};
  for (const auto &c : cases) {
    EXPECT_EQ(ZE_KEST_MISSING_ARGUMENT, c.call());
    EXPECT_EQ(c.argument + " is NULL.\n", capture.Reports().back().text);
    EXPECT_EQ(prefix + c.function, capture.Reports().back().function);
  }
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_PerformanceMeasure_StartMeasure(filter, &st, nullptr));
  EXPECT_TRUE(capture.Has("<PRINT>", "[pipe:filter][(null)]Start"));
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_PerfEvent_Close(&st.stPerfEvent));
}
