// SPDX-License-Identifier: Apache-2.0
// Calls the port functions on a random filter and compares each call with a model.
#include <cstring>

#include "fuzz/ports/check.h"
#include "fuzz/silent_log.h"

namespace kest::fuzz {
namespace {

constexpr int kCalls = 24;

constexpr void (*kChecks[])(Run &) = {
    CheckProcessSize, CheckAccounting, CheckChannelGroups, CheckPcmPointers, CheckReadPcm,
    CheckWritePcm,    CheckMetadata,   CheckForward,       CheckByteRings,   CheckChannelRing,
    CheckInterleave,  CheckPcmCopy,    CheckConversion,
};

template <typename Record>
void ExpectRecord(const Record &expected, const Record &actual, const char *pszWhat) {
  const auto *pu8Expected = reinterpret_cast<const uint8_t *>(&expected);
  const auto *pu8Actual = reinterpret_cast<const uint8_t *>(&actual);
  if (memcmp(pu8Expected, pu8Actual, sizeof(Record)) == 0) return;
  ExpectBytes({pu8Expected, pu8Expected + sizeof(Record)}, {pu8Actual, pu8Actual + sizeof(Record)}, pszWhat);
}

void ExpectPort(const RandomPort &expected, const RandomPort &actual, const char *pszWhat) {
  ExpectRecord(expected.st, actual.st, pszWhat);
  for (uint32_t u32Group = 0; u32Group < ZE_KEST_PCM_GROUPS; ++u32Group) {
    if (expected.groups[u32Group] != actual.groups[u32Group]) {
      ExpectBytes(expected.groups[u32Group], actual.groups[u32Group], pszWhat);
    }
  }
  if (expected.raw != actual.raw) ExpectBytes(expected.raw, actual.raw, pszWhat);
  if (expected.meta != actual.meta) ExpectBytes(expected.meta, actual.meta, pszWhat);
}

}  // namespace

void Run::Compare(const char *pszWhat, const std::function<uint32_t(ZE_KEST_Filter_s *)> &function,
                  const std::function<uint32_t(RandomFilter &)> &model) {
  if (!bConsistent) {
    function(&filter.st);
    return;
  }
  const uint32_t u32Expected = model(image);
  ExpectEqual(u32Expected, function(&filter.st), pszWhat);
  ExpectRecord(image.st, filter.st, pszWhat);
  for (uint32_t u32Slot = 0; u32Slot < ZE_KEST_MAX_PORTS; ++u32Slot) {
    if (image.In(u32Slot) != nullptr) ExpectPort(image.inputs[u32Slot], filter.inputs[u32Slot], pszWhat);
    if (image.Out(u32Slot) != nullptr) ExpectPort(image.outputs[u32Slot], filter.outputs[u32Slot], pszWhat);
  }
}

KeptRecords::KeptRecords(Run &run) : run_(run) {
  for (uint32_t i = 0; i < ZE_KEST_MAX_PORTS; ++i) {
    inputs_[i] = run.filter.inputs[i].st;
    outputs_[i] = run.filter.outputs[i].st;
  }
}

KeptRecords::~KeptRecords() {
  for (RandomFilter *pst : {&run_.filter, &run_.image}) {
    for (uint32_t i = 0; i < ZE_KEST_MAX_PORTS; ++i) {
      pst->inputs[i].st = inputs_[i];
      pst->outputs[i].st = outputs_[i];
    }
  }
}

std::vector<RandomPort *> All(RandomFilter &filter, bool bInput) {
  std::vector<RandomPort *> ports;
  for (uint32_t u32Slot = 0; u32Slot < ZE_KEST_MAX_PORTS; ++u32Slot) {
    RandomPort *pst = bInput ? filter.In(u32Slot) : filter.Out(u32Slot);
    if (pst != nullptr) ports.push_back(pst);
  }
  return ports;
}

std::vector<RandomPort *> Walk(RandomFilter &filter, bool bInput) {
  std::vector<RandomPort *> served;
  for (RandomPort *pst : All(filter, bInput)) {
    if (served.empty() || pst->st.bConnected != 0) served.push_back(pst);
  }
  return served;
}

}  // namespace kest::fuzz

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
  kest::fuzz::SilenceLog();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pu8Data, size_t sztSize) {
  using namespace kest::fuzz;
  const Bytes input = WithNoise(pu8Data, sztSize);
  FuzzedDataProvider bytes(input.data(), input.size());
  const bool bConsistent = bytes.ConsumeIntegralInRange(0, 3) != 3;
  RandomFilter filter(bytes, bConsistent ? Records::kConsistent : Records::kContradictory, "pipe", "filter");
  Run run = {bytes, filter, filter, bConsistent};
  for (int i = 0; i < kCalls; ++i)
    bytes.PickValueInArray(kChecks)(run);
  return 0;
}
