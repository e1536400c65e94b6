// SPDX-License-Identifier: Apache-2.0
#include "tests/support/requests.h"

#include <cstring>

#include <gtest/gtest.h>

#include "ze_kest/debug.h"

#include "tests/support/report_capture.h"

namespace kest::test {
namespace {

// A name that is not terminated shows as one of 64 characters.
std::string Name(const char (&szField)[ZE_KEST_NAME_SIZE]) {
  return "|" + std::string(szField, strnlen(szField, sizeof(szField)));
}

std::string Number(uint32_t u32Number) {
  return "|" + std::to_string(u32Number);
}

}  // namespace

std::string PerfTarget() {
  return std::to_string(u32KestPerfEventTarget) + Name(szKestPerfEventTargetName1) +
         Name(szKestPerfEventTargetName2);
}

std::string StatusQuery() {
  return std::to_string(u32KestQueryProcessStatus) + Name(szKestQueryProcessStatusName1) +
         Name(szKestQueryProcessStatusName2);
}

std::string TestTone() {
  return std::to_string(u32KestSendTestTone) + Name(szKestSendTestToneName1) + Name(szKestSendTestToneName2) +
         Number(u32KestSendTestToneInputPort);
}

std::string PcmLevel() {
  return std::to_string(u32KestCalPcmLev) + Name(szKestCalPcmLevName1) + Name(szKestCalPcmLevName2) +
         Number(u32KestCalPcmLevMaxCount) + Number(u32KestCalPcmLevCount);
}

std::string DataRate() {
  return std::to_string(u32KestCalculateDataRate) + Name(szKestCalculateDataRateName1) +
         Name(szKestCalculateDataRateName2) + Number(u32KestCalculateDataRateInputPort) +
         Number(u32KestCalculateDataRateOutputPort);
}

void ExpectTaken(Handler pfnHandler, Globals pfnGlobals, const std::vector<TakenLine> &lines) {
  for (const TakenLine &line : lines) {
    const ReportCapture capture;
    EXPECT_EQ(ZE_KEST_OK, pfnHandler(line.pszLine)) << line.pszLine;
    std::vector<std::string> expected = {std::string("<INFO>pszLine=") + line.pszLine + "\n"};
    expected.insert(expected.end(), line.reports.begin(), line.reports.end());
    std::vector<std::string> reports;
    for (const Report &report : capture.Reports())
      reports.push_back(report.label + report.text);
    EXPECT_EQ(expected, reports);
    EXPECT_EQ(line.globals, pfnGlobals()) << line.pszLine;
  }
}

void ExpectOdd(Handler pfnHandler, Globals pfnGlobals, const std::vector<OddLine> &lines) {
  for (const OddLine &line : lines) {
    const ReportCapture capture;
    const std::string shown = line.pszLine == nullptr ? "no line" : line.pszLine;
    std::vector<std::string> errors;
    if (!line.missing.empty()) errors.push_back(line.missing + " is NULL, format error\n");
    EXPECT_EQ(line.u32Result, pfnHandler(line.pszLine)) << shown;
    EXPECT_EQ(errors, capture.Texts("<ERR>")) << shown;
    EXPECT_EQ(line.globals, pfnGlobals()) << shown;
  }
}

}  // namespace kest::test
