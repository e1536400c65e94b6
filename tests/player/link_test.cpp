// SPDX-License-Identifier: Apache-2.0
// How a pipeline that waits for data tells why there is none.
#include <gtest/gtest.h>

#include "player/framework/pipeline_link.h"
#include "tests/player/port_access.h"

namespace kest::player {
namespace {

using Supply = PipelineLink::Supply;

using test::kMono;

constexpr std::chrono::microseconds kNoPatience{0};

TEST(PipelineLink, TellsLateDataFromTheEnd) {
  PortStorage from(kMono, PortCapacity::ForFrames(300));
  PipelineLink link(kMono, PortCapacity::ForFrames(700));
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

}  // namespace
}  // namespace kest::player
