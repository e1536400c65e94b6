// SPDX-License-Identifier: Apache-2.0
// Playing to sound cards: to devices of libasound that need no hardware, and to one that fails.
#include "player/audio/sound_card.h"

#include <cerrno>
#include <cstring>
#include <deque>

#include "player/base/player_error.h"
#include "tests/player/player_test.h"

namespace {

// What writes answer instead of playing, one after the other.
std::deque<snd_pcm_sframes_t> g_answers;

}  // namespace

extern "C" {
snd_pcm_sframes_t __real_snd_pcm_writei(snd_pcm_t *pcm, const void *frames, snd_pcm_uframes_t count);

snd_pcm_sframes_t __wrap_snd_pcm_writei(snd_pcm_t *pcm, const void *frames, snd_pcm_uframes_t count) {
  if (g_answers.empty()) return __real_snd_pcm_writei(pcm, frames, count);
  const snd_pcm_sframes_t answer = g_answers.front();
  g_answers.pop_front();
  return answer < 0 ? answer : __real_snd_pcm_writei(pcm, frames, static_cast<snd_pcm_uframes_t>(answer));
}
}

namespace kest::test {
namespace {

using player::SampleBits;
using player::SoundCard;

class SoundCards : public PlayerTest {
 protected:
  // A device that stores what it plays.
  [[nodiscard]] std::string Storing() const { return "file:FILE=" + raw_ + ",FORMAT=raw"; }
  [[nodiscard]] std::string Stored() const { return ReadFile(raw_); }

  const std::string raw_ = Path("played.raw");
};

TEST_F(SoundCards, PlayEverySampleOfTheRunInThePortsWidth) {
  for (const int format : {kWav16, kWav24}) {
    const AudioData input = WriteNoise(Path("in.wav"), 2, format, 50003);
    const PlayerResult result = PlayFast({Path("in.wav"), "-o", "alsa:" + Storing()});
    EXPECT_EQ(0, result.exitCode) << result.err;
    EXPECT_THAT(result.out, HasSubstr("played 50003 frames"));
    std::string wanted(input.samples.size() * (format == kWav16 ? 2 : 4), '\0');
    for (size_t i = 0; i < input.samples.size(); ++i) {
      const int32_t sample = format == kWav16 ? input.samples[i] / 65536 : input.samples[i];
      memcpy(&wanted[i * (format == kWav16 ? 2 : 4)], &sample, format == kWav16 ? 2 : 4);
    }
    EXPECT_TRUE(wanted == Stored()) << format;
  }
  WriteFile(Path("x.json"), R"({"In": {"Lpcm": {"file": "in.wav"}},
                                "SpeakerOutput": {"Mixer": {}, "SpeakerOutput": {"file": "alsa:null"}}})");
  EXPECT_THAT(PlayFast({"--config", Path("x.json")}).out, HasSubstr("in order to alsa:null"));
}

TEST_F(SoundCards, ThatAreNotThereOrRefuseTheFormatAreNamedWithTheReason) {
  WriteFile(Path("asound.conf"),
            "</usr/share/alsa/alsa.conf>\n"
            "pcm.stereo { type multi slaves.a { pcm null channels 2 }\n"
            "  bindings.0 { slave a channel 0 } bindings.1 { slave a channel 1 } }\n");
  WriteAudio(Path("in.wav"), Noise(6, kWav16, 1000));
  const std::string configuration = "export ALSA_CONFIG_PATH=" + Path("asound.conf");
  const std::pair<const char *, const char *> faults[] = {
      {"alsa:no_such_card", "the sound card no_such_card cannot be opened: No such file or directory"},
      {"alsa:stereo",
       "the sound card stereo refuses 6 channels of 16 bits at 48000 Hz; a device such as plughw "
       "converts: Invalid argument"}};
  for (const auto &[output, reason] : faults) {
    const PlayerResult result = PlayFast({Path("in.wav"), "-o", output}, configuration);
    EXPECT_EQ(1, result.exitCode);
    EXPECT_EQ("kest-player: " + std::string(reason) + "\n", result.err);
  }
  EXPECT_EQ(
      0, PlayFast({Path("in.wav"), "-o", "alsa:stereo", "--mix", "1 0 0 0 0 0; 0 1 0 0 0 0"}, configuration)
             .exitCode);
}

TEST_F(SoundCards, GoOnAfterTheyRanEmptyAndEndTheRunWhenTheyAreUnplugged) {
  const std::vector<int16_t> samples(2000, 's' * 0x101);
  const int16_t *frames = samples.data();
  SoundCard card(Storing(), {2, 48000, SampleBits::k16});
  EXPECT_TRUE(card.Write(frames, 500));
  g_answers = {100, -EPIPE, 150, -EAGAIN, 0};
  EXPECT_FALSE(card.Write(frames + 1000, 500)) << "it ran empty in between";
  EXPECT_TRUE(g_answers.empty());
  g_answers = {-ENODEV};
  try {
    card.Write(frames, 500);
    ADD_FAILURE() << "it is unplugged";
  } catch (const player::PlayerError &error) {
    EXPECT_THAT(error.what(), HasSubstr("is gone or broken: No such device"));
  }
  card.Close();
  EXPECT_TRUE(std::string(4000, 's') == Stored()) << "nothing is lost or played twice";
}

}  // namespace
}  // namespace kest::test
