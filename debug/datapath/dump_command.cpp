// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/dump.h"
#include "debug/datapath/dump_selections.h"
#include "debug/datapath/keyword_commands.h"

namespace kest {

FilterSelection _stKestDumpInput = {{}, kDumpInput, 0};
FilterSelection _stKestDumpOutput = {{}, kDumpOutput, 0};

namespace {

constexpr const char *kFunction = "_ZE_KEST_Debug_Cmd_DumpIo";

// Reports a change of a selection: its stored names and, where the text has it, the number of its run.
using Confirmation = void (*)(uint32_t u32Index, const char *pszPipelineName, const char *pszFilterName);

// One side of the dump and the reports of its commands.
struct DumpTarget {
  FilterSelection &selection;
  Confirmation pfnSelected;
  Confirmation pfnEnabled;
  Confirmation pfnDisabled;
};

constexpr DumpTarget kInput = {
    _stKestDumpInput,
    [](uint32_t, const char *pszPipelineName, const char *pszFilterName) {
      KEST_PRINT_AS(kFunction, "%s dump input pipeline:%s filter:%s\n", kFunction, pszPipelineName,
                    pszFilterName);
    },
    [](uint32_t u32Index, const char *pszPipelineName, const char *pszFilterName) {
      KEST_PRINT_AS(kFunction, "%s dump input enable %u %s:%s\n", kFunction, u32Index, pszPipelineName,
                    pszFilterName);
    },
    [](uint32_t, const char *pszPipelineName, const char *pszFilterName) {
      KEST_PRINT_AS(kFunction, "%s dump input disable %s:%s\n", kFunction, pszPipelineName, pszFilterName);
    },
};

constexpr DumpTarget kOutput = {
    _stKestDumpOutput,
    [](uint32_t, const char *pszPipelineName, const char *pszFilterName) {
      KEST_PRINT_AS(kFunction, "%s dump output pipeline:%s filter:%s\n", kFunction, pszPipelineName,
                    pszFilterName);
    },
    [](uint32_t u32Index, const char *pszPipelineName, const char *pszFilterName) {
      KEST_PRINT_AS(kFunction, "%s dump output enable %u %s:%s\n", kFunction, u32Index, pszPipelineName,
                    pszFilterName);
    },
    [](uint32_t, const char *pszPipelineName, const char *pszFilterName) {
      KEST_PRINT_AS(kFunction, "%s dump output disable %s:%s\n", kFunction, pszPipelineName, pszFilterName);
    },
};

void Confirm(const DumpTarget &target, Confirmation pfnConfirmation) {
  const FilterNamesCopy names(target.selection);
  pfnConfirmation(Load(target.selection.u32DumpIndex), names.pipeline.c_str(), names.filter.c_str());
}

void Enable(const DumpTarget &target) {
  SwitchOn(target.selection.eSwitch);
  Confirm(target, target.pfnEnabled);
}

// Every off begins a new run with new files, even when the dump was off already. An on after an on continues
// the same files.
void Disable(const DumpTarget &target) {
  SwitchOff(target.selection.eSwitch);
  Store(target.selection.u32DumpIndex, Load(target.selection.u32DumpIndex) + 1);
  Confirm(target, target.pfnDisabled);
}

template <const DumpTarget &...kTargets>
uint32_t SetNames(CommandLine &value) {
  const char *pszPipelineName = NextOfSeveral(kFunction, value);
  if (pszPipelineName == nullptr) return ZE_KEST_INVALID_ARGUMENT;
  (StoreNames(kFunction, kTargets.selection, pszPipelineName, value.Rest()), ...);
  (Confirm(kTargets, kTargets.pfnSelected), ...);
  return ZE_KEST_OK;
}

template <const DumpTarget &...kTargets>
uint32_t SwitchDump(CommandLine &value) {
  return Switch(
      value, [] { (Enable(kTargets), ...); }, [] { (Disable(kTargets), ...); });
}

constexpr KeywordCommand kCommands[] = {
    {"kest_dump_input_filter", SetNames<kInput>},       {"kest_dump_output_filter", SetNames<kOutput>},
    {"kest_dump_filter_io", SetNames<kInput, kOutput>}, {"kest_dump_input", SwitchDump<kInput>},
    {"kest_dump_output", SwitchDump<kOutput>},          {"kest_dump_io", SwitchDump<kInput, kOutput>},
};

}  // namespace

uint32_t _ZE_KEST_Debug_Cmd_DumpIo(const char *pszLine) {
  return RunKeyword(kFunction, kCommands, pszLine);
}

void ResetDumps() {
  ResetSelection(_stKestDumpInput);
  ResetSelection(_stKestDumpOutput);
}

}  // namespace kest
