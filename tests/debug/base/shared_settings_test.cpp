// SPDX-License-Identifier: Apache-2.0
#include "debug/base/shared_settings.h"

#include <atomic>
#include <filesystem>
#include <thread>

#include <unistd.h>

#include "tests/support/library_test.h"

namespace kest::test {
namespace {

constexpr const char *kBlockFile = KEST_DEBUG_DIR "shm_global";

TEST(SharedSettings, SurviveABlockThatIsEmptiedShortenedAndFilledAgainAllTheTime) {
  const DebugLayer layer;
  const ReportCapture capture(ZE_KEST_LEVEL_PRINT);
  std::atomic<bool> bDone{false};
  std::thread vandal([&bDone] {
    while (!bDone) {
      for (const off_t s32Size : {0, 3072, 100, 3072})
        EXPECT_EQ(0, truncate(kBlockFile, s32Size));
    }
  });
  PresetText szText;
  kest::SharedSettings stOwn;
  kest::SharedSettings stShared;
  for (uint32_t i = 0; i < 100000; ++i) {
    EXPECT_EQ(ZE_KEST_OK, SetPresetCommand("a=b"));
    if (CopyPresetCommand(szText)) {
      EXPECT_TRUE(*szText == '\0' || *szText == 'a');
    }
    CopySharedSettings(&stOwn, &stShared);
  }
  bDone = true;
  vandal.join();
}

TEST(SharedSettings, ABlockThatWasEmptiedCountsAsNoneUntilAProcessSetsItAgain) {
  PresetText szText;
  EXPECT_FALSE(CopyPresetCommand(szText));  // nobody has set one, and there is no block
  const DebugLayer layer;
  Command("kest_debug_preset_cmd=all,own=one");
  std::filesystem::resize_file(kBlockFile, 260);  // all but the flag
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Debug_SetParameter("kest_print_current_shm"));
  EXPECT_TRUE(CopyPresetCommand(szText));
  EXPECT_STREQ("own=one", szText);

  Command("kest_log_level=wrn");
  const ReportCapture capture(ZE_KEST_LEVEL_WRN);
  Command("kest_print_current_shm");
  EXPECT_TRUE(capture.Has("<PRINT>", "DebugLevel:0x30,0x30\n"));
  EXPECT_TRUE(capture.Has("<PRINT>", "DebugPresetCmd:own=one,own=one\n"));
}

TEST(SharedSettings, ATextOfAnotherProcessWithoutAnEndIsCut) {
  const DebugLayer layer;
  WriteFile(kBlockFile, std::string("\1\0\0\0", 4) + std::string(256, 'x') + '\1');
  const ReportCapture capture(ZE_KEST_LEVEL_PRINT);
  Command("kest_print_current_shm");
  EXPECT_EQ(1, capture.Count("<PRINT>", "DebugPresetCmd:," + std::string(255, 'x') + "\n"));
}

TEST(SharedSettings, APresetTextIsReportedAsItIsKeptAndAMissingOneRefused) {
  const ReportCapture capture;
  EXPECT_EQ(ZE_KEST_OK, SetPresetCommand(std::string(300, 't').c_str()));
  EXPECT_EQ(1, capture.Count("<INFO>", "szPresetCmd:" + std::string(255, 't') + "\n"));
  EXPECT_EQ(ZE_KEST_FAILED, SetPresetCommand(nullptr));
  EXPECT_EQ(1, capture.Count("<ERR>", "Err! Strncpy failed!\n"));
}

}  // namespace
}  // namespace kest::test
