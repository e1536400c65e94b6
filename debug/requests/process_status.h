// SPDX-License-Identifier: Apache-2.0
// The command that asks a pipeline or a filter for its processing status.
#pragma once

#include <cstdint>

namespace kest {

// kest_process_status=pipeline,PIPELINE | filter,PIPELINE:FILTER | none. ZE_KEST_OK when it took the line. A
// line of any other command drops the query.
uint32_t _ZE_KEST_Debug_Cmd_QueryProcessStatus(const char *pszLine);

void ResetProcessStatusQuery();

}  // namespace kest
