// SPDX-License-Identifier: Apache-2.0
// A host in C++: reads a setting from JSON text and logs it, registers a pipeline, and is refused a
// command before the debug layer is up.
#include <string>

#include <ze_kest/debug.h>
#include <ze_kest/utility.h>

namespace {

struct JsmnContext : ZE_KEST_Jsmn_s {
  JsmnContext() { ze_kest_Utility_Jsmn_Create(this); }
  ~JsmnContext() { ze_kest_Utility_Jsmn_Destroy(this); }
};

std::string Setting(const std::string &text, const char *pszName) {
  JsmnContext context;
  context.pszStringData = text.data();
  context.sztStringDataSize = text.size();
  size_t sztSize = 0;
  ze_kest_Utility_Jsmn_FillUpTokenInfo(&context);
  const auto *pstKey = ze_kest_Utility_Jsmn_GetTokenInfo_ByDataName(&context, nullptr, pszName);
  ze_kest_Utility_Jsmn_GetDataSize_ByTokenInfo(&context, pstKey, &sztSize);
  std::string value(sztSize, '\0');
  ze_kest_Utility_Jsmn_ReadData_ByTokenInfo(&context, pstKey, value.data(), value.size());
  return value;
}

}  // namespace

int main() {
  u32KestDebugLevel = ZE_KEST_LEVEL_ERR;
  const std::string level = Setting(R"({"log": {"level": "info"}})", "level");
  ze_kest_Utility_LogToFile(stdout, "level: %s, sine: %d...\n", level.c_str(),
                            static_cast<int>(_as32KestSine1K48Mono[1]));
  const uint32_t u32Result = ze_kest_Debug_RegisterInfo("Host", nullptr, 1, "main", nullptr);
  const bool bRefused = ze_kest_Debug_SetParameter("help") == ZE_KEST_NOT_INITIALISED;
  return level == "info" && u32Result == ZE_KEST_OK && bRefused ? 0 : 1;
}
