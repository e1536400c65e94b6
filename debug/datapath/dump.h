// SPDX-License-Identifier: Apache-2.0
// Copies what a selected filter consumed and produced in a cycle into files.
#pragma once

#include "debug/datapath/filter_selection.h"

namespace kest {

enum DumpKind : uint32_t { kInputDump = 6, kOutputDump = 7 };

// One side of a filter, as far as it is selected. u32Kind: kInputDump; any other is the output.
uint32_t _ZE_KEST_Debug_Dump(const ZE_KEST_Filter_s *pstFilter, uint32_t u32Kind);

// kest_dump_input_filter=PIPELINE,FILTER  kest_dump_input=on|off  and the like for the output and for both.
// ZE_KEST_OK when it took the line.
uint32_t _ZE_KEST_Debug_Cmd_DumpIo(const char *pszLine);

// Both dumps off, of every filter, at their first run.
void ResetDumps();

}  // namespace kest
