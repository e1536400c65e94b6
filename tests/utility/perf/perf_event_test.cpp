// SPDX-License-Identifier: Apache-2.0
#include "tests/support/failing_allocator.h"
#include "tests/support/fake_counters.h"
#include "tests/support/library_test.h"

namespace kest::test {

using Counts = std::vector<uint64_t>;

namespace {

class PerfEvent : public testing::Test {
 protected:
  uint32_t Open() { return ze_kest_Utility_PerfEvent_Open(&st); }
  uint32_t Enable() { return ze_kest_Utility_PerfEvent_Enable(&st); }
  uint32_t Read() { return ze_kest_Utility_PerfEvent_GetCurrentEventCount(&st); }
  uint32_t Close() { return ze_kest_Utility_PerfEvent_Close(&st); }
  [[nodiscard]] Counts LastCounts() const { return {std::begin(st.au64Count), std::end(st.au64Count)}; }
  [[nodiscard]] Counts Totals() const { return {std::begin(st.au64Total), std::end(st.au64Total)}; }

  const ReportCapture capture;
  const std::ptrdiff_t before = OpenDescriptors();
  ZE_KEST_PerfEvent_s st = {};
};

}  // namespace

TEST_F(PerfEvent, AGroupIsOpenedStoppedForTheCallingThreadOutsideTheKernel) {
  FakeCounters fake;
  ASSERT_EQ(ZE_KEST_OK, Open());
  ASSERT_EQ(3u, fake.events.size());
  constexpr std::array<std::array<uint64_t, 2>, 3> kTypeAndConfig = {{{0, 1}, {0, 0}, {1, 1}}};
  for (size_t e = 0; e < fake.events.size(); ++e) {
    Counts attributes(15, 0);
    attributes[0] = uint64_t{120} << 32 | kTypeAndConfig[e][0];
    attributes[1] = kTypeAndConfig[e][1];
    attributes[4] = 12;
    attributes[5] = 97;
    const FakeCounters::Event &event = fake.events[e];
    EXPECT_EQ(attributes, event.attributes);
    EXPECT_THAT(event.arguments, ElementsAre(0, -1, e == 0 ? -1 : fake.events[0].s32Fd, 0));
    EXPECT_EQ(event.s32Fd, st.as32Fd[e]);
    EXPECT_EQ(event.u64Id, st.au64Id[e]);
  }
  EXPECT_EQ(ZE_KEST_OK, Close());
  EXPECT_EQ(before, OpenDescriptors());
}

TEST_F(PerfEvent, AGroupCountsFromEnableToReadAndAddsUpWhenItIsOpenedAnew) {
  FakeCounters fake;
  ASSERT_EQ(ZE_KEST_OK, Open());
  EXPECT_EQ(ZE_KEST_OK, Enable());
  fake.counts = {10, 20, 30};
  EXPECT_EQ(ZE_KEST_OK, Read());
  EXPECT_EQ((Texts{"reset", "enable", "disable"}), fake.controls);
  ASSERT_EQ(ZE_KEST_OK, Open());  // closes the first group
  EXPECT_EQ(before + 3, OpenDescriptors());
  fake.counts = {1, uint64_t{1} << 40, 3};
  EXPECT_EQ(ZE_KEST_OK, Read());
  EXPECT_EQ((Counts{1, uint64_t{1} << 40, 3}), LastCounts());
  EXPECT_EQ((Counts{11, (uint64_t{1} << 40) + 20, 33}), Totals());
  EXPECT_EQ(ZE_KEST_OK, Close());
  EXPECT_EQ(before, OpenDescriptors());
  EXPECT_TRUE(capture.Reports().empty());
}

TEST_F(PerfEvent, ARecordThatIsNotOpenIsRefusedAndItsDescriptorsAreLeftAlone) {
  EXPECT_EQ(ZE_KEST_NOT_INITIALISED, Enable());
  EXPECT_EQ(ZE_KEST_NOT_INITIALISED, Read());
  EXPECT_EQ(ZE_KEST_NOT_INITIALISED, Close());
  EXPECT_EQ(before, OpenDescriptors());
  EXPECT_EQ((Texts{"Perf Event not initizlized\n", "Perf Event are not initialized\n",
                   "Perf Event not initizlized\n"}),
            capture.Texts("<ERR>"));
  for (const auto pfn : {ze_kest_Utility_PerfEvent_Open, ze_kest_Utility_PerfEvent_Enable,
                         ze_kest_Utility_PerfEvent_GetCurrentEventCount, ze_kest_Utility_PerfEvent_Close}) {
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, pfn(nullptr));
    EXPECT_EQ("pstPerfEvent is NULL.\n", capture.Texts("<ERR>").back());
  }
}

TEST_F(PerfEvent, ARefusedEventLeavesAClosedRecordAndTheEventsBeforeItOpen) {
  const Texts texts = {"Error opening leader 1 for  HwInstr\n", "Error opening leader 0 for HwCpuCycles\n",
                       "Error opening leader 1 for SwTaskClock\n"};
  for (int e = 0; e < ZE_KEST_PERF_EVENTS; ++e) {
    FakeCounters fake;
    ASSERT_EQ(ZE_KEST_OK, Open());
    fake.s32OpensLeft = e;
    const std::ptrdiff_t others = OpenDescriptors() - ZE_KEST_PERF_EVENTS;
    EXPECT_EQ(ZE_KEST_NOT_INITIALISED, Open());
    EXPECT_EQ(texts[static_cast<size_t>(e)], capture.Texts("<ERR>").back());
    EXPECT_EQ(0u, st.bInit);
    EXPECT_EQ(ZE_KEST_NOT_INITIALISED, Close());
    EXPECT_EQ(others + e, OpenDescriptors());
    for (int i = e; i < ZE_KEST_PERF_EVENTS; ++i)
      EXPECT_EQ(-1, st.as32Fd[i]);
  }
}

TEST_F(PerfEvent, AGroupThatCannotBeReadIsReportedAndStaysOpen) {
  FakeCounters fake;
  fake.bReadable = false;
  ASSERT_EQ(ZE_KEST_OK, Open());
  EXPECT_EQ(ZE_KEST_FAILED, Read());
  {
    const FailingAllocator memory(1);
    EXPECT_EQ(ZE_KEST_FAILED, Read());
  }
  EXPECT_EQ((Texts{"Perf Event read failed.\n", "Error! MALLOC error! \n", "malloc failed.\n"}),
            capture.Texts("<ERR>"));
  EXPECT_EQ((Texts{"disable", "disable"}), fake.controls);
  EXPECT_EQ((Counts{0, 0, 0}), Totals());
  EXPECT_EQ(ZE_KEST_OK, Close());
}

TEST_F(PerfEvent, OnlyEntriesThatWereReadAndHaveAnEventsIdAreTaken) {
  FakeCounters fake;
  ASSERT_EQ(ZE_KEST_OK, Open());
  const auto readOf = [&](const Counts &group, size_t sztBytes) {
    fake.group = group;
    fake.sztGroupBytes = sztBytes;
    EXPECT_EQ(ZE_KEST_OK, Read());
    return LastCounts();
  };
  EXPECT_EQ((Counts{0, 0, 0}), readOf({3, 1, 100, 2, 101, 3, 102}, 0));
  EXPECT_EQ((Counts{0, 0, 0}), readOf({3, 1, 100, 2, 101, 3, 102}, 7));
  EXPECT_EQ((Counts{1, 0, 0}), readOf({3, 1, 100, 2, 101, 3, 102}, 39));        // cut within the second
  EXPECT_EQ((Counts{1, 9, 8}), readOf({3, 8, 102, 7, 999, 9, 101}, SIZE_MAX));  // in any order
  EXPECT_EQ((Counts{5, 9, 8}), readOf({1, 5, 100, 6, 101}, SIZE_MAX));
  Counts large(600, 100);  // more than is read at once, claiming more than there is
  large[0] = UINT64_MAX;
  EXPECT_EQ((Counts{100, 9, 8}), readOf(large, SIZE_MAX));
  EXPECT_EQ((Counts{1 + 5 + 255 * 100, 9, 8}), Totals());
  EXPECT_EQ(ZE_KEST_OK, Close());
}

TEST_F(PerfEvent, TheKernelOfThisMachineCountsOrRefusesTheLeader) {
  const auto tryIt = [this] {
    if (const uint32_t u32Result = Open(); u32Result != ZE_KEST_OK) {
      EXPECT_EQ(ZE_KEST_NOT_INITIALISED, u32Result);
      EXPECT_EQ("Error opening leader 1 for  HwInstr\n", capture.Texts("<ERR>").back());
      return;
    }
    EXPECT_EQ(ZE_KEST_OK, Enable());
    EXPECT_EQ(ZE_KEST_OK, Read());
    EXPECT_GT(st.au64Count[0], 0u);
    EXPECT_GT(st.au64Count[2], 0u);
    EXPECT_EQ(ZE_KEST_OK, Close());
  };
  tryIt();
  st = {};
  FakeCounters fake;
  fake.bTaskClock = true;
  tryIt();
  EXPECT_EQ(before, OpenDescriptors());
}

}  // namespace kest::test
