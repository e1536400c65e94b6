// SPDX-License-Identifier: Apache-2.0
// The log file "KestLog.txt" and the switches of the log.
//
// The functions marked so are called with _stKestDebugLogMutex held. The others must not be, except the plain
// getters: those that touch the file take the mutex themselves.
#pragma once

#include <cstdint>
#include <cstdio>

#include "debug/log/lost_lines.h"

namespace kest {

enum LogMode : unsigned int { kLogToConsole = 0, kLogToFile = 1 };

// Switches a sink on or off. ZE_KEST_FAILED when the file cannot be opened.
uint32_t _ZE_KEST_Debug_SetMode(unsigned int eMode, int bOn);

// Empties the file. File logging resumes only if it was on.
uint32_t _ZE_KEST_Debug_LogRestart();

// Size in bytes beyond which the file is restarted; checked at every 1000th message.
void SetLogSizeMax(int32_t s32Bytes);

bool IsLogToConsole();

// How many times the file was restarted; part of every prefix.
int32_t LogRestartCount();

// Switches both sinks off and closes the file.
void ResetLogSinks();

// Switches file logging off and closes the file.
void CloseLogFile();

// Restarts a file that has grown too long without waiting for the 1000th message. For commands that print
// long lines.
void LimitLogFile();

// With the mutex held: counts one message, restarts a file that has grown too long, and returns the file to
// write to, NULL when there is none.
FILE *NextLogFile();

// The lines that the file did not take, guarded by the mutex; and, with it held, what the next line has to
// make good of them: it begins on a line of its own unless the file was emptied since.
extern LostLines g_logLosses;
LostLines::Claim LostFromLog();

// With the mutex held: begins the line with its prefix. PRINT lines have none.
void _ZE_KEST_Debug_LogPrefix(LogLine &line, unsigned int u32Level);

}  // namespace kest
