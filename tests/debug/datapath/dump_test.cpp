// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/dump.h"

#include <filesystem>
#include <map>

#include "debug/datapath/dump_selections.h"
#include "tests/support/failing_allocator.h"
#include "tests/support/ports.h"

namespace kest::test {
namespace {

using Files = std::map<std::string, std::string>;

constexpr uint32_t kRing = 150;
constexpr const char *kSuffixes[] = {"_dmx.pcm", "_mc.pcm", "_rawmc.pcm"};

Files DumpedFiles() {
  Files files;
  for (const auto &entry : std::filesystem::directory_iterator(KEST_DEBUG_DIR)) {
    const std::string name = entry.path().filename();
    if (name.rfind("Dump", 0) == 0) files[name] = ReadFile(entry.path());
  }
  return files;
}

std::string Of(const FilterSelection &selection) {
  return std::string(IsOn(selection.eSwitch) ? "on " : "off ") + std::to_string(selection.u32DumpIndex) +
         " " + selection.szPipelineName + ":" + selection.szFilterName;
}

class Dump : public testing::Test {
 protected:
  void SetUp() override {
    EmptyDebugDirectory();
    ResetDumps();
  }
  void TearDown() override { ResetDumps(); }
};

// Where the cycle's data lies in the ring.
struct Place {
  uint32_t sztReadOffset, sztLevel, sztSize;
};

constexpr uint32_t kNothing = 0;  // is dumped

struct Cycle {
  DumpKind eKind;
  uint32_t u32Bits;
  uint32_t u32Width;  // bytes of a dumped sample
  Place place;
};

// Ports 0 to 3, of which only the last is connected.
Port &PortOf(Filter &filter, const Cycle &cycle, uint32_t u32Slot) {
  Port &port = cycle.eKind == kInputDump ? filter.In(u32Slot) : filter.Out(u32Slot);
  ZE_KEST_PcmBuffer_s &pcm = port.Pcm(cycle.u32Bits == 0 ? 16 : cycle.u32Bits, kRing, {2, 10, 10});
  pcm.stPcmInfo.u32BitWidth = cycle.u32Bits;
  pcm.sztPcmReadOffset = cycle.place.sztReadOffset;
  pcm.sztPcmLevel = cycle.place.sztLevel;
  (cycle.eKind == kInputDump ? pcm.sztPcmReadSize : pcm.sztPcmWriteSize) = cycle.place.sztSize;
  port.st.bConnected = u32Slot == 3;
  return port;
}

Files ExpectedOf(Port &port, const Cycle &cycle, const std::string &slot) {
  Files files;
  const bool bInput = cycle.eKind == kInputDump;
  for (uint32_t g = 0; cycle.u32Width != 0 && g < ZE_KEST_PCM_GROUPS; ++g) {
    const auto u32Stored = static_cast<uint32_t>(port.groups[g].Content().size() / (kRing * cycle.u32Width));
    const uint32_t u32Planes = std::min(sztPcmGroupChNumber[g], u32Stored);
    std::string &frames =
        files[(bInput ? "DumpInpipefilter" : "DumpOutpipefilter") + slot + "_0" + kSuffixes[g]];
    frames.resize(size_t{u32Planes} * cycle.u32Width * cycle.place.sztSize);
    ze_kest_Utility_ConvertNonInterleaveToInterleave(frames.data(), &port.st.stPcm, g, u32Planes,
                                                     bInput ? 0 : cycle.place.sztLevel, cycle.place.sztSize,
                                                     cycle.u32Width);
  }
  return files;
}

TEST_F(Dump, PcmOfEveryServedPortIsWrittenInterleaved) {
  const Cycle aCycles[] = {
      {kInputDump, 16, 2, {0, 10, 1}},
      {kInputDump, 24, 3, {140, 150, 64}},
      {kInputDump, 32, 4, {149, 100, 65}},
      {kInputDump, 20, 2, {100, 100, 90}},
      {kInputDump, 31, 3, {100, 100, 150}},
      {kInputDump, 40, 2, {3, 100, 70}},
      {kInputDump, 8, 2, {3, 100, 20}},
      {kOutputDump, 16, 2, {0, 10, 1}},
      {kOutputDump, 24, 2, {140, 20, 70}},
      {kOutputDump, 32, 4, {140, 5, 130}},
      {kOutputDump, 32, 4, {149, 150, 150}},
      {kOutputDump, 12, 2, {9, 20, 30}},
      {kInputDump, 0, 2, {3, 100, 20}},
      {kInputDump, 32, kNothing, {0, 0, 0}},
      {kInputDump, 32, kNothing, {kRing, 0, 10}},
      {kInputDump, 32, kNothing, {UINT32_MAX, 0, 10}},
      {kInputDump, 32, kNothing, {0, 0, kRing + 1}},
      {kOutputDump, 32, kNothing, {0, UINT32_MAX, UINT32_MAX}},
  };
  for (const Cycle &cycle : aCycles) {
    SCOPED_TRACE(std::to_string(cycle.eKind) + ": " + std::to_string(cycle.u32Bits) + " bits");
    SetUp();
    Filter filter;
    Files expected;
    size_t sztServed = 0;
    for (uint32_t u32Slot = 0; u32Slot < 4; ++u32Slot) {
      Port &port = PortOf(filter, cycle, u32Slot);
      if (u32Slot == 2 || (u32Slot == 1 && cycle.eKind == kOutputDump)) continue;
      ++sztServed;
      expected.merge(ExpectedOf(port, cycle, std::to_string(u32Slot)));
    }
    const bool bOddWidth = cycle.u32Bits != 0 && cycle.u32Width != 0 && cycle.u32Width != cycle.u32Bits / 8;
    const std::string wrong = "filter wrong bit " + std::to_string(cycle.u32Bits) + "\n";
    const ReportCapture capture;
    SwitchOn(cycle.eKind == kInputDump ? kDumpInput : kDumpOutput);
    EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_Dump(filter, cycle.eKind));
    EXPECT_EQ(Texts(bOddWidth ? sztServed : 0, wrong), capture.Texts("<PRINT>"));
    EXPECT_TRUE(expected == DumpedFiles());
  }
}

TEST_F(Dump, RawDataAndMetadataAreFollowedAcrossTheEndOfTheirRing) {
  const struct {
    Place place;
    bool bIn, bOut;  // whether it is dumped
  } aCases[] = {{{0, 0, 50}, true, true},   {{45, 3, 12}, true, true},  {{45, 20, 12}, true, true},
                {{10, 40, 10}, true, true}, {{0, 0, 51}, false, false}, {{0, 0, 0}, false, false},
                {{50, 0, 5}, false, false}, {{49, 51, 5}, true, false}};
  const ReportCapture capture;
  for (const auto &c : aCases) {
    SetUp();
    SwitchOn(kDumpInput);
    SwitchOn(kDumpOutput);
    Filter filter;
    Files expected;
    for (const auto &[pRing, suffix, u32Slot] : {std::make_tuple(&ZE_KEST_Port_s::stRaw, "_0.raw", 0u),
                                                 std::make_tuple(&ZE_KEST_Port_s::stMeta, "_0.meta", 1u)}) {
      for (Port *pPort : {&filter.In(u32Slot), &filter.Out(u32Slot)}) {
        const bool bInput = pPort == &filter.In(u32Slot);
        ZE_KEST_DataBuffer_s &ring = pPort->Ring(pRing, 50);
        ring.sztReadOffset = c.place.sztReadOffset;
        ring.sztLevel = c.place.sztLevel;
        (bInput ? ring.sztReadSize : ring.sztWriteSize) = c.place.sztSize;
        if (!(bInput ? c.bIn : c.bOut)) continue;
        expected[(bInput ? "DumpInpipefilter" : "DumpOutpipefilter") + std::to_string(u32Slot) + suffix] =
            RingText(ring.pu8Buf, 50, c.place.sztReadOffset + (bInput ? 0 : c.place.sztLevel),
                     c.place.sztSize);
      }
    }
    EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_Dump(filter, kInputDump));
    EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_Dump(filter, kOutputDump));
    EXPECT_EQ(Texts{}, capture.Texts("<ERR>"));
    EXPECT_EQ(expected, DumpedFiles())
        << c.place.sztReadOffset << " " << c.place.sztLevel << " " << c.place.sztSize;
  }
}

TEST_F(Dump, APortForWhichThereIsNoMemoryIsSkippedWhole) {
  SwitchOn(kDumpInput);
  Filter filter;
  for (uint32_t u32Slot = 0; u32Slot < 2; ++u32Slot) {
    filter.In(u32Slot).Pcm(16, kRing, {2, 0, 0}).sztPcmReadSize = 1;
    filter.In(u32Slot).Ring(&ZE_KEST_Port_s::stRaw, 50).sztReadSize = 8;
  }
  const FailingAllocator memory(4);  // behind the first port's samples and its two files
  EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_Dump(filter, kInputDump));
  const Files files = DumpedFiles();
  EXPECT_EQ(2u, files.size());
  EXPECT_EQ(1u, files.count("DumpInpipefilter0_0_dmx.pcm") & files.count("DumpInpipefilter0_0.raw"));
}

TEST_F(Dump, NamesThatLeadOutOfTheDirectoryStayInIt) {
  SwitchOn(kDumpInput);
  Filter filter;
  strcpy(filter.st->szName, "/../../S/PDIF");
  filter.In(0).Ring(&ZE_KEST_Port_s::stRaw, 4).sztReadSize = 4;
  EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_Dump(filter, kInputDump));
  filter.Out(0).Ring(&ZE_KEST_Port_s::stRaw, 4).sztReadSize = 4;  // no input, whatever it says
  EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_Dump(filter, kInputDump));
  EXPECT_EQ(1u, DumpedFiles().size());
  EXPECT_EQ(1u, DumpedFiles().count("DumpInpipe_.._.._S_PDIF0_0.raw"));
}

TEST_F(Dump, ARunKeepsItsFilesUntilItIsSwitchedOff) {
  const DebugLayer layer;
  Filter filter;
  filter.In(0).Ring(&ZE_KEST_Port_s::stRaw, 4).sztReadSize = 4;
  const std::string data = RingText(filter.In(0).ring.Data(), 4, 0, 4);
  for (const char *pszLine :
       {"kest_dump_io=on", "kest_dump_input=on", "kest_dump_input=off", "kest_dump_input_filter=pi,fil",
        "kest_dump_input=on", "kest_dump_input_filter=pipe2,filter", "kest_dump_input_filter=pipe,b"}) {
    Command(pszLine);
    EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_Dump(filter, kInputDump));
  }
  EXPECT_EQ((Files{{"DumpInpipefilter0_0.raw", data + data}, {"DumpInpipefilter0_1.raw", data}}),
            DumpedFiles());
}

TEST_F(Dump, CommandsSelectAndSwitchTheSides) {
  // pszReports: each behind the handler's name
  const std::tuple<const char *, uint32_t, const char *, const char *> aLines[] = {
      {"kest_dump_input_filter=a,b", 0, " dump input pipeline:a filter:b\n", "off 0 a:b, off 0 :"},
      {"kest_dump_output_filter=c,d", 0, " dump output pipeline:c filter:d\n", "off 0 a:b, off 0 c:d"},
      {"kest_dump_input=on", 0, " dump input enable 0 a:b\n", "on 0 a:b, off 0 c:d"},
      {"kest_dump_output=on", 0, " dump output enable 0 c:d\n", "on 0 a:b, on 0 c:d"},
      {"kest_dump_input=maybe", 0, "", "on 0 a:b, on 0 c:d"},
      {"kest_dump_io", 0, "", "on 0 a:b, on 0 c:d"},
      {"kest_dump_input=off", 0, " dump input disable a:b\n", "off 1 a:b, on 0 c:d"},
      {"kest_dump_output=off", 0, " dump output disable c:d\n", "off 1 a:b, off 1 c:d"},
      {"kest_dump_filter_io=,f", 0, " dump input pipeline: filter:f\n dump output pipeline: filter:f\n",
       "off 1 :f, off 1 :f"},
      {"kest_dump_io=on", 0, " dump input enable 1 :f\n dump output enable 1 :f\n", "on 1 :f, on 1 :f"},
      {"kest_dump_io=off", 0, " dump input disable :f\n dump output disable :f\n", "off 2 :f, off 2 :f"},
      {"kest_dump_filter_io=a", 8, " pszSub1 is NULL, format error\n", "off 2 :f, off 2 :f"},
      {"kest_dump_input_filter", 8, " pszSub1 is NULL, format error\n", "off 2 :f, off 2 :f"},
      {"kest_dump=on", 8, "", "off 2 :f, off 2 :f"},
  };
  for (const auto &[pszLine, u32Result, pszReports, pszSides] : aLines) {
    const ReportCapture capture(ZE_KEST_LEVEL_ERR);
    EXPECT_EQ(u32Result, _ZE_KEST_Debug_Cmd_DumpIo(pszLine)) << pszLine;
    std::string reports;
    for (const Report &report : capture.Reports())
      reports += report.text.substr(strlen("_ZE_KEST_Debug_Cmd_DumpIo"));
    EXPECT_EQ(pszReports, reports) << pszLine;
    EXPECT_EQ(pszSides, Of(_stKestDumpInput) + ", " + Of(_stKestDumpOutput)) << pszLine;
  }
}

}  // namespace
}  // namespace kest::test
