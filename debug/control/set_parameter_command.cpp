// SPDX-License-Identifier: Apache-2.0
// "kest_debug_set_parameter=PIPELINE,FILTER,PARAMETER,VALUE,SIZE"
#include "ze_kest/utility.h"

#include "debug/control/registry_commands.h"
#include "debug/registry/parameters.h"
#include "utility/core/number_text.h"
#include "utility/core/report.h"

namespace kest {
namespace {

constexpr const char *kFunction = "_ZE_KEST_Debug_Cmd_SetParameter";

struct Fields {
  const char *pszPipeline;
  const char *pszFilter;
  const char *pszParameter;
  const char *pszValue;
  const char *pszSize;
};

constexpr struct {
  const char *Fields::*ppszField;
  const char *pszName;
} kRequired[] = {
    {&Fields::pszPipeline, "pszPipelineName"},
    {&Fields::pszFilter, "pszFilterName"},
    {&Fields::pszParameter, "pszParameterName"},
    {&Fields::pszValue, "pszParameter"},
};

// False, after printing why, when a field is missing. The size is checked later.
bool SplitFields(CommandLine &line, Fields *pstFields) {
  for (const auto &[ppszField, pszName] : kRequired) {
    pstFields->*ppszField = line.Next(",");
    if (pstFields->*ppszField != nullptr) continue;
    KEST_PRINT_AS(kFunction, "%s %s is NULL, format error\n", kFunction, pszName);
    return false;
  }
  pstFields->pszSize = line.Rest();
  return true;
}

// False, after printing why, when a number is missing or out of range.
bool ReadNumbers(const Fields &fields, int32_t *ps32Value, uint32_t *pu32Size) {
  *ps32Value = ParseS32(fields.pszValue);
  if (IsOutOfRange(*ps32Value)) {
    KEST_PRINT_AS(kFunction, "%s wrong s32Parameter is NULL, format error\n", kFunction);
    return false;
  }
  *pu32Size = fields.pszSize == nullptr ? UINT32_MAX : ParseU32(fields.pszSize);
  if (*pu32Size == UINT32_MAX) {
    KEST_PRINT_AS(kFunction, "%s wrong u32ParameterSize is NULL, format error\n", kFunction);
    return false;
  }
  return true;
}

}  // namespace

uint32_t _ZE_KEST_Debug_Cmd_SetParameter(const CommandArguments &arguments) {
  CommandLine &line = arguments.rest;
  KEST_PRINT("%s pszDup=%s\n", __func__, line.Rest());
  const char *pszSub = line.Next("=");
  KEST_REQUIRE(line.Rest() != nullptr, "pszCmd is NULL, format error\n");
  KEST_PRINT("%s pszSub=%s, pszCmd=%s\n", __func__, pszSub, line.Rest());
  if (ze_kest_Utility_Strcmp(pszSub, "kest_debug_set_parameter") != 0) return ZE_KEST_INVALID_ARGUMENT;

  Fields fields;
  int32_t s32Value = 0;
  uint32_t u32Size = 0;
  if (!SplitFields(line, &fields) || !ReadNumbers(fields, &s32Value, &u32Size)) {
    return ZE_KEST_INVALID_ARGUMENT;
  }
  KEST_PRINT("%s %s:%s set parameter %s %d %u\n", __func__, fields.pszPipeline, fields.pszFilter,
             fields.pszParameter, s32Value, u32Size);
  _ZE_KEST_Debug_SetFilterParameter(fields.pszPipeline, fields.pszFilter, fields.pszParameter, &s32Value,
                                    u32Size);
  return ZE_KEST_OK;
}

}  // namespace kest
