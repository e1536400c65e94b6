// SPDX-License-Identifier: Apache-2.0
// What the sample conversions do with arguments that are not right: code and report of every case.
#include "tests/support/library_test.h"

namespace {

// Arguments that are right. The port has rings, but storage for no group.
uint8_t au8[8];
uint16_t au16[8];
uint32_t au32[8];
int16_t as16[8];
int32_t as32[8];
const ZE_KEST_PcmBuffer_s stPcm = {{}, 4, {}, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, {}, 3, {}};
const ZE_KEST_PcmBuffer_s *const kNoPcm = nullptr;

struct Case {
  const char *pszFunction;
  uint32_t (*pfn)();
  uint32_t code;
  std::vector<std::string> reports;  // label and text of each
};

// clang-format off
#define KEST_CASE(name, ...) "ze_kest_Utility_" #name, [] { return ze_kest_Utility_##name(__VA_ARGS__); }

const Case kCases[] = {
    {KEST_CASE(ConvertPcmFrom16BitTo24Bit, nullptr, nullptr, 0), 8, {"<ERR>pu16Ptr is NULL.\n"}},
    {KEST_CASE(ConvertPcmFrom16BitTo24Bit, au16, nullptr, 0), 8, {"<ERR>pu8Ptr is NULL.\n"}},
    {KEST_CASE(ConvertPcmFrom24BitTo16Bit, nullptr, nullptr, 0), 8, {"<ERR>pu8Ptr is NULL.\n"}},
    {KEST_CASE(ConvertPcmFrom24BitTo16Bit, au8, nullptr, 0), 8, {"<ERR>pu16Ptr is NULL.\n"}},
    {KEST_CASE(ConvertPcmFrom16BitTo32Bit, nullptr, nullptr, 0), 8, {"<ERR>pu16Ptr is NULL.\n"}},
    {KEST_CASE(ConvertPcmFrom16BitTo32Bit, au16, nullptr, 0), 8, {"<ERR>pu32Dest is NULL.\n"}},
    {KEST_CASE(ConvertPcmFrom32BitTo16Bit, nullptr, nullptr, 0), 8, {"<ERR>pu32PtrSrc is NULL.\n"}},
    {KEST_CASE(ConvertPcmFrom32BitTo16Bit, au32, nullptr, 0), 8, {"<ERR>pu16PtrDes is NULL.\n"}},
    {KEST_CASE(ConvertPcmFrom24BitTo32Bit, nullptr, nullptr, 0), 8, {"<ERR>pu8Ptr is NULL.\n"}},
    {KEST_CASE(ConvertPcmFrom24BitTo32Bit, au8, nullptr, 0), 8, {"<ERR>pu32Ptr is NULL.\n"}},
    {KEST_CASE(ConvertPcmFrom24LETo16Bit, nullptr, nullptr, 0), 8, {"<ERR>pu32Ptr is NULL.\n"}},
    {KEST_CASE(ConvertPcmFrom24LETo16Bit, au32, nullptr, 0), 8, {"<ERR>pu16Ptr is NULL.\n"}},
    {KEST_CASE(ConvertPcmFrom24LETo32Bit, nullptr, nullptr, 0), 8, {"<ERR>pu32Src is NULL.\n"}},
    {KEST_CASE(ConvertPcmFrom24LETo32Bit, au32, nullptr, 0), 8, {"<ERR>pu32Dest is NULL.\n"}},
    {KEST_CASE(Convert16BitPcmTo32BitPcm, nullptr, nullptr, 0), 8, {"<ERR>ps32Dst is NULL.\n"}},
    {KEST_CASE(Convert16BitPcmTo32BitPcm, as32, nullptr, 0), 8, {"<ERR>ps16Src is NULL.\n"}},
    {KEST_CASE(Convert16BitPcmTo32BitPcm, as32, as16, 0), 8, {"<ERR>Invalid parameter: sztSamples!\n"}},
    {KEST_CASE(Convert32BitPcmFromLow24BitToHigh24Bit, nullptr, 0), 8, {"<ERR>ps32Src is NULL.\n"}},
    {KEST_CASE(Convert32BitPcmFromLow24BitToHigh24Bit, as32, 0), 8, {"<ERR>Invalid parameter: sztSamples!\n"}},
    {KEST_CASE(Convert32BitPcmFromLow24BitTo16BitPcm, nullptr, nullptr, 0), 8, {"<ERR>ps32Src is NULL.\n"}},
    {KEST_CASE(Convert32BitPcmFromLow24BitTo16BitPcm, nullptr, as32, 0), 8, {"<ERR>Invalid parameter: sztSamples!\n"}},

    {KEST_CASE(ConvertInterleaveToNonInterleave, 0, 0, kNoPcm, 3, 0, au8, 1), 8, {"<ERR>invaild ePcmGroupType(3)\n"}},
    {KEST_CASE(ConvertInterleaveToNonInterleave, 0, 0, kNoPcm, 2, 0, au8, 1), 8, {"<ERR>pstPcm is NULL.\n"}},
    {KEST_CASE(ConvertInterleaveToNonInterleave, 0, 0, &stPcm, 2, 0, nullptr, 1), 8, {"<ERR>pvSrc is NULL.\n"}},
    {KEST_CASE(ConvertInterleaveToNonInterleave, 12, 0, &stPcm, 0, 0, au8, 1), 0, {"<INFO>Wrong ch 12\n", "<INFO>Wrong u32BitWidth\n"}},
    {KEST_CASE(ConvertInterleaveToNonInterleave, 0, 16, &stPcm, 2, 0, au8, 1), 0, {"<INFO>Wrong ch 0\n"}},
    {KEST_CASE(ConvertInterleaveToNonInterleave, 10, 16, &stPcm, 2, 0, au8, 1), 0, {}},
    {KEST_CASE(ConvertNonInterleaveToInterleave, nullptr, kNoPcm, UINT32_MAX, 0, 0, 1, 2), 8, {"<ERR>invaild ePcmGroupType(-1)\n"}},
    {KEST_CASE(ConvertNonInterleaveToInterleave, nullptr, kNoPcm, 2, 0, 0, 1, 2), 0, {}},
    {KEST_CASE(ConvertNonInterleaveToInterleave, nullptr, &stPcm, 2, 1, 0, 1, 2), 8, {"<ERR>pvDst is NULL.\n"}},
    {KEST_CASE(ConvertNonInterleaveToInterleave, au8, kNoPcm, 2, 1, 0, 1, 2), 8, {"<ERR>pstPcm is NULL.\n"}},
    {KEST_CASE(ConvertNonInterleaveToInterleave, au8, &stPcm, 2, 12, 0, 1, 2), 0, {}},
    {KEST_CASE(CopyNonInterleavePcmBuffer, kNoPcm, kNoPcm, 0, 0, 1, 3), 8, {"<ERR>Invaild ePcmGroupType(3).\n"}},
    {KEST_CASE(CopyNonInterleavePcmBuffer, kNoPcm, &stPcm, 0, 0, 1, 2), 8, {"<ERR>pstDst is NULL.\n"}},
    {KEST_CASE(CopyNonInterleavePcmBuffer, &stPcm, kNoPcm, 0, 0, 1, 2), 8, {"<ERR>pstSrc is NULL.\n"}},
    {KEST_CASE(CopyNonInterleavePcmBuffer, &stPcm, &stPcm, 0, 0, 1, 2), 0, {}},
};
// clang-format on

}  // namespace

TEST(PcmArguments, EveryRefusalAndCorrectionIsReportedUnderTheFunctionsName) {
  for (const Case &c : kCases) {
    const kest::test::ReportCapture capture;
    EXPECT_EQ(c.code, c.pfn()) << c.pszFunction;
    std::vector<std::string> reports;
    for (const kest::test::Report &report : capture.Reports()) {
      reports.push_back(report.label + report.text);
      EXPECT_EQ(c.pszFunction, report.function);
    }
    EXPECT_EQ(c.reports, reports) << c.pszFunction;
  }
}
