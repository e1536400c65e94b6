// SPDX-License-Identifier: Apache-2.0
// Runs that fail: the exit code, what is said, and what happens to the files.
#include <cstdio>
#include <fstream>

#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/player/audio_data.h"
#include "tests/player/player_process.h"

namespace kest::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr const char *kOut = "/mnt/out.wav";
constexpr int kWav16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;

void ExpectError(const std::vector<std::string> &arguments, const testing::Matcher<std::string> &message) {
  const PlayerResult result = PlayFast(arguments);
  EXPECT_EQ(1, result.exitCode);
  EXPECT_EQ("", result.out);
  EXPECT_THAT(result.err, AllOf(testing::StartsWith("kest-player: "), message));
}

TEST(PlayerErrors, InputsThatCannotBePlayedLeaveTheOutputAlone) {
  std::remove(kOut);
  std::ofstream("/mnt/text.wav") << "not audio at all, however often it is read\n";
  WriteAudio("/mnt/eleven.wav", Noise(11, kWav16, 100));
  WriteAudio("/mnt/stereo.wav", Noise(2, kWav16, 100));
  AudioData slower = Noise(2, kWav16, 100);
  slower.sampleRate = 44100;
  WriteAudio("/mnt/slower.wav", slower);

  ExpectError({"/mnt/missing.wav", "-o", kOut}, HasSubstr("/mnt/missing.wav: No such file"));
  ExpectError({"/mnt", "-o", kOut}, HasSubstr("/mnt is not an audio file"));
  ExpectError({"/mnt/text.wav", "-o", kOut}, HasSubstr("/mnt/text.wav is not an audio file"));
  ExpectError({"/mnt/eleven.wav", "-o", kOut},
              AllOf(HasSubstr("unsupported layout"), HasSubstr("11 channels")));
  ExpectError({"/mnt/stereo.wav", "/mnt/slower.wav", "-o", kOut},
              AllOf(HasSubstr("inputs differ"), HasSubstr("44100 Hz")));
  ExpectError({kRecording, "/mnt/stereo.wav", "-o", kOut}, HasSubstr("inputs differ"));
  EXPECT_NE(0, access(kOut, F_OK));
}

TEST(PlayerErrors, AnInputIsNeverOverwritten) {
  const AudioData input = Noise(2, kWav16, 1000);
  WriteAudio("/mnt/in.wav", input);
  ASSERT_EQ(0, symlink("/mnt/in.wav", "/mnt/same.wav"));
  ExpectError({kRecording, "-o", "/mnt/missing/out.wav"}, HasSubstr("cannot create /mnt/missing/out.wav"));
  ExpectError({kRecording, "-o", "/mnt"}, HasSubstr("cannot create /mnt"));
  ExpectError({"/mnt/in.wav", "-o", "/mnt/in.wav"}, HasSubstr("also an input"));
  ExpectError({"/mnt/in.wav", "-o", "/mnt/same.wav"}, HasSubstr("also an input"));
  EXPECT_TRUE(input.samples == ReadAudio("/mnt/in.wav").samples);
}

TEST(PlayerErrors, ADamagedInputIsPlayedAsFarAsItGoes) {
  WriteAudio("/mnt/in.flac", Noise(2, SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 50000));
  {
    std::fstream file("/mnt/in.flac", std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(100000);
    file << std::string(1000, '\0');
  }
  ExpectError({"/mnt/in.flac", "-o", kOut}, HasSubstr("/mnt/in.flac is damaged"));
  EXPECT_GT(ReadAudio(kOut).Frames(), 4000u);
}

TEST(PlayerErrors, AFullDiskIsReported) {
  ASSERT_EQ(0, mkdir("/mnt/small", 0700));
  ASSERT_EQ(0, mount("kest-test", "/mnt/small", "tmpfs", 0, "size=64k"));
  const PlayerResult result = PlayFast({kRecording, "-o", "/mnt/small/out.wav"});
  EXPECT_EQ(1, result.exitCode);
  EXPECT_EQ("", result.out);
  EXPECT_THAT(result.err, HasSubstr("cannot write /mnt/small/out.wav: "));
  EXPECT_THAT(result.err, HasSubstr("No space left on device"));
}

TEST(PlayerErrors, AWrongCommandLineHasItsOwnExitCode) {
  std::remove(kOut);
  const std::vector<std::vector<std::string>> commandLines = {{},
                                                              {kRecording},
                                                              {"-o", kOut},
                                                              {kRecording, "-o", kOut, "--loud"},
                                                              {kRecording, "-o", kOut, "--gain-db", "54"},
                                                              {kRecording, "-o", kOut, "--delay-ms", "1001"},
                                                              {kRecording, "-o", kOut, "--seconds", "0"},
                                                              {kRecording, "-o", kOut, "--seconds", "nan"},
                                                              {kRecording, "-o", kOut, "--fast", "--loop"},
                                                              std::vector<std::string>(9, kRecording)};
  for (const auto &arguments : commandLines) {
    const PlayerResult result = PlayerProcess(arguments).Wait();
    EXPECT_EQ(2, result.exitCode) << testing::PrintToString(arguments);
    EXPECT_NE("", result.err) << testing::PrintToString(arguments);
  }
  EXPECT_NE(0, access(kOut, F_OK));
}

}  // namespace
}  // namespace kest::test
