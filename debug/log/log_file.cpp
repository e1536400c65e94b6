// SPDX-License-Identifier: Apache-2.0
#include "debug/log/log_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ze_kest/utility.h"

#include "debug/base/inside_log.h"
#include "utility/core/debug_dir.h"
#include "utility/core/guarded_open.h"
#include "utility/core/report.h"

namespace kest {

LostLines g_logLosses;

namespace {

constexpr const char *kLogPath = KEST_DEBUG_PATH("KestLog.txt");
constexpr uint32_t kMessagesPerSizeCheck = 1000;

uint8_t g_bToConsole = 0;
uint8_t g_bToFile = 0;
int32_t g_s32LogSizeMax = 20 * 1024 * 1024;
int32_t g_s32RestartCount = 0;
uint32_t g_u32Messages KEST_GUARDED_BY(kDebugLogLock) = 0;
FILE *g_pFile KEST_GUARDED_BY(kDebugLogLock) = nullptr;

// Locks the log file for a scope; reports made meanwhile stay out of it.
class KEST_SCOPED_CAPABILITY HoldingFile {
 public:
  HoldingFile() KEST_ACQUIRES_LOCK(kDebugLogLock) = default;
  ~HoldingFile() KEST_RELEASES_LOCK() = default;
  HoldingFile(const HoldingFile &) = delete;
  HoldingFile &operator=(const HoldingFile &) = delete;

 private:
  InsideLog inside_;
  HoldingLog holding_;
};

void CloseLog() KEST_REQUIRES_LOCK(kDebugLogLock) {
  if (g_pFile == nullptr) return;
  ze_kest_Utility_FileClose(g_pFile);
  g_pFile = nullptr;
}

bool OpenLog() KEST_REQUIRES_LOCK(kDebugLogLock) {
  if (g_pFile == nullptr) g_pFile = OpenSink(kLogPath, O_APPEND);
  return g_pFile != nullptr;
}

// Closes and empties the file.
bool EmptyLog() KEST_REQUIRES_LOCK(kDebugLogLock) {
  CloseLog();
  FILE *pFile = OpenSink(kLogPath, O_TRUNC);
  if (pFile == nullptr) return false;
  ze_kest_Utility_FileClose(pFile);
  g_logLosses.Take();  // a restart throws old lines away, whether they were written or lost
  Store(g_s32RestartCount, g_s32RestartCount + 1);
  return true;
}

bool IsLogTooLong() KEST_REQUIRES_LOCK(kDebugLogLock) {
  struct stat stFile = {};
  return fstat(fileno(g_pFile), &stFile) == 0 && stFile.st_size > Load(g_s32LogSizeMax);
}

// False for an empty file.
bool EndsInMidLine(int s32Fd) {
  struct stat stFile = {};
  char cLast = '\n';
  if (fstat(s32Fd, &stFile) != 0 || stFile.st_size == 0) return false;
  return pread(s32Fd, &cLast, 1, stFile.st_size - 1) == 1 && cLast != '\n';
}

bool OpenOrCloseLog(int bOn) {
  const HoldingFile holding;
  if (bOn != 0) return OpenLog();
  CloseLog();
  return true;
}

uint32_t SetLogToFile(int bOn) KEST_REQUIRES_LOCK(g_logSwitchMutex) {
  constexpr const char *kFunction = "_ZE_KEST_Debug_SetMode";
  Store(g_bToFile, static_cast<uint8_t>(bOn != 0));
  KEST_PRINT_AS(kFunction, "Log to file(%d)\n", bOn);
  if (OpenOrCloseLog(bOn)) return ZE_KEST_OK;
  KEST_ERR_AS(kFunction, "Err! ze_kest_Utility_FileOpen failed!\n");
  return ZE_KEST_FAILED;
}

uint32_t SwitchLogToFile(int bOn) {
  const HoldingOwned holding(g_logSwitchMutex);
  return SetLogToFile(bOn);
}

bool SwitchOffAndEmptyLog(int *pbWasOn) {
  const HoldingFile holding;
  *pbWasOn = Load(g_bToFile);
  Store(g_bToFile, uint8_t{0});
  return EmptyLog();
}

}  // namespace

uint32_t _ZE_KEST_Debug_SetMode(unsigned int eMode, int bOn) {
  switch (eMode) {
    case kLogToConsole:
      Store(g_bToConsole, static_cast<uint8_t>(bOn != 0));
      KEST_PRINT("Log to console(%d)\n", bOn);
      return ZE_KEST_OK;
    case kLogToFile:
      return SwitchLogToFile(bOn);
    default:
      KEST_ERR("Err! eMode(%d) not found\n", static_cast<int>(eMode));
      return ZE_KEST_OK;
  }
}

uint32_t _ZE_KEST_Debug_LogRestart() {
  const HoldingOwned holding(g_logSwitchMutex);
  KEST_PRINT("Log to file(%d)\n", 0);
  int bWasOn = 0;
  if (!SwitchOffAndEmptyLog(&bWasOn)) {
    KEST_ERR("Err! fopen failed!\n");
    return ZE_KEST_FAILED;
  }
  return SetLogToFile(bWasOn);
}

LostLines::Claim LostFromLog() {
  LostLines::Claim claim = g_logLosses.Take();
  claim.bInMidLine = claim.bInMidLine && EndsInMidLine(fileno(g_pFile));
  return claim;
}

void SetLogSizeMax(int32_t s32Bytes) {
  Store(g_s32LogSizeMax, s32Bytes);
}

bool IsLogToConsole() {
  return Load(g_bToConsole) != 0;
}

int32_t LogRestartCount() {
  return Load(g_s32RestartCount);
}

void ResetLogSinks() {
  Store(g_bToConsole, uint8_t{0});
  CloseLogFile();
}

void CloseLogFile() {
  const HoldingFile holding;
  Store(g_bToFile, uint8_t{0});
  CloseLog();
}

void LimitLogFile() {
  const HoldingFile holding;
  if (g_pFile != nullptr && IsLogTooLong() && EmptyLog()) OpenLog();
}

FILE *NextLogFile() {
  ++g_u32Messages;
  if (g_u32Messages % kMessagesPerSizeCheck != 0 || g_pFile == nullptr) return g_pFile;
  g_u32Messages = 0;
  if (IsLogTooLong() && EmptyLog()) OpenLog();
  return g_pFile;
}

}  // namespace kest
