// SPDX-License-Identifier: Apache-2.0
// What a playback leaves in the registry of its process, and its end while the registry is in use.
#include <atomic>
#include <optional>
#include <thread>

#include <android/log.h>

#include "player/config/layout.h"
#include "player/session/playback.h"
#include "tests/player/player_test.h"

namespace kest::player {
namespace {

constexpr int kFlac = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;

bool Takes(const char *command) {
  return ze_kest_Debug_SetParameter(command) == ZE_KEST_OK;
}

// Asks the last filter that is registered.
bool IsPlaying() {
  return Takes("kest_debug_send_cmd_by_text=Decoder_14,Volume,state");
}

// An empty registry has nothing to release.
bool NothingIsRegistered() {
  return !Takes("kest_debug_node=release");
}

class PlaybackRegistration : public test::PlayerTest {
 protected:
  PlaybackRegistration() {
    __android_log_set_logger([](const __android_logger_data *, const char *) {});
    test::WriteAudio(Path("in.flac"), test::Noise(2, kFlac, 20000));
  }

  [[nodiscard]] Options Fast() const { return PlayerTest::Fast({Path("in.flac"), Path("in.flac")}); }
  [[nodiscard]] Options Endless() const {
    Options options = Fast();
    options.fast = false;
    options.loop = true;
    return options;
  }

  const Layout layout_ = MakeLayout(Fast(), BuiltInKinds());

 private:
  test::DebugLayer debugLayer_;
};

TEST_F(PlaybackRegistration, EndsWithTheRunHoweverThatEnds) {
  std::optional<Playback> playback(std::in_place, layout_, Fast());
  EXPECT_TRUE(NothingIsRegistered()) << "before the start";
  playback->Start();
  playback->Finish();
  EXPECT_TRUE(NothingIsRegistered()) << "at the end of the inputs";

  playback.emplace(layout_, Endless()).Start();
  EXPECT_TRUE(IsPlaying());
  playback->RequestStop();
  playback->Finish();
  EXPECT_TRUE(NothingIsRegistered()) << "stopped";

  playback.emplace(layout_, Endless()).Start();
  EXPECT_TRUE(IsPlaying());
  playback.reset();
  EXPECT_TRUE(NothingIsRegistered()) << "destroyed while it played";

  test::Damage(Path("in.flac"), 30000);
  playback.emplace(layout_, Fast()).Start();
  EXPECT_ANY_THROW(playback->Finish());
  EXPECT_TRUE(NothingIsRegistered()) << "a damaged input";
}

TEST_F(PlaybackRegistration, FiltersAreCalledUntilTheyGoAndNotAfter) {
  std::atomic<bool> done{false};
  std::thread engineer([&] {
    while (!done) {
      for (const char *command :
           {"kest_debug_list=print", "kest_debug_list=status", "kest_debug_send_cmd=2,state",
            "kest_debug_set_parameter=Decoder_14,Volume,Gain,-6,4",
            "kest_debug_set_parameter=SpeakerOutput,Delay,DelayTime,1,4"})
        Takes(command);
    }
  });
  for (int i = 0; i < 50; ++i) {
    Playback playback(layout_, Fast());
    playback.Start();
    if (i % 2 == 0) playback.Finish();
  }
  done = true;
  engineer.join();
  EXPECT_TRUE(NothingIsRegistered());
}

}  // namespace
}  // namespace kest::player
