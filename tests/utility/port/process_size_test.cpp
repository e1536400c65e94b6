// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ports.h"

namespace {

enum Rings : uint32_t { kPcm = 1, kMeta = 2, kRaw = 4, kAll = 7 };

struct PortState {
  uint32_t value, connected, rings;
};

// Gives the value to every kind of data, each times a factor of its own (those below), and to the byte rings
// what this cycle has used up on top. What the other side asks for differs by one.
void Set(ZE_KEST_Port_s &stPort, const PortState &state, bool bInput) {
  const uint32_t in = state.value + (bInput ? 0 : 1);
  const uint32_t out = state.value + (bInput ? 1 : 0);
  stPort.bConnected = state.connected;
  stPort.stPcm.sztPcmRingSamples = state.rings & kPcm;
  stPort.stPcm.sztPcmLevel = in;
  stPort.stPcm.sztPcmSpace = 2 * out;
  stPort.stPcm.sztPcmReadSize = stPort.stPcm.sztPcmWriteSize = 5;  // not subtracted
  stPort.stMeta.sztSize = state.rings & kMeta;
  stPort.stMeta.sztLevel = 3 * in + 5;
  stPort.stMeta.sztSpace = 4 * out + 7;
  stPort.stRaw.sztSize = state.rings & kRaw;
  stPort.stRaw.sztLevel = 5 * in + 5;
  stPort.stRaw.sztSpace = 6 * out + 7;
  for (ZE_KEST_DataBuffer_s *pstRing : {&stPort.stMeta, &stPort.stRaw}) {
    pstRing->sztReadSize = 5;
    pstRing->sztWriteSize = 7;
  }
}

struct Sizes {
  uint32_t pcm, meta, raw;
};

// What the three functions of a side find, each divided by its factor above.
using Calculate = uint32_t (*)(const ZE_KEST_Filter_s *, uint32_t *);
void ExpectSizes(const ZE_KEST_Filter_s *pstFilter, const Sizes &sizes, const Calculate (&apfn)[3],
                 const Sizes &factors) {
  const uint32_t au32Expected[] = {sizes.pcm * factors.pcm, sizes.meta * factors.meta,
                                   sizes.raw * factors.raw};
  for (size_t i = 0; i < 3; ++i) {
    uint32_t u32Size = 77;
    const uint32_t u32Result = apfn[i](pstFilter, &u32Size);
    EXPECT_EQ(au32Expected[i], u32Size) << "function " << i;
    EXPECT_EQ(u32Size == 0 ? ZE_KEST_NOTHING_TO_PROCESS : ZE_KEST_OK, u32Result) << "function " << i;
  }
}

}  // namespace

TEST(ProcessSize, EachKindCountsItsOwnPorts) {
  struct Case {
    const char *pszWhy;
    std::vector<PortState> ports;
    Sizes in, out;
  };
  const Case cases[] = {
      {"no ports", {}, {0, 0, 0}, {0, 0, 0}},
      {"empty before the first data", {{0, 1, kAll}, {100, 1, kAll}}, {100, 100, 0}, {0, 0, 0}},
      {"more behind it", {{0, 1, kAll}, {70, 0, kAll}, {90, 1, kAll}}, {70, 70, 0}, {0, 0, 0}},
      {"empty behind the first data", {{100, 1, kAll}, {0, 1, kAll}}, {0, 0, 0}, {0, 0, 0}},
      {"the same, not connected", {{100, 1, kAll}, {0, 0, kAll}}, {100, 100, 0}, {0, 100, 100}},
      {"port 0 not connected", {{60, 0, kAll}, {90, 1, kAll}}, {60, 60, 60}, {60, 90, 90}},
      {"port 0 with metadata alone", {{60, 1, kMeta}, {90, 1, kAll}}, {60, 60, 90}, {90, 60, 90}},
      {"port 0 with raw alone", {{60, 1, kRaw}, {90, 1, kAll}}, {60, 60, 60}, {90, 90, 60}},
      {"no rings at all", {{60, 1, 0}}, {60, 60, 0}, {0, 0, 0}},
      {"PCM above its bounds", {{500, 1, kAll}}, {200, 500, 500}, {150, 500, 500}},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.pszWhy);
    kest::test::Filter filter;
    if (c.ports.size() == 1) filter.st->sztMaxInPcmProcessSize = 200;
    if (c.ports.size() == 1) filter.st->sztMaxOutPcmProcessSize = 300;
    for (uint32_t i = 0; i < c.ports.size(); ++i) {
      Set(filter.In(2 * i).st, c.ports[i], true);  // with empty slots between the ports
      Set(filter.Out(2 * i).st, c.ports[i], false);
    }
    ExpectSizes(filter, c.in,
                {ze_kest_Utility_CalculateInputPortPcmProcessSize,
                 ze_kest_Utility_CalculateInputPortMetadataProcessSize,
                 ze_kest_Utility_CalculateInputPortRawProcessSize},
                {1, 3, 5});
    ExpectSizes(filter, c.out,
                {ze_kest_Utility_CalculateOutputPortPcmProcessSize,
                 ze_kest_Utility_CalculateOutputPortMetadataProcessSize,
                 ze_kest_Utility_CalculateOutputPortRawProcessSize},
                {2, 4, 6});
  }
}
