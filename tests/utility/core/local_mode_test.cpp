// SPDX-License-Identifier: Apache-2.0
#include <filesystem>

#include <gtest/gtest.h>
#include <sys/mount.h>

#include "ze_kest/utility.h"

#include "tests/support/debug_layer.h"

TEST(LocalMode, IsOnWhenThePlatformsSoundCardIsThere) {
  if (!kest::test::MayMount()) GTEST_SKIP() << "no namespace of its own to mount in";
  ASSERT_EQ(0, mount("none", "/proc", "tmpfs", 0, nullptr));
  EXPECT_FALSE(ze_kest_utility_IsLKESTMode());
  std::filesystem::create_directory("/proc/asound");
  kest::test::WriteFile("/proc/asound/qdrtvsndcard", "");
  EXPECT_TRUE(ze_kest_utility_IsLKESTMode());
  EXPECT_EQ(0, umount("/proc"));
  EXPECT_EQ(0u, ze_kest_utility_LkestCheckParentPipeline());
}
