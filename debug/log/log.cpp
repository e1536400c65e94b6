// SPDX-License-Identifier: Apache-2.0
// The library's own log: to the console as it is, to the file with a prefix.
#include <cstdarg>

#include "ze_kest/debug.h"

#include "debug/control/debug_mutex.h"
#include "debug/control/startup.h"
#include "debug/log/inside_log.h"
#include "debug/log/log_file.h"
#include "debug/thread/thread_watch.h"
#include "utility/core/report.h"

namespace {

__attribute__((format(printf, 3, 0))) void WriteMessage(const char *pszFunction, FILE *pFile,
                                                        const char *pszFormat, va_list arguments) {
  if (vfprintf(pFile, pszFormat, arguments) < 0) {
    KEST_ERR_AS(pszFunction, "Error! Fail to vfprintf()!\n");
  }
  if (fflush(pFile) != 0) KEST_ERR_AS(pszFunction, "Error! Fail to fflush()!\n");
}

__attribute__((format(printf, 2, 0))) void LogMessage(unsigned int u32Level, const char *pszFormat,
                                                      va_list arguments) {
  if (kest::IsLogToConsole()) {
    va_list copy;
    va_copy(copy, arguments);
    vprintf(pszFormat, copy);
    va_end(copy);
  }

  const kest::HoldingLog holding;
  FILE *pFile = kest::NextLogFile();
  if (pFile == nullptr) return;
  kest::_ZE_KEST_Debug_LogPrefix(pFile, u32Level);
  WriteMessage("ze_kest_Debug_Log", pFile, pszFormat, arguments);
}

}  // namespace

void ze_kest_Debug_Log(unsigned int u32Level, const char *pszFormat, ...) {
  if (kest::InsideLog::IsThisThread() || pszFormat == nullptr) return;
  const kest::InsideLog inside;
  kest::_ZE_KEST_Debug_Init();
  if (!kest::IsStarted() || !kest::IsThisThreadLogged()) return;

  va_list arguments;
  va_start(arguments, pszFormat);
  LogMessage(u32Level, pszFormat, arguments);
  va_end(arguments);
}

void ze_kest_Utility_LogToFile(FILE *pFile, const char *pszFormat, ...) {
  if (pFile == nullptr || pszFormat == nullptr) return;
  va_list arguments;
  va_start(arguments, pszFormat);
  WriteMessage(__func__, pFile, pszFormat, arguments);
  va_end(arguments);
}
