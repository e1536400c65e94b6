// SPDX-License-Identifier: Apache-2.0
// LADSPA plug-ins of Debian's packages as filters.
#include "tests/player/player_test.h"

namespace kest::test {
namespace {

const std::string kLadspa = KEST_EXAMPLE_MODULES "/ladspa_host.so:Ladspa";

class LadspaPlugins : public PlayerTest {
 protected:
  [[nodiscard]] Samples Played(const std::string &plugin, const std::string &parameters) const {
    const PlayerResult result =
        PlayFast({Path("in.wav"), "-o", out_, "--module", kLadspa + parameters, "--module-config", plugin});
    EXPECT_EQ(0, result.exitCode) << result.err;
    EXPECT_THAT(result.out, HasSubstr("in order"));
    return ReadAudio(out_).samples;
  }
  static std::string Inspected(const std::string &plugin) {
    return PlayerProcess({"--inspect", kLadspa, "--module-config", plugin}).Wait().out;
  }
};

// 16 bits fit a float. An instance for each channel, and one for both.
TEST_F(LadspaPlugins, AmplifyExactlySaturateAndDelayByTheirLatency) {
  const Samples in = WriteNoise(Path("in.wav"), 2, kWav16, 5001).samples;
  for (const char *plugin : {"amp:amp_mono", "/usr/lib/ladspa/amp.so:amp_stereo"}) {
    EXPECT_TRUE(in == Played(plugin, "")) << plugin;
    const Samples loud = Played(plugin, ",Gain=4.0");
    ASSERT_EQ(in.size(), loud.size());
    for (size_t i = 0; i < in.size(); ++i) {
      const int64_t wanted = std::clamp<int64_t>(int64_t{in[i]} * 4, INT32_MIN, INT32_MAX & ~0xffff);
      ASSERT_EQ(wanted, loud[i]) << plugin << " sample " << i;
    }
  }
  // A limiter that has nothing to limit.
  WriteAudio(Path("in.wav"), {2, 48000, kWav16, Samples(2000, 1 << 24)});
  Samples late = Samples(2 * 240, 0);
  late.resize(late.size() + 2000, 1 << 24);
  EXPECT_TRUE(late == Played("fast_lookahead_limiter_1913:fastLookaheadLimiter", ""));
}

TEST_F(LadspaPlugins, ThatDoNotFitAreRefusedWithTheReason) {
  const std::pair<const char *, const char *> cases[] = {
      {"", "the configuration is FILE:LABEL"},
      {"nothing:x", "there is no nothing.so in /usr/lib/ladspa"},
      {"amp:x", "/usr/lib/ladspa/amp.so has no plug-in \"x\"; it has: amp_mono, amp_stereo"},
      {"./amp:x", "amp.so: cannot open shared object file"},
      {"noise:noise_white",
       "noise_white has 0 audio inputs and 1 audio output; for 2 channels one of each, or"}};
  for (const auto &[plugin, reason] : cases) {
    EXPECT_THAT(Inspected(plugin), HasSubstr(reason)) << plugin;
  }
}

TEST_F(LadspaPlugins, ShowTheirControlsAsParameters) {
  EXPECT_THAT(Inspected("filter:lpf"), HasSubstr("Cutoff_Frequency  440.000 Hz (0.000 to 24000.000)\n"));
  const std::string limiter = Inspected("fast_lookahead_limiter_1913:fastLookaheadLimiter");
  for (const char *line : {"latency  240 samples\n", "Input_gain  0.000 dB (-20.000 to 20.000)\n",
                           "Attenuation  0.000 dB (read only)\n", "NonFinite  0 (read only)"}) {
    EXPECT_THAT(limiter, HasSubstr(line));
  }
}

}  // namespace
}  // namespace kest::test
