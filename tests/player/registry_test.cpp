// SPDX-License-Identifier: Apache-2.0
// A playing player seen through the registry's commands, and changed by them.
#include <cmath>

#include <unistd.h>

#include "tests/player/player_test.h"

namespace kest::test {
namespace {

using PlayerRegistry = RunningPlayerTest;

// The thread of a process that bears the name, as the lists print it.
std::string ThreadNamed(pid_t pid, const std::string &name) {
  for (const auto &task : std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/task")) {
    if (ReadFile(task.path() / "comm") == name + "\n")
      return "tid:" + task.path().filename().string() + " t:" + name;
  }
  return "no thread " + name;
}

TEST_F(PlayerRegistry, TheListShowsTheRunningThreadsTheirConnectionsAndThePorts) {
  WriteAudio(Path("in.wav"), Noise(6, kWav24, 5001));
  Start({Path("in.wav"), Path("in.wav"), "--loop"});
  const std::string list = Ask("kest_debug_list=print");
  for (const std::string &line :
       {"idx:0 ===== p:SpeakerOutput ================= " + ThreadNamed(player_->Pid(), "SpeakerOutput"),
        std::string("idx:3 RUN SpeakerOutput SpeakerOutput tid:"),
        std::string("idx:5 RUN Decoder_13 Lpcm tid:"),
        "idx:9 RUN Decoder_14 Volume " + ThreadNamed(player_->Pid(), "Decoder_14"),
        std::string("idx:7 Decoder_14\n -> (0)SpeakerOutput\n")})
    EXPECT_THAT(list, HasSubstr("\n" + line));
  // A ten-channel group of 32-bit samples.
  EXPECT_THAT(list,
              ContainsRegex("Decoder_13 Volume in 0 [0-9]+/1024\\(0 40960 0\\) [0-9]+/192 0/0 \\(o\\)\n"));
  EXPECT_THAT(list, ContainsRegex("SpeakerOutput Mixer in 1 [0-9]+/1024\\(0 40960 0\\)"));
  EXPECT_THAT(list, Not(HasSubstr("Mixer in 2")));
  End();
}

TEST_F(PlayerRegistry, APipelineThatHasEndedIsGone) {
  WriteAudio(Path("short.wav"), Noise(2, kWav16, 1000));
  WriteAudio(Path("long.wav"), Noise(2, kWav16, 1500000));
  Start({Path("short.wav"), Path("long.wav")});
  const std::string list = Ask("kest_debug_list=print");
  EXPECT_THAT(list, AllOf(Not(HasSubstr("Decoder_13")), HasSubstr("Decoder_14\n -> (0)SpeakerOutput\n")));
  EXPECT_THAT(list, ContainsRegex("SpeakerOutput Mixer in 0 0/1024[^\n]*\\(x\\)\n"));
  EXPECT_THAT(list, ContainsRegex("SpeakerOutput Mixer in 1 [^\n]*\\(o\\)\n"));
  End();
}

TEST_F(PlayerRegistry, TheStatusShowsTheFiltersValuesAndTheirParameters) {
  WriteAudio(Path("in.wav"), Noise(2, kWav16, 5001));
  Start({Path("in.wav"), "--loop", "--gain-db", "-3", "--delay-ms", "20"});
  player_->Signal(SIGSTOP);
  usleep(50000);  // ten cycles
  player_->Signal(SIGCONT);
  ASSERT_TRUE(PlayOn(*player_, kPlentyOfBytes));
  constexpr uint64_t kBlockBytes = 1024;
  const uint64_t blocksBefore = OutputSize() / kBlockBytes;
  const std::string status = Ask("kest_debug_list=status");
  const uint64_t blocksAfter = OutputSize() / kBlockBytes;

  EXPECT_THAT(status, HasSubstr("p:SpeakerOutput f:Delay pcm delay:20, raw delay:0\n"));
  EXPECT_THAT(status, HasSubstr("p:Decoder_13 f:Volume gain:-3, mute:0\n"));
  EXPECT_THAT(status, ContainsRegex("p:SpeakerOutput f:Mixer in\\[0\\] underrun:[0-9]+ \n"));
  EXPECT_THAT(status, ContainsRegex("p:SpeakerOutput f:SpeakerOutput in\\[0\\] underrun:[1-9][0-9]* \n"));
  EXPECT_THAT(status, HasSubstr("Decoder_13\n -> (0)SpeakerOutput\n"));
  EXPECT_THAT(status, HasSubstr("[Cap] dd:0, ddp:0(atmos:0), dts:0, aac:0, mat(truhd):0, dtshd:0\n"));
  for (const char *value :
       {"Vol : 0x60, 0x460 (", "drcMode : 0 (", "dmxMode : 1 (", "tb11 : 0 (", "rfSignalType : 3 ("})
    EXPECT_THAT(status, HasSubstr(value));
  EXPECT_THAT(status, Not(HasSubstr("Error")));

  unsigned int blocksDecoded = 0;
  const size_t count = status.find("p:Decoder_13 f:Lpcm [Decoder Info] \n FrmCnt : Ok=");
  ASSERT_NE(std::string::npos, count) << status;
  ASSERT_EQ(1, std::sscanf(status.c_str() + count, "%*[^=]=%x,Err=00000", &blocksDecoded));
  // Four blocks of the output are the delay's silence; the ports and the link hold up to forty.
  EXPECT_GT(blocksDecoded + 4, blocksBefore);
  EXPECT_LT(blocksDecoded, blocksAfter + 44);

  const std::string list = Ask("kest_debug_list=parameter");
  for (const char *name : {"OkFrmCnt", "RfSignalType", "Gain", "Mute", "DelayTime", "RawDelayTime"})
    EXPECT_THAT(list, ContainsRegex("\n'" + std::string(name) + "', '[^']+', '4'\n"));
  End();
}

TEST_F(PlayerRegistry, ASetGainAndATextCommandAreHeardFromThenOn) {
  const AudioData input = WriteNoise(Path("in.wav"), 2, kWav16, 5001);
  Start({Path("in.wav"), "--loop"});
  const std::pair<const char *, const char *> changes[] = {
      {"kest_debug_set_parameter=Decoder_13,Volume,Gain,-6,4", "gain:-6, mute:0\n"},
      {"kest_debug_send_cmd_by_text=Decoder_13,Volume,mute=on", "gain:-6, mute:1\n"}};
  for (const auto &[pszCommand, pszStatus] : changes) {
    Ask(pszCommand);
    EXPECT_TRUE(PlayOn(*player_, kPlentyOfBytes));
    EXPECT_THAT(Ask("kest_debug_list=status"), HasSubstr(pszStatus));
  }
  End();

  const Samples output = ReadAudio(out_).samples;
  size_t i = 0;
  for (const double gain : {1.0, std::pow(10.0, -6 / 20.0), 0.0}) {
    const size_t first = i;
    const double step = gain == 1.0 ? 0.5 : 1 << 16;
    while (i < output.size() && std::abs(input.samples[i % input.samples.size()] * gain - output[i]) <= step)
      ++i;
    EXPECT_GT(i, first + 1000) << gain;
  }
  EXPECT_EQ(output.size(), i);
}

TEST_F(PlayerRegistry, CommandsReachOneFilterAndRefusalsAreReported) {
  constexpr const char *kRefused = "SetParameter failed(0x8)!";
  Start({kRecording, "--loop"});
  Ask("kest_log_level=err");
  EXPECT_TRUE(PlayOn(*player_, 20000));
  EXPECT_THAT(ReadFile(kLogFile), Not(HasSubstr("pszDup=\n"))) << "nobody typed an empty line";
  const std::string state = Ask("kest_debug_send_cmd=1,state");
  EXPECT_THAT(state, ContainsRegex("\nSpeakerOutput Mixer in 0: [0-9]+/1024 frames, [0-9]+/192 bytes of"));
  EXPECT_THAT(state, ContainsRegex("\nSpeakerOutput Mixer out 0: [0-9]+/1024 frames"));
  EXPECT_THAT(state, AllOf(Not(HasSubstr("Delay")), Not(HasSubstr(kRefused))));
  EXPECT_THAT(
      Ask("kest_debug_send_cmd=6,get"),
      EndsWith("\nDecoder_13 Volume Gain = 0 dB (-144 to 53)\nDecoder_13 Volume Mute = 0 (0 to 1)\n"));
  EXPECT_THAT(Ask("kest_debug_send_cmd=5,state"),
              AllOf(ContainsRegex("\nDecoder_13 Lpcm out 0: [0-9]+/1024 frames"),
                    ContainsRegex("\nDecoder_13 Lpcm OkFrmCnt = [1-9][0-9]* \\(read only\\)\n")));

  EXPECT_THAT(Ask("kest_debug_send_cmd=0,state"), HasSubstr(kRefused)) << "a pipeline takes no commands";
  EXPECT_THAT(Ask("kest_debug_send_cmd_by_text=Decoder_13,Volume,louder"), HasSubstr(kRefused));
  EXPECT_THAT(Ask("kest_debug_set_parameter=Decoder_13,Volume,Gain,-6,2"),
              HasSubstr("Fail to set parameter from filter:'Volume'"));
  EXPECT_THAT(Ask("kest_debug_list=status"), HasSubstr("gain:0, mute:0\n"));
  End();
}

}  // namespace
}  // namespace kest::test
