// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/io_debug_command.h"

#include "ze_kest/result.h"

#include "debug/base/debug_mutex.h"
#include "debug/datapath/keyword_commands.h"
#include "debug/datapath/sine_output.h"
#include "debug/registry/registry.h"
#include "utility/core/begins_with.h"
#include "utility/core/report.h"

namespace kest {
namespace {

constexpr const char *kFunction = "_ZE_KEST_Debug_Cmd_DebugIo";

uint32_t SelectSineFilter(const CommandArguments &arguments) {
  const char *pszPipelineName = NextOfSeveral(kFunction, arguments.rest);
  if (pszPipelineName == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  StoreNames(kFunction, _stKestSineSelection, pszPipelineName, arguments.rest.Rest());
  const FilterNamesCopy names(_stKestSineSelection);
  KEST_INFO_AS(kFunction, "%s output sine wave pipeline:%s filter:%s\n", kFunction, names.pipeline.c_str(),
               names.filter.c_str());
  return ZE_KEST_OK;
}

uint32_t ReportSine(const char *pszChange) {
  const FilterNamesCopy names(_stKestSineSelection);
  KEST_INFO_AS(kFunction, "%s output sine wave %s %s:%s\n", kFunction, pszChange, names.pipeline.c_str(),
               names.filter.c_str());
  return ZE_KEST_OK;
}

uint32_t EnableSine(const CommandArguments & /*arguments*/) {
  RestartSine();
  SwitchOn(kOutputSineWave);
  return ReportSine("enable");
}

uint32_t DisableSine(const CommandArguments & /*arguments*/) {
  SwitchOff(kOutputSineWave);
  return ReportSine("disable");
}

uint32_t EnablePortLines(const CommandArguments & /*arguments*/) {
  SwitchOn(kPrintFilterInfo);
  KEST_INFO_AS(kFunction, "%s print filter enable\n", kFunction);
  return ZE_KEST_OK;
}

uint32_t DisablePortLines(const CommandArguments & /*arguments*/) {
  SwitchOff(kPrintFilterInfo);
  KEST_INFO_AS(kFunction, "%s print filter disable\n", kFunction);
  return ZE_KEST_OK;
}

struct LevelWord {
  const char *pszWord;
  uint32_t u32Level;
  const char *pszShown;  // deliberate: "all" and "trace" are shown as "info"
};

constexpr LevelWord kLevelWords[] = {
    {"all", ZE_KEST_LEVEL_ENTER, "info"}, {"trace", ZE_KEST_LEVEL_TRACE, "info"},
    {"info", ZE_KEST_LEVEL_INFO, "info"}, {"wrn", ZE_KEST_LEVEL_WRN, "warn"},
    {"err", ZE_KEST_LEVEL_ERR, "error"},  {"none", 0, "none"},
};

// An unknown word also means 0; it is not reported.
uint32_t ReportedLevel(const char *pszFilterName, const char *pszWord) {
  for (const LevelWord &word : kLevelWords) {
    if (ze_kest_Utility_Strcmp(pszWord, word.pszWord) != 0) continue;
    KEST_PRINT_AS(kFunction, "%s filter %s debug level %s\n", kFunction, pszFilterName, word.pszShown);
    return word.u32Level;
  }
  return 0;
}

void _ZE_KEST_Debug_SetFilterDebugLevel(const char *pszFilterName, uint32_t u32Level) {
  const HoldingDebug holding;
  for (const ZE_KEST_DebugInfo_s &info : Registry()) {
    if (info.pstFilter == nullptr || !BeginsWith(info.pstFilter->szName, pszFilterName)) continue;
    Store(info.pstFilter->u32DbgLvl, u32Level);
    KEST_PRINT("%s setDbgLvl %u\n", info.pstFilter->szName, u32Level);
  }
}

uint32_t SetFilterLevel(const CommandArguments &arguments) {
  const char *pszFilterName = NextOfSeveral(kFunction, arguments.rest);
  if (pszFilterName == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  _ZE_KEST_Debug_SetFilterDebugLevel(pszFilterName, ReportedLevel(pszFilterName, arguments.rest.Rest()));
  return ZE_KEST_OK;
}

constexpr Command kCommands[] = {
    {"kest_output_sinewave_filter", kNoValue, nullptr, nullptr, SelectSineFilter},
    {"kest_output_sinewave", "on", nullptr, nullptr, EnableSine},
    {"kest_output_sinewave", "off", nullptr, nullptr, DisableSine},
    {"kest_output_sinewave", kNoValue, nullptr, nullptr, TakeAnyway},
    {"kest_print_filter_info", "on", nullptr, nullptr, EnablePortLines},
    {"kest_print_filter_info", "off", nullptr, nullptr, DisablePortLines},
    {"kest_print_filter_info", kNoValue, nullptr, nullptr, TakeAnyway},
    {"kest_filter_debug_level", kNoValue, nullptr, nullptr, SetFilterLevel},
};

}  // namespace

uint32_t _ZE_KEST_Debug_Cmd_DebugIo(const char *pszLine) {
  return RunKeyword(kFunction, CommandTable(kCommands), pszLine);
}

}  // namespace kest
