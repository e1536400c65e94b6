// SPDX-License-Identifier: Apache-2.0
// A playing player seen through the registry's commands, and changed by them.
#include <cmath>
#include <csignal>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "tests/player/audio_data.h"
#include "tests/player/console.h"
#include "tests/player/player_process.h"
#include "tests/player/player_test.h"

namespace kest::test {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

constexpr int kWav16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
constexpr int kWav24 = SF_FORMAT_WAV | SF_FORMAT_PCM_24;
// More than the header: the pipelines run.
constexpr uint64_t kSomeBytes = 1000;
// Far more than what the pipelines hold of 16-bit stereo.
constexpr uint64_t kPlentyOfBytes = 100000;

class PlayerRegistry : public PlayerTest {
 protected:
  // Ends the player as its user does.
  static void End(PlayerProcess &player) {
    player.Signal(SIGINT);
    const PlayerResult result = player.Wait();
    EXPECT_EQ(0, result.exitCode) << result.err;
    EXPECT_EQ("", result.err);
  }
};

// A player that loops over noise.
class PlayerChanges : public PlayerRegistry {
 protected:
  PlayerChanges() { WriteAudio(Path("in.wav"), input_); }

  [[nodiscard]] std::vector<std::string> Arguments() const { return {Path("in.wav"), "-o", out_, "--loop"}; }
  [[nodiscard]] int32_t InputAt(size_t i) const { return input_.samples[i % input_.samples.size()]; }
  // How many samples the output begins with that are the input's.
  [[nodiscard]] size_t CountUnchanged(const std::vector<int32_t> &output) const {
    size_t i = 0;
    while (i < output.size() && output[i] == InputAt(i))
      ++i;
    return i;
  }

 private:
  const AudioData input_ = Noise(2, kWav16, 5001);
};

// The thread of a process that bears the name, as the lists print it.
std::string ThreadNamed(pid_t pid, const std::string &name) {
  for (const auto &task : std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/task")) {
    std::string threadName;
    std::getline(std::ifstream(task.path() / "comm"), threadName);
    if (threadName == name) return "tid:" + task.path().filename().string() + " t:" + name;
  }
  return "no thread " + name;
}

TEST_F(PlayerRegistry, TheListShowsTheRunningThreadsTheirConnectionsAndThePorts) {
  WriteAudio(Path("in.wav"), Noise(6, kWav24, 5001));
  PlayerProcess player({Path("in.wav"), Path("in.wav"), "-o", out_, "--loop"});
  ASSERT_TRUE(PlayOn(player, kPlentyOfBytes)) << player.Wait().err;
  const std::string list = Ask("kest_debug_list=print");

  const std::string speaker = ThreadNamed(player.Pid(), "SpeakerOutput");
  const std::string first = ThreadNamed(player.Pid(), "Decoder_13");
  const std::string second = ThreadNamed(player.Pid(), "Decoder_14");
  const std::string lines[] = {"idx:0 ===== p:SpeakerOutput ================= " + speaker,
                               "idx:1 RUN SpeakerOutput Mixer " + speaker,
                               "idx:2 RUN SpeakerOutput Delay " + speaker,
                               "idx:3 RUN SpeakerOutput SpeakerOutput " + speaker,
                               "idx:4 ===== p:Decoder_13 ================= " + first,
                               "idx:5 RUN Decoder_13 Lpcm " + first,
                               "idx:6 RUN Decoder_13 Volume " + first,
                               "idx:9 RUN Decoder_14 Volume " + second,
                               "idx:4 Decoder_13\n -> (0)SpeakerOutput\n",
                               "idx:7 Decoder_14\n -> (0)SpeakerOutput\n"};
  for (const std::string &line : lines) {
    EXPECT_THAT(list, HasSubstr("\n" + line));
  }
  // A ten-channel group of 32-bit samples.
  EXPECT_THAT(list,
              ContainsRegex("Decoder_13 Volume in 0 [0-9]+/1024\\(0 40960 0\\) [0-9]+/192 0/0 \\(o\\)\n"));
  EXPECT_THAT(list, ContainsRegex("SpeakerOutput Mixer in 1 [0-9]+/1024\\(0 40960 0\\)"));
  EXPECT_THAT(list, Not(HasSubstr("Mixer in 2")));
  End(player);
}

TEST_F(PlayerRegistry, APipelineThatHasEndedIsGone) {
  WriteAudio(Path("short.wav"), Noise(2, kWav16, 1000));
  WriteAudio(Path("long.wav"), Noise(2, kWav16, 1500000));
  PlayerProcess player({Path("short.wav"), Path("long.wav"), "-o", out_});
  ASSERT_TRUE(PlayOn(player, kPlentyOfBytes)) << player.Wait().err;
  const std::string list = Ask("kest_debug_list=print");
  EXPECT_THAT(list, AllOf(Not(HasSubstr("Decoder_13")), HasSubstr("Decoder_14\n -> (0)SpeakerOutput\n")));
  EXPECT_THAT(list, ContainsRegex("SpeakerOutput Mixer in 0 0/1024[^\n]*\\(x\\)\n"));
  EXPECT_THAT(list, ContainsRegex("SpeakerOutput Mixer in 1 [^\n]*\\(o\\)\n"));
  End(player);
}

TEST_F(PlayerRegistry, TheStatusShowsTheFiltersValues) {
  WriteAudio(Path("in.wav"), Noise(2, kWav16, 5001));
  PlayerProcess player({Path("in.wav"), "-o", out_, "--loop", "--gain-db", "-3", "--delay-ms", "20"});
  ASSERT_TRUE(PlayOn(player, kPlentyOfBytes)) << player.Wait().err;
  constexpr uint64_t kBlockBytes = 1024;
  const uint64_t blocksBefore = OutputSize() / kBlockBytes;
  const std::string status = Ask("kest_debug_list=status");
  const uint64_t blocksAfter = OutputSize() / kBlockBytes;

  EXPECT_THAT(status, HasSubstr("p:SpeakerOutput f:Delay pcm delay:20, raw delay:0\n"));
  EXPECT_THAT(status, HasSubstr("p:Decoder_13 f:Volume gain:-3, mute:0\n"));
  EXPECT_THAT(status, ContainsRegex("p:SpeakerOutput f:Mixer in\\[0\\] underrun:[0-9]+ \n"));
  EXPECT_THAT(status, ContainsRegex("p:SpeakerOutput f:SpeakerOutput in\\[0\\] underrun:[0-9]+ \n"));
  EXPECT_THAT(status, HasSubstr("Decoder_13\n -> (0)SpeakerOutput\n"));
  EXPECT_THAT(status, Not(HasSubstr("Error")));

  unsigned int blocksDecoded = 0;
  const size_t count = status.find("p:Decoder_13 f:Lpcm [Decoder Info] \n FrmCnt : Ok=");
  ASSERT_NE(std::string::npos, count) << status;
  ASSERT_EQ(1, std::sscanf(status.c_str() + count, "%*[^=]=%x,Err=00000", &blocksDecoded));
  // Four blocks of the output are the delay's silence; the ports and the link hold up to forty.
  EXPECT_GT(blocksDecoded + 4, blocksBefore);
  EXPECT_LT(blocksDecoded, blocksAfter + 44);
  End(player);
}

TEST_F(PlayerRegistry, TheSupportedParametersAreThoseOfTheFilters) {
  PlayerProcess player({kRecording, "-o", out_, "--loop"});
  ASSERT_TRUE(PlayOn(player, kSomeBytes)) << player.Wait().err;
  const std::string list = Ask("kest_debug_list=parameter");
  for (const char *name : {"OkFrmCnt", "RfSignalType", "Gain", "Mute", "DelayTime", "RawDelayTime"}) {
    EXPECT_THAT(list, ContainsRegex("\n'" + std::string(name) + "', '[^']+', '4'\n"));
  }
  End(player);
}

TEST_F(PlayerChanges, ASetGainIsHeardFromThenOn) {
  PlayerProcess player(Arguments());
  ASSERT_TRUE(PlayOn(player, kPlentyOfBytes)) << player.Wait().err;
  EXPECT_THAT(Ask("kest_debug_set_parameter=Decoder_13,Volume,Gain,-6,4"),
              HasSubstr("Decoder_13:Volume SetParameter Gain -6 4\n"));
  ASSERT_TRUE(PlayOn(player, kPlentyOfBytes)) << player.Wait().err;
  EXPECT_THAT(Ask("kest_debug_list=status"), HasSubstr("gain:-6, mute:0\n"));
  End(player);

  const std::vector<int32_t> output = ReadAudio(out_).samples;
  size_t i = CountUnchanged(output);
  EXPECT_GT(i, 1000u);
  ASSERT_GT(output.size(), i + 10000);
  const double gain = std::pow(10.0, -6 / 20.0);
  for (; i < output.size(); ++i) {
    ASSERT_NEAR(InputAt(i) * gain, output[i], 1 << 16) << i;
  }
}

TEST_F(PlayerChanges, ATextCommandMutesAndUnmutes) {
  PlayerProcess player(Arguments());
  ASSERT_TRUE(PlayOn(player, kSomeBytes)) << player.Wait().err;
  Ask("kest_debug_send_cmd_by_text=Decoder_13,Volume,mute=on");
  ASSERT_TRUE(PlayOn(player, kPlentyOfBytes)) << player.Wait().err;
  EXPECT_THAT(Ask("kest_debug_list=status"), HasSubstr("gain:0, mute:1\n"));
  Ask("kest_debug_send_cmd_by_text=Decoder_13,Volume,mute=off");
  ASSERT_TRUE(PlayOn(player, kPlentyOfBytes)) << player.Wait().err;
  End(player);

  const std::vector<int32_t> output = ReadAudio(out_).samples;
  const size_t muted = CountUnchanged(output);
  size_t i = muted;
  while (i < output.size() && output[i] == 0)
    ++i;
  EXPECT_GT(i, muted + 10000);
  ASSERT_GT(output.size(), i + 10000);
  for (; i < output.size(); ++i) {
    ASSERT_EQ(InputAt(i), output[i]) << i;
  }
}

TEST_F(PlayerRegistry, CommandsReachOneFilterAndRefusalsAreReported) {
  constexpr const char *kRefused = "SetParameter failed(0x8)!";
  PlayerProcess player({kRecording, "-o", out_, "--loop"});
  ASSERT_TRUE(PlayOn(player, kSomeBytes)) << player.Wait().err;
  Ask("kest_log_level=err");
  const std::string state = Ask("kest_debug_send_cmd=1,state");
  EXPECT_THAT(state, ContainsRegex("\nSpeakerOutput Mixer in 0: [0-9]+/1024 frames, [0-9]+/192 bytes of"));
  EXPECT_THAT(state, ContainsRegex("\nSpeakerOutput Mixer out 0: [0-9]+/1024 frames"));
  EXPECT_THAT(state, AllOf(Not(HasSubstr("Delay")), Not(HasSubstr(kRefused))));

  EXPECT_THAT(Ask("kest_debug_send_cmd=0,state"), HasSubstr(kRefused)) << "a pipeline takes no commands";
  EXPECT_THAT(Ask("kest_debug_send_cmd_by_text=Decoder_13,Volume,louder"), HasSubstr(kRefused));
  EXPECT_THAT(Ask("kest_debug_set_parameter=Decoder_13,Volume,Gain,-6,2"),
              HasSubstr("Fail to set parameter from filter:'Volume'"));
  EXPECT_THAT(Ask("kest_debug_list=status"), HasSubstr("gain:0, mute:0\n"));
  End(player);
}

TEST_F(PlayerRegistry, APresetCommandReachesTheFiltersOfALaterPlayer) {
  PlayerProcess earlier({kRecording, "-o", out_, "--loop"});
  ASSERT_TRUE(PlayOn(earlier, kSomeBytes)) << earlier.Wait().err;
  EXPECT_THAT(Ask("kest_debug_preset_cmd=all,mute=on"), HasSubstr("kest_debug_preset_cmd=all\n"));
  earlier.Signal(SIGKILL);
  EXPECT_EQ(128 + SIGKILL, earlier.Wait().exitCode);

  const PlayerResult result = PlayFast({kRecording, "-o", out_});
  EXPECT_EQ(0, result.exitCode) << result.err;
  EXPECT_EQ(std::vector<int32_t>(68545, 0), ReadAudio(out_).samples) << "silent from the first frame on";
}

TEST_F(PlayerRegistry, MayBeAskedAllTheTime) {
  PlayerProcess player({kRecording, kRecording, "-o", out_, "--loop"});
  ASSERT_TRUE(PlayOn(player, kSomeBytes)) << player.Wait().err;
  for (int i = 0; i < 25; ++i) {
    EXPECT_THAT(Ask("kest_debug_list=print"), HasSubstr("Mixer in 1 "));
    EXPECT_THAT(Ask("kest_debug_list=status"), HasSubstr("gain:"));
    Ask("kest_debug_set_parameter=Decoder_14,Volume,Gain," + std::to_string(-i) + ",4");
    Ask("kest_debug_set_parameter=SpeakerOutput,Delay,DelayTime," + std::to_string(i % 2) + ",4");
    Ask("kest_debug_send_cmd=6,state");
  }
  End(player);
}

}  // namespace
}  // namespace kest::test
