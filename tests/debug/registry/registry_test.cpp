// SPDX-License-Identifier: Apache-2.0
#include "debug/registry/registry.h"

#include <atomic>

#include "tests/debug/registry/registry_fixture.h"

namespace kest::test {
namespace {

std::string g_received;

class RegistryOrder : public RegistryTest {
 public:
  // Before the entry exists and without the lock.
  static unsigned int Receive(ZE_KEST_Filter_s *pstFilter, signed char *pszCommand) {
    EXPECT_FALSE(IsRegistryLocked());
    for (const std::string &entry : Entries())
      EXPECT_EQ(std::string::npos, entry.find(pstFilter->szName));
    g_received += std::string(pstFilter->szName) + "<-" + reinterpret_cast<char *>(pszCommand) + ";";
    return 99;
  }
};

TEST_F(RegistryOrder, FiltersStandBehindTheirPipelineInTheOrderOfRegistration) {
  AddPipeline("P");
  AddPipeline("Q");
  AddFilter("P", "F1");
  AddFilter("Q", "G1");
  AddFilter("P", "F2");
  AddFilter("Orphan", "O");
  AddFilter("P", "F3");
  EXPECT_EQ((Texts{"P", "P:F1", "P:F2", "P:F3", "Q", "Q:G1", "Orphan:O"}), Entries());
  // The same once more is another entry; of two runs of a name the first grows.
  AddPipeline("P");
  AddFilter("P", "F1");
  EXPECT_EQ((Texts{"P", "P:F1", "P:F2", "P:F3", "P:F1", "Q", "Q:G1", "Orphan:O", "P"}), Entries());
  // Links hold in both directions after an insertion in the middle.
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_UnRegisterInfo("Q", nullptr));
  EXPECT_EQ((Texts{"P", "P:F1", "P:F2", "P:F3", "P:F1", "Orphan:O", "P"}), Entries());

  // A filter without a parent and an entry without names go to the end.
  ZE_KEST_Filter_s stAlone = {};
  strcpy(stAlone.szName, "alone");
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_RegisterInfo("P", &stAlone, 0, nullptr, nullptr));
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_RegisterInfo(nullptr, nullptr, 0, nullptr, nullptr));
  EXPECT_EQ((Texts{"P", "P:F1", "P:F2", "P:F3", "P:F1", "Orphan:O", "P", "P:alone", ""}), Entries());
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_UnRegisterInfo(nullptr, nullptr));
  EXPECT_EQ((Texts{"P", "P:F1", "P:F2", "P:F3", "P:F1", "Orphan:O", "P", "P:alone"}), Entries());
}

TEST_F(RegistryOrder, UnregisteringRemovesAFilterByNameOrAPipelineWithItsFiltersAndAReleaseAll) {
  AddPipeline("P");
  AddFilter("P", "F");
  ZE_KEST_Filter_s &second = AddFilter("P", "F");
  AddPipeline("Q");
  AddFilter("Q", "F");
  // The first of the name goes, though the second was handed over.
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_UnRegisterInfo("P", &second));
  EXPECT_EQ((Texts{"P", "P:F", "Q", "Q:F"}), Entries());
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_UnRegisterInfo("nobody", &second));
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_UnRegisterInfo("P", nullptr));
  EXPECT_EQ((Texts{"Q", "Q:F"}), Entries());
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_UnRegisterInfo("Q", nullptr));
  EXPECT_EQ(nullptr, Head());

  // Long names are cut at 63 characters.
  const std::string longName(100, 'n');
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_RegisterInfo(longName.c_str(), nullptr, 0, longName.c_str(), nullptr));
  const ZE_KEST_DebugInfo_s &info = *Head()->pstInfo;
  EXPECT_EQ(longName.substr(0, 63), info.szName);
  EXPECT_EQ(longName.substr(0, 63), info.szThreadName);
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_UnRegisterInfo(longName.c_str(), nullptr));
  EXPECT_EQ(nullptr, Head());

  // A release empties the list and fails on an empty one.
  AddPipeline("P");
  AddFilter("P", "F");
  EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_ReleaseDebugInfoList());
  const ReportCapture capture;
  EXPECT_EQ(ZE_KEST_FAILED, _ZE_KEST_Debug_ReleaseDebugInfoList());
  ZE_KEST_DebugInfoNode_s stWithoutRecord = {};
  Head() = &stWithoutRecord;
  EXPECT_EQ(ZE_KEST_FAILED, _ZE_KEST_Debug_ReleaseDebugInfoList());
  EXPECT_EQ(nullptr, Head());
  EXPECT_EQ((Texts{"Error! No debug info node in this list!\n", "Error! No debug info in this node!\n"}),
            capture.Texts("<ERR>"));
}

TEST_F(RegistryOrder, APresetCommandReachesAFilterBeforeItsEntryExistsWhateverItAnswers) {
  Command("kest_debug_preset_cmd=all,adc_filter=dump_pcm,1");
  AddFilter("P", "F", Receive);
  AddFilter("P", "silent");
  EXPECT_EQ("F<-adc_filter=dump_pcm,1;", g_received);
  Command("kest_debug_preset_cmd=off");
  AddFilter("P", "late", Receive);
  EXPECT_EQ("F<-adc_filter=dump_pcm,1;", g_received);
  g_received.clear();
}

// Told by what is reported on the way.
TEST_F(RegistryOrder, IsLockedWhileItIsGoneThrough) {
  static const char *pszReport = nullptr;
  static int s32Reports = 0;
  AddPipeline("P");
  AddFilter("P", "Volume");
  Command("kest_debug_filter_io=pipe");
  const ReportCapture everyLevel;
  __android_log_set_logger([](const __android_logger_data *, const char *pszText) {
    if (strstr(pszText, pszReport) == nullptr) return;
    ++s32Reports;
    EXPECT_TRUE(IsRegistryLocked()) << pszText;
  });
  for (const auto &[pszLine, pszText] :
       {std::pair{"kest_debug_list=print", ": idx:"}, std::pair{"kest_debug_list=status", "p:P "},
        std::pair{"kest_filter_debug_level=Vol,all", "setDbgLvl"},
        std::pair{"kest_debug_send_cmd_by_text=P,Volume,x", "Founded"},
        std::pair{"kest_debug_filter_io=print_watch_list", ": idx:"}}) {
    pszReport = pszText;
    s32Reports = 0;
    ze_kest_Debug_SetParameter(pszLine);
    EXPECT_LT(0, s32Reports) << pszLine;
  }
  Command("kest_debug_filter_io=release");
}

TEST(RegistryAcrossProcesses, APresetCommandGivenToAnotherProcessReachesAFilterThatRegistersLater) {
  EmptyDebugDirectory();
  ASSERT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
  EXPECT_EQ(0, InAnotherProcess([] {
              // The forked process has this one's state; as a process of its own it would have started later.
              Command("kest_debug_preset_cmd=all,from=afar");
            }));
  ZE_KEST_Filter_s stFilter = {};
  strcpy(stFilter.szName, "F");
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_RegisterInfo("P", &stFilter, 0, nullptr, RegistryOrder::Receive));
  EXPECT_EQ("F<-from=afar;", g_received);
  EXPECT_EQ(ZE_KEST_OK, _ZE_KEST_Debug_ReleaseDebugInfoList());
  ShutDown();
}

TEST_F(RegistryOrder, SurvivesManyThreadsThatRegisterConnectAndUnregisterWhileItIsListed) {
  constexpr int kThreads = 8;
  constexpr int kRounds = 50;
  const ReportCapture capture(ZE_KEST_LEVEL_PRINT);
  std::atomic<int> s32Running{kThreads};
  InThreads(kThreads + 1, [&s32Running](int t) {
    while (t == kThreads && s32Running > 0) {
      for (const char *pszLine :
           {"kest_debug_list=print", "kest_debug_list=status", "kest_debug_send_cmd=3,x",
            "kest_debug_send_cmd_by_text=pipe1,Volume,x", "kest_debug_set_parameter=pipe,Vol,Gain,1,4"})
        ze_kest_Debug_SetParameter(pszLine);
    }
    if (t == kThreads) return;
    const std::string name = "pipe" + std::to_string(t);
    ZE_KEST_Pipeline_s stPipeline = {};
    strcpy(stPipeline.szName, name.c_str());
    ZE_KEST_Filter_s stFilter = {};
    strcpy(stFilter.szName, "Volume");
    stFilter.pstParentPipeline = &stPipeline;
    for (int i = 0; i < kRounds; ++i) {
      EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_RegisterInfo(name.c_str(), nullptr, 1, "t", nullptr));
      EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_RegisterInfo(name.c_str(), &stFilter, 1, "t", nullptr));
      EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_ConnectPipeline(name.c_str(), "sink"));
      EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_DisconnectPipeline(name.c_str(), "sink"));
      EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_UnRegisterInfo(name.c_str(), &stFilter));
      if (i < kRounds - 1) ze_kest_Debug_UnRegisterInfo(name.c_str(), nullptr);
    }
    --s32Running;
  });
  EXPECT_THAT(Entries(), testing::UnorderedElementsAre("pipe0", "pipe1", "pipe2", "pipe3", "pipe4", "pipe5",
                                                       "pipe6", "pipe7"));
  EXPECT_FALSE(IsRegistryLocked());
}

}  // namespace
}  // namespace kest::test
