// SPDX-License-Identifier: Apache-2.0
// Copies into files what a selected filter consumed and produced in a cycle.
#pragma once

#include "debug/datapath/filter_selection.h"

namespace kest {

enum DumpKind : uint32_t { kInputDump = 6, kOutputDump = 7 };

// Dumps one side of the filter if it is selected: the input for kInputDump, the output for any other u32Kind.
uint32_t _ZE_KEST_Debug_Dump(const ZE_KEST_Filter_s *pstFilter, uint32_t u32Kind);

// kest_dump_input_filter=PIPELINE,FILTER  kest_dump_input=on|off  kest_dump_output_filter, kest_dump_output:
// the same for the output; kest_dump_filter_io, kest_dump_io: for both. ZE_KEST_OK when it took the line.
uint32_t _ZE_KEST_Debug_Cmd_DumpIo(const char *pszLine);

// Switches both dumps off, selects every filter and goes back to run 0.
void ResetDumps();

}  // namespace kest
