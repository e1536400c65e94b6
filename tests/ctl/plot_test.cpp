// SPDX-License-Identifier: Apache-2.0
// Pictures by the real gnuplot.
#include "ctl/render/gnuplot.h"
#include "tests/ctl/ctl_test.h"

namespace kest::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class Plot : public CtlTest {
 protected:
  static void ExpectPicture(const std::string &arguments) {
    const std::string path = Path("picture.png");
    std::filesystem::remove(path);
    const CtlResult plot = Ctl("plot " + arguments + " -o " + path);
    EXPECT_EQ(0, plot.exitCode) << arguments << plot.err;
    EXPECT_EQ("", plot.err);
    const std::string picture = ReadFile(path);
    ASSERT_LE(5000u, picture.size()) << arguments;
    EXPECT_THAT(picture, StartsWith("\x89PNG"));
    EXPECT_EQ(1000, static_cast<uint8_t>(picture[18]) * 256 + static_cast<uint8_t>(picture[19]));
  }
};

TEST_F(Plot, DrawsEveryKind) {
  StartPlayer();
  Ctl("send kest_debug_filter_io=Speaker,All kest_debug_filter_io=restart");
  EXPECT_TRUE(WaitFor([] { return FilesOf("Speaker.txt")["Speaker.txt"] > 4000; }));
  Ctl("send kest_debug_filter_io=release");
  const std::string trace = KEST_DEBUG_DIR "Speaker.txt";
  WriteNoise(Path("ten.wav"), 10, kWav16, 20000);
  WriteFile(Path("latency.json"),
            R"({"data":{"from":"a","to":"b","runs":[{"ms":50},{"ms":51.5},{"found":false}]}})");
  for (const std::string kind : {"waveform", "spectrogram", "levels"}) {
    ExpectPicture(kind + " " + kRecording);
    ExpectPicture(kind + " " + Path("ten.wav") + " --from 0.1 --seconds 0.05");
  }
  ExpectPicture("cycles " + trace);
  ExpectPicture("latency " + Path("latency.json"));
}

TEST_F(Plot, TakesNamesAsTheyAre) {
  const std::string odd = Path("it's \"`touch " + Path("made") + "`\" | $(x) {/Symbol a}\\n.wav");
  const std::string plain = Path("odd.wav");
  std::filesystem::create_directories(std::filesystem::path(odd).parent_path());
  std::filesystem::copy_file(kRecording, odd);
  std::filesystem::create_symlink(odd, plain);
  std::string quoted = odd;
  for (size_t at = 0; (at = quoted.find('\'', at)) != std::string::npos; at += 4)
    quoted.replace(at, 1, "'\\''");
  ExpectPicture("levels '" + quoted + "'");
  EXPECT_FALSE(std::filesystem::exists(Path("made")));
  EXPECT_EQ("'it''s \\x0a'", ctl::GnuplotText("it's \n"));
}

TEST_F(Plot, SaysWhatIsMissing) {
  const std::string output = " -o " + Path("picture.png");
  const CtlResult without = Ctl(std::string("plot waveform ") + kRecording + output, "PATH=/nowhere");
  EXPECT_EQ(3, without.exitCode);
  EXPECT_THAT(without.err, HasSubstr("gnuplot-nox"));
  EXPECT_EQ(2, Ctl(std::string("plot waveform ") + kRecording).exitCode);
  EXPECT_THAT(Ctl("plot wavefrm x" + output).err, HasSubstr("did you mean waveform?"));
  EXPECT_EQ(2, Ctl("plot cycles " KEST_CTL_SCHEMA + output).exitCode);
  EXPECT_EQ(2, Ctl("plot latency " KEST_CTL_SCHEMA + output).exitCode);
  EXPECT_EQ(3, Ctl(std::string("plot levels ") + kRecording + " -o /nowhere/x.png").exitCode);
}

}  // namespace
}  // namespace kest::test
