// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/library_test.h"

namespace kest::test {
namespace {

constexpr const char *kBlockFile = KEST_DEBUG_DIR "shm_blk";
constexpr const char *kLockFile = KEST_DEBUG_DIR "shm_flock_blk";

struct Block {
  int s32Fd = -1;
  int s32LockFd = -1;
  void *pvAddr = nullptr;

  uint32_t Alloc(const char *pszName = "blk") {
    return ze_kest_Utility_ShmAlloc(pszName, &s32Fd, &s32LockFd, &pvAddr);
  }
  [[nodiscard]] uint32_t Free(const char *pszName = "blk") const {
    return ze_kest_Utility_ShmFree(pszName, &s32Fd, &s32LockFd, pvAddr);
  }
  [[nodiscard]] char *Text() const { return static_cast<char *>(pvAddr); }
};

class Shm : public testing::Test {
 protected:
  void SetUp() override {
    EmptyDebugDirectory();
    const ReportCapture capture;  // the first report of the process opens the shared settings
    descriptors_ = OpenDescriptors();
  }
  // Whatever a case does, on success and on failure, no descriptor stays open.
  void TearDown() override { EXPECT_EQ(descriptors_, OpenDescriptors()); }

 private:
  std::ptrdiff_t descriptors_ = 0;
};

}  // namespace

TEST_F(Shm, ANewBlockIsZeroedSharedByAllUsersAndLeavesItsUmask) {
  umask(0137);
  Block block;
  ASSERT_EQ(ZE_KEST_OK, block.Alloc());
  EXPECT_EQ(077u, umask(022));
  for (const char *pszFile : {kBlockFile, kLockFile})
    EXPECT_EQ(std::filesystem::perms(0666), std::filesystem::status(pszFile).permissions()) << pszFile;
  EXPECT_EQ(3072u, std::filesystem::file_size(kBlockFile));
  EXPECT_TRUE(std::all_of(block.Text(), block.Text() + ZE_KEST_SHM_SIZE, [](char c) { return c == 0; }));
  EXPECT_EQ(ZE_KEST_OK, block.Free());
  EXPECT_FALSE(std::filesystem::exists(kBlockFile));
  EXPECT_FALSE(std::filesystem::exists(kLockFile));
}

TEST_F(Shm, ABlockThatIsEmptiedAsSoonAsItExistsDoesNotKillItsCreator) {
  const ReportCapture capture(ZE_KEST_LEVEL_PRINT);
  std::atomic<bool> bDone{false};
  std::thread vandal([&bDone] {
    while (!bDone)
      static_cast<void>(truncate(kBlockFile, 0) == 0);
  });
  for (int i = 0; i < 5000; ++i) {
    Block block;
    EXPECT_EQ(ZE_KEST_OK, block.Alloc());
    EXPECT_EQ(ZE_KEST_OK, block.Free());
  }
  bDone = true;
  vandal.join();
}

TEST_F(Shm, AnotherProcessSharesABlockAndOneItFreesStaysMappedWhileItsNameStartsAnew) {
  Block first;
  ASSERT_EQ(ZE_KEST_OK, first.Alloc());
  strcpy(first.Text(), "from the first");
  EXPECT_EQ(0, InAnotherProcess([] {
              const ReportCapture capture;
              Block other;
              EXPECT_EQ(ZE_KEST_OK, other.Alloc());
              EXPECT_STREQ("from the first", other.Text());
              EXPECT_THAT(capture.Texts("<INFO>"),
                          ElementsAre(StartsWith("Open an existed shared memory="), StartsWith("ShmPath="),
                                      EndsWith(", bNewCreate=0\n"),
                                      StartsWith("Open an existed flock shared memory="),
                                      StartsWith("ShmFlockPath=")));
              strcpy(other.Text(), "from the second");
              EXPECT_EQ(ZE_KEST_OK, other.Free());
            }));
  EXPECT_STREQ("from the second", first.Text());
  Block second;
  ASSERT_EQ(ZE_KEST_OK, second.Alloc());
  EXPECT_EQ(0, second.Text()[0]);
  EXPECT_EQ(ZE_KEST_OK, second.Free());

  const ReportCapture capture;
  EXPECT_EQ(ZE_KEST_OK, first.Free());
  const std::string end = " fails, errno=No such file or directory\n";
  EXPECT_EQ((Texts{"Err! unlink " + (kLockFile + end), "Err! unlink " + (kBlockFile + end)}),
            capture.Texts("<ERR>"));
}

TEST_F(Shm, WhatCannotBeOpenedFailsWithItsReport) {
  const ReportCapture capture;
  Block block;
  std::filesystem::create_directory(kBlockFile);
  EXPECT_EQ(ZE_KEST_NOT_INITIALISED, block.Alloc());
  EXPECT_TRUE(capture.Has(
      "<ERR>", std::string("Err! Shm init (") + kBlockFile + ") return -1, errno=(21, Is a directory)\n"));
  std::filesystem::remove(kBlockFile);

  std::filesystem::create_directory(kLockFile);
  EXPECT_EQ(ZE_KEST_NOT_INITIALISED, block.Alloc());
  EXPECT_EQ(nullptr, block.pvAddr);
  EXPECT_FALSE(std::filesystem::exists(kBlockFile));
  EXPECT_TRUE(capture.Has(
      "<ERR>", std::string("Err! file lock path ") + kLockFile + ", return -1, errno=Is a directory\n"));

  std::filesystem::remove_all(KEST_DEBUG_DIR);
  EXPECT_EQ(ZE_KEST_NOT_INITIALISED, block.Alloc());
  EXPECT_TRUE(capture.Has("<ERR>", std::string("Err! Shm create (") + kBlockFile +
                                       ") return -1, errno=(2, No such file or directory)\n"));
  EXPECT_EQ("ze_kest_Utility_ShmAlloc", capture.Reports().back().function);
}

TEST_F(Shm, ANameThatIsTooLongIsCut) {
  const std::string longName(200, 'n');
  Block block;
  ASSERT_EQ(ZE_KEST_OK, block.Alloc(longName.c_str()));
  const std::string path = (KEST_DEBUG_DIR "shm_" + longName).substr(0, 127);
  EXPECT_TRUE(std::filesystem::exists(path));
  EXPECT_EQ(ZE_KEST_OK, block.Free(longName.c_str()));
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(Shm, MissingArgumentsAreReportedAndAnswered) {
  const ReportCapture capture;
  Block block;
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, block.Alloc(nullptr));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT,
            ze_kest_Utility_ShmAlloc("n", nullptr, &block.s32LockFd, &block.pvAddr));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_ShmAlloc("n", &block.s32Fd, nullptr, &block.pvAddr));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_ShmAlloc("n", &block.s32Fd, &block.s32LockFd, nullptr));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, block.Free(nullptr));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_ShmFree("n", nullptr, &block.s32LockFd, &block));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_ShmFree("n", &block.s32Fd, nullptr, &block));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, block.Free());
  EXPECT_EQ(8u, capture.Texts("<ERR>").size());
  EXPECT_FALSE(std::filesystem::exists(KEST_DEBUG_DIR "shm_n"));
}

}  // namespace kest::test
