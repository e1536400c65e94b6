// SPDX-License-Identifier: Apache-2.0
// What filters do when they are changed while they run, and when their output is full.
#include <chrono>
#include <cstring>
#include <thread>

#include "ze_kest/result.h"

#include "player/filters/delay.h"
#include "player/filters/lpcm.h"
#include "player/filters/metadata_counter.h"
#include "player/filters/playback_clock.h"
#include "player/filters/volume.h"
#include "player/framework/filter_entries.h"
#include "player/framework/parameter_text.h"
#include "tests/player/player_test.h"
#include "tests/player/port_access.h"

namespace kest::player {
namespace {

using test::BlockAt;
using test::kMono;
using test::SampleAt;

// A filter between two ports. The input counts up from 1, with its metadata.
class Bench {
 public:
  explicit Bench(Filter &filter) : filter_(filter), in_(kMono, filter.InputCapacity()) {
    filter_.SetParent(pipeline_);
    filter_.ConnectInput(in_);
    filter_.ConnectOutput(out_);
  }

  // Runs the cycles and gives what comes out of them.
  std::vector<int32_t> Run(uint32_t cycles, bool upstreamEnded = false) {
    std::vector<int32_t> played;
    for (uint32_t cycle = 0; cycle < cycles; ++cycle) {
      if (!upstreamEnded) WriteInput();
      filter_.RunCycle(upstreamEnded);
      TakeOutput(played);
    }
    return played;
  }

  void WriteInput() {
    ZE_KEST_PcmBuffer_s &pcm = in_.Record().stPcm;
    for (uint32_t i = 0; i < kCycleFrames; ++i)
      SampleAt(in_, pcm.sztPcmLevel + i) = ++lastSample_;
    pcm.sztPcmWriteSize = kCycleFrames;

    ZE_KEST_DataBuffer_s &metadata = in_.Record().stMeta;
    BlockAt(in_, metadata.sztLevel) = {
        1, kMetadataPayloadBytes, {}, blocks_, blocks_ * ZE_KEST_METADATA_SAMPLES};
    ++blocks_;
    metadata.sztWriteSize = kMetadataBlockBytes;
    in_.CommitWritten();
  }

  [[nodiscard]] uint64_t BlocksWritten() const { return blocks_; }
  [[nodiscard]] const MetadataCounter &Metadata() const { return metadata_; }
  [[nodiscard]] const ZE_KEST_PcmBuffer_s &OutputPcm() { return out_.Record().stPcm; }

 private:
  void TakeOutput(std::vector<int32_t> &played) {
    ZE_KEST_PcmBuffer_s &pcm = out_.Record().stPcm;
    for (uint32_t i = 0; i < pcm.sztPcmLevel; ++i)
      played.push_back(SampleAt(out_, i));
    pcm.sztPcmReadSize = pcm.sztPcmLevel;

    ZE_KEST_DataBuffer_s &metadata = out_.Record().stMeta;
    for (uint32_t offset = 0; offset < metadata.sztLevel; offset += kMetadataBlockBytes)
      metadata_.Count(BlockAt(out_, offset));
    metadata.sztReadSize = metadata.sztLevel;
    out_.ReleaseRead();
  }

  ZE_KEST_Pipeline_s pipeline_ = {};
  Filter &filter_;
  PortStorage in_;
  PortStorage out_{kMono, PortCapacity::ForFrames(1000)};
  int32_t lastSample_ = 0;
  uint64_t blocks_ = 0;
  MetadataCounter metadata_;
};

constexpr size_t kCycle = kCycleFrames;

// What the frames of a run should hold: silence, then numbers from the first on.
std::vector<int32_t> SilenceThenNumbers(size_t silence, int32_t first, size_t frames) {
  std::vector<int32_t> expected(frames, 0);
  for (size_t i = silence; i < frames; ++i)
    expected[i] = first++;
  return expected;
}

TEST(Delay, ChangesWhileItRuns) {
  Delay delay(kMono);
  Bench bench(delay);
  delay.SetDelayMs(10);
  EXPECT_EQ(SilenceThenNumbers(480, 1, 3 * kCycle), bench.Run(3));
  delay.SetDelayMs(20);  // 288 frames have come out
  EXPECT_EQ(SilenceThenNumbers(480, 289, 4 * kCycle), bench.Run(4));
  delay.SetDelayMs(5);  // 544 more have come out, 720 are skipped
  EXPECT_EQ(SilenceThenNumbers(0, 1553, 2 * kCycle), bench.Run(2));
  EXPECT_EQ(2064 / kCycle, bench.Metadata().Blocks()) << "metadata stays with its frames";
  EXPECT_EQ(SilenceThenNumbers(0, 2065, 240), bench.Run(2, true));
  EXPECT_TRUE(delay.Ended());
  EXPECT_EQ(bench.BlocksWritten(), bench.Metadata().Blocks());
  EXPECT_EQ(0u, bench.Metadata().OutOfOrder());
}

TEST(Delay, DropsALongDelayWithoutLosingMetadata) {
  Delay delay(kMono);
  Bench bench(delay);
  delay.SetDelayMs(5000);
  EXPECT_EQ(1000u, delay.DelayMs());
  bench.Run(200);
  delay.SetDelayMs(0);
  EXPECT_EQ(SilenceThenNumbers(0, 200 * 256 + 1, 100 * kCycle), bench.Run(100));
  EXPECT_EQ(bench.BlocksWritten(), bench.Metadata().Blocks());
  EXPECT_EQ(0u, bench.Metadata().OutOfOrder());

  delay.SetDelayMs(10);
  EXPECT_EQ(SilenceThenNumbers(480, 300 * 256 + 1, 4 * kCycle), bench.Run(4)) << "where sound was before";
}

TEST(Filter, CountsAnOutputWithoutRoomAndKeepsItsInput) {
  Volume volume(kMono);
  Bench bench(volume);
  for (int cycle = 0; cycle < 4; ++cycle) {
    bench.WriteInput();
    volume.RunCycle(false);
  }
  EXPECT_EQ(1000u, bench.OutputPcm().sztPcmLevel);
  EXPECT_EQ(0u, bench.OutputPcm().u64PcmXrunCount);
  volume.RunCycle(false);
  EXPECT_EQ(1u, bench.OutputPcm().u64PcmXrunCount);
  EXPECT_EQ(SilenceThenNumbers(0, 1, 4 * kCycle), bench.Run(2, true));
}

// Noise of the machine can only make the times longer.
TEST(PlaybackClock, HoldsBackWhatIsEarlyAndStartsOverWhenItIsLate) {
  using Clock = std::chrono::steady_clock;
  constexpr std::chrono::milliseconds kTenMs{10};
  PlaybackClock clock(48000);
  const Clock::time_point start = Clock::now();
  for (int cycle = 0; cycle < 10; ++cycle)
    clock.WaitFor(480);
  EXPECT_LE(9 * kTenMs, Clock::now() - start);
  std::this_thread::sleep_for(3 * kTenMs);
  const Clock::time_point late = Clock::now();
  EXPECT_FALSE(clock.WaitFor(480));
  clock.WaitFor(480);
  EXPECT_LE(kTenMs, Clock::now() - late);
}

template <typename Value>
Value Get(Filter &filter, const char *name) {
  Value value{};
  ZE_KEST_Filter_s &record = filter.Record();
  EXPECT_EQ(ZE_KEST_OK, record.pfnGetParameter(&record, name, &value, sizeof(value))) << name;
  return value;
}

template <typename Value>
uint32_t Set(Filter &filter, const char *name, Value value) {
  ZE_KEST_Filter_s &record = filter.Record();
  return record.pfnSetParameter(&record, name, &value, sizeof(value));
}

unsigned int Command(Filter &filter, std::string text) {
  return RunFilterCommand(&filter.Record(), reinterpret_cast<signed char *>(text.data()));
}

TEST(FilterEntries, ReadAndWriteWhatTheFilterWorksWith) {
  Volume volume(kMono);
  EXPECT_EQ(ZE_KEST_OK, Set(volume, "Gain", int32_t{-6}));
  EXPECT_EQ(ZE_KEST_OK, Set(volume, "Mute", uint32_t{7}));
  EXPECT_EQ(-6, volume.GainDb());
  EXPECT_EQ(-6, Get<int32_t>(volume, "Gain"));
  EXPECT_EQ(1u, Get<uint32_t>(volume, "Mute"));
  EXPECT_EQ(ZE_KEST_OK, Command(volume, "mute=off"));
  EXPECT_FALSE(volume.Mute());
  EXPECT_EQ(ZE_KEST_OK, Set(volume, "Gain", int32_t{1000}));
  EXPECT_EQ(Volume::kMaxGainDb, volume.GainDb());

  Delay delay(kMono);
  EXPECT_EQ(ZE_KEST_OK, Set(delay, "DelayTime", uint32_t{20}));
  EXPECT_EQ(20u, delay.DelayMs());
  EXPECT_EQ(20u, Get<uint32_t>(delay, "DelayTime"));
}

// A filter with a parameter of its own: tenths of a millisecond, signed, in two bytes.
TEST(ParameterText, ShowsTheValueWithItsUnitAndRange) {
  static int16_t value;
  const Parameter row = {"Skew",
                         "between channels",
                         {"ms", -32768, 32767, 1},
                         sizeof(value),
                         [](const Filter &, void *data) { memcpy(data, &value, sizeof(value)); },
                         [](Filter &, const void *) {}};
  const Volume volume(kMono);
  const std::tuple<int, const char *> values[] = {
      {0, "0.0"}, {-5, "-0.5"}, {10, "1.0"}, {-32768, "-3276.8"}, {32767, "3276.7"}};
  for (const auto &[number, text] : values) {
    value = static_cast<int16_t>(number);
    EXPECT_EQ("Skew = " + std::string(text) + " ms (-3276.8 to 3276.7)", ParameterText(volume, row));
  }
  EXPECT_EQ("between channels, ms, -3276.8 to 3276.7", DescriptionOf(row));
}

TEST(FilterEntries, RefuseWhatTheFilterDoesNotHaveAndChangeNothing) {
  Volume volume(kMono);
  volume.SetGainDb(3);
  ZE_KEST_Filter_s &record = volume.Record();
  uint64_t value = 0;
  for (const uint32_t size : {0u, 2u, 8u}) {
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, record.pfnGetParameter(&record, "Gain", &value, size));
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, record.pfnSetParameter(&record, "Gain", &value, size));
  }
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, record.pfnGetParameter(&record, "DelayTime", &value, 4));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, record.pfnGetParameter(&record, nullptr, &value, 4));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, record.pfnGetParameter(&record, "Gain", nullptr, 4));
  for (const char *text : {"", "mute", "mute=onward", "Gain"})
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, Command(volume, text)) << text;
  EXPECT_EQ(3, volume.GainDb());
  EXPECT_FALSE(volume.Mute());

  Delay delay(kMono);
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, Set(delay, "RawDelayTime", 20u)) << "it can only be read";
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, Command(delay, "mute=on"));
}

using LpcmInAFile = test::PlayerTest;

TEST_F(LpcmInAFile, CountsTheCompleteBlocksThatItHasDecoded) {
  test::WriteAudio(Path("in.wav"), test::Noise(1, test::kWav32, 1000));
  Lpcm lpcm(kMono, AudioReader(Path("in.wav")), 1, false);
  ZE_KEST_Pipeline_s pipeline = {};
  lpcm.SetParent(pipeline);
  PortStorage out(kMono, PortCapacity::ForFrames(2000));
  lpcm.ConnectOutput(out);
  for (const uint32_t blocks : {1u, 2u, 3u, 3u, 3u}) {
    lpcm.RunCycle(false);
    EXPECT_EQ(blocks, Get<uint32_t>(lpcm, "OkFrmCnt"));
  }
  EXPECT_TRUE(lpcm.Ended());
}

}  // namespace
}  // namespace kest::player
