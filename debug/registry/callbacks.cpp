// SPDX-License-Identifier: Apache-2.0
#include "debug/registry/callbacks.h"

#include "ze_kest/utility.h"

#include "debug/base/debug_mutex.h"
#include "debug/registry/registry.h"
#include "utility/core/owned_memory.h"
#include "utility/core/report.h"
#include "utility/core/text_field.h"

namespace kest {
namespace {

uint32_t CallBack(const ZE_KEST_DebugInfo_s &info, char *pszCommand) {
  if (info.pfnCallback == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  return info.pfnCallback(info.pstFilter, reinterpret_cast<signed char *>(pszCommand));
}

struct TestCommand {
  const char *pszWord;
  const char *pszArgument;
  const char *pszReply;
};

constexpr TestCommand kTestCommands[] = {{"dbgcmd1", "test", "dbgcmd1=test\n"},
                                         {"adc_filter", "dump_pcm", "adc_filter=dump_pcm\n"}};

}  // namespace

uint32_t CallBackByIndex(int32_t s32Index, char *pszCommand) {
  const HoldingDebug holding;
  int32_t s32Position = 0;
  for (const ZE_KEST_DebugInfo_s &info : Registry()) {
    if (s32Position == s32Index) return CallBack(info, pszCommand);
    ++s32Position;
  }
  return ZE_KEST_INVALID_ARGUMENT;
}

uint32_t _ZE_KEST_Debug_Cmd_TriggerCallback_Parse_By_Text(const char *pszPipelineName,
                                                          const char *pszFilterName, char *pszCommand) {
  char szPipeline[ZE_KEST_NAME_SIZE];
  char szFilter[ZE_KEST_NAME_SIZE];
  if (!CopyText(szPipeline, pszPipelineName) || !CopyText(szFilter, pszFilterName)) {
    KEST_ERR("Err! Strncpy failed!\n");
    return ZE_KEST_INVALID_ARGUMENT;
  }
  KEST_INFO("szTargetPipelineName=%s\n", szPipeline);
  KEST_INFO("szTargetFilterName=%s\n", szFilter);
  KEST_INFO("debug cmd=%s\n", pszCommand);

  const HoldingDebug holding;
  for (const ZE_KEST_DebugInfo_s &info : Registry()) {
    const char *pszName = info.pstFilter == nullptr ? "" : info.pstFilter->szName;
    KEST_INFO("PipelineName=%s,FilterName=%s\n", info.szName, pszName);
    if (!IsFilterNamed(info, szPipeline, szFilter)) continue;
    KEST_INFO("Founded!!!\n");
    return CallBack(info, pszCommand);
  }
  return ZE_KEST_INVALID_ARGUMENT;
}

unsigned int _ZE_KEST_Debug_CallbackTestFunc(ZE_KEST_Filter_s * /*pstFilter*/, signed char *pszCommand) {
  const Owned<char> copy = Duplicate(reinterpret_cast<const char *>(pszCommand));
  char *pszRest = copy.get();
  const char *pszWord = ze_kest_Utility_Strsep(&pszRest, " =");
  const char *pszArgument = ze_kest_Utility_Strsep(&pszRest, " =");
  for (const TestCommand &command : kTestCommands) {
    if (ze_kest_Utility_Strcmp(pszWord, command.pszWord) != 0) continue;
    if (ze_kest_Utility_Strcmp(pszArgument, command.pszArgument) != 0) continue;
    KEST_PRINT("%s", command.pszReply);
    return ZE_KEST_OK;
  }
  return ZE_KEST_INVALID_ARGUMENT;
}

}  // namespace kest
