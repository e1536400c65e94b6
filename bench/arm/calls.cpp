// SPDX-License-Identifier: Apache-2.0
// The program whose instructions run.sh counts.
//
// kest-arm-calls: lists the cases, one per line: name; samples moved per call; goal. The goal is instructions
// per sample, or per call for a case without samples, or else a factor and the case to compare with.
// kest-arm-calls CASE COUNT: makes the call of the case COUNT times.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "ze_kest/debug.h"
#include "ze_kest/port.h"

#include "utility/core/report.h"

namespace {

constexpr uint32_t kFrames = 1024;
constexpr uint32_t kRingSamples = 4096;
constexpr uint32_t kOffset = 3500;  // the block wraps around the end of the ring
constexpr uint32_t kMaxChannels = 10;
constexpr uint32_t kMetaBlockBytes = 64;

// Linear buffers and rings are aligned to no more than a sample, as they may be in real callers.
struct alignas(64) Buffers {
  uint8_t au8Pad[4];
  uint8_t au8Linear[4 * kFrames * kMaxChannels];
  uint8_t au8Other[4 * kFrames * kMaxChannels];
  uint8_t au8Rings[4 * kRingSamples * kMaxChannels];
};

Buffers stBuffers;
ZE_KEST_Pipeline_s stPipeline;
ZE_KEST_Port_s astPorts[ZE_KEST_MAX_PORTS];
ZE_KEST_Filter_s stFilter;
uint32_t u32Size;

// The function of a case gets these as arguments, so that it does not have to load them first: only the
// instructions of the library call are to be counted.
using Call = void (*)(ZE_KEST_Filter_s *pstFilter, uint32_t *pu32Size);

template <typename Sample>
Sample *Linear() {
  return static_cast<Sample *>(static_cast<void *>(stBuffers.au8Linear));
}

template <typename Sample>
Sample *Other() {
  return static_cast<Sample *>(static_cast<void *>(stBuffers.au8Other));
}

// Two channels use group 0, ten use group 1. The same port is read and written.
template <uint32_t kChannels, uint32_t kBits>
struct Pcm {
  static constexpr uint32_t kGroup = kChannels == 2 ? 0 : 1;
  static constexpr uint32_t kFirstCh = kChannels == 2 ? 0 : 2;
  static constexpr uint32_t kBytes = kBits / 8;
  static constexpr uint32_t kEntry = kGroup * ZE_KEST_PCM_GROUP_ENTRIES;

  static void Prepare() {
    ZE_KEST_PcmBuffer_s &stPcm = astPorts[0].stPcm;
    stPcm = {};
    stPcm.apu8PcmGroupBuf[kGroup] = stBuffers.au8Rings;
    stPcm.asztPcmAllocSize[kGroup] = kChannels * kRingSamples * kBytes;
    stPcm.sztPcmRingSamples = kRingSamples;
    stPcm.sztPcmReadOffset = kOffset;
    stPcm.stPcmInfo = {kChannels, 48000, kBits, {}};
    stPcm.u32PcmGroupNum = ZE_KEST_PCM_GROUPS;
    for (uint32_t u32Group = 0; u32Group < ZE_KEST_PCM_GROUPS; ++u32Group)
      stPcm.astPcmGroup[u32Group] = {-1, 0, {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1}};
    ZE_KEST_PcmGroup_s &stGroup = stPcm.astPcmGroup[kGroup];
    stGroup.ePcmGroupType = kGroup;
    stGroup.u32ChannelCount = kChannels;
    for (uint32_t u32Slot = 0; u32Slot < kChannels; ++u32Slot) {
      stGroup.as32ChMap[u32Slot] = static_cast<int32_t>(u32Slot);
      SetSource<kBits == 16>(u32Slot);
    }
  }

  // Sets the source of a slot to its channel in the frames of the linear buffer.
  template <bool k16Bit>
  static void SetSource(uint32_t u32Slot) {
    uint8_t *pu8 = stBuffers.au8Linear + size_t{u32Slot} * kBytes;
    if constexpr (k16Bit) {
      aps16Src[kEntry + u32Slot] = static_cast<int16_t *>(static_cast<void *>(pu8));
    } else {
      aps32Src[kEntry + u32Slot] = static_cast<int32_t *>(static_cast<void *>(pu8));
    }
    au16Stride[kEntry + u32Slot] = kChannels;
  }

  static void Deinterleave(ZE_KEST_Filter_s *, uint32_t *) {
    ze_kest_Utility_ConvertInterleaveToNonInterleave(kChannels, kBits, &astPorts[0].stPcm, kGroup, 0,
                                                     stBuffers.au8Linear, kFrames);
  }
  static void Interleave(ZE_KEST_Filter_s *, uint32_t *) {
    ze_kest_Utility_ConvertNonInterleaveToInterleave(stBuffers.au8Linear, &astPorts[0].stPcm, kGroup,
                                                     kChannels, 0, kFrames, kBytes);
  }
  template <auto pfnRead>
  static void ReadWith() {
    pfnRead(&stFilter, 0, stBuffers.au8Linear, kFrames, kFirstCh, kFirstCh + kChannels - 1, kChannels);
  }
  static void Read(ZE_KEST_Filter_s *, uint32_t *) { ReadWith<ze_kest_Utility_ReadInputPortPcmBuffer>(); }
  static void ReadTo16(ZE_KEST_Filter_s *, uint32_t *) {
    ReadWith<ze_kest_Utility_ReadInputPortPcmBuffer_To16Bit>();
  }
  static void ReadTo24Le(ZE_KEST_Filter_s *, uint32_t *) {
    ReadWith<ze_kest_Utility_ReadInputPortPcmBuffer_To24Le>();
  }
  static void Write(ZE_KEST_Filter_s *, uint32_t *) {
    if constexpr (kBits == 16) {
      ze_kest_Utility_WriteOutputPort16BitPcmBuffer(&stFilter, 0, kFrames, aps16Src, au16Stride);
    } else {
      ze_kest_Utility_WriteOutputPort32BitPcmBuffer(&stFilter, 0, kFrames, aps32Src, au16Stride);
    }
  }

  // Adds a second port that uses the rings of the first.
  static void PrepareTwoPorts() {
    Prepare();
    astPorts[1].stPcm = astPorts[0].stPcm;
    stFilter.u32OutPortCount = 2;
  }
  static void WriteAll(ZE_KEST_Filter_s *pstFilter, uint32_t *) {
    if constexpr (kBits == 16) {
      ze_kest_Utility_WriteAllOutputPort16BitPcmBuffer(pstFilter, kFrames, aps16Src, au16Stride);
    } else {
      ze_kest_Utility_WriteAllOutputPort32BitPcmBuffer(pstFilter, kFrames, aps32Src, au16Stride);
    }
  }

  // Reads one channel with the routines that serve a single ring.
  template <auto pfnRead>
  static void ReadRing(ZE_KEST_Filter_s *, uint32_t *) {
    pfnRead(stBuffers.au8Rings, stBuffers.au8Rings + kOffset * kBytes, kRingSamples * kBytes,
            stBuffers.au8Linear, kFrames * kBytes, kChannels, kBytes);
  }

  static int16_t *aps16Src[ZE_KEST_PCM_CHANNEL_ENTRIES];
  static int32_t *aps32Src[ZE_KEST_PCM_CHANNEL_ENTRIES];
  static uint16_t au16Stride[ZE_KEST_PCM_CHANNEL_ENTRIES];
};

template <uint32_t kChannels, uint32_t kBits>
int16_t *Pcm<kChannels, kBits>::aps16Src[ZE_KEST_PCM_CHANNEL_ENTRIES];
template <uint32_t kChannels, uint32_t kBits>
int32_t *Pcm<kChannels, kBits>::aps32Src[ZE_KEST_PCM_CHANNEL_ENTRIES];
template <uint32_t kChannels, uint32_t kBits>
uint16_t Pcm<kChannels, kBits>::au16Stride[ZE_KEST_PCM_CHANNEL_ENTRIES];

template <auto pfnConvert, typename Src, typename Dst>
void Convert(ZE_KEST_Filter_s *, uint32_t *) {
  pfnConvert(Linear<Src>(), Other<Dst>(), kFrames);
}

template <auto pfnConvert, typename Src, typename Dst>
void ConvertTo(ZE_KEST_Filter_s *, uint32_t *) {
  pfnConvert(Other<Dst>(), Linear<Src>(), kFrames);
}

void ConvertInPlace(ZE_KEST_Filter_s *, uint32_t *) {
  ze_kest_Utility_Convert32BitPcmFromLow24BitToHigh24Bit(Linear<int32_t>(), kFrames);
}

// The volatile pointer keeps the compiler from replacing the call by its own loop.
template <uint32_t kBytes>
void Copy(ZE_KEST_Filter_s *, uint32_t *) {
  void *(*volatile pfnCopy)(void *, const void *, size_t) = memcpy;
  pfnCopy(stBuffers.au8Linear, stBuffers.au8Rings, kBytes);
}

template <uint32_t kBytes>
void WriteContiguous(ZE_KEST_Filter_s *, uint32_t *) {
  ze_kest_Utility_WriteDataToNonInterleaveRingBuffer(stBuffers.au8Rings, stBuffers.au8Rings,
                                                     kRingSamples * kBytes, stBuffers.au8Linear,
                                                     kFrames * kBytes, 1, kBytes);
}

template <uint32_t kBytes>
void ReadContiguous(ZE_KEST_Filter_s *, uint32_t *) {
  ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer(stBuffers.au8Rings, stBuffers.au8Rings,
                                                      kRingSamples * kBytes, stBuffers.au8Linear,
                                                      kFrames * kBytes, 1, kBytes);
}

void ConnectEightPorts() {
  stFilter.u32InPortCount = stFilter.u32OutPortCount = ZE_KEST_MAX_PORTS;
  for (uint32_t u32Port = 0; u32Port < ZE_KEST_MAX_PORTS; ++u32Port) {
    ZE_KEST_Port_s &stPort = astPorts[u32Port];
    stFilter.apstInPort[u32Port] = stFilter.apstOutPort[u32Port] = &stPort;
    stPort.bConnected = 1;
    stPort.stPcm.sztPcmRingSamples = kRingSamples;
    stPort.stPcm.sztPcmLevel = stPort.stPcm.sztPcmSpace = kFrames;
    stPort.stRaw.sztSize = stPort.stMeta.sztSize = kRingSamples;
    stPort.stRaw.sztLevel = stPort.stMeta.sztLevel = kFrames;
    stPort.stRaw.sztSpace = stPort.stMeta.sztSpace = kFrames;
  }
}

// Gives each port less to offer than the one before it.
void LowerLevels() {
  for (uint32_t u32Port = 0; u32Port < ZE_KEST_MAX_PORTS; ++u32Port) {
    astPorts[u32Port].stPcm.sztPcmLevel -= u32Port;
    astPorts[u32Port].stPcm.sztPcmSpace -= u32Port;
  }
}

template <auto pfnCalculate>
void ProcessSize(ZE_KEST_Filter_s *pstFilter, uint32_t *pu32Size) {
  pfnCalculate(pstFilter, pu32Size);
}

template <auto pfnUpdate>
void Account(ZE_KEST_Filter_s *pstFilter, uint32_t *) {
  pfnUpdate(pstFilter, kFrames);
}

template <auto pfnUpdate>
void AccountOne(ZE_KEST_Filter_s *pstFilter, uint32_t *) {
  pfnUpdate(pstFilter, kFrames, ZE_KEST_MAX_PORTS - 1);
}

// The port forwards the contents of its byte rings, which are metadata blocks, to itself.
void PrepareByteRings() {
  stFilter.u32OutPortCount = 1;
  astPorts[0].stMeta.pu8Buf = astPorts[0].stRaw.pu8Buf = stBuffers.au8Rings;
  for (uint32_t u32Block = 0; u32Block < kFrames; u32Block += kMetaBlockBytes) {
    const uint32_t au32Header[] = {u32Block, kMetaBlockBytes - ZE_KEST_METADATA_HEADER_SIZE};
    memcpy(stBuffers.au8Rings + u32Block, au32Header, sizeof(au32Header));
  }
}

template <auto pfnForward>
void Forward(ZE_KEST_Filter_s *pstFilter, uint32_t *) {
  pfnForward(pstFilter, 0, kFrames);
}

void ReadMetadataBlock(ZE_KEST_Filter_s *pstFilter, uint32_t *pu32Size) {
  uint32_t u32Tag = 0;
  ze_kest_Utility_ReadOneBlockInputPortMetadataBuffer(pstFilter, 0, 0, &u32Tag, pu32Size);
}

void QueryMetadataLength(ZE_KEST_Filter_s *pstFilter, uint32_t *pu32Size) {
  uint32_t u32Last = 0;
  ze_kest_Utility_QueryInputPortMetadataLen(pstFilter, 0, 4 * ZE_KEST_METADATA_SAMPLES, pu32Size, &u32Last);
}

void Nothing(ZE_KEST_Filter_s *, uint32_t *) {}

void PrepareNothing() {}

void CallHook(ZE_KEST_Filter_s *pstFilter, uint32_t *) {
  ze_kest_Debug_Filter(pstFilter);
}

void CallLatencyStart(ZE_KEST_Filter_s *pstFilter, uint32_t *) {
  ze_kest_Debug_MeasureLatency(pstFilter, ZE_KEST_LATENCY_START);
}

void ReportBelowLevel(ZE_KEST_Filter_s *, uint32_t *pu32Size) {
  KEST_INFO("size %u\n", *pu32Size);
}

struct Case {
  const char *pszName;
  uint32_t u32Samples;
  const char *pszGoal;
  Call pfnCall;
  void (*pfnPrepare)() = PrepareNothing;
};

constexpr uint32_t kStereo = 2 * kFrames;
constexpr uint32_t kTen = 10 * kFrames;

constexpr Case kCases[] = {
    // The cost of the loop around every call, which run.sh subtracts from the other cases.
    {"nothing", 0, "-", Nothing},

    {"convert 16to24", kFrames, "0.6",
     Convert<ze_kest_Utility_ConvertPcmFrom16BitTo24Bit, uint16_t, uint8_t>},
    {"convert 24to16", kFrames, "0.6",
     Convert<ze_kest_Utility_ConvertPcmFrom24BitTo16Bit, uint8_t, uint16_t>},
    {"convert 24to32", kFrames, "0.6",
     Convert<ze_kest_Utility_ConvertPcmFrom24BitTo32Bit, uint8_t, uint32_t>},
    {"convert 16to32", kFrames, "0.7",
     Convert<ze_kest_Utility_ConvertPcmFrom16BitTo32Bit, uint16_t, uint32_t>},
    {"convert 32to16", kFrames, "0.7",
     Convert<ze_kest_Utility_ConvertPcmFrom32BitTo16Bit, uint32_t, uint16_t>},
    {"convert 24LEto16", kFrames, "0.7",
     Convert<ze_kest_Utility_ConvertPcmFrom24LETo16Bit, uint32_t, uint16_t>},
    {"convert 24LEto32", kFrames, "0.7",
     Convert<ze_kest_Utility_ConvertPcmFrom24LETo32Bit, uint32_t, uint32_t>},
    {"convert signed 16to32", kFrames, "0.7",
     ConvertTo<ze_kest_Utility_Convert16BitPcmTo32BitPcm, int16_t, int32_t>},
    {"convert low24to16", kFrames, "0.7",
     ConvertTo<ze_kest_Utility_Convert32BitPcmFromLow24BitTo16BitPcm, int32_t, int16_t>},
    {"convert low24tohigh24 in place", kFrames, "0.7", ConvertInPlace},

    {"deinterleave 2ch 16", kStereo, "0.5", Pcm<2, 16>::Deinterleave, Pcm<2, 16>::Prepare},
    {"deinterleave 2ch 24", kStereo, "1.0", Pcm<2, 24>::Deinterleave, Pcm<2, 24>::Prepare},
    {"deinterleave 2ch 32", kStereo, "0.8", Pcm<2, 32>::Deinterleave, Pcm<2, 32>::Prepare},
    {"deinterleave 10ch 16", kTen, "1.2", Pcm<10, 16>::Deinterleave, Pcm<10, 16>::Prepare},
    {"deinterleave 10ch 24", kTen, "3.0", Pcm<10, 24>::Deinterleave, Pcm<10, 24>::Prepare},
    {"deinterleave 10ch 32", kTen, "1.5", Pcm<10, 32>::Deinterleave, Pcm<10, 32>::Prepare},
    {"interleave 2ch 16", kStereo, "0.5", Pcm<2, 16>::Interleave, Pcm<2, 16>::Prepare},
    {"interleave 2ch 24", kStereo, "1.0", Pcm<2, 24>::Interleave, Pcm<2, 24>::Prepare},
    {"interleave 2ch 32", kStereo, "0.8", Pcm<2, 32>::Interleave, Pcm<2, 32>::Prepare},
    {"interleave 10ch 16", kTen, "1.2", Pcm<10, 16>::Interleave, Pcm<10, 16>::Prepare},
    {"interleave 10ch 24", kTen, "3.0", Pcm<10, 24>::Interleave, Pcm<10, 24>::Prepare},
    {"interleave 10ch 32", kTen, "1.5", Pcm<10, 32>::Interleave, Pcm<10, 32>::Prepare},

    {"read 2ch 16", kStereo, "0.5", Pcm<2, 16>::Read, Pcm<2, 16>::Prepare},
    {"read 2ch 24", kStereo, "1.0", Pcm<2, 24>::Read, Pcm<2, 24>::Prepare},
    {"read 2ch 32", kStereo, "0.8", Pcm<2, 32>::Read, Pcm<2, 32>::Prepare},
    {"read 10ch 16", kTen, "1.2", Pcm<10, 16>::Read, Pcm<10, 16>::Prepare},
    {"read 10ch 24", kTen, "3.0", Pcm<10, 24>::Read, Pcm<10, 24>::Prepare},
    {"read 10ch 32", kTen, "1.5", Pcm<10, 32>::Read, Pcm<10, 32>::Prepare},
    {"readTo16 2ch 16", kStereo, "1.25 x read 2ch 16", Pcm<2, 16>::ReadTo16, Pcm<2, 16>::Prepare},
    {"readTo16 2ch 32", kStereo, "1.25 x read 2ch 32", Pcm<2, 32>::ReadTo16, Pcm<2, 32>::Prepare},
    {"readTo16 10ch 32", kTen, "1.25 x read 10ch 32", Pcm<10, 32>::ReadTo16, Pcm<10, 32>::Prepare},
    {"readTo24Le 2ch 16", kStereo, "1.25 x read 2ch 32", Pcm<2, 16>::ReadTo24Le, Pcm<2, 16>::Prepare},
    {"readTo24Le 2ch 32", kStereo, "1.25 x read 2ch 32", Pcm<2, 32>::ReadTo24Le, Pcm<2, 32>::Prepare},
    {"readTo24Le 10ch 16", kTen, "1.25 x read 10ch 32", Pcm<10, 16>::ReadTo24Le, Pcm<10, 16>::Prepare},
    {"readTo24Le 10ch 32", kTen, "1.25 x read 10ch 32", Pcm<10, 32>::ReadTo24Le, Pcm<10, 32>::Prepare},
    {"write 2ch 16", kStereo, "0.5", Pcm<2, 16>::Write, Pcm<2, 16>::Prepare},
    {"write 2ch 24", kStereo, "1.0", Pcm<2, 24>::Write, Pcm<2, 24>::Prepare},
    {"write 2ch 32", kStereo, "0.8", Pcm<2, 32>::Write, Pcm<2, 32>::Prepare},
    {"write 10ch 16", kTen, "1.2", Pcm<10, 16>::Write, Pcm<10, 16>::Prepare},
    {"write 10ch 24", kTen, "3.0", Pcm<10, 24>::Write, Pcm<10, 24>::Prepare},
    {"write 10ch 32", kTen, "1.5", Pcm<10, 32>::Write, Pcm<10, 32>::Prepare},
    {"write two ports 2ch 16", 2 * kStereo, "2 x write 2ch 16", Pcm<2, 16>::WriteAll,
     Pcm<2, 16>::PrepareTwoPorts},
    {"write two ports 10ch 32", 2 * kTen, "2 x write 10ch 32", Pcm<10, 32>::WriteAll,
     Pcm<10, 32>::PrepareTwoPorts},

    {"ring read 32", kFrames, "-", Pcm<2, 32>::ReadRing<ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer>},
    {"ring readTo32 16", kFrames, "1.25 x ring read 32",
     Pcm<2, 16>::ReadRing<ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To32Bit>},
    {"ring readTo32 32", kFrames, "1.25 x ring read 32",
     Pcm<2, 32>::ReadRing<ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To32Bit>},

    {"memcpy 1024", kFrames, "-", Copy<kFrames>},
    {"memcpy 2048", kFrames, "-", Copy<2 * kFrames>},
    {"memcpy 4096", kFrames, "-", Copy<4 * kFrames>},
    {"stride 1 write 16", kFrames, "1.1 x memcpy 2048", WriteContiguous<2>},
    {"stride 1 write 32", kFrames, "1.1 x memcpy 4096", WriteContiguous<4>},
    {"stride 1 read 16", kFrames, "1.1 x memcpy 2048", ReadContiguous<2>},
    {"stride 1 read 32", kFrames, "1.1 x memcpy 4096", ReadContiguous<4>},

    {"forward meta 1024 bytes", kFrames, "-", Forward<ze_kest_Utility_WriteAllOutputPortMetadataBuffer>,
     PrepareByteRings},
    {"forward raw 1024 bytes", kFrames, "-", Forward<ze_kest_Utility_WriteAllOutputPortRawBuffer>,
     PrepareByteRings},
    {"metadata block", 0, "-", ReadMetadataBlock, PrepareByteRings},
    {"metadata length of 4 blocks", 0, "-", QueryMetadataLength, PrepareByteRings},

    {"hook off", 0, "16", CallHook},
    {"latency start off", 0, "-", CallLatencyStart},
    {"report below the level", 0, "-", ReportBelowLevel},
    {"process size input pcm", 0, "90", ProcessSize<ze_kest_Utility_CalculateInputPortPcmProcessSize>},
    {"process size output pcm", 0, "90", ProcessSize<ze_kest_Utility_CalculateOutputPortPcmProcessSize>},
    {"process size input pcm falling", 0, "-", ProcessSize<ze_kest_Utility_CalculateInputPortPcmProcessSize>,
     LowerLevels},
    {"process size output pcm falling", 0, "-",
     ProcessSize<ze_kest_Utility_CalculateOutputPortPcmProcessSize>, LowerLevels},
    {"process size input meta", 0, "90", ProcessSize<ze_kest_Utility_CalculateInputPortMetadataProcessSize>},
    {"process size output meta", 0, "90",
     ProcessSize<ze_kest_Utility_CalculateOutputPortMetadataProcessSize>},
    {"process size input raw", 0, "90", ProcessSize<ze_kest_Utility_CalculateInputPortRawProcessSize>},
    {"process size output raw", 0, "90", ProcessSize<ze_kest_Utility_CalculateOutputPortRawProcessSize>},

    {"account input pcm", 0, "-", Account<ze_kest_Utility_UpdateAllInputPortPcmReadSize>},
    {"account output pcm", 0, "-", Account<ze_kest_Utility_UpdateAllOutputPortPcmWriteSize>},
    {"account input meta", 0, "-", Account<ze_kest_Utility_UpdateAllInputPortMetadataReadSize>},
    {"account output meta", 0, "-", Account<ze_kest_Utility_UpdateAllOutputPortMetadataWriteSize>},
    {"account input raw", 0, "-", Account<ze_kest_Utility_UpdateAllInputPortRawReadSize>},
    {"account output raw", 0, "-", Account<ze_kest_Utility_UpdateAllOutputPortRawWriteSize>},
    {"account one input pcm", 0, "-", AccountOne<ze_kest_Utility_UpdateSpecificInputPortPcmReadSize>},
};

void List() {
  for (const Case &stCase : kCases)
    printf("%s\t%u\t%s\n", stCase.pszName, stCase.u32Samples, stCase.pszGoal);
}

int Run(const Case &stCase, unsigned long u32Count) {
  stFilter.pstParentPipeline = &stPipeline;
  stFilter.sztMaxInPcmProcessSize = stFilter.sztMaxOutPcmProcessSize = ZE_KEST_NO_BOUND;
  u32KestDebugLevel = ZE_KEST_LEVEL_WRN;
  ConnectEightPorts();
  stCase.pfnPrepare();
  for (volatile Call pfnCall = stCase.pfnCall; u32Count != 0; --u32Count)
    pfnCall(&stFilter, &u32Size);
  return EXIT_SUCCESS;
}

}  // namespace

int main(int s32Arguments, char **apszArguments) {
  if (s32Arguments < 3) {
    List();
    return EXIT_SUCCESS;
  }
  for (const Case &stCase : kCases) {
    if (strcmp(stCase.pszName, apszArguments[1]) == 0)
      return Run(stCase, strtoul(apszArguments[2], nullptr, 10));
  }
  fprintf(stderr, "There is no case %s.\n", apszArguments[1]);
  return EXIT_FAILURE;
}
