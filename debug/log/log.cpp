// SPDX-License-Identifier: Apache-2.0
// The library's own log: to the console without a prefix, to the file with one.
#include <cstdarg>

#include "ze_kest/debug.h"

#include "debug/base/base_init.h"
#include "debug/base/debug_mutex.h"
#include "debug/base/inside_log.h"
#include "debug/base/started.h"
#include "debug/log/console.h"
#include "debug/log/log_file.h"
#include "debug/log/log_line.h"
#include "debug/log/lost_lines.h"
#include "debug/thread/thread_watch.h"
#include "utility/core/report.h"

namespace {

void ReportFailures(const char *pszFunction, bool bFormatted, bool bFlushed) {
  if (!bFormatted) KEST_ERR_AS(pszFunction, "Error! Fail to vfprintf()!\n");
  if (!bFlushed) KEST_ERR_AS(pszFunction, "Error! Fail to fflush()!\n");
}

__attribute__((format(printf, 3, 0))) void LogToFile(FILE *pFile, unsigned int u32Level,
                                                     const char *pszFormat, va_list arguments)
    KEST_REQUIRES_LOCK(kest::kDebugLogLock) {
  kest::LogLine line;
  const kest::LostLines::Claim claim = kest::LostFromLog();
  bool bFormatted = kest::LostLines::Begin(line, claim);
  kest::_ZE_KEST_Debug_LogPrefix(line, u32Level);
  bFormatted = line.AppendList(pszFormat, arguments) && bFormatted;
  const bool bWritten = kest::g_logLosses.Settle(claim, line, line.WriteTo(fileno(pFile)));
  ReportFailures("ze_kest_Debug_Log", bFormatted, bWritten);
}

__attribute__((format(printf, 2, 0))) void LogMessage(unsigned int u32Level, const char *pszFormat,
                                                      va_list arguments) {
  if (kest::IsLogToConsole()) {
    va_list copy;
    va_copy(copy, arguments);
    kest::LogToConsole(pszFormat, copy);
    va_end(copy);
  }

  const kest::HoldingLog holding;
  FILE *pFile = kest::NextLogFile();
  if (pFile != nullptr) LogToFile(pFile, u32Level, pszFormat, arguments);
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
  const bool bFormatted = vfprintf(pFile, pszFormat, arguments) >= 0;
  ReportFailures(__func__, bFormatted, fflush(pFile) == 0);
  va_end(arguments);
}
