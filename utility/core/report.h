// SPDX-License-Identifier: Apache-2.0
// Reports: every failure goes to both the Android log and the library's own log.
//
// The level is tested first, and the arguments are evaluated only behind it, once. The text is formatted once
// too, so both logs show the same, even of a name that another thread is changing. The telling half of each
// text stands whole where it is used, so that grep finds it. The _AS forms take a function name, for
// places where __func__ is the wrong one: in a template that serves several functions of the interface, or
// for a named sub-step.
#pragma once

#include <cerrno>

#include "ze_kest/debug.h"
#include "ze_kest/result.h"

#include "utility/core/error_text.h"
#include "utility/core/shared_value.h"

#define KEST_REPORT_(level, function, text, ...)                    \
  do {                                                              \
    if (kest::LevelIsOn(level)) {                                   \
      kest::Report(level, function, __LINE__, text, ##__VA_ARGS__); \
    }                                                               \
  } while (false)

#define KEST_ERR_AS(function, text, ...) KEST_REPORT_(ZE_KEST_LEVEL_ERR, function, text, ##__VA_ARGS__)
#define KEST_WRN_AS(function, text, ...) KEST_REPORT_(ZE_KEST_LEVEL_WRN, function, text, ##__VA_ARGS__)
#define KEST_INFO_AS(function, text, ...) KEST_REPORT_(ZE_KEST_LEVEL_INFO, function, text, ##__VA_ARGS__)

// Output the user asked for: never gated, and the library's own log shows it without function name and line.
#define KEST_PRINT_AS(function, text, ...) \
  kest::Report(ZE_KEST_LEVEL_PRINT, function, __LINE__, text, ##__VA_ARGS__)

#define KEST_ERR(text, ...) KEST_ERR_AS(__func__, text, ##__VA_ARGS__)
#define KEST_WRN(text, ...) KEST_WRN_AS(__func__, text, ##__VA_ARGS__)
#define KEST_INFO(text, ...) KEST_INFO_AS(__func__, text, ##__VA_ARGS__)
#define KEST_PRINT(text, ...) KEST_PRINT_AS(__func__, text, ##__VA_ARGS__)

// If the condition does not hold, reports the plain text at ERR level and returns result from the function. A
// text has nothing to evaluate, so its level is tested out of line.
#define KEST_REQUIRE_OR_AS(function, condition, result, text) \
  do {                                                        \
    if (!(condition)) {                                       \
      kest::ReportRefusal(function, __LINE__, text);          \
      return result;                                          \
    }                                                         \
  } while (false)
#define KEST_REQUIRE_AS(function, condition, text) \
  KEST_REQUIRE_OR_AS(function, condition, ZE_KEST_INVALID_ARGUMENT, text)
#define KEST_REQUIRE_OR(condition, result, text) KEST_REQUIRE_OR_AS(__func__, condition, result, text)
#define KEST_REQUIRE(condition, text) KEST_REQUIRE_AS(__func__, condition, text)

// Makes a thread call and, if it fails, reports it together with its source text. Yields the result of the
// call.
#define KEST_THREAD_CALL_AS(function, call) kest::CheckThreadCall(function, __LINE__, #call, (call))
#define KEST_THREAD_CALL(call) KEST_THREAD_CALL_AS(__func__, call)

namespace kest {

inline bool LevelIsOn(uint32_t u32Level) {
  return Load(u32KestDebugLevel) >= u32Level;
}

// Makes a report whose level has been found to be on. The macros above call it; it lies with the log, where
// reports end. Callable from any thread. Not real-time safe.
[[gnu::cold]] void Report(uint32_t u32Level, const char *pszFunction, int s32Line, const char *pszFormat, ...)
    ZE_KEST_PRINTF(4, 5);

// Report a refused argument at ERR level, and a failed thread call at WRN level, if that level is on.
[[gnu::cold]] void ReportRefusal(const char *pszFunction, int s32Line, const char *pszText);
[[gnu::cold]] void ReportThreadCall(const char *pszFunction, int s32Line, const char *pszCall, int s32Result);

// A wait that reaches its deadline has not failed.
inline int CheckThreadCall(const char *pszFunction, int s32Line, const char *pszCall, int s32Result) {
  if (s32Result != 0 && s32Result != ETIMEDOUT) ReportThreadCall(pszFunction, s32Line, pszCall, s32Result);
  return s32Result;
}

}  // namespace kest
