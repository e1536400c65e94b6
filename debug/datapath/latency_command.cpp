// SPDX-License-Identifier: Apache-2.0
#include <initializer_list>

#include "debug/datapath/keyword_commands.h"
#include "debug/datapath/latency.h"
#include "debug/datapath/latency_state.h"
#include "utility/core/report.h"

namespace kest {

LatencyState _stKestLatency = {};

namespace {

constexpr const char *kFunction = "_ZE_KEST_Debug_Cmd_MeasureLatency";

// One end of the measurement.
struct End {
  FilterNames &names;
  const char *pszName;
};

enum EndIndex : uint32_t { kStart, kEnd };

constexpr End kEnds[] = {{_stKestLatency.stStart, "start"}, {_stKestLatency.stEnd, "end"}};

uint32_t SelectEnd(const CommandArguments &arguments) {
  const End &end = kEnds[arguments.u32Constant];
  const char *pszPipelineName = NextOfSeveral(kFunction, arguments.rest);
  if (pszPipelineName == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  StoreNames(kFunction, end.names, pszPipelineName, arguments.rest.Rest());
  const FilterNamesCopy names(end.names);
  KEST_INFO_AS(kFunction, "%s latency %s pipeline:%s filter:%s\n", kFunction, end.pszName,
               names.pipeline.c_str(), names.filter.c_str());
  return ZE_KEST_OK;
}

// Changes nothing unless all four names are given.
uint32_t SelectBothEnds(const CommandArguments &arguments) {
  const char *apszNames[3];
  for (const char *&pszName : apszNames) {
    pszName = NextOfSeveral(kFunction, arguments.rest);
    if (pszName == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  }
  StoreNames(kFunction, _stKestLatency.stStart, apszNames[0], apszNames[1]);
  StoreNames(kFunction, _stKestLatency.stEnd, apszNames[2], arguments.rest.Rest());
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
uint32_t StartMeasuring(const CommandArguments & /*arguments*/) {
  ClearSilentCycles();
  SwitchOn(kMeasureLatency);
  const LatencyNames names;
  KEST_INFO_AS(kFunction, "%s latency measure enable %u %s:%s -> %s:%s\n", kFunction,
               Load(_stKestLatency.u32MeasureIndex), names.start.pipeline.c_str(), names.start.filter.c_str(),
               names.end.pipeline.c_str(), names.end.filter.c_str());
  return ZE_KEST_OK;
}

uint32_t StopMeasuring(const CommandArguments & /*arguments*/) {
  SwitchOff(kMeasureLatency);
  ClearResult();
  Store(_stKestLatency.u32MeasureIndex, Load(_stKestLatency.u32MeasureIndex) + 1);
  const LatencyNames names;
  KEST_INFO_AS(kFunction, "%s latency measure disable %s:%s -> %s:%s\n", kFunction,
               names.start.pipeline.c_str(), names.start.filter.c_str(), names.end.pipeline.c_str(),
               names.end.filter.c_str());
  return ZE_KEST_OK;
}

constexpr Command kCommands[] = {
    {"kest_latency_start_filter", kNoValue, nullptr, nullptr, SelectEnd, kStart},
    {"kest_latency_end_filter", kNoValue, nullptr, nullptr, SelectEnd, kEnd},
    {"kest_latency_config", kNoValue, nullptr, nullptr, SelectBothEnds},
    {"kest_latency", "on", nullptr, nullptr, StartMeasuring},
    {"kest_latency", "off", nullptr, nullptr, StopMeasuring},
    {"kest_latency", kNoValue, nullptr, nullptr, TakeAnyway},
};

}  // namespace

uint32_t _ZE_KEST_Debug_Cmd_MeasureLatency(const char *pszLine) {
  return RunKeyword(kFunction, CommandTable(kCommands), pszLine);
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
