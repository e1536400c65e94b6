// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ports.h"

namespace kest::test {
namespace {

struct Place {
  uint32_t size, offset, advance;
};

// Every place in rings of some sizes, one that is outside still after one lap, and a ring without bytes.
std::vector<Place> Places() {
  std::vector<Place> places = {{0, 0, 0}, {0, 0, 3}};
  for (const uint32_t size : {1u, 5u, 8u}) {
    for (uint32_t i = 0; i < size * size; ++i)
      places.push_back({size, i / size, i % size});
    places.push_back({size, size, size + 1});
  }
  return places;
}

Bytes Model(Bytes dst, const Place &to, const Bytes &src, const Place &from, uint32_t count) {
  if (to.offset + to.advance > 2 * to.size || from.offset + from.advance > 2 * from.size) return dst;
  for (uint32_t i = 0; i < std::min({count, to.size, from.size}); ++i)
    dst[(to.offset + to.advance + i) % to.size] = src[(from.offset + from.advance + i) % from.size];
  return dst;
}

}  // namespace

TEST(ByteRing, CopiesInOrderFromAndToEveryPlace) {
  for (const Place &from : Places()) {
    const Bytes src = Noise(from.size, 1);
    for (uint32_t count = 0; count <= 10; ++count) {
      Guarded linear(Noise(count, 2));
      ze_kest_Utility_CopyFromRingToNonRingBuffer(linear.Data(), src.data(), from.size, from.offset,
                                                  from.advance, count);
      ASSERT_EQ(Model(Noise(count, 2), {count, 0, 0}, src, from, count), linear.Content());
      for (const Place &to : Places()) {
        Guarded dst(Noise(to.size, 2));
        ze_kest_Utility_CopyFromRingToRingBuffer(dst.Data(), to.size, to.offset, to.advance, src.data(),
                                                 from.size, from.offset, from.advance, count);
        ASSERT_EQ(Model(Noise(to.size, 2), to, src, from, count), dst.Content())
            << to.size << ' ' << to.offset + to.advance << ", " << from.size << ' '
            << from.offset + from.advance;
      }
    }
  }
}

}  // namespace kest::test
