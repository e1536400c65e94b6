// SPDX-License-Identifier: Apache-2.0
// Runs that fail: the exit code, what is said, and what happens to the files.
#include <fstream>
#include <iterator>
#include <sstream>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "player/audio/audio_writer.h"
#include "player/base/player_error.h"
#include "tests/player/player_test.h"
#include "tests/support/disk.h"

namespace kest::test {
namespace {

// Eight more than the one that is always there.
constexpr const char *kNineInputs = "2 3 4 5 6 7 8 9";

class PlayerErrors : public PlayerTest {};

void ExpectError(const Texts &arguments, const testing::Matcher<std::string> &message) {
  const PlayerResult result = PlayFast(arguments);
  EXPECT_EQ(1, result.exitCode);
  EXPECT_EQ("", result.out);
  EXPECT_THAT(result.err, AllOf(StartsWith("kest-player: "), message));
}

TEST_F(PlayerErrors, InputsThatCannotBePlayedLeaveTheOutputAlone) {
  std::ofstream(Path("text.wav")) << "not audio at all, however often it is read\n";
  WriteAudio(Path("eleven.wav"), Noise(11, kWav16, 100));
  WriteAudio(Path("stereo.wav"), Noise(2, kWav16, 100));
  AudioData slower = Noise(2, kWav16, 100);
  slower.sampleRate = 44100;
  WriteAudio(Path("slower.wav"), slower);

  for (const int rate : {3999, 768001}) {
    slower.sampleRate = rate;
    WriteAudio(Path("rate.wav"), slower);
    ExpectError({Path("rate.wav"), "-o", out_},
                HasSubstr("unsupported sample rate of " + std::to_string(rate) + " Hz"));
  }
  ExpectError({Path("missing.wav"), "-o", out_}, HasSubstr("/missing.wav: No such file"));
  ExpectError({Path(""), "-o", out_}, HasSubstr("is not a regular file"));
  ExpectError({Path("text.wav"), "-o", out_}, HasSubstr("/text.wav is not an audio file"));
  ExpectError({Path("eleven.wav"), "-o", out_},
              AllOf(HasSubstr("unsupported layout"), HasSubstr("11 channels")));
  ExpectError({Path("stereo.wav"), Path("slower.wav"), "-o", out_},
              AllOf(HasSubstr("inputs differ"), HasSubstr("44100 Hz")));
  ExpectError({kRecording, Path("stereo.wav"), "-o", out_}, HasSubstr("inputs differ"));

  WriteAudio(Path("once.au"), Noise(1, SF_FORMAT_AU | SF_FORMAT_G721_32, 1000));
  ExpectError({Path("once.au"), "-o", out_, "--loop", "--seconds", "1"}, HasSubstr("cannot loop over "));
  EXPECT_NE(0, access(out_.c_str(), F_OK));
}

// A file that the debug layer has not made yet is refused by its name.
TEST_F(PlayerErrors, WhatTheRunNeedsIsNeverOverwritten) {
  const std::string config = R"({"In": {"Lpcm": {"file": ")" + std::string(kRecording) +
                             R"("}}, "SpeakerOutput": {"Mixer": {}, "SpeakerOutput": {"file": "out.wav"}}})";
  WriteFile(Path("x.json"), config);
  ASSERT_EQ(0, link(Path("x.json").c_str(), out_.c_str()));
  ExpectError({"--config", Path("x.json")}, HasSubstr(out_ + " is the configuration file"));
  EXPECT_EQ(config, ReadFile(out_));

  for (const char *name : {"D", "KestLog.txt", "shm_global", "DumpInAB0_0_dmx.pcm"}) {
    const std::string file = KEST_DEBUG_DIR + std::string(name);
    ExpectError({kRecording, "-o", file}, HasSubstr(file + " is a file of the debug layer"));
    if (!std::filesystem::exists(file)) WriteFile(file, name);
    std::filesystem::remove(out_);
    std::filesystem::create_hard_link(file, out_);
    ExpectError({kRecording, "-o", out_}, HasSubstr(out_ + " is a file of the debug layer"));
  }
  const AudioData input = WriteNoise(Path("in.wav"), 2, kWav16, 1000);
  ASSERT_EQ(0, symlink(Path("in.wav").c_str(), Path("same.wav").c_str()));
  ExpectError({kRecording, "-o", Path("missing/out.wav")},
              HasSubstr("cannot create " + Path("missing/out.wav")));
  ExpectError({kRecording, "-o", Path("")}, HasSubstr("cannot create "));
  ExpectError({Path("in.wav"), "-o", Path("in.wav")}, HasSubstr("also an input"));
  ExpectError({Path("in.wav"), "-o", Path("same.wav")}, HasSubstr("also an input"));
  EXPECT_TRUE(input.samples == ReadAudio(Path("in.wav")).samples);
}

TEST_F(PlayerErrors, ADamagedOrShortenedInputIsPlayedAsFarAsItGoes) {
  WriteAudio(Path("in.flac"), Noise(2, SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 50000));
  Damage(Path("in.flac"), 100000);
  ExpectError({Path("in.flac"), "-o", out_}, HasSubstr("/in.flac is damaged"));
  EXPECT_GT(ReadAudio(out_).Frames(), 4000u);

  AudioData input = WriteNoise(Path("in.wav"), 2, kWav16, 48000);
  PlayerProcess player({Path("in.wav"), "-o", out_});
  ASSERT_TRUE(PlayOn(player, 5000));
  std::filesystem::resize_file(Path("in.wav"), 100000);
  const PlayerResult result = player.Wait();
  EXPECT_EQ(1, result.exitCode);
  EXPECT_EQ("kest-player: " + Path("in.wav") + " became shorter while it was played\n", result.err);
}

TEST_F(PlayerErrors, AnOutputThatBecomesTooLargeIsReported) {
  const PlayerResult limited = PlayFast({kRecording, "-o", out_}, "ulimit -f 64");
  EXPECT_EQ(1, limited.exitCode);
  EXPECT_THAT(limited.err, AllOf(HasSubstr("cannot write " + out_), HasSubstr("File too large")));

  player::AudioWriter writer(out_, {2, 48000, player::SampleBits::k16});
  constexpr uint32_t kMostFrames = (UINT32_MAX - 4096) / 4;
  const std::vector<int16_t> first(1 << 20);  // more is not looked at before the limit stops the write
  const FileSizeLimit limit(64 << 10);
  const char *const kTooLong = "a WAV file holds at most 4 GiB";
  for (const auto &[frames, reason] : {std::pair{kMostFrames + 1, kTooLong},
                                       std::pair{kMostFrames, "File too large"}, std::pair{1u, kTooLong}}) {
    try {
      writer.Write(first.data(), frames);
      ADD_FAILURE() << reason;
    } catch (const player::PlayerError &error) {
      EXPECT_THAT(error.what(), HasSubstr(reason));
    }
  }
}

TEST_F(PlayerErrors, AFullDiskIsReported) {
  const std::string disk = Path("disk");
  ASSERT_EQ(0, mkdir(disk.c_str(), 0700));
  if (mount("kest-test", disk.c_str(), "tmpfs", 0, "size=64k") != 0) GTEST_SKIP() << "needs a small disk";
  ExpectError({kRecording, "-o", disk + "/out.wav"},
              AllOf(HasSubstr("cannot write " + disk + "/out.wav: "), HasSubstr("No space left on device")));
  umount(disk.c_str());
}

TEST_F(PlayerErrors, AWrongCommandLineHasItsOwnExitCode) {
  std::vector<Texts> commandLines = {{}, {kRecording}, {"-o", out_}};
  for (const char *options :
       {"--loud", "--gain-db 54", "--gain-db -145", "--delay-ms 1001", "--seconds 0", "--seconds 0.0009",
        "--seconds 1000000001", "--seconds nan", "--fast --loop", kNineInputs}) {
    std::istringstream words(options);
    commandLines.push_back({kRecording, "-o", out_});
    commandLines.back().insert(commandLines.back().end(), std::istream_iterator<std::string>(words), {});
  }
  for (const auto &arguments : commandLines) {
    const PlayerResult result = PlayerProcess(arguments).Wait();
    EXPECT_EQ(2, result.exitCode) << testing::PrintToString(arguments);
    EXPECT_NE("", result.err) << testing::PrintToString(arguments);
  }
  EXPECT_NE(0, access(out_.c_str(), F_OK));
}

}  // namespace
}  // namespace kest::test
