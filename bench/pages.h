// SPDX-License-Identifier: Apache-2.0
// Memory at a fixed position within a page. Loads stall on earlier stores whose addresses have the same low
// 12 bits, so otherwise the results would depend on where the heap places a buffer.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace kest::bench {

class Pages {
 public:
  explicit Pages(size_t sztBytes)
      : bytes_(static_cast<uint8_t *>(aligned_alloc(kPage, RoundUp(sztBytes + kOther))), free) {
    for (size_t i = 0; i < RoundUp(sztBytes + kOther); ++i)
      bytes_.get()[i] = static_cast<uint8_t>(i * 37 + (i >> 8));
  }

  // One: at the start of a page. Other: half a page and a cache line after it, for the other side of a copy.
  [[nodiscard]] uint8_t *One() const { return bytes_.get(); }
  [[nodiscard]] uint8_t *Other() const { return bytes_.get() + kOther; }

 private:
  static constexpr size_t kPage = 4096;
  static constexpr size_t kOther = kPage / 2 + 64;
  static size_t RoundUp(size_t sztBytes) { return (sztBytes + kPage - 1) / kPage * kPage; }

  std::unique_ptr<uint8_t, void (*)(void *)> bytes_;
};

}  // namespace kest::bench
