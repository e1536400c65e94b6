// SPDX-License-Identifier: Apache-2.0
// The expectations of a harness. A violated one ends the run with a description.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "ze_kest/result.h"

namespace kest::fuzz {

using Bytes = std::vector<unsigned char>;

inline void Expect(bool bHolds, const char *pszWhat) {
  if (bHolds) return;
  fprintf(stderr, "MISMATCH: %s\n", pszWhat);
  abort();
}

inline void ExpectEqual(unsigned long long u64Expected, unsigned long long u64Actual, const char *pszWhat) {
  if (u64Expected == u64Actual) return;
  fprintf(stderr, "MISMATCH: %s: expected %llu, got %llu\n", pszWhat, u64Expected, u64Actual);
  abort();
}

inline void ExpectBytes(const Bytes &expected, const Bytes &actual, const char *pszWhat) {
  ExpectEqual(expected.size(), actual.size(), pszWhat);
  for (size_t i = 0; i < expected.size(); ++i) {
    if (expected[i] == actual[i]) continue;
    fprintf(stderr, "MISMATCH: %s: byte %zu of %zu: expected %02x, got %02x\n", pszWhat, i, expected.size(),
            expected[i], actual[i]);
    abort();
  }
}

}  // namespace kest::fuzz
