// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace kest {

// A position brought back into its ring by at most one lap. A position that lies further out stays beyond the
// ring: whoever copies tests for it.
inline uint32_t WrapOnce(uint32_t u32Position, uint32_t u32RingSize) {
  return u32Position < u32RingSize ? u32Position : u32Position - u32RingSize;
}

}  // namespace kest
