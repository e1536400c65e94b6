// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ports.h"

namespace kest::test {
namespace {

// A place in memory, aligned or not, as any of the interface's sample pointers.
struct Place {
  uint8_t *pu8;
  template <typename Sample>
  operator Sample *() const {
    return static_cast<Sample *>(static_cast<void *>(pu8));
  }
};

constexpr int Z = -1;  // a zero byte

struct Conversion {
  const char *pszName;
  uint32_t (*pfn)(Place src, Place dst, uint32_t n);
  size_t srcBytes;
  std::vector<int> bytes;  // of the source's sample that make up the destination's
  uint32_t codeForNone;
  bool bInPlace = false;
};

// clang-format off
#define KEST_CONVERT(name, ...) \
  #name, [](Place src, [[maybe_unused]] Place dst, uint32_t n) { return ze_kest_Utility_##name(__VA_ARGS__, n); }

const Conversion kConversions[] = {
    {KEST_CONVERT(ConvertPcmFrom16BitTo24Bit, src, dst), 2, {Z, 0, 1}, 0},
    {KEST_CONVERT(ConvertPcmFrom24BitTo16Bit, src, dst), 3, {1, 2}, 0},
    {KEST_CONVERT(ConvertPcmFrom16BitTo32Bit, src, dst), 2, {Z, Z, 0, 1}, 0},
    {KEST_CONVERT(ConvertPcmFrom32BitTo16Bit, src, dst), 4, {2, 3}, 0},
    {KEST_CONVERT(ConvertPcmFrom24BitTo32Bit, src, dst), 3, {Z, 0, 1, 2}, 0},
    {KEST_CONVERT(ConvertPcmFrom24LETo16Bit, src, dst), 4, {1, 2}, 0},
    {KEST_CONVERT(ConvertPcmFrom24LETo32Bit, src, dst), 4, {Z, 0, 1, 2}, 0},
    {KEST_CONVERT(Convert16BitPcmTo32BitPcm, dst, src), 2, {Z, Z, 0, 1}, 8},
    {KEST_CONVERT(Convert32BitPcmFromLow24BitToHigh24Bit, src), 4, {Z, 0, 1, 2}, 8, true},
    {KEST_CONVERT(Convert32BitPcmFromLow24BitTo16BitPcm, dst, src), 4, {1, 2}, 8},
};
// clang-format on

// Sample after sample in one memory, each read whole before it is written.
Bytes Model(const Conversion &conversion, Bytes memory, size_t src, size_t dst, uint32_t count) {
  for (; count != 0; --count, src += conversion.srcBytes) {
    std::array<uint8_t, 5> sample = {};  // and a zero byte before it
    std::copy_n(&memory[src], conversion.srcBytes, &sample[1]);
    for (const int byte : conversion.bytes)
      memory[dst++] = sample[static_cast<size_t>(byte) + 1];
  }
  return memory;
}

void ExpectLikeModel(const Conversion &conversion, size_t src, size_t dst, uint32_t count) {
  const size_t end = std::max(src + count * conversion.srcBytes, dst + count * conversion.bytes.size());
  const Bytes before = Noise(end + 1, count);
  Guarded memory(before);
  ASSERT_EQ(count == 0 ? conversion.codeForNone : 0,
            conversion.pfn({memory.Data() + src}, {memory.Data() + dst}, count));
  ASSERT_EQ(Model(conversion, before, src, dst, count), memory.Content())
      << conversion.pszName << ' ' << count << " samples from " << src << " to " << dst;
}

}  // namespace

// In place, shifted by less than a sample up to several of them either way, and apart, at every alignment.
TEST(WidthConversion, ConvertsSampleBySampleWhereverSourceAndDestinationLie) {
  for (const Conversion &conversion : kConversions) {
    for (const uint32_t count : {0u, 1u, 3u, 4u, 5u, 7u, 8u, 9u, 16u, 17u, 253u, 2048u}) {
      const size_t behind = count * size_t{4} + 4;
      for (size_t i = 0; i < 40; ++i) {
        ASSERT_NO_FATAL_FAILURE(ExpectLikeModel(conversion, i, i, count));
        if (conversion.bInPlace) continue;
        ASSERT_NO_FATAL_FAILURE(ExpectLikeModel(conversion, i, 0, count));
        ASSERT_NO_FATAL_FAILURE(ExpectLikeModel(conversion, 0, i, count));
        ASSERT_NO_FATAL_FAILURE(ExpectLikeModel(conversion, i / 4, behind + i % 4, count));
        ASSERT_NO_FATAL_FAILURE(ExpectLikeModel(conversion, behind + i / 4, i % 4, count));
      }
    }
  }
}

}  // namespace kest::test
