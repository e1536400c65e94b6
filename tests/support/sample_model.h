// SPDX-License-Identifier: Apache-2.0
// What the conversions of the ring reads make of a sample, byte by byte; no bytes where they handle no such
// width.
#pragma once

#include "tests/support/ports.h"

namespace kest::test {

using Convert = Bytes (*)(const Bytes &);

inline Bytes AsIs(const Bytes &s) {
  return s.size() >= 2 && s.size() <= 4 ? s : Bytes{};
}
inline Bytes To16(const Bytes &s) {
  return s.size() == 4 ? Bytes{s[2], s[3]} : s.size() == 2 ? s : Bytes{};
}
inline Bytes To24Le(const Bytes &s) {
  return s.size() == 4 ? Bytes{s[1], s[2], s[3], 0} : s.size() == 2 ? Bytes{0, s[0], s[1], 0} : Bytes{};
}
inline Bytes To32(const Bytes &s) {
  return s.size() == 4 ? s : s.size() == 2 ? Bytes{0, 0, s[0], s[1]} : Bytes{};
}

}  // namespace kest::test
