// SPDX-License-Identifier: Apache-2.0
// Configuration files: what they play, and what is said about faulty ones.
#include <algorithm>
#include <fstream>

#include <android/log.h>
#include <unistd.h>

#include "player/base/player_error.h"
#include "player/config/layout_reader.h"
#include "tests/player/player_test.h"

namespace kest::test {
namespace {

class Config : public PlayerTest {
 protected:
  Config() {
    __android_log_set_logger([](const __android_logger_data *, const char *) {});
  }

  void Write(const std::string &text) const { std::ofstream(path_) << text; }

  // What comes out of a run that must succeed.
  [[nodiscard]] Samples Played(const Texts &arguments) const {
    std::filesystem::remove(out_);
    const PlayerResult result = PlayFast(arguments);
    EXPECT_EQ(0, result.exitCode) << result.err;
    EXPECT_THAT(result.out, HasSubstr("in order"));
    return ReadAudio(out_).samples;
  }
  [[nodiscard]] Samples PlayedFrom(const std::string &text) const {
    Write(text);
    return Played({"--config", path_});
  }

  // What is said about the file, without its name.
  [[nodiscard]] std::string Complaint() const {
    try {
      static_cast<void>(player::ReadLayout(path_, player::BuiltInKinds()));
    } catch (const player::PlayerError &error) {
      const std::string text = error.what();
      const size_t name = text.find(path_);
      return name == std::string::npos ? "the file is not named: " + text
                                       : std::string(text).replace(name, path_.size(), "x");
    }
    return "nothing";
  }

  const std::string path_ = Path("x.json");
};

// The input is named like a filter, and found beside the configuration.
TEST_F(Config, VolumeAndDelayWorkWhereverTheyStand) {
  WriteAudio(Path("Volume"), Noise(2, kWav16, 5001));
  const auto wanted = Played({Path("Volume"), "-o", out_, "--gain-db", "-6", "--delay-ms", "100"});
  const std::string volume = R"(, "Volume": {"gain_db": -6})";
  const std::string delay = R"(, "Delay": {"delay_ms": 100})";
  const std::string defaults = R"(, "Volume": {}, "Delay": {})";
  const std::pair<std::string, std::string> chains[] = {{volume + delay, ""},
                                                        {delay + volume, defaults},
                                                        {"", volume + delay},
                                                        {defaults, delay + volume},
                                                        {delay, volume}};
  for (const auto &[input, output] : chains) {
    EXPECT_TRUE(wanted == PlayedFrom(R"({"SpeakerOutput": {"Mixer": {})" + output +
                                     R"(, "SpeakerOutput": {"file": "out.wav"}},
                                     "In": {"Lpcm": {"file": "Volume"})" +
                                     input + "}}"))
        << input << " | " << output;
  }
}

TEST_F(Config, AnInputHasItsOwnSettings) {
  const AudioData early = Noise(1, kWav16, 3000, 1);
  const AudioData late = Noise(1, kWav16, 3000, 2);
  WriteAudio(Path("a \"b\\c.wav"), early);
  WriteAudio(Path("late.wav"), late);
  Samples wanted(3480, 0);
  std::copy(late.samples.begin(), late.samples.end(), wanted.begin() + 480);
  for (size_t i = 0; i < early.samples.size(); ++i) {
    wanted[i] = static_cast<int32_t>(
        std::clamp<int64_t>(int64_t{wanted[i]} + early.samples[i], INT32_MIN, INT16_MAX * 0x10000LL));
  }
  EXPECT_TRUE(wanted == PlayedFrom(R"({
    "Early": {"Lpcm": {"file": ".\/a \"b\\c.wav"}},
    "Late": {"Lpcm": {"file": "late.wav"}, "Delay": {"delay_ms": 10}},
    "SpeakerOutput": {"Mixer": {}, "SpeakerOutput": {"file": ")" +
                                   out_ + "\"}}}"));
}

TEST_F(Config, TheExampleIsValid) {
  const ReportCapture capture;
  const player::Layout layout = player::ReadLayout(KEST_PLAYER_EXAMPLE, player::BuiltInKinds());
  ASSERT_EQ(2u, layout.inputs.size());
  EXPECT_EQ("/usr/share/sounds/alsa/Front_Left.wav", layout.inputs[0].filters.front().FileName("file"));
  EXPECT_EQ(-6, layout.inputs[0].filters.back().WholeNumber("gain_db"));
  EXPECT_EQ(500, layout.inputs[1].filters.back().WholeNumber("delay_ms"));
  EXPECT_THAT(capture.Texts("<ERR>"), IsEmpty());
}

TEST_F(Config, AFaultIsSaidWithItsPlaceAndWhatIsAllowed) {
  const std::string longName(64, 'n');
  const std::string input = R"("Lpcm": {"file": "a"})";
  const std::string output = R"("SpeakerOutput": {"Mixer": {}, "SpeakerOutput": {"file": "b"}})";
  std::string nine = "{" + output;
  for (char name = '1'; name <= '9'; ++name) {
    nine += std::string(", \"") + name + "\": {" + input + "}";
  }
  const std::pair<std::string, std::string> faults[] = {
      {"", "cannot read x: it is empty"},
      {" ", "x: malformed or incomplete JSON in line 1 (the reader answered 3)"},
      {"{\n\"A\": ]}", "x: malformed or incomplete JSON in line 2 (the reader answered 3)"},
      {"{} {}", "x: there is more than one JSON value; one object is needed"},
      {"[1]", "x is an array; an object is needed"},
      {"{A: {}}", "x: every value needs a name in quotes"},
      {R"({"A": "b": "c"})", "x: \"A\" must be followed by a colon and one value"},
      {R"({"A": {"Volume": {"gain_db": 1 2}}})",
       "x: A: Volume: \"gain_db\" must be followed by a colon and one value"},
      {R"({"A": {)" + input + R"(}, "A": {}})", "x: \"A\" is there twice; a name may be used once"},
      {R"({"": {}})", "x: : the name has 0 characters; 1 to 63 are allowed"},
      {"{\"" + longName + "\": {}}", "x: " + longName + ": the name has 64 characters; 1 to 63 are allowed"},
      {"{\"A\nB\": {}}", "x: a string or name holds a line end or other control character"},
      {R"({"A": 5})", "x: A is 5; an object is needed"},
      {R"({"A": {"Volume": "loud"}})", "x: A: Volume is \"loud\"; an object is needed"},
      {R"({"A": {"Echo": {}}})",
       "x: A: Echo: unknown filter; known: Lpcm, Volume, Delay, Src, DownMix, Mixer, SpeakerOutput, and "
       "those of a "
       "\"module\""},
      {R"({"A": {"Volume": {"gain": 1}}})", "x: A: Volume: gain: unknown setting; known: gain_db"},
      {R"({"A": {"Mixer": {"file": "a"}}})", "x: A: Mixer: file: unknown setting; known: none"},
      {R"({"A": {"Volume": {"gain_db": "loud"}}})",
       "x: A: Volume: gain_db is \"loud\"; a whole number from -144 to 53 is needed"},
      {R"({"A": {"Volume": {"gain_db": 54}}})",
       "x: A: Volume: gain_db is 54; a whole number from -144 to 53 is needed"},
      {R"({"A": {"Volume": {"gain_db": 1.5}}})",
       "x: A: Volume: gain_db is 1.5; a whole number from -144 to 53 is needed"},
      {R"({"A": {)" + input + R"(, "Volume": {"gain_db": -144}, "Delay": {"delay_ms": 0}},
            ")" +
           longName.substr(1) + R"(": {)" + input +
           R"(, "Volume": {"gain_db": 53}, "Delay": {"delay_ms": 1000}}, )" + output + "}",
       "nothing"},
      {R"({"A": {"Delay": {"delay_ms": -1}}})",
       "x: A: Delay: delay_ms is -1; a whole number from 0 to 1000 is needed"},
      {R"({"A": {"Delay": {"delay_ms": {}}}})",
       "x: A: Delay: delay_ms is an object; a whole number from 0 to 1000 is needed"},
      {R"({"A": {"Lpcm": {}}})", "x: A: Lpcm: \"file\" is missing; the name of a file is needed"},
      {R"({"A": {"Lpcm": {"file": 5}}})", "x: A: Lpcm: file is 5; the name of a file, in quotes, is needed"},
      {R"({"A": {"Lpcm": {"file": ""}}})",
       "x: A: Lpcm: file is \"\"; the name of a file, in quotes, is needed"},
      {R"({"A": {"Lpcm": {"file": "a\u0062"}}})",
       "x: A: Lpcm: file: \"a\\u0062\" has an escape other than \\\" \\\\ \\/; write the character itself"},
      {R"({"A": {"Volume": {}, )" + input + "}}",
       "x: A: has Volume, Lpcm; an input is Lpcm, then any of Volume, Delay, Src, DownMix and modules, in "
       "any order"},
      {R"({"A": {"Src": {}}})",
       "x: A: Src: \"rate_hz\" is missing; a whole number from 4000 to 768000 is needed"},
      {R"({"A": {"DownMix": {"matrix": 1}}})",
       "x: A: DownMix: matrix is 1; a row of numbers for each output channel, a number for each input "
       "channel, "
       "such as \"1 0 0.5; 0 1 0.5\", in quotes, is needed"},
      {R"({"A": {}})",
       "x: A: has no filters; an input is Lpcm, then any of Volume, Delay, Src, DownMix and modules, in any "
       "order"},
      {R"({"SpeakerOutput": {"Mixer": {}}})",
       "x: SpeakerOutput: has Mixer; the output is Mixer, then any of Volume, Delay, Src, DownMix and "
       "modules, in any "
       "order, then "
       "SpeakerOutput"},
      {"{\"A\": {" + input + "}}", "x: the pipeline \"SpeakerOutput\" is missing"},
      {"{" + output + "}", "x: 0 pipelines feed SpeakerOutput; 1 to 8 are needed"},
      {nine + "}", "x: 9 pipelines feed SpeakerOutput; 1 to 8 are needed"}};
  for (const auto &[document, complaint] : faults) {
    Write(document);
    EXPECT_EQ(complaint, Complaint()) << document;
  }
}

TEST_F(Config, ARunThatCannotBeginLeavesTheOutputAlone) {
  EXPECT_EQ("cannot read x: No such file or directory", Complaint());
  ASSERT_TRUE(std::filesystem::create_directory(path_));
  EXPECT_EQ("x is not a regular file; give the name of a configuration file", Complaint());
  std::filesystem::remove(path_);

  Write(R"({"In": {"Lpcm": {"file": "in.wav"}},
            "SpeakerOutput": {"Mixer": {}, "SpeakerOutput": {"file": "out.wav"}}})");
  const PlayerResult missing = PlayFast({"--config", path_});
  EXPECT_EQ(1, missing.exitCode);
  EXPECT_THAT(missing.err, HasSubstr("kest-player: cannot read " + Path("in.wav")));

  const Texts conflicts[] = {{"in.wav"},         {"-o", out_},   {"--gain-db", "0"},  {"--delay-ms", "0"},
                             {"--rate", "8000"}, {"--mix", "1"}, {"--module", "x.so"}};
  for (Texts arguments : conflicts) {
    arguments.insert(arguments.end(), {"--config", path_});
    const PlayerResult result = PlayFast(arguments);
    EXPECT_EQ(2, result.exitCode) << arguments[0];
    EXPECT_THAT(result.err, HasSubstr("cannot be given with --config"));
  }
  EXPECT_NE(0, access(out_.c_str(), F_OK));
}

}  // namespace
}  // namespace kest::test
