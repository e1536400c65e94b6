// SPDX-License-Identifier: Apache-2.0
// One line of a log, of any length. A sink gets it in a single write: several processes append to the log
// file, and only that keeps their lines apart.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <string_view>

#include <sys/types.h>

#include "utility/core/owned_memory.h"

namespace kest {

class LogLine {
 public:
  LogLine() = default;
  LogLine(const LogLine &) = delete;
  LogLine &operator=(const LogLine &) = delete;

  // Appends formatted text. False when it cannot be formatted (nothing is added) or when there is no memory
  // for its length (it is cut and ends in a newline).
  [[nodiscard]] __attribute__((format(printf, 2, 3))) bool Append(const char *pszFormat, ...);
  [[nodiscard]] __attribute__((format(printf, 2, 0))) bool AppendList(const char *pszFormat,
                                                                      va_list arguments);

  // Appends plain text. False, adding nothing, when there is no memory for its length.
  [[nodiscard]] bool AppendText(std::string_view text) {
    if (sztLength_ + text.size() >= sztSize_ && !Grow(sztLength_ + text.size() + 1)) return false;
    memcpy(pcText_ + sztLength_, text.data(), text.size());
    sztLength_ += text.size();
    return true;
  }

  // Returns the number of bytes written, negative on failure.
  [[nodiscard]] ssize_t WriteTo(int s32Fd) const;
  // The same for a socket, without waiting.
  [[nodiscard]] ssize_t SendTo(int s32Socket) const;
  [[nodiscard]] size_t Length() const { return sztLength_; }

  // What has been appended so far, terminated. Valid until the next call.
  [[nodiscard]] const char *c_str() {
    pcText_[sztLength_] = '\0';
    return pcText_;
  }

 private:
  static constexpr size_t kUsualSize = 1024;

  bool Grow(size_t sztSize);

  char acUsual_[kUsualSize];  // longer lines move to the heap
  Owned<char> long_;
  char *pcText_ = acUsual_;
  size_t sztSize_ = kUsualSize;
  size_t sztLength_ = 0;
};

}  // namespace kest
