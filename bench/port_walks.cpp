// SPDX-License-Identifier: Apache-2.0
// Rows for what filters query, account for and set on their ports in every cycle, on eight connected ports or
// on one of them. The limit is what a filter would write without the library.
#include <algorithm>
#include <array>
#include <memory>

#include "ze_kest/port.h"

#include "bench/rows.h"
#include "bench/table.h"

namespace kest::bench {
namespace {

using Walk = uint32_t (*)(ZE_KEST_Filter_s *, uint32_t u32Value);
using Visit = void (*)(ZE_KEST_Port_s &, uint32_t &u32Value);
using Side = ZE_KEST_Port_s *(ZE_KEST_Filter_s::*)[ZE_KEST_MAX_PORTS];

constexpr Side kIn = &ZE_KEST_Filter_s::apstInPort;
constexpr Side kOut = &ZE_KEST_Filter_s::apstOutPort;
constexpr uint32_t kGroup = 1;
constexpr uint32_t kSamples = 256;
constexpr uint32_t kPort = 5;

constexpr ZE_KEST_PcmInfo_s kInfo = {10, 48000, 16, {}};
constexpr ZE_KEST_PcmGroup_s kGroups[ZE_KEST_PCM_GROUPS] = {
    {-1, 0, {}}, {kGroup, 10, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}}, {-1, 0, {}}};

// Eight ports, used on both sides; each has more to offer than the one before it.
struct EightPorts {
  EightPorts() {
    stFilter.u32InPortCount = stFilter.u32OutPortCount = ZE_KEST_MAX_PORTS;
    stFilter.sztMaxInPcmProcessSize = stFilter.sztMaxOutPcmProcessSize = ZE_KEST_NO_BOUND;
    for (uint32_t i = 0; i < ZE_KEST_MAX_PORTS; ++i) {
      ZE_KEST_Port_s &stPort = astPort[i];
      stPort.bConnected = 1;
      stPort.stPcm.apu8PcmGroupBuf[kGroup] = &u8Storage;
      stPort.stPcm.sztPcmRingSamples = stPort.stMeta.sztSize = stPort.stRaw.sztSize = 4096;
      stPort.stPcm.sztPcmLevel = stPort.stMeta.sztLevel = stPort.stRaw.sztLevel = 1024 + 64 * i;
      stPort.stPcm.sztPcmSpace = stPort.stMeta.sztSpace = stPort.stRaw.sztSpace = 1024 + 64 * i;
      stFilter.apstInPort[i] = stFilter.apstOutPort[i] = &stPort;
    }
  }
  uint8_t u8Storage = 0;
  ZE_KEST_Filter_s stFilter = {};
  std::array<ZE_KEST_Port_s, ZE_KEST_MAX_PORTS> astPort = {};
};

// The shortest possible code, but not inlined into the benchmark loop.
template <Side kSide, Visit kVisit>
__attribute__((noinline)) uint32_t PlainWalk(ZE_KEST_Filter_s *pstFilter, uint32_t u32Value) {
  for (uint32_t i = 0; i < pstFilter->u32InPortCount; ++i) {
    ZE_KEST_Port_s *pstPort = (pstFilter->*kSide)[i];
    if (pstPort != nullptr && pstPort->bConnected != 0) kVisit(*pstPort, u32Value);
  }
  return u32Value;
}

template <Side kSide, Visit kVisit>
__attribute__((noinline)) uint32_t PlainOne(ZE_KEST_Filter_s *pstFilter, uint32_t u32Port) {
  uint32_t u32Value = kSamples;
  ZE_KEST_Port_s *pstPort = u32Port < pstFilter->u32InPortCount ? (pstFilter->*kSide)[u32Port] : nullptr;
  if (pstPort != nullptr) kVisit(*pstPort, u32Value);
  return u32Value;
}

void LowerToLevel(ZE_KEST_Port_s &stPort, uint32_t &u32Least) {
  if (stPort.stPcm.sztPcmRingSamples != 0) u32Least = std::min(u32Least, stPort.stPcm.sztPcmLevel);
}

void LowerToSpace(ZE_KEST_Port_s &stPort, uint32_t &u32Least) {
  if (stPort.stPcm.sztPcmRingSamples != 0) u32Least = std::min(u32Least, stPort.stPcm.sztPcmSpace);
}

template <ZE_KEST_DataBuffer_s ZE_KEST_Port_s::*kRing>
void LowerToUnread(ZE_KEST_Port_s &stPort, uint32_t &u32Least) {
  const ZE_KEST_DataBuffer_s &stRing = stPort.*kRing;
  if (stRing.sztSize != 0) u32Least = std::min(u32Least, stRing.sztLevel - stRing.sztReadSize);
}

template <ZE_KEST_DataBuffer_s ZE_KEST_Port_s::*kRing>
void LowerToUnwritten(ZE_KEST_Port_s &stPort, uint32_t &u32Least) {
  const ZE_KEST_DataBuffer_s &stRing = stPort.*kRing;
  if (stRing.sztSize != 0) u32Least = std::min(u32Least, stRing.sztSpace - stRing.sztWriteSize);
}

void AddPcmRead(ZE_KEST_Port_s &stPort, uint32_t &u32Samples) {
  ZE_KEST_PcmBuffer_s &stPcm = stPort.stPcm;
  stPcm.sztPcmReadSize = std::min(stPcm.sztPcmReadSize + u32Samples, stPcm.sztPcmRingSamples);
  stPcm.sztPcmTotalRead += u32Samples;
  ++stPcm.u64PcmReadCount;
}

void AddPcmWrite(ZE_KEST_Port_s &stPort, uint32_t &u32Samples) {
  ZE_KEST_PcmBuffer_s &stPcm = stPort.stPcm;
  stPcm.sztPcmWriteSize = std::min(stPcm.sztPcmWriteSize + u32Samples, stPcm.sztPcmRingSamples);
}

template <ZE_KEST_DataBuffer_s ZE_KEST_Port_s::*kRing>
void AddRead(ZE_KEST_Port_s &stPort, uint32_t &u32Bytes) {
  ZE_KEST_DataBuffer_s &stRing = stPort.*kRing;
  stRing.sztReadSize += u32Bytes;
  stRing.sztTotalRead += u32Bytes;
  ++stRing.au64Count[0];
}

void AddMetaWrite(ZE_KEST_Port_s &stPort, uint32_t &u32Bytes) {
  ZE_KEST_DataBuffer_s &stMeta = stPort.stMeta;
  stMeta.sztWriteSize = std::min(stMeta.sztWriteSize + u32Bytes, stMeta.sztSize);
}

void AddRawWrite(ZE_KEST_Port_s &stPort, uint32_t &u32Bytes) {
  stPort.stRaw.sztWriteSize += u32Bytes;
}

void SetInfo(ZE_KEST_Port_s &stPort, uint32_t & /*u32Value*/) {
  stPort.stPcm.stPcmInfo = kInfo;
}

void SetGroups(ZE_KEST_Port_s &stPort, uint32_t & /*u32Value*/) {
  ZE_KEST_PcmBuffer_s &stPcm = stPort.stPcm;
  stPcm.u32PcmGroupNum = ZE_KEST_PCM_GROUPS;
  stPcm.stPcmInfo.u32TotalChannels = 0;
  std::copy(std::begin(kGroups), std::end(kGroups), stPcm.astPcmGroup);
  for (uint32_t g = 0; g < ZE_KEST_PCM_GROUPS; ++g) {
    if (stPcm.apu8PcmGroupBuf[g] == nullptr)
      stPcm.astPcmGroup[g].ePcmGroupType = -1;
    else
      stPcm.stPcmInfo.u32TotalChannels += kGroups[g].u32ChannelCount;
  }
}

void FindMeta(ZE_KEST_Port_s &stPort, uint32_t &u32Found) {
  if (stPort.stMeta.sztSize != 0) u32Found = 1;
}

void FindGroup(ZE_KEST_Port_s &stPort, uint32_t &u32Found) {
  if (stPort.stPcm.apu8PcmGroupBuf[kGroup] != nullptr) u32Found = 1;
}

uint32_t PlainFindGroup(ZE_KEST_Filter_s *pstFilter, uint32_t u32Found) {
  return PlainWalk<kIn, FindGroup>(pstFilter, u32Found) & PlainWalk<kOut, FindGroup>(pstFilter, u32Found);
}

template <auto kCalculate>
uint32_t Size(ZE_KEST_Filter_s *pstFilter, uint32_t u32Size) {
  kCalculate(pstFilter, &u32Size);
  return u32Size;
}

template <auto kUpdate>
uint32_t Specific(ZE_KEST_Filter_s *pstFilter, uint32_t u32Port) {
  return kUpdate(pstFilter, kSamples, u32Port);
}

constexpr auto kMeta = &ZE_KEST_Port_s::stMeta;
constexpr auto kRaw = &ZE_KEST_Port_s::stRaw;

struct WalkRow {
  const char *pszName;
  Walk pfnLibrary;
  Walk pfnPlain;
  uint32_t u32Value;
};

constexpr WalkRow kRows[] = {
    {"process size of eight ports, input PCM", Size<ze_kest_Utility_CalculateInputPortPcmProcessSize>,
     PlainWalk<kIn, LowerToLevel>, UINT32_MAX},
    {"process size of eight ports, output PCM", Size<ze_kest_Utility_CalculateOutputPortPcmProcessSize>,
     PlainWalk<kOut, LowerToSpace>, UINT32_MAX},
    {"process size of eight ports, input metadata",
     Size<ze_kest_Utility_CalculateInputPortMetadataProcessSize>, PlainWalk<kIn, LowerToUnread<kMeta>>,
     UINT32_MAX},
    {"process size of eight ports, output metadata",
     Size<ze_kest_Utility_CalculateOutputPortMetadataProcessSize>, PlainWalk<kOut, LowerToUnwritten<kMeta>>,
     UINT32_MAX},
    {"process size of eight ports, input raw data", Size<ze_kest_Utility_CalculateInputPortRawProcessSize>,
     PlainWalk<kIn, LowerToUnread<kRaw>>, UINT32_MAX},
    {"process size of eight ports, output raw data", Size<ze_kest_Utility_CalculateOutputPortRawProcessSize>,
     PlainWalk<kOut, LowerToUnwritten<kRaw>>, UINT32_MAX},

    {"account for eight ports, PCM read", ze_kest_Utility_UpdateAllInputPortPcmReadSize,
     PlainWalk<kIn, AddPcmRead>, kSamples},
    {"account for eight ports, PCM written", ze_kest_Utility_UpdateAllOutputPortPcmWriteSize,
     PlainWalk<kOut, AddPcmWrite>, kSamples},
    {"account for eight ports, metadata read", ze_kest_Utility_UpdateAllInputPortMetadataReadSize,
     PlainWalk<kIn, AddRead<kMeta>>, kSamples},
    {"account for eight ports, metadata written", ze_kest_Utility_UpdateAllOutputPortMetadataWriteSize,
     PlainWalk<kOut, AddMetaWrite>, kSamples},
    {"account for eight ports, raw data read", ze_kest_Utility_UpdateAllInputPortRawReadSize,
     PlainWalk<kIn, AddRead<kRaw>>, kSamples},
    {"account for eight ports, raw data written", ze_kest_Utility_UpdateAllOutputPortRawWriteSize,
     PlainWalk<kOut, AddRawWrite>, kSamples},
    {"account for one port, PCM read", Specific<ze_kest_Utility_UpdateSpecificInputPortPcmReadSize>,
     PlainOne<kIn, AddPcmRead>, kPort},
    {"account for one port, PCM written", Specific<ze_kest_Utility_UpdateSpecificOutputPortPcmWriteSize>,
     PlainOne<kOut, AddPcmWrite>, kPort},
    {"account for one port, metadata read", Specific<ze_kest_Utility_UpdateSpecificInputPortMetadataReadSize>,
     PlainOne<kIn, AddRead<kMeta>>, kPort},
    {"account for one port, raw data read", Specific<ze_kest_Utility_UpdateSpecificInputPortRawReadSize>,
     PlainOne<kIn, AddRead<kRaw>>, kPort},

    {"format of eight ports set",
     [](ZE_KEST_Filter_s *pstFilter, uint32_t) {
       return ze_kest_Utility_UpdatePcmInfoToAllOutputPort(pstFilter, &kInfo);
     },
     PlainWalk<kOut, SetInfo>, 0},
    {"channel groups of eight ports set",
     [](ZE_KEST_Filter_s *pstFilter, uint32_t) {
       return ze_kest_Utility_UpdatePcmGroupToAllOutputPort(pstFilter, 0, kGroups);
     },
     PlainWalk<kOut, SetGroups>, 0},
    {"channel group sought on eight ports",
     [](ZE_KEST_Filter_s *pstFilter, uint32_t) {
       return ze_kest_Utility_CheckOutPortPcmGroupCapability(pstFilter, kGroup);
     },
     PlainWalk<kOut, FindGroup>, 0},
    {"channel group sought on eight ports of both sides",
     [](ZE_KEST_Filter_s *pstFilter, uint32_t) {
       return ze_kest_Utility_CheckPcmGroupCapability(pstFilter, kGroup);
     },
     PlainFindGroup, 0},
    {"metadata ring sought on eight ports",
     [](ZE_KEST_Filter_s *pstFilter, uint32_t) {
       return ze_kest_Utility_IsOutputMetadataBufferExist(pstFilter);
     },
     PlainWalk<kOut, FindMeta>, 0},
};

}  // namespace

void AddPortWalkRows() {
  for (const WalkRow &walk : kRows) {
    const auto ports = std::make_shared<EightPorts>();
    Row row(std::string(walk.pszName) + " (limit: a plain loop)");
    for (const auto &[eWho, pfnWalk] :
         {std::pair{Who::kLibrary, walk.pfnLibrary}, std::pair{Who::kLimit, walk.pfnPlain}}) {
      row.Add("", eWho, [ports, pfnWalk = pfnWalk, u32Value = walk.u32Value] {
        benchmark::DoNotOptimize(pfnWalk(&ports->stFilter, u32Value));
      });
    }
  }
}

}  // namespace kest::bench
