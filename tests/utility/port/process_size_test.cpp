// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "tests/support/ports.h"

namespace {

struct PortState {
  uint32_t value, connected, ring;
};

// Gives the value to every kind of data, with 5 more that this cycle has used up in the byte rings.
void Set(ZE_KEST_Port_s &stPort, const PortState &state) {
  stPort.bConnected = state.connected;
  stPort.stPcm.sztPcmRingSamples = state.ring;
  stPort.stPcm.sztPcmLevel = stPort.stPcm.sztPcmSpace = state.value;
  stPort.stPcm.sztPcmReadSize = stPort.stPcm.sztPcmWriteSize = 5;  // not subtracted
  for (ZE_KEST_DataBuffer_s *pstRing : {&stPort.stMeta, &stPort.stRaw}) {
    pstRing->sztSize = state.ring;
    pstRing->sztLevel = pstRing->sztSpace = state.value + 5;
    pstRing->sztReadSize = pstRing->sztWriteSize = 5;
  }
}

constexpr uint32_t (*kCalculate[])(const ZE_KEST_Filter_s *, uint32_t *) = {
    ze_kest_Utility_CalculateInputPortPcmProcessSize,
    ze_kest_Utility_CalculateInputPortMetadataProcessSize,
    ze_kest_Utility_CalculateInputPortRawProcessSize,
    ze_kest_Utility_CalculateOutputPortPcmProcessSize,
    ze_kest_Utility_CalculateOutputPortMetadataProcessSize,
    ze_kest_Utility_CalculateOutputPortRawProcessSize};

}  // namespace

TEST(ProcessSize, EachKindCountsItsOwnPorts) {
  struct Case {
    const char *pszWhy;
    std::vector<PortState> ports;
    uint32_t au32Sizes[6];  // in the order of the functions above
  };
  const Case cases[] = {
      {"no ports", {}, {0, 0, 0, 0, 0, 0}},
      {"empty before the first data", {{0, 1, 9}, {100, 1, 9}}, {100, 100, 0, 0, 0, 0}},
      {"the same, and more behind it", {{0, 1, 9}, {70, 0, 9}, {90, 1, 9}}, {70, 70, 0, 0, 0, 0}},
      {"empty behind the first data", {{100, 1, 9}, {0, 1, 9}}, {0, 0, 0, 0, 0, 0}},
      {"the same, not connected", {{100, 1, 9}, {0, 0, 9}}, {100, 100, 0, 0, 100, 100}},
      {"port 0 not connected", {{60, 0, 9}, {90, 1, 9}}, {60, 60, 60, 60, 90, 90}},
      {"port 0 without rings", {{60, 1, 0}, {90, 1, 9}}, {60, 60, 90, 90, 90, 90}},
      {"no rings at all", {{60, 1, 0}}, {60, 60, 0, 0, 0, 0}},
      {"PCM above its bounds", {{500, 1, 9}}, {200, 500, 500, 300, 500, 500}},
  };
  for (const Case &c : cases) {
    kest::test::Filter filter;
    if (c.ports.size() == 1) filter.st->sztMaxInPcmProcessSize = 200;
    if (c.ports.size() == 1) filter.st->sztMaxOutPcmProcessSize = 300;
    for (uint32_t i = 0; i < c.ports.size(); ++i) {
      Set(filter.In(2 * i).st, c.ports[i]);  // with empty slots between the ports
      Set(filter.Out(2 * i).st, c.ports[i]);
    }
    for (size_t i = 0; i < 6; ++i) {
      uint32_t u32Size = 77;
      const uint32_t u32Result = kCalculate[i](filter, &u32Size);
      EXPECT_EQ(c.au32Sizes[i], u32Size) << c.pszWhy << ", function " << i;
      EXPECT_EQ(u32Size == 0 ? ZE_KEST_NOTHING_TO_PROCESS : ZE_KEST_OK, u32Result);
    }
  }
}
