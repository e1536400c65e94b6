// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/dump.h"
#include "debug/datapath/dump_selections.h"
#include "debug/datapath/keyword_commands.h"
#include "utility/core/report.h"

namespace kest {

FilterSelection _stKestDumpInput = {{}, kDumpInput};
FilterSelection _stKestDumpOutput = {{}, kDumpOutput};

namespace {

constexpr const char *kFunction = "_ZE_KEST_Debug_Cmd_DumpIo";

// The sides of a filter that a command is for, as bits.
enum Sides : uint32_t { kInputSide = 1, kOutputSide = 2, kBothSides = kInputSide | kOutputSide };

struct SelectedSide {
  Sides eSide;
  const char *pszName;
  FilterSelection &selection;
};

constexpr SelectedSide kSides[] = {{kInputSide, "input", _stKestDumpInput},
                                   {kOutputSide, "output", _stKestDumpOutput}};

template <typename Action>
uint32_t ForEachSide(uint32_t u32Sides, Action &&action) {
  for (const SelectedSide &side : kSides) {
    if ((u32Sides & side.eSide) != 0) action(side);
  }
  return ZE_KEST_OK;
}

uint32_t SelectDumpedFilter(const CommandArguments &arguments) {
  const char *pszPipelineName = NextOfSeveral(kFunction, arguments.rest);
  if (pszPipelineName == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  const char *pszFilterName = arguments.rest.Rest();
  return ForEachSide(arguments.u32Constant, [=](const SelectedSide &side) {
    StoreNames(kFunction, side.selection, pszPipelineName, pszFilterName);
    const FilterNamesCopy names(side.selection);
    KEST_PRINT_AS(kFunction, "%s dump %s pipeline:%s filter:%s\n", kFunction, side.pszName,
                  names.pipeline.c_str(), names.filter.c_str());
  });
}

uint32_t EnableDump(const CommandArguments &arguments) {
  return ForEachSide(arguments.u32Constant, [](const SelectedSide &side) {
    SwitchOn(side.selection.eSwitch);
    const FilterNamesCopy names(side.selection);
    KEST_PRINT_AS(kFunction, "%s dump %s enable %u %s:%s\n", kFunction, side.pszName,
                  Load(side.selection.u32DumpIndex), names.pipeline.c_str(), names.filter.c_str());
  });
}

// Every off begins a new run with new files, even when the dump was off already. An on after an on continues
// the same files.
uint32_t DisableDump(const CommandArguments &arguments) {
  return ForEachSide(arguments.u32Constant, [](const SelectedSide &side) {
    SwitchOff(side.selection.eSwitch);
    Store(side.selection.u32DumpIndex, Load(side.selection.u32DumpIndex) + 1);
    const FilterNamesCopy names(side.selection);
    KEST_PRINT_AS(kFunction, "%s dump %s disable %s:%s\n", kFunction, side.pszName, names.pipeline.c_str(),
                  names.filter.c_str());
  });
}

constexpr Command kCommands[] = {
    {"kest_dump_input_filter", kNoValue, nullptr, nullptr, SelectDumpedFilter, kInputSide},
    {"kest_dump_output_filter", kNoValue, nullptr, nullptr, SelectDumpedFilter, kOutputSide},
    {"kest_dump_filter_io", kNoValue, nullptr, nullptr, SelectDumpedFilter, kBothSides},
    {"kest_dump_input", "on", nullptr, nullptr, EnableDump, kInputSide},
    {"kest_dump_input", "off", nullptr, nullptr, DisableDump, kInputSide},
    {"kest_dump_input", kNoValue, nullptr, nullptr, TakeAnyway},
    {"kest_dump_output", "on", nullptr, nullptr, EnableDump, kOutputSide},
    {"kest_dump_output", "off", nullptr, nullptr, DisableDump, kOutputSide},
    {"kest_dump_output", kNoValue, nullptr, nullptr, TakeAnyway},
    {"kest_dump_io", "on", nullptr, nullptr, EnableDump, kBothSides},
    {"kest_dump_io", "off", nullptr, nullptr, DisableDump, kBothSides},
    {"kest_dump_io", kNoValue, nullptr, nullptr, TakeAnyway},
};

}  // namespace

uint32_t _ZE_KEST_Debug_Cmd_DumpIo(const char *pszLine) {
  return RunKeyword(kFunction, CommandTable(kCommands), pszLine);
}

void ResetDumps() {
  ResetSelection(_stKestDumpInput);
  ResetSelection(_stKestDumpOutput);
}

}  // namespace kest
