// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "tests/support/report_capture.h"
#include "tests/support/sample_model.h"

namespace {

using kest::test::Bytes;
using kest::test::Filter;
using kest::test::Guarded;

struct Reader {
  uint32_t (*pfnRead)(const ZE_KEST_Filter_s *, uint32_t, void *, uint32_t, uint32_t, uint32_t, uint32_t);
  kest::test::Convert pfnConvert;
};
constexpr Reader kAsIs = {ze_kest_Utility_ReadInputPortPcmBuffer, kest::test::AsIs};
constexpr Reader kTo16 = {ze_kest_Utility_ReadInputPortPcmBuffer_To16Bit, kest::test::To16};
constexpr Reader kTo24Le = {ze_kest_Utility_ReadInputPortPcmBuffer_To24Le, kest::test::To24Le};

struct Request {
  uint32_t first, last, frame, samples;
};

// A first channel of group 0 begins at slot 0, channel 1 too.
void Model(const Reader &reader, const ZE_KEST_PcmBuffer_s &pcm, const Request &r, Bytes &dst) {
  const uint32_t width = pcm.stPcmInfo.u32BitWidth / 8;
  for (uint32_t i = 0; i < r.samples * (r.last - r.first + 1); ++i) {
    const uint32_t frame = i % r.samples;
    const uint32_t c = r.first + i / r.samples;
    const uint32_t group = c < 2 ? 0 : c < 12 ? 1 : 2;
    const uint32_t slot = c - std::max(group == 0 ? r.first : 0, sztPcmGroupBaseChIdx[group]);
    const uint32_t at = (pcm.sztPcmReadOffset + pcm.sztPcmReadSize + frame) % pcm.sztPcmRingSamples;
    const uint8_t *pu8 = pcm.apu8PcmGroupBuf[group] + (slot * pcm.sztPcmRingSamples + at) * width;
    const Bytes sample(pu8, pu8 + width);
    const Bytes converted = r.frame == 1 ? sample : reader.pfnConvert(sample);
    std::copy(converted.begin(), converted.end(), &dst[(frame * r.frame + c - r.first) * converted.size()]);
  }
}

void ExpectLikeModel(const Reader &reader, Filter &filter, const Request &r) {
  const ZE_KEST_PcmBuffer_s &pcm = filter.In(0).st.stPcm;
  Bytes expected(size_t{r.samples} * r.frame * 4 + 1, 0x11);
  Guarded dst(expected);
  Model(reader, pcm, r, expected);
  ASSERT_EQ(ZE_KEST_OK, reader.pfnRead(filter, 0, dst.Data(), r.samples, r.first, r.last, r.frame));
  ASSERT_EQ(expected, dst.Content()) << pcm.stPcmInfo.u32BitWidth << " bits, channels " << r.first << '-'
                                     << r.last << " of " << r.frame << ", " << r.samples << " samples from "
                                     << pcm.sztPcmReadOffset << '+' << pcm.sztPcmReadSize;
}

void SweepRequests(const Reader &reader, Filter &filter, uint32_t ring) {
  for (const uint32_t samples : {0u, 1u, std::min(ring, 253u)}) {
    for (const uint32_t first : {0u, 1u, 2u, 5u}) {
      for (uint32_t frame = 1; frame <= 11; ++frame) {
        const uint32_t last = std::min(first + frame - 1, 12u);
        ASSERT_NO_FATAL_FAILURE(ExpectLikeModel(reader, filter, {first, last, frame, samples}));
        ASSERT_NO_FATAL_FAILURE(ExpectLikeModel(reader, filter, {first, first, frame, samples}));
      }
    }
  }
}

}  // namespace

TEST(InputPcm, EveryChannelLandsInItsSlotFromEveryReadPosition) {
  for (const Reader &reader : {kAsIs, kTo16, kTo24Le}) {
    for (const uint32_t bits : {16u, 24u, 32u}) {
      for (const uint32_t ring : {5u, 254u}) {
        Filter filter;
        ZE_KEST_PcmBuffer_s &pcm = filter.In(0).Pcm(bits, ring, {2, 10, 10});
        pcm.sztPcmReadSize = 2;
        for (; pcm.sztPcmReadOffset < ring; pcm.sztPcmReadOffset += ring / 4) {
          ASSERT_NO_FATAL_FAILURE(SweepRequests(reader, filter, ring));
        }
      }
    }
  }
}

TEST(InputPcm, ChannelsAndRingsThatThePortDoesNotHaveLeaveTheirSlots) {
  Filter filter;
  ZE_KEST_PcmBuffer_s &pcm = filter.In(0).Pcm(16, 4, {2, 0, 0});
  pcm.astPcmGroup[0].as32ChMap[0] = -1;
  Bytes dst(3 * 2, 0x11);
  EXPECT_EQ(8u, ze_kest_Utility_ReadInputPortPcmBuffer(filter, 0, dst.data(), 1, 2, 1, 3));
  EXPECT_EQ(8u, ze_kest_Utility_ReadInputPortPcmBuffer(filter, 0, dst.data(), 1, 0, 3, 3));
  EXPECT_EQ(8u, ze_kest_Utility_ReadInputPortPcmBuffer(filter, 0, dst.data(), 1, 0, UINT32_MAX, 3));
  pcm.sztPcmReadOffset = 9;
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_ReadInputPortPcmBuffer(filter, 0, dst.data(), 1, 0, 2, 3));
  pcm.sztPcmRingSamples = pcm.sztPcmReadOffset = 0;
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_ReadInputPortPcmBuffer(filter, 0, dst.data(), 1, 0, 2, 3));
  EXPECT_EQ(Bytes(3 * 2, 0x11), dst) << "a refused range, a position and a ring that cannot be";
  pcm.sztPcmRingSamples = 4;
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_ReadInputPortPcmBuffer(filter, 0, dst.data(), 1, 0, 2, 3));
  const uint8_t *pu8Slot1 = pcm.apu8PcmGroupBuf[0] + 4 * 2;
  EXPECT_EQ((Bytes{0x11, 0x11, pu8Slot1[0], pu8Slot1[1], 0x11, 0x11}), dst);
}

TEST(InputPcm, OnlyA32BitReadAsIsGoesBeyondTheFirstChannelOfTheLastGroup) {
  struct Case {
    const Reader &reader;
    uint32_t bits, first, last;
    std::vector<std::string> reports;
  };
  const Case cases[] = {
      {kAsIs, 32, 0, 21, {}},
      {kAsIs, 32, 0, 22, {"sztCh(22) exceeds max. ePcmGroupType=3\n"}},
      {kAsIs, 24, 0, 12, {}},
      {kAsIs, 24, 0, 13, {"sztCh(13) exceeds max. ePcmGroupType=2\n"}},
      {kAsIs, 16, 21, 21, {}},
      {kAsIs, 16, 21, 22, {"sztCh(22) exceeds max. ePcmGroupType=2\n"}},
      {kAsIs, 16, 22, 22, {"sztCh(22) exceeds max. ePcmGroupType=3\n"}},
      {kTo16, 32, 12, 13, {"sztCh(13) exceeds max. ePcmGroupType=2\n"}},
      {kTo24Le, 32, 0, UINT32_MAX - 1, {"sztCh(13) exceeds max. ePcmGroupType=2\n"}},
  };
  for (const Case &c : cases) {
    Filter filter;
    filter.In(0).Pcm(c.bits, 4, {2, 10, 10});
    const kest::test::ReportCapture capture;
    Bytes dst(22 * 4, 0x11);
    // One sample, so that the frame may claim any size.
    EXPECT_EQ(c.reports.empty() ? ZE_KEST_OK : ZE_KEST_FAILED,
              c.reader.pfnRead(filter, 0, dst.data(), 1, c.first, c.last, UINT32_MAX));
    EXPECT_EQ(c.reports, capture.Texts("<ERR>")) << c.first << '-' << c.last;
    EXPECT_EQ(c.first == 22, dst == Bytes(22 * 4, 0x11)) << "the channels before it are read";
  }
}
