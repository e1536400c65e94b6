// SPDX-License-Identifier: Apache-2.0
// Shared by the checks of the port functions. Each check draws arguments, calls a function and compares
// everything it did with a model: plain loops over single samples and bytes that use none of the library's
// helpers.
#pragma once

#include <functional>

#include "ze_kest/port.h"

#include "fuzz/expect.h"
#include "fuzz/random_filter.h"

namespace kest::fuzz {

constexpr uint32_t kGroupChannels[ZE_KEST_PCM_GROUPS] = {2, 10, 10};

struct Run {
  FuzzedDataProvider &bytes;
  RandomFilter &filter;
  RandomFilter image;  // what the filter must look like after each call
  bool bConsistent;    // otherwise only memory safety is checked

  uint32_t Draw(uint32_t u32Least, uint32_t u32Most) {
    return bytes.ConsumeIntegralInRange(u32Least, u32Most);
  }

  // Calls the function on the filter and the model on the image. The results must be equal, and the filter
  // must end up like the image.
  void Compare(const char *pszWhat, const std::function<uint32_t(ZE_KEST_Filter_s *)> &function,
               const std::function<uint32_t(RandomFilter &)> &model);
};

// Restores the ports' records at the end, since updates may make them contradict each other.
class KeptRecords {
 public:
  explicit KeptRecords(Run &run);
  ~KeptRecords();
  KeptRecords(const KeptRecords &) = delete;
  KeptRecords &operator=(const KeptRecords &) = delete;

 private:
  Run &run_;
  std::array<ZE_KEST_Port_s, ZE_KEST_MAX_PORTS> inputs_;
  std::array<ZE_KEST_Port_s, ZE_KEST_MAX_PORTS> outputs_;
};

// The slot's port as functions for a single port see it: later slots must be connected.
inline RandomPort *Served(RandomPort *pst, uint32_t u32Slot) {
  return pst != nullptr && (u32Slot == 0 || pst->st.bConnected != 0) ? pst : nullptr;
}

// The ports that a walk over one side visits: the first one, and later ones that are connected.
std::vector<RandomPort *> Walk(RandomFilter &filter, bool bInput);
// All ports of a side.
std::vector<RandomPort *> All(RandomFilter &filter, bool bInput);

inline uint32_t Width(const RandomPort &port) {
  return port.st.stPcm.stPcmInfo.u32BitWidth / 8;
}

// One sample of a channel's ring. The index may run past the ring's end any number of times.
inline uint8_t *Sample(RandomPort &port, uint32_t u32Group, uint32_t u32Slot, uint32_t u32Index) {
  const uint32_t sztRing = port.st.stPcm.sztPcmRingSamples;
  return &port.groups[u32Group][size_t{u32Slot * sztRing + u32Index % sztRing} * Width(port)];
}

inline void CopyBytes(uint8_t *pu8Dst, const uint8_t *pu8Src, uint32_t u32Bytes) {
  for (uint32_t i = 0; i < u32Bytes; ++i)
    pu8Dst[i] = pu8Src[i];
}

// Reads a sample as a number, shifts it left (right when negative) and cuts it to its new width.
inline void Convert(uint8_t *pu8Dst, uint32_t u32DstBytes, const uint8_t *pu8Src, uint32_t u32SrcBytes,
                    int s32Shift) {
  uint64_t u64Sample = 0;
  for (uint32_t i = 0; i < u32SrcBytes; ++i)
    u64Sample += uint64_t{pu8Src[i]} << (8 * i);
  u64Sample = s32Shift < 0 ? u64Sample >> -s32Shift : u64Sample << s32Shift;
  for (uint32_t i = 0; i < u32DstBytes; ++i)
    pu8Dst[i] = static_cast<uint8_t>(u64Sample >> (8 * i));
}

void CheckProcessSize(Run &run);
void CheckAccounting(Run &run);
void CheckChannelGroups(Run &run);
void CheckPcmPointers(Run &run);
void CheckReadPcm(Run &run);
void CheckWritePcm(Run &run);
void CheckMetadata(Run &run);
void CheckForward(Run &run);
void CheckByteRings(Run &run);
void CheckChannelRing(Run &run);
void CheckInterleave(Run &run);
void CheckPcmCopy(Run &run);
void CheckConversion(Run &run);

}  // namespace kest::fuzz
