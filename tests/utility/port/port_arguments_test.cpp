// SPDX-License-Identifier: Apache-2.0
// What the operations on ports do with arguments and records that are not right.

#include "tests/support/ports.h"

namespace {

// Arguments that are right.
uint8_t au8[64];
uint32_t u32A, u32B;
int16_t *aps16[ZE_KEST_PCM_CHANNEL_ENTRIES];
int32_t *aps32[ZE_KEST_PCM_CHANNEL_ENTRIES];
int16_t *aps16Ch[ZE_KEST_PCM_CHANNEL_ENTRIES];  // outputs: nobody writes through what a case leaves there
int32_t *aps32Ch[ZE_KEST_PCM_CHANNEL_ENTRIES];
uint16_t au16[ZE_KEST_PCM_CHANNEL_ENTRIES];
const ZE_KEST_PcmGroup_s astGroups[ZE_KEST_PCM_GROUPS] = {};

struct Call {
  const char *pszFunction;
  uint32_t (*pfn)(ZE_KEST_Filter_s *pstFilter, uint32_t u32Port);
  const char *pszMissing;  // the argument that is NULL
};

// clang-format off
#define KEST_CALL(missing, name, ...) \
  {"ze_kest_Utility_" #name, [](ZE_KEST_Filter_s *f, [[maybe_unused]] uint32_t p) { return ze_kest_Utility_##name(f, ##__VA_ARGS__); }, missing}

const Call kOnePort[] = {
    KEST_CALL("", ReadInputPortPcmBuffer_To16Bit, p, au8, 1, 0, 1, 2),
    KEST_CALL("", ReadOneBlockInputPortMetadataBuffer, p, 0, &u32A, &u32B),
    KEST_CALL("", QueryInputPortMetadataLen, p, 256, &u32A, &u32B),
    KEST_CALL("", WriteOutputPort16BitPcmBuffer, p, 1, aps16, au16),
    KEST_CALL("", WriteAllOutputPortMetadataBuffer, p, 0),
    KEST_CALL("", WriteAllOutputPortRawBuffer, p, 0),
    KEST_CALL("", AnalyzeInputPort16BitPcmGroup, p, aps16Ch, au16, au8),
};

const Call kAllPorts[] = {
    KEST_CALL("", CalculateInputPortPcmProcessSize, &u32A),
    KEST_CALL("", WriteAllOutputPort16BitPcmBuffer, 1, aps16, au16),
    KEST_CALL("", IsOutputMetadataBufferExist),
    KEST_CALL("", UpdateAllInputPortPcmReadSize, 0),
    KEST_CALL("", UpdateSpecificInputPortPcmReadSize, 0, p),
    KEST_CALL("", UpdatePcmGroupToAllOutputPort, 0, astGroups),
    KEST_CALL("", CheckPcmGroupCapability, 2),
    KEST_CALL("", CheckOutPortPcmGroupCapability, 2),
};

const Call kMissing[] = {
    KEST_CALL("pvDst", ReadInputPortPcmBuffer, p, nullptr, 1, 0, 1, 2),
    KEST_CALL("pu32Tag", ReadOneBlockInputPortMetadataBuffer, p, 0, nullptr, &u32B),
    KEST_CALL("pu32BlockSize", ReadOneBlockInputPortMetadataBuffer, p, 0, &u32A, nullptr),
    KEST_CALL("pu32Len", QueryInputPortMetadataLen, p, 256, nullptr, &u32B),
    KEST_CALL("pu32LastBlockSize", QueryInputPortMetadataLen, p, 256, &u32A, nullptr),
    KEST_CALL("apSrc", WriteOutputPort16BitPcmBuffer, p, 1, nullptr, au16),
    KEST_CALL("au16Stride", WriteOutputPort32BitPcmBuffer, p, 1, aps32, nullptr),
    KEST_CALL("apSrc", WriteAllOutputPort32BitPcmBuffer, 1, nullptr, au16),
    KEST_CALL("apCh", AnalyzeInputPort16BitPcmGroup, p, nullptr, au16, au8),
    KEST_CALL("au16Stride", AnalyzeInputPort32BitPcmGroup, p, aps32Ch, nullptr, au8),
    KEST_CALL("pbGroupPresent", AnalyzeInputPort32BitPcmGroup, p, aps32Ch, au16, nullptr),
    KEST_CALL("psztProcessSize", CalculateInputPortPcmProcessSize, nullptr),
    KEST_CALL("pstPcmInfo", UpdatePcmInfoToAllOutputPort, nullptr),
    KEST_CALL("pastPcmGroup", UpdatePcmGroupToAllOutputPort, 0, nullptr),
};
// clang-format on

// No port is connected, and slot 2 is empty.
struct Ports : kest::test::Filter {
  Ports() {
    for (kest::test::Port *pPort : {&In(0), &In(1), &Out(0), &Out(1)}) {
      pPort->Pcm(16, 4, {2, 0, 0});
      pPort->Ring(&ZE_KEST_Port_s::stMeta, 64);
      pPort->st.bConnected = 0;
    }
    st->u32InPortCount = st->u32OutPortCount = 3;
  }
};

// The call is refused with one report.
void ExpectReport(const Call &call, ZE_KEST_Filter_s *pstFilter, uint32_t u32Port, const std::string &text) {
  const kest::test::ReportCapture capture;
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, call.pfn(pstFilter, u32Port)) << call.pszFunction;
  ASSERT_EQ(1u, capture.Reports().size()) << call.pszFunction;
  EXPECT_EQ(text, capture.Reports()[0].text) << call.pszFunction;
  EXPECT_EQ(call.pszFunction, capture.Reports()[0].function);
}

}  // namespace

TEST(PortArguments, AMissingOneIsReportedTheFilterFirstTheOthersBehindTheCheckOfThePort) {
  Ports ports;
  for (const Call &call : kOnePort)
    ExpectReport(call, nullptr, 9, "pstFilter is NULL.\n");
  for (const Call &call : kAllPorts)
    ExpectReport(call, nullptr, 9, "pstFilter is NULL.\n");
  const Call asIs = {"_ZE_KEST_UTILITY_ReadInputCheckSanity", kMissing[0].pfn, ""};
  ExpectReport(asIs, nullptr, 9, "pstFilter is NULL.\n");
  for (const Call &call : kMissing)
    ExpectReport(call, ports, 0, std::string(call.pszMissing) + " is NULL.\n");
}

TEST(PortArguments, APortThatIsNotThereIsRefusedSilently) {
  Ports ports;
  const kest::test::ReportCapture capture;
  for (const uint32_t port : {1u, 2u, 3u, 8u, UINT32_MAX}) {
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, kMissing[0].pfn(ports, port)) << port;
    for (const Call &call : kOnePort) {
      EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, call.pfn(ports, port)) << call.pszFunction << ' ' << port;
      EXPECT_EQ(ZE_KEST_OK, call.pfn(ports, 0)) << call.pszFunction;
    }
  }
  EXPECT_TRUE(capture.Reports().empty());
}

TEST(PortArguments, SlotCountsBeyondTheRecordAreCut) {
  Ports ports;
  ports.st->u32InPortCount = ports.st->u32OutPortCount = UINT32_MAX;
  for (const Call &call : kOnePort)
    EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, call.pfn(ports, 8));
  for (const Call &call : kAllPorts)
    EXPECT_NE(ZE_KEST_INVALID_ARGUMENT, call.pfn(ports, 8));
}
