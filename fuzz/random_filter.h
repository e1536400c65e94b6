// SPDX-License-Identifier: Apache-2.0
// Filters with random ports.
#pragma once

#include <array>

#include <fuzzer/FuzzedDataProvider.h>

#include "ze_kest/model.h"

#include "fuzz/expect.h"

namespace kest::fuzz {

// Bytes chosen so that a shifted or swapped copy does not look right by accident.
Bytes Noise(size_t sztCount, uint32_t u32Seed);

// The input plus noise that depends on it, so that even a short input makes a whole scenario. Numbers are
// drawn from the input first.
Bytes WithNoise(const uint8_t *pu8Data, size_t sztSize);

// How the records of a filter are drawn.
enum class Records {
  kConsistent,     // as a framework keeps them, with storage for every channel of a group
  kTight,          // the same, with storage only for the slots in use
  kContradictory,  // levels, offsets and counts that contradict each other
};

// Every ring has its own heap block of exactly its size, so that a sanitizer sees any access beside it.
struct RandomPort {
  void Fill(FuzzedDataProvider &bytes, Records records);

  ZE_KEST_Port_s st = {};
  std::array<Bytes, ZE_KEST_PCM_GROUPS> groups;
  Bytes raw;
  Bytes meta;

 private:
  void FillPcm(FuzzedDataProvider &bytes, Records records);
  void FillGroup(FuzzedDataProvider &bytes, uint32_t u32Group, Records records);
  void FillBlocks(FuzzedDataProvider &bytes);
};

// A copy is an image: it has the same contents, but the pointers in its records still point into the
// original.
struct RandomFilter {
  RandomFilter(FuzzedDataProvider &bytes, Records records, const char *pszPipeline, const char *pszFilter);

  // The port of a slot; NULL when there is none.
  RandomPort *In(uint32_t u32Slot) { return At(st.apstInPort, st.u32InPortCount, inputs, u32Slot); }
  RandomPort *Out(uint32_t u32Slot) { return At(st.apstOutPort, st.u32OutPortCount, outputs, u32Slot); }

  ZE_KEST_Pipeline_s stPipeline = {};
  ZE_KEST_Filter_s st = {};
  std::array<RandomPort, ZE_KEST_MAX_PORTS> inputs;
  std::array<RandomPort, ZE_KEST_MAX_PORTS> outputs;

 private:
  using Ports = std::array<RandomPort, ZE_KEST_MAX_PORTS>;
  static RandomPort *At(ZE_KEST_Port_s **apst, uint32_t u32Count, Ports &ports, uint32_t u32Slot) {
    return u32Slot < ZE_KEST_MAX_PORTS && u32Slot < u32Count && apst[u32Slot] != nullptr ? &ports[u32Slot]
                                                                                         : nullptr;
  }
};

}  // namespace kest::fuzz
