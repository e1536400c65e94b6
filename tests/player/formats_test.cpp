// SPDX-License-Identifier: Apache-2.0
// Conversion of the sample rate and of the channels, measured in the output.
#include <cmath>
#include <sstream>
#include <tuple>

#include "tests/player/player_test.h"

namespace kest::test {
namespace {

using Matrix = std::vector<std::vector<double>>;

class Formats : public RunningPlayerTest {
 protected:
  // What comes out of a run that must succeed.
  AudioData Played(const Texts &arguments) const {
    const PlayerResult result = PlayFast(arguments);
    EXPECT_EQ(0, result.exitCode) << result.err;
    const AudioData audio = ReadAudio(out_);
    const std::string blocks = std::to_string(audio.Frames() / ZE_KEST_METADATA_SAMPLES);
    EXPECT_THAT(result.out, HasSubstr(" and " + blocks + " metadata blocks in order"));
    return audio;
  }
  AudioData PlayedFrom(const std::string &text) const {
    WriteFile(Path("x.json"), text);
    return Played({"--config", Path("x.json")});
  }
};

double SineAt(size_t frame, int channel, int sampleRate) {
  constexpr double kTurn = 6.283185307179586;
  return 0.5 * std::sin(kTurn * (997 + 300 * channel) * static_cast<double>(frame) / sampleRate);
}

AudioData Sines(int sampleRate, int format, size_t frames) {
  AudioData audio{2, sampleRate, format, Samples(2 * frames)};
  for (size_t i = 0; i < audio.samples.size(); ++i) {
    const double sample = SineAt(i / 2, static_cast<int>(i % 2), sampleRate);
    audio.samples[i] = format == kWav16 ? static_cast<int32_t>(std::lrint(sample * 32768)) * 65536
                                        : static_cast<int32_t>(std::lrint(sample * 2147483648.0));
  }
  return audio;
}

// Of everything that is not the sine, phase included; without the ends, where the sound breaks off.
double SnrDb(const AudioData &audio) {
  double signal = 0;
  double noise = 0;
  const size_t margin = audio.Frames() / 5;
  for (size_t frame = margin; frame < audio.Frames() - margin; ++frame) {
    for (int channel = 0; channel < 2; ++channel) {
      const double wanted = SineAt(frame, channel, audio.sampleRate);
      const double error = audio.samples[2 * frame + static_cast<size_t>(channel)] / 2147483648.0 - wanted;
      signal += wanted * wanted;
      noise += error * error;
    }
  }
  return 10 * std::log10(signal / noise);
}

TEST_F(Formats, ASineKeepsItsPitchPhaseAndPurityAtAnotherRate) {
  const std::tuple<int, int, int, double> runs[] = {{44100, 48000, kWav16, 85},  {44100, 48000, kWav32, 130},
                                                    {48000, 44100, kWav32, 130}, {96000, 48000, kWav32, 130},
                                                    {8000, 48000, kWav32, 130},  {48000, 8000, kWav32, 130},
                                                    {8000, 192000, kWav16, 85}};
  for (const auto &[inputRate, outputRate, format, leastSnrDb] : runs) {
    const auto frames = static_cast<size_t>(inputRate);
    WriteAudio(Path("in.wav"), Sines(inputRate, format, frames));
    const AudioData output =
        Played({Path("in.wav"), "-o", out_, "--rate", std::to_string(outputRate), "--delay-ms", "0"});
    EXPECT_EQ(outputRate, output.sampleRate);
    EXPECT_EQ(static_cast<size_t>(outputRate), output.Frames()) << inputRate << " Hz, one second";
    EXPECT_GT(SnrDb(output), leastSnrDb) << inputRate << " to " << outputRate;
  }
}

TEST_F(Formats, InputsOfDifferentRatesMeetAtTheRateThatIsWanted) {
  WriteAudio(Path("a.wav"), Sines(44100, kWav32, 44100));
  WriteAudio(Path("b.wav"), Sines(48000, kWav32, 24000));
  const PlayerResult refused = PlayFast({Path("a.wav"), Path("b.wav"), "-o", out_});
  EXPECT_THAT(refused.err,
              HasSubstr("b.wav (2 channels, 48000 Hz); convert one of them with Src or DownMix"));
  AudioData sum = Played({Path("a.wav"), Path("b.wav"), "-o", out_, "--rate", "48000"});
  ASSERT_EQ(48000u, sum.Frames());
  for (size_t i = 0; i < 48000; ++i)
    sum.samples[i] /= 2;
  sum.samples.resize(40000);
  EXPECT_GT(SnrDb(sum), 120);

  const AudioData noise = WriteNoise(Path("n.wav"), 3, kWav24, 5003);
  EXPECT_TRUE(noise.samples == Played({Path("n.wav"), "-o", out_, "--rate", "48000"}).samples)
      << "nothing changes at the same rate";
}

// Factors are sums of powers of two, so that the sums are exact.
Samples Mixed(const AudioData &input, const Matrix &matrix, double step) {
  Samples mixed;
  const auto channels = static_cast<size_t>(input.channels);
  mixed.reserve(input.Frames() * matrix.size());
  for (size_t frame = 0; frame < input.Frames(); ++frame) {
    for (const std::vector<double> &row : matrix) {
      double sum = 0;
      for (size_t i = 0; i < channels; ++i)
        sum += row[i] * input.samples[frame * channels + i];
      const double rounded = std::nearbyint(sum / step) * step;
      mixed.push_back(static_cast<int32_t>(std::clamp(rounded, -2147483648.0, 2147483648.0 - step)));
    }
  }
  return mixed;
}

std::string TextOf(const Matrix &matrix) {
  std::ostringstream text;
  for (size_t row = 0; row < matrix.size(); ++row) {
    text << (row == 0 ? "" : ";");
    for (const double factor : matrix[row])
      text << " " << factor;
  }
  return text.str();
}

TEST_F(Formats, AMatrixMakesAnyChannelsOutOfAnyOthers) {
  const Matrix toStereo = {{1, 0, 0.5, 0.25, 0.625, 0}, {0, 1, 0.5, 0.25, 0, -0.625}};
  const Matrix toSeven(7, {0.75, -1.5});
  const Matrix toTen(10, {0.5});
  const Matrix swapped = {{0, 1}, {1, 0}};
  for (const Matrix &matrix : {toStereo, toSeven, toTen, swapped}) {
    for (const int format : {kWav16, kWav32}) {
      const AudioData input = WriteNoise(Path("in.wav"), static_cast<int>(matrix[0].size()), format, 2003);
      const Samples wanted = Mixed(input, matrix, format == kWav16 ? 65536 : 1);
      const AudioData typed = Played({Path("in.wav"), "-o", out_, "--mix=" + TextOf(matrix)});
      EXPECT_EQ(static_cast<int>(matrix.size()), typed.channels);
      EXPECT_TRUE(wanted == typed.samples) << TextOf(matrix);
      const AudioData configured =
          PlayedFrom(R"({"In": {"Lpcm": {"file": "in.wav"}, "DownMix": {"matrix": ")" + TextOf(matrix) +
                     R"("}}, "SpeakerOutput": {"Mixer": {}, "SpeakerOutput": {"file": "out.wav"}}})");
      EXPECT_TRUE(wanted == configured.samples) << TextOf(matrix);
    }
  }
}

TEST_F(Formats, AMatrixThatDoesNotFitIsRefusedWithTheReason) {
  WriteAudio(Path("in.wav"), Noise(2, kWav16, 100));
  const std::pair<const char *, const char *> faults[] = {
      {"1 0 0; 0 1 0", "row 1 of the mixing matrix \"1 0 0; 0 1 0\" has 3 numbers; 2 are needed"},
      {"1 0;", "row 2 of the mixing matrix \"1 0;\" has 0 numbers; 2 are needed"},
      {"1, loud", "\"loud\" in a mixing matrix is no number from -1000 to 1000"},
      {"1 1001", "\"1001\" in a mixing matrix"},
      {"1 nan", "\"nan\" in a mixing matrix"},
      {"1 1;1 1;1 1;1 1;1 1;1 1;1 1;1 1;1 1;1 1;1 1", "the mixing matrix has 11 rows; at most 10"}};
  for (const auto &[matrix, reason] : faults) {
    const PlayerResult result = PlayFast({Path("in.wav"), "-o", out_, "--mix", matrix});
    EXPECT_EQ(1, result.exitCode) << matrix;
    EXPECT_THAT(result.err, HasSubstr(reason));
  }
}

TEST_F(Formats, ConvertersBehindTheMixerAreListedWithTheirFormats) {
  WriteAudio(Path("in.wav"), Noise(6, kWav16, 48000));
  WriteFile(Path("x.json"), R"({"In": {"Lpcm": {"file": "in.wav"}},
    "SpeakerOutput": {"Mixer": {}, "Src": {"rate_hz": 16000}, "DownMix": {"matrix": "1 1 1 1 1 1"},
                      "Delay": {"delay_ms": 10}, "SpeakerOutput": {"file": "out.wav"}}})");
  player_.emplace(Texts{"--config", Path("x.json"), "--loop"});
  ASSERT_TRUE(PlayOn(*player_, kPlentyOfBytes / 4)) << player_->Wait().err;
  EXPECT_THAT(Ask("kest_debug_list=status"), ContainsRegex("p:SpeakerOutput f:Src in\\[0\\] underrun:0 \n"));
  EXPECT_THAT(
      Ask("kest_debug_send_cmd_by_text=SpeakerOutput,Src,get"),
      HasSubstr("Src InRate = 48000 Hz (read only)\nSpeakerOutput Src OutRate = 16000 Hz (read only)\n"));
  EXPECT_THAT(Ask("kest_debug_send_cmd_by_text=SpeakerOutput,DownMix,get"),
              HasSubstr("InChannels = 6 (read only)\nSpeakerOutput DownMix OutChannels = 1 (read only)\n"));
  End();
  const AudioData output = ReadAudio(out_);
  EXPECT_EQ(std::tuple(1, 16000), std::tuple(output.channels, output.sampleRate));
}

}  // namespace
}  // namespace kest::test
