// SPDX-License-Identifier: Apache-2.0
// Memory is exhausted at every request of the library in turn.
#include <functional>

#include "debug/base/debug_mutex.h"
#include "debug/control/command_table.h"
#include "debug/registry/registry.h"
#include "debug/thread/tid_test.h"
#include "tests/support/failing_allocator.h"
#include "tests/support/ports.h"
#include "utility/core/owned_file.h"
#include "utility/core/owned_memory.h"

namespace kest::test {
namespace {

using testing::IsSupersetOf;

constexpr const char *kFile = KEST_DEBUG_DIR "x.json";
constexpr const char *kNoMemory = "Error! MALLOC error! \n";

struct Scenario {
  const char *pszName;
  std::vector<uint32_t> results;  // with one request refused; without, it is ZE_KEST_OK
  Texts reports;                  // each is made for one request or another; none at all when it is empty
  std::function<uint32_t()> run;
};

// Without the lock, which may be the call that fails.
KEST_UNCHECKED_LOCKS bool HasEntries() {
  return _pstKestDebugInfoList != nullptr;
}

bool IsFree(pthread_mutex_t &stMutex) {
  if (pthread_mutex_trylock(&stMutex) != 0) return false;
  return pthread_mutex_unlock(&stMutex) == 0;
}

void ExpectLocksFree() {
  EXPECT_TRUE(IsFree(_stKestDebugMutex));
  EXPECT_TRUE(IsFree(_stKestDebugShmMutex));
  EXPECT_TRUE(IsFree(_stKestDebugLogMutex));
}

// Refuses one request, and then none: nothing may have been lost by then. False once there is none to refuse.
bool Survives(const Scenario &scenario, uint32_t u32Refused, Texts &reports) {
  const ReportCapture capture(ZE_KEST_LEVEL_ERR);
  const FailingAllocator memory(u32Refused);
  const uint32_t u32Result = scenario.run();
  if (!memory.HasFailed()) {
    EXPECT_EQ(ZE_KEST_OK, u32Result);
    return false;
  }
  EXPECT_THAT(scenario.results, Contains(u32Result));
  const Texts errors = capture.Texts("<ERR>");
  EXPECT_EQ(scenario.reports.empty(), errors.empty());
  reports.insert(reports.end(), errors.begin(), errors.end());
  ExpectLocksFree();
  FailingAllocator::Recover();
  EXPECT_EQ(ZE_KEST_OK, scenario.run());
  EXPECT_EQ(0, memory.Held());
  return true;
}

// Gives the number of requests.
uint32_t Exhaust(const Scenario &scenario) {
  Texts reports;
  uint32_t u32Refused = 1;
  for (; Survives(scenario, u32Refused, reports); ++u32Refused) {
    if (testing::Test::HasFailure()) {
      ADD_FAILURE() << scenario.pszName << ", request " << u32Refused;
      break;
    }
  }
  EXPECT_THAT(reports, IsSupersetOf(scenario.reports)) << scenario.pszName;
  return u32Refused - 1;
}

// One line after another; the first result that is not ZE_KEST_OK.
uint32_t RunLines(const std::string &lines) {
  uint32_t u32Result = ZE_KEST_OK;
  for (const std::string &line : LinesOf(lines, ';')) {
    const uint32_t u32Line = ze_kest_Debug_SetParameter(line.c_str());
    if (u32Result == ZE_KEST_OK) u32Result = u32Line;
  }
  return u32Result;
}

class ExhaustedMemory : public testing::Test {
 protected:
  // Every request that was made has been refused once.
  ~ExhaustedMemory() override {
    const Sites sites = SitesSoFar();
    EXPECT_EQ(sites.asking, sites.refused);
    RecordProperty("CallsThatAsk", static_cast<int>(sites.asking.size()));
  }
};

// Lines that leave everything as it was, and what is reported besides the missing memory.
struct Lines {
  const char *pszLines;
  Texts reports = {};
};

const Lines kLines[] = {
    {"help"},
    {"kest_log_restart;kest_log_to_file=on", {"Err! fopen failed!\n"}},
    {"kest_log_to_file=off;kest_log_to_file=on", {"Err! ze_kest_Utility_FileOpen failed!\n"}},
    {"kest_print_current_shm"},
    {"kest_log_level=all;kest_log_level=err"},
    {"kest_json_parser=" KEST_DEBUG_DIR "x.json",
     {"Err! FileToString failed!\n", "Err! MALLOC failed!\n", "File string buffer allocation failed!\n",
      "Err! ze_kest_Utility_FileOpen failed!\n"}},
    {"kest_debug_node=register;kest_debug_send_cmd=0,dbgcmd1=test;kest_debug_node=release",
     {"Err! MALLOC failed\n", "Err! RegisterInfo failed!\n"}},
    {"kest_debug_node=register;kest_debug_send_cmd_by_text=Pipeline0,Filter0,dbgcmd1=test;"
     "kest_debug_node=release"},
    {"kest_debug_node=register;kest_debug_list=print;kest_debug_list=status;kest_debug_node=release"},
    {"kest_debug_list=parameter"},
    {"kest_debug_set_parameter=Pipeline0,Filter0,Gain,1,4"},
    {"kest_debug_preset_cmd=all,dbgcmd1=test;kest_debug_node=register;kest_debug_preset_cmd=off;"
     "kest_debug_node=release"},
    {"kest_debug_watch_current_tids=off;kest_debug_watch_tid=1,2;kest_debug_watch_current_tids=on"},
    {"kest_pthread_signal_test=wait"},
    {"kest_debug_filter_io=Pipe,Filter;kest_debug_filter_io=restart;kest_debug_filter_io=print_watch_list;"
     "kest_debug_filter_io=stop;kest_debug_filter_io=release",
     {"Err! MALLOC failed\n", "Err! ze_kest_Utility_FileOpen failed!\n"}},
    {"kest_perf_event_target=filter,Pipe:Filter;kest_perf_event_target=none"},
    {"kest_dump_filter_io=Pipe,Filter;kest_dump_io=on;kest_dump_io=off"},
    {"kest_output_sinewave_filter=Pipe,Filter;kest_filter_debug_level=Filter,err"},
    {"kest_latency_config=a,b,c,d;kest_latency=on;kest_latency=off"},
    {"kest_process_status=filter,Pipe:Filter;kest_process_status=none"},
    {"kest_send_test_tone=Pipe,Filter:0;kest_send_test_tone=off"},
    {"kest_calpcmlev=Pipe,Filter,1;kest_calpcmlev=off"},
    {"kest_calculate_data_rate=Pipe,Filter:0,0;kest_calculate_data_rate=off"},
};

TEST_F(ExhaustedMemory, ACommandIsTakenOrRefusedWhole) {
  const DebugLayer layer;
  WriteFile(kFile, "{\"a\":[1]}");
  for (const Lines &lines : kLines) {
    Texts reports = lines.reports;
    reports.emplace_back(kNoMemory);
    const Scenario scenario = {lines.pszLines, {ZE_KEST_OK, ZE_KEST_INVALID_ARGUMENT}, reports, [&lines] {
                                 return RunLines(lines.pszLines);
                               }};
    Exhaust(scenario);
  }
}

// On purpose without a word: logging to the file stops until it is switched on anew.
TEST_F(ExhaustedMemory, ALogThatHasGrownTooLongGoesOnOrStops) {
  const DebugLayer layer;
  Command("kest_log_size=0");
  Exhaust({"log", {ZE_KEST_OK}, {}, [] {
             for (int i = 0; i < 1000; ++i)
               ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "x\n");
             FailingAllocator::Recover();
             return RunLines("kest_log_to_file=on");
           }});
  Command("kest_log_size=99999999");
}

// Every inline command and every handler behind them has a copy of its own.
TEST_F(ExhaustedMemory, ALineThatNobodyTakesIsOfferedToAll) {
  const DebugLayer layer;
  constexpr uint32_t kHandlers = 12;
  const auto kRows = static_cast<uint32_t>(std::distance(Commands().begin(), Commands().end()));
  EXPECT_EQ(kRows + kHandlers, Exhaust({"nonsense", {ZE_KEST_OK}, {kNoMemory}, [] {
                                          const uint32_t u32Result = ze_kest_Debug_SetParameter("nonsense");
                                          EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, u32Result);
                                          return uint32_t{ZE_KEST_OK};
                                        }}));
}

// With data of all kinds in the cycle, for a hook that does everything.
struct CycleFilter : Filter {
  CycleFilter() {
    for (Port *pPort : {&In(0), &Out(0)}) {
      ZE_KEST_PcmBuffer_s &pcm = pPort->Pcm(16, 8, {2, 0, 0});
      pcm.sztPcmReadSize = pcm.sztPcmWriteSize = 8;
      ZE_KEST_DataBuffer_s &meta = pPort->Ring(&ZE_KEST_Port_s::stMeta, 16);
      meta.sztReadSize = meta.sztWriteSize = 16;
      pPort->st.stRaw = meta;
    }
  }
};

TEST_F(ExhaustedMemory, TheHookGoesOnOrEndsItsCycle) {
  const DebugLayer layer;
  CycleFilter filter;
  for (const char *pszLine : {"kest_print_filter_info=on", "kest_dump_io=on", "kest_latency=on"})
    Command(pszLine);
  Exhaust({"hook",
           {ZE_KEST_OK, ZE_KEST_OUT_OF_MEMORY},
           {"_ZE_KEST_Debug_FilterPcmInfo fail to allocate\n",
            "_ZE_KEST_Debug_FilterMetadataInfo fail to allocate\n",
            "_ZE_KEST_Debug_FilterRawInfo fail to allocate\n", kNoMemory, "Err! fopen failed!\n"},
           [&filter] { return static_cast<uint32_t>(ze_kest_Debug_Filter(filter)); }});
  for (const char *pszLine : {"kest_print_filter_info=off", "kest_dump_io=off", "kest_latency=off"})
    Command(pszLine);
}

TEST_F(ExhaustedMemory, AFailedRegistrationLeavesTheRegistryAsItWas) {
  const DebugLayer layer;
  Filter filter;
  Exhaust({"register",
           {ZE_KEST_FAILED},
           {kNoMemory, "Err! MALLOC failed\n", "Err! RegisterInfo failed!\n"},
           [&filter] {
             const uint32_t u32Result = ze_kest_Debug_RegisterInfo("pipe", filter, 1, "thread", nullptr);
             EXPECT_EQ(u32Result == ZE_KEST_OK, HasEntries());
             ze_kest_Debug_UnRegisterInfo("pipe", filter);
             return u32Result;
           }});
}

// The result of the thread's body does not tell: its reports do.
TEST_F(ExhaustedMemory, TheTestThreadEndsByItself) {
  Exhaust({"tid test", {ZE_KEST_OK}, {kNoMemory, "Err! MALLOC failed\n", "Err! CreateFilter failed!\n"}, [] {
             _stKestDebugTidTest.pfnBody(nullptr);
             return uint32_t{ZE_KEST_OK};
           }});
}

// What another process has set keeps the reports on.
TEST_F(ExhaustedMemory, TheLayerStartsWithWhatItCanGetAndStopsAsEver) {
  { const DebugLayer before; }  // from now on a log line does not start anything by itself
  EmptyDebugDirectory();
  constexpr size_t kLevelBytes = sizeof(uint32_t);
  std::string shared(ZE_KEST_SHM_SIZE, '\0');
  const uint32_t u32Level = ZE_KEST_LEVEL_ERR;
  shared.replace(0, kLevelBytes, reinterpret_cast<const char *>(&u32Level), kLevelBytes);
  Exhaust({"start",
           {ZE_KEST_OK, ZE_KEST_FAILED},
           {kNoMemory, "Err! mmap fails\n", "Err! shared memory initialization fails\n",
            "Err! ze_kest_Utility_FileOpen failed!\n", "Err! pthread_create failed!\n"},
           [&shared] {
             WriteFile(KEST_DEBUG_DIR "shm_global", shared);
             const uint32_t u32Result = ze_kest_Debug_Init();
             FailingAllocator::Recover();
             EXPECT_EQ(ZE_KEST_OK, ShutDown());
             return u32Result;
           }});
}

TEST_F(ExhaustedMemory, FilesAreReadWholeOrNotAndLinesUpToWhereMemoryEnded) {
  const std::string line = "abcdefgh";
  WriteFile(kFile, line + "\n");
  Exhaust({"whole file",
           {ZE_KEST_FAILED},
           {kNoMemory, "Err! ze_kest_Utility_FileOpen failed!\n", "File string buffer allocation failed!\n"},
           [] {
             char *psz = nullptr;
             size_t sztSize = 0;
             const uint32_t u32Result = ze_kest_Utility_FileToString(kFile, &psz, &sztSize);
             const Owned<char> string(psz);
             EXPECT_EQ(u32Result == ZE_KEST_OK ? 9u : 0u, sztSize);
             EXPECT_EQ(u32Result == ZE_KEST_OK, psz != nullptr);
             return u32Result;
           }});
  const OwnedFile file(ze_kest_Utility_FileOpen(kFile, "r"));
  Exhaust({"line", {ZE_KEST_NO}, {kNoMemory, "Err! MALLOC failed!\n"}, [&] {
             char szScratch[4];
             rewind(file.get());
             const Owned<char> read(ze_kest_Utility_FileReadLine(szScratch, 4, file.get()));
             const std::string text = read == nullptr ? "" : read.get();
             EXPECT_EQ(0u, line.rfind(text, 0));
             return uint32_t{text == line ? ZE_KEST_OK : ZE_KEST_NO};
           }});
  const uint8_t au8[4] = {};
  Exhaust({"dump", {ZE_KEST_OK}, {"Err! fopen failed!\n"}, [&au8] {
             EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_DumpBuffer(KEST_DEBUG_DIR, "dump", au8, 4));
             return ze_kest_Utility_DumpRingBuffer(KEST_DEBUG_DIR, "dump", au8, au8, au8 + 4, 4);
           }});
}

TEST_F(ExhaustedMemory, ABlockIsSharedOrNothingIsLeftOfIt) {
  EmptyDebugDirectory();
  Exhaust({"shared block", {ZE_KEST_NOT_INITIALISED}, {"Err! mmap fails\n"}, [] {
             int s32Fd = -1, s32LockFd = -1;
             void *pv = nullptr;
             const auto before = OpenDescriptors();
             const uint32_t u32Result = ze_kest_Utility_ShmAlloc("x", &s32Fd, &s32LockFd, &pv);
             if (u32Result == ZE_KEST_OK) ze_kest_Utility_ShmFree("x", &s32Fd, &s32LockFd, pv);
             EXPECT_EQ(before, OpenDescriptors());
             return u32Result;
           }});
}

TEST_F(ExhaustedMemory, AJsonContextCanBeDestroyedWhateverHasFailed) {
  std::string text = "[1";
  for (int i = 0; i < 300; ++i)
    text += ",1";
  text += "]";
  const std::string report = "Error (0x0000000A)! Fail to allocate ";
  Exhaust({"json",
           {ZE_KEST_OUT_OF_MEMORY},
           {report + "4096 bytes of memory to pstTokenInfoTmp!\n",
            report + "8192 bytes of memory to pstTokenInfoTmp!\n"},
           [&text] {
             ZE_KEST_Jsmn_s stJsmn;
             const uint32_t u32Created = ze_kest_Utility_Jsmn_Create(&stJsmn);
             if (u32Created != ZE_KEST_OK) return u32Created;
             stJsmn.pszStringData = text.c_str();
             stJsmn.sztStringDataSize = text.size();
             const uint32_t u32Filled = ze_kest_Utility_Jsmn_FillUpTokenInfo(&stJsmn);
             EXPECT_EQ(ZE_KEST_OK, ze_kest_Utility_Jsmn_Destroy(&stJsmn));
             return u32Filled;
           }});
}

}  // namespace
}  // namespace kest::test
