// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/latency.h"

#include <thread>

#include "debug/datapath/latency_state.h"
#include "debug/registry/registry.h"
#include "tests/support/fake_counters.h"
#include "tests/support/ports.h"

namespace kest::test {
namespace {

constexpr uint32_t kRing = 128;
constexpr size_t kPlanes[] = {2, 10, 10};

class Latency : public testing::Test {
 protected:
  void SetUp() override {
    EmptyDebugDirectory();
    ResetLatency();
  }
  void TearDown() override { ResetLatency(); }

  ReportCapture capture;
  FakeCounters clock;
};

uint32_t Send(const char *pszLine) {
  return _ZE_KEST_Debug_Cmd_MeasureLatency(pszLine);
}

// A group's storage in which every plane's held samples begin with the data and are silent behind it.
Bytes Changed(Bytes group, size_t sztPlanes, const ZE_KEST_PcmBuffer_s &pcm, const uint8_t *pu8Data,
              size_t sztDataBytes) {
  const size_t sztWidth = pcm.stPcmInfo.u32BitWidth / 8;
  for (size_t k = 0; k < sztPlanes; ++k) {
    for (size_t i = 0; i < pcm.sztPcmLevel * sztWidth; ++i) {
      const size_t sztAt = (pcm.sztPcmReadOffset * sztWidth + i) % (kRing * sztWidth);
      group[k * kRing * sztWidth + sztAt] = i < sztDataBytes ? pu8Data[i] : 0;
    }
  }
  return group;
}

TEST_F(Latency, TheInputIsSilentFor500CyclesThenCarriesTheBurstAndIsLeftAlone) {
  const std::array<uint32_t, 4> aPorts[] = {
      {32, 100, 60, 96000}, {24, 0, 128, 96000}, {16, 90, 48, 96000}, {32, 120, 30, 0}};
  for (const auto &[u32Bits, sztReadOffset, sztLevel, u32Rate] : aPorts) {
    SCOPED_TRACE(u32Bits);
    SetUp();
    clock.u64NowUs = 7000;
    Filter filter;
    Port &port = filter.In(2);
    ZE_KEST_PcmBuffer_s &pcm = port.Pcm(u32Bits, kRing, {2, 10, 10});
    pcm.sztPcmReadOffset = sztReadOffset;
    pcm.sztPcmLevel = sztLevel;
    pcm.s64PcmPts = 77;
    Port &unconnected = filter.In(0);
    unconnected.Pcm(16, kRing, {2, 0, 0}).sztPcmLevel = 9;
    unconnected.st.bConnected = 0;
    const Bytes untouched = unconnected.groups[0].Content();
    filter.In(1).Pcm(16, kRing, {2, 0, 0});  // empty
    filter.Out(0).Pcm(16, kRing, {0, 0, 0}).sztPcmLevel = 960;
    filter.Out(0).st.stPcm.stPcmInfo.u32SampleRate = u32Rate;
    ze_kest_Debug_RegisterInfo("pipe", nullptr, 0, nullptr, nullptr);
    ze_kest_Debug_RegisterInfo("pipe", filter, 0, nullptr, nullptr);
    EXPECT_EQ(ZE_KEST_OK, Send("kest_latency=on"));
    for (const uint32_t i : {1u, 2u, 500u, 501u, 502u}) {
      if (i == 500) _stKestLatency.au32SilentCycles[2] += 497;
      for (uint32_t g = 0; g < ZE_KEST_PCM_GROUPS; ++g) {
        const Bytes noise = Noise(kPlanes[g] * kRing * (u32Bits / 8), g);
        std::copy(noise.begin(), noise.end(), port.groups[g].Data());
      }
      EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_MeasureLatency(filter, ZE_KEST_LATENCY_START));
      ASSERT_EQ(i > 500, IsMarked(_stKestLatency.bInserted)) << i;
      const size_t sztBurst = i == 501 ? std::min<size_t>(sztLevel, 48) * (u32Bits / 8) : 0;
      for (uint32_t g = 0; g < ZE_KEST_PCM_GROUPS; ++g) {
        const Bytes noise = Noise(kPlanes[g] * kRing * (u32Bits / 8), g);
        const auto *pu8Sine = reinterpret_cast<const uint8_t *>(_as32KestSine1K48Mono);
        ASSERT_TRUE((i == 502 ? noise : Changed(noise, kPlanes[g], pcm, pu8Sine, sztBurst)) ==
                    port.groups[g].Content())
            << "cycle " << i << ", group " << g;
      }
    }
    EXPECT_EQ(7000u, _stKestLatency.u64StartTime);
    EXPECT_EQ(untouched, unconnected.groups[0].Content());
    EXPECT_EQ(0u, _stKestLatency.au32SilentCycles[0] + _stKestLatency.au32SilentCycles[1]);
    _ZE_KEST_Debug_ReleaseDebugInfoList();
  }
  const std::string insert = "[latency] insert pipe:filter input 248k sine wave pts:77 \n";
  const std::string cut = "[latency] pipe:filter input 2 48k sine waveonly 30 not 48 samples)\n";
  const std::string held = "[latency] p:pipe                 f:filter          outLvl:960       , ";
  const std::string at96 = held + "10   ms\n";
  EXPECT_EQ((Texts{insert, at96, insert, at96, insert, at96, cut, insert, held + "20   ms\n"}),
            capture.Texts("<PRINT>"));
}

// What the end filter wrote: behind level samples, from the read offset on.
struct Written {
  uint32_t u32Bits, sztReadOffset, sztLevel, sztWriteSize;
};

struct LoudWord {
  size_t sztByte;  // of the storage
  int32_t s32Value;
};

constexpr int kNoHit = -1;

struct EndCase {
  const char *pszWhy;
  Written written;
  LoudWord loud;
  int s32Hit;  // bytes scanned before it
  uint32_t u32Planes = 2;
};

TEST_F(Latency, TheEndFindsTheFirstLoudWordOfItsOutput) {
  constexpr Written kMiddle = {32, 0, 10, 20};
  constexpr Written kRound = {32, 100, 20, 20};  // the last 8 samples of the ring, then 12
  const EndCase aCases[] = {
      {"above the threshold", kMiddle, {4 * 15, 21474837}, 20},
      {"below the negative one", kMiddle, {4 * 15, -21474837}, 20},
      {"the least number", kMiddle, {4 * 15, INT32_MIN}, 20},
      {"at the threshold", kMiddle, {4 * 15, 21474836}, kNoHit},
      {"at the negative one", kMiddle, {4 * 15, -21474836}, kNoHit},
      {"before what was written", kMiddle, {4 * 9, INT32_MAX}, kNoHit},
      {"the word behind the ring is looked at", kRound, {4 * kRing, INT32_MAX}, 32},
      {"and counts", kRound, {4 * 2, INT32_MAX}, 44},
      {"begins behind the wrap", {32, 100, 60, 20}, {4 * 33, INT32_MAX}, 4},
      {"whole words, counted as samples", {16, 0, 10, 20}, {2 * 10 + 4 * 19, INT32_MAX}, 38},
      {"two bytes beyond the last word", {16, 0, 120, 20}, {2 * kRing + 2, INT32_MAX}, kNoHit},
      {"a word across the ring's end", {24, 0, 127, 2}, {3 * kRing - 3, 0x7F000000}, 0},
      {"none behind the last plane", kRound, {0, 0}, kNoHit, 1},
      {"nor room for words", {16, 0, 120, 20}, {0, 0}, kNoHit, 1},
  };
  for (const EndCase &c : aCases) {
    SCOPED_TRACE(c.pszWhy);
    SetUp();
    Filter filter;
    Port &port = filter.Out(0);
    ZE_KEST_PcmBuffer_s &pcm = port.Pcm(c.written.u32Bits, kRing, {c.u32Planes, 0, 0});
    uint8_t *pu8Base = port.groups[0].Data();
    const size_t sztWidth = c.written.u32Bits / 8;
    pcm.asztPcmAllocSize[0] = c.u32Planes * kRing * (c.written.u32Bits / 8);
    memset(pu8Base, 0, pcm.asztPcmAllocSize[0]);
    memcpy(pu8Base + c.loud.sztByte, &c.loud.s32Value, sizeof(c.loud.s32Value));
    pcm.sztPcmReadOffset = c.written.sztReadOffset;
    pcm.sztPcmLevel = c.written.sztLevel;
    pcm.sztPcmWriteSize = c.written.sztWriteSize;
    EXPECT_EQ(ZE_KEST_OK, Send("kest_latency_start_filter=,start"));
    EXPECT_EQ(ZE_KEST_OK, Send("kest_latency=on"));
    Mark(_stKestLatency.bInserted);
    capture.Clear();
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_MeasureLatency(filter, ZE_KEST_LATENCY_END));
    char szSearched[128];
    const size_t sztAt = (c.written.sztReadOffset + c.written.sztLevel) % kRing * sztWidth;
    const auto at = [pu8Base](size_t sztByte) { return static_cast<void *>(pu8Base + sztByte); };
    snprintf(szSearched, sizeof(szSearched), "%p %p %p %u %u %u %zu\n", at(sztAt), at(0),
             at(kRing * sztWidth), c.written.sztReadOffset, kRing, c.written.sztLevel, sztWidth);
    EXPECT_EQ(szSearched, capture.Texts("<PRINT>").at(0));
    EXPECT_EQ(c.s32Hit >= 0, IsMarked(_stKestLatency.bFound));
    const size_t sztCycle = c.written.sztWriteSize * sztWidth;
    EXPECT_EQ(c.s32Hit >= 0 ? static_cast<size_t>(c.s32Hit) : sztCycle, _stKestLatency.u32TotalBytes);
    EXPECT_EQ(c.s32Hit >= 0 ? RingText(pu8Base, kRing * sztWidth, c.loud.sztByte,
                                       sztCycle - static_cast<size_t>(c.s32Hit))
                            : "",
              ReadFile(KEST_DEBUG_DIR "OutSigstartfilter_0.pcm"));
    // Four bytes for a sample, whatever the width.
    const size_t sztWords = c.u32Planes * sztWidth < 4 ? 0 : c.written.sztWriteSize * 4;
    EXPECT_EQ(RingText(pu8Base, kRing * 4, (c.written.sztReadOffset + c.written.sztLevel) * 4, sztWords),
              ReadFile(KEST_DEBUG_DIR "Outstartfilter_0.pcm"));
  }
}

TEST_F(Latency, AStorageOfOneWordIsEnough) {
  Filter filter;
  ZE_KEST_PcmBuffer_s &pcm = filter.Out(0).Pcm(32, 1, {1, 0, 0});
  pcm.asztPcmAllocSize[0] = 4;
  pcm.sztPcmWriteSize = 1;
  memset(pcm.apu8PcmGroupBuf[0], 0x7F, 4);
  Send("kest_latency=on");
  Mark(_stKestLatency.bInserted);
  ze_kest_Debug_MeasureLatency(filter, ZE_KEST_LATENCY_END);
  EXPECT_TRUE(IsMarked(_stKestLatency.bFound));
}

TEST_F(Latency, EveryMeasurementPrintsItsResultOnceAndTheOutputGoesOnBeingWritten) {
  Filter filter;
  Port &port = filter.Out(0);
  ZE_KEST_PcmBuffer_s &pcm = port.Pcm(32, kRing, {2, 0, 0});
  pcm.sztPcmWriteSize = 96;
  Send("kest_latency_config=a,b,pi,fil");
  const auto cycle = [&filter] { ze_kest_Debug_MeasureLatency(filter, ZE_KEST_LATENCY_END); };
  const struct {
    uint32_t u32Rate;
    uint64_t u64EndUs;
    const char *pszFormat, *pszLatency, *pszTimes;
  } aRuns[] = {{0, 499, "48000", "3", "EndTime:499 ProcTime:0"},  // earlier than the start
               {96000, 1500, "96000", "1", "EndTime:1500 ProcTime:1000"},
               {500, 501, "500", "0", "EndTime:501 ProcTime:1"}};
  for (const auto &run : aRuns) {
    const std::string number = std::to_string(&run - aRuns);
    SCOPED_TRACE(number);
    pcm.stPcmInfo.u32SampleRate = run.u32Rate;
    memset(port.groups[0].Data(), 0, size_t{8} * kRing);
    _stKestLatency.au32SilentCycles[7] = 501;
    Send("kest_latency=on");
    EXPECT_EQ(0u, _stKestLatency.au32SilentCycles[7]);
    _stKestLatency.u64StartTime = 500;
    capture.Clear();
    cycle();  // no burst yet
    Mark(_stKestLatency.bInserted);
    cycle();
    const int32_t s32Loud = 0x40000000;
    memcpy(port.groups[0].Data() + size_t{4} * 60, &s32Loud, sizeof(s32Loud));
    clock.u64NowUs = run.u64EndUs;
    cycle();
    cycle();
    const Texts prints = capture.Texts("<PRINT>");
    ASSERT_EQ(6u, prints.size());
    EXPECT_EQ("[latency]pipe:filter ch:1 sr:" + std::string(run.pszFormat) + " bits:32\n", prints[2]);
    EXPECT_NE(std::string::npos, prints[3].find("]:0x40000000 offset:240\n"));
    EXPECT_EQ("[latency] pipe:filter " + number + " TotalBytes:624 RealLatency:" + run.pszLatency + " ms\n",
              prints[4]);
    EXPECT_EQ("[latency] a:b -pi:fil StartTime:500 " + std::string(run.pszTimes) + " us\n", prints[5]);
    EXPECT_EQ(size_t{4} * 96 * 4, ReadFile(KEST_DEBUG_DIR "Outbfilter_" + number + ".pcm").size());
    Send("kest_latency=off");
    const LatencyState &st = _stKestLatency;
    EXPECT_EQ(0u, st.u32TotalBytes + st.u64StartTime + st.u64EndTime + st.u64ProcTime);
  }
}

TEST_F(Latency, NothingIsTouchedOfAPortThatContradictsItselfNorOfAFilterThatIsNotSelected) {
  Filter filter;
  ZE_KEST_PcmBuffer_s &in = filter.In(0).Pcm(32, kRing, {2, 0, 0});
  ZE_KEST_PcmBuffer_s &out = filter.Out(0).Pcm(32, kRing, {2, 0, 0});
  const Bytes before = filter.In(0).groups[0].Content();
  Send("kest_latency=on");
  Mark(_stKestLatency.bInserted);
  for (const auto &[u32Bits, sztOffset, sztLevel] : {std::make_tuple(32u, kRing, 1u),
                                                     {32u, 0u, kRing + 1},
                                                     {32u, 0u, UINT32_MAX},
                                                     {UINT32_MAX, 100u, 60u}}) {
    in.stPcmInfo.u32BitWidth = out.stPcmInfo.u32BitWidth = u32Bits;
    in.sztPcmReadOffset = out.sztPcmReadOffset = sztOffset;
    in.sztPcmLevel = sztLevel;
    out.sztPcmWriteSize = sztLevel;
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_MeasureLatency(filter, ZE_KEST_LATENCY_START));
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_MeasureLatency(filter, ZE_KEST_LATENCY_END));
  }
  in.stPcmInfo.u32BitWidth = 32;
  in.sztPcmLevel = 20;
  Send("kest_latency_start_filter=pipe,other");
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_MeasureLatency(filter, ZE_KEST_LATENCY_START));
  EXPECT_EQ(before, filter.In(0).groups[0].Content());
  EXPECT_FALSE(IsMarked(_stKestLatency.bFound));
  EXPECT_EQ(size_t{60} * 4,
            ReadFile(KEST_DEBUG_DIR "Outfilter_0.pcm").size());  // of the last, whatever its width

  // Nor of an output at the start filter.
  Send("kest_latency_start_filter=,");
  filter.In(0).st.bConnected = 0;
  out.sztPcmLevel = 9;
  const Bytes written = filter.Out(0).groups[0].Content();
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_MeasureLatency(filter, ZE_KEST_LATENCY_START));
  EXPECT_EQ(written, filter.Out(0).groups[0].Content());
}

TEST_F(Latency, CommandsSelectAndSwitch) {
  // reports: behind those that every line makes
  const std::tuple<const char *, uint32_t, Texts, const char *> aLines[] = {
      {"kest_latency_start_filter=a,b", 0, {" latency start pipeline:a filter:b\n"}, "0 a:b : 0"},
      {"kest_latency_end_filter=c,d", 0, {" latency end pipeline:c filter:d\n"}, "0 a:b c:d 0"},
      {"kest_latency=on", 0, {" latency measure enable 0 a:b -> c:d\n"}, "1 a:b c:d 0"},
      {"kest_latency=maybe", 0, {}, "1 a:b c:d 0"},
      {"kest_latency_config=e,f,g,h", 0, {" latency e:f - g:h\n"}, "1 e:f g:h 0"},
      {"kest_latency=off", 0, {" latency measure disable e:f -> g:h\n"}, "0 e:f g:h 1"},
      {"kest_latency_config=i,j,k", 8, {" pszSub1 is NULL, format error\n"}, "0 e:f g:h 1"},
      {"kest_latency_end_filter=i", 8, {" pszSub1 is NULL, format error\n"}, "0 e:f g:h 1"},
      {"kest_latencies=on", 8, {}, "0 e:f g:h 1"},
  };
  for (const auto &[pszLine, u32Result, reports, pszState] : aLines) {
    const ReportCapture reported;
    EXPECT_EQ(u32Result, Send(pszLine)) << pszLine;
    Texts texts;
    for (const Report &report : reported.Reports())
      texts.push_back(report.text.substr(strlen("_ZE_KEST_Debug_Cmd_MeasureLatency")));
    texts.erase(texts.begin(), texts.begin() + 2);
    EXPECT_EQ(reports, texts) << pszLine;
    const LatencyState &st = _stKestLatency;
    EXPECT_EQ(pszState, std::to_string(IsOn(kMeasureLatency)) + " " + st.stStart.szPipelineName + ":" +
                            st.stStart.szFilterName + " " + st.stEnd.szPipelineName + ":" +
                            st.stEnd.szFilterName + " " + std::to_string(st.u32MeasureIndex));
  }
}

TEST_F(Latency, CommandsMayComeWhileBothSidesRun) {
  const auto run = [](uint32_t u32Kind) {
    Filter filter;
    filter.In(0).Pcm(16, kRing, {2, 0, 0}).sztPcmLevel = 48;
    filter.Out(0).Pcm(16, kRing, {2, 0, 0}).sztPcmWriteSize = 48;
    for (int i = 0; i < 2000; ++i)
      EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_MeasureLatency(filter, u32Kind));
  };
  std::thread start(run, ZE_KEST_LATENCY_START);
  std::thread end(run, ZE_KEST_LATENCY_END);
  for (int i = 0; i < 50; ++i) {
    for (const char *pszLine : {"kest_latency_config=pipe,,pi,filter", "kest_latency=on", "kest_latency=off"})
      EXPECT_EQ(ZE_KEST_OK, Send(pszLine));
  }
  start.join();
  end.join();
  EXPECT_EQ(50u, _stKestLatency.u32MeasureIndex);
}

}  // namespace
}  // namespace kest::test
