// SPDX-License-Identifier: Apache-2.0
// Playbacks in which the library is refused memory and files, now and then and everywhere.
#include <atomic>

#include <dlfcn.h>

#include "player/config/layout.h"
#include "player/session/playback.h"
#include "tests/player/player_test.h"

namespace kest::test {
namespace {

std::atomic<bool> g_bScarce{false};
std::atomic<uint32_t> g_u32Seed{0};
std::atomic<uint32_t> g_u32Refused{0};

// Of every three requests about one.
bool IsRefused() {
  if (!g_bScarce) return false;
  const uint32_t u32Number = g_u32Seed.fetch_add(0x9E3779B9) * 2654435761u;
  if ((u32Number >> 16) % 3 != 0) return false;
  ++g_u32Refused;
  return true;
}

template <typename Function>
Function *Next(const char *pszName) {
  return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, pszName));
}

}  // namespace
}  // namespace kest::test

using kest::test::IsRefused;
using kest::test::Next;

// The library's own calls come here: the program's functions stand before the shared library's.

uint32_t ze_kest_Utility_MemoryAlloc(void **ppvOut, size_t sztSize) {
  static const auto pfn = Next<decltype(ze_kest_Utility_MemoryAlloc)>(__func__);
  if (!IsRefused()) return pfn(ppvOut, sztSize);
  *ppvOut = nullptr;
  return ZE_KEST_FAILED;
}

char *ze_kest_Utility_Strdup(const char *psz) {
  static const auto pfn = Next<decltype(ze_kest_Utility_Strdup)>(__func__);
  return IsRefused() ? nullptr : pfn(psz);
}

FILE *fdopen(int s32Fd, const char *pszMode) noexcept {
  static const auto pfn = Next<FILE *(int, const char *)>(__func__);
  return IsRefused() ? nullptr : pfn(s32Fd, pszMode);
}

namespace kest::test {
namespace {

constexpr const char *kInstruments[] = {"kest_print_filter_info=on",
                                        "kest_dump_io=on",
                                        "kest_latency_config=Nobody,Nobody,SpeakerOutput,Delay",
                                        "kest_latency=on",
                                        "kest_perf_event_target=pipeline,SpeakerOutput",
                                        "kest_debug_filter_io=Decoder",
                                        "kest_debug_filter_io=SpeakerOutput",
                                        "kest_debug_filter_io=restart"};

// Each is taken or not.
constexpr const char *kQuestions[] = {"kest_debug_list=status", "kest_debug_list=print",
                                      "kest_debug_watch_current_tids=on", "kest_log_restart",
                                      "kest_log_to_file=on"};

TEST_F(PlayerTest, TheSoundIsRightWhateverMemoryTheInstrumentsAreRefused) {
  const DebugLayer layer;
  const ReportCapture capture(ZE_KEST_LEVEL_ERR);
  const AudioData input = Noise(10, kWav24, 20000);
  const player::Options options = Fast({Path("in.wav")});
  WriteAudio(Path("in.wav"), input);

  for (uint32_t u32Seed = 1; u32Seed <= 3; ++u32Seed) {
    for (const char *pszLine : kInstruments)
      ASSERT_EQ(ZE_KEST_OK, ze_kest_Debug_SetParameter(pszLine));
    g_u32Seed = u32Seed;
    g_bScarce = true;
    {
      player::Playback playback(player::MakeLayout(options, player::BuiltInKinds()), options);
      playback.Start();
      while (!playback.HasEnded()) {
        for (const char *pszLine : kQuestions)
          ze_kest_Debug_SetParameter(pszLine);
      }
      playback.Finish();
    }
    g_bScarce = false;
    EXPECT_TRUE(input.samples == ReadAudio(out_).samples) << u32Seed;
    for (const char *pszLine : {"kest_print_filter_info=off", "kest_dump_io=off", "kest_latency=off",
                                "kest_perf_event_target=none", "kest_debug_filter_io=release"})
      ASSERT_EQ(ZE_KEST_OK, ze_kest_Debug_SetParameter(pszLine));
  }
  EXPECT_LT(100u, g_u32Refused);
  for (const char *pszReport :
       {"_ZE_KEST_Debug_FilterPcmInfo fail to allocate\n", "Err! fopen failed!\n", "Err! MALLOC failed\n"})
    EXPECT_TRUE(capture.Has("<ERR>", pszReport)) << pszReport;
}

}  // namespace
}  // namespace kest::test
