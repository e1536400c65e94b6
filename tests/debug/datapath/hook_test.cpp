// SPDX-License-Identifier: Apache-2.0
#include <optional>

#include "debug/datapath/dump.h"
#include "debug/datapath/dump_selections.h"
#include "debug/datapath/io_trace.h"
#include "debug/datapath/latency_state.h"
#include "debug/datapath/sine_output.h"
#include "debug/log/log_file.h"
#include "tests/support/failing_allocator.h"
#include "tests/support/ports.h"

namespace kest::test {
namespace {

// Turns one switch on for the length of a scope.
class Switched {
 public:
  explicit Switched(const std::string &keyword) : keyword_(keyword) { Set("=on"); }
  ~Switched() { Set("=off"); }

 private:
  void Set(const char *pszValue) { Command(keyword_ + pszValue); }
  std::string keyword_;
};

TEST(Hook, AFilterThatIsMissingOrHasNoPipelineIsRefusedEverywhereThoughNothingIsOn) {
  Filter filter;
  filter.st->pstParentPipeline = nullptr;
  using Entry = int32_t (*)(const ZE_KEST_Filter_s *);
  for (const Entry pfnEntry : {
           Entry{ze_kest_Debug_Filter},
           Entry{[](auto *pst) { return static_cast<int32_t>(_ZE_KEST_Debug_Dump(pst, kOutputDump)); }},
           Entry{[](auto *pst) { return ze_kest_Debug_MeasureLatency(pst, ZE_KEST_LATENCY_START); }},
           Entry{[](auto *pst) { return ze_kest_Debug_MeasureLatency(pst, ZE_KEST_LATENCY_END); }},
       }) {
    const ReportCapture capture;
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, pfnEntry(nullptr));
    EXPECT_EQ(ZE_KEST_FAILED, pfnEntry(filter));
    EXPECT_THAT(capture.Texts("<ERR>"),
                ElementsAre("pstFilter is NULL.\n",
                            "Error (0x00000003)! Pipeline should not be NULL in filter 'filter'!\n"));
  }
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_MeasureLatency(nullptr, 6));
}

// The line of each kind is told by the counters, 1 to 4 for PCM and so on; "x" at its end.
TEST(Hook, PrintsALineOfPortLevelsForEachKindOfData) {
  const DebugLayer layer;
  Filter filter;
  ZE_KEST_Port_s &in = filter.In(0).st;
  in.bConnected = 0;  // slot 0 is shown all the same
  in.stPcm.u64PcmReadCount = 1, in.stPcm.u64PcmXrunCount = 2, in.stPcm.u64PcmPassCount = 3;
  in.stPcm.u64PcmSkipCount = 4, in.stPcm.sztPcmLevel = 5, in.stPcm.sztPcmSpace = 6;
  in.stPcm.sztPcmRingSamples = 7, in.stPcm.sztPcmReadSize = 8, in.stPcm.s64PcmPts = -9;
  filter.In(1).st.bConnected = 0;
  for (uint64_t i = 0; i < 4; ++i)
    in.stMeta.au64Count[i] = 11 + i;
  in.stMeta.sztLevel = 15, in.stMeta.sztSpace = 16, in.stMeta.sztSize = 17, in.stMeta.s64Pts = 18;
  in.stRaw.au64Count[3] = 21, in.stRaw.sztReadSize = 22;
  filter.Out(0);
  ZE_KEST_PcmBuffer_s &out = filter.Out(3).st.stPcm;
  out.u64PcmReadCount = 31, out.u64PcmXrunCount = 32, out.u64PcmPassCount = 33, out.u64PcmSkipCount = 34;
  out.sztPcmLevel = 35, out.sztPcmSpace = 36, out.sztPcmRingSamples = 37, out.sztPcmWriteSize = 38;
  out.s64PcmPts = 39;
  filter.Out(3).st.stRaw.sztWriteSize = 40;

  const Switched lines("kest_print_filter_info");
  const ReportCapture capture(ZE_KEST_LEVEL_PRINT);
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_Filter(filter));
  const std::vector<Report> reports = capture.Reports();
  const std::string names = " [1-9][0-9]* +pipe           :filter          ";
  const std::string none = ":cnt:0         ,0 ,0 ,0  l:0         ,a:0         ,s:0         ,";
  const std::string out0 = " out0" + none + "w:0          pts:0                   \\|";
  struct {
    const char *pszFunction;
    std::string line;
  } const aLines[] = {
      {"_ZE_KEST_Debug_FilterPcmInfo",
       "\\[pcm  level\\]" + names +
           "  in0:cnt:1         ,2 ,3 ,4  l:5         ,a:6         ,s:7         ,r:8          pts:-9"
           "                  \\|" +
           out0 +
           " out3:cnt:31        ,32,33,34 l:35        ,a:36        ,s:37        ,w:38         pts:39"
           "                  \\|\n"},
      {"_ZE_KEST_Debug_FilterMetadataInfo",
       "\\[meta level\\]" + names +
           "  in0:cnt:11        ,12,13,14 l:15        ,a:16        ,s:17        ,r:0          pts:18"
           "                  \\|" +
           out0 + " out3" + none + "w:0          pts:0                   \\|\n"},
      {"_ZE_KEST_Debug_FilterRawInfo",
       "\\[raw  level\\]" + names +
           "  in0:cnt:0         ,0 ,0 ,21 l:0         ,a:0         ,s:0         ,r:22         pts:0"
           "                   \\|" +
           out0 + " out3" + none + "w:40         pts:0                   \\|\n"},
  };
  ASSERT_EQ(3u, reports.size());
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(aLines[i].pszFunction, reports[i].function);
    EXPECT_THAT(reports[i].text, MatchesRegex(aLines[i].line));
  }
}

TEST(Hook, CutsAPortLevelLineAt511Characters) {
  const DebugLayer layer;
  Filter filter;
  for (uint32_t u32Slot = 0; u32Slot < ZE_KEST_MAX_PORTS; ++u32Slot)
    filter.In(u32Slot);
  const Switched lines("kest_print_filter_info");
  const ReportCapture capture;
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_Filter(filter));
  const std::string line = capture.Reports().at(0).text;
  EXPECT_EQ(512u, line.size());
  EXPECT_THAT(line, HasSubstr("|  in3:cnt:"));
}

// What 16-bit samples stand behind each other in the storage of group 0.
std::vector<int16_t> StorageOf(Port &port) {
  const Bytes bytes = port.groups[0].Content();
  std::vector<int16_t> samples(bytes.size() / 2);
  memcpy(samples.data(), bytes.data(), samples.size() * 2);
  return samples;
}

int16_t Sine(size_t sztPosition) {
  return static_cast<int16_t>(_as32KestSine1K48Mono[sztPosition % ZE_KEST_SINE_SAMPLES] / 65536);
}

// The level and the write size count as bytes, and every channel of a frame gets the same sample.
class SineOutput : public testing::Test {
 protected:
  void Cycle(uint32_t sztLevel, uint32_t sztWriteSize, const char *pszLine) {
    pcm.sztPcmLevel = sztLevel;
    pcm.sztPcmWriteSize = sztWriteSize;
    Command(pszLine);
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_Filter(filter));
  }

  const DebugLayer layer;
  Filter filter;
  Port &port = filter.Out(0);
  ZE_KEST_PcmBuffer_s &pcm = port.Pcm(16, 120, {2, 0, 0});
  std::vector<int16_t> expected = StorageOf(port);
  const Switched sine{"kest_output_sinewave"};
};

TEST_F(SineOutput, GoesOverTheFirstOutputOfTheSelectedFilter) {
  Cycle(4, 6, "kest_output_sinewave_filter=pipe,other");
  Cycle(4, 6, "kest_output_sinewave_filter=pipeline,");
  EXPECT_EQ(expected, StorageOf(port));

  Cycle(4, 6, "kest_output_sinewave_filter=pi,fil");  // two frames for 6 bytes
  expected[2] = expected[3] = Sine(0);
  expected[4] = expected[5] = Sine(1);
  EXPECT_EQ(expected, StorageOf(port));

  Cycle(0, 47 * 4, "kest_output_sinewave_filter=,");  // goes on, and around the table's end
  for (size_t i = 0; i < 94; ++i)
    expected[i] = Sine(2 + i / 2);
  EXPECT_EQ(expected, StorageOf(port));
  Cycle(0, 4, "kest_output_sinewave=on");  // from the first sample again
  EXPECT_EQ(Sine(0), StorageOf(port)[0]);
}

TEST_F(SineOutput, EndsWhereTheStorageEnds) {
  pcm.stPcmInfo.u32TotalChannels = 0;  // counts as two
  Cycle(474, 8, "kest_output_sinewave_filter=,");
  expected[237] = expected[238] = Sine(0);
  expected[239] = Sine(1);
  EXPECT_EQ(expected, StorageOf(port));

  pcm.asztPcmAllocSize[0] = 240;  // storage for one channel, where the framework says how much there is
  Cycle(238, 8, "kest_output_sinewave=on");
  expected[119] = Sine(0);
  EXPECT_EQ(expected, StorageOf(port));
  for (int i = 0; i < 2; ++i)  // no frame begins behind the storage, nor moves on in the table
    Cycle(238, UINT32_MAX, "kest_output_sinewave_filter=,");
  expected[119] = Sine(2);
  EXPECT_EQ(expected, StorageOf(port));
}

TEST_F(SineOutput, LeavesAPortAloneThatContradictsItself) {
  const auto cycle = [this](uint32_t u32Channels, uint32_t sztLevel, uint32_t sztWriteSize) {
    pcm.stPcmInfo.u32TotalChannels = u32Channels;
    Cycle(sztLevel, sztWriteSize, "kest_output_sinewave_filter=,");
  };
  cycle(0x80000000, 480, 1);
  cycle(2, 480, UINT32_MAX);
  cycle(2, 0x90000000, 4);
  cycle(2, 0, 0);
  pcm.apu8PcmGroupBuf[0] = nullptr;
  cycle(2, 0, 4);
  filter.st->apstOutPort[0] = nullptr;
  cycle(2, 0, 4);
  EXPECT_EQ(expected, StorageOf(port));
}

// The dump holds what the filter wrote, the storage the sine that the dump comes before.
TEST(Hook, GoesThroughItsStepsInOrderUntilOneFails) {
  const DebugLayer layer;
  Filter filter;
  Port &port = filter.Out(0);
  ZE_KEST_PcmBuffer_s &pcm = port.Pcm(16, 16, {2, 0, 0});
  pcm.sztPcmWriteSize = 2;
  const Bytes before = port.groups[0].Content();
  const ReportCapture capture;
  const Switched lines("kest_print_filter_info");
  const Switched dump("kest_dump_output");
  const Switched sine("kest_output_sinewave");
  {
    const FailingAllocator noMemory(1);
    EXPECT_EQ(ZE_KEST_OUT_OF_MEMORY, ze_kest_Debug_Filter(filter));
  }
  EXPECT_TRUE(capture.Has("<ERR>", "_ZE_KEST_Debug_FilterPcmInfo fail to allocate\n"));
  EXPECT_EQ(before, port.groups[0].Content());

  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_Filter(filter));
  const std::string dumped = ReadFile(KEST_DEBUG_DIR "DumpOutpipefilter0_0_dmx.pcm");
  ASSERT_EQ(8u, dumped.size());
  EXPECT_EQ(0, memcmp(&dumped[0], &before[0], 2));
  EXPECT_EQ(0, memcmp(&dumped[2], &before[32], 2));
  EXPECT_NE(before, port.groups[0].Content());
}

TEST(Hook, EveryInstrumentHasASwitchOfItsOwn) {
  const DebugLayer layer;
  for (const auto &[pszKeyword, bOfHook] :
       {std::pair{"kest_print_filter_info=", true}, std::pair{"kest_dump_input=", true},
        std::pair{"kest_dump_output=", true}, std::pair{"kest_output_sinewave=", true},
        std::pair{"kest_latency=", true}, std::pair{"kest_debug_filter_io=re", false}}) {
    const uint32_t u32Before = _stKestSwitches.u32On;
    Command(pszKeyword + std::string(bOfHook ? "on" : "start"));
    const uint32_t u32Own = _stKestSwitches.u32On & ~u32Before;
    EXPECT_EQ(1, __builtin_popcount(u32Own)) << pszKeyword;
    EXPECT_EQ(bOfHook, (u32Own & kHookSwitches) != 0) << pszKeyword;
  }
  ResetIoTrace();
}

TEST(Hook, HasNothingOnAfterANewStart) {
  std::optional<DebugLayer> layer(std::in_place);
  for (const char *pszLine :
       {"kest_dump_filter_io=a,b", "kest_dump_io=off", "kest_latency_config=a,b,c,d", "kest_latency=off",
        "kest_print_filter_info=on", "kest_dump_io=on", "kest_latency=on", "kest_output_sinewave=on",
        "kest_output_sinewave_filter=other,f", "kest_debug_filter_io=pipe,restart", "kest_atrace=on",
        "kest_log_to_print=on"}) {
    Command(pszLine);
  }
  ze_kest_Debug_Io("pipe", nullptr, ZE_KEST_IO_FILTER_START, 0, 7);
  _stKestLatency.au32SilentCycles[7] = _stKestLatency.u32TotalBytes = 1;
  _stKestLatency.u64StartTime = _stKestLatency.u64EndTime = _stKestLatency.u64ProcTime = 1;
  Mark(_stKestLatency.bInserted);
  Mark(_stKestLatency.bFound);
  layer.reset();
  layer.emplace();
  EXPECT_FALSE(IsAnyHookSwitchOn());
  EXPECT_EQ(0u, ze_kest_Debug_Io_Is_Enable());
  Command("kest_debug_filter_io=restart");
  EXPECT_EQ(0u, ze_kest_Debug_Io_Is_Enable());  // nothing is watched
  Command("kest_debug_filter_io=pipe,restart");
  ze_kest_Debug_Io("pipe", "eq", ZE_KEST_IO_FILTER_END, 0, 9);
  EXPECT_EQ("[f:eq,t1:0,t2:9,td:9]\n", ReadFile(KEST_DEBUG_DIR "pipe.txt"));
  for (const FilterSelection *pst : {&_stKestSineSelection, &_stKestDumpInput, &_stKestDumpOutput})
    EXPECT_EQ("0", std::string(pst->szPipelineName) + pst->szFilterName + std::to_string(pst->u32DumpIndex));
  static const LatencyState stNone = {};
  EXPECT_EQ(0, memcmp(&stNone, &_stKestLatency, sizeof(stNone)));
  EXPECT_EQ(0, bKestAtraceEnable);
  EXPECT_FALSE(IsLogToConsole());
}

}  // namespace
}  // namespace kest::test
