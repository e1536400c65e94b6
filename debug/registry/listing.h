// SPDX-License-Identifier: Apache-2.0
// Prints the contents of the registry.
#pragma once

#include "debug/registry/registry.h"

namespace kest {

// Pipelines, filters, connections, and what the ports hold.
void _ZE_KEST_Debug_PrintDebugInfoList();

// Pieces that the status report prints too, under its own name.
void PrintRule(const char *pszFunction);
void PrintConnections(const char *pszFunction, const ZE_KEST_DebugInfo_s &info);

}  // namespace kest
