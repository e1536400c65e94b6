// SPDX-License-Identifier: Apache-2.0
// Feeds lines to the dispatcher while the debug layer is up and filters are registered, and runs a processing
// cycle after each line.
//
// An input is text, a NUL, and bytes for the filters. Each line of the text is a command, unless it begins
// with a mark of kFrameworkCalls: then the framework makes that call.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <unistd.h>

#include "ze_kest/debug.h"

#include "debug/datapath/latency_state.h"
#include "debug/thread/test_threads.h"
#include "fuzz/expect.h"
#include "fuzz/random_filter.h"
#include "fuzz/silent_log.h"

namespace kest::fuzz {
namespace {

constexpr size_t kMostLines = 40;
constexpr const char *kMainPipe = "MainPipe";
constexpr const char *kSpeaker = "SpeakerOutput";
constexpr const char *kKinds[] = {"Mixer", "Lpcm", "Src", "Volume", "Delay", "Sync", "SpdifOutput", "Adc"};

// Undoes what an input may have left switched on.
constexpr const char *kReset[] = {
    "kest_dump_io=off",
    "kest_latency=off",
    "kest_output_sinewave=off",
    "kest_print_filter_info=off",
    "kest_debug_filter_io=release",
    "kest_debug_node=release",
    "kest_debug_watch_current_tids=on",
    "kest_debug_preset_cmd=off",
    "kest_log_to_print=off",
    "kest_log_to_file=off",
    "kest_dump_filter_io=,",
    "kest_latency_config=,,,",
    "kest_output_sinewave_filter=,",
    "kest_log_size=4096",
    "kest_log_level=all",
};

uint32_t SetParameter(ZE_KEST_Filter_s *pstFilter, const char *pszName, const void *pData, uint32_t u32Size) {
  Expect(pstFilter != nullptr && pszName != nullptr && pData != nullptr, "a parameter to set");
  if (u32Size != sizeof(uint32_t)) return ZE_KEST_INVALID_ARGUMENT;
  Bytes value(u32Size);
  memcpy(value.data(), pData, u32Size);
  return value[0] % 2 == 0 ? ZE_KEST_OK : ZE_KEST_FAILED;
}

uint32_t GetParameter(ZE_KEST_Filter_s *pstFilter, const char *pszName, void *pData, uint32_t u32Size) {
  Expect(pstFilter != nullptr && pData != nullptr && strlen(pszName) != 0, "a parameter to get");
  memset(pData, 0x5A, u32Size);
  return strlen(pszName) % 2 == 0 ? ZE_KEST_OK : ZE_KEST_FAILED;
}

unsigned int TakeCommand(ZE_KEST_Filter_s *pstFilter, signed char *pszCommand) {
  Expect(pszCommand != nullptr, "a command for a filter");
  Expect(pstFilter == nullptr || strnlen(pstFilter->szName, ZE_KEST_NAME_SIZE) < ZE_KEST_NAME_SIZE,
         "a filter");
  return strlen(reinterpret_cast<const char *>(pszCommand)) % 2 == 0 ? ZE_KEST_OK : ZE_KEST_INVALID_ARGUMENT;
}

// Releases what was read, commits what was written, and draws other amounts for the next cycle.
void EndCycle(FuzzedDataProvider &bytes, uint32_t sztRing, uint32_t &sztOffset, uint32_t &sztLevel,
              uint32_t &sztSpace, uint32_t &sztRead, uint32_t &sztWritten) {
  if (sztRing == 0) return;
  sztOffset = (sztOffset + sztRead) % sztRing;
  sztLevel = sztLevel - sztRead + sztWritten;
  sztSpace = sztRing - sztLevel;
  sztRead = bytes.ConsumeIntegralInRange<uint32_t>(0, sztLevel);
  sztWritten = bytes.ConsumeIntegralInRange<uint32_t>(0, sztSpace);
}

void EndCycle(FuzzedDataProvider &bytes, RandomPort *pst) {
  if (pst == nullptr) return;
  ZE_KEST_PcmBuffer_s &pcm = pst->st.stPcm;
  EndCycle(bytes, pcm.sztPcmRingSamples, pcm.sztPcmReadOffset, pcm.sztPcmLevel, pcm.sztPcmSpace,
           pcm.sztPcmReadSize, pcm.sztPcmWriteSize);
  for (ZE_KEST_DataBuffer_s *pstData : {&pst->st.stRaw, &pst->st.stMeta}) {
    EndCycle(bytes, pstData->sztSize, pstData->sztReadOffset, pstData->sztLevel, pstData->sztSpace,
             pstData->sztReadSize, pstData->sztWriteSize);
  }
}

// Three filters in two pipelines, registered in the constructor.
class Framework {
 public:
  explicit Framework(FuzzedDataProvider &bytes) : bytes_(bytes) {
    const bool bConsistent = bytes.ConsumeIntegralInRange(0, 3) != 3;
    const Records records = bConsistent ? Records::kTight : Records::kContradictory;
    for (size_t i = 0; i < filters_.size(); ++i) {
      filters_[i] = std::make_unique<RandomFilter>(bytes, records, i < 2 ? kMainPipe : kSpeaker,
                                                   bytes.PickValueInArray(kKinds));
      filters_[i]->st.pfnSetParameter = i == 2 ? nullptr : SetParameter;
      filters_[i]->st.pfnGetParameter = i == 2 ? nullptr : GetParameter;
    }
    ze_kest_Debug_RegisterInfo(kMainPipe, nullptr, 11, kMainPipe, nullptr);
    ze_kest_Debug_RegisterInfo(kSpeaker, nullptr, 12, nullptr, nullptr);
    Register("");
    ze_kest_Debug_ConnectPipeline(kMainPipe, kSpeaker);
  }

  void Register(const char *) {
    for (const auto &filter : filters_) {
      ze_kest_Debug_RegisterInfo(filter->stPipeline.szName, &filter->st, 11, "thread",
                                 filter == filters_[1] ? nullptr : TakeCommand);
    }
  }
  void Unregister(const char *pszName) {
    ze_kest_Debug_UnRegisterInfo(pszName, bytes_.ConsumeBool() ? &filters_[0]->st : nullptr);
  }
  void Connect(const char *pszName) { ze_kest_Debug_ConnectPipeline(kMainPipe, pszName); }
  void Disconnect(const char *pszName) { ze_kest_Debug_DisconnectPipeline(kMainPipe, pszName); }

  // Enough cycles for a latency measurement to go through its silence and insert its burst.
  void StartLatency(const char *) {
    for (uint32_t i = 0; i <= kSilentCycles; ++i) {
      for (const auto &filter : filters_)
        ze_kest_Debug_MeasureLatency(&filter->st, ZE_KEST_LATENCY_START);
    }
  }

  void Cycle() {
    for (const auto &filter : filters_) {
      const char *pszPipeline = filter->stPipeline.szName;
      const auto u64Now = bytes_.ConsumeIntegral<uint64_t>();
      ze_kest_Debug_Io(pszPipeline, filter->st.szName, ZE_KEST_IO_FILTER_START, 5, u64Now);
      ze_kest_Debug_MeasureLatency(&filter->st, ZE_KEST_LATENCY_START);
      ze_kest_Debug_Filter(&filter->st);
      ze_kest_Debug_Io(pszPipeline, filter->st.szName, ZE_KEST_IO_FILTER_END, 5, u64Now);
      ze_kest_Debug_Io(pszPipeline, nullptr, ZE_KEST_IO_PIPELINE_END, 5, u64Now);
      for (uint32_t u32Slot = 0; u32Slot < ZE_KEST_MAX_PORTS; ++u32Slot) {
        EndCycle(bytes_, filter->In(u32Slot));
        EndCycle(bytes_, filter->Out(u32Slot));
      }
    }
  }

 private:
  FuzzedDataProvider &bytes_;
  std::array<std::unique_ptr<RandomFilter>, 3> filters_;
};

constexpr struct {
  char cMark;
  void (Framework::*pfnCall)(const char *pszName);
} kFrameworkCalls[] = {
    {'+', &Framework::Register},   {'-', &Framework::Unregister},   {'>', &Framework::Connect},
    {'<', &Framework::Disconnect}, {'*', &Framework::StartLatency},
};

void CarryOut(Framework &framework, const std::string &line) {
  // Exactly as large as the line, so that a sanitizer sees reads beyond it.
  const std::vector<char> text(line.c_str(), line.c_str() + line.size() + 1);
  for (const auto &call : kFrameworkCalls) {
    if (text[0] == call.cMark) return (framework.*call.pfnCall)(text.data() + 1);
  }
  ze_kest_Debug_SetParameter(text.data());
}

void CarryOutLines(Framework &framework, const std::string &text) {
  size_t sztStart = 0;
  for (size_t i = 0; i < kMostLines && sztStart <= text.size(); ++i) {
    const size_t sztEnd = std::min(text.find('\n', sztStart), text.size());
    CarryOut(framework, text.substr(sztStart, sztEnd - sztStart));
    framework.Cycle();
    sztStart = sztEnd + 1;
  }
}

// Keeps the command pipe and the shared block.
void EmptyDebugDirectory() {
  for (const auto &entry : std::filesystem::directory_iterator(KEST_DEBUG_DIR)) {
    const std::string name = entry.path().filename();
    if (name != "D" && name.rfind("shm_", 0) != 0) std::filesystem::remove_all(entry.path());
  }
}

void Reset() {
  for (const char *pszLine : kReset)
    ze_kest_Debug_SetParameter(pszLine);
  EmptyDebugDirectory();
}

// Not by shutting the library down, which would wait for one more line.
void EndTestThreadsOf(const std::string &text) {
  if (text.find("create_test") == std::string::npos) return;
  kest::EndTestThreads();
  kest::ResetTestThreads();
}

}  // namespace
}  // namespace kest::fuzz

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
  static ZE_KEST_SupportedParameter_s stGain = {"gain", "in dB", 4, 0, nullptr};
  kest::fuzz::SilenceLog();
  ze_kest_Debug_Init();
  ze_kest_Debug_SetSupportedParameterList(&stGain);
  while (access(KEST_DEBUG_DIR "D", F_OK) != 0)
    usleep(1000);
  kest::fuzz::Expect(chdir(KEST_DEBUG_DIR) == 0, "the debug directory");
  kest::fuzz::Reset();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pu8Data, size_t sztSize) {
  using namespace kest::fuzz;
  const uint8_t *pu8TextEnd = std::find(pu8Data, pu8Data + sztSize, 0);
  const std::string text(pu8Data, pu8TextEnd);
  const uint8_t *pu8Bytes = std::min(pu8TextEnd + 1, pu8Data + sztSize);
  const auto sztBytes = static_cast<size_t>(pu8Data + sztSize - pu8Bytes);
  // The file for the command that reads one.
  std::ofstream("j.json").write(reinterpret_cast<const char *>(pu8Bytes),
                                static_cast<std::streamsize>(sztBytes));
  const Bytes input = WithNoise(pu8Bytes, sztBytes);
  FuzzedDataProvider bytes(input.data(), input.size());
  {
    Framework framework(bytes);
    CarryOutLines(framework, text);
    Reset();
  }
  EndTestThreadsOf(text);
  return 0;
}
