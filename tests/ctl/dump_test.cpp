// SPDX-License-Identifier: Apache-2.0
// WAV files of what filters read and write.
#include <algorithm>
#include <csignal>
#include <thread>

#include "ctl/audio/dump_files.h"
#include "ctl/audio/dump_layout.h"
#include "ctl/channel/local_host.h"
#include "ctl/error.h"
#include "tests/ctl/ctl_test.h"

namespace kest::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class Dump : public CtlTest {
 protected:
  [[nodiscard]] static std::string Options() { return " -o " + Path("dump"); }
};

struct Case {
  int channels;
  int format;
  int dumpedBits;
  const char *group;
};

TEST_F(Dump, GivesWhatThePlayerPlaysBitByBit) {
  constexpr Case kCases[] = {
      {1, kWav16, 16, "dmx"}, {2, kWav24, 32, "dmx"}, {6, kWav32, 32, "mc"}, {10, kWav16, 16, "mc"}};
  for (const Case &expected : kCases) {
    WriteNoise(Path("noise.wav"), expected.channels, expected.format, 30000);
    PlayerProcess &player = StartPlayer({}, "", Path("noise.wav"));
    const auto data = CtlJson("dump SpeakerOutput/SpeakerOutput --in --seconds 0.25 --channels " +
                              std::to_string(expected.channels) + Options())["data"];
    player.Signal(SIGTERM);
    EXPECT_EQ(0, player.Wait().exitCode);
    ASSERT_EQ(2u, data["files"].size()) << data;
    const auto &file = data["files"][0];
    EXPECT_EQ(expected.channels, file["channels"]);
    EXPECT_EQ(expected.dumpedBits, file["bits"]);
    EXPECT_EQ(12000, file["frames"]);
    EXPECT_THAT(file["path"].get<std::string>(), HasSubstr(std::string("in0_") + expected.group + ".wav"));
    const Samples dumped = ReadAudio(file["path"]).samples;
    const Samples played = ReadAudio(Path("out0.wav")).samples;
    EXPECT_EQ(12000u * static_cast<size_t>(expected.channels), dumped.size());
    EXPECT_NE(played.end(), std::search(played.begin(), played.end(), dumped.begin(), dumped.end()));
    EXPECT_EQ("metadata", data["files"][1]["kind"]);
    EXPECT_EQ(data["files"][1]["bytes"],
              std::filesystem::file_size(data["files"][1]["path"].get<std::string>()));
    players_.clear();
  }
}

TEST_F(Dump, TakesBothSidesWithEveryChannelAndLeavesNothingBehind) {
  StartPlayer();
  const auto files = CtlJson("dump Dec/Vol --seconds 0.1 --rate 32000" + Options())["data"]["files"];
  ASSERT_EQ(4u, files.size());
  for (const size_t i : {0u, 1u}) {
    EXPECT_EQ(2, files[i]["channels"]);
    EXPECT_EQ(3200, files[i]["frames"]);
    EXPECT_EQ(32000, ReadAudio(files[i]["path"]).sampleRate);
    EXPECT_EQ(nlohmann::json({2}), files[i]["zero_channels"]);
  }
  EXPECT_THAT(FilesOf("Dump"), IsEmpty());
  EXPECT_TRUE(IsQuiet("Dump"));
}

TEST_F(Dump, SaysWhatItCannotDump) {
  StartPlayer();
  std::filesystem::create_directories(Path("taken/Decoder_13_Volume_in0_dmx.wav"));
  ExpectAnswers(
      {{"dump Dec/Lpcm --in", 6, "has no input port"},
       {"dump Dec/Volume --seconds 0.05 -o taken", 3, "cannot write taken/Decoder_13_Volume_in0_dmx.wav"},
       {"dump Dec/Volum --seconds 0.05 -o ./", 0, ""},
       {"dump Dec/Loud", 6, "it has Lpcm, Volume"},
       {"dump Dec/Vol --seconds soon", 2, "no number from"},
       {"dump Dec/Vol --seconds 86400", 2, "at most 4 GiB"},
       {"dump Dec/Vol -o /dev/null/x", 3, "cannot make"}},
      "cd " + Path("") + " &&");
  EXPECT_THAT(FilesOf("Dump"), IsEmpty());
  EXPECT_TRUE(IsQuiet("Dump"));
}

TEST_F(Dump, IsSwitchedOffWheneverItIsInterrupted) {
  StartPlayer();
  for (const char *seconds : {"0.005", "0.01", "0.02", "0.04", "0.1", "0.3"}) {
    const CtlResult dump = Ctl("dump Mixer --seconds 60" + Options(),
                               std::string("timeout --preserve-status --signal=INT ") + seconds);
    // Before it can notice the signal, it dies of it; nothing is on then.
    EXPECT_THAT(dump.exitCode, testing::AnyOf(130, 128 + SIGINT)) << dump.err;
    EXPECT_TRUE(IsQuiet("Dump")) << seconds;
  }
  EXPECT_LE(256u, ReadAudio(Path("dump/SpeakerOutput_Mixer_in0_dmx.wav")).Frames());
}

TEST_F(Dump, KeepsWhatCameBeforeTheProcessEnded) {
  const PlayerProcess &player = StartPlayer();
  CtlResult dump = {};
  std::thread dumping([&] { dump = Ctl("dump Mixer --seconds 20" + Options()); });
  // The first files come before the answer to the command that begins the dump.
  EXPECT_TRUE(WaitFor([] {
    const std::string log = ReadFile(kLogFile);
    const size_t begun = log.rfind(" filter:Mixer\n");
    return begun != std::string::npos && log.find(".e: set parameter ", begun) != std::string::npos &&
           !FilesOf("Dump").empty();
  }));
  player.Signal(SIGKILL);
  dumping.join();
  EXPECT_EQ(0, dump.exitCode);
  EXPECT_THAT(dump.err, HasSubstr("the process has ended"));
  EXPECT_THAT(FilesOf("Dump"), IsEmpty());
}

TEST_F(Dump, IsSwitchedOffWhenTheProcessIsStoppedMeanwhile) {
  PlayerProcess &player = StartPlayer();
  CtlResult dump = {};
  std::thread dumping([&] { dump = Ctl("--timeout 300 dump Mixer --seconds 0.5" + Options()); });
  EXPECT_TRUE(WaitFor([] { return !FilesOf("Dump").empty(); }));
  player.Signal(SIGSTOP);
  dumping.join();
  player.Signal(SIGCONT);
  EXPECT_TRUE(WaitFor([] { return Ctl("level").exitCode == 0; }));
  EXPECT_TRUE(IsQuiet("Dump"));
}

TEST(DumpLayout, ComesFromTheStorage) {
  const struct {
    uint64_t bytesPerFrame;
    size_t group;
    std::optional<int> bits;
    unsigned channels;  // 0: cannot be told
    unsigned bytesPerSample;
  } kCases[] = {{4, 0, {}, 2, 2},  {6, 0, {}, 2, 3},   {8, 0, {}, 2, 4},   {2, 0, {}, 1, 2},
                {3, 0, {}, 1, 3},  {20, 1, {}, 10, 2}, {30, 1, {}, 10, 3}, {40, 2, {}, 10, 4},
                {32, 1, {}, 8, 4}, {12, 1, {}, 0, 0},  {12, 1, 16, 6, 2},  {24, 1, 24, 8, 3}};
  for (const auto &expected : kCases) {
    ctl::Port port;
    port.pcm.size = 512;
    port.groupBytes[expected.group] = 512 * expected.bytesPerFrame;
    if (expected.channels == 0) {
      EXPECT_THROW(ctl::LayoutOf(port, expected.group, expected.bits), ctl::CtlError);
      continue;
    }
    const auto layout = ctl::LayoutOf(port, expected.group, expected.bits);
    EXPECT_EQ(expected.channels, layout->channels) << expected.bytesPerFrame;
    EXPECT_EQ(expected.bytesPerSample, layout->bytesPerSample);
  }
}

TEST_F(Dump, WritesPacked24BitSamplesOfTheFirstChannels) {
  const AudioData noise = Noise(3, kWav24, 40000);
  std::string packed = "what was there before";
  for (const int32_t sample : noise.samples)
    packed.append(reinterpret_cast<const char *>(&sample) + 1, 3);
  WriteFile(Path("packed"), packed + "x");
  ctl::LocalHost host;
  const auto written =
      ctl::WriteWav(host, {Path("packed"), 21, packed.size() - 21}, {3, 3, 44100}, Path("packed.wav"), 2);
  EXPECT_EQ(40000u, written.frames);
  const AudioData read = ReadAudio(Path("packed.wav"));
  EXPECT_EQ(2, read.channels);
  for (size_t i = 0; i < 40000; ++i)
    ASSERT_EQ(noise.samples[3 * i + 1], read.samples[2 * i + 1]);
}

}  // namespace
}  // namespace kest::test
