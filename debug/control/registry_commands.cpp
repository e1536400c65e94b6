// SPDX-License-Identifier: Apache-2.0
#include "debug/control/registry_commands.h"

#include "ze_kest/utility.h"

#include "debug/base/debug_mutex.h"
#include "debug/registry/callbacks.h"
#include "debug/registry/listing.h"
#include "debug/registry/parameters.h"
#include "debug/registry/registry.h"
#include "debug/registry/status.h"
#include "utility/core/report.h"
#include "utility/core/text_field.h"

namespace kest {
namespace {

constexpr const char *kSpeaker = "SpeakerOutput";
constexpr const char *kDecoder = "Decoder_13";
constexpr const char *kLoopback = "Loopback";

ZE_KEST_Filter_s g_stTestFilter;

// The test filter may already be registered, so its name changes only with the registry locked.
ZE_KEST_Filter_s *TestFilterNamed(const char *pszName) {
  const HoldingDebug holding;
  g_stTestFilter = {};
  static_cast<void>(CopyText(g_stTestFilter.szName, pszName));  // fails only for NULL
  return &g_stTestFilter;
}

}  // namespace

uint32_t RegisterTestFilter(const CommandArguments & /*arguments*/) {
  return ze_kest_Debug_RegisterInfo("Pipeline0", TestFilterNamed("Filter0"), 0, "Thread0",
                                    _ZE_KEST_Debug_CallbackTestFunc);
}

uint32_t RemoveTestFilter(const CommandArguments & /*arguments*/) {
  return ze_kest_Debug_UnRegisterInfo(kSpeaker, TestFilterNamed("Volume"));
}

uint32_t RemoveTestPipeline(const CommandArguments & /*arguments*/) {
  return ze_kest_Debug_UnRegisterInfo(kLoopback, nullptr);
}

uint32_t ReleaseRegistry(const CommandArguments & /*arguments*/) {
  return _ZE_KEST_Debug_ReleaseDebugInfoList();
}

uint32_t ConnectTestPipelines(const CommandArguments & /*arguments*/) {
  ze_kest_Debug_ConnectPipeline(kDecoder, kSpeaker);
  return ze_kest_Debug_ConnectPipeline(kDecoder, kLoopback);
}

uint32_t DisconnectTestPipelines(const CommandArguments & /*arguments*/) {
  return ze_kest_Debug_DisconnectPipeline(kDecoder, kSpeaker);
}

uint32_t ListRegistry(const CommandArguments & /*arguments*/) {
  _ZE_KEST_Debug_PrintDebugInfoList();
  return ZE_KEST_OK;
}

uint32_t ListStatus(const CommandArguments & /*arguments*/) {
  _ZE_KEST_Debug_PrintStatusInfo();
  return ZE_KEST_OK;
}

uint32_t ListParameters(const CommandArguments & /*arguments*/) {
  _ZE_KEST_Debug_PrintSupportedParameterList();
  return ZE_KEST_OK;
}

uint32_t SendCommandByIndex(const CommandArguments &arguments) {
  if (arguments.rest.Rest() == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  const auto u32Length = static_cast<uint32_t>(ze_kest_Utility_Strlen(arguments.pszValue));
  return CallBackByIndex(ze_kest_Utility_StrToInt(arguments.pszValue, u32Length), arguments.rest.Rest());
}

uint32_t SendCommandByText(const CommandArguments &arguments) {
  const char *pszFilterName = arguments.rest.Next(",");
  char *pszText = arguments.rest.Rest();
  if (pszText == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  return _ZE_KEST_Debug_Cmd_TriggerCallback_Parse_By_Text(arguments.pszValue, pszFilterName, pszText);
}

}  // namespace kest
