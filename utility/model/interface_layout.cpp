// SPDX-License-Identifier: Apache-2.0
// The layout of the interface records on the 32-bit target. The framework and its filters are built
// separately from this library, so moving a field breaks all of them.
#include <cstddef>
#include <cstdint>

#include "ze_kest/debug.h"
#include "ze_kest/json.h"
#include "ze_kest/model.h"
#include "ze_kest/module.h"
#include "ze_kest/performance.h"

namespace {

// Tells the target apart from 32-bit x86, which aligns 64-bit fields to 4 bytes.
struct WideField {
  uint32_t u32Before;
  uint64_t u64Wide;
};
constexpr bool kIsTarget = sizeof(void *) == 4 && offsetof(WideField, u64Wide) == 8;

#define KEST_SIZE(record, bytes) static_assert(!kIsTarget || sizeof(record) == (bytes), "size of " #record)
#define KEST_AT(offset, record, field) \
  static_assert(!kIsTarget || offsetof(record, field) == (offset), "offset of " #record "::" #field)

KEST_AT(0, ZE_KEST_PcmInfo_s, u32TotalChannels);
KEST_AT(4, ZE_KEST_PcmInfo_s, u32SampleRate);
KEST_AT(8, ZE_KEST_PcmInfo_s, u32BitWidth);
KEST_SIZE(ZE_KEST_PcmInfo_s, 20);

KEST_AT(0, ZE_KEST_PcmGroup_s, ePcmGroupType);
KEST_AT(4, ZE_KEST_PcmGroup_s, u32ChannelCount);
KEST_AT(8, ZE_KEST_PcmGroup_s, as32ChMap);
KEST_SIZE(ZE_KEST_PcmGroup_s, 48);

KEST_AT(0, ZE_KEST_PcmBuffer_s, apu8PcmGroupBuf);
KEST_AT(12, ZE_KEST_PcmBuffer_s, sztPcmRingSamples);
KEST_AT(16, ZE_KEST_PcmBuffer_s, asztPcmAllocSize);
KEST_AT(28, ZE_KEST_PcmBuffer_s, sztPcmLevel);
KEST_AT(32, ZE_KEST_PcmBuffer_s, sztPcmSpace);
KEST_AT(36, ZE_KEST_PcmBuffer_s, sztPcmReadSize);
KEST_AT(40, ZE_KEST_PcmBuffer_s, sztPcmWriteSize);
KEST_AT(44, ZE_KEST_PcmBuffer_s, sztPcmTotalRead);
KEST_AT(48, ZE_KEST_PcmBuffer_s, sztPcmReadOffset);
KEST_AT(56, ZE_KEST_PcmBuffer_s, s64PcmPts);
KEST_AT(64, ZE_KEST_PcmBuffer_s, u64PcmReadCount);
KEST_AT(72, ZE_KEST_PcmBuffer_s, u64PcmXrunCount);
KEST_AT(80, ZE_KEST_PcmBuffer_s, u64PcmPassCount);
KEST_AT(88, ZE_KEST_PcmBuffer_s, u64PcmSkipCount);
KEST_AT(96, ZE_KEST_PcmBuffer_s, stPcmInfo);
KEST_AT(116, ZE_KEST_PcmBuffer_s, u32PcmGroupNum);
KEST_AT(120, ZE_KEST_PcmBuffer_s, astPcmGroup);
KEST_SIZE(ZE_KEST_PcmBuffer_s, 264);

KEST_AT(0, ZE_KEST_DataBuffer_s, pu8Buf);
KEST_AT(12, ZE_KEST_DataBuffer_s, sztSize);
KEST_AT(16, ZE_KEST_DataBuffer_s, sztLevel);
KEST_AT(20, ZE_KEST_DataBuffer_s, sztSpace);
KEST_AT(24, ZE_KEST_DataBuffer_s, sztReadSize);
KEST_AT(28, ZE_KEST_DataBuffer_s, sztWriteSize);
KEST_AT(32, ZE_KEST_DataBuffer_s, sztTotalRead);
KEST_AT(40, ZE_KEST_DataBuffer_s, sztReadOffset);
KEST_AT(48, ZE_KEST_DataBuffer_s, s64Pts);
KEST_AT(56, ZE_KEST_DataBuffer_s, au64Count);
KEST_SIZE(ZE_KEST_DataBuffer_s, 88);

KEST_AT(4, ZE_KEST_Port_s, bConnected);
KEST_AT(24, ZE_KEST_Port_s, stPcm);
KEST_AT(288, ZE_KEST_Port_s, stRaw);
KEST_AT(376, ZE_KEST_Port_s, stMeta);
KEST_SIZE(ZE_KEST_Port_s, 464);

KEST_AT(0, ZE_KEST_Pipeline_s, szName);
KEST_AT(64, ZE_KEST_Pipeline_s, u32State);
KEST_AT(68, ZE_KEST_Pipeline_s, u8AutoConsume);
KEST_AT(72, ZE_KEST_Pipeline_s, u32SleepPriority);
KEST_AT(76, ZE_KEST_Pipeline_s, s32SleepTime);
KEST_AT(80, ZE_KEST_Pipeline_s, u32WakeUp);
KEST_SIZE(ZE_KEST_Pipeline_s, 84);

KEST_AT(0, ZE_KEST_Filter_s, szName);
KEST_AT(64, ZE_KEST_Filter_s, pstParentPipeline);
KEST_AT(68, ZE_KEST_Filter_s, u32InPortCount);
KEST_AT(72, ZE_KEST_Filter_s, u32OutPortCount);
KEST_AT(76, ZE_KEST_Filter_s, apstInPort);
KEST_AT(108, ZE_KEST_Filter_s, apstOutPort);
KEST_AT(144, ZE_KEST_Filter_s, sztMaxInPcmProcessSize);
KEST_AT(148, ZE_KEST_Filter_s, sztMaxOutPcmProcessSize);
KEST_AT(152, ZE_KEST_Filter_s, u8Option);
KEST_AT(156, ZE_KEST_Filter_s, pszConfig);
KEST_AT(160, ZE_KEST_Filter_s, u32SleepPriority);
KEST_AT(164, ZE_KEST_Filter_s, s32SleepTime);
KEST_AT(168, ZE_KEST_Filter_s, u32WakeUp);
KEST_AT(172, ZE_KEST_Filter_s, pfnSetParameter);
KEST_AT(176, ZE_KEST_Filter_s, pfnGetParameter);
KEST_AT(180, ZE_KEST_Filter_s, u8Ds);
KEST_AT(184, ZE_KEST_Filter_s, s32Tgt);
KEST_AT(188, ZE_KEST_Filter_s, u32DbgLvl);
KEST_SIZE(ZE_KEST_Filter_s, 192);

KEST_AT(0, ZE_KEST_PerfEvent_s, as32Fd);
KEST_AT(16, ZE_KEST_PerfEvent_s, au64Id);
KEST_AT(40, ZE_KEST_PerfEvent_s, au64Count);
KEST_AT(64, ZE_KEST_PerfEvent_s, au64Total);
KEST_AT(88, ZE_KEST_PerfEvent_s, bInit);
KEST_SIZE(ZE_KEST_PerfEvent_s, 96);

KEST_AT(0, ZE_KEST_PerformanceMeasure_s, u64Count);
KEST_AT(8, ZE_KEST_PerformanceMeasure_s, u64FirstStartTime);
KEST_AT(16, ZE_KEST_PerformanceMeasure_s, u64StartTime);
KEST_AT(24, ZE_KEST_PerformanceMeasure_s, u64StopTime);
KEST_AT(32, ZE_KEST_PerformanceMeasure_s, u64ExeTime);
KEST_AT(40, ZE_KEST_PerformanceMeasure_s, stPerfEvent);
KEST_SIZE(ZE_KEST_PerformanceMeasure_s, 136);

KEST_AT(0, ZE_KEST_JsmnTokenInfo_s, type);
KEST_AT(4, ZE_KEST_JsmnTokenInfo_s, start);
KEST_AT(8, ZE_KEST_JsmnTokenInfo_s, end);
KEST_AT(12, ZE_KEST_JsmnTokenInfo_s, size);
KEST_SIZE(ZE_KEST_JsmnTokenInfo_s, 16);

KEST_AT(0, ZE_KEST_Jsmn_s, pos);
KEST_AT(4, ZE_KEST_Jsmn_s, toknext);
KEST_AT(8, ZE_KEST_Jsmn_s, toksuper);
KEST_AT(12, ZE_KEST_Jsmn_s, pstTokenInfo);
KEST_AT(16, ZE_KEST_Jsmn_s, pszStringData);
KEST_AT(20, ZE_KEST_Jsmn_s, sztTokenInfoSize);
KEST_AT(24, ZE_KEST_Jsmn_s, sztStringDataSize);
KEST_AT(28, ZE_KEST_Jsmn_s, u32TotalTokenCounter);
KEST_SIZE(ZE_KEST_Jsmn_s, 32);

KEST_AT(0, ZE_KEST_SupportedParameter_s, szName);
KEST_AT(64, ZE_KEST_SupportedParameter_s, szDescription);
KEST_AT(128, ZE_KEST_SupportedParameter_s, sztSize);
KEST_AT(136, ZE_KEST_SupportedParameter_s, pstNext);
KEST_SIZE(ZE_KEST_SupportedParameter_s, 140);

KEST_AT(4, ZE_KEST_ModuleSetup_s, u32MaxSamples);
KEST_AT(8, ZE_KEST_ModuleSetup_s, stPcmInfo);
KEST_AT(28, ZE_KEST_ModuleSetup_s, astPcmGroup);
KEST_AT(172, ZE_KEST_ModuleSetup_s, pszConfig);
KEST_AT(176, ZE_KEST_ModuleSetup_s, pszDirectory);
KEST_AT(180, ZE_KEST_ModuleSetup_s, pszError);
KEST_AT(184, ZE_KEST_ModuleSetup_s, u32ErrorSize);
KEST_SIZE(ZE_KEST_ModuleSetup_s, 188);

KEST_AT(8, ZE_KEST_ModuleParameter_s, pszName);
KEST_AT(20, ZE_KEST_ModuleParameter_s, u32Decimals);
KEST_AT(32, ZE_KEST_ModuleParameter_s, s32Default);
KEST_SIZE(ZE_KEST_ModuleParameter_s, 36);

KEST_AT(12, ZE_KEST_ModuleFilter_s, u32Flags);
KEST_AT(16, ZE_KEST_ModuleFilter_s, pszName);
KEST_AT(28, ZE_KEST_ModuleFilter_s, u32Widths);
KEST_AT(40, ZE_KEST_ModuleFilter_s, pfnCreate);
KEST_AT(72, ZE_KEST_ModuleFilter_s, pfnCommand);
KEST_SIZE(ZE_KEST_ModuleFilter_s, 76);

}  // namespace
