// SPDX-License-Identifier: Apache-2.0
// What the player makes of its inputs.
#include <algorithm>
#include <chrono>
#include <cmath>

#include "tests/player/player_test.h"

namespace kest::test {
namespace {

class Player : public PlayerTest {
 protected:
  // Gives the output of a run that must succeed.
  [[nodiscard]] AudioData Played(Texts arguments) {
    arguments.insert(arguments.end(), {"-o", out_});
    const PlayerResult result = PlayFast(arguments);
    EXPECT_EQ(0, result.exitCode) << result.err;
    EXPECT_EQ("", result.err);
    said_ = result.out;
    return ReadAudio(out_);
  }

  std::string said_;  // by the last run
};

TEST_F(Player, TheOutputHoldsEverySampleOfTheInput) {
  // The lengths leave a rest of a cycle, or fit one exactly, or are shorter than one.
  const std::tuple<int, int, size_t, int> files[] = {{1, SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 5001, kWav16},
                                                     {1, kWav24, 5001, kWav24},
                                                     {2, kWav16, 70001, kWav16},
                                                     {2, kWav24, 5120, kWav24},
                                                     {2, kWav32, 255, SF_FORMAT_PCM_32},
                                                     {2, SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 5001, kWav24},
                                                     {3, kWav16, 1, kWav16},
                                                     {6, kWav16, 5001, kWav16},
                                                     {10, kWav24, 5001, kWav24},
                                                     {2, kWav16, 0, kWav16}};
  for (const auto &[channels, format, frames, outputFormat] : files) {
    SCOPED_TRACE(testing::Message() << channels << " channels, format " << std::hex << format);
    const AudioData input = WriteNoise(Path("in"), channels, format, frames);
    const AudioData output = Played({Path("in")});
    EXPECT_EQ(input.channels, output.channels);
    EXPECT_EQ(input.sampleRate, output.sampleRate);
    EXPECT_EQ(outputFormat & SF_FORMAT_SUBMASK, output.format & SF_FORMAT_SUBMASK);
    EXPECT_TRUE(input.samples == output.samples);
  }
}

TEST_F(Player, PlaysARealRecordingToItsEnd) {
  EXPECT_TRUE(ReadAudio(kRecording).samples == Played({kRecording}).samples);
  EXPECT_EQ("played 68545 frames (1.43 s) and 267 metadata blocks in order to " + out_ + "\n", said_);
}

TEST_F(Player, FloatingPointInputsSaturateAtFullScale) {
  WriteFloats(Path("in.wav"), {0.0, 0.5, -0.25, 1.0, 1.5, -1.0, -7.0, std::nan("")});
  const AudioData output = Played({Path("in.wav")});
  EXPECT_EQ(SF_FORMAT_PCM_32, output.format & SF_FORMAT_SUBMASK);
  EXPECT_THAT(output.samples,
              ElementsAre(0, 1 << 30, -(1 << 29), INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN, 0));

  const AudioData noise = Noise(7, kWav24, 1000);
  std::vector<double> floats(noise.samples.begin(), noise.samples.end());
  for (double &sample : floats)
    sample /= 2147483648.0;
  WriteFloats(Path("in.wav"), floats, 7);
  EXPECT_TRUE(noise.samples == Played({Path("in.wav")}).samples) << "several chunks";
}

TEST_F(Player, InputsOfDifferentLengthAndWidthMixToTheSaturatedSum) {
  const AudioData shorter = Noise(2, kWav24, 3001, 1);
  const AudioData longer = Noise(2, kWav16, 9003, 2);
  WriteAudio(Path("shorter.wav"), shorter);
  WriteAudio(Path("longer.wav"), longer);
  Samples sum = SaturatedSum(longer.samples, shorter.samples);
  for (int32_t &sample : sum)
    sample &= ~0xFF;  // what 24 bits hold of full scale
  EXPECT_TRUE(sum == Played({Path("shorter.wav"), Path("longer.wav")}).samples);
  EXPECT_THAT(said_, HasSubstr("played 9003 frames (0.19 s) and 35 metadata blocks in order"));
  for (int32_t &sample : sum)
    sample &= ~0xFFFF;
  EXPECT_TRUE(sum == Played({Path("longer.wav"), Path("shorter.wav")}).samples)
      << "16 bits as the first input";
}

TEST_F(Player, MixesEightInputs) {
  AudioData input = Noise(2, kWav16, 1000);
  for (int32_t &sample : input.samples)
    sample = sample / (8 << 16) * (1 << 16);
  WriteAudio(Path("in.wav"), input);
  for (int32_t &sample : input.samples)
    sample *= 8;
  EXPECT_TRUE(input.samples == Played(Texts(8, Path("in.wav"))).samples);
}

TEST_F(Player, GainChangesTheLevelAndSaturates) {
  const AudioData input = WriteNoise(Path("in.wav"), 2, kWav24, 5001);
  for (const int gainDb : {-6, 20}) {
    const AudioData output = Played({Path("in.wav"), "--gain-db", std::to_string(gainDb)});
    ASSERT_EQ(input.samples.size(), output.samples.size());
    const double gain = std::pow(10.0, gainDb / 20.0);
    double largestError = 0.0;
    for (size_t i = 0; i < input.samples.size(); ++i) {
      const double wanted = std::clamp(input.samples[i] * gain, -2147483648.0, 2147483647.0);
      largestError = std::max(largestError, std::abs(output.samples[i] - wanted));
    }
    // One step of 24 bits, and the gain's own rounding.
    EXPECT_LT(largestError, 256.0 + 2147483648.0 / (1 << 20)) << gainDb << " dB";
  }
}

TEST_F(Player, DelayPutsSilenceFirstAndLosesNothing) {
  const AudioData input = WriteNoise(Path("in.wav"), 2, kWav16, 5001);
  for (const size_t delayMs : {1000u, 10u}) {
    Samples delayed(delayMs * 48 * 2, 0);
    delayed.insert(delayed.end(), input.samples.begin(), input.samples.end());
    const Texts arguments = {Path("in.wav"), "--delay-ms", std::to_string(delayMs)};
    EXPECT_TRUE(delayed == Played(arguments).samples) << delayMs << " ms";
  }
  EXPECT_THAT(said_, HasSubstr("played 5481 frames (0.11 s) and 19 metadata blocks in order"));
}

TEST_F(Player, SecondsCutTheOutputAndLoopFillsIt) {
  const AudioData input = WriteNoise(Path("in.wav"), 2, kWav16, 5001);
  for (const auto &[seconds, frames] : {std::pair{"0.07", 3360u}, std::pair{"0.001", 48u}})
    EXPECT_TRUE(Looped(input.samples, 2 * frames) == Played({Path("in.wav"), "--seconds", seconds}).samples);
  EXPECT_TRUE(Looped(input.samples, 2 * 24000) ==
              Played({Path("in.wav"), "--seconds", "0.5", "--loop"}).samples);
  WriteAudio(Path("in.wav"), Noise(2, kWav16, 0));
  EXPECT_EQ(0u, Played({Path("in.wav"), "--loop", "--seconds", "1"}).Frames()) << "nothing to repeat";
}

// Noise of the machine can only make the run longer.
TEST_F(Player, PlaysInRealTimeAndShowsTheLogWhenAsked) {
  const AudioData input = WriteNoise(Path("in.wav"), 1, kWav16, 24000);
  const auto start = std::chrono::steady_clock::now();
  const PlayerResult result = PlayerProcess({Path("in.wav"), "-o", out_, "--logcat"}).Wait();
  EXPECT_LE(std::chrono::milliseconds(450), std::chrono::steady_clock::now() - start);
  EXPECT_EQ(0, result.exitCode);
  EXPECT_THAT(result.err, StartsWith("I <KEST> <PRINT>"));
  EXPECT_TRUE(input.samples == ReadAudio(out_).samples);
  for (const auto &file : std::filesystem::directory_iterator(KEST_DEBUG_DIR))
    EXPECT_THAT(file.path().filename(), MatchesRegex("D|KestLog.txt|shm_.*"));
}

TEST_F(Player, PlaysWithoutADebugDirectoryAndSaysHowToHaveOne) {
  const std::filesystem::path directory = std::filesystem::path(KEST_DEBUG_DIR).parent_path();
  const std::filesystem::path elsewhere = Path("elsewhere");
  std::filesystem::rename(directory, elsewhere);
  const PlayerResult result = PlayFast({kRecording, "-o", out_});
  EXPECT_EQ(0, result.exitCode);
  EXPECT_THAT(result.err, HasSubstr("no log and no command pipe"));
  EXPECT_THAT(result.err, HasSubstr("mkdir -p " KEST_DEBUG_DIR));
  EXPECT_EQ(68545u, ReadAudio(out_).Frames());
  std::filesystem::rename(elsewhere, directory);
}

}  // namespace
}  // namespace kest::test
