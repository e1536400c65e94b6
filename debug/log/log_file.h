// SPDX-License-Identifier: Apache-2.0
// The log file "KestLog.txt" and the switches of the log.
#pragma once

#include <cstdint>
#include <cstdio>

#include "debug/base/debug_mutex.h"
#include "debug/log/lost_lines.h"

namespace kest {

enum LogMode : unsigned int { kLogToConsole = 0, kLogToFile = 1 };

// Switches a sink on or off. ZE_KEST_FAILED when the file cannot be opened.
uint32_t _ZE_KEST_Debug_SetMode(unsigned int eMode, int bOn) KEST_EXCLUDES_LOCK(kDebugLogLock);

// Empties the file. File logging resumes only if it was on.
uint32_t _ZE_KEST_Debug_LogRestart() KEST_EXCLUDES_LOCK(kDebugLogLock);

// Size in bytes beyond which the file is restarted; checked at every 1000th message.
void SetLogSizeMax(int32_t s32Bytes);

bool IsLogToConsole();

// How many times the file was restarted; part of every prefix.
int32_t LogRestartCount();

// Switches both sinks off and closes the file.
void ResetLogSinks() KEST_EXCLUDES_LOCK(kDebugLogLock);

// Switches file logging off and closes the file.
void CloseLogFile() KEST_EXCLUDES_LOCK(kDebugLogLock);

// Restarts a file that has grown too long without waiting for the 1000th message. For commands that print
// long lines.
void LimitLogFile() KEST_EXCLUDES_LOCK(kDebugLogLock);

// Counts one message, restarts a file that has grown too long, and returns the file to write to, NULL when
// there is none.
FILE *NextLogFile() KEST_REQUIRES_LOCK(kDebugLogLock);

// The lines that the file did not take; and what the next line has to make good of them: it begins on a line
// of its own unless the file was emptied since.
extern LostLines g_logLosses KEST_GUARDED_BY(kDebugLogLock);
LostLines::Claim LostFromLog() KEST_REQUIRES_LOCK(kDebugLogLock);

// Begins the line with its prefix. PRINT lines have none.
void _ZE_KEST_Debug_LogPrefix(LogLine &line, unsigned int u32Level) KEST_REQUIRES_LOCK(kDebugLogLock);

}  // namespace kest
