// SPDX-License-Identifier: Apache-2.0
#include <cmath>
#include <filesystem>

#include <gtest/gtest.h>
#include <sys/mount.h>

#include "ze_kest/utility.h"

#include "tests/support/debug_layer.h"
#include "tests/support/report_capture.h"

using kest::test::ReportCapture;

TEST(EnumNames, FirstAndLastNameOfEveryEnumerationAndUnkownBehindThem) {
  struct {
    const char *(*pfnName)(uint32_t);
    const char *pszFirst;
    uint32_t u32Last;
    const char *pszLast;
  } const aCases[] = {{ze_kest_Utility_DecPlayTypeEnumString, "DTV", 6, "TLV_PARSER"},
                      {ze_kest_Utility_FilterDecTypeEnumString, "DUMMY", 20, "C3DA"},
                      {ze_kest_Utility_DecodeFormatEnumString, "LPCM", 25, "FLAC"},
                      {ze_kest_Utility_DigitalOutputEnumString, "Not Connected", 7, "DTSHD"},
                      {ze_kest_Utility_MpeghStreamTypeEnumString, "MHM1", 4, "LC_L3"}};
  for (const auto &names : aCases) {
    EXPECT_STREQ(names.pszFirst, names.pfnName(0));
    EXPECT_STREQ(names.pszLast, names.pfnName(names.u32Last));
    EXPECT_STREQ("Unkown", names.pfnName(names.u32Last + 1));
    EXPECT_STREQ("Unkown", names.pfnName(UINT32_MAX));
  }
  EXPECT_STREQ("OPUS", ze_kest_Utility_FilterDecTypeEnumString(18));
  EXPECT_STREQ("MSADPCM", ze_kest_Utility_DecodeFormatEnumString(15));
}

TEST(FixedPointDb, IsTheGainOfEveryWholeDecibelThatFits) {
  EXPECT_EQ(0x800000u, ze_kest_Utility_FixedPtDb(0));
  for (int s32Db = -120; s32Db <= 54; ++s32Db) {
    const double f64Exact = std::pow(10.0, s32Db / 20.0) * 0x800000;
    const double f64Gain = ze_kest_Utility_FixedPtDb(s32Db);
    EXPECT_NEAR(f64Exact, f64Gain, f64Exact * 2e-5 + 2) << s32Db;
  }
  EXPECT_EQ(0u, ze_kest_Utility_FixedPtDb(-255));
}

TEST(PcmRate, ZeroFieldsStandForTheirDefaults) {
  ZE_KEST_PcmInfo_s stFormat = {};
  EXPECT_EQ(192u, ze_kest_Utility_BytesPerMs(&stFormat));
  stFormat.u32TotalChannels = 2;
  stFormat.u32SampleRate = 44100;
  stFormat.u32BitWidth = 16;
  EXPECT_EQ(176u, ze_kest_Utility_BytesPerMs(&stFormat));
  stFormat.u32TotalChannels = 6;
  stFormat.u32BitWidth = 24;
  EXPECT_EQ(3u * 6 * 44, ze_kest_Utility_BytesPerMs(&stFormat));
  const ReportCapture capture;
  EXPECT_EQ(0u, ze_kest_Utility_BytesPerMs(nullptr));
  EXPECT_TRUE(capture.Has("<ERR>", "pstFormat is NULL."));
}

TEST(Clock, ADeadlineLiesTheGivenTimeAheadWithNormalisedNanoseconds) {
  for (const uint64_t u64Us : {uint64_t{0}, uint64_t{999999}, uint64_t{5000000}, uint64_t{1999999}}) {
    struct timespec stBefore = {};
    struct timespec stDeadline = {};
    struct timespec stAfter = {};
    clock_gettime(CLOCK_MONOTONIC, &stBefore);
    ze_kest_Utility_MicrosecondToTimespec(&stDeadline, u64Us);
    clock_gettime(CLOCK_MONOTONIC, &stAfter);
    const auto nanoseconds = [](const struct timespec &st) { return st.tv_sec * 1000000000LL + st.tv_nsec; };
    EXPECT_LT(stDeadline.tv_nsec, 1000000000);
    EXPECT_GE(nanoseconds(stDeadline), nanoseconds(stBefore) + static_cast<long long>(u64Us) * 1000);
    EXPECT_LE(nanoseconds(stDeadline), nanoseconds(stAfter) + static_cast<long long>(u64Us) * 1000);
  }
  const ReportCapture capture;
  ze_kest_Utility_MicrosecondToTimespec(nullptr, 1);
  EXPECT_TRUE(capture.Has("<ERR>", "pstOut is NULL."));
  ze_kest_Utility_DelayMs(0);
}

TEST(PipelineSleep, TheHigherPriorityDecidesAndTheFirstWakeUpStays) {
  ZE_KEST_Pipeline_s stPipeline = {};
  ZE_KEST_Filter_s stFilter = {};
  stFilter.pstParentPipeline = &stPipeline;
  const auto merge = [&](uint32_t u32Priority, int32_t s32Time, uint32_t u32WakeUp) {
    stFilter.u32SleepPriority = u32Priority;
    stFilter.s32SleepTime = s32Time;
    stFilter.u32WakeUp = u32WakeUp;
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_UpdatePipelineSleepConfiguration(&stFilter));
    return std::vector<int64_t>{stPipeline.u32SleepPriority, stPipeline.s32SleepTime, stPipeline.u32WakeUp};
  };
  using Settings = std::vector<int64_t>;
  EXPECT_EQ((Settings{0, 0, 0}), merge(0, 9, 0));   // equal, but zero: not a priority
  EXPECT_EQ((Settings{2, 5, 7}), merge(2, 5, 7));   // higher: takes all
  EXPECT_EQ((Settings{2, 4, 7}), merge(2, 4, 8));   // equal: takes the time
  EXPECT_EQ((Settings{2, 4, 7}), merge(2, -1, 8));  // equal with a negative time
  EXPECT_EQ((Settings{2, 4, 7}), merge(1, 9, 8));   // lower
  EXPECT_EQ((Settings{3, 4, 7}), merge(3, 0, 8));   // higher with no time of its own

  const ReportCapture capture;
  stFilter.pstParentPipeline = nullptr;
  strcpy(stFilter.szName, "Volume");
  EXPECT_EQ(ZE_KEST_FAILED, ze_kest_Utility_UpdatePipelineSleepConfiguration(&stFilter));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_UpdatePipelineSleepConfiguration(nullptr));
  EXPECT_EQ((std::vector<std::string>{"Error (0x00000003)! Pipeline should not be NULL in filter 'Volume'!\n",
                                      "pstFilter is NULL.\n"}),
            capture.Texts("<ERR>"));
}

TEST(SourceType, TheFirstSourceOfTheSearchOrderWins) {
  ZE_KEST_Filter_s stFilter = {};
  const auto sourceOf = [&stFilter](const char *pszConfig) {
    unsigned int eSource = 99;
    stFilter.pszConfig = pszConfig;
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_GetSourceType(&stFilter, &eSource));
    return eSource;
  };
  EXPECT_EQ(5u, sourceOf("a;InputSource=DTV;InputSource=MM"));
  EXPECT_EQ(3u, sourceOf("InputSource=DTV"));
  EXPECT_EQ(2u, sourceOf("InputSource=ATV"));
  EXPECT_EQ(4u, sourceOf("x InputSource=HDMI1"));
  EXPECT_EQ(1u, sourceOf("InputSource=ANALOG"));
  EXPECT_EQ(0u, sourceOf("InputSource="));
  EXPECT_EQ(0u, sourceOf(nullptr));

  const ReportCapture capture;
  unsigned int eSource = 0;
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_GetSourceType(nullptr, &eSource));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Utility_GetSourceType(&stFilter, nullptr));
  sourceOf("InputSource=MM");
  EXPECT_TRUE(capture.Has("<INFO>", "eSourceType:5\n"));
}

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
