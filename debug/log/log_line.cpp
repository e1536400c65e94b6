// SPDX-License-Identifier: Apache-2.0
#include "debug/log/log_line.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

#include <sys/socket.h>
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
    // Another thread may have changed a printed text in between: the result still stays within bounds.
    if (bWhole) s32Added = vsnprintf(pcText_ + sztLength_, sztSize_ - sztLength_, pszFormat, again);
  }
  va_end(again);
  if (s32Added < 0) return false;
  sztLength_ = std::min(sztLength_ + static_cast<size_t>(s32Added), sztSize_ - 1);
  if (!bWhole) pcText_[sztLength_ - 1] = '\n';
  return bWhole;
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

ssize_t LogLine::SendTo(int s32Socket) const {
  return send(s32Socket, pcText_, sztLength_, MSG_DONTWAIT | MSG_NOSIGNAL);
}

}  // namespace kest
