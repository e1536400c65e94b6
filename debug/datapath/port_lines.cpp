// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/port_lines.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include "debug/datapath/switches.h"
#include "utility/core/monotonic_us.h"
#include "utility/core/owned_memory.h"
#include "utility/core/report.h"

namespace kest {
namespace {

constexpr size_t kLineSize = 512;

// What a line shows of one kind of a port's data.
struct PortLevels {
  unsigned long long aullCount[4];
  size_t sztLevel;
  size_t sztSpace;
  size_t sztSize;
  size_t sztReadSize;
  size_t sztWriteSize;
  long long llPts;
};

PortLevels PcmLevels(const ZE_KEST_Port_s &port) {
  const ZE_KEST_PcmBuffer_s &stPcm = port.stPcm;
  return {{stPcm.u64PcmReadCount, stPcm.u64PcmXrunCount, stPcm.u64PcmPassCount, stPcm.u64PcmSkipCount},
          stPcm.sztPcmLevel,
          stPcm.sztPcmSpace,
          stPcm.sztPcmRingSamples,
          stPcm.sztPcmReadSize,
          stPcm.sztPcmWriteSize,
          stPcm.s64PcmPts};
}

PortLevels RingLevels(const ZE_KEST_DataBuffer_s &ring) {
  return {{ring.au64Count[0], ring.au64Count[1], ring.au64Count[2], ring.au64Count[3]},
          ring.sztLevel,
          ring.sztSpace,
          ring.sztSize,
          ring.sztReadSize,
          ring.sztWriteSize,
          ring.s64Pts};
}

PortLevels MetadataLevels(const ZE_KEST_Port_s &port) {
  return RingLevels(port.stMeta);
}

PortLevels RawLevels(const ZE_KEST_Port_s &port) {
  return RingLevels(port.stRaw);
}

struct LineKind {
  const char *pszFunction;
  const char *pszHeader;
  PortLevels (*pfnLevels)(const ZE_KEST_Port_s &port);
};

// A line of text; what does not fit is cut off.
class Line {
 public:
  Line(const char *pszFunction, char *psz) : pszFunction_(pszFunction), psz_(psz) { *psz_ = '\0'; }

  void Append(const char *pszFormat, ...) ZE_KEST_PRINTF(2, 3) {
    va_list args;
    va_start(args, pszFormat);
    const int s32Length = vsnprintf(psz_ + sztLength_, kLineSize - sztLength_, pszFormat, args);
    va_end(args);
    if (s32Length < 0) {
      KEST_ERR_AS(pszFunction_, "Error! Fail to snprintf()!\n");
      return;
    }
    sztLength_ = std::min(sztLength_ + static_cast<size_t>(s32Length), kLineSize - 1);
  }

 private:
  const char *pszFunction_;
  char *psz_;
  size_t sztLength_ = 0;
};

// Slot 0 is shown whether it is connected or not.
template <typename AppendPort>
void AppendSide(ZE_KEST_Port_s *const *apstPort, const LineKind &kind, AppendPort &&appendPort) {
  for (uint32_t u32Slot = 0; u32Slot < ZE_KEST_MAX_PORTS; ++u32Slot) {
    const ZE_KEST_Port_s *pstPort = apstPort[u32Slot];
    if (pstPort == nullptr || (u32Slot != 0 && pstPort->bConnected == 0)) continue;
    appendPort(u32Slot, kind.pfnLevels(*pstPort));
  }
}

uint32_t PrintLine(const LineKind &kind, const ZE_KEST_Filter_s &filter) {
  const Owned<char> text = Allocate<char>(kLineSize);
  if (text == nullptr) {
    KEST_ERR_AS(kind.pszFunction, "%s fail to allocate\n", kind.pszFunction);
    return ZE_KEST_OUT_OF_MEMORY;
  }
  Line line(kind.pszFunction, text.get());
  line.Append("%s %-9llu %-15s:%-15s ", kind.pszHeader, static_cast<unsigned long long>(MonotonicUs()),
              filter.pstParentPipeline->szName, filter.szName);
  AppendSide(filter.apstInPort, kind, [&](uint32_t u32Slot, const PortLevels &st) {
    line.Append("  in%-1u:cnt:%-10llu,%-2llu,%-2llu,%-2llu l:%-10zu,a:%-10zu,s:%-10zu,r:%-10zu pts:%-20lld|",
                u32Slot, st.aullCount[0], st.aullCount[1], st.aullCount[2], st.aullCount[3], st.sztLevel,
                st.sztSpace, st.sztSize, st.sztReadSize, st.llPts);
  });
  AppendSide(filter.apstOutPort, kind, [&](uint32_t u32Slot, const PortLevels &st) {
    line.Append(" out%-1u:cnt:%-10llu,%-2llu,%-2llu,%-2llu l:%-10zu,a:%-10zu,s:%-10zu,w:%-10zu pts:%-20lld|",
                u32Slot, st.aullCount[0], st.aullCount[1], st.aullCount[2], st.aullCount[3], st.sztLevel,
                st.sztSpace, st.sztSize, st.sztWriteSize, st.llPts);
  });
  KEST_PRINT_AS(kind.pszFunction, "%s\n", text.get());
  return ZE_KEST_OK;
}

}  // namespace

uint32_t _ZE_KEST_Debug_FilterPcmInfo(const ZE_KEST_Filter_s &filter) {
  return PrintLine({__func__, "[pcm  level]", PcmLevels}, filter);
}

uint32_t _ZE_KEST_Debug_FilterMetadataInfo(const ZE_KEST_Filter_s &filter) {
  return PrintLine({__func__, "[meta level]", MetadataLevels}, filter);
}

uint32_t _ZE_KEST_Debug_FilterRawInfo(const ZE_KEST_Filter_s &filter) {
  return PrintLine({__func__, "[raw  level]", RawLevels}, filter);
}

uint32_t PrintPortLines(const ZE_KEST_Filter_s *pstFilter) {
  for (const auto pfnPrint :
       {_ZE_KEST_Debug_FilterPcmInfo, _ZE_KEST_Debug_FilterMetadataInfo, _ZE_KEST_Debug_FilterRawInfo}) {
    // Checked before each line, since the switch may go off in between.
    if (!IsOn(kPrintFilterInfo)) return ZE_KEST_OK;
    const uint32_t u32Result = pfnPrint(*pstFilter);
    if (u32Result != ZE_KEST_OK) return u32Result;
  }
  return ZE_KEST_OK;
}

}  // namespace kest
