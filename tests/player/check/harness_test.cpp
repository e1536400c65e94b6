// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/harness.h"

#include <algorithm>
#include <array>
#include <vector>

#include <gmock/gmock.h>

#include "ze_kest/port.h"

namespace kest::test {
namespace {

// Reads what there is and writes it unchanged; what else it does to the ports the test says.
void (*g_pfnBesides)(ZE_KEST_Filter_s *) = nullptr;

void Process(void *, ZE_KEST_Filter_s *pstFilter, uint32_t) {
  uint32_t u32Held = 0, u32Room = 0;
  ze_kest_Utility_CalculateInputPortPcmProcessSize(pstFilter, &u32Held);
  ze_kest_Utility_CalculateOutputPortPcmProcessSize(pstFilter, &u32Room);
  const uint32_t u32Samples = std::min(u32Held, u32Room);
  for (uint32_t g = 0; u32Samples > 0 && g < ZE_KEST_PCM_GROUPS; ++g) {
    if (pstFilter->apstInPort[0]->stPcm.apu8PcmGroupBuf[g] == nullptr) continue;
    ze_kest_Utility_CopyNonInterleavePcmBuffer(
        &pstFilter->apstOutPort[0]->stPcm, &pstFilter->apstInPort[0]->stPcm,
        pstFilter->apstOutPort[0]->stPcm.sztPcmLevel, 0, u32Samples, g);
  }
  ze_kest_Utility_UpdateAllOutputPortPcmWriteSize(pstFilter, u32Samples);
  ze_kest_Utility_UpdateAllInputPortPcmReadSize(pstFilter, u32Samples);
  if (g_pfnBesides != nullptr) g_pfnBesides(pstFilter);
}

ZE_KEST_ModuleFilter_s Copier() {
  ZE_KEST_ModuleFilter_s kind{};
  kind.u32Size = sizeof(kind);
  kind.pszName = "Copier";
  kind.u32Widths = ZE_KEST_MODULE_16_BITS | ZE_KEST_MODULE_32_BITS;
  kind.u32LeastChannels = 1;
  kind.u32MostChannels = 22;
  kind.pfnCreate = [](auto, const ZE_KEST_ModuleSetup_s *, void **) { return uint32_t{ZE_KEST_OK}; };
  kind.pfnDestroy = [](void *) {};
  kind.pfnProcess = Process;
  return kind;
}

ZE_KEST_HarnessSetup_s SetupOf(uint32_t u32Channels, uint32_t u32Bits) {
  ZE_KEST_HarnessSetup_s setup{};
  setup.u32Size = sizeof(setup);
  setup.u32Channels = u32Channels;
  setup.u32SampleRate = 48000;
  setup.u32BitWidth = u32Bits;
  setup.u32InputSamples = 100;
  setup.u32OutputSamples = 70;
  setup.u32MaxSamples = 64;
  setup.u32InputBlocks = setup.u32OutputBlocks = 4;
  setup.u8Marker = 0xA5;
  return setup;
}

struct Bench {
  explicit Bench(const ZE_KEST_HarnessSetup_s &setup, uint32_t u32Flags = 0) {
    kind.u32Flags = u32Flags;
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Harness_Open(&setup, &pst));
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Harness_Create(pst, &kind));
  }
  ~Bench() {
    ze_kest_Harness_Close(pst);
    g_pfnBesides = nullptr;
  }
  Bench(const Bench &) = delete;
  Bench &operator=(const Bench &) = delete;

  ZE_KEST_ModuleFilter_s kind = Copier();
  ZE_KEST_Harness_s *pst = nullptr;
};

TEST(Harness, CarriesEveryChannelOfEveryFormatThroughTheRings) {
  for (uint32_t u32Channels = 1; u32Channels <= 22; ++u32Channels) {
    for (const uint32_t u32Bits : {16u, 32u}) {
      const Bench bench(SetupOf(u32Channels, u32Bits));
      ze_kest_Harness_Place(bench.pst, 90, 60);
      std::vector<int32_t> in(size_t{u32Channels} * 50), out(in.size());
      uint32_t u32Seed = u32Channels;
      ze_kest_Harness_Noise(in.data(), static_cast<uint32_t>(in.size()), u32Bits, &u32Seed);
      ASSERT_EQ(50u, ze_kest_Harness_Fill(bench.pst, in.data(), 50));
      ZE_KEST_HarnessTurn_s turn;
      EXPECT_EQ(0u, ze_kest_Harness_Turn(bench.pst, 0, &turn)) << turn.szSeen;
      ASSERT_EQ(50u, ze_kest_Harness_Take(bench.pst, out.data(), 50));
      EXPECT_EQ(in, out) << u32Channels << " channels, " << u32Bits << " bits";
    }
  }
}

TEST(Harness, TellsEveryFaultOfATurn) {
  const struct {
    uint32_t u32Fault;
    void (*pfnBesides)(ZE_KEST_Filter_s *);
  } faults[] = {
      {ZE_KEST_HARNESS_READ_TOO_MUCH,
       [](ZE_KEST_Filter_s *pst) { pst->apstInPort[0]->stPcm.sztPcmReadSize = 51; }},
      {ZE_KEST_HARNESS_CHANGED_RECORD,
       [](ZE_KEST_Filter_s *pst) { ++pst->apstOutPort[0]->stPcm.sztPcmLevel; }},
      {ZE_KEST_HARNESS_CHANGED_RECORD, [](ZE_KEST_Filter_s *pst) { pst->u32WakeUp = 7; }},
      {ZE_KEST_HARNESS_CHANGED_INPUT,
       [](ZE_KEST_Filter_s *pst) { ++*pst->apstInPort[0]->stPcm.apu8PcmGroupBuf[0]; }},
      {ZE_KEST_HARNESS_CHANGED_OUTPUT,
       [](ZE_KEST_Filter_s *pst) { ++pst->apstOutPort[0]->stPcm.apu8PcmGroupBuf[0][100]; }},
      {ZE_KEST_HARNESS_UNWRITTEN,
       [](ZE_KEST_Filter_s *pst) { pst->apstOutPort[0]->stPcm.sztPcmWriteSize = 54; }},
      {ZE_KEST_HARNESS_MOVED_METADATA,
       [](ZE_KEST_Filter_s *pst) { pst->apstInPort[0]->stMeta.sztReadSize = 32; }},
  };
  for (const auto &fault : faults) {
    const Bench bench(SetupOf(1, 16));
    std::array<int32_t, 50> as32In{};
    ze_kest_Harness_Fill(bench.pst, as32In.data(), 50);
    ze_kest_Harness_FillMetadata(bench.pst, 0);
    g_pfnBesides = fault.pfnBesides;
    ZE_KEST_HarnessTurn_s turn;
    EXPECT_EQ(fault.u32Fault, ze_kest_Harness_Turn(bench.pst, 0, &turn)) << turn.szSeen;
    EXPECT_STRNE("", turn.szSeen);
    g_pfnBesides = nullptr;
    EXPECT_EQ(0u, ze_kest_Harness_Turn(bench.pst, 0, nullptr)) << "the next turn must not suffer";
  }
}

TEST(Harness, MovesTheMetadataThatBelongsToTheSamples) {
  const Bench bench(SetupOf(2, 32));
  ASSERT_EQ(ZE_KEST_OK, ze_kest_Harness_FillMetadata(bench.pst, 5));
  uint64_t u64Number = 0;
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(ZE_KEST_NOTHING_TO_PROCESS, ze_kest_Harness_TakeMetadata(bench.pst, &u64Number));
    ze_kest_Harness_Fill(bench.pst, nullptr, 64);
    ze_kest_Harness_Turn(bench.pst, 0, nullptr);
    ze_kest_Harness_Take(bench.pst, nullptr, 64);
  }
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Harness_TakeMetadata(bench.pst, &u64Number));
  EXPECT_EQ(5u, u64Number);
}

// Otherwise it would itself go beyond the ring with the block after.
TEST(Harness, StaysAtWholeBlocksWhenAFilterSplitsThem) {
  const Bench bench(SetupOf(2, 16), ZE_KEST_MODULE_FORWARDS_METADATA);
  g_pfnBesides = [](ZE_KEST_Filter_s *pst) {
    pst->apstInPort[0]->stMeta.sztReadSize = 48;
    pst->apstOutPort[0]->stMeta.sztWriteSize = 48;
  };
  uint64_t u64Number = 0;
  for (uint64_t u64Block = 0; u64Block < 20; u64Block += 2) {
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Harness_FillMetadata(bench.pst, u64Block));
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Harness_FillMetadata(bench.pst, u64Block + 1));
    EXPECT_EQ(uint32_t{ZE_KEST_HARNESS_SPLIT_METADATA}, ze_kest_Harness_Turn(bench.pst, 0, nullptr));
    ze_kest_Harness_Turn(bench.pst, 0, nullptr);
    EXPECT_EQ(ZE_KEST_FAILED, ze_kest_Harness_TakeMetadata(bench.pst, &u64Number)) << "nobody wrote it";
    EXPECT_EQ(ZE_KEST_FAILED, ze_kest_Harness_TakeMetadata(bench.pst, &u64Number));
    EXPECT_EQ(ZE_KEST_NOTHING_TO_PROCESS, ze_kest_Harness_TakeMetadata(bench.pst, &u64Number));
  }
}

TEST(Harness, RefusesWhatItCannotMake) {
  ZE_KEST_Harness_s *pst = nullptr;
  ZE_KEST_HarnessSetup_s setup = SetupOf(23, 16);
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Harness_Open(&setup, &pst));
  setup = SetupOf(2, 24);
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Harness_Open(&setup, &pst));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Harness_Open(nullptr, &pst));
  EXPECT_EQ(nullptr, pst);
  Bench bench(SetupOf(2, 16));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Harness_Create(bench.pst, &bench.kind));
  EXPECT_STREQ("there is an instance already", ze_kest_Harness_Error(bench.pst));
}

}  // namespace
}  // namespace kest::test
