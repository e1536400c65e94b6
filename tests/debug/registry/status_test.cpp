// SPDX-License-Identifier: Apache-2.0
#include <map>
#include <sstream>

#include "tests/debug/registry/registry_fixture.h"
#include "tests/support/pages.h"

namespace kest::test {
namespace {

std::map<std::string, uint64_t> g_values;
std::string g_asked;

class Status : public RegistryTest {
 protected:
  // The prints between the two SAD lines and the rule before the graph, joined.
  static std::string NodesOf(const Texts &prints) {
    std::string text;
    for (size_t i = 5; i < prints.size() && prints[i] != kRule; ++i)
      text += prints[i];
    return text;
  }

  // Answers every parameter that is set, in the size that is asked for.
  static uint32_t Get(ZE_KEST_Filter_s * /*pstFilter*/, const char *pszName, void *pData, uint32_t u32Size) {
    EXPECT_TRUE(IsRegistryLocked());
    g_asked += std::string(pszName) + ":" + std::to_string(u32Size) + " ";
    if (g_values.count(pszName) == 0) return 0x13;
    memcpy(pData, &g_values[pszName], u32Size);
    return ZE_KEST_OK;
  }

  static inline const std::string kRule = "===============\n";
};

TEST_F(Status, AnEmptyRegistryShowsTheCapabilitiesAndTheRules) {
  const Pages pages(std::vector<uint8_t>(ZE_KEST_SAD_SIZE));
  uint8_t *const pu8Sad = pages.Data();  // with nothing readable behind it
  const std::tuple<int, uint8_t, uint32_t> aEntries[] = {{2, 1, 0x50},        {6, 2, 0x60},  {7, 3, 0x70},
                                                         {10, 4, 0x12345678}, {11, 5, 0xB0}, {12, 255, 0xC0}};
  for (const auto &[s32Format, u8Support, u32Byte3] : aEntries) {
    pu8Sad[24 * s32Format] = u8Support;
    memcpy(&pu8Sad[24 * s32Format + 16], &u32Byte3, 4);
    pu8Sad[24 * s32Format + 15] = pu8Sad[24 * s32Format + 20] = 0xFF;  // of neither
  }
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_SetSAD(pu8Sad, ZE_KEST_SAD_SIZE));
  const Texts expected = {
      "kest_debug_node=status\n",
      kRule,
      "[AudioStatusInfo]\n",
      "[EDID_Arc][Cap] dd:1, ddp:4(atmos:12345678), dts:3, aac:2, mat(truhd):255, dtshd:5\n",
      "[EDID_Arc][Byte3] dd:50, ddp:12345678, dts:70, aac:60, mat(truhd):c0, dtshd:b0\n",
      kRule,
      kRule,
      kRule};
  EXPECT_EQ(expected, PrintsOf("kest_debug_list=status"));

  // Another size keeps the block, and is no failure.
  const ReportCapture capture;
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_SetSAD(pu8Sad + 1, 383));
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_SetSAD(nullptr, ZE_KEST_SAD_SIZE));
  EXPECT_EQ((Texts{"Error!! Size 383 of not match with expect 384\n", "pu8Sad is NULL.\n"}),
            capture.Texts("<ERR>"));
  EXPECT_EQ(expected, PrintsOf("kest_debug_list=status"));
}

TEST_F(Status, EveryKindOfFilterTellsItsOwn) {
  std::istringstream values(
      "OkFrmCnt 26 ErrFrmCnt 2 MdVol 96 AdVol 1024 DrcMode 7 DmxMode 3 DolbyTb11Enable 1 RfSignalType 5 "
      "Gain 4294967290 Mute 1 DelayTime 10 RawDelayTime 20 SyncStatus 2 CurrentPTS 1099511627776 CurrentSTC "
      "7 "
      "DataEmpty 9 SyncEnable 1 OutputEnable 2 BypassEnable 3 IsPCM 1");
  for (std::string name; values >> name;)
    values >> g_values[name];
  ZE_KEST_Port_s stPort = {};
  stPort.stPcm.u64PcmXrunCount = 11;
  stPort.stPcm.u64PcmPassCount = 12;
  stPort.stPcm.u64PcmSkipCount = 13;
  const std::string decoder =
      "[Decoder Info] \n"
      "                                         FrmCnt        : Ok=0001a,Err=00002\n"
      "                                         main/asoc Vol : 0x60, 0x400 (mute[10] | int[9:3] | fra[2:0], "
      "0x60:0dB)\n"
      "                                         dolby drcMode : 7  (0:Line, 1:RF)\n"
      "                                               dmxMode : 3  (0:LtRt, 1:LoRo, 3:Arib)\n"
      "                                               tb11    : 1  (1:enable)\n"
      "                                         rfSignalType  : 5  (0:Dvb, 1:Atsc, 2:Dtmb, 3:others)\n";
  // pszNames: filters of one kind
  const std::pair<const char *, std::string> aKinds[] = {
      {"Aac Ac3 Ac4 AmrNb Alac Cook Dra Dts Flac Gaac ImaAdpcm Lpcm Mpeg MpegH Mat Opus Vorbis "
       "WmaPro Xpcm MsAdpcm",
       decoder},
      {"Src SpeakerOutput HeadphoneOutput LineOutput", " in[0] underrun:11  \n"},
      {"Mixer", " in[0] underrun:11    in[1] underrun:0    \n"},
      {"Volume", " gain:-6, mute:1\n"},
      {"Delay", " pcm delay:10, raw delay:20\n"},
      {"Sync",
       " bSyncEn[1] bOutputEn[2] okCnt[12] skipCnt[13] emptyCnt[9] STC[7] PTS[1099511627776] "
       "TD[-1099511627769] "
       "Status[2] (0:invalid, 1:freerun, 2:sync, 3:drop frame) Bypass[3]\n"},
      {"SpdifOutput ArcOutput EarcOutput", " in[0] underrun pcm:11\n"},
      {"Adc Atv Hdmi", " out[0] overrun:11  \n"},
      {"Volume2 volume Vol X", ""}};
  for (const auto &[pszNames, text] : aKinds) {
    std::istringstream names(pszNames);
    for (std::string name; names >> name;) {
      ZE_KEST_Filter_s &filter = AddFilter("P", name.c_str());
      filter.pfnGetParameter = Get;
      filter.u32InPortCount = 2;
      filter.u32OutPortCount = 1;
      filter.apstInPort[0] = &stPort;
      filter.apstOutPort[0] = &stPort;
      char szHead[64];
      snprintf(szHead, sizeof(szHead), "p:%-20s f:%-15s", "P", name.c_str());
      EXPECT_EQ(szHead + text, NodesOf(PrintsOf("kest_debug_list=status")));
      ze_kest_Debug_UnRegisterInfo("P", nullptr);
    }
  }
  EXPECT_THAT(g_asked, HasSubstr("SyncStatus:4 CurrentPTS:8 CurrentSTC:8 DataEmpty:8 SyncEnable:1 "
                                 "OutputEnable:1 BypassEnable:1 IsPCM:4"));
  g_values["IsPCM"] = 0;
  AddFilter("P", "ArcOutput").pfnGetParameter = Get;
  EXPECT_THAT(NodesOf(PrintsOf("kest_debug_list=status")), EndsWith(" in[0] underrun npcm:0\n"));
}

TEST_F(Status, APortBeyondTheCountIsNotLookedAt) {
  ZE_KEST_Port_s stStale = {};
  stStale.stPcm.u64PcmXrunCount = 11;
  for (const char *pszName : {"Src", "Adc"}) {
    ZE_KEST_Filter_s &filter = AddFilter("P", pszName);
    filter.apstInPort[0] = filter.apstOutPort[0] = &stStale;
  }
  const std::string nodes = NodesOf(PrintsOf("kest_debug_list=status"));
  EXPECT_THAT(nodes, AllOf(HasSubstr("in[0] underrun:0 "), HasSubstr("out[0] overrun:0 ")));
}

TEST_F(Status, PipelinesAndTheirGraphFrameTheFilters) {
  AddPipeline("Decoder_13");
  AddFilter("Decoder_13", "Unknown");
  AddPipeline("SpeakerOutput");
  ze_kest_Debug_ConnectPipeline("Decoder_13", "SpeakerOutput");
  const Texts prints = PrintsOf("kest_debug_list=status");
  EXPECT_EQ((Texts{"p:Decoder_13           =================\n", "p:Decoder_13           f:Unknown        ",
                   "p:SpeakerOutput        =================\n", kRule, "Decoder_13\n",
                   "           -> (0)SpeakerOutput\n", "SpeakerOutput\n", kRule}),
            Texts(prints.begin() + 5, prints.end()));
}

TEST_F(Status, AFilterThatDoesNotAnswerIsReportedAndStillGetsItsLine) {
  g_values = {{"Mute", 1}};
  AddFilter("P", "Volume").pfnGetParameter = Get;
  AddFilter("P", "Delay");  // has no entry at all
  const ReportCapture capture;
  Command("kest_debug_list=status");
  EXPECT_TRUE(capture.Has("<PRINT>", " gain:0, mute:1\n"));
  EXPECT_TRUE(capture.Has("<PRINT>", " pcm delay:0, raw delay:0\n"));
  EXPECT_EQ((Texts{"Error (0x00000013)! Fail to get parameter from filter:'Volume'\n",
                   "Error (0x00000008)! Fail to get parameter from filter:'Delay'\n",
                   "Error (0x00000008)! Fail to get parameter from filter:'Delay'\n"}),
            capture.Texts("<ERR>"));
}

}  // namespace
}  // namespace kest::test
