// SPDX-License-Identifier: Apache-2.0
// How a pipeline waits for data, and what its ports tell of them.
#include <thread>

#include "player/config/layout.h"
#include "player/filters/lpcm.h"
#include "player/filters/mixer.h"
#include "player/framework/pipeline_link.h"
#include "player/session/playback.h"
#include "tests/player/player_test.h"
#include "tests/player/port_access.h"

namespace kest::player {
namespace {

using Supply = PipelineLink::Supply;

using test::kMono;

constexpr std::chrono::microseconds kNoPatience{0};

TEST(PipelineLink, TellsLateDataFromTheEnd) {
  PortStorage from(kMono, PortCapacity::ForFrames(300));
  PipelineLink link(kMono, PortCapacity::ForFrames(700), 1);
  PortStorage to(kMono, PortCapacity::ForFrames(1000));
  EXPECT_EQ(Supply::kLate, link.Pull(to, 1, kNoPatience));
  from.Record().stPcm.sztPcmWriteSize = 300;
  from.CommitWritten();
  ASSERT_TRUE(link.Push(from));
  EXPECT_EQ(Supply::kReady, link.Pull(to, 256, kNoPatience));
  EXPECT_EQ(Supply::kLate, link.Pull(to, 301, kNoPatience));
  link.End();
  EXPECT_EQ(Supply::kEnded, link.Pull(to, 301, kNoPatience));
  EXPECT_EQ(300u, to.Record().stPcm.sztPcmLevel);
}

// Both sides wait again and again, and each for less than the other has when it goes to sleep.
TEST(PipelineLink, LetsNoSideSleepForEverWhateverTheSizes) {
  constexpr uint32_t kCapacity = 700;
  constexpr uint32_t kFrames = 300 * 1000;
  for (const uint32_t wakeFrames : {1u, kCapacity / 2, kCapacity}) {
    PipelineLink link(kMono, PortCapacity::ForFrames(kCapacity), wakeFrames);
    std::thread producer([&link] {
      PortStorage from(kMono, PortCapacity::ForFrames(300));
      for (uint32_t pushed = 0; pushed < kFrames; pushed += 300) {
        from.Record().stPcm.sztPcmWriteSize = 300;
        from.CommitWritten();
        link.Push(from);
      }
      link.End();
    });
    PortStorage to(kMono, PortCapacity::ForFrames(2 * kCapacity));
    uint32_t pulled = 0;
    for (Supply supply = Supply::kReady; supply == Supply::kReady;) {
      supply = link.Pull(to, kCapacity + 1 + pulled % 500, std::nullopt);
      to.Record().stPcm.sztPcmReadSize = to.FramesHeld();
      pulled += to.FramesHeld();
      to.ReleaseRead();
    }
    producer.join();
    EXPECT_EQ(kFrames, pulled);
  }
}

class SlowLpcm : public Lpcm {
 public:
  using Lpcm::Lpcm;

 protected:
  void Process() override {
    std::this_thread::sleep_for(std::chrono::milliseconds(12));  // a cycle lasts 5
    Lpcm::Process();
  }
};

uint64_t g_underrunsOfSlowInput = 0;

class WatchedMixer : public Mixer {
 public:
  using Mixer::Mixer;
  void Finish() override { g_underrunsOfSlowInput = Record().apstInPort[1]->stPcm.u64PcmXrunCount; }
};

using LateInput = test::PlayerTest;

TEST_F(LateInput, IsCountedInRealTimeOnlyAndTheMixIsRight) {
  FilterKind slowLpcm = Lpcm::kKind;
  slowLpcm.make = [](const FilterLayout &, const FilterMaterial &material) -> std::unique_ptr<Filter> {
    return std::make_unique<SlowLpcm>(material.format, std::move(*material.reader), material.source, false);
  };
  FilterKind watchedMixer = Mixer::kKind;
  watchedMixer.make = [](const FilterLayout &, const FilterMaterial &material) -> std::unique_ptr<Filter> {
    return std::make_unique<WatchedMixer>(material.format);
  };
  const test::AudioData inTime = test::WriteNoise(Path("a.wav"), 2, test::kWav16, 5001, 1);
  const test::AudioData late = test::WriteNoise(Path("b.wav"), 2, test::kWav16, 4001, 2);
  Options options = Fast({Path("a.wav"), Path("b.wav")});
  Layout layout = MakeLayout(options, BuiltInKinds());
  layout.inputs[1].filters[0].kind = &slowLpcm;
  layout.output.filters[0].kind = &watchedMixer;
  for (const bool fast : {true, false}) {
    options.fast = fast;
    Playback playback(layout, options);
    playback.Start();
    playback.Finish();
    EXPECT_EQ(!fast, g_underrunsOfSlowInput > 0);
    test::Samples mix = test::SaturatedSum(inTime.samples, late.samples);
    for (int32_t &sample : mix)
      sample &= ~0xFFFF;
    EXPECT_TRUE(mix == test::ReadAudio(out_).samples) << fast;
  }
}

TEST(PcmFormat, LeavesTheSlotsBehindItsChannelsWithoutAChannel) {
  const ZE_KEST_PcmGroup_s group = PcmFormat{3, 48000, 16}.Groups()[1];
  EXPECT_THAT(group.as32ChMap, testing::ElementsAre(2, 3, 4, -1, -1, -1, -1, -1, -1, -1));
}

// Time stamps are those of the oldest frame and of the oldest block that the port holds.
TEST(PortStorage, TellsHowMuchItHoldsAndSinceWhen) {
  PortStorage port(kMono, {600, 3});
  const ZE_KEST_PcmBuffer_s &pcm = port.Record().stPcm;
  const ZE_KEST_DataBuffer_s &metadata = port.Record().stMeta;
  for (uint32_t cycle = 1; cycle <= 200; ++cycle) {
    port.Record().stPcm.sztPcmWriteSize = 300;
    port.Record().stMeta.sztWriteSize = kMetadataBlockBytes;
    port.CommitWritten();
    EXPECT_EQ(300u, pcm.sztPcmLevel);
    EXPECT_EQ(300u, pcm.sztPcmSpace);
    EXPECT_EQ(kMetadataBlockBytes, metadata.sztLevel);
    EXPECT_EQ(2 * kMetadataBlockBytes, metadata.sztSpace);
    port.Record().stPcm.sztPcmReadSize = 300;
    port.Record().stMeta.sztReadSize = kMetadataBlockBytes;
    port.ReleaseRead();
    EXPECT_TRUE(port.IsEmpty());
    EXPECT_EQ(cycle * 300 % 600, pcm.sztPcmReadOffset);
    EXPECT_EQ(cycle % 3 * kMetadataBlockBytes, metadata.sztReadOffset);
    EXPECT_EQ(cycle * 6250, pcm.s64PcmPts);
    EXPECT_EQ(cycle * 16000 / 3, metadata.s64Pts);
    EXPECT_EQ(0u, pcm.sztPcmWriteSize + pcm.sztPcmReadSize + metadata.sztWriteSize + metadata.sztReadSize);
  }
}

}  // namespace
}  // namespace kest::player
