// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

namespace kest::test {

// Content between pages that cannot be touched, at their end or at their start.
class Pages {
 public:
  explicit Pages(std::vector<uint8_t> content, bool bAtEnd = true)
      : before_(std::move(content)), sztAll_((before_.size() / Page() + 3) * Page()) {
    pu8All_ = static_cast<uint8_t *>(mmap(nullptr, sztAll_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    Protect(PROT_READ | PROT_WRITE);
    pu8Data_ = bAtEnd ? pu8All_ + sztAll_ - Page() - before_.size() : pu8All_ + Page();
    std::copy(before_.begin(), before_.end(), pu8Data_);
  }
  ~Pages() { munmap(pu8All_, sztAll_); }
  Pages(const Pages &) = delete;
  Pages &operator=(const Pages &) = delete;

  void Protect(int s32Protection) {
    EXPECT_EQ(0, mprotect(pu8All_ + Page(), sztAll_ - 2 * Page(), s32Protection));
  }
  [[nodiscard]] uint8_t *Data() const { return pu8Data_; }
  // The bytes that are not what they were at first.
  [[nodiscard]] size_t Changed() const {
    size_t sztChanged = 0;
    for (size_t i = 0; i < before_.size(); ++i)
      sztChanged += size_t{pu8Data_[i] != before_[i]};
    return sztChanged;
  }

 private:
  static size_t Page() { return static_cast<size_t>(sysconf(_SC_PAGESIZE)); }

  const std::vector<uint8_t> before_;
  const size_t sztAll_;
  uint8_t *pu8All_;
  uint8_t *pu8Data_;
};

}  // namespace kest::test
