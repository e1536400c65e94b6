// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace kest {

// Wraps a position back into its ring by at most one lap. A position further out stays outside the ring;
// copying code has to check for that.
inline uint32_t WrapOnce(uint32_t u32Position, uint32_t u32RingSize) {
  return u32Position < u32RingSize ? u32Position : u32Position - u32RingSize;
}

}  // namespace kest
