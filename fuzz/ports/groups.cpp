// SPDX-License-Identifier: Apache-2.0
// Channel groups: formats and layouts passed to the outputs, capabilities, pointers into the inputs.
#include "fuzz/ports/check.h"

namespace kest::fuzz {
namespace {

void ModelGroups(RandomFilter &image, const ZE_KEST_PcmGroup_s *pastGroups) {
  for (RandomPort *pst : Walk(image, false)) {
    ZE_KEST_PcmBuffer_s &pcm = pst->st.stPcm;
    pcm.u32PcmGroupNum = 3;
    pcm.stPcmInfo.u32TotalChannels = 0;
    for (uint32_t g = 0; g < 3; ++g) {
      pcm.astPcmGroup[g] = pastGroups[g];
      if (pcm.apu8PcmGroupBuf[g] == nullptr) {
        pcm.astPcmGroup[g].ePcmGroupType = -1;
      } else {
        pcm.stPcmInfo.u32TotalChannels += pastGroups[g].u32ChannelCount;
      }
    }
  }
}

bool Carries(RandomFilter &image, bool bInput, uint32_t u32Group) {
  uint32_t u32Connected = 0;
  uint32_t u32Carrying = 0;
  for (const RandomPort *pst : All(image, bInput)) {
    if (pst->st.bConnected == 0) continue;
    ++u32Connected;
    if (pst->st.stPcm.apu8PcmGroupBuf[u32Group] != nullptr) ++u32Carrying;
  }
  return u32Connected == 0 || u32Carrying != 0;
}

// The offset, in the group's storage, of the sample that a channel's pointer points to; -1 for a NULL
// pointer.
ptrdiff_t ModelPointer(const RandomPort &port, uint32_t g, uint32_t k) {
  const ZE_KEST_PcmBuffer_s &pcm = port.st.stPcm;
  const ZE_KEST_PcmGroup_s &group = pcm.astPcmGroup[g];
  if (pcm.u32PcmGroupNum == 0 || group.ePcmGroupType != static_cast<int32_t>(g)) return -1;
  if (k >= group.u32ChannelCount || k >= 10 || group.as32ChMap[k] == -1) return -1;
  if (pcm.apu8PcmGroupBuf[g] == nullptr) return -1;
  const uint32_t u32Position = (pcm.sztPcmReadSize + pcm.sztPcmReadOffset) % pcm.sztPcmRingSamples;
  const uint32_t u32Bytes = (u32Position + pcm.sztPcmRingSamples * k) * Width(port);
  return static_cast<ptrdiff_t>(u32Bytes);
}

template <typename Value>
void CheckPointers(Run &run, uint32_t (*pfnAnalyze)(const ZE_KEST_Filter_s *, uint32_t, Value **, uint16_t *,
                                                    uint8_t *)) {
  const uint32_t u32Slot = run.Draw(0, 9);
  std::vector<Value *> pointers(36, nullptr);
  std::vector<uint16_t> strides(36, 9);
  uint8_t bPresent = 7;
  uint32_t u32Result = 0;
  run.Compare(
      "analyze",
      [&](ZE_KEST_Filter_s *pst) {
        return u32Result = pfnAnalyze(pst, u32Slot, pointers.data(), strides.data(), &bPresent);
      },
      [&](RandomFilter &image) { return Served(image.In(u32Slot), u32Slot) == nullptr ? 8u : 0u; });
  if (!run.bConsistent || u32Result != 0) return;
  const RandomPort &port = run.filter.inputs[u32Slot];
  ExpectEqual(port.st.stPcm.u32PcmGroupNum == 0 ? 7 : 1, bPresent, "the group flag");
  for (uint32_t i = 0; i < 36; ++i) {
    const uint8_t *pu8Storage = port.st.stPcm.apu8PcmGroupBuf[i / 12];
    const ptrdiff_t sOffset = ModelPointer(port, i / 12, i % 12);
    Expect(reinterpret_cast<const uint8_t *>(pointers[i]) == (sOffset < 0 ? nullptr : pu8Storage + sOffset),
           "a channel's pointer");
    ExpectEqual(1, strides[i], "a channel's stride");
  }
}

}  // namespace

void CheckChannelGroups(Run &run) {
  const uint32_t u32Group = run.Draw(0, 3);
  run.Compare(
      "capability",
      [&](ZE_KEST_Filter_s *pst) { return ze_kest_Utility_CheckPcmGroupCapability(pst, u32Group); },
      [&](RandomFilter &image) {
        if (u32Group > 2) return 8u;
        return Carries(image, true, u32Group) && Carries(image, false, u32Group) ? 1u : 0u;
      });
  run.Compare(
      "output capability",
      [&](ZE_KEST_Filter_s *pst) { return ze_kest_Utility_CheckOutPortPcmGroupCapability(pst, u32Group); },
      [&](RandomFilter &image) { return u32Group > 2 ? 8u : uint32_t{Carries(image, false, u32Group)}; });

  const KeptRecords kept(run);
  const ZE_KEST_PcmInfo_s info = {run.Draw(0, 22), 44100, 8 * run.Draw(0, 4), {run.Draw(0, 9), 4}};
  run.Compare(
      "format",
      [&](ZE_KEST_Filter_s *pst) { return ze_kest_Utility_UpdatePcmInfoToAllOutputPort(pst, &info); },
      [&](RandomFilter &image) {
        for (RandomPort *pst : Walk(image, false))
          pst->st.stPcm.stPcmInfo = info;
        return 0u;
      });
  ZE_KEST_PcmGroup_s groups[3] = {};
  for (ZE_KEST_PcmGroup_s &group : groups)
    group = {static_cast<int32_t>(run.Draw(0, 3)) - 1, run.Draw(0, 12), {0, 1, 2, 3, 4, 5, 6, 7, 8, -1}};
  run.Compare(
      "groups",
      [&](ZE_KEST_Filter_s *pst) { return ze_kest_Utility_UpdatePcmGroupToAllOutputPort(pst, 0, groups); },
      [&](RandomFilter &image) {
        ModelGroups(image, groups);
        return 0u;
      });
}

void CheckPcmPointers(Run &run) {
  if (run.bytes.ConsumeBool()) {
    CheckPointers(run, ze_kest_Utility_AnalyzeInputPort16BitPcmGroup);
  } else {
    CheckPointers(run, ze_kest_Utility_AnalyzeInputPort32BitPcmGroup);
  }
}

}  // namespace kest::fuzz
