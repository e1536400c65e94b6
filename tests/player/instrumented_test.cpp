// SPDX-License-Identifier: Apache-2.0
// What the data path's instruments see of a playback, and that they leave its sound alone.
#include <algorithm>
#include <csignal>
#include <cstring>

#include <unistd.h>

#include "player/config/layout.h"
#include "player/framework/metadata_block.h"
#include "player/session/playback.h"
#include "tests/player/player_test.h"
#include "tests/support/disk.h"

namespace kest::test {
namespace {

using player::kCycleFrames;
using player::Options;
using player::Playback;

// Samples as ports of the width hold them, the upper bits of each.
std::string InPorts(const Samples &samples, size_t bytesPerSample) {
  std::string bytes(samples.size() * bytesPerSample, '\0');
  for (size_t i = 0; i < samples.size(); ++i) {
    const uint32_t sample = static_cast<uint32_t>(samples[i]) >> (32 - 8 * bytesPerSample);
    memcpy(&bytes[i * bytesPerSample], &sample, bytesPerSample);
  }
  return bytes;
}

std::string Dump(const std::string &name) {
  return ReadFile(KEST_DEBUG_DIR + name);
}

// Playbacks in this process, so that an instrument is on from the first cycle.
class Instrumented : public PlayerTest {
 protected:
  Options Input(const std::vector<AudioData> &inputs) {
    Options options = Fast({});
    for (const AudioData &audio : inputs) {
      options.inputs.push_back(Path("in" + std::to_string(options.inputs.size()) + ".wav"));
      WriteAudio(options.inputs.back(), audio);
    }
    return options;
  }
  Samples Played(const Options &options) {
    Playback playback(player::MakeLayout(options, player::BuiltInKinds()), options);
    playback.Start();
    playback.Finish();
    return ReadAudio(out_).samples;
  }
  Samples Played(const std::vector<AudioData> &inputs) { return Played(Input(inputs)); }

  DebugLayer layer_;
  ReportCapture capture_{ZE_KEST_LEVEL_WRN};
};

TEST_F(Instrumented, DumpsHoldEveryByteThatTheMixerConsumedAndProduced) {
  constexpr size_t kFrames = 5001;
  const struct {
    int channels;
    int format;
    size_t bytesInFile;
    size_t bytesInPorts;
    const char *pszGroup;
  } runs[] = {{2, kWav16, 2, 2, "dmx"}, {2, kWav24, 3, 4, "dmx"}, {2, kWav32, 4, 4, "dmx"},
              {10, kWav16, 2, 2, "mc"}, {10, kWav24, 3, 4, "mc"}, {10, kWav32, 4, 4, "mc"}};
  Command("kest_dump_filter_io=SpeakerOutput,Mixer");
  for (size_t run = 0; run < std::size(runs); ++run) {
    const auto &[channels, format, bytesInFile, bytesInPorts, pszGroup] = runs[run];
    const AudioData a = Noise(channels, format, kFrames, 1);
    const AudioData b = Noise(channels, format, kFrames, 2);
    Command("kest_dump_io=on");
    const Samples played = Played({a, b});
    Command("kest_dump_io=off");
    const Samples mixed = SaturatedSum(a.samples, b.samples);
    EXPECT_TRUE(InPorts(mixed, bytesInFile) == InPorts(played, bytesInFile)) << run;

    const std::string pcm = "_" + std::to_string(run) + "_" + pszGroup + ".pcm";
    EXPECT_TRUE(InPorts(a.samples, bytesInPorts) == Dump("DumpInSpeakerOutputMixer0" + pcm)) << run;
    EXPECT_TRUE(InPorts(b.samples, bytesInPorts) == Dump("DumpInSpeakerOutputMixer1" + pcm)) << run;
    EXPECT_TRUE(InPorts(mixed, bytesInPorts) == Dump("DumpOutSpeakerOutputMixer0" + pcm)) << run;
    const std::string metadata = Dump("DumpOutSpeakerOutputMixer0_" + std::to_string(run) + ".meta");
    EXPECT_EQ(kFrames / ZE_KEST_METADATA_SAMPLES * player::kMetadataBlockBytes, metadata.size());
    EXPECT_EQ(metadata, Dump("DumpInSpeakerOutputMixer0_" + std::to_string(run) + ".meta"));
  }
}

TEST_F(Instrumented, ADelayIsTheLatencyToTheMillisecond) {
  Options options = Input({Noise(2, kWav32, 20000)});
  options.loop = true;
  options.seconds = 4.0;
  Command("kest_latency_config=SpeakerOutput,Mixer,SpeakerOutput,Delay");
  uint32_t measurement = 0;
  for (const uint32_t delayMs : {0u, 1u, 7u, 50u, 333u, 1000u}) {
    options.delayMs = delayMs;
    capture_.Clear();
    Command("kest_latency=on");
    Played(options);
    Command("kest_latency=off");
    const std::string figure = "[latency] SpeakerOutput:Delay " + std::to_string(measurement++) +
                               " TotalBytes:" + std::to_string((delayMs * 48 + 1) * 4) +
                               " RealLatency:" + std::to_string(delayMs) + " ms\n";
    EXPECT_THAT(capture_.Texts("<PRINT>"), Contains(figure));
  }
}

// Of every cycle's frames the sine covers as many bytes as there are frames: half of 16-bit mono.
TEST_F(Instrumented, TheSineIsHeardDownstreamSampleForSample) {
  const AudioData input = Noise(1, kWav16, 4 * kCycleFrames + 100);
  Samples expected = input.samples;
  size_t position = 0;
  for (size_t cycle = 0; cycle < expected.size(); cycle += kCycleFrames) {
    const size_t frames = std::min<size_t>(kCycleFrames, expected.size() - cycle);
    for (size_t i = 0; i < frames / 2; ++i)
      expected[cycle + i] = _as32KestSine1K48Mono[position++ % ZE_KEST_SINE_SAMPLES];
  }
  Command("kest_output_sinewave_filter=Decoder_13,Volume");
  Command("kest_output_sinewave=on");
  EXPECT_EQ(expected, Played({input}));
}

// Where the machine has no counters, every cycle says so.
TEST_F(Instrumented, TheSelectedPipelineIsMeasuredAndTheOthersSayHowToSelectThem) {
  const AudioData input = Noise(1, kWav16, 60 * kCycleFrames);
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Debug_SetParameter("kest_perf_event_target=pipeline,"));
  Played({input});
  EXPECT_THAT(capture_.Texts("<PRINT>"),
              Contains("[PERF_EVENT][echo kest_perf_event_target=pipeline,Decoder_13 >D]\n"));

  Command("kest_perf_event_target=pipeline,SpeakerOutput");
  EXPECT_TRUE(input.samples == Played({input}));
  EXPECT_TRUE(capture_.Has("<PRINT>", "[PERF_EVENT][50][SpeakerOutput][MIPS=") ||
              capture_.Has("<ERR>", "Error opening leader 1 for  HwInstr"));
  Command("kest_perf_event_target=none");
}

TEST_F(Instrumented, EveryInstrumentMayComeAndGoWhileThePipelinesRun) {
  Options options = Input({Noise(2, kWav16, 5000), Noise(2, kWav16, 7000)});
  options.loop = true;
  options.seconds = 20.0;
  const Texts lines = LinesOf(
      "kest_print_filter_info=on;kest_print_filter_info=off;kest_dump_io=on;kest_dump_io=off;"
      "kest_dump_filter_io=SpeakerOutput,;kest_dump_filter_io=Dec,Vol;kest_output_sinewave=on;"
      "kest_output_sinewave=off;kest_output_sinewave_filter=,Volume;kest_latency=on;kest_latency=off;"
      "kest_latency_config=Decoder_13,Volume,SpeakerOutput,Delay;kest_debug_filter_io=Decoder;"
      "kest_debug_filter_io=restart;kest_debug_filter_io=release;kest_filter_debug_level=V,all;"
      "kest_perf_event_target=pipeline,SpeakerOutput;kest_perf_event_target=none;kest_debug_list=print;"
      "kest_debug_list=status;kest_debug_set_parameter=Decoder_13,Volume,Gain,-1,4;"
      "kest_process_status=pipeline,SpeakerOutput;kest_send_test_tone=SpeakerOutput,Mixer:0;"
      "kest_calpcmlev=,,20;kest_calpcmlev=Decoder_13,Volume,50;kest_calculate_data_rate=,Volume:0,0;"
      "kest_filter_debug_level=Lpcm,trace;kest_debug_send_cmd=2,get;kest_debug_watch_current_tids=off;kest_"
      "debug_watch_current_tids=on",
      ';');
  Playback playback(player::MakeLayout(options, player::BuiltInKinds()), options);
  playback.Start();
  for (uint32_t random = 1; !playback.HasEnded(); random = random * 1664525 + 1013904223) {
    ze_kest_Debug_SetParameter(lines[(random >> 16) % lines.size()].c_str());
    if (capture_.Reports().size() > 10000) capture_.Clear();
  }
  playback.Finish();
  EXPECT_EQ(2 * 20u * 48000, ReadAudio(out_).samples.size());
  Command("kest_debug_filter_io=Decoder");
  Command("kest_debug_filter_io=release");
}

TEST_F(Instrumented, ADumpThatCannotBeWrittenIsReportedAndTheSoundIsWhole) {
  if (!MayMount()) GTEST_SKIP() << "needs a mount namespace";
  const std::tuple<unsigned long, const char *, const char *> disks[] = {
      {MS_RDONLY, "", "Err! fopen failed!\n"}, {0, "size=64k", "Error! Fail to fflush()!\n"}};
  const AudioData input = Noise(10, kWav24, 30000);
  Command("kest_dump_io=on");
  Command("kest_debug_filter_io=SpeakerOutput,restart");
  for (const auto &[flags, pszOptions, pszReport] : disks) {
    capture_.Clear();
    const Disk disk(flags, pszOptions);
    EXPECT_TRUE(input.samples == Played({input})) << pszReport;
    EXPECT_THAT(capture_.Texts("<ERR>"), Contains(pszReport));
  }

  const std::string moved = Path("moved");
  ASSERT_EQ(0, rename(KEST_DEBUG_DIR, moved.c_str()));
  capture_.Clear();
  EXPECT_TRUE(input.samples == Played({input}));
  EXPECT_THAT(capture_.Texts("<ERR>"), Contains("Err! fopen failed!\n"));
  ASSERT_EQ(0, rename(moved.c_str(), KEST_DEBUG_DIR));
  Command("kest_dump_io=off");
}

// An engineer's session: what is typed into the pipe takes hold in the running pipelines.
TEST_F(PlayerTest, CommandsInThePipeSwitchTheInstrumentsOfARunningPlayer) {
  const AudioData input = WriteNoise(Path("in.wav"), 2, kWav16, 50000);
  PlayerProcess player({Path("in.wav"), "--loop", "-o", out_, "--wide"});
  ASSERT_TRUE(PlayOn(player, 10000)) << player.Wait().err;
  Ask("kest_dump_input_filter=SpeakerOutput,Mixer");
  EXPECT_THAT(Ask("kest_dump_input=on"), HasSubstr("dump input enable 0 SpeakerOutput:Mixer\n"));
  ASSERT_TRUE(PlayOn(player, 100000));
  EXPECT_THAT(Ask("kest_dump_input=off"), HasSubstr("dump input disable SpeakerOutput:Mixer\n"));
  Ask("kest_print_filter_info=on");
  ASSERT_TRUE(PlayOn(player, 10000));
  Ask("kest_print_filter_info=off");
  Ask("kest_debug_filter_io=Decoder");
  Ask("kest_debug_filter_io=restart");
  ASSERT_TRUE(PlayOn(player, 10000));
  player.Signal(SIGINT);
  EXPECT_EQ(0, player.Wait().exitCode);

  // Where the dump begins is up to the moment of the command; from there on it is the looped input.
  const std::string dump = Dump("DumpInSpeakerOutputMixer0_0_dmx.pcm");
  std::string looped = InPorts(input.samples, 4);
  looped += looped + looped;
  EXPECT_GT(dump.size(), 50000u);
  EXPECT_NE(std::string::npos, looped.find(dump));
  EXPECT_EQ("", Dump("DumpInSpeakerOutputMixer0_1_dmx.pcm"));
  EXPECT_THAT(ReadFile(kLogFile),
              ContainsRegex("\n\\[meta level\\] [0-9]+ +SpeakerOutput  :Delay           "));
  EXPECT_THAT(Dump("Decoder.txt"), HasSubstr("\n[f:Volume,t1:"));
  EXPECT_THAT(Dump("Decoder.txt"), HasSubstr("][p:Decoder_13,t:"));
}

}  // namespace
}  // namespace kest::test
