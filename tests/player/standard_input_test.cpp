// SPDX-License-Identifier: Apache-2.0
// Standard input as an input: other programs write WAV or raw samples into it.
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "programs/unique_fd.h"
#include "tests/player/player_test.h"

namespace kest::test {
namespace {

std::string LittleEndian(uint32_t number, size_t bytes) {
  std::string text(bytes, '\0');
  for (size_t i = 0; i < bytes; ++i)
    text[i] = static_cast<char>(number >> (8 * i));
  return text;
}

std::string Chunk(const std::string &name, const std::string &content) {
  const std::string padding(content.size() % 2, '\0');
  return name + LittleEndian(static_cast<uint32_t>(content.size()), 4) + content + padding;
}

const std::string kFormat = LittleEndian(1, 2) + LittleEndian(2, 2) + LittleEndian(48000, 4) +
                            LittleEndian(192000, 4) + LittleEndian(4, 2) + LittleEndian(16, 2);

// Of 16-bit stereo; the samples follow.
std::string Header(uint32_t dataBytes, const std::string &format = kFormat) {
  return "RIFF" + LittleEndian(dataBytes, 4) + "WAVE" + Chunk("JUNK", "odd") + Chunk("fmt ", format) +
         "data" + LittleEndian(dataBytes, 4);
}

std::string BytesOf(const AudioData &audio) {
  std::string bytes;
  for (const int32_t sample : audio.samples)
    bytes += LittleEndian(static_cast<uint32_t>(sample) >> 16, 2);
  return bytes;
}

class StandardInputs : public RunningPlayerTest {
 protected:
  StandardInputs() { EXPECT_EQ(0, mkfifo(pipe_.c_str(), 0600)); }

  // The shell's words that let the player read the file through a pipe.
  [[nodiscard]] std::string Piped(const std::string &file) const {
    return "cat " + file + " >" + pipe_ + " & exec <" + pipe_;
  }
  [[nodiscard]] Samples Played(const std::string &stream, const Texts &arguments = {"-"}) const {
    WriteFile(Path("stream"), stream);
    return PlayedFile(Path("stream"), arguments);
  }
  [[nodiscard]] Samples PlayedFile(const std::string &file, Texts arguments) const {
    arguments.insert(arguments.end(), {"-o", out_});
    const PlayerResult result = PlayFast(arguments, Piped(file));
    EXPECT_EQ(0, result.exitCode);
    EXPECT_EQ("", result.err);
    return ReadAudio(out_).samples;
  }

  // A player that reads from the pipe, once it can be ended; this process is the writer.
  void StartReading(Texts arguments) {
    writer_.Close();  // with it goes what the last player has left in the pipe
    writer_ = UniqueFd(open(pipe_.c_str(), O_RDWR | O_CLOEXEC));
    arguments.insert(arguments.end(), {"-o", out_});
    std::filesystem::remove(kPipe);
    player_.emplace(arguments, "exec <" + pipe_);
    ASSERT_TRUE(WaitWhilePlaying(*player_, [] { return access(kPipe, F_OK) == 0; }));
  }
  void Feed(const std::string &bytes) const {
    ASSERT_EQ(static_cast<ssize_t>(bytes.size()), write(writer_.Get(), bytes.data(), bytes.size()));
  }

  const std::string pipe_ = Path("pipe");
  UniqueFd writer_;
};

TEST_F(StandardInputs, ArePlayedToTheLastSampleInEveryFormat) {
  const struct {
    const char *raw;
    int format;
    int bitsOf;  // a format whose samples it holds exactly
  } streams[] = {{"", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, SF_FORMAT_PCM_U8},
                 {"", kWav16, kWav16},
                 {"", kWav24, kWav24},
                 {"", kWav32, kWav32},
                 {"", SF_FORMAT_WAVEX | SF_FORMAT_PCM_24, kWav24},
                 {"", SF_FORMAT_WAV | SF_FORMAT_FLOAT, kWav24},
                 {"", SF_FORMAT_WAV | SF_FORMAT_DOUBLE, kWav32},
                 {"u8", SF_FORMAT_RAW | SF_FORMAT_PCM_U8, SF_FORMAT_PCM_U8},
                 {"s8", SF_FORMAT_RAW | SF_FORMAT_PCM_S8, SF_FORMAT_PCM_U8},
                 {"s16le", SF_FORMAT_RAW | SF_FORMAT_PCM_16 | SF_ENDIAN_LITTLE, kWav16},
                 {"s16be", SF_FORMAT_RAW | SF_FORMAT_PCM_16 | SF_ENDIAN_BIG, kWav16},
                 {"s24le", SF_FORMAT_RAW | SF_FORMAT_PCM_24 | SF_ENDIAN_LITTLE, kWav24},
                 {"s24be", SF_FORMAT_RAW | SF_FORMAT_PCM_24 | SF_ENDIAN_BIG, kWav24},
                 {"s32le", SF_FORMAT_RAW | SF_FORMAT_PCM_32 | SF_ENDIAN_LITTLE, kWav32},
                 {"s32be", SF_FORMAT_RAW | SF_FORMAT_PCM_32 | SF_ENDIAN_BIG, kWav32},
                 {"f32le", SF_FORMAT_RAW | SF_FORMAT_FLOAT | SF_ENDIAN_LITTLE, kWav24},
                 {"f32be", SF_FORMAT_RAW | SF_FORMAT_FLOAT | SF_ENDIAN_BIG, kWav24},
                 {"f64le", SF_FORMAT_RAW | SF_FORMAT_DOUBLE | SF_ENDIAN_LITTLE, kWav32},
                 {"f64be", SF_FORMAT_RAW | SF_FORMAT_DOUBLE | SF_ENDIAN_BIG, kWav32}};
  for (const auto &[raw, format, bitsOf] : streams) {
    AudioData audio = Noise(3, bitsOf, 30001);
    audio.format = format;
    WriteAudio(Path("stream"), audio);
    Texts arguments = {"-"};
    if (*raw != '\0') arguments.insert(arguments.end(), {"--raw", std::string("48000:3:") + raw});
    EXPECT_TRUE(audio.samples == PlayedFile(Path("stream"), arguments)) << raw << " " << std::hex << format;
  }
  for (const int law : {SF_FORMAT_ALAW, SF_FORMAT_ULAW}) {
    WriteAudio(Path("stream"), Noise(2, SF_FORMAT_WAV | law, 5001));
    EXPECT_TRUE(ReadAudio(Path("stream")).samples == PlayedFile(Path("stream"), {"-"}));
  }
  const AudioData audio = WriteNoise(Path("stream"), 2, SF_FORMAT_RAW | SF_FORMAT_PCM_32, 5001);
  WriteFile(Path("x.json"), R"({"In": {"Lpcm": {"file": "-", "raw": "44100:2:s32le"}},
                                "SpeakerOutput": {"Mixer": {}, "SpeakerOutput": {"file": "out.wav"}}})");
  const PlayerResult result = PlayFast({"--config", Path("x.json")}, Piped(Path("stream")));
  EXPECT_THAT(result.out, HasSubstr("played 5001 frames (0.11 s)")) << result.err;
  EXPECT_TRUE(audio.samples == ReadAudio(out_).samples);
}

TEST_F(StandardInputs, EndWhereTheHeaderSaysOrTheStreamDoes) {
  const AudioData audio = Noise(2, kWav16, 5001);
  const std::string bytes = BytesOf(audio);
  const auto right = static_cast<uint32_t>(bytes.size());
  EXPECT_TRUE(audio.samples == Played(Header(right) + bytes + Chunk("LIST", "no samples")));
  for (const uint32_t size : {0u, 0xFFFFFFFFu, 0xFFFFFFF0u, 0x7FFFF000u, 0x80000000u, right + 4000})
    EXPECT_TRUE(audio.samples == Played(Header(size) + bytes)) << size << " from a writer that did not know";
}

TEST_F(StandardInputs, ThatComeLateAreUnderRunsAndLoseNothing) {
  const AudioData audio = Noise(2, kWav16, 30000);
  const std::string bytes = BytesOf(audio);
  StartReading({"-"});
  Feed(Header(0).substr(0, 10));
  Feed(Header(0).substr(10) + bytes.substr(0, 50001));
  ASSERT_TRUE(WaitWhilePlaying(*player_, [this] { return OutputSize() >= 44; }));
  std::string status;
  ASSERT_TRUE(WaitWhilePlaying(*player_, [&] {
    status = Ask("kest_debug_list=status");
    return Matches(ContainsRegex("f:Mixer in\\[0\\] underrun:[1-9]"))(status);
  })) << status;
  Feed(bytes.substr(50001));
  writer_.Close();
  EXPECT_EQ(0, player_->Wait().exitCode);
  EXPECT_TRUE(audio.samples == ReadAudio(out_).samples);
}

TEST_F(StandardInputs, ThatSayNothingDoNotKeepThePlayerFromEnding) {
  const struct {
    Texts arguments;
    std::string said;
    const char *answer;
  } runs[] = {{{"-"}, "", "played nothing: ended before standard input had a WAV header\n"},
              {{"-", "--fast"}, Header(0).substr(0, 30), "played nothing"},
              {{kRecording, "-", "--raw", "48000:1:s16le"}, "", "played 0 frames"},
              {{"-", "--fast"}, Header(0) + std::string(4000, 's'), "played "}};
  for (const auto &[arguments, said, answer] : runs) {
    StartReading(arguments);
    Feed(said);
    player_->Signal(SIGTERM);
    const PlayerResult result = player_->Wait();
    EXPECT_EQ(0, result.exitCode) << result.err;
    EXPECT_THAT(result.out, StartsWith(answer));
  }
  StartReading({"-", "--raw", "48000:2:s16le", "--seconds", "0.01"});
  Feed(std::string(512 * 4, 's'));
  EXPECT_THAT(player_->Wait().out, StartsWith("played 480 frames")) << "the writer is still there";
}

TEST_F(StandardInputs, ThatCannotBePlayedAreRefusedWithTheReason) {
  const UniqueFd terminal(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  ASSERT_EQ(0, grantpt(terminal.Get()) + unlockpt(terminal.Get()));
  std::string mp3 = kFormat;
  mp3[0] = 85;
  WriteFile(Path("mp3"), Header(0, mp3));
  WriteFile(Path("text"), "not audio at all");
  WriteFile(out_, "raw");
  WriteFile(Path("cut"), Header(0).substr(0, 30));
  WriteFile(Path("uneven"), Header(4000) + std::string(4003, 's'));
  const struct {
    std::string input;
    Texts arguments;
    const char *reason;
    int exitCode = 1;
  } faults[] = {
      {ptsname(terminal.Get()), {}, "standard input is a terminal; let another program write into it"},
      {"/dev/null", {"-"}, "standard input, \"-\", can be one input only"},
      {"/dev/null", {"--loop", "--seconds", "1"}, "cannot loop over standard input"},
      {"/dev/null", {}, "standard input ended before the end of its WAV header"},
      {"/", {}, "cannot read standard input: Is a directory"},
      {Path("cut"), {}, "standard input ended before the end of its WAV header"},
      {Path("text"), {}, "standard input has no WAV header"},
      {Path("mp3"), {}, "standard input has WAV samples of kind 85 with 16 bits, which cannot be played"},
      {Path("text"), {"--raw", "48000:3:s24le"}, "standard input ended within a frame; its last 7 bytes"},
      {Path("text"), {"--raw", "48000:11:u8"}, "unsupported layout: standard input (11 channels, 48000 Hz)"},
      {Path("text"), {"--raw", "1000:1:u8"}, "standard input has an unsupported sample rate of 1000 Hz"},
      {Path("text"), {"--raw", "48000:2000:u8"}, "standard input cannot be played: "},
      {Path("text"), {"--raw", "48000:0:u8"}, "the raw format \"48000:0:u8\" is not RATE:CHANNELS:SAMPLES"},
      {Path("text"), {"--raw", "48000:1:u9"}, "the samples are u8, s8, s16le"},
      {out_, {"--raw", "48000:1:u8"}, "out.wav is also an input"},
      {Path("text"), {"--raw", "48000:1"}, "the raw format \"48000:1\" is not"},
      {Path("text"), {"--raw", "48000:1:u8", "--config", "x.json"}, "cannot be given with --config", 2}};
  for (const auto &[input, arguments, reason, exitCode] : faults) {
    Texts all = {"-", "-o", out_};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const PlayerResult result = PlayFast(all, "exec <" + input);
    EXPECT_EQ(exitCode, result.exitCode) << reason;
    EXPECT_THAT(result.err, HasSubstr(reason));
  }
}

}  // namespace
}  // namespace kest::test
