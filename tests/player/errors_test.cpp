// SPDX-License-Identifier: Apache-2.0
// Runs that fail: the exit code, what is said, and what happens to the files.
#include <fstream>
#include <iterator>
#include <sstream>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/player/player_test.h"

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

  ExpectError({Path("missing.wav"), "-o", out_}, HasSubstr("/missing.wav: No such file"));
  ExpectError({Path(""), "-o", out_}, HasSubstr("is not a regular file"));
  ExpectError({Path("text.wav"), "-o", out_}, HasSubstr("/text.wav is not an audio file"));
  ExpectError({Path("eleven.wav"), "-o", out_},
              AllOf(HasSubstr("unsupported layout"), HasSubstr("11 channels")));
  ExpectError({Path("stereo.wav"), Path("slower.wav"), "-o", out_},
              AllOf(HasSubstr("inputs differ"), HasSubstr("44100 Hz")));
  ExpectError({kRecording, Path("stereo.wav"), "-o", out_}, HasSubstr("inputs differ"));
  EXPECT_NE(0, access(out_.c_str(), F_OK));
}

TEST_F(PlayerErrors, AnInputIsNeverOverwritten) {
  const AudioData input = WriteNoise(Path("in.wav"), 2, kWav16, 1000);
  ASSERT_EQ(0, symlink(Path("in.wav").c_str(), Path("same.wav").c_str()));
  ExpectError({kRecording, "-o", Path("missing/out.wav")},
              HasSubstr("cannot create " + Path("missing/out.wav")));
  ExpectError({kRecording, "-o", Path("")}, HasSubstr("cannot create "));
  ExpectError({Path("in.wav"), "-o", Path("in.wav")}, HasSubstr("also an input"));
  ExpectError({Path("in.wav"), "-o", Path("same.wav")}, HasSubstr("also an input"));
  EXPECT_TRUE(input.samples == ReadAudio(Path("in.wav")).samples);
}

TEST_F(PlayerErrors, ADamagedInputIsPlayedAsFarAsItGoes) {
  WriteAudio(Path("in.flac"), Noise(2, SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 50000));
  Damage(Path("in.flac"), 100000);
  ExpectError({Path("in.flac"), "-o", out_}, HasSubstr("/in.flac is damaged"));
  EXPECT_GT(ReadAudio(out_).Frames(), 4000u);
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
  for (const char *options : {"--loud", "--gain-db 54", "--delay-ms 1001", "--seconds 0", "--seconds nan",
                              "--fast --loop", kNineInputs}) {
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
