// SPDX-License-Identifier: Apache-2.0
#include <cstdio>
#include <cstring>

#include <fcntl.h>

#include "ze_kest/debug.h"

#include "debug/base/command.h"
#include "debug/datapath/io_trace.h"
#include "debug/datapath/switches.h"
#include "utility/core/debug_dir.h"
#include "utility/core/guarded_open.h"
#include "utility/core/owned_file.h"
#include "utility/core/report.h"
#include "utility/core/text_field.h"

namespace kest {
namespace {

constexpr const char *kFunction = "_ZE_KEST_Debug_Cmd_Io";

constexpr const char *kKeyword = "kest_debug_filter_io";
constexpr Split kList = {" =", ","};

uint32_t StopTrace(const CommandArguments & /*arguments*/) {
  SwitchOff(kTraceIo);
  return ZE_KEST_OK;
}

uint32_t RestartTrace(const CommandArguments & /*arguments*/) {
  SwitchOn(kTraceIo);
  return ZE_KEST_OK;
}

uint32_t ReleaseWatchList(const CommandArguments & /*arguments*/) {
  SwitchOff(kTraceIo);
  _ZE_KEST_Debug_ReleaseFilterIoList();
  return ZE_KEST_OK;
}

uint32_t PrintWatchList(const CommandArguments & /*arguments*/) {
  KEST_PRINT_AS(kFunction, "bIoDebug=%d\n", IsOn(kTraceIo) ? 1 : 0);
  _ZE_KEST_Debug_PrintFilterIoList();
  return ZE_KEST_OK;
}

// What else a part of the list says is a name.
constexpr Command kWords[] = {
    {kKeyword, "stop", &kList, "kest_debug_filter_io=stop\n", StopTrace},
    {kKeyword, "restart", &kList, "kest_debug_filter_io=restart\n", RestartTrace},
    {kKeyword, "release", &kList, "kest_debug_filter_io=release\n", ReleaseWatchList},
    {kKeyword, "print_watch_list", &kList, "print_watch_list\n", PrintWatchList},
};

template <size_t kSize>
void CopyName(char (&szField)[kSize], const char *pszName) {
  if (!CopyText(szField, pszName)) KEST_ERR_AS(kFunction, "Err! Strncpy failed!\n");
}

// The names on a line. Deliberate: a new watch switches the trace off, so that a list is completed before it
// runs.
struct WatchNames {
  void Take(const char *pszName) {
    SwitchOff(kTraceIo);
    ++u32Count;
    if (u32Count == 1) {
      KEST_PRINT_AS(kFunction, "PipelineName=%s\n", pszName);
      CopyName(entry.szPipelineName, pszName);
    } else if (u32Count == 2) {
      KEST_PRINT_AS(kFunction, "Filter=%s\n", pszName);
      CopyName(entry.szFilterName, pszName);
    }
  }

  FilterIoEntry entry = {};
  uint32_t u32Count = 0;
};

// NULL, after a report, when the file cannot be opened.
OwnedFile Open(const char *pszPath, int s32Start) {
  OwnedFile file(OpenSink(pszPath, s32Start));
  if (file == nullptr) KEST_ERR_AS(kFunction, "Err! ze_kest_Utility_FileOpen failed!\n");
  return file;
}

// The file is named after the pipeline: it must lie in the debug directory, and must not be the log.
bool IsFileName(const char *pszPipelineName) {
  return strchr(pszPipelineName, '/') == nullptr && ze_kest_Utility_Strcmp(pszPipelineName, "KestLog") != 0;
}

// Empties the trace file, then opens it for appending. A watch that is refused leaves all files alone.
uint32_t AddWatch(FilterIoEntry &entry) {
  if (!IsFileName(entry.szPipelineName)) {
    KEST_ERR_AS(kFunction, "Err! '%s' names no trace file\n", entry.szPipelineName);
    return ZE_KEST_FAILED;
  }
  if (WatchCount() >= kMaxWatches) {
    KEST_ERR_AS(kFunction, "Err! %u watches are set already, release them first\n", kMaxWatches);
    return ZE_KEST_FAILED;
  }
  snprintf(entry.szFile, sizeof(entry.szFile), KEST_DEBUG_PATH("%s.txt"), entry.szPipelineName);
  KEST_PRINT_AS(kFunction, "szFile=%s\n", entry.szFile);
  const bool bEmptied = Open(entry.szFile, O_TRUNC) != nullptr;
  entry.pFile = Open(entry.szFile, O_APPEND).release();
  Store(pFileKestDebugPipeline, entry.pFile);
  _ZE_KEST_Debug_AddFilterIo(entry);
  return bEmptied && entry.pFile != nullptr ? ZE_KEST_OK : ZE_KEST_FAILED;
}

}  // namespace

uint32_t _ZE_KEST_Debug_Cmd_Io(const char *pszLine) {
  CommandLine line(pszLine);
  const char *pszKeyword = line.Next(kList.pszKeywordEnd);
  if (ze_kest_Utility_Strcmp(pszKeyword, kKeyword) != 0) return ZE_KEST_INVALID_ARGUMENT;
  uint32_t u32Result = ZE_KEST_INVALID_ARGUMENT;
  WatchNames names;
  while (line.Rest() != nullptr) {
    if (RunFirst(CommandTable(kWords), kFunction, pszKeyword, line) == ZE_KEST_OK) {
      u32Result = ZE_KEST_OK;
      continue;
    }
    const char *pszName = line.Next(",");
    if (*pszName == '\0') continue;
    u32Result = ZE_KEST_OK;
    names.Take(pszName);
  }
  return names.u32Count == 0 ? u32Result : AddWatch(names.entry);
}

}  // namespace kest
