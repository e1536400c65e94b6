// SPDX-License-Identifier: Apache-2.0
// What is planted in a recording is found, and nothing in clean ones.
#include <cmath>
#include <random>

#include "ctl/audio/checks.h"
#include "ctl/audio/reference.h"
#include "tests/ctl/ctl_test.h"

namespace kest::test {
namespace {

using testing::HasSubstr;

constexpr unsigned kRate = 48000;
constexpr double kFull = 32767.0;

using Sound = std::vector<double>;  // in steps of 16 bits

Sound Recorded(const std::string &path) {
  Sound sound;
  for (const int32_t sample : ReadAudio(path).samples)
    sound.push_back(sample / 65536.0);
  return sound;
}

Sound Tone(double hz, double amplitude, size_t frames = 2 * kRate) {
  Sound sound(frames);
  for (size_t i = 0; i < frames; ++i)
    sound[i] = amplitude * std::sin(2.0 * M_PI * hz * static_cast<double>(i) / kRate);
  return sound;
}

void AddNoise(Sound &sound, double rms) {
  std::mt19937 random(1);
  std::normal_distribution<double> noise(0.0, rms);
  for (double &sample : sound)
    sample += noise(random);
}

double PeakOf(const Sound &sound) {
  double peak = 0.0;
  for (const double sample : sound)
    peak = std::max(peak, std::abs(sample));
  return peak;
}

// As 16-bit samples, rounded or, as integer arithmetic does it, cut.
Samples Quantised(const Sound &sound, double gain, bool cut = false) {
  Samples samples;
  samples.reserve(sound.size());
  for (const double sample : sound) {
    const double value = cut ? std::floor(sample * gain) : std::nearbyint(sample * gain);
    samples.push_back(static_cast<int32_t>(std::clamp(value, -kFull - 1.0, kFull)) * 65536);
  }
  return samples;
}

ctl::ChannelReport Check(Samples samples, std::optional<double> leastSnrDb = {}) {
  return ctl::CheckChannel(ctl::SignalOf(std::move(samples), kRate), leastSnrDb);
}

std::string KindsOf(const ctl::Flaws &flaws) {
  std::string kinds;
  for (const ctl::Flaw &flaw : flaws)
    kinds += std::string(kinds.empty() ? "" : " ") + flaw.kind;
  return kinds;
}

TEST(Check, FindsNothingInCleanRecordingsAtAnyGain) {
  int recordings = 0;
  for (const auto &entry : std::filesystem::directory_iterator("/usr/share/sounds/alsa")) {
    const Sound sound = Recorded(entry.path());
    ++recordings;
    const double fullScale = kFull / PeakOf(sound);
    for (const double gain : {fullScale, 0.5, 0.03, 0.003}) {
      EXPECT_EQ("", KindsOf(Check(Quantised(sound, gain)).flaws)) << entry.path() << " " << gain;
      EXPECT_EQ("", KindsOf(Check(Quantised(sound, gain, true)).flaws)) << entry.path() << " cut " << gain;
    }
    Samples fine;
    for (const double sample : sound)
      fine.push_back(static_cast<int32_t>(sample * 65536.0 * 0.0371));
    EXPECT_EQ("", KindsOf(Check(fine).flaws)) << entry.path();
  }
  EXPECT_LE(9, recordings);
}

TEST(Check, FindsNothingInCleanTones) {
  for (const double hz : {50.0, 997.0, 1000.0, 15000.0}) {
    for (const double amplitude : {kFull, 300.0, 20.0}) {
      const ctl::ChannelReport report = Check(Quantised(Tone(hz, amplitude), 1.0));
      EXPECT_EQ("", KindsOf(report.flaws)) << hz << " " << amplitude;
      ASSERT_TRUE(report.sine) << hz << " " << amplitude;
      EXPECT_NEAR(hz, report.sine->hz, 0.01);
      EXPECT_NEAR(amplitude / 32768.0, report.sine->amplitude, 0.03 * amplitude / 32768.0);
    }
  }
}

struct Plant {
  const char *name;
  const char *kind;
  bool inTone;
  void (*plant)(Sound &sound);
  double second;  // at which it is found
  double value;
  double tolerance;
};

constexpr size_t kPlace = 48000;  // in the middle of a word

void Clip(Sound &sound) {
  const double top = PeakOf(sound) / 2.0;
  for (double &sample : sound)
    sample = std::clamp(sample, -top, top);
}
void Click(Sound &sound) {
  sound[kPlace] += sound[kPlace] > 0 ? -16000.0 : 16000.0;
}
void Gap(Sound &sound) {
  std::fill_n(sound.begin() + kPlace, 256, 0.0);
}
void Hold(Sound &sound) {
  std::fill_n(sound.begin() + kPlace, 256, sound[kPlace - 1] + 100.0);
}
void Silence(Sound &sound) {
  const Sound pause(kRate, 0.0);
  sound.insert(sound.begin() + kPlace, pause.begin(), pause.end());
}
void RepeatOnce(Sound &sound) {
  const Sound block(sound.begin() + kPlace - 256, sound.begin() + kPlace);
  sound.insert(sound.begin() + kPlace, block.begin(), block.end());
}
void ReplayOld(Sound &sound) {
  std::copy_n(sound.begin() + kPlace - 1024, 512, sound.begin() + kPlace);
}
void Offset(Sound &sound) {
  for (double &sample : sound)
    sample += 1600.0;
}
void LoseABlock(Sound &sound) {
  sound.erase(sound.begin() + kPlace, sound.begin() + kPlace + 256);
}
void TurnAQuarter(Sound &sound) {
  sound.erase(sound.begin() + kPlace, sound.begin() + kPlace + 12);
}

constexpr Plant kPlants[] = {{"clipped", "clipping", false, Clip, -1, 0, 1e9},
                             {"clipped", "clipping", true, Clip, 0.0, 0, 1e9},
                             {"a click", "click", false, Click, 1.0, -6, 3},
                             {"a click", "click", true, Click, 1.0, -6, 3},
                             {"a gap", "gap", false, Gap, 1.0, 5.33, 0.1},
                             {"a gap", "gap", true, Gap, 1.0, 5.33, 0.1},
                             {"a sample that is held", "gap", false, Hold, 1.0, 5.33, 0.1},
                             {"silence", "silence", false, Silence, 1.0, 1000, 1},
                             {"a block twice", "repeat", false, RepeatOnce, 1.0, 5.33, 0.1},
                             {"an old block again", "repeat", false, ReplayOld, 1.0, 10.67, 0.1},
                             {"an offset", "dc", false, Offset, 0.0, 0.0488, 0.001},
                             {"an offset", "dc", true, Offset, 0.0, 0.0488, 0.001},
                             {"a lost block", "phase_jump", true, LoseABlock, 1.0, 120, 3},
                             {"a turned phase", "phase_jump", true, TurnAQuarter, 1.0, 90, 3}};

TEST(Check, FindsWhatIsPlantedAtAnyGain) {
  for (const Plant &plant : kPlants) {
    Sound sound = plant.inTone ? Tone(1000.0, 16000.0) : Recorded(kRecording);
    plant.plant(sound);
    for (const double gain : {1.0, 0.3, 0.05}) {
      const ctl::Flaws flaws = Check(Quantised(sound, gain)).flaws;
      const std::string what = std::string(plant.name) + (plant.inTone ? " in a tone" : " in speech") +
                               " at gain " + std::to_string(gain) + ": " + KindsOf(flaws);
      ASSERT_FALSE(flaws.empty()) << what;
      EXPECT_STREQ(plant.kind, flaws[0].kind) << what;
      if (plant.second < 0.0) continue;
      EXPECT_NEAR(plant.second, static_cast<double>(flaws[0].begin) / kRate, 0.002) << what;
      const bool isLevel = std::string("click") == plant.kind;
      const double value = isLevel                           ? flaws[0].value - 20.0 * std::log10(gain)
                           : std::string("dc") == plant.kind ? flaws[0].value / gain
                                                             : std::abs(flaws[0].value);
      EXPECT_NEAR(plant.value, value, plant.tolerance) << what;
      if (std::string("clipping") == plant.kind) continue;
      EXPECT_EQ(1u, flaws.size()) << what;
    }
  }
}

TEST(Check, TellsASilentChannelAndMeasuresTheSnrOfATone) {
  EXPECT_EQ("silence", KindsOf(Check(Samples(kRate, 0)).flaws));
  for (const double snr : {20.0, 40.0, 60.0, 80.0}) {
    Sound sound = Tone(997.0, 20000.0);
    AddNoise(sound, 20000.0 / std::sqrt(2.0) * std::pow(10.0, -snr / 20.0));
    const ctl::ChannelReport report = Check(Quantised(sound, 1.0), 50.0);
    ASSERT_TRUE(report.sine) << snr;
    EXPECT_NEAR(snr, report.sine->snrDb, 0.5);
    EXPECT_EQ(snr < 50.0 ? "noise" : "", KindsOf(report.flaws));
  }
}

TEST(Check, ComparesChannelsWithAReference) {
  std::vector<ctl::Signal> reference;
  for (const char *name : {"Front_Left", "Front_Right", "Rear_Left"})
    reference.push_back(
        ctl::SignalOf(ReadAudio(std::string("/usr/share/sounds/alsa/") + name + ".wav").samples, kRate));
  const Samples silent(48000, 0);
  const auto part = [&](size_t channel, double gain) {  // from elsewhere in it
    Samples samples(reference[channel].samples.begin() + 12345, reference[channel].samples.begin() + 60345);
    for (int32_t &sample : samples)
      sample = static_cast<int32_t>(sample * gain);
    return samples;
  };
  const struct {
    std::vector<Samples> recorded;
    std::vector<std::string> kinds;
  } kCases[] = {{{part(0, 1), part(1, 0.1), part(2, 0.5)}, {"", "", ""}},
                {{part(1, 1), part(0, 1), part(2, 1)}, {"swapped", "swapped", ""}},
                {{part(0, 1), silent, part(2, 1)}, {"", "missing", ""}},
                {{part(0, 1), part(1, -1)}, {"", "inverted", "missing"}},
                {{part(0, 1), part(1, 1), Noise(1, kWav16, 48000).samples}, {"", "", "different"}}};
  for (const auto &expected : kCases) {
    std::vector<ctl::Signal> recording;
    for (const Samples &samples : expected.recorded)
      recording.push_back(ctl::SignalOf(samples, kRate));
    std::vector<std::string> kinds;
    for (const ctl::ChannelVerdict &verdict : ctl::CompareChannels(recording, reference))
      kinds.emplace_back(verdict.kind);
    EXPECT_EQ(expected.kinds, kinds);
  }
}

class CheckCommand : public CtlTest {};

TEST_F(CheckCommand, SaysByItsExitCodeWhetherSomethingIsWrong) {
  EXPECT_EQ(0, Ctl(std::string("check ") + kRecording).exitCode);
  Sound sound = Recorded(kRecording);
  Gap(sound);
  WriteAudio(Path("gap.wav"), {1, 48000, kWav16, Quantised(sound, 1.0)});
  const CtlResult wrong = Ctl("check " + Path("gap.wav"));
  EXPECT_EQ(1, wrong.exitCode);
  EXPECT_THAT(wrong.out, HasSubstr("1.0000        1  gap    5.3333 ms"));
  const auto finding = CtlJson("check " + Path("gap.wav"))["data"]["findings"][0];
  EXPECT_EQ("gap", finding["kind"]);
  EXPECT_EQ(1, finding["channel"]);
  EXPECT_NEAR(1.0, finding["time"], 0.001);
  WriteAudio(Path("stereo.wav"), {2, 48000, kWav16, Noise(2, kWav16, 48000).samples});
  const auto compared = CtlJson("check " + Path("stereo.wav") + " --reference " + kRecording);
  EXPECT_EQ("different", compared["data"]["findings"][0]["kind"]);
  EXPECT_EQ(2, Ctl("check " KEST_CTL_SCHEMA).exitCode);
  EXPECT_EQ(2, Ctl("check /nowhere.wav").exitCode);
}

}  // namespace
}  // namespace kest::test
