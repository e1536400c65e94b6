// SPDX-License-Identifier: Apache-2.0
// The hand-over between two pipelines.
#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "player/framework/pipeline_link.h"
#include "tests/player/port_access.h"

namespace kest::player {
namespace {

using Supply = PipelineLink::Supply;

using test::kMono;
using test::SampleAt;

constexpr std::chrono::microseconds kNoPatience{0};

// Appends consecutive numbers.
void Fill(PortStorage &port, uint32_t frames, int32_t &next) {
  ZE_KEST_PcmBuffer_s &pcm = port.Record().stPcm;
  for (uint32_t i = 0; i < frames; ++i) {
    SampleAt(port, pcm.sztPcmLevel + i) = next++;
  }
  pcm.sztPcmWriteSize = frames;
  port.Record().stMeta.sztWriteSize = frames / ZE_KEST_METADATA_SAMPLES * kMetadataBlockBytes;
  port.CommitWritten();
}

// Takes everything and expects consecutive numbers.
void Drain(PortStorage &port, int32_t &expected) {
  ZE_KEST_PcmBuffer_s &pcm = port.Record().stPcm;
  for (uint32_t i = 0; i < pcm.sztPcmLevel; ++i) {
    ASSERT_EQ(expected++, SampleAt(port, i));
  }
  pcm.sztPcmReadSize = pcm.sztPcmLevel;
  port.Record().stMeta.sztReadSize = port.MetadataBytesHeld();
  port.ReleaseRead();
}

struct Ends {
  PortStorage from{kMono, PortCapacity::ForFrames(300)};
  PipelineLink link{kMono, PortCapacity::ForFrames(700)};
  PortStorage to{kMono, PortCapacity::ForFrames(1000)};
};

TEST(PipelineLink, KeepsTheOrderAcrossThreadsAndWraps) {
  constexpr int32_t kFrames = 300 * 500;
  Ends ends;
  std::thread producer([&] {
    for (int32_t next = 0; next < kFrames;) {
      Fill(ends.from, 300, next);
      ends.link.Push(ends.from);
    }
    ends.link.End();
  });
  int32_t expected = 0;
  Supply supply = Supply::kReady;
  while (supply == Supply::kReady) {
    supply = ends.link.Pull(ends.to, 256, std::nullopt);
    Drain(ends.to, expected);
  }
  producer.join();
  EXPECT_EQ(Supply::kEnded, supply);
  EXPECT_EQ(kFrames, expected);
}

TEST(PipelineLink, AFullLinkHoldsTheProducerUntilItIsAbandoned) {
  Ends ends;
  std::atomic<int> handedOver{0};
  std::thread producer([&] {
    int32_t next = 0;
    do {
      Fill(ends.from, 300, next);
    } while (ends.link.Push(ends.from) && ++handedOver < 10);
  });
  while (handedOver < 2) {
    std::this_thread::yield();
  }
  ends.link.Abandon();
  producer.join();
  EXPECT_EQ(2, handedOver);
  EXPECT_EQ(Supply::kAbandoned, ends.link.Pull(ends.to, 1, std::nullopt));
}

TEST(PipelineLink, TellsLateDataFromTheEnd) {
  Ends ends;
  int32_t next = 0;
  int32_t expected = 0;
  EXPECT_EQ(Supply::kLate, ends.link.Pull(ends.to, 1, kNoPatience));
  Fill(ends.from, 300, next);
  ASSERT_TRUE(ends.link.Push(ends.from));
  EXPECT_EQ(Supply::kReady, ends.link.Pull(ends.to, 256, kNoPatience));
  EXPECT_EQ(Supply::kLate, ends.link.Pull(ends.to, 301, kNoPatience));
  ends.link.End();
  EXPECT_EQ(Supply::kEnded, ends.link.Pull(ends.to, 301, kNoPatience));
  Drain(ends.to, expected);
  EXPECT_EQ(300, expected);
}

}  // namespace
}  // namespace kest::player
