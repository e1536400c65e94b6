// SPDX-License-Identifier: Apache-2.0
#include "debug/log/log_line.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

#include <unistd.h>

namespace kest {

bool LogLine::Append(const char *pszFormat, ...) {
  va_list arguments;
  va_start(arguments, pszFormat);
  const bool bWhole = AppendList(pszFormat, arguments);
  va_end(arguments);
  return bWhole;
}

bool LogLine::AppendList(const char *pszFormat, va_list arguments) {
  va_list again;
  va_copy(again, arguments);
  int s32Added = vsnprintf(pcText_ + sztLength_, sztSize_ - sztLength_, pszFormat, arguments);
  bool bWhole = s32Added >= 0;
  if (bWhole && sztLength_ + static_cast<size_t>(s32Added) >= sztSize_) {
    bWhole = Grow(sztLength_ + static_cast<size_t>(s32Added) + 1);
    // Another thread may have changed a text that is printed: it still ends within the room.
    if (bWhole) s32Added = vsnprintf(pcText_ + sztLength_, sztSize_ - sztLength_, pszFormat, again);
  }
  va_end(again);
  if (s32Added < 0) return false;
  sztLength_ = std::min(sztLength_ + static_cast<size_t>(s32Added), sztSize_ - 1);
  if (!bWhole) pcText_[sztLength_ - 1] = '\n';
  return bWhole;
}

bool LogLine::AppendNumber(int32_t s32Number) {
  constexpr size_t kLongest = sizeof("-2147483648");
  char acDigits[kLongest];
  char *const pcEnd = acDigits + kLongest;
  char *pc = pcEnd;
  const bool bNegative = s32Number < 0;
  uint32_t u32Left = static_cast<uint32_t>(s32Number);
  if (bNegative) u32Left = 0 - u32Left;
  do {
    *--pc = static_cast<char>('0' + u32Left % 10);
    u32Left /= 10;
  } while (u32Left != 0);
  if (bNegative) *--pc = '-';
  return AppendText({pc, static_cast<size_t>(pcEnd - pc)});
}

bool LogLine::Grow(size_t sztSize) {
  Owned<char> longer = Allocate<char>(sztSize);
  if (longer == nullptr) return false;
  memcpy(longer.get(), pcText_, sztLength_);
  long_ = std::move(longer);
  pcText_ = long_.get();
  sztSize_ = sztSize;
  return true;
}

ssize_t LogLine::WriteTo(int s32Fd) const {
  ssize_t s32Written = 0;
  do {
    s32Written = write(s32Fd, pcText_, sztLength_);
  } while (s32Written < 0 && errno == EINTR);
  return s32Written;
}

}  // namespace kest
