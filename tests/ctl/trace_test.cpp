// SPDX-License-Identifier: Apache-2.0
// Traces of a playing player, read back as strictly as a viewer reads them.
#include <csignal>
#include <thread>

#include "tests/ctl/ctl_test.h"
#include "tests/ctl/trace_checker.h"

namespace kest::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

const std::string kTurn = "[f:A,t1:0,t2:10,td:10]\n";
const std::string kCycleEnd = "[ct:1000,stop:1030][p:P,t:30]\n\n";

class Trace : public CtlTest {
 protected:
  const std::string file_ = Path("trace.json");

  [[nodiscard]] json Written() const { return json::parse(ReadFile(file_)); }
  // The document of a conversion of this text.
  json Converted(const std::string &text) {
    WriteFile(Path("P.txt"), text);
    return CtlJson("trace --convert " + Path("P.txt") + " -o " + file_);
  }
};

json EventsOf(const json &document, const std::string &phase, const std::string &name) {
  json events = json::array();
  for (const json &event : document["traceEvents"]) {
    if (event["ph"] == phase && event["name"] == name) events.push_back(event);
  }
  return events;
}

TEST_F(Trace, HasPipelinesAsThreadsFiltersAsSlicesLevelsAsCountersAndArrowsBetween) {
  StartPlayer();
  const json result = CtlJson("trace Dec Speaker --seconds 1 --levels 50 -o " + file_);
  ASSERT_EQ(0, result["exit"]) << result;
  EXPECT_GE(5, result["data"]["dropped"]);  // of the cycles in which it ended
  EXPECT_EQ("Decoder_13", result["data"]["pipelines"][0]["name"]);
  const json trace = Written();
  EXPECT_EQ("", TraceComplaint(trace));
  for (const char *slice : {"Decoder_13", "Lpcm", "Volume", "Mixer", "Delay"})
    EXPECT_LE(10u, EventsOf(trace, "X", slice).size()) << slice;
  EXPECT_LE(1u, EventsOf(trace, "C", "Decoder_13/Volume out0 level").size());
  EXPECT_LE(1u, EventsOf(trace, "f", "feeds").size());  // a pipeline may run many cycles in a row
  const json volume = EventsOf(trace, "X", "Volume")[0];
  const json decoder = EventsOf(trace, "X", "Decoder_13")[0];
  EXPECT_EQ(volume["tid"], decoder["tid"]);
  EXPECT_THAT(Ctl("send kest_debug_filter_io=print_watch_list").out,
              testing::AllOf(HasSubstr("bIoDebug=0"), testing::Not(HasSubstr("idx:"))));
}

TEST_F(Trace, RefusesWhatCannotBeToldApartOrIsTracedAlready) {
  StartPlayer();
  EXPECT_EQ(6, Ctl("trace Nothing -o " + file_).exitCode);
  EXPECT_EQ(6, Ctl("trace Dec/Volume -o " + file_).exitCode);
  EXPECT_EQ(3, Ctl("trace Dec -o " + Path("no/such/directory")).exitCode);
  Ctl("send kest_debug_filter_io=Decoder_13");
  EXPECT_THAT(Ctl("trace Dec -o " + file_).err, HasSubstr("kestctl send kest_debug_filter_io=release"));
  EXPECT_THAT(Ctl("send kest_debug_filter_io=print_watch_list").out, HasSubstr("idx:0"));
  EXPECT_EQ("", ReadFile(file_));
}

TEST_F(Trace, KeepsWhatWasRecordedWhenItIsInterruptedOrTheProcessEnds) {
  PlayerProcess &player = StartPlayer();
  const std::string words = "trace Dec --seconds 60 -o " + file_;
  EXPECT_EQ(130, Ctl(words, "timeout --preserve-status --signal=INT 1").exitCode);
  EXPECT_EQ("", TraceComplaint(Written()));
  EXPECT_FALSE(EventsOf(Written(), "X", "Volume").empty());
  EXPECT_THAT(Ctl("send kest_debug_filter_io=print_watch_list").out, HasSubstr("bIoDebug=0"));
  CtlResult result;
  const std::string trace = KEST_DEBUG_DIR "Decoder_13.txt";
  std::filesystem::remove(trace);
  std::thread tracing([&] { result = Ctl(words); });
  EXPECT_TRUE(WaitFor([&] { return !ReadFile(trace).empty(); }));
  player.Signal(SIGTERM);
  tracing.join();
  EXPECT_EQ(3, result.exitCode) << result.err;
  EXPECT_EQ("", TraceComplaint(Written()));
}

TEST_F(Trace, ConvertsFilesThatWereCutAnywhere) {
  StartPlayer();
  ASSERT_EQ(0, Ctl("trace Dec --seconds 0.2 -o " + file_).exitCode);
  const std::string whole = ReadFile(KEST_DEBUG_DIR "Decoder_13.txt").substr(0, 400);
  for (size_t length = 150; length < whole.size(); length += 17) {
    const json result = Converted(whole.substr(length - 150, length));
    ASSERT_EQ(0, result["exit"]) << result;
    EXPECT_EQ("", TraceComplaint(Written()));
  }
  const std::string log = KEST_DEBUG_DIR "KestLog.txt";
  EXPECT_EQ(0, Ctl("trace --convert " KEST_DEBUG_DIR "Decoder_13.txt " + log + " -o " + file_).exitCode);
  EXPECT_FALSE(EventsOf(Written(), "C", "SpeakerOutput/Mixer in0 level").empty());
}

TEST_F(Trace, RepairsStartsOfOtherPipelinesAndDropsWhatMakesNoSense) {
  const struct {
    std::string text;
    int cycles, repaired, dropped;
  } kCases[] = {
      {kTurn + "[f:B,t1:5,t2:20,td:15]\n" + kCycleEnd, 1, 1, 0},
      {kTurn + "[f:B,t1:25,t2:20,td:0]\n" + kCycleEnd, 1, 1, 0},
      {kTurn + "[f:B,t1:10,t2:40,td:30]\n" + kCycleEnd, 1, 0, 1},
      {kTurn + kCycleEnd + kTurn, 1, 0, 1},
      {kTurn + kCycleEnd + kTurn + "[ct:1010,stop:1040][p:P,t:30]\n", 1, 0, 2},
      {kTurn + "[ct:1000,stop:900][p:P,t:0]\n" + kTurn + kCycleEnd, 1, 0, 2},
      {"[f:,t1:3\",t1:0,t2:2147483647,td:1]\nnonsense\n" + kCycleEnd, 1, 0, 2},
  };
  for (const auto &expected : kCases) {
    const json data = Converted(expected.text)["data"];
    EXPECT_EQ(expected.cycles, data["cycles"]) << expected.text;
    EXPECT_EQ(expected.repaired, data["repaired"]) << expected.text;
    EXPECT_EQ(expected.dropped, data["dropped"]) << expected.text;
    EXPECT_EQ("", TraceComplaint(Written())) << expected.text;
  }
  EXPECT_EQ(7, Converted(kCycleEnd + "[ct:2000,stop:2030][p:Pother,t:30]\n")["exit"]);
  EXPECT_EQ(7, Converted("nothing of it\n")["exit"]);
}

TEST_F(Trace, IsCheckedByAReaderThatFindsWhatIsWrong) {
  Converted(kTurn + "[f:B,t1:10,t2:20,td:10]\n" + kCycleEnd);
  const json good = Written();
  ASSERT_EQ("", TraceComplaint(good));
  const size_t last = good["traceEvents"].size() - 1;
  const auto complaintAfter = [&](const char *key, const json &value) {
    json broken = good;
    broken["traceEvents"][last][key] = value;
    return TraceComplaint(broken);
  };
  EXPECT_NE("", complaintAfter("dur", 30));
  EXPECT_NE("", complaintAfter("dur", nullptr));
  EXPECT_NE("", complaintAfter("ts", 1));
  EXPECT_NE("", complaintAfter("tid", 77));
  EXPECT_NE("", complaintAfter("ph", "B"));
  json counter = good["traceEvents"][last];
  counter["ph"] = "C";
  counter["args"] = {{"samples", "256"}};
  json broken = good;
  broken["traceEvents"].push_back(counter);
  EXPECT_NE("", TraceComplaint(broken));
}

}  // namespace
}  // namespace kest::test
