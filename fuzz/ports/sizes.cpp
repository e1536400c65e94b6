// SPDX-License-Identifier: Apache-2.0
// Process sizes and accounting.
#include <algorithm>

#include "fuzz/ports/check.h"

namespace kest::fuzz {
namespace {

using SizeFunction = uint32_t (*)(const ZE_KEST_Filter_s *, uint32_t *);

constexpr SizeFunction kSizeFunctions[] = {
    ze_kest_Utility_CalculateInputPortPcmProcessSize,
    ze_kest_Utility_CalculateOutputPortPcmProcessSize,
    ze_kest_Utility_CalculateInputPortMetadataProcessSize,
    ze_kest_Utility_CalculateOutputPortMetadataProcessSize,
    ze_kest_Utility_CalculateInputPortRawProcessSize,
    ze_kest_Utility_CalculateOutputPortRawProcessSize,
};

// For input PCM and metadata: empty ports before the first one with data are skipped.
uint32_t FromFirstDataOn(RandomFilter &image, uint32_t (*pfnValue)(const ZE_KEST_Port_s &)) {
  bool bTaken = false;
  uint32_t u32Least = 0;
  for (const RandomPort *pst : All(image, true)) {
    const uint32_t u32Value = pfnValue(pst->st);
    if (!bTaken && u32Value != 0) {
      u32Least = u32Value;
      bTaken = true;
    } else if (bTaken && pst->st.bConnected != 0) {
      u32Least = std::min(u32Least, u32Value);
    }
  }
  return u32Least;
}

// For the others: the least of the values of the ports that count.
uint32_t Least(const std::vector<uint32_t> &values) {
  return values.empty() ? 0 : *std::min_element(values.begin(), values.end());
}

uint32_t ModelSize(RandomFilter &image, uint32_t u32Function) {
  std::vector<uint32_t> values;
  const bool bInput = u32Function % 2 == 0;
  for (const RandomPort *pst : All(image, bInput)) {
    const ZE_KEST_Port_s &st = pst->st;
    const bool bConnected = st.bConnected != 0;
    if (u32Function == 1 && st.stPcm.sztPcmRingSamples != 0) values.push_back(st.stPcm.sztPcmSpace);
    if (u32Function == 3 && bConnected && st.stMeta.sztSize != 0) {
      values.push_back(st.stMeta.sztSpace - st.stMeta.sztWriteSize);
    }
    if (u32Function == 4 && st.stRaw.sztSize != 0) values.push_back(st.stRaw.sztLevel - st.stRaw.sztReadSize);
    if (u32Function == 5 && bConnected && st.stRaw.sztSize != 0) {
      values.push_back(st.stRaw.sztSpace - st.stRaw.sztWriteSize);
    }
  }
  uint32_t u32Size = Least(values);
  if (u32Function == 0) {
    u32Size = FromFirstDataOn(image, [](const ZE_KEST_Port_s &st) { return st.stPcm.sztPcmLevel; });
    if (image.st.sztMaxInPcmProcessSize != 0xFFFFFFFF)
      u32Size = std::min(u32Size, image.st.sztMaxInPcmProcessSize);
  }
  if (u32Function == 1 && image.st.sztMaxOutPcmProcessSize != 0xFFFFFFFF) {
    u32Size = std::min(u32Size, image.st.sztMaxOutPcmProcessSize);
  }
  if (u32Function == 2) {
    u32Size = FromFirstDataOn(
        image, [](const ZE_KEST_Port_s &st) { return st.stMeta.sztLevel - st.stMeta.sztReadSize; });
  }
  return u32Size;
}

// The ten updates by number. Of all ports: PCM read, PCM write, metadata read and write, raw read and write;
// of a single port: PCM read, PCM write, metadata read, raw read.
uint32_t Update(ZE_KEST_Filter_s *pst, uint32_t u32Function, uint32_t u32Count, uint32_t u32Slot) {
  switch (u32Function) {
    case 0:
      return ze_kest_Utility_UpdateAllInputPortPcmReadSize(pst, u32Count);
    case 1:
      return ze_kest_Utility_UpdateAllOutputPortPcmWriteSize(pst, u32Count);
    case 2:
      return ze_kest_Utility_UpdateAllInputPortMetadataReadSize(pst, u32Count);
    case 3:
      return ze_kest_Utility_UpdateAllOutputPortMetadataWriteSize(pst, u32Count);
    case 4:
      return ze_kest_Utility_UpdateAllInputPortRawReadSize(pst, u32Count);
    case 5:
      return ze_kest_Utility_UpdateAllOutputPortRawWriteSize(pst, u32Count);
    case 6:
      return ze_kest_Utility_UpdateSpecificInputPortPcmReadSize(pst, u32Count, u32Slot);
    case 7:
      return ze_kest_Utility_UpdateSpecificOutputPortPcmWriteSize(pst, u32Count, u32Slot);
    case 8:
      return ze_kest_Utility_UpdateSpecificInputPortMetadataReadSize(pst, u32Count, u32Slot);
    default:
      return ze_kest_Utility_UpdateSpecificInputPortRawReadSize(pst, u32Count, u32Slot);
  }
}

uint32_t Capped(uint32_t u32Size, uint32_t u32Count, uint32_t u32Cap) {
  return static_cast<uint32_t>(std::min<uint64_t>(uint64_t{u32Size} + u32Count, u32Cap));
}

void ModelRead(ZE_KEST_DataBuffer_s &st, uint32_t u32Count) {
  st.sztReadSize += u32Count;
  st.sztTotalRead += u32Count;
  st.au64Count[0] += u32Count == 0 ? 0 : 1;
}

void ModelPort(ZE_KEST_Port_s &st, uint32_t u32Function, uint32_t u32Count) {
  ZE_KEST_PcmBuffer_s &pcm = st.stPcm;
  if (u32Function == 0 || u32Function == 6) {
    pcm.sztPcmReadSize = Capped(pcm.sztPcmReadSize, u32Count, pcm.sztPcmRingSamples);
    pcm.sztPcmTotalRead += u32Count;
    pcm.u64PcmReadCount += 1;
  }
  if (u32Function == 1 || u32Function == 7) {
    pcm.sztPcmWriteSize = Capped(pcm.sztPcmWriteSize, u32Count, pcm.sztPcmRingSamples);
  }
  if (u32Function == 2 || u32Function == 8) ModelRead(st.stMeta, u32Count);
  if (u32Function == 3) st.stMeta.sztWriteSize = Capped(st.stMeta.sztWriteSize, u32Count, st.stMeta.sztSize);
  if (u32Function == 4 || u32Function == 9) ModelRead(st.stRaw, u32Count);
  if (u32Function == 5) st.stRaw.sztWriteSize += u32Count;
}

uint32_t ModelUpdate(RandomFilter &image, uint32_t u32Function, uint32_t u32Count, uint32_t u32Slot) {
  const bool bPcm = u32Function == 0 || u32Function == 1 || u32Function == 6 || u32Function == 7;
  const bool bInput = u32Function != 1 && u32Function != 3 && u32Function != 5 && u32Function != 7;
  if (bPcm && u32Count == 0) return 1;
  std::vector<RandomPort *> ports = Walk(image, bInput);
  if (u32Function >= 6) ports = {bInput ? image.In(u32Slot) : image.Out(u32Slot)};
  for (RandomPort *pst : ports) {
    if (pst != nullptr) ModelPort(pst->st, u32Function, u32Count);
  }
  return 0;
}

}  // namespace

void CheckProcessSize(Run &run) {
  const uint32_t u32Function = run.Draw(0, 5);
  uint32_t u32Actual = 4711;
  uint32_t u32Expected = 0;
  run.Compare(
      "process size", [&](ZE_KEST_Filter_s *pst) { return kSizeFunctions[u32Function](pst, &u32Actual); },
      [&](RandomFilter &image) {
        u32Expected = ModelSize(image, u32Function);
        return u32Expected == 0 ? 12u : 0u;
      });
  if (run.bConsistent) ExpectEqual(u32Expected, u32Actual, "the process size");
}

void CheckAccounting(Run &run) {
  const uint32_t u32Function = run.Draw(0, 9);
  const uint32_t u32Slot = run.Draw(0, 9);
  const uint32_t u32Count = run.bytes.ConsumeBool() ? run.Draw(0, 70) : run.bytes.ConsumeIntegral<uint32_t>();
  const KeptRecords kept(run);
  run.Compare(
      "accounting", [&](ZE_KEST_Filter_s *pst) { return Update(pst, u32Function, u32Count, u32Slot); },
      [&](RandomFilter &image) { return ModelUpdate(image, u32Function, u32Count, u32Slot); });
}

}  // namespace kest::fuzz
