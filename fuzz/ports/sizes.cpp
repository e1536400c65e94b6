// SPDX-License-Identifier: Apache-2.0
// Process sizes and accounting.
#include <algorithm>
#include <array>

#include "fuzz/ports/check.h"

namespace kest::fuzz {
namespace {

using Port = ZE_KEST_Port_s;

// For input PCM and metadata: empty ports before the first one with data are skipped.
uint32_t FromFirstDataOn(RandomFilter &image, uint32_t (*pfnValue)(const Port &)) {
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
uint32_t Least(RandomFilter &image, bool bInput, bool (*pfnCounts)(const Port &),
               uint32_t (*pfnValue)(const Port &)) {
  std::vector<uint32_t> values;
  for (const RandomPort *pst : All(image, bInput)) {
    if (pfnCounts(pst->st)) values.push_back(pfnValue(pst->st));
  }
  return values.empty() ? 0 : *std::min_element(values.begin(), values.end());
}

uint32_t InputPcmSize(RandomFilter &image) {
  const uint32_t u32Least = FromFirstDataOn(image, [](const Port &st) { return st.stPcm.sztPcmLevel; });
  return std::min(u32Least, image.st.sztMaxInPcmProcessSize);
}

uint32_t OutputPcmSize(RandomFilter &image) {
  const uint32_t u32Least = Least(
      image, false, [](const Port &st) { return st.stPcm.sztPcmRingSamples != 0; },
      [](const Port &st) { return st.stPcm.sztPcmSpace; });
  return std::min(u32Least, image.st.sztMaxOutPcmProcessSize);
}

uint32_t InputMetadataSize(RandomFilter &image) {
  return FromFirstDataOn(image, [](const Port &st) { return st.stMeta.sztLevel - st.stMeta.sztReadSize; });
}

uint32_t OutputMetadataSize(RandomFilter &image) {
  return Least(
      image, false, [](const Port &st) { return st.bConnected != 0 && st.stMeta.sztSize != 0; },
      [](const Port &st) { return st.stMeta.sztSpace - st.stMeta.sztWriteSize; });
}

uint32_t InputRawSize(RandomFilter &image) {
  return Least(
      image, true, [](const Port &st) { return st.stRaw.sztSize != 0; },
      [](const Port &st) { return st.stRaw.sztLevel - st.stRaw.sztReadSize; });
}

uint32_t OutputRawSize(RandomFilter &image) {
  return Least(
      image, false, [](const Port &st) { return st.bConnected != 0 && st.stRaw.sztSize != 0; },
      [](const Port &st) { return st.stRaw.sztSpace - st.stRaw.sztWriteSize; });
}

struct SizeRow {
  uint32_t (*pfnCalculate)(const ZE_KEST_Filter_s *, uint32_t *);
  uint32_t (*pfnModel)(RandomFilter &);
};

constexpr std::array<SizeRow, 6> kSizes = {{
    {ze_kest_Utility_CalculateInputPortPcmProcessSize, InputPcmSize},
    {ze_kest_Utility_CalculateOutputPortPcmProcessSize, OutputPcmSize},
    {ze_kest_Utility_CalculateInputPortMetadataProcessSize, InputMetadataSize},
    {ze_kest_Utility_CalculateOutputPortMetadataProcessSize, OutputMetadataSize},
    {ze_kest_Utility_CalculateInputPortRawProcessSize, InputRawSize},
    {ze_kest_Utility_CalculateOutputPortRawProcessSize, OutputRawSize},
}};

uint32_t Capped(uint32_t u32Size, uint32_t u32Count, uint32_t u32Cap) {
  return static_cast<uint32_t>(std::min<uint64_t>(uint64_t{u32Size} + u32Count, u32Cap));
}

void ReadPcm(Port &st, uint32_t u32Count) {
  st.stPcm.sztPcmReadSize = Capped(st.stPcm.sztPcmReadSize, u32Count, st.stPcm.sztPcmRingSamples);
  st.stPcm.sztPcmTotalRead += u32Count;
  st.stPcm.u64PcmReadCount += 1;
}

void WritePcm(Port &st, uint32_t u32Count) {
  st.stPcm.sztPcmWriteSize = Capped(st.stPcm.sztPcmWriteSize, u32Count, st.stPcm.sztPcmRingSamples);
}

template <ZE_KEST_DataBuffer_s Port::*kRing>
void ReadData(Port &st, uint32_t u32Count) {
  (st.*kRing).sztReadSize += u32Count;
  (st.*kRing).sztTotalRead += u32Count;
  (st.*kRing).au64Count[0] += u32Count == 0 ? 0 : 1;
}

void WriteMetadata(Port &st, uint32_t u32Count) {
  st.stMeta.sztWriteSize = Capped(st.stMeta.sztWriteSize, u32Count, st.stMeta.sztSize);
}

void WriteRaw(Port &st, uint32_t u32Count) {
  st.stRaw.sztWriteSize += u32Count;
}

// The updates of all ports and of a single one (NULL: there is none), and what they do to a port.
struct UpdateRow {
  uint32_t (*pfnAll)(ZE_KEST_Filter_s *, uint32_t);
  uint32_t (*pfnOne)(ZE_KEST_Filter_s *, uint32_t, uint32_t);
  void (*pfnModel)(Port &, uint32_t);
  bool bInput;
  bool bRefusesZero;
};

constexpr std::array<UpdateRow, 6> kUpdates = {{
    {ze_kest_Utility_UpdateAllInputPortPcmReadSize, ze_kest_Utility_UpdateSpecificInputPortPcmReadSize,
     ReadPcm, true, true},
    {ze_kest_Utility_UpdateAllOutputPortPcmWriteSize, ze_kest_Utility_UpdateSpecificOutputPortPcmWriteSize,
     WritePcm, false, true},
    {ze_kest_Utility_UpdateAllInputPortMetadataReadSize,
     ze_kest_Utility_UpdateSpecificInputPortMetadataReadSize, ReadData<&Port::stMeta>, true, false},
    {ze_kest_Utility_UpdateAllOutputPortMetadataWriteSize, nullptr, WriteMetadata, false, false},
    {ze_kest_Utility_UpdateAllInputPortRawReadSize, ze_kest_Utility_UpdateSpecificInputPortRawReadSize,
     ReadData<&Port::stRaw>, true, false},
    {ze_kest_Utility_UpdateAllOutputPortRawWriteSize, nullptr, WriteRaw, false, false},
}};

uint32_t ModelUpdate(const UpdateRow &row, const std::vector<RandomPort *> &ports, uint32_t u32Count) {
  if (row.bRefusesZero && u32Count == 0) return 1;
  for (RandomPort *pst : ports) {
    if (pst != nullptr) row.pfnModel(pst->st, u32Count);
  }
  return 0;
}

}  // namespace

void CheckProcessSize(Run &run) {
  const SizeRow &row = kSizes.at(run.Draw(0, kSizes.size() - 1));
  uint32_t u32Actual = 4711;
  uint32_t u32Expected = 0;
  run.Compare(
      "process size", [&](ZE_KEST_Filter_s *pst) { return row.pfnCalculate(pst, &u32Actual); },
      [&](RandomFilter &image) {
        u32Expected = row.pfnModel(image);
        return u32Expected == 0 ? 12u : 0u;
      });
  if (run.bConsistent) ExpectEqual(u32Expected, u32Actual, "the process size");
}

void CheckAccounting(Run &run) {
  const UpdateRow &row = kUpdates.at(run.Draw(0, kUpdates.size() - 1));
  const bool bOne = row.pfnOne != nullptr && run.bytes.ConsumeBool();
  const uint32_t u32Slot = run.Draw(0, 9);
  const uint32_t u32Count = run.bytes.ConsumeBool() ? run.Draw(0, 70) : run.bytes.ConsumeIntegral<uint32_t>();
  const KeptRecords kept(run);
  run.Compare(
      "accounting",
      [&](ZE_KEST_Filter_s *pst) {
        return bOne ? row.pfnOne(pst, u32Count, u32Slot) : row.pfnAll(pst, u32Count);
      },
      [&](RandomFilter &image) {
        RandomPort *pstOne = row.bInput ? image.In(u32Slot) : image.Out(u32Slot);
        return ModelUpdate(row, bOne ? std::vector<RandomPort *>{pstOne} : Walk(image, row.bInput), u32Count);
      });
}

}  // namespace kest::fuzz
