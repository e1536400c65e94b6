// SPDX-License-Identifier: Apache-2.0
#include "player/framework/filter_entries.h"

#include <algorithm>
#include <string_view>

#include "ze_kest/debug.h"

#include "player/base/relaxed.h"
#include "player/framework/filter.h"
#include "player/framework/parameter_text.h"

namespace kest::player {
namespace {

// nullptr unless the name is known and the size is right.
const Parameter *FindParameter(const Filter &filter, const char *name, const void *value, uint32_t size) {
  if (name == nullptr || value == nullptr) return nullptr;
  for (const Parameter &parameter : filter.Parameters()) {
    if (std::string_view(name) == parameter.name) return parameter.size == size ? &parameter : nullptr;
  }
  return nullptr;
}

void LogPort(const ZE_KEST_Filter_s &record, const char *side, uint32_t number, const ZE_KEST_Port_s &port) {
  ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "%s %s %s %u: %u/%u frames, %u/%u bytes of metadata\n",
                    record.pstParentPipeline->szName, record.szName, side, number,
                    LoadRelaxed(port.stPcm.sztPcmLevel), port.stPcm.sztPcmRingSamples,
                    LoadRelaxed(port.stMeta.sztLevel), port.stMeta.sztSize);
}

void LogParameters(Filter &filter) {
  const ZE_KEST_Filter_s &record = filter.Record();
  for (const Parameter &parameter : filter.Parameters()) {
    ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "%s %s %s\n", record.pstParentPipeline->szName, record.szName,
                      ParameterText(filter, parameter).c_str());
  }
}

void LogState(Filter &filter) {
  const ZE_KEST_Filter_s &record = filter.Record();
  for (uint32_t i = 0; i < record.u32InPortCount; ++i) {
    LogPort(record, "in", i, *record.apstInPort[i]);
  }
  for (uint32_t i = 0; i < record.u32OutPortCount; ++i) {
    LogPort(record, "out", i, *record.apstOutPort[i]);
  }
  LogParameters(filter);
}

constexpr FilterCommand kCommandsOfEveryKind[] = {{"state", LogState}, {"get", LogParameters}};

bool RunOneOf(const Table<FilterCommand> &commands, Filter &filter, std::string_view text) {
  const auto *command = std::find_if(commands.begin(), commands.end(),
                                     [&](const FilterCommand &candidate) { return text == candidate.text; });
  if (command == commands.end()) return false;
  command->run(filter);
  filter.Log(ZE_KEST_LEVEL_INFO, "took the command \"%s\"", command->text);
  return true;
}

}  // namespace

uint32_t GetFilterParameter(ZE_KEST_Filter_s *pstFilter, const char *pszParameterName, void *pData,
                            uint32_t u32Size) {
  const Filter &filter = FilterOf(*pstFilter);
  const Parameter *parameter = FindParameter(filter, pszParameterName, pData, u32Size);
  if (parameter == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  parameter->get(filter, parameter->index, pData);
  return ZE_KEST_OK;
}

uint32_t SetFilterParameter(ZE_KEST_Filter_s *pstFilter, const char *pszParameterName, const void *pData,
                            uint32_t u32Size) {
  Filter &filter = FilterOf(*pstFilter);
  const Parameter *parameter = FindParameter(filter, pszParameterName, pData, u32Size);
  if (parameter == nullptr || parameter->set == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  parameter->set(filter, parameter->index, pData);
  filter.Log(ZE_KEST_LEVEL_INFO, "%s", ParameterText(filter, *parameter).c_str());
  return ZE_KEST_OK;
}

unsigned int RunFilterCommand(ZE_KEST_Filter_s *pstFilter, signed char *pszCommand) {
  if (pszCommand == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  Filter &filter = FilterOf(*pstFilter);
  const char *text = reinterpret_cast<const char *>(pszCommand);
  const bool taken = RunOneOf(kCommandsOfEveryKind, filter, text) ||
                     RunOneOf(filter.Kind().commands, filter, text) || filter.RunCommand(text);
  return taken ? ZE_KEST_OK : ZE_KEST_INVALID_ARGUMENT;
}

}  // namespace kest::player
