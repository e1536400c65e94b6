// SPDX-License-Identifier: Apache-2.0
// The filters whose input or output is dumped: set by the commands, read by the dump.
#pragma once

#include "debug/datapath/filter_selection.h"

namespace kest {

extern FilterSelection _stKestDumpInput;
extern FilterSelection _stKestDumpOutput;

}  // namespace kest
