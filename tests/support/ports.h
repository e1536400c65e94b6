// SPDX-License-Identifier: Apache-2.0
// Filters with ports that own their rings, and memory that tells whether someone wrote beside it.
#pragma once

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

#include "tests/support/library_test.h"

namespace kest::test {

using Bytes = std::vector<uint8_t>;

// Bytes in which a shifted or swapped copy does not look right by accident.
inline Bytes Noise(size_t sztCount, uint32_t u32Seed) {
  Bytes bytes(sztCount);
  for (uint8_t &u8Byte : bytes) {
    u32Seed = u32Seed * 1664525 + 1013904223;
    u8Byte = static_cast<uint8_t>(u32Seed >> 24);
  }
  return bytes;
}

// What stands in a ring from a position on, around its end.
inline std::string RingText(const uint8_t *pu8Ring, size_t sztRing, size_t sztStart, size_t sztCount) {
  std::string text;
  for (size_t i = 0; i < sztCount; ++i)
    text += static_cast<char>(pu8Ring[(sztStart + i) % sztRing]);
  return text;
}

// Content between guard bytes.
class Guarded {
 public:
  explicit Guarded(Bytes content = {}) : all_(std::move(content)) {
    all_.insert(all_.begin(), kGuard, 0xA5);
    all_.insert(all_.end(), kGuard, 0xA5);
  }
  [[nodiscard]] uint8_t *Data() { return all_.data() + kGuard; }
  // The test fails when a guard is damaged.
  [[nodiscard]] Bytes Content() const {
    const Bytes content(all_.begin() + kGuard, all_.end() - kGuard);
    if (Guarded(content).all_ != all_) ADD_FAILURE() << "written beside the content";
    return content;
  }

 private:
  static constexpr ptrdiff_t kGuard = 64;
  Bytes all_;
};

// A connected port. Its rings are filled with noise and hold nothing.
struct Port {
  // Gives storage to the groups with slots; every slot carries a channel.
  ZE_KEST_PcmBuffer_s &Pcm(uint32_t u32Bits, uint32_t sztRingSamples, const std::array<uint32_t, 3> &slots) {
    st.stPcm.sztPcmRingSamples = st.stPcm.sztPcmSpace = sztRingSamples;
    st.stPcm.u32PcmGroupNum = ZE_KEST_PCM_GROUPS;
    st.stPcm.stPcmInfo = {slots[0] + slots[1] + slots[2], 48000, u32Bits, {}};
    for (uint32_t g = 0; g < ZE_KEST_PCM_GROUPS; ++g) {
      st.stPcm.astPcmGroup[g] = {slots[g] == 0 ? -1 : static_cast<int32_t>(g), slots[g], {}};
      std::fill(st.stPcm.astPcmGroup[g].as32ChMap + slots[g], std::end(st.stPcm.astPcmGroup[g].as32ChMap),
                -1);
      groups[g] = Guarded(Noise(size_t{slots[g]} * sztRingSamples * (u32Bits / 8), g));
      if (slots[g] != 0) st.stPcm.apu8PcmGroupBuf[g] = groups[g].Data();
    }
    return st.stPcm;
  }

  ZE_KEST_DataBuffer_s &Ring(ZE_KEST_DataBuffer_s ZE_KEST_Port_s::*pRing, uint32_t sztSize) {
    ring = Guarded(Noise(sztSize, sztSize));
    (st.*pRing).pu8Buf = ring.Data();
    (st.*pRing).sztSize = (st.*pRing).sztSpace = sztSize;
    return st.*pRing;
  }

  ZE_KEST_Port_s st = {0, 1, {}, {}, {}, {}};
  std::array<Guarded, ZE_KEST_PCM_GROUPS> groups;
  Guarded ring;  // of metadata or of raw data
};

struct Filter {
  Filter() {
    strcpy(st->szName, "filter");
    strcpy(stPipeline.szName, "pipe");
    st->pstParentPipeline = &stPipeline;
    st->sztMaxInPcmProcessSize = st->sztMaxOutPcmProcessSize = ZE_KEST_NO_BOUND;
  }
  // The port of a slot; the slots that nobody asked for stay empty, the counts are kept in step.
  Port &In(uint32_t u32Slot) { return At(inputs, st->apstInPort, st->u32InPortCount, u32Slot); }
  Port &Out(uint32_t u32Slot) { return At(outputs, st->apstOutPort, st->u32OutPortCount, u32Slot); }

  operator ZE_KEST_Filter_s *() { return st.get(); }

  // Alone on the heap, so that a sanitizer sees a read beside it.
  std::unique_ptr<ZE_KEST_Filter_s> st = std::make_unique<ZE_KEST_Filter_s>();

 private:
  using Ports = std::array<Port, ZE_KEST_MAX_PORTS>;

  static Port &At(Ports &ports, ZE_KEST_Port_s **apstSlots, uint32_t &u32Count, uint32_t u32Slot) {
    apstSlots[u32Slot] = &ports[u32Slot].st;
    u32Count = std::max(u32Count, u32Slot + 1);
    return ports[u32Slot];
  }

  ZE_KEST_Pipeline_s stPipeline = {};
  Ports inputs;
  Ports outputs;
};

}  // namespace kest::test
