// SPDX-License-Identifier: Apache-2.0
// The timing trace and its watch list: every watched pipeline has a file of its own.
#pragma once

#include <cstdint>
#include <cstdio>

#include "ze_kest/model.h"

namespace kest {

struct FilterIoEntry {
  char szPipelineName[ZE_KEST_NAME_SIZE];  // prefix of the watched pipelines' names
  char szFilterName[ZE_KEST_NAME_SIZE];    // printed only: it does not narrow the watch
  FILE *pFile;                             // NULL when it could not be opened
  char szFile[128];
};

// Every watch has an open file, and every event of a cycle is compared with all of them.
constexpr uint32_t kMaxWatches = 16;

// The entries of the watch list.
uint32_t WatchCount();

// Appends a copy to the list, which takes over the entry's file. Out of memory, it closes the file.
void _ZE_KEST_Debug_AddFilterIo(const FilterIoEntry &entry);

void _ZE_KEST_Debug_PrintFilterIoList();

// Closes every file and frees every entry.
void _ZE_KEST_Debug_ReleaseFilterIoList();

// Switches the trace off and empties the watch list.
void ResetIoTrace();

// kest_debug_filter_io=PIPELINE,FILTER | stop | restart | release | print_watch_list, or several of these
// separated by ",". ZE_KEST_OK when it took the line.
uint32_t _ZE_KEST_Debug_Cmd_Io(const char *pszLine);

}  // namespace kest
