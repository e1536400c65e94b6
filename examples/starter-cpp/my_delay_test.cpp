// SPDX-License-Identifier: Apache-2.0
// What the filter should sound like: every sample of a ramp comes out as late as the configuration says, the
// last ones after the end. That it keeps to the interface is tested by kest-player --check.
#include <array>
#include <cstdint>
#include <iostream>
#include <memory>
#include <numeric>
#include <vector>

#include <ze_kest/harness.h>

namespace {

constexpr uint32_t kDelay = 100;
constexpr uint32_t kSamples = 64;  // of the rings and of a turn

using Harness = std::unique_ptr<ZE_KEST_Harness_s, decltype(&ze_kest_Harness_Close)>;

Harness Open() {
  ZE_KEST_HarnessSetup_s setup{};
  setup.u32Size = sizeof(setup);
  setup.u32Channels = 1;
  setup.u32SampleRate = 48000;
  setup.u32BitWidth = 32;
  setup.u32InputSamples = kSamples;
  setup.u32OutputSamples = kSamples;
  setup.u32MaxSamples = kSamples;
  setup.pszConfig = "100";
  ZE_KEST_Harness_s *harness = nullptr;
  ze_kest_Harness_Open(&setup, &harness);
  return {harness, ze_kest_Harness_Close};
}

// Adds what comes out of a turn. Returns false, and says why, when the turn broke the interface's rules.
bool TakeTurn(ZE_KEST_Harness_s *harness, bool ended, ZE_KEST_HarnessTurn_s &turn,
              std::vector<int32_t> &out) {
  std::array<int32_t, kSamples> samples{};
  if (ze_kest_Harness_Turn(harness, ended ? 1 : 0, &turn) != 0) {
    std::cerr << turn.szSeen << "\n";
    return false;
  }
  const uint32_t taken = ze_kest_Harness_Take(harness, samples.data(), kSamples);
  out.insert(out.end(), samples.begin(), samples.begin() + taken);
  return true;
}

}  // namespace

int main() {
  const Harness harness = Open();
  if (harness == nullptr) return 1;
  if (ze_kest_Harness_Create(harness.get(), ze_kest_module(ZE_KEST_MODULE_ABI, 0)) != ZE_KEST_OK) {
    std::cerr << "cannot be created: " << ze_kest_Harness_Error(harness.get()) << "\n";
    return 1;
  }
  std::vector<int32_t> in(kSamples);
  std::iota(in.begin(), in.end(), 1);
  ze_kest_Harness_Fill(harness.get(), in.data(), kSamples);

  ZE_KEST_HarnessTurn_s turn{};
  std::vector<int32_t> out;
  bool ended = false;
  do {
    if (!TakeTurn(harness.get(), ended, turn, out)) return 1;
    ended = true;
  } while (turn.u32Pending > 0 || turn.u32Written > 0);

  std::vector<int32_t> due(kDelay);  // silence
  due.insert(due.end(), in.begin(), in.end());
  std::cout << out.size() << " samples came out of " << due.size() << "\n";
  return out == due ? 0 : 1;
}
