// SPDX-License-Identifier: Apache-2.0
// One line of the log file. It reaches the file in one write, whatever its length: several processes append
// to the file, and only a single write keeps their lines apart.
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

  // Adds a text. False when it cannot be formatted, which adds nothing, or when there is no memory for its
  // length, which cuts it.
  [[nodiscard]] __attribute__((format(printf, 2, 3))) bool Append(const char *pszFormat, ...);
  [[nodiscard]] __attribute__((format(printf, 2, 0))) bool AppendList(const char *pszFormat,
                                                                      va_list arguments);

  // The same for a text as it is.
  [[nodiscard]] bool AppendText(std::string_view text) {
    if (sztLength_ + text.size() >= sztSize_ && !Grow(sztLength_ + text.size() + 1)) return false;
    memcpy(pcText_ + sztLength_, text.data(), text.size());
    sztLength_ += text.size();
    return true;
  }

  // How many bytes the file has taken; negative for none.
  [[nodiscard]] ssize_t WriteTo(int s32Fd) const;
  [[nodiscard]] size_t Length() const { return sztLength_; }

 private:
  static constexpr size_t kUsualSize = 1024;

  bool Grow(size_t sztSize);

  char acUsual_[kUsualSize];  // longer lines take memory
  Owned<char> long_;
  char *pcText_ = acUsual_;
  size_t sztSize_ = kUsualSize;
  size_t sztLength_ = 0;
};

}  // namespace kest
