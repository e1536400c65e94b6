// SPDX-License-Identifier: Apache-2.0
// The ports of one side of a filter, and the rules for which of them an operation serves.
#pragma once

#include <algorithm>

#include "ze_kest/model.h"

namespace kest {

class PortSide {
 public:
  // Limits the count to the number of slots, so that a bad record is never read past its arrays.
  PortSide(ZE_KEST_Port_s *const *apstSlots, uint32_t u32Count)
      : apstSlots_(apstSlots), u32Count_(std::min<uint32_t>(u32Count, ZE_KEST_MAX_PORTS)) {}

  [[nodiscard]] uint32_t Count() const { return u32Count_; }

  // The slots, of which Count() are valid.
  [[nodiscard]] ZE_KEST_Port_s *const *Slots() const { return apstSlots_; }

  // The port in a slot; NULL when there is none.
  [[nodiscard]] ZE_KEST_Port_s *At(uint32_t u32Index) const {
    return u32Index < u32Count_ ? apstSlots_[u32Index] : nullptr;
  }

  // The same for reads and writes of a single port: a port must be connected, except in slot 0.
  [[nodiscard]] ZE_KEST_Port_s *ServedAt(uint32_t u32Index) const {
    ZE_KEST_Port_s *pstPort = At(u32Index);
    const bool bServed = pstPort != nullptr && (u32Index == 0 || pstPort->bConnected != 0);
    return bServed ? pstPort : nullptr;
  }

  // Visits every port, in slot order.
  template <typename Visit>
  void ForEach(Visit visit) const {
    for (uint32_t u32Index = 0; u32Index < u32Count_; ++u32Index) {
      if (apstSlots_[u32Index] != nullptr) visit(*apstSlots_[u32Index]);
    }
  }

  // Visits the first port and every later one that is connected.
  template <typename Visit>
  void ForEachServed(Visit visit) const {
    bool bFirst = true;
    ForEach([&](ZE_KEST_Port_s &stPort) {
      if (bFirst || stPort.bConnected != 0) visit(stPort);
      bFirst = false;
    });
  }

  // Visits every connected port; here the first port is no exception.
  template <typename Visit>
  void ForEachConnected(Visit visit) const {
    ForEach([&](ZE_KEST_Port_s &stPort) {
      if (stPort.bConnected != 0) visit(stPort);
    });
  }

 private:
  ZE_KEST_Port_s *const *apstSlots_;
  uint32_t u32Count_;
};

inline PortSide InputSide(const ZE_KEST_Filter_s &stFilter) {
  return {stFilter.apstInPort, stFilter.u32InPortCount};
}

inline PortSide OutputSide(const ZE_KEST_Filter_s &stFilter) {
  return {stFilter.apstOutPort, stFilter.u32OutPortCount};
}

// The name of the filter's pipeline as reports show it.
inline const char *PipelineName(const ZE_KEST_Filter_s &stFilter) {
  return stFilter.pstParentPipeline == nullptr ? "" : stFilter.pstParentPipeline->szName;
}

}  // namespace kest
