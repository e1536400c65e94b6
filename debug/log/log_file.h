// SPDX-License-Identifier: Apache-2.0
// The log file "KestLog.txt" and the switches of the log.
//
// The functions that say so are called with _stKestDebugLogMutex held; the others take it themselves.
#pragma once

#include <cstdint>
#include <cstdio>

namespace kest {

class LogLine;

enum LogMode : unsigned int { kLogToConsole = 0, kLogToFile = 1 };

// Switches a sink on or off. ZE_KEST_FAILED when the file cannot be opened.
uint32_t _ZE_KEST_Debug_SetMode(unsigned int eMode, int bOn);

// Empties the file; file logging resumes only if it was on.
uint32_t _ZE_KEST_Debug_LogRestart();

// Bytes beyond which the file is restarted, looked at every 1000th message.
void SetLogSizeMax(int32_t s32Bytes);

bool IsLogToConsole();

// How often the file was restarted; part of every prefix.
int32_t LogRestartCount();

// Both sinks off and the file closed.
void ResetLogSinks();

// File logging off and the file closed.
void CloseLogFile();

// With the mutex held: counts one message, restarts a file that has grown too long, and gives the file to
// write to, NULL when there is none.
FILE *NextLogFile();

// Begins a line with its prefix.
void _ZE_KEST_Debug_LogPrefix(LogLine &line, unsigned int u32Level);

}  // namespace kest
