// SPDX-License-Identifier: Apache-2.0
// The log on standard output.
#pragma once

#include <cstdarg>

namespace kest {

// Writes one message and never waits: what standard output cannot take at once is lost.
__attribute__((format(printf, 1, 0))) void LogToConsole(const char *pszFormat, va_list arguments);

}  // namespace kest
