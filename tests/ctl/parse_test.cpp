// SPDX-License-Identifier: Apache-2.0
// The parsers on what the library of this process prints.
#include <algorithm>

#include "ze_kest/debug.h"

#include "ctl/channel/channel.h"
#include "ctl/channel/local_host.h"
#include "ctl/commands/names.h"
#include "ctl/parse/lines.h"
#include "ctl/parse/listing.h"
#include "ctl/parse/log_line.h"
#include "ctl/parse/port_line.h"
#include "ctl/parse/status.h"
#include "ctl/render/escape.h"
#include "ctl/render/fit.h"
#include "tests/ctl/ctl_test.h"

namespace kest::test {
namespace {

// A filter with one port of its own, registered for the length of the test.
class TestFilter {
 public:
  TestFilter(ZE_KEST_Pipeline_s &pipeline, const std::string &name) {
    name.copy(filter_.szName, sizeof(filter_.szName) - 1);
    filter_.pstParentPipeline = &pipeline;
    filter_.u32InPortCount = 1;
    filter_.apstInPort[0] = &port_;
    port_.bConnected = 1;
    port_.stPcm.asztPcmAllocSize[0] = 4096;
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_RegisterInfo(pipeline.szName, &filter_, 77, "a thread", nullptr));
  }
  ~TestFilter() { ze_kest_Debug_UnRegisterInfo(filter_.pstParentPipeline->szName, &filter_); }
  // As a cycle does.
  void RunHook() const { EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_Filter(&filter_)); }
  ZE_KEST_Filter_s &Get() { return filter_; }
  TestFilter(const TestFilter &) = delete;
  TestFilter &operator=(const TestFilter &) = delete;

 private:
  ZE_KEST_Filter_s filter_ = {};
  ZE_KEST_Port_s port_ = {};
};

class TestPipeline {
 public:
  explicit TestPipeline(const std::string &name) {
    name.copy(pipeline_.szName, sizeof(pipeline_.szName) - 1);
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_RegisterInfo(pipeline_.szName, nullptr, 77, "a thread", nullptr));
  }
  ~TestPipeline() { ze_kest_Debug_UnRegisterInfo(pipeline_.szName, nullptr); }
  TestPipeline(const TestPipeline &) = delete;
  TestPipeline &operator=(const TestPipeline &) = delete;

  [[nodiscard]] ZE_KEST_Pipeline_s &Get() { return pipeline_; }

 private:
  ZE_KEST_Pipeline_s pipeline_ = {};
};

class Parsers : public PlayerTest {
 protected:
  std::vector<std::string> Print(const std::string &line) { return channel_.Send({line}).lines; }

  DebugLayer layer_;
  ctl::LocalHost host_;
  ctl::Channel channel_{host_, {KEST_DEBUG_DIR, std::chrono::seconds(20), std::nullopt, false}};
};

TEST_F(Parsers, TellNamesApartThatHoldBlanksOrAreLong) {
  const std::string longName(60, 'n');
  for (const std::string &pipelineName :
       {std::string("Dec 13"), longName, std::string("D in 0"), std::string("\033[31mred")}) {
    TestPipeline pipeline(pipelineName);
    const std::string names[] = {"Volume", "Vol ume", "V tid:5 t:x", longName};
    std::vector<std::unique_ptr<TestFilter>> filters;
    for (const std::string &name : names)
      filters.push_back(std::make_unique<TestFilter>(pipeline.Get(), name));
    const ctl::ParsedListing parsed = ctl::ParseListing(Print("kest_debug_list=print"));
    EXPECT_TRUE(parsed.isWhole);
    EXPECT_THAT(parsed.unknown, testing::IsEmpty());
    ASSERT_EQ(1u, parsed.listing.pipelines.size());
    EXPECT_EQ(pipelineName, parsed.listing.pipelines[0].name);
    ASSERT_EQ(std::size(names), parsed.listing.pipelines[0].filters.size());
    for (size_t i = 0; i < std::size(names); ++i) {
      const ctl::Filter &filter = parsed.listing.pipelines[0].filters[i];
      EXPECT_EQ(names[i], filter.name);
      EXPECT_EQ(77, filter.tid);
      EXPECT_EQ(1u, filter.ports.size()) << pipelineName << "/" << filter.name;
    }
  }
}

TEST_F(Parsers, ReadTheStatusOfEveryKindOfFilter) {
  TestPipeline pipeline("Kinds");
  const char *names[] = {"Src",         "Mixer", "Volume", "Delay",    "Sync",  "HeadphoneOutput",
                         "SpdifOutput", "Hdmi",  "Lpcm",   "OtherOne", "Other", "OtherNamedAtLength"};
  std::vector<std::unique_ptr<TestFilter>> filters;
  for (const char *name : names)
    filters.push_back(std::make_unique<TestFilter>(pipeline.Get(), name));
  const ctl::ParsedStatus parsed = ctl::ParseStatus(Print("kest_debug_list=status"));
  EXPECT_TRUE(parsed.isWhole);
  EXPECT_THAT(parsed.unknown, testing::IsEmpty());
  ASSERT_EQ(std::size(names), parsed.report.filters.size());
  for (size_t i = 0; i < std::size(names); ++i) {
    EXPECT_EQ(names[i], parsed.report.filters[i].name);
    EXPECT_EQ(std::string(names[i]).find("Other") == 0, parsed.report.filters[i].values.empty()) << names[i];
  }
}

TEST_F(Parsers, ReadPortLinesWhateverTheNamesAreAndWhereverTheyAreCut) {
  for (const std::string &pipelineName :
       {std::string("Dec:1 3"), std::string(40, 'p'), std::string("in0:cnt:")}) {
    TestPipeline pipeline(pipelineName);
    TestFilter filter(pipeline.Get(), "a :filter");
    std::array<ZE_KEST_Port_s, ZE_KEST_MAX_PORTS> outputs = {};
    for (uint32_t i = 0; i < outputs.size(); ++i) {
      outputs[i].bConnected = 1;
      outputs[i].stPcm.u64PcmXrunCount = i;
      outputs[i].stPcm.sztPcmRingSamples = 1024 + i;
      filter.Get().apstOutPort[i] = &outputs[i];
    }
    filter.Get().u32OutPortCount = outputs.size();
    Print("kest_print_filter_info=on");
    const size_t before = ReadFile(kLogFile).size();
    filter.RunHook();
    Print("kest_print_filter_info=off");
    std::vector<ctl::PortLine> lines;
    for (const std::string &text : ctl::SplitLogLines(ReadFile(kLogFile).substr(before))) {
      if (const auto line = ctl::ParsePortLine(text)) lines.push_back(*line);
    }
    ASSERT_EQ(3u, lines.size()) << pipelineName;
    EXPECT_EQ(ctl::PortLine::Kind::kPcm, lines[0].kind);
    EXPECT_EQ(ctl::PortLine::Kind::kRaw, lines[2].kind);
    EXPECT_EQ(pipelineName, lines[0].pipeline);
    EXPECT_EQ("a :filter", lines[0].filter);
    ASSERT_LE(3u, lines[0].ports.size());
    EXPECT_GT(outputs.size(), lines[0].ports.size());
    EXPECT_TRUE(lines[0].ports[0].isInput);
    EXPECT_EQ(1u, lines[0].ports[2].xruns);
    EXPECT_EQ(1025u, lines[0].ports[2].size);
  }
}

TEST_F(Parsers, ReadTheSameBetweenLinesOfTheAudioThreads) {
  TestPipeline pipeline("Dec");
  const TestFilter filter(pipeline.Get(), "Volume");
  for (const char *command : {"kest_debug_list=print", "kest_debug_list=status"}) {
    const std::vector<std::string> lines = Print(command);
    std::vector<std::string> mixed;
    for (const std::string &line : lines) {
      mixed.push_back(line);
      mixed.emplace_back(
          "[raw  level] 14292358809 Dec            :Volume            in0:cnt:0         ,0 ,0");
    }
    const bool isList = std::string(command) == "kest_debug_list=print";
    EXPECT_TRUE(isList ? ctl::ParseListing(mixed).isWhole : ctl::ParseStatus(mixed).isWhole);
    EXPECT_THAT(isList ? ctl::ParseListing(mixed).unknown : ctl::ParseStatus(mixed).unknown,
                testing::IsEmpty());
  }
}

TEST_F(Parsers, TakeTheRightHalfOfALineIntoWhichAnotherThreadLogged) {
  channel_.Send({"kest_log_level=info"});
  const std::string log = ReadFile(kLogFile);
  const std::string prefixed =
      log.substr(log.find("\033[1;32m"), log.find('\n', log.find("\033[1;32m")) - log.find("\033[1;32m"));
  const auto lines =
      ctl::SplitLogLines("p:Decoder_13           f:Volume         " + prefixed + "\n gain:-3, mute:1\n");
  ASSERT_EQ(3u, lines.size());
  EXPECT_EQ("Test:<INFO>", ctl::ParseLogLine(lines[1]).text);
  const auto filter =
      ctl::ParseStatus({"===============", "[AudioStatusInfo]", lines[0], lines[2]}).report.filters.at(0);
  EXPECT_EQ("Volume", filter.name);
  EXPECT_EQ(-3, filter.values.at(0).second);
}

TEST(Names, AreFoundWhenTheyAreExactOrTheOnlyOnesThatBeginSo) {
  ctl::Listing listing;
  listing.pipelines.resize(2);
  listing.pipelines[0].name = "Decoder_13";
  listing.pipelines[1].name = "Decoder_1";
  EXPECT_EQ("Decoder_1", ctl::FindTarget(listing, "Decoder_1").pipeline->name);
  EXPECT_EQ("Decoder_13", ctl::FindTarget(listing, "Decoder_13").pipeline->name);
  EXPECT_THROW(ctl::FindTarget(listing, "Dec"), ctl::CtlError);
  EXPECT_THROW(ctl::FindTarget(listing, "Mixer"), ctl::CtlError);
}

TEST(Fit, BreaksWideLinesBelowTheirLastColumn) {
  EXPECT_EQ("NAME  REPORTS\nLpcm  some words that are\n      long, and even more of\n      them\n",
            ctl::FitTo(28, "NAME  REPORTS\nLpcm  some words that are long, and even more of them\n"));
  EXPECT_EQ("a line without columns\nis broken too\n",
            ctl::FitTo(22, "a line without columns is broken too\n"));
  EXPECT_EQ("\033[1mas wide as its place\033[0m\n", ctl::FitTo(20, "\033[1mas wide as its place\033[0m\n"));
  const std::string path = "NAME  /a/path/that/has/no/blank/to/break/at\n";
  EXPECT_EQ(path, ctl::FitTo(30, path));
  EXPECT_EQ(path, ctl::FitTo(0, path));
}

TEST(Escape, ShowsControlCharactersAndBrokenUtf8) {
  EXPECT_EQ("a\\x1b[31mb\\x0a\\x7f", ctl::Escape("a\033[31mb\n\x7f"));
  EXPECT_EQ("\\x9b31m\302\240", ctl::Escape("\302\23331m\302\240"));
  EXPECT_EQ("a\033[31mb\\x1b[2J", ctl::EscapeButColours("a\033[31mb\033[2J"));
  EXPECT_EQ("\xc3\xa4\xef\xbf\xbd\xef\xbf\xbd", ctl::ToUtf8("\xc3\xa4\xff\xc3"));
}

}  // namespace
}  // namespace kest::test
