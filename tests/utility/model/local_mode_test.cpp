// SPDX-License-Identifier: Apache-2.0
#include <filesystem>

#include <sys/mount.h>

#include "tests/support/library_test.h"

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
