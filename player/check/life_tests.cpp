// SPDX-License-Identifier: Apache-2.0
// Instances: making them, refusing to, and ending them.
#include <algorithm>
#include <fstream>

#include <sys/resource.h>
#include <unistd.h>

#include "player/check/call_watch.h"
#include "player/check/check_test.h"
#include "player/check/process_state.h"
#include "player/check/stream.h"

namespace kest::player {
namespace {

constexpr uint32_t kFrames = 2000;

void LiveOnce(Rig &rig, const Samples &in) {
  rig.Create();
  Stream stream;
  Feed(rig, in, {256, 0}, stream);
  rig.Destroy();
}

// The first lives may make what stays for the process.
Finding Leaks(const Subject &subject) {
  constexpr int kWarmUps = 5;
  constexpr int kLives = 100;
  if (!CallsAreWatched()) return Skipped("this build does not watch allocations");
  Rig rig(subject, UsualShape(subject));
  const Samples in = QuietNoise(rig, kFrames, subject.seed);
  for (int i = 0; i < kWarmUps; ++i) {
    LiveOnce(rig, in);
  }
  t_callWatch = {};
  t_callWatch.active = true;
  for (int i = 0; i < kLives; ++i) {
    LiveOnce(rig, in);
  }
  t_callWatch.active = false;
  if (t_callWatch.blocksHeld < kLives) return Success();
  return Failed("of " + std::to_string(kLives) + " instances " + std::to_string(t_callWatch.blocksHeld) +
                " blocks of memory are left");
}

Finding DestroyUnused(const Subject &subject) {
  for (const Shape &shape : SomeShapes(subject)) {
    const auto rig = MakeRig(subject, shape);
    rig->Destroy();
  }
  return Success();
}

Finding LeavesProcess(const Subject &subject) {
  Rig rig(subject, UsualShape(subject));
  const Samples in = QuietNoise(rig, kFrames, subject.seed);
  const ProcessState before = ProcessState::Now();
  LiveOnce(rig, in);
  const std::string changed = before.ChangeSince();
  return changed.empty() ? Success() : Failed("the life of an instance " + changed);
}

Finding TwoInstances(const Subject &subject) {
  constexpr int kPieces = 8;
  const Shape shape = UsualShape(subject);
  const auto first = MakeRig(subject, shape);
  const auto second = MakeRig(subject, shape);
  Stream alone;
  Stream together;
  Stream other;
  const auto single = MakeRig(subject, shape);
  for (uint32_t i = 0; i < kPieces; ++i) {
    Feed(*single, QuietNoise(*single, 256, subject.seed + i), {256, 0}, alone);
  }
  for (uint32_t i = 0; i < kPieces; ++i) {
    Feed(*first, QuietNoise(*first, 256, subject.seed + i), {256, 0}, together);
    Feed(*second, QuietNoise(*second, 256, subject.seed + i + 1000), {256, 0}, other);
  }
  const std::string difference = Difference(alone.out, together.out, shape.channels);
  if (difference.empty() || single->MayDiffer()) return Success();
  return Failed("alone and beside another instance it gives other samples: " + difference);
}

// What is wrong with a refusal; "" when nothing is.
std::string FaultOfRefusal(const Rig &rig) {
  const std::string error = rig.Error();
  if (error.empty()) return "without a text";
  return error.find_first_of("\r\n") == std::string::npos ? "" : "with a text of several lines";
}

// While it exists, the process gets so much more memory and not what the machine has: buffers for an absurd
// rate are to fail, not the machine.
class MemoryLimit {
 public:
  MemoryLimit() {
    constexpr uint64_t kMore = uint64_t{2} << 30;
    getrlimit(RLIMIT_AS, &before_);
    rlimit limit = before_;
    limit.rlim_cur = static_cast<rlim_t>(std::min<uint64_t>(limit.rlim_cur, BytesOfProcess() + kMore));
    setrlimit(RLIMIT_AS, &limit);
  }
  ~MemoryLimit() { setrlimit(RLIMIT_AS, &before_); }
  MemoryLimit(const MemoryLimit &) = delete;
  MemoryLimit &operator=(const MemoryLimit &) = delete;

 private:
  static uint64_t BytesOfProcess() {
    uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
  }
  rlimit before_{};
};

Finding RefusalHasText(const Subject &subject) {
  const MemoryLimit limit;
  for (Shape shape : SomeShapes(subject)) {
    for (const uint32_t rate : {1u, 8000u, 11025u, 44100u, 96000u, 192000u, 1000000000u}) {
      shape.sampleRate = rate;
      Rig rig(subject, shape);
      if (rig.TryCreate() == ZE_KEST_OK) {
        rig.Turn(false);
        continue;
      }
      const std::string fault = FaultOfRefusal(rig);
      if (!fault.empty()) {
        return Failed("it refuses " + TextOf(shape) + ", " + std::to_string(rate) + " Hz " + fault);
      }
    }
  }
  return Success();
}

struct WrongConfig {
  const char *name;
  std::string text;
};

std::vector<WrongConfig> WrongConfigs(uint32_t seed) {
  std::vector<WrongConfig> configs = {{"an empty configuration", ""},
                                      {"64 KiB of 'a'", std::string(65536, 'a')},
                                      {"64 KiB of digits", std::string(65536, '9')},
                                      {"\"%n%s\"", "%n%s%n%s%n%s"},
                                      {"brackets", std::string(1000, '{')}};
  for (int i = 0; i < 20; ++i) {
    Samples random(64);
    ze_kest_Harness_Noise(random.data(), static_cast<uint32_t>(random.size()), 32, &seed);
    std::string text;
    for (const int32_t sample : random) {
      text += static_cast<char>(1 + (static_cast<uint32_t>(sample) & 0xFF) % 255);
    }
    configs.push_back({"random bytes", text});
  }
  return configs;
}

Finding WrongConfiguration(const Subject &subject) {
  const Shape shape = UsualShape(subject);
  for (const WrongConfig &config : WrongConfigs(subject.seed)) {
    Subject configured = subject;
    configured.config = config.text;
    Rig rig(configured, shape);
    if (rig.TryCreate() == ZE_KEST_OK) {
      rig.Turn(false);
      continue;
    }
    const std::string fault = FaultOfRefusal(rig);
    if (!fault.empty()) return Failed(std::string("it refuses ") + config.name + " " + fault);
  }
  return Success();
}

// Lets the n-th allocation of pfnCreate fail until there are no more than n.
Finding FailedAllocation(const Subject &subject) {
  constexpr uint32_t kMost = 300;
  if (!CallsAreWatched()) return Skipped("this build does not watch allocations");
  const Shape shape = UsualShape(subject);
  MakeRig(subject, shape)->Turn(false);
  for (uint32_t number = 1; number <= kMost; ++number) {
    Rig rig(subject, shape);
    t_callWatch = {};
    t_callWatch.failingAllocation = number;
    t_callWatch.active = true;
    const uint32_t result = rig.TryCreate();
    t_callWatch.active = false;
    const bool hasFailed = t_callWatch.allocations >= number;
    if (result == ZE_KEST_OK) {
      rig.Turn(false);
      rig.Destroy();
    }
    if (!hasFailed) return Success();
  }
  return Success();
}

constexpr CheckTest kTests[] = {
    {"Life.Leaks", "100 lives of an instance leave no memory behind", Leaks},
    {"Life.DestroyUnused", "an instance that took no turn can be destroyed", DestroyUnused},
    {"Life.Process", "the life of an instance leaves the process as it was", LeavesProcess},
    {"Life.TwoInstances", "an instance gives the same samples beside another one", TwoInstances},
    {"Life.Refusal", "when it refuses a format it says why, in one line", RefusalHasText},
    {"Life.Configuration", "a wrong configuration is taken, or refused with a text of one line",
     WrongConfiguration},
    {"Life.FailedAllocation", "when memory is exhausted pfnCreate fails, or does without", FailedAllocation},
};

}  // namespace

const Table<CheckTest> kLifeTests = kTests;

}  // namespace kest::player
