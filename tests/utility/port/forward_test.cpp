// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ports.h"

namespace kest::test {
namespace {

struct Kind {
  ZE_KEST_DataBuffer_s ZE_KEST_Port_s::*pRing;
  uint32_t (*pfnForward)(const ZE_KEST_Filter_s *, uint32_t, uint32_t);
  std::string name;  // in the texts
};
const Kind kKinds[] = {{&ZE_KEST_Port_s::stMeta, ze_kest_Utility_WriteAllOutputPortMetadataBuffer, "Meta"},
                       {&ZE_KEST_Port_s::stRaw, ze_kest_Utility_WriteAllOutputPortRawBuffer, "Raw"}};

// An input ring of 128 bytes that holds 100; two empty output rings of 64 bytes.
struct Ports : Filter {
  explicit Ports(const Kind &kind)
      : in(In(0).Ring(kind.pRing, 128)),
        out0(Out(0).Ring(kind.pRing, 64)),
        out1(Out(1).Ring(kind.pRing, 64)) {
    in.sztLevel = 100;
  }
  Bytes Content(uint32_t slot) { return Out(slot).ring.Content(); }

  ZE_KEST_DataBuffer_s &in, &out0, &out1;
};

}  // namespace

TEST(Forward, UnreadBytesFollowWhatTheOutputsHoldAcrossBothEnds) {
  for (const Kind &kind : kKinds) {
    SCOPED_TRACE(kind.name);
    Ports ports(kind);
    ports.in.sztReadOffset = 90;
    ports.in.sztReadSize = 20;
    ports.out0.sztReadOffset = 50;
    ports.out0.sztLevel = 3;
    ports.out0.sztWriteSize = 2;
    ports.in.sztLevel = ports.out1.sztSpace = 40;  // as much as is forwarded
    ports.out1.sztLevel = 20;
    ports.out1.sztWriteSize = 4;
    Bytes expected = Noise(64, 64);
    Bytes expected1 = expected;
    for (size_t i = 0; i < 40; ++i)
      expected[(55 + i) % 64] = expected1[24 + i] = Noise(128, 128)[(110 + i) % 128];
    EXPECT_EQ(ZE_KEST_OK, kind.pfnForward(ports, 0, 40));
    EXPECT_EQ(expected, ports.Content(0));
    EXPECT_EQ(expected1, ports.Content(1));
    EXPECT_EQ(2u, ports.out0.sztWriteSize) << "a write commits nothing";
  }
}

TEST(Forward, PortsThatCannotTakeTheDataArePassedOver) {
  for (const Kind &kind : kKinds) {
    SCOPED_TRACE(kind.name);
    const ReportCapture capture;
    Ports ports(kind);
    ports.Out(0).st.bConnected = 0;
    ports.out1.sztSpace = 39;
    EXPECT_EQ(ZE_KEST_OK, kind.pfnForward(ports, 0, 40));
    ports.out1.sztSpace = 64;
    ports.in.sztLevel = 39;
    EXPECT_EQ(ZE_KEST_OK, kind.pfnForward(ports, 0, 40));
    EXPECT_EQ(ZE_KEST_OK, kind.pfnForward(ports, 0, 0));
    ports.in.pu8Buf = nullptr;
    EXPECT_EQ(ZE_KEST_OK, kind.pfnForward(ports, 0, 39));
    EXPECT_EQ(Noise(64, 64), ports.Content(0));
    EXPECT_EQ(Noise(64, 64), ports.Content(1));
    EXPECT_TRUE(capture.Reports().empty());
  }
}

TEST(Forward, SizesThatContradictEachOtherAreReportedAndPassedOver) {
  for (const Kind &kind : kKinds) {
    SCOPED_TRACE(kind.name);
    const ReportCapture capture;
    Ports ports(kind);
    ports.out0.sztLevel = 30;
    ports.out0.sztWriteSize = 10;
    ports.in.sztReadSize = 103;  // up to the size
    EXPECT_EQ(ZE_KEST_OK, kind.pfnForward(ports, 0, 25));
    EXPECT_EQ(Noise(64, 64), ports.Content(0));
    EXPECT_NE(Noise(64, 64), ports.Content(1)) << "the port behind is served";
    ports.out0.sztWriteSize = UINT32_MAX - 40;
    ports.in.sztReadSize = 104;
    EXPECT_EQ(ZE_KEST_OK, kind.pfnForward(ports, 0, 25));
    EXPECT_THAT(capture.Texts("<ERR>"),
                ElementsAre("[pipe:filter]out" + kind.name + "BfOverflow[25][30][10][64]\n",
                            "[pipe:filter]out" + kind.name + "BfOverflow[25][30][4294967255][64]\n",
                            "[pipe:filter]In" + kind.name + "BfOverflow[25][104][128]\n"));
  }
}

TEST(Forward, AnOutputWithAMetadataRingIsFoundConnectedOrNot) {
  Filter filter;
  for (const uint32_t slot : {1u, 2u, 3u})
    filter.Out(slot).st.bConnected = slot == 2 ? 0 : 1;
  EXPECT_EQ(0u, ze_kest_Utility_IsOutputMetadataBufferExist(filter));
  filter.Out(2).st.stMeta.sztSize = 1;
  EXPECT_EQ(1u, ze_kest_Utility_IsOutputMetadataBufferExist(filter));
}

}  // namespace kest::test
