// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ports.h"

namespace kest::test {
namespace {

struct Reader {
  uint32_t (*pfnRead)(const ZE_KEST_Filter_s *, uint32_t, void *, uint32_t, uint32_t, uint32_t, uint32_t);
  uint32_t (*pfnRing)(const uint8_t *, const uint8_t *, uint32_t, uint8_t *, uint64_t, uint32_t, uint32_t);
  const char *pszFunction;
  uint32_t width;  // in the destination; 0: as in the ring
};
constexpr Reader kAsIs = {ze_kest_Utility_ReadInputPortPcmBuffer,
                          ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer,
                          "ze_kest_Utility_ReadInputPortPcmBuffer", 0};
constexpr Reader kTo16 = {ze_kest_Utility_ReadInputPortPcmBuffer_To16Bit,
                          ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To16Bit,
                          "ze_kest_Utility_ReadInputPortPcmBuffer_To16Bit", 2};
constexpr Reader kTo24Le = {ze_kest_Utility_ReadInputPortPcmBuffer_To24Le,
                            ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To24Le,
                            "ze_kest_Utility_ReadInputPortPcmBuffer_To24Le", 4};

struct Request {
  uint32_t first, last, frame, samples;
};

// Channel by channel. A first channel of group 0 begins at slot 0, channel 1 too.
void Model(const Reader &reader, const ZE_KEST_PcmBuffer_s &pcm, const Request &r, uint8_t *pu8Dst) {
  const uint32_t width = pcm.stPcmInfo.u32BitWidth / 8;
  const uint32_t ring = pcm.sztPcmRingSamples * width;
  const uint32_t position = (pcm.sztPcmReadOffset + pcm.sztPcmReadSize) % pcm.sztPcmRingSamples * width;
  for (uint32_t c = r.first; c <= r.last; ++c) {
    const uint32_t group = c < 2 ? 0 : c < 12 ? 1 : 2;
    const uint32_t slot = c - (group == 0 ? r.first : sztPcmGroupBaseChIdx[group]);
    const uint8_t *pu8Ring = pcm.apu8PcmGroupBuf[group] + size_t{slot} * ring;
    reader.pfnRing(pu8Ring, pu8Ring + position, ring, pu8Dst, r.samples * width, r.frame, width);
    pu8Dst += reader.width == 0 ? width : reader.width;
  }
}

void ExpectLikeModel(const Reader &reader, Filter &filter, const Request &r) {
  const ZE_KEST_PcmBuffer_s &pcm = filter.In(0).st.stPcm;
  Guarded expected(Bytes(size_t{r.samples} * r.frame * 4 + 1, 0x11));
  Guarded dst = expected;
  Model(reader, pcm, r, expected.Data());
  ASSERT_EQ(ZE_KEST_OK, reader.pfnRead(filter, 0, dst.Data(), r.samples, r.first, r.last, r.frame));
  ASSERT_EQ(expected.Content(), dst.Content())
      << pcm.stPcmInfo.u32BitWidth << " bits, channels " << r.first << '-' << r.last << " of " << r.frame
      << ", " << r.samples << " samples from " << pcm.sztPcmReadOffset << '+' << pcm.sztPcmReadSize;
}

void SweepRequests(const Reader &reader, Filter &filter) {
  for (const uint32_t samples : {0u, 1u, 5u}) {
    for (const uint32_t first : {0u, 1u, 5u}) {
      for (const uint32_t frame : {1u, 3u, 11u}) {
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
      Filter filter;
      ZE_KEST_PcmBuffer_s &pcm = filter.In(0).Pcm(bits, 5, {2, 10, 10});
      pcm.sztPcmReadSize = 2;
      for (; pcm.sztPcmReadOffset < 5; ++pcm.sztPcmReadOffset)
        ASSERT_NO_FATAL_FAILURE(SweepRequests(reader, filter));
    }
  }
}

TEST(InputPcm, ChannelsAndRingsThatThePortDoesNotHaveLeaveTheirSlots) {
  Filter filter;
  ZE_KEST_PcmBuffer_s &pcm = filter.In(0).Pcm(32, 64, {2, 0, 0});
  pcm.astPcmGroup[0].as32ChMap[0] = -1;
  Bytes dst(12, 0x11);
  EXPECT_EQ(8u, ze_kest_Utility_ReadInputPortPcmBuffer(filter, 0, dst.data(), 1, 2, 1, 3));
  EXPECT_EQ(8u, ze_kest_Utility_ReadInputPortPcmBuffer(filter, 0, dst.data(), 1, 0, 1, 1));
  EXPECT_EQ(8u, ze_kest_Utility_ReadInputPortPcmBuffer(filter, 0, dst.data(), 1, 0, 3, 3));
  EXPECT_EQ(8u, ze_kest_Utility_ReadInputPortPcmBuffer(filter, 0, dst.data(), 1, 0, UINT32_MAX, 3));
  pcm.sztPcmReadOffset = 0x40000040;  // in bytes and less a lap, 0 in 32 bits
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_ReadInputPortPcmBuffer(filter, 0, dst.data(), 1, 0, 2, 3));
  pcm.sztPcmRingSamples = pcm.sztPcmReadOffset = 0;
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_ReadInputPortPcmBuffer(filter, 0, dst.data(), 1, 0, 2, 3));
  EXPECT_EQ(Bytes(12, 0x11), dst) << "a refused range, a position and a ring that cannot be";
  pcm.sztPcmRingSamples = 64;
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_ReadInputPortPcmBuffer(filter, 0, dst.data(), 1, 0, 2, 3));
  const Bytes storage = filter.In(0).groups[0].Content();
  Bytes expected(12, 0x11);
  std::copy_n(&storage[64 * 4], 4, &expected[4]);
  EXPECT_EQ(expected, dst);
}

TEST(InputPcm, OnlyA32BitReadAsIsGoesBeyondTheFirstChannelOfTheLastGroup) {
  struct Case {
    const Reader &reader;
    uint32_t bits, first, last;
    Texts reports;
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
    const ReportCapture capture;
    Bytes dst(88, 0x11);
    // One sample, so that the frame may claim any size.
    EXPECT_EQ(c.reports.empty() ? ZE_KEST_OK : ZE_KEST_FAILED,
              c.reader.pfnRead(filter, 0, dst.data(), 1, c.first, c.last, UINT32_MAX));
    EXPECT_EQ(c.reports, capture.Texts("<ERR>")) << c.first << '-' << c.last;
    for (const Report &report : capture.Reports())
      EXPECT_EQ(c.reader.pszFunction, report.function);
    EXPECT_EQ(c.first == 22, dst == Bytes(88, 0x11)) << "the channels before it are read";
  }
}

}  // namespace kest::test
