// SPDX-License-Identifier: Apache-2.0
// What pfnProcess must not do on an audio thread.
#include <algorithm>
#include <ctime>

#include "player/check/call_watch.h"
#include "player/check/check_test.h"
#include "player/check/stream.h"
#include "player/check/trapped_calls.h"

namespace kest::player {
namespace {

constexpr uint32_t kTurns = 400;
constexpr uint32_t kPiece = 256;
constexpr const char *kMayBlock = "it may allocate, lock and call the system";
constexpr const char *kNotWatched = "this build does not watch allocations and locks";
// Sanitizers call the system themselves, and wait for ever for a thread that ends behind their backs.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

// Turns over noise, the last ones after the end; nothing but pfnProcess allocates, locks or calls the system.
struct QuietRun {
  explicit QuietRun(const Subject &subject)
      : rig(MakeRig(subject, UsualShape(subject))), in(QuietNoise(*rig, kPiece, subject.seed)) {}

  void Take() {
    for (uint32_t i = 0; i < kTurns; ++i) {
      ze_kest_Harness_Fill(rig->Get(), in.data(), kPiece);
      const bool ended = i + 10 >= kTurns;
      t_callWatch.active = watches;
      ze_kest_Harness_Turn(rig->Get(), ended ? 1 : 0, nullptr);
      t_callWatch.active = false;
      ze_kest_Harness_Take(rig->Get(), nullptr, UINT32_MAX);
    }
  }

  std::unique_ptr<Rig> rig;
  Samples in;
  bool watches = false;
};

Finding SystemCalls(const Subject &subject) {
  if (subject.Has(ZE_KEST_MODULE_MAY_BLOCK)) return Skipped(kMayBlock);
  if (kIsSanitized) return Skipped("this build's sanitizer makes system calls of its own");
  QuietRun run(subject);
  const TrappedCalls calls =
      RunTrapped([](void *argument) { static_cast<QuietRun *>(argument)->Take(); }, &run);
  if (!calls.areTrapped) return Skipped("this system has no filter for system calls (seccomp)");
  if (calls.call.empty()) return Success();
  static_cast<void>(run.rig.release());  // it stopped in the middle of a turn
  return Failed("it calls " + calls.call);
}

Finding CountedCalls(const Subject &subject, uint32_t CallWatch::*count, const char *CallWatch::*first) {
  if (subject.Has(ZE_KEST_MODULE_MAY_BLOCK)) return Skipped(kMayBlock);
  if (!CallsAreWatched()) return Skipped(kNotWatched);
  QuietRun run(subject);
  run.watches = true;
  t_callWatch = {};
  run.Take();
  const CallWatch &watch = t_callWatch;
  if (watch.*count == 0) return Success();
  return Failed(std::to_string(watch.*count) + " calls in " + std::to_string(kTurns) +
                " turns, the first is " + watch.*first);
}

Finding Allocations(const Subject &subject) {
  return CountedCalls(subject, &CallWatch::allocations, &CallWatch::firstAllocation);
}

Finding Locks(const Subject &subject) {
  return CountedCalls(subject, &CallWatch::locks, &CallWatch::firstLock);
}

int64_t ThreadTimeUs() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return int64_t{time.tv_sec} * 1000000 + time.tv_nsec / 1000;
}

Finding WorstTurn(const Subject &subject) {
  const Shape shape = UsualShape(subject);
  const auto rig = MakeRig(subject, shape);
  const Samples in = QuietNoise(*rig, kPiece, subject.seed);
  int64_t worstUs = 0;
  for (uint32_t i = 0; i < kTurns; ++i) {
    ze_kest_Harness_Fill(rig->Get(), in.data(), kPiece);
    const int64_t beginUs = ThreadTimeUs();
    ze_kest_Harness_Turn(rig->Get(), 0, nullptr);
    worstUs = std::max(worstUs, ThreadTimeUs() - beginUs);
    ze_kest_Harness_Take(rig->Get(), nullptr, UINT32_MAX);
  }
  const int64_t periodUs = int64_t{kPiece} * 1000000 / shape.sampleRate;
  if (worstUs <= periodUs) return Success();
  return Warning("the worst of " + std::to_string(kTurns) + " took " + std::to_string(worstUs) + " us");
}

constexpr CheckTest kTests[] = {
    {"RealTime.SystemCalls", "pfnProcess makes no system call", SystemCalls},
    {"RealTime.Allocations", "pfnProcess neither allocates nor frees memory", Allocations},
    {"RealTime.Locks", "pfnProcess takes no lock", Locks},
    {"RealTime.WorstTurn", "a turn over 256 samples takes at most their 5333 us of processor time",
     WorstTurn},
};

}  // namespace

const Table<CheckTest> kRealTimeTests = kTests;

}  // namespace kest::player
