// SPDX-License-Identifier: Apache-2.0
#include "debug/registry/filter_status.h"

#include <algorithm>
#include <cstring>

#include "debug/registry/filter_query.h"
#include "utility/core/report.h"

namespace kest {
namespace {

using Counter = unsigned long long;

Counter CounterOf(const ZE_KEST_Port_s *pstPort, uint64_t ZE_KEST_PcmBuffer_s::*pu64Counter) {
  return pstPort == nullptr ? 0 : Load(pstPort->stPcm.*pu64Counter);
}

// NULL beyond the port count: a slot there may hold a stale pointer.
const ZE_KEST_Port_s *PortAt(ZE_KEST_Port_s *const *apstPort, uint32_t u32Count, uint32_t u32Index) {
  return u32Index < u32Count && u32Index < ZE_KEST_MAX_PORTS ? apstPort[u32Index] : nullptr;
}

const ZE_KEST_Port_s *InPort(const ZE_KEST_Filter_s &filter, uint32_t u32Index = 0) {
  return PortAt(filter.apstInPort, filter.u32InPortCount, u32Index);
}

// Underruns of an input port, overruns of an output port.
Counter XrunsOf(const ZE_KEST_Port_s *pstPort) {
  return CounterOf(pstPort, &ZE_KEST_PcmBuffer_s::u64PcmXrunCount);
}

// Each value is read before the line that prints it: a failing read is reported ahead of the line, and the
// arguments of a call have no order.
void _ZE_KEST_Debug_PrintDecoderInfo(ZE_KEST_Filter_s &filter) {
  const char *const pszFunction = __func__;
  const auto query = [&](const char *pszName) { return Query<uint32_t>(pszFunction, filter, pszName); };
  KEST_PRINT("[Decoder Info] \n");
  const uint32_t u32Ok = query("OkFrmCnt");
  const uint32_t u32Err = query("ErrFrmCnt");
  KEST_PRINT("                                         FrmCnt        : Ok=%05x,Err=%05x\n", u32Ok, u32Err);
  const uint32_t u32Main = query("MdVol");
  const uint32_t u32Associated = query("AdVol");
  KEST_PRINT(
      "                                         main/asoc Vol : 0x%02x, 0x%02x (mute[10] | int[9:3] | "
      "fra[2:0], "
      "0x60:0dB)\n",
      u32Main, u32Associated);
  const uint32_t u32Drc = query("DrcMode");
  KEST_PRINT("                                         dolby drcMode : %x  (0:Line, 1:RF)\n", u32Drc);
  const uint32_t u32Dmx = query("DmxMode");
  KEST_PRINT("                                               dmxMode : %x  (0:LtRt, 1:LoRo, 3:Arib)\n",
             u32Dmx);
  const uint32_t u32Tb11 = query("DolbyTb11Enable");
  KEST_PRINT("                                               tb11    : %x  (1:enable)\n", u32Tb11);
  const uint32_t u32Rf = query("RfSignalType");
  KEST_PRINT(
      "                                         rfSignalType  : %x  (0:Dvb, 1:Atsc, 2:Dtmb, 3:others)\n",
      u32Rf);
}

void _ZE_KEST_Debug_PrintMixerInfo(ZE_KEST_Filter_s &filter) {
  const uint32_t u32Ports = std::min<uint32_t>(filter.u32InPortCount, ZE_KEST_MAX_PORTS);
  for (uint32_t i = 0; i < u32Ports; ++i) {
    KEST_PRINT(" in[%u] underrun:%-4llu ", i, XrunsOf(InPort(filter, i)));
  }
  KEST_PRINT("\n");
}

void _ZE_KEST_Debug_PrintVolumeInfo(ZE_KEST_Filter_s &filter) {
  const auto s32Gain = Query<int32_t>(__func__, filter, "Gain");
  const auto u32Mute = Query<uint32_t>(__func__, filter, "Mute");
  KEST_PRINT(" gain:%d, mute:%u\n", s32Gain, u32Mute);
}

void _ZE_KEST_Debug_PrintDelayInfo(ZE_KEST_Filter_s &filter) {
  const auto u32Pcm = Query<uint32_t>(__func__, filter, "DelayTime");
  const auto u32Raw = Query<uint32_t>(__func__, filter, "RawDelayTime");
  KEST_PRINT(" pcm delay:%u, raw delay:%u\n", u32Pcm, u32Raw);
}

void _ZE_KEST_Debug_PrintSyncInfo(ZE_KEST_Filter_s &filter) {
  const auto u32Status = Query<uint32_t>(__func__, filter, "SyncStatus");
  const auto u64Pts = Query<uint64_t>(__func__, filter, "CurrentPTS");
  const auto u64Stc = Query<uint64_t>(__func__, filter, "CurrentSTC");
  const auto u64Empty = Query<uint64_t>(__func__, filter, "DataEmpty");
  const auto bSync = Query<uint8_t>(__func__, filter, "SyncEnable");
  const auto bOutput = Query<uint8_t>(__func__, filter, "OutputEnable");
  const auto bBypass = Query<uint8_t>(__func__, filter, "BypassEnable");
  const ZE_KEST_Port_s *pstIn = InPort(filter);
  KEST_PRINT(
      " bSyncEn[%d] bOutputEn[%d] okCnt[%llu] skipCnt[%llu] emptyCnt[%llu] STC[%llu] PTS[%llu] TD[%lld] "
      "Status[%u] (0:invalid, 1:freerun, 2:sync, 3:drop frame) Bypass[%d]\n",
      bSync, bOutput, CounterOf(pstIn, &ZE_KEST_PcmBuffer_s::u64PcmPassCount),
      CounterOf(pstIn, &ZE_KEST_PcmBuffer_s::u64PcmSkipCount), static_cast<Counter>(u64Empty),
      static_cast<Counter>(u64Stc), static_cast<Counter>(u64Pts), static_cast<long long>(u64Stc - u64Pts),
      u32Status, bBypass);
}

void _ZE_KEST_Debug_PrintDigitalOutInfo(ZE_KEST_Filter_s &filter) {
  const auto u32IsPcm = Query<uint32_t>(__func__, filter, "IsPCM");
  const Counter u64Underruns = XrunsOf(InPort(filter));
  if (u32IsPcm != 0) {
    KEST_PRINT(" in[0] underrun pcm:%llu\n", u64Underruns);
  } else {
    KEST_PRINT(" in[0] underrun npcm:%llu\n", u64Underruns);
  }
}

void PrintUnderruns(ZE_KEST_Filter_s &filter) {
  KEST_PRINT_AS("_ZE_KEST_Debug_PrintStatusInfo", " in[0] underrun:%-4llu\n", XrunsOf(InPort(filter)));
}

void PrintOverruns(ZE_KEST_Filter_s &filter) {
  KEST_PRINT_AS("_ZE_KEST_Debug_PrintStatusInfo", " out[0] overrun:%-4llu\n",
                XrunsOf(PortAt(filter.apstOutPort, filter.u32OutPortCount, 0)));
}

struct FilterKind {
  const char *pszFilterName;
  void (*pfnPrint)(ZE_KEST_Filter_s &filter);
};

constexpr FilterKind kKinds[] = {{"Aac", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"Ac3", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"Ac4", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"AmrNb", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"Alac", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"Cook", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"Dra", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"Dts", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"Flac", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"Gaac", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"ImaAdpcm", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"Lpcm", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"Mpeg", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"MpegH", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"Mat", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"Opus", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"Vorbis", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"WmaPro", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"Xpcm", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"MsAdpcm", _ZE_KEST_Debug_PrintDecoderInfo},
                                 {"Src", PrintUnderruns},
                                 {"Mixer", _ZE_KEST_Debug_PrintMixerInfo},
                                 {"Volume", _ZE_KEST_Debug_PrintVolumeInfo},
                                 {"Delay", _ZE_KEST_Debug_PrintDelayInfo},
                                 {"Sync", _ZE_KEST_Debug_PrintSyncInfo},
                                 {"SpeakerOutput", PrintUnderruns},
                                 {"HeadphoneOutput", PrintUnderruns},
                                 {"LineOutput", PrintUnderruns},
                                 {"SpdifOutput", _ZE_KEST_Debug_PrintDigitalOutInfo},
                                 {"ArcOutput", _ZE_KEST_Debug_PrintDigitalOutInfo},
                                 {"EarcOutput", _ZE_KEST_Debug_PrintDigitalOutInfo},
                                 {"Adc", PrintOverruns},
                                 {"Atv", PrintOverruns},
                                 {"Hdmi", PrintOverruns}};

}  // namespace

void PrintKindStatus(ZE_KEST_Filter_s &filter) {
  for (const FilterKind &kind : kKinds) {
    if (strcmp(kind.pszFilterName, filter.szName) == 0) return kind.pfnPrint(filter);
  }
}

}  // namespace kest
