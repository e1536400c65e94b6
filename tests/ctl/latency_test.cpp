// SPDX-License-Identifier: Apache-2.0
#include <csignal>
#include <cstring>

#include "ctl/audio/burst.h"
#include "tests/ctl/ctl_test.h"

namespace kest::test {
namespace {

using testing::HasSubstr;

class Latency : public CtlTest {};

TEST_F(Latency, IsExactToTheSampleOn32BitPorts) {
  StartPlayer({"--wide", "--delay-ms", "50"});
  const auto fifty = CtlJson("latency Mixer SpeakerOutput/Delay --repeat 2 --yes")["data"];
  ASSERT_EQ(2u, fifty["runs"].size());
  for (const auto &run : fifty["runs"]) {
    EXPECT_EQ(2400, run["samples"]);
    EXPECT_EQ(true, run["exact"]);
  }
  EXPECT_EQ(50.0, fifty["ms"]["median"]);
  EXPECT_EQ(48000, fifty["rate"]);
  EXPECT_EQ(0, Ctl("set Speaker/Delay DelayTime 7").exitCode);
  EXPECT_EQ(336, CtlJson("latency Mixer Delay --yes")["data"]["runs"][0]["samples"]);
  EXPECT_TRUE(FilesOf("Out").empty());
  EXPECT_TRUE(IsQuiet("Out"));
  EXPECT_EQ("none\n", Ctl("level").out);
}

TEST_F(Latency, SaysWhenNoBurstIsFound) {
  StartPlayer({"--wide"});
  EXPECT_EQ(0, Ctl("cmd Dec/Vol mute=on").exitCode);
  const CtlResult lost = Ctl("latency Dec/Vol Mixer --wait 0.5 --yes");
  EXPECT_EQ(1, lost.exitCode);
  EXPECT_THAT(lost.err, HasSubstr("no burst found in 1 of 1 runs"));
  EXPECT_THAT(lost.err, HasSubstr("not muted?"));
  EXPECT_TRUE(IsQuiet("Out"));
}

TEST_F(Latency, AsksBeforeItSilencesAndSaysWhatItCannotMeasure) {
  StartPlayer();
  ExpectAnswers({{"latency Mixer Delay </dev/null", 2, "this silences what comes into SpeakerOutput/Mixer"},
                 {"latency Lpcm Delay --yes", 6, "Decoder_13/Lpcm has no input"},
                 {"latency Mixer SpeakerOutput/SpeakerOutput --yes", 6, "has no output"},
                 {"latency Mixer Delay --yes --repeat 0", 2, "no number from 1"}});
  EXPECT_TRUE(IsQuiet("Out"));
}

TEST_F(Latency, IsSwitchedOffWhenInterrupted) {
  StartPlayer({"--wide"});
  for (const char *seconds : {"0.01", "0.03", "0.3", "1"}) {
    const CtlResult latency = Ctl("latency Mixer Delay --repeat 100 --yes",
                                  std::string("timeout --preserve-status --signal=INT ") + seconds);
    EXPECT_THAT(latency.exitCode, testing::AnyOf(130, 128 + SIGINT)) << latency.err;
    EXPECT_TRUE(FilesOf("Out").empty()) << seconds;
    EXPECT_TRUE(IsQuiet("Out")) << seconds;
  }
  EXPECT_EQ("none\n", Ctl("level").out);
}

// The process searches a ring of 1024 words; a cycle has 256.
TEST(Burst, IsFoundToTheSampleWhereverItsRingIsSearched) {
  const struct {
    uint64_t start;      // of the searched cycle in the ring, words
    uint64_t hitOffset;  // words of the cycle before the hit, as the process counts them
    uint64_t hit;        // the word that was hit
    size_t before;       // samples of the burst before the hit, which the process has missed
    int64_t exact;
  } kCases[] = {{0, 10, 10, 0, 1009},       // within the ring
                {900, 130, 6, 0, 1128},     // behind its end: the word behind the ring was counted too
                {900, 124, 1024, 0, 1123},  // at that word itself
                {132, 0, 132, 2, 997}};     // two of its samples were quiet, or were not looked at
  for (const auto &expected : kCases) {
    std::vector<int32_t> recorded(2000, 0);
    std::fill(recorded.begin() + 3, recorded.begin() + 400, 77);  // what sounded before the silence
    for (size_t i = 0; i < 40; ++i)
      recorded[1500 - expected.before + i] = 1 << 28;
    ctl::LatencyReport report;
    report.isInserted = true;
    report.cycle = {0x1000 + 4 * expected.start, 0x1000, 0x1000 + 4 * 1024};
    report.hitAddress = 0x1000 + 4 * expected.hit;
    report.hitOffset = 4 * expected.hitOffset;
    report.totalBytes = 4 * (1000 + expected.hitOffset);
    const auto *bytes = reinterpret_cast<const char *>(recorded.data());
    const std::string_view all(bytes, 4 * recorded.size());
    EXPECT_EQ(expected.exact, ctl::ExactSamples(report, {all, all.substr(4 * 1500, 4 * 100)}, true));
    EXPECT_EQ(std::nullopt,
              ctl::ExactSamples(report, {all.substr(4 * 1490), all.substr(4 * 1500, 400)}, true));
  }
}

}  // namespace
}  // namespace kest::test
