// SPDX-License-Identifier: Apache-2.0
#include "debug/requests/requests.h"
#include "tests/support/failing_allocator.h"
#include "tests/support/fake_counters.h"
#include "tests/support/ports.h"

namespace kest::test {

using Measure = ZE_KEST_PerformanceMeasure_s;

namespace {

void Select(const std::string &target) {
  _ZE_KEST_Debug_Cmd_SetPerfEventTarget(("kest_perf_event_target=" + target).c_str());
}

struct Form {
  uint32_t (*pfnStart)(Measure *);
  uint32_t (*pfnStop)(Measure *);
  const char *pszTarget;
  const char *pszStartLabel;
  const char *pszCyclesLabel;
};

const Form kForms[] = {
    {[](Measure *pst) { return ze_kest_Utility_PerformanceMeasure_StartPipelineMeasure("main", pst); },
     [](Measure *pst) { return ze_kest_Utility_PerformanceMeasure_StopPipelineMeasure("main", pst); },
     "pipeline,main", "[PERF_EVENT][main]", "[main]"},
    {[](Measure *pst) { return ze_kest_Utility_PerformanceMeasure_StartFilterMeasure("main", "eq", pst); },
     [](Measure *pst) { return ze_kest_Utility_PerformanceMeasure_StopFilterMeasure("main", "eq", pst); },
     "filter,main:eq", "[PERF_EVENT][main:eq]", "[main:eq]"},
    {[](Measure *pst) { return ze_kest_Utility_PerformanceMeasure_StartMeasure(Filter(), pst, "fir"); },
     [](Measure *pst) { return ze_kest_Utility_PerformanceMeasure_StopMeasure(Filter(), pst, "fir"); },
     "none", "[pipe:filter][fir]", "[pipe:filter][fir]"}};
const Form &kPipeline = kForms[0];
const Form &kFilter = kForms[1];
const Form &kSection = kForms[2];

// What a call that is not for the target must not touch.
std::vector<uint64_t> Fields(const Measure &st) {
  return {st.u64Count,   st.u64FirstStartTime,        st.u64StartTime,     st.u64StopTime,
          st.u64ExeTime, st.stPerfEvent.au64Total[0], st.stPerfEvent.bInit};
}

class PerformanceMeasure : public testing::Test {
 protected:
  ~PerformanceMeasure() override { Select("none"); }

  // The PRINT lines since the last look.
  Texts Lines() {
    Texts lines = capture.Texts("<PRINT>");
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

  ReportCapture capture;
  FakeCounters fake;
  const std::ptrdiff_t before = OpenDescriptors();
  Measure st = {};
};

}  // namespace

TEST_F(PerformanceMeasure, EveryFiftiethStopPrintsTheAveragesSinceTheFirstStart) {
  fake.counts = {200000000, 1010, 12346123456};
  for (const Form &form : kForms) {
    SCOPED_TRACE(form.pszCyclesLabel);
    Select(form.pszTarget);
    st = {};
    for (uint64_t i = 0; i < 49; ++i)
      Cycle(form, 5000007 + i * 1000);
    EXPECT_EQ(Texts{std::string(form.pszStartLabel) + "Start to record Perf Event(timestamp=5000000 us)\n"},
              Lines());
    Cycle(form, 6000000);
    EXPECT_THAT(capture.Texts("<ERR>"), IsEmpty());
    EXPECT_EQ(Texts{std::string("[PERF_EVENT][50]") + form.pszCyclesLabel +
                    "[MIPS=10000.00][MCPS=0.05][CPU%=61730.61%](HwInstr:200000000/10000000000,"
                    "HwCpuCycles:1010/50500,SwTaskClock:12346123456/617306172800,"
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
    EXPECT_EQ(ZE_KEST_OK, kSection.pfnStart(&st));
    fake.u64NowUs = 100;
    EXPECT_EQ(ZE_KEST_OK, kSection.pfnStop(&st));
    EXPECT_TRUE(capture.Has("<PRINT>", "[MIPS=0.00][MCPS=0.00][CPU%=0.00%]"));
    EXPECT_TRUE(capture.Has("<PRINT>", "exe_time:0 us"));
    capture.Clear();
  }
}

TEST_F(PerformanceMeasure, OnlyTheTargetIsMeasuredAndTheOthersTellHowTheyAreSelected) {
  const std::string pipelineLine = "[PERF_EVENT][echo kest_perf_event_target=pipeline,main >D]\n";
  const std::string filterLine = "[PERF_EVENT][echo kest_perf_event_target=filter,main:eq >D]\n";
  // events: opened by both forms together
  // lines: of their stops
  const std::tuple<std::string, size_t, Texts> cases[] = {{"pipeline,main", 3, {}},
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
  for (const auto &[target, events, lines] : cases) {
    Select("none");
    Select(target);
    Measure stPipeline = {};
    Measure stFilter = {};
    fake.events.clear();
    EXPECT_EQ(ZE_KEST_OK, kPipeline.pfnStart(&stPipeline));
    EXPECT_EQ(ZE_KEST_OK, kFilter.pfnStart(&stFilter));
    Lines();
    EXPECT_EQ(ZE_KEST_OK, kPipeline.pfnStop(&stPipeline));
    EXPECT_EQ(ZE_KEST_OK, kFilter.pfnStop(&stFilter));
    EXPECT_EQ(lines, Lines()) << target;
    EXPECT_EQ(events, fake.events.size()) << target;
    EXPECT_EQ(events / 3, stPipeline.u64Count + stFilter.u64Count) << target;
  }
}

TEST_F(PerformanceMeasure, AnotherTargetKeepsARecordAndNoTargetClearsItOnceUsed) {
  for (const Form &form : {kPipeline, kFilter}) {
    SCOPED_TRACE(form.pszCyclesLabel);
    const auto used = [&] {
      Select(form.pszTarget);
      Cycle(form, 1000);
      Lines();
    };
    used();
    const auto usedFields = Fields(st);
    Select("filter,a:b");
    EXPECT_EQ(ZE_KEST_OK, form.pfnStart(&st));
    EXPECT_EQ(ZE_KEST_OK, form.pfnStop(&st));
    EXPECT_EQ(usedFields, Fields(st));

    Select("none");
    EXPECT_EQ(ZE_KEST_OK, form.pfnStart(&st));
    EXPECT_EQ(Fields({}), Fields(st));
    EXPECT_EQ(Texts{std::string(form.pszStartLabel) + "Reset Perf Event Records\n"}, Lines());
    EXPECT_EQ(ZE_KEST_OK, form.pfnStart(&st));
    EXPECT_EQ(ZE_KEST_OK, form.pfnStop(&st));
    EXPECT_TRUE(capture.Reports().empty());

    // The target goes within a cycle: whichever call sees it first closes the group.
    for (const auto pfnNext : {form.pfnStart, form.pfnStop}) {
      used();
      EXPECT_EQ(ZE_KEST_OK, form.pfnStart(&st));
      Select("none");
      EXPECT_EQ(ZE_KEST_OK, pfnNext(&st));
      EXPECT_EQ(Fields({}), Fields(st));
      EXPECT_EQ(before, OpenDescriptors());
    }
    EXPECT_TRUE(capture.Texts("<ERR>").empty());
  }
}

TEST_F(PerformanceMeasure, AFailureOfTheCountersEndsTheCall) {
  for (const Form &form : kForms) {
    SCOPED_TRACE(form.pszCyclesLabel);
    Select(form.pszTarget);
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
    fake.u64NowUs = 20;
    EXPECT_EQ(ZE_KEST_OK, form.pfnStart(&st));
    {
      const FailingAllocator memory(2);  // the group's is the first, the text's the second
      EXPECT_EQ(ZE_KEST_OUT_OF_MEMORY, form.pfnStop(&st));
    }
    EXPECT_EQ(9u, st.u64FirstStartTime);
    EXPECT_EQ("[PERF_EVENT]MALLOC Failed\n", capture.Texts("<ERR>").back());
    EXPECT_EQ(0u, st.u64Count);
    EXPECT_EQ(before, OpenDescriptors());
  }
}

TEST_F(PerformanceMeasure, AMissingArgumentIsReportedUnderTheCalledFunction) {
  const auto expect = [this](const std::string &function, const std::string &argument, uint32_t u32Result) {
    EXPECT_EQ(ZE_KEST_MISSING_ARGUMENT, u32Result);
    EXPECT_EQ(argument + " is NULL.\n", capture.Reports().back().text);
    EXPECT_EQ("ze_kest_Utility_PerformanceMeasure_" + function, capture.Reports().back().function);
  };
  expect("StartPipelineMeasure", "pszPipelineName",
         ze_kest_Utility_PerformanceMeasure_StartPipelineMeasure(nullptr, &st));
  expect("StopPipelineMeasure", "pstPerformanceMeasure", kPipeline.pfnStop(nullptr));
  expect("StartFilterMeasure", "pszPipelineName",
         ze_kest_Utility_PerformanceMeasure_StartFilterMeasure(nullptr, "eq", &st));
  expect("StopFilterMeasure", "pszFilterName",
         ze_kest_Utility_PerformanceMeasure_StopFilterMeasure("main", nullptr, &st));
  expect("StartFilterMeasure", "pstPerformanceMeasure", kFilter.pfnStart(nullptr));
  expect("StartMeasure", "pstFilter", ze_kest_Utility_PerformanceMeasure_StartMeasure(nullptr, &st, "fir"));
  expect("StopMeasure", "pstPerformanceMeasure", kSection.pfnStop(nullptr));
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_PerformanceMeasure_StartMeasure(Filter(), &st, nullptr));
  EXPECT_TRUE(capture.Has("<PRINT>", "[pipe:filter][(null)]Start"));
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_PerfEvent_Close(&st.stPerfEvent));
}

}  // namespace kest::test
