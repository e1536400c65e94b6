// SPDX-License-Identifier: Apache-2.0
// Reports: every failure goes to both the Android log and the library's own log.
//
// The level is tested first. The arguments are evaluated only if it passes, and then twice, so they must have
// no side effects. Each text is written out in full where it is used, including "\n", so that grep finds it.
// The _AS forms take a function name, for places where __func__ is the wrong one: in a template that serves
// several functions of the interface, or for a named sub-step.
#pragma once

#include <cerrno>

#include <android/log.h>

#include "ze_kest/debug.h"
#include "ze_kest/result.h"

#include "utility/core/error_text.h"
#include "utility/core/shared_value.h"

#define KEST_LOG_TAG "<KEST>"

#define KEST_REPORT_(level, priority, label, function, text, ...)                              \
  do {                                                                                         \
    if (kest::LevelIsOn(level)) {                                                              \
      __android_log_print(priority, KEST_LOG_TAG, label "%s[%-4d]: " text, function, __LINE__, \
                          ##__VA_ARGS__);                                                      \
      ze_kest_Debug_Log(level, "%s[%-4d]: " text, function, __LINE__, ##__VA_ARGS__);          \
    }                                                                                          \
  } while (false)

#define KEST_ERR_AS(function, text, ...) \
  KEST_REPORT_(ZE_KEST_LEVEL_ERR, ANDROID_LOG_ERROR, "<ERR>", function, text, ##__VA_ARGS__)
#define KEST_WRN_AS(function, text, ...) \
  KEST_REPORT_(ZE_KEST_LEVEL_WRN, ANDROID_LOG_WARN, "<WRN>", function, text, ##__VA_ARGS__)
#define KEST_INFO_AS(function, text, ...) \
  KEST_REPORT_(ZE_KEST_LEVEL_INFO, ANDROID_LOG_INFO, "<INFO>", function, text, ##__VA_ARGS__)

// Output the user asked for: never gated, and the library's own log shows it without function name and line.
#define KEST_PRINT_AS(function, text, ...)                                                            \
  do {                                                                                                \
    __android_log_print(ANDROID_LOG_INFO, KEST_LOG_TAG, "<PRINT>%s[%-4d]: " text, function, __LINE__, \
                        ##__VA_ARGS__);                                                               \
    ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, text, ##__VA_ARGS__);                                      \
  } while (false)

#define KEST_ERR(text, ...) KEST_ERR_AS(__func__, text, ##__VA_ARGS__)
#define KEST_WRN(text, ...) KEST_WRN_AS(__func__, text, ##__VA_ARGS__)
#define KEST_INFO(text, ...) KEST_INFO_AS(__func__, text, ##__VA_ARGS__)
#define KEST_PRINT(text, ...) KEST_PRINT_AS(__func__, text, ##__VA_ARGS__)

// If the condition does not hold, reports the text at ERR level and returns result from the function.
#define KEST_REQUIRE_OR_AS(function, condition, result, text) \
  do {                                                        \
    if (!(condition)) {                                       \
      KEST_ERR_AS(function, text);                            \
      return result;                                          \
    }                                                         \
  } while (false)
#define KEST_REQUIRE_AS(function, condition, text) \
  KEST_REQUIRE_OR_AS(function, condition, ZE_KEST_INVALID_ARGUMENT, text)
#define KEST_REQUIRE_OR(condition, result, text) KEST_REQUIRE_OR_AS(__func__, condition, result, text)
#define KEST_REQUIRE(condition, text) KEST_REQUIRE_AS(__func__, condition, text)

// Makes a thread call and, if it fails, reports it together with its source text. Yields the result of the
// call.
#define KEST_THREAD_CALL_(function, call, text)                                                           \
  ([](const char *pszFunction, int s32Result) {                                                           \
    if (kest::IsThreadCallFailure(s32Result)) {                                                           \
      KEST_WRN_AS(pszFunction, "%s error:%d,%s \n", text, s32Result, kest::ErrorText(s32Result).c_str()); \
    }                                                                                                     \
    return s32Result;                                                                                     \
  }(function, (call)))
#define KEST_THREAD_CALL_AS(function, call) KEST_THREAD_CALL_(function, call, #call)
#define KEST_THREAD_CALL(call) KEST_THREAD_CALL_(__func__, call, #call)

namespace kest {

inline bool LevelIsOn(uint32_t u32Level) {
  return Load(u32KestDebugLevel) >= u32Level;
}

// A wait that reaches its deadline has not failed.
inline bool IsThreadCallFailure(int s32Result) {
  return s32Result != 0 && s32Result != ETIMEDOUT;
}

}  // namespace kest
