// SPDX-License-Identifier: Apache-2.0
#include <initializer_list>

#include "debug/datapath/keyword_commands.h"
#include "debug/datapath/latency.h"
#include "debug/datapath/latency_state.h"

namespace kest {

LatencyState _stKestLatency = {};

namespace {

constexpr const char *kFunction = "_ZE_KEST_Debug_Cmd_MeasureLatency";

// False, after a report, when one of the two names is missing.
bool TakeFilter(FilterNames &stSide, CommandLine &value) {
  const char *pszPipelineName = NextOfSeveral(kFunction, value);
  if (pszPipelineName == nullptr) return false;
  StoreNames(kFunction, stSide, pszPipelineName, value.Rest());
  return true;
}

uint32_t SetStart(CommandLine &value) {
  if (!TakeFilter(_stKestLatency.stStart, value)) return ZE_KEST_INVALID_ARGUMENT;
  const LatencyNames names;
  KEST_INFO_AS(kFunction, "%s latency start pipeline:%s filter:%s\n", kFunction, names.start.pipeline.c_str(),
               names.start.filter.c_str());
  return ZE_KEST_OK;
}

uint32_t SetEnd(CommandLine &value) {
  if (!TakeFilter(_stKestLatency.stEnd, value)) return ZE_KEST_INVALID_ARGUMENT;
  const LatencyNames names;
  KEST_INFO_AS(kFunction, "%s latency end pipeline:%s filter:%s\n", kFunction, names.end.pipeline.c_str(),
               names.end.filter.c_str());
  return ZE_KEST_OK;
}

// Changes nothing unless all four names are given.
uint32_t SetBoth(CommandLine &value) {
  const char *apszNames[3];
  for (const char *&pszName : apszNames) {
    pszName = NextOfSeveral(kFunction, value);
    if (pszName == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  }
  StoreNames(kFunction, _stKestLatency.stStart, apszNames[0], apszNames[1]);
  StoreNames(kFunction, _stKestLatency.stEnd, apszNames[2], value.Rest());
  const LatencyNames names;
  KEST_PRINT_AS(kFunction, "%s latency %s:%s - %s:%s\n", kFunction, names.start.pipeline.c_str(),
                names.start.filter.c_str(), names.end.pipeline.c_str(), names.end.filter.c_str());
  return ZE_KEST_OK;
}

void ClearSilentCycles() {
  for (uint32_t &u32Cycles : _stKestLatency.au32SilentCycles)
    Store(u32Cycles, uint32_t{0});
}

void ClearResult() {
  Store(_stKestLatency.u32TotalBytes, uint32_t{0});
  for (uint64_t *pu64Time :
       {&_stKestLatency.u64StartTime, &_stKestLatency.u64EndTime, &_stKestLatency.u64ProcTime}) {
    Store(*pu64Time, uint64_t{0});
  }
  Store(_stKestLatency.bInserted, uint8_t{0});
  Store(_stKestLatency.bFound, uint8_t{0});
}

// Does not restart a measurement that has already found its burst: that takes an off first.
void Enable() {
  ClearSilentCycles();
  SwitchOn(kMeasureLatency);
  const LatencyNames names;
  KEST_INFO_AS(kFunction, "%s latency measure enable %u %s:%s -> %s:%s\n", kFunction,
               Load(_stKestLatency.u32MeasureIndex), names.start.pipeline.c_str(), names.start.filter.c_str(),
               names.end.pipeline.c_str(), names.end.filter.c_str());
}

void Disable() {
  SwitchOff(kMeasureLatency);
  ClearResult();
  Store(_stKestLatency.u32MeasureIndex, Load(_stKestLatency.u32MeasureIndex) + 1);
  const LatencyNames names;
  KEST_INFO_AS(kFunction, "%s latency measure disable %s:%s -> %s:%s\n", kFunction,
               names.start.pipeline.c_str(), names.start.filter.c_str(), names.end.pipeline.c_str(),
               names.end.filter.c_str());
}

uint32_t SwitchLatency(CommandLine &value) {
  return Switch(value, Enable, Disable);
}

constexpr KeywordCommand kCommands[] = {
    {"kest_latency_start_filter", SetStart},
    {"kest_latency_end_filter", SetEnd},
    {"kest_latency_config", SetBoth},
    {"kest_latency", SwitchLatency},
};

}  // namespace

uint32_t _ZE_KEST_Debug_Cmd_MeasureLatency(const char *pszLine) {
  return RunKeyword(kFunction, kCommands, pszLine);
}

void ResetLatency() {
  SwitchOff(kMeasureLatency);
  ClearNames(_stKestLatency.stStart);
  ClearNames(_stKestLatency.stEnd);
  ClearSilentCycles();
  ClearResult();
  Store(_stKestLatency.u32MeasureIndex, uint32_t{0});
}

}  // namespace kest
