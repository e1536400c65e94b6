// SPDX-License-Identifier: Apache-2.0
#include "debug/requests/requests.h"

#include <initializer_list>

#include "ze_kest/debug.h"

#include "debug/requests/words.h"
#include "utility/core/shared_value.h"

uint32_t u32KestPerfEventTarget = ZE_KEST_TARGET_NONE;
char szKestPerfEventTargetName1[ZE_KEST_NAME_SIZE] = "";
char szKestPerfEventTargetName2[ZE_KEST_NAME_SIZE] = "";

uint32_t u32KestQueryProcessStatus = ZE_KEST_TARGET_NONE;
char szKestQueryProcessStatusName1[ZE_KEST_NAME_SIZE] = "";
char szKestQueryProcessStatusName2[ZE_KEST_NAME_SIZE] = "";

uint32_t u32KestSendTestTone = ZE_KEST_REQUEST_NONE;
char szKestSendTestToneName1[ZE_KEST_NAME_SIZE] = "";
char szKestSendTestToneName2[ZE_KEST_NAME_SIZE] = "";
uint32_t u32KestSendTestToneInputPort = 0;

uint32_t u32KestCalPcmLev = ZE_KEST_REQUEST_NONE;
char szKestCalPcmLevName1[ZE_KEST_NAME_SIZE] = "";
char szKestCalPcmLevName2[ZE_KEST_NAME_SIZE] = "";
uint32_t u32KestCalPcmLevMaxCount = 0;
uint32_t u32KestCalPcmLevCount = 0;

uint32_t u32KestCalculateDataRate = ZE_KEST_REQUEST_NONE;
char szKestCalculateDataRateName1[ZE_KEST_NAME_SIZE] = "";
char szKestCalculateDataRateName2[ZE_KEST_NAME_SIZE] = "";
uint32_t u32KestCalculateDataRateInputPort = 0;
uint32_t u32KestCalculateDataRateOutputPort = 0;

namespace kest {
namespace {

static_assert(ZE_KEST_TARGET_NONE == 0 && ZE_KEST_REQUEST_NONE == 0, "a cleared request asks for nothing");

constexpr auto kPrint = true;
constexpr auto kInfo = false;

// Deliberate, like every difference between the rows.
void AskEveryFilter(const Request &request) {
  Store(request.u32State, uint32_t{ZE_KEST_REQUEST_MADE});
  ClearName(request.szPipelineName);
  ClearName(request.szFilterName);
}

constexpr Request kPerfTarget = {
    "kest_perf_event_target",
    "_ZE_KEST_Debug_Cmd_SetPerfEventTarget",
    "[PERF_EVENT]",
    kInfo,
    "pszSub1",
    nullptr,
    {{"pipeline", SelectPipeline}, {"filter", SelectFilter}, {"none", TakeBack}},
    ClearRequest,
    u32KestPerfEventTarget,
    szKestPerfEventTargetName1,
    szKestPerfEventTargetName2,
    {},
};

constexpr Request kProcessStatus = {
    "kest_process_status",
    "_ZE_KEST_Debug_Cmd_QueryProcessStatus",
    "[PROCESS_STATUS]",
    kInfo,
    "pszSub1",
    "pszSub3",
    {{"pipeline", SelectPipeline}, {"filter", SelectFilter}, {"none", TakeBack}},
    ClearRequest,
    u32KestQueryProcessStatus,
    szKestQueryProcessStatusName1,
    szKestQueryProcessStatusName2,
    {},
};

constexpr Request kTestTone = {
    "kest_send_test_tone",
    "_ZE_KEST_Debug_Cmd_SendTestTone",
    "[SEND_TEST_TONE]",
    kPrint,
    "pszSub1",
    "pszSub3",
    {{"off", TakeBack}, {kAnyPart, RequestTestTone}},
    ClearRequest,
    u32KestSendTestTone,
    szKestSendTestToneName1,
    szKestSendTestToneName2,
    {&u32KestSendTestToneInputPort},
};

constexpr Request kPcmLevel = {
    "kest_calpcmlev",
    "_ZE_KEST_Debug_Cmd_CalPcmLev",
    "[CAL_PCM_LEV]",
    kPrint,
    "pszSub2",
    "pszSub3",
    {{"off", TakeBack}, {kAnyPart, RequestPcmLevel}},
    AskEveryFilter,
    u32KestCalPcmLev,
    szKestCalPcmLevName1,
    szKestCalPcmLevName2,
    {&u32KestCalPcmLevMaxCount, &u32KestCalPcmLevCount},
};

constexpr Request kDataRate = {
    "kest_calculate_data_rate",
    "_ZE_KEST_Debug_Cmd_CalculateDataRate",
    "[CAL_DATA_RATE]",
    kPrint,
    "pszSub1",
    "pszSub4",
    {{"off", TakeBack}, {kAnyPart, RequestDataRate}},
    nullptr,
    u32KestCalculateDataRate,
    szKestCalculateDataRateName1,
    szKestCalculateDataRateName2,
    {&u32KestCalculateDataRateInputPort, &u32KestCalculateDataRateOutputPort},
};

}  // namespace

uint32_t _ZE_KEST_Debug_Cmd_SetPerfEventTarget(const char *pszLine) {
  return RunRequest(kPerfTarget, pszLine);
}

uint32_t _ZE_KEST_Debug_Cmd_QueryProcessStatus(const char *pszLine) {
  return RunRequest(kProcessStatus, pszLine);
}

uint32_t _ZE_KEST_Debug_Cmd_SendTestTone(const char *pszLine) {
  return RunRequest(kTestTone, pszLine);
}

uint32_t _ZE_KEST_Debug_Cmd_CalPcmLev(const char *pszLine) {
  return RunRequest(kPcmLevel, pszLine);
}

uint32_t _ZE_KEST_Debug_Cmd_CalculateDataRate(const char *pszLine) {
  return RunRequest(kDataRate, pszLine);
}

// The two targets keep their names, which mean nothing without the kind.
void ResetRequests() {
  Store(u32KestPerfEventTarget, uint32_t{ZE_KEST_TARGET_NONE});
  Store(u32KestQueryProcessStatus, uint32_t{ZE_KEST_TARGET_NONE});
  for (const Request *pst : {&kTestTone, &kPcmLevel, &kDataRate})
    ClearRequest(*pst);
}

}  // namespace kest
