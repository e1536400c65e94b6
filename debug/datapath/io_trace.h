// SPDX-License-Identifier: Apache-2.0
// The timing trace: which pipelines are watched, each with a file of its own.
#pragma once

#include <cstdint>
#include <cstdio>

#include "ze_kest/model.h"

namespace kest {

struct FilterIoEntry {
  char szPipelineName[ZE_KEST_NAME_SIZE];  // a prefix
  char szFilterName[ZE_KEST_NAME_SIZE];    // printed only: it does not narrow the watch
  FILE *pFile;                             // NULL when it could not be opened
  char szFile[128];
};

// Puts a copy at the end of the list. The entry's file belongs to the list from then on.
void _ZE_KEST_Debug_AddFilterIo(const FilterIoEntry &entry);

void _ZE_KEST_Debug_PrintFilterIoList();

// Closes every file and frees every entry.
void _ZE_KEST_Debug_ReleaseFilterIoList();

// Switched off, nothing watched.
void ResetIoTrace();

// kest_debug_filter_io=PIPELINE,FILTER | stop | restart | release | print_watch_list, and several of these
// separated by ",". ZE_KEST_OK when it took the line.
uint32_t _ZE_KEST_Debug_Cmd_Io(const char *pszLine);

}  // namespace kest
