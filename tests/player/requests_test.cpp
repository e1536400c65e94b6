// SPDX-License-Identifier: Apache-2.0
// An engineer's requests, typed into the pipe of a running player, and the answers of its filters.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <tuple>

#include "player/requests/data_rate.h"
#include "tests/player/player_test.h"
#include "tests/player/port_access.h"

namespace kest::test {
namespace {

using PlayerRequests = RunningPlayerTest;

constexpr double kTurn = 6.283185307179586;

// A sample of the test tone as 16-bit ports hold it.
int32_t ToneAt(size_t frame, size_t sampleRate) {
  const double angle =
      kTurn * 1000 * static_cast<double>(frame % sampleRate) / static_cast<double>(sampleRate);
  return static_cast<int32_t>(std::lrint(0.5 * std::sin(angle) * 32768)) * 65536;
}

TEST_F(PlayerRequests, TheTestToneTakesThePlaceOfTheInputSampleForSample) {
  AudioData input = Noise(2, kWav16, 5003);
  input.sampleRate = 44100;
  WriteAudio(Path("in.wav"), input);
  Start({Path("in.wav"), "--loop"});
  AskUntil(HasSubstr("\n[SEND_TEST_TONE]SpeakerOutput:Mixer plays 1000 Hz into in0\n"),
           "kest_send_test_tone=SpeakerOutput,Mixer:0");
  EXPECT_TRUE(PlayOn(*player_, 4 * kPlentyOfBytes));
  Ask("kest_send_test_tone=off");
  EXPECT_TRUE(PlayOn(*player_, kPlentyOfBytes));
  AskUntil(HasSubstr("SpeakerOutput:Mixer has no in1\n"), "kest_send_test_tone=SpeakerOutput,Mixer:1");
  End();

  const Samples output = ReadAudio(out_).samples;
  const Samples looped = Looped(input.samples, output.size());
  const auto change = std::mismatch(output.begin(), output.end(), looped.begin()).first;
  const auto start = static_cast<size_t>(change - output.begin()) / 2 * 2;
  size_t end = start;
  while (end < output.size() && output[end] == ToneAt((end - start) / 2, 44100))
    ++end;
  EXPECT_GT(end, start + kPlentyOfBytes);
  EXPECT_TRUE(std::equal(output.begin() + static_cast<ptrdiff_t>(end), output.end(),
                         looped.begin() + static_cast<ptrdiff_t>(end)));
}

TEST_F(PlayerRequests, TheLevelIsMeasuredOverTheCyclesThatWereAskedFor) {
  AudioData input{2, 48000, kWav16, Samples(2 * 4800)};
  for (size_t frame = 0; frame < input.Frames(); ++frame) {
    input.samples[2 * frame] = ToneAt(frame, 48000);
    input.samples[2 * frame + 1] = frame % 2 == 0 ? 1 << 29 : -(1 << 29);
  }
  WriteAudio(Path("in.wav"), input);
  Start({Path("in.wav"), "--loop"});
  AskUntil(HasSubstr("\n[CAL_PCM_LEV]Decoder_13:Volume out0: 100 cycles, 25600 samples\n"
                     "[CAL_PCM_LEV]Decoder_13:Volume out0 ch0: peak -6.02 dB, rms -9.03 dB\n"
                     "[CAL_PCM_LEV]Decoder_13:Volume out0 ch1: peak -12.04 dB, rms -12.04 dB\n"),
           "kest_calpcmlev=Decoder_13,Volume,100");
  Ask("kest_debug_send_cmd_by_text=Decoder_13,Volume,mute=on");
  EXPECT_TRUE(PlayOn(*player_, kPlentyOfBytes));
  AskUntil(HasSubstr("SpeakerOutput in0 ch1: peak -inf dB, rms -inf dB\n"),
           "kest_calpcmlev=SpeakerOutput,SpeakerOutput,7");

  // Without names every filter answers, without cycles none.
  Ask("kest_calpcmlev=off");
  AskUntil(AllOf(HasSubstr(":Lpcm out0: 50 cycles"), HasSubstr(":Volume out0: 50 cycles"),
                 HasSubstr(":Mixer out0: 50 cycles"), HasSubstr(":Delay out0: 50 cycles"),
                 HasSubstr(":SpeakerOutput in0: 50 cycles")),
           "kest_calpcmlev=,,50");
  Ask("kest_calpcmlev=,,0");
  const std::string log = ReadFile(kLogFile);
  EXPECT_TRUE(PlayOn(*player_, kPlentyOfBytes));
  EXPECT_EQ(log, ReadFile(kLogFile));
  End();
}

TEST_F(PlayerRequests, TheDataRateOfBothPortsIsReportedOnceASecond) {
  WriteAudio(Path("in.wav"), Noise(2, kWav16, 5003));
  Start({Path("in.wav"), "--loop"});
  const std::string log =
      AskUntil(ContainsRegex("Volume in0 [^\n]*\n"), "kest_calculate_data_rate=Decoder_13,Volume:0,0");
  const std::string report = log.substr(log.find("Volume in0"));
  unsigned long in = 0, inBytes = 0, inMetadata = 0, out = 0, outBytes = 0, outMetadata = 0;
  ASSERT_EQ(6, std::sscanf(report.c_str(),
                           "Volume in0 %lu samples/s, %lu bytes/s, %lu bytes/s of metadata; "
                           "out0 %lu samples/s, %lu bytes/s, %lu bytes/s of metadata",
                           &in, &inBytes, &inMetadata, &out, &outBytes, &outMetadata))
      << report;
  EXPECT_GT(in, 0u);
  EXPECT_NEAR(4.0 * static_cast<double>(in), static_cast<double>(inBytes), 4);
  EXPECT_NEAR(static_cast<double>(in) / 8, static_cast<double>(inMetadata), 4);
  EXPECT_EQ(std::tie(in, inBytes, inMetadata), std::tie(out, outBytes, outMetadata));
  AskUntil(HasSubstr("Lpcm no in0; no out7\n"), "kest_calculate_data_rate=Decoder_13,Lpcm:0,7");
  End();
}

TEST_F(PlayerRequests, WhoIsAskedForItsStatusReportsItsCycles) {
  WriteAudio(Path("in.wav"), Noise(2, kWav16, 5003));
  Start({Path("in.wav"), "--loop"});
  const std::string cycles = "100 cycles of [0-9]+ us, the longest [0-9]+ us";
  const std::string volume = "\n\\[PROCESS_STATUS\\]Decoder_13:Volume: " + cycles +
                             ", 0 idle; in0 read 25600 samples, 3200 bytes of metadata, 0 xruns so far; "
                             "out0 wrote 25600 samples, 3200 bytes of metadata, 0 xruns so far\n";
  AskUntil(ContainsRegex(volume), "kest_process_status=filter,Decoder_13:Volume");
  AskUntil(AllOf(ContainsRegex("\\]Decoder_13:Lpcm: " + cycles + ", 0 idle; out0 wrote 25600 samples"),
                 ContainsRegex(volume), ContainsRegex("\\]Decoder_13: " + cycles + "\n")),
           "kest_process_status=pipeline,Decoder_13");
  Ask("kest_process_status=none");
  EXPECT_TRUE(PlayOn(*player_, 2 * kPlentyOfBytes));
  EXPECT_THAT(Ask("kest_debug_list=parameter"), Not(HasSubstr("cycles of")));
  End();
}

TEST_F(PlayerRequests, AFilterLogsWhatItsOwnLevelLetsThrough) {
  WriteAudio(Path("in.wav"), Noise(2, kWav16, 5003));
  Start({Path("in.wav"), "--loop"});
  AskUntil(ContainsRegex("<TRACE>[^\n]*Decoder_13 Volume: in0 read 256 of [0-9]+ samples"),
           "kest_filter_debug_level=Vol,trace");
  AskUntil(ContainsRegex("<INFO>[^\n]*Decoder_13 Lpcm: starts [^\n]*in.wav over"),
           "kest_filter_debug_level=,info");
  const std::string set = "Decoder_13 Volume: Gain = -7 dB (-144 to 53)\n";
  EXPECT_THAT(Ask("kest_debug_set_parameter=Decoder_13,Volume,Gain,-7,4"), HasSubstr(set));
  Ask("kest_filter_debug_level=,none");
  EXPECT_THAT(Ask("kest_debug_set_parameter=Decoder_13,Volume,Gain,-7,4"), Not(HasSubstr(set)));
  End();
}

// One second of 100 cycles, measured with a clock that does not wait.
TEST(DataRate, IsWhatFlowedDividedByTheTimeItTook) {
  EmptyDebugDirectory();
  const DebugLayer layer;
  ZE_KEST_Pipeline_s pipeline = {};
  std::strcpy(pipeline.szName, "P");
  ZE_KEST_Filter_s filter = {};
  std::strcpy(filter.szName, "F");
  filter.pstParentPipeline = &pipeline;
  player::PortStorage in(kMono, player::PortCapacity::ForFrames(1024));
  filter.u32InPortCount = 1;
  filter.apstInPort[0] = &in.Record();
  in.Record().stPcm.sztPcmReadSize = 441;
  in.Record().stMeta.sztReadSize = 64;
  Command("kest_calculate_data_rate=P,F:0,0");
  player::DataRate rate;
  player::DataRate::Clock::time_point now{};
  for (int cycle = 0; cycle <= 100; ++cycle, now += std::chrono::milliseconds(10))
    rate.Count(filter, now);
  EXPECT_THAT(ReadFile(kLogFile),
              HasSubstr("\n[CAL_DATA_RATE]P:F in0 44100 samples/s, 176400 bytes/s, 6400 bytes/s of metadata; "
                        "no out0\n"));
}

}  // namespace
}  // namespace kest::test
