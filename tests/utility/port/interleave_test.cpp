// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ports.h"

namespace kest::test {
namespace {

constexpr uint32_t kRing = 5;  // samples

struct Move {
  bool bToFrames;
  uint32_t group, bits, channels, offset, advance, samples;
};

// Sample by sample.
void Model(const Move &m, Bytes &storage, Bytes &frames) {
  const size_t width = m.bits / 8;
  if (m.channels != 1 && (width < 2 || width > 4)) return;
  const uint32_t position = m.offset + m.advance - (m.offset + m.advance < kRing ? 0 : kRing);
  for (uint32_t i = 0; i < m.samples && position + i < 2 * kRing; ++i) {
    for (uint32_t k = 0; k < std::min(m.channels, sztPcmGroupChNumber[m.group]); ++k) {
      uint8_t *pu8Ring = &storage[(k * kRing + (position + i) % kRing) * width];
      uint8_t *pu8Frame = &frames[(i * m.channels + k) * width];
      std::copy_n(m.bToFrames ? pu8Ring : pu8Frame, width, m.bToFrames ? pu8Frame : pu8Ring);
    }
  }
}

// The port's channel map names no channel, and its format no width. channels, bits: what the call says.
void ExpectLikeModel(const Move &m, uint32_t channels, uint32_t bits) {
  std::array<uint32_t, 3> slots = {};
  slots[m.group] = sztPcmGroupChNumber[m.group];
  Port port;
  port.Pcm(m.bits, kRing, slots).sztPcmReadOffset = m.offset;
  port.st.stPcm.stPcmInfo.u32BitWidth = 0;
  std::fill_n(port.st.stPcm.astPcmGroup[m.group].as32ChMap, ZE_KEST_PCM_GROUP_SLOTS, -1);
  Bytes storage = port.groups[m.group].Content();
  Bytes frames = Noise(size_t{m.samples} * m.channels * (m.bits / 8), 9);
  Guarded ownFrames(frames);
  Model(m, storage, frames);
  const uint32_t code =
      m.bToFrames ? ze_kest_Utility_ConvertNonInterleaveToInterleave(
                        ownFrames.Data(), &port.st.stPcm, m.group, channels, m.advance, m.samples, bits / 8)
                  : ze_kest_Utility_ConvertInterleaveToNonInterleave(channels, bits, &port.st.stPcm, m.group,
                                                                     m.advance, ownFrames.Data(), m.samples);
  ASSERT_TRUE(code == 0 && storage == port.groups[m.group].Content() && frames == ownFrames.Content())
      << (m.bToFrames ? "to" : "from") << " frames of " << channels << ", group " << m.group << ", " << bits
      << " bits, " << m.samples << " samples at " << m.offset << '+' << m.advance;
}

template <typename Visit>
void ForEachMove(bool bToFrames, Visit visit) {
  for (const auto &[offset, advance] :
       {std::pair{0u, 0u}, {1u, 0u}, {2u, 0u}, {3u, 3u}, {4u, 0u}, {4u, 4u}, {9u, 9u}}) {
    for (uint32_t i = 0; i < 3 * 13 * 5; ++i) {
      for (const uint32_t samples : {0u, 1u, 5u, 12u}) {
        const Move move = {bToFrames, i % 3, 8 + i / 39 * 8, i / 3 % 13, offset, advance, samples};
        ASSERT_NO_FATAL_FAILURE(visit(move));
      }
    }
  }
}

}  // namespace

TEST(Interleave, FramesTakeEverySlotOfTheGroupAndKeepTheirStrideBeyondIt) {
  ForEachMove(true, [](const Move &m) { ExpectLikeModel(m, m.channels, m.bits); });
}

TEST(Interleave, SlotsTakeTheirChannelOfTheFramesAndWrongFormatsCountAsStereoAnd16Bits) {
  ForEachMove(false, [](Move m) {
    const uint32_t given = m.channels;
    if (given == 0 || given > sztPcmGroupChNumber[m.group]) m.channels = 2;
    ExpectLikeModel(m, given, m.bits);
    if (m.bits == 16) ExpectLikeModel(m, given, 0);
  });
}

}  // namespace kest::test
