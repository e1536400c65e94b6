// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/dump.h"

#include "debug/datapath/dump_selections.h"
#include "debug/datapath/file_name.h"
#include "debug/datapath/hook_filter.h"
#include "debug/datapath/pcm_planes.h"
#include "utility/core/owned_memory.h"
#include "utility/port/ring_position.h"

namespace kest {
namespace {

constexpr uint32_t kChunkFrames = 64;
constexpr uint32_t kFallbackWidth = 2;
constexpr size_t kScratchBytes = size_t{kChunkFrames} * ZE_KEST_PCM_GROUP_SLOTS * sizeof(int32_t);
constexpr const char *kPcmSuffixes[ZE_KEST_PCM_GROUPS] = {"_dmx.pcm", "_mc.pcm", "_rawmc.pcm"};

// What differs between the two sides of a filter.
struct DumpSide {
  const char *pszFunction;
  const char *pszFilePrefix;
  const FilterSelection &selection;
  ZE_KEST_Port_s *(ZE_KEST_Filter_s::*papstPorts)[ZE_KEST_MAX_PORTS];
  uint32_t u32AlwaysServed;                      // the first slots, dumped even when they are not connected
  uint32_t ZE_KEST_PcmBuffer_s::*psztPcmSize;    // PCM size of this cycle
  uint32_t ZE_KEST_DataBuffer_s::*psztDataSize;  // the same for raw data and metadata
  bool bAfterLevel;  // whether the cycle's data follows what the ring holds, or starts at the read offset
  bool (*pfnIsWidthDumped)(uint32_t u32Bits);
};

// Deliberate: the sides differ. Only the input takes packed 24-bit samples, and an unconnected second slot.
bool IsInputWidthDumped(uint32_t u32Bits) {
  return (u32Bits >= 16 && u32Bits <= 31) || u32Bits / 8 == 4;
}

bool IsOutputWidthDumped(uint32_t u32Bits) {
  return u32Bits / 8 == 2 || u32Bits / 8 == 4;
}

constexpr DumpSide kInputSide = {
    "_ZE_KEST_Debug_DumpInput",         "DumpIn", _stKestDumpInput,
    &ZE_KEST_Filter_s::apstInPort,      2,        &ZE_KEST_PcmBuffer_s::sztPcmReadSize,
    &ZE_KEST_DataBuffer_s::sztReadSize, false,    IsInputWidthDumped,
};

constexpr DumpSide kOutputSide = {
    "_ZE_KEST_Debug_DumpOutput",         "DumpOut", _stKestDumpOutput,
    &ZE_KEST_Filter_s::apstOutPort,      1,         &ZE_KEST_PcmBuffer_s::sztPcmWriteSize,
    &ZE_KEST_DataBuffer_s::sztWriteSize, true,      IsOutputWidthDumped,
};

// One port of a filter in one cycle.
struct DumpedPort {
  const DumpSide &side;
  const ZE_KEST_Filter_s &filter;
  uint32_t u32Slot;
  uint32_t u32Index;

  [[nodiscard]] FileName File(const char *pszSuffix) const {
    return FileName(side.pszFunction, "%s%s%s%u_%u%s", side.pszFilePrefix, filter.pstParentPipeline->szName,
                    filter.szName, u32Slot, u32Index, pszSuffix);
  }
};

// The frames to dump, the same for all groups of a port: units after the read offset, number of frames, bytes
// per sample.
struct Frames {
  uint32_t u32Advance;
  uint32_t sztCount;
  uint32_t u32Width;
};

uint32_t DumpedWidth(const DumpedPort &port, uint32_t u32Bits) {
  if (port.side.pfnIsWidthDumped(u32Bits)) return u32Bits / 8;
  if (u32Bits != 0) {
    KEST_PRINT_AS(port.side.pszFunction, "%s wrong bit %u\n", port.filter.szName, u32Bits);
  }
  return kFallbackWidth;
}

void DumpGroup(const DumpedPort &port, const ZE_KEST_PcmBuffer_s &stPcm, uint32_t u32Group,
               const Frames &frames, uint8_t *pu8Scratch) {
  const uint32_t u32Channels = PlaneCount(stPcm, u32Group, frames.u32Width);
  if (u32Channels == 0) return;
  const FileName file = port.File(kPcmSuffixes[u32Group]);
  uint32_t sztChunk = 0;
  for (uint32_t sztDone = 0; sztDone < frames.sztCount; sztDone += sztChunk) {
    sztChunk = std::min(frames.sztCount - sztDone, kChunkFrames);
    const uint32_t u32Advance = WrapOnce(frames.u32Advance + sztDone, stPcm.sztPcmRingSamples);
    ze_kest_Utility_ConvertNonInterleaveToInterleave(pu8Scratch, &stPcm, u32Group, u32Channels, u32Advance,
                                                     sztChunk, frames.u32Width);
    ze_kest_Utility_DumpBuffer(KEST_DEBUG_DIR, file.c_str(), pu8Scratch,
                               size_t{u32Channels} * frames.u32Width * sztChunk);
  }
}

// False when out of memory, which ends the port's dump in this cycle.
bool DumpPcm(const DumpedPort &port, const ZE_KEST_PcmBuffer_s &stPcm) {
  const uint32_t sztSize = stPcm.*port.side.psztPcmSize;
  const uint32_t u32Advance = port.side.bAfterLevel ? stPcm.sztPcmLevel : 0;
  if (sztSize == 0 || sztSize > stPcm.sztPcmRingSamples) return true;
  if (!RingPosition(stPcm.sztPcmRingSamples, stPcm.sztPcmReadOffset, u32Advance)) return true;
  const auto scratch = Allocate<uint8_t>(kScratchBytes);
  if (scratch == nullptr) return false;
  memset(scratch.get(), 0, kScratchBytes);
  const Frames frames = {u32Advance, sztSize, DumpedWidth(port, stPcm.stPcmInfo.u32BitWidth)};
  for (uint32_t u32Group = 0; u32Group < ZE_KEST_PCM_GROUPS; ++u32Group) {
    DumpGroup(port, stPcm, u32Group, frames, scratch.get());
  }
  return true;
}

void DumpData(const DumpedPort &port, const ZE_KEST_DataBuffer_s &data, const char *pszSuffix) {
  const uint32_t sztSize = data.*port.side.psztDataSize;
  if (sztSize == 0 || sztSize > data.sztSize || data.pu8Buf == nullptr) return;
  const auto start =
      RingPosition(data.sztSize, data.sztReadOffset, port.side.bAfterLevel ? data.sztLevel : 0);
  if (!start) return;
  ze_kest_Utility_DumpRingBuffer(KEST_DEBUG_DIR, port.File(pszSuffix).c_str(), data.pu8Buf + *start,
                                 data.pu8Buf, data.pu8Buf + data.sztSize, sztSize);
}

void DumpPort(const DumpedPort &port, const ZE_KEST_Port_s &st) {
  if (!DumpPcm(port, st.stPcm)) return;
  DumpData(port, st.stRaw, ".raw");
  DumpData(port, st.stMeta, ".meta");
}

void DumpFilter(const DumpSide &side, const ZE_KEST_Filter_s &filter) {
  const uint32_t u32Index = Load(side.selection.u32DumpIndex);
  for (uint32_t u32Slot = 0; u32Slot < ZE_KEST_MAX_PORTS; ++u32Slot) {
    const ZE_KEST_Port_s *pstPort = (filter.*side.papstPorts)[u32Slot];
    if (pstPort == nullptr) continue;
    if (u32Slot >= side.u32AlwaysServed && pstPort->bConnected == 0) continue;
    DumpPort({side, filter, u32Slot, u32Index}, *pstPort);
  }
}

}  // namespace

uint32_t _ZE_KEST_Debug_Dump(const ZE_KEST_Filter_s *pstFilter, uint32_t u32Kind) {
  KEST_REQUIRE_PIPELINE(pstFilter);
  const DumpSide &side = u32Kind == kInputDump ? kInputSide : kOutputSide;
  if (IsSelected(side.selection, *pstFilter)) DumpFilter(side, *pstFilter);
  return ZE_KEST_OK;
}

}  // namespace kest
