// SPDX-License-Identifier: Apache-2.0
// What filters call in every cycle: no memory, no lock, no system call, no report, and nothing touched that
// the arguments do not name.
#include <csignal>
#include <memory>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/support/failing_allocator.h"
#include "tests/support/pages.h"
#include "tests/support/ports.h"
#include "utility/core/shared_name.h"

namespace kest::test {
namespace {

constexpr uint32_t kRing = 64;        // samples of every ring
constexpr uint32_t kMetaBytes = 256;  // and bytes of the others
constexpr uint32_t kReadOffset = 50;  // so that longer runs wrap
constexpr uint8_t kUntouched = 0x5A;  // no byte of the data has this value
constexpr std::array<uint32_t, 3> kSlots = {2, 10, 10};

// What a call works on.
struct Amounts {
  size_t sztSource;   // of the linear source
  size_t sztTarget;   // of the linear destination
  size_t sztChanged;  // written, wherever
};

enum class Touches { kNothing, kSamples, kHeaders };

// A filter with two ports on each side, and linear buffers that are no longer than the call needs.
class Scene {
 public:
  Scene(uint32_t u32Bits, const Amounts &bytes, bool bAtEnd) : bAtEnd_(bAtEnd) {
    for (uint32_t u32Port = 0; u32Port < 2; ++u32Port) {
      Connect(filter.In(u32Port), u32Bits, true);
      Connect(filter.Out(u32Port), u32Bits, false);
    }
    pu8Src = Add(Data(bytes.sztSource));
    pu8Dst = Add(Bytes(bytes.sztTarget, kUntouched));
    for (size_t i = 0; i < ZE_KEST_PCM_CHANNEL_ENTRIES; ++i)
      au16Stride[i] = 2;
    apSrc[0] = pu8Src;
    apSrc[1] = pu8Src + u32Bits / 8;
  }

  void Protect(int s32Protection) {
    for (const auto &block : blocks_)
      block->Protect(s32Protection);
  }
  [[nodiscard]] size_t Changed() const {
    size_t sztChanged = 0;
    for (const auto &block : blocks_)
      sztChanged += block->Changed();
    return sztChanged;
  }
  [[nodiscard]] ZE_KEST_PcmBuffer_s &In() const { return filter.st->apstInPort[0]->stPcm; }
  [[nodiscard]] ZE_KEST_PcmBuffer_s &Out() const { return filter.st->apstOutPort[0]->stPcm; }
  template <typename T>
  static T *As(void *pv) {
    return static_cast<T *>(pv);
  }

  Filter filter;
  uint8_t *pu8Src;
  uint8_t *pu8Dst;
  void *apSrc[ZE_KEST_PCM_CHANNEL_ENTRIES] = {};
  uint16_t au16Stride[ZE_KEST_PCM_CHANNEL_ENTRIES];
  void *apCh[ZE_KEST_PCM_CHANNEL_ENTRIES];
  uint32_t u32A = 0, u32B = 0;
  uint8_t u8 = 0;
  ZE_KEST_PerformanceMeasure_s stMeasure = {};

 private:
  static Bytes Data(size_t sztBytes) {
    Bytes data = Noise(sztBytes, 1);
    for (uint8_t &u8Byte : data)
      u8Byte |= 0x80;
    return data;
  }
  uint8_t *Add(Bytes content) {
    return blocks_.emplace_back(std::make_unique<Pages>(std::move(content), bAtEnd_))->Data();
  }
  // Inputs are full, outputs are empty.
  void Connect(Port &port, uint32_t u32Bits, bool bFull) {
    ZE_KEST_PcmBuffer_s &pcm = port.Pcm(u32Bits, kRing, kSlots);
    for (uint32_t g = 0; g < ZE_KEST_PCM_GROUPS; ++g) {
      const size_t sztBytes = size_t{kSlots[g]} * kRing * (u32Bits / 8);
      pcm.apu8PcmGroupBuf[g] = Add(bFull ? Data(sztBytes) : Bytes(sztBytes, kUntouched));
    }
    pcm.sztPcmLevel = bFull ? kRing : 0;
    pcm.sztPcmSpace = bFull ? 0 : kRing;
    pcm.sztPcmReadOffset = kReadOffset;
    for (const auto pRing : {&ZE_KEST_Port_s::stMeta, &ZE_KEST_Port_s::stRaw}) {
      ZE_KEST_DataBuffer_s &ring = port.st.*pRing;
      ring.pu8Buf = Add(bFull ? Blocks() : Bytes(kMetaBytes, kUntouched));
      ring.sztSize = kMetaBytes;
      ring.sztLevel = bFull ? kMetaBytes : 0;
      ring.sztSpace = bFull ? 0 : kMetaBytes;
      ring.sztReadOffset = kMetaBytes - 32;
    }
  }
  // Metadata blocks of 32 bytes.
  static Bytes Blocks() {
    Bytes data = Data(kMetaBytes);
    for (size_t i = 0; i < kMetaBytes; i += 32) {
      const uint32_t u32Payload = 16;
      memcpy(&data[i + 4], &u32Payload, sizeof(u32Payload));
    }
    return data;
  }

  bool bAtEnd_;
  std::vector<std::unique_ptr<Pages>> blocks_;
};

struct Row {
  const char *pszName;
  uint32_t u32Bits;  // of the ports
  Touches eTouches;
  Amounts perSample;
  uint32_t (*pfn)(Scene &s, uint32_t n);
  uint32_t u32ZeroResult = ZE_KEST_OK;

  [[nodiscard]] Amounts For(uint32_t n) const {
    return {perSample.sztSource * n, perSample.sztTarget * n, perSample.sztChanged * n};
  }
};

// clang-format off
#define CALL(name, ...) [](Scene &s, [[maybe_unused]] uint32_t n) { return static_cast<uint32_t>(ze_kest_##name(__VA_ARGS__)); }
#define RECORDS(name, ...) {#name, 16, Touches::kNothing, {0, 0, 0}, CALL(name, s.filter, ##__VA_ARGS__)}
#define COUNTED(name, ...) {#name, 16, Touches::kNothing, {0, 0, 0}, CALL(name, s.filter, n, ##__VA_ARGS__), ZE_KEST_NO}
#define RING(pcm, bits) (pcm).apu8PcmGroupBuf[0], (pcm).apu8PcmGroupBuf[0] + kReadOffset * (bits) / 8, kRing * (bits) / 8
#define CONVERT(name, from, to, source, target) \
  {#name, 16, Touches::kSamples, {source, target, target}, CALL(Utility_##name, s.As<from>(s.pu8Src), s.As<to>(s.pu8Dst), n)}
#define PCM(name, bits, source, target, changed, ...) \
  {#name " " #bits, bits, Touches::kSamples, {source, target, changed}, CALL(Utility_##name, __VA_ARGS__)}

const Row kRows[] = {
    PCM(WriteDataToNonInterleaveRingBuffer, 24, 3, 0, 3, RING(s.Out(), 24), s.pu8Src, n * 3u, 1, 3),
    PCM(ReadDataFromNonInterleaveRingBuffer, 24, 0, 3, 3, RING(s.In(), 24), s.pu8Dst, n * 3u, 1, 3),
    PCM(ReadDataFromNonInterleaveRingBuffer_To16Bit, 32, 0, 4, 4, RING(s.In(), 32), s.pu8Dst, n * 4u, 1, 4),
    PCM(ReadDataFromNonInterleaveRingBuffer_To24Le, 32, 0, 4, 4, RING(s.In(), 32), s.pu8Dst, n * 4u, 1, 4),
    PCM(ReadDataFromNonInterleaveRingBuffer_To32Bit, 16, 0, 2, 2, RING(s.In(), 16), s.pu8Dst, n * 2u, 1, 2),
    PCM(CopyFromRingToRingBuffer, 16, 0, 0, 1, s.Out().apu8PcmGroupBuf[0], kRing, kReadOffset, 0, s.In().apu8PcmGroupBuf[0], kRing, 3, 0, n),
    PCM(CopyFromRingToNonRingBuffer, 16, 0, 1, 1, s.pu8Dst, s.In().apu8PcmGroupBuf[0], kRing, kReadOffset, 0, n),
    CONVERT(ConvertPcmFrom16BitTo24Bit, uint16_t, uint8_t, 2, 3),
    CONVERT(ConvertPcmFrom24BitTo16Bit, uint8_t, uint16_t, 3, 2),
    CONVERT(ConvertPcmFrom16BitTo32Bit, uint16_t, uint32_t, 2, 4),
    CONVERT(ConvertPcmFrom32BitTo16Bit, uint32_t, uint16_t, 4, 2),
    CONVERT(ConvertPcmFrom24BitTo32Bit, uint8_t, uint32_t, 3, 4),
    CONVERT(ConvertPcmFrom24LETo16Bit, uint32_t, uint16_t, 4, 2),
    CONVERT(ConvertPcmFrom24LETo32Bit, uint32_t, uint32_t, 4, 4),
    {"Convert16BitPcmTo32BitPcm", 16, Touches::kSamples, {2, 4, 4},
     CALL(Utility_Convert16BitPcmTo32BitPcm, s.As<int32_t>(s.pu8Dst), s.As<int16_t>(s.pu8Src), n), ZE_KEST_INVALID_ARGUMENT},
    {"Convert32BitPcmFromLow24BitToHigh24Bit", 16, Touches::kSamples, {0, 4, 1},  // equal bytes move up
     CALL(Utility_Convert32BitPcmFromLow24BitToHigh24Bit, s.As<int32_t>(s.pu8Dst), n), ZE_KEST_INVALID_ARGUMENT},
    {"Convert32BitPcmFromLow24BitTo16BitPcm", 16, Touches::kSamples, {4, 2, 2},
     CALL(Utility_Convert32BitPcmFromLow24BitTo16BitPcm, s.As<int16_t>(s.pu8Dst), s.As<int32_t>(s.pu8Src), n), ZE_KEST_INVALID_ARGUMENT},
    PCM(ConvertInterleaveToNonInterleave, 16, 4, 0, 4, 2, 16, &s.Out(), 0, 0, s.pu8Src, n),
    PCM(ConvertInterleaveToNonInterleave, 24, 30, 0, 30, 10, 24, &s.Out(), 1, 0, s.pu8Src, n),
    PCM(ConvertNonInterleaveToInterleave, 24, 0, 6, 6, s.pu8Dst, &s.In(), 0, 2, 0, n, 3),
    PCM(ConvertNonInterleaveToInterleave, 32, 0, 40, 40, s.pu8Dst, &s.In(), 1, 10, 0, n, 4),
    PCM(CopyNonInterleavePcmBuffer, 32, 0, 0, 40, &s.Out(), &s.In(), 3, 0, n, 2),
    PCM(ReadInputPortPcmBuffer, 16, 0, 4, 4, s.filter, 0, s.pu8Dst, n, 0, 1, 2),
    PCM(ReadInputPortPcmBuffer, 24, 0, 30, 30, s.filter, 1, s.pu8Dst, n, 2, 11, 10),
    PCM(ReadInputPortPcmBuffer, 32, 0, 88, 88, s.filter, 0, s.pu8Dst, n, 0, 21, 22),
    PCM(ReadInputPortPcmBuffer_To16Bit, 32, 0, 4, 4, s.filter, 0, s.pu8Dst, n, 0, 1, 2),
    PCM(ReadInputPortPcmBuffer_To24Le, 32, 0, 8, 8, s.filter, 0, s.pu8Dst, n, 0, 1, 2),
    PCM(WriteOutputPort16BitPcmBuffer, 16, 4, 0, 4, s.filter, 1, n, s.As<int16_t *>(s.apSrc), s.au16Stride),
    PCM(WriteOutputPort32BitPcmBuffer, 32, 8, 0, 8, s.filter, 0, n, s.As<int32_t *>(s.apSrc), s.au16Stride),
    PCM(WriteAllOutputPort16BitPcmBuffer, 16, 4, 0, 8, s.filter, n, s.As<int16_t *>(s.apSrc), s.au16Stride),
    PCM(WriteAllOutputPort32BitPcmBuffer, 32, 8, 0, 16, s.filter, n, s.As<int32_t *>(s.apSrc), s.au16Stride),
    PCM(WriteAllOutputPortMetadataBuffer, 16, 0, 0, 2, s.filter, 0, n),
    PCM(WriteAllOutputPortRawBuffer, 16, 0, 0, 2, s.filter, 1, n),
    {"ReadOneBlockInputPortMetadataBuffer", 16, Touches::kHeaders, {0, 0, 0},
     CALL(Utility_ReadOneBlockInputPortMetadataBuffer, s.filter, 0, 0, &s.u32A, &s.u32B)},
    {"QueryInputPortMetadataLen", 16, Touches::kHeaders, {0, 0, 0},
     CALL(Utility_QueryInputPortMetadataLen, s.filter, 0, n * 256, &s.u32A, &s.u32B)},
    {"QueryInputMinMetaProcessSize", 16, Touches::kHeaders, {0, 0, 0},
     [](Scene &s, uint32_t n) {
       const uint32_t u32Bytes = ze_kest_Utility_QueryInputMinMetaProcessSize(s.filter, n * 256, 64, &s.u32A);
       return uint32_t{u32Bytes == std::min(n * 32, 64u) ? ZE_KEST_OK : ZE_KEST_FAILED};
     }},
    RECORDS(Utility_CalculateInputPortPcmProcessSize, &s.u32A),
    RECORDS(Utility_CalculateOutputPortPcmProcessSize, &s.u32A),
    RECORDS(Utility_CalculateInputPortMetadataProcessSize, &s.u32A),
    RECORDS(Utility_CalculateOutputPortMetadataProcessSize, &s.u32A),
    RECORDS(Utility_CalculateInputPortRawProcessSize, &s.u32A),
    RECORDS(Utility_CalculateOutputPortRawProcessSize, &s.u32A),
    RECORDS(Utility_UpdateAllInputPortMetadataReadSize, n),
    RECORDS(Utility_UpdateAllOutputPortMetadataWriteSize, n),
    RECORDS(Utility_UpdateAllInputPortRawReadSize, n),
    RECORDS(Utility_UpdateAllOutputPortRawWriteSize, n),
    RECORDS(Utility_UpdateSpecificInputPortMetadataReadSize, n, 1),
    RECORDS(Utility_UpdateSpecificInputPortRawReadSize, n, 1),
    COUNTED(Utility_UpdateAllInputPortPcmReadSize),
    COUNTED(Utility_UpdateAllOutputPortPcmWriteSize),
    COUNTED(Utility_UpdateSpecificInputPortPcmReadSize, 1),
    COUNTED(Utility_UpdateSpecificOutputPortPcmWriteSize, 1),
    RECORDS(Utility_UpdatePcmInfoToAllOutputPort, &s.In().stPcmInfo),
    RECORDS(Utility_UpdatePcmGroupToAllOutputPort, 0, s.In().astPcmGroup),
    RECORDS(Utility_AnalyzeInputPort16BitPcmGroup, 0, s.As<int16_t *>(s.apCh), s.au16Stride, &s.u8),
    RECORDS(Utility_AnalyzeInputPort32BitPcmGroup, 0, s.As<int32_t *>(s.apCh), s.au16Stride, &s.u8),
    {"groups", 16, Touches::kNothing, {0, 0, 0},
     [](Scene &s, uint32_t) {
       const bool bAll = ze_kest_Utility_CheckPcmGroupCapability(s.filter, 1) == 1 &&
                         ze_kest_Utility_CheckOutPortPcmGroupCapability(s.filter, 1) == 1 &&
                         ze_kest_Utility_IsOutputMetadataBufferExist(s.filter) == 1;
       return uint32_t{bAll ? ZE_KEST_OK : ZE_KEST_FAILED};
     }},
    RECORDS(Debug_Filter),
    RECORDS(Debug_MeasureLatency, ZE_KEST_LATENCY_START),
    RECORDS(Debug_MeasureLatency, ZE_KEST_LATENCY_END),
    {"io trace", 16, Touches::kNothing, {0, 0, 0},
     [](Scene &, uint32_t n) {
       ze_kest_Debug_Io("pipe", "filter", ZE_KEST_IO_FILTER_END, n, 2 * n);
       return ze_kest_Debug_Io_Is_Enable();
     }},
    {"measures of what is not the target", 16, Touches::kNothing, {0, 0, 0},
     [](Scene &s, uint32_t) {
       uint32_t u32Result = ZE_KEST_OK;
       for (const uint32_t u32Target : {ZE_KEST_TARGET_NONE, ZE_KEST_TARGET_FILTER}) {
         u32KestPerfEventTarget = u32Target;
         u32Result |= ze_kest_Utility_PerformanceMeasure_StartFilterMeasure("pipe", "filter", &s.stMeasure);
         u32Result |= ze_kest_Utility_PerformanceMeasure_StopFilterMeasure("pipe", "filter", &s.stMeasure);
         u32Result |= ze_kest_Utility_PerformanceMeasure_StartPipelineMeasure("pipe", &s.stMeasure);
         u32Result |= ze_kest_Utility_PerformanceMeasure_StopPipelineMeasure("pipe", &s.stMeasure);
       }
       return u32Result;
     }},
};
// clang-format on

// The target of the measures, once they have one, is another filter.
class RealTime : public testing::Test {
 protected:
  RealTime() {
    StoreName(__func__, szKestPerfEventTargetName1, "pipe");
    StoreName(__func__, szKestPerfEventTargetName2, "other");
  }
  ~RealTime() override {
    u32KestPerfEventTarget = ZE_KEST_TARGET_NONE;
    ClearName(szKestPerfEventTargetName1);
    ClearName(szKestPerfEventTargetName2);
  }
};

void ExpectModest(const Row &row, uint32_t n, bool bAtEnd) {
  Scene scene(row.u32Bits, row.For(n), bAtEnd);
  const ReportCapture capture;
  const bool bNothing = row.eTouches == Touches::kNothing || (row.eTouches == Touches::kSamples && n == 0);
  if (bNothing) scene.Protect(PROT_NONE);
  const uint64_t u64Calls = MemoryAndLockCalls();
  const uint32_t u32Result = row.pfn(scene, n);
  const uint64_t u64CallsMade = MemoryAndLockCalls() - u64Calls;
  if (bNothing) scene.Protect(PROT_READ);
  EXPECT_EQ(n == 0 ? row.u32ZeroResult : uint32_t{ZE_KEST_OK}, u32Result);
  EXPECT_EQ(row.For(n).sztChanged, scene.Changed());
  if (u32Result == ZE_KEST_INVALID_ARGUMENT) return;  // reported, then
  EXPECT_EQ(0u, u64CallsMade);
  EXPECT_TRUE(capture.Reports().empty());
}

TEST_F(RealTime, ACallTakesNoMemoryAndNoLockAndTouchesWhatItIsAskedToAlone) {
  const std::pair<uint32_t, bool> aRuns[] = {{0, true}, {1, true}, {15, true}, {kRing, true}, {15, false}};
  for (const Row &row : kRows) {
    for (const auto &[n, bAtEnd] : aRuns) {
      SCOPED_TRACE(row.pszName + (" " + std::to_string(n)));
      ExpectModest(row, n, bAtEnd);
    }
  }
  const uint64_t u64Calls = MemoryAndLockCalls();
  ze_kest_Debug_UnRegisterInfo("none", nullptr);  // which takes a lock
  EXPECT_NE(u64Calls, MemoryAndLockCalls());
}

const char *g_pszRunning = "";

void TellAndEnd(int) {
  [[maybe_unused]] ssize_t s32Written = write(STDERR_FILENO, g_pszRunning, strlen(g_pszRunning));
  s32Written = write(STDERR_FILENO, " makes a system call\n", 21);
  _exit(1);
}

// From now on this process may write and end, and nothing else. False where the kernel cannot see to that.
bool ForbidSystemCalls() {
  struct sock_filter aFilter[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(struct seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_exit_group, 1, 0),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_write, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRAP),
  };
  struct sock_fprog stProgram = {static_cast<unsigned short>(std::size(aFilter)), aFilter};
  signal(SIGSYS, TellAndEnd);
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &stProgram, 0, 0) == 0;
}

constexpr int kCannotForbid = 77;

int WithoutSystemCalls(const std::vector<Row> &rows) {
  return InAnotherProcess([&rows] {
    std::vector<std::unique_ptr<Scene>> scenes;
    for (const Row &row : rows)
      scenes.push_back(std::make_unique<Scene>(row.u32Bits, row.For(kRing), false));
    if (!ForbidSystemCalls()) _exit(kCannotForbid);
    for (size_t i = 0; i < rows.size(); ++i) {
      g_pszRunning = rows[i].pszName;
      if (rows[i].pfn(*scenes[i], kRing) != ZE_KEST_OK) _exit(2);
    }
    _exit(0);
  });
}

TEST_F(RealTime, ACallMakesNoSystemCall) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "sanitizers make system calls of their own";
#endif
  const int s32Status = WithoutSystemCalls({std::begin(kRows), std::end(kRows)});
#ifndef __x86_64__
  if (s32Status == kCannotForbid << 8) GTEST_SKIP() << "the emulator lets no process forbid system calls";
#endif
  EXPECT_EQ(0, s32Status);
  const Row caught = {"getppid, as it should,", 16, Touches::kNothing, {0, 0, 0}, [](Scene &, uint32_t) {
                        return static_cast<uint32_t>(syscall(SYS_getppid) * 0);
                      }};
  EXPECT_EQ(1 << 8, WithoutSystemCalls({caught}));
}

}  // namespace
}  // namespace kest::test
