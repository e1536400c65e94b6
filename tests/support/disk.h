// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <csignal>
#include <filesystem>

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include "tests/support/debug_layer.h"

namespace kest::test {

// While it lives, a write that begins beyond this many bytes of a file fails, and one that would end there is
// cut.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &stBefore_);
    const struct rlimit stLimit = {bytes, stBefore_.rlim_max};
    EXPECT_EQ(0, setrlimit(RLIMIT_FSIZE, &stLimit));
  }
  ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &stBefore_); }
  FileSizeLimit(const FileSizeLimit &) = delete;
  FileSizeLimit &operator=(const FileSizeLimit &) = delete;

 private:
  struct rlimit stBefore_ = {};
};

// A disk of its own over the debug directory, for a test that may mount.
class Disk {
 public:
  Disk(unsigned long u32Flags, const char *pszOptions) {
    EXPECT_EQ(0, mount("kest-test", KEST_DEBUG_DIR, "tmpfs", u32Flags, pszOptions));
  }
  ~Disk() { EXPECT_EQ(0, umount2(KEST_DEBUG_DIR, MNT_DETACH)); }
  Disk(const Disk &) = delete;
  Disk &operator=(const Disk &) = delete;

  static void Fill() {
    WriteFile(kFiller, std::string(4 << 20, '.'));
    EXPECT_EQ(0u, std::filesystem::space(KEST_DEBUG_DIR).available);
  }
  static void MakeRoom() { std::filesystem::remove(kFiller); }

 private:
  static constexpr const char *kFiller = KEST_DEBUG_DIR "filler";
};

}  // namespace kest::test
