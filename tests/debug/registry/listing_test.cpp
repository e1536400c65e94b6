// SPDX-License-Identifier: Apache-2.0
#include "tests/debug/registry/registry_fixture.h"

namespace kest::test {
namespace {

class Listing : public RegistryTest {};

const std::string kRule = "===============\n";

TEST_F(Listing, ShowsPipelinesFiltersConnectionsPortsAndTheirBytesAndEveryState) {
  AddPipeline("Decoder_13", 1234);
  ZE_KEST_Filter_s &filter = AddFilter("Decoder_13", "Volume");
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_ConnectPipeline("Decoder_13", "SpeakerOutput"));
  filter.pstParentPipeline->u32State = 4;
  filter.pstParentPipeline->u8AutoConsume = 1;
  filter.u8Ds = 2;
  filter.s32Tgt = -3;
  ZE_KEST_Port_s stIn = {};
  stIn.bConnected = 1;
  stIn.stPcm.sztPcmLevel = 256;
  stIn.stPcm.sztPcmRingSamples = 1024;
  stIn.stPcm.asztPcmAllocSize[0] = 4096;
  stIn.stPcm.asztPcmAllocSize[1] = 20480;
  stIn.stPcm.asztPcmAllocSize[2] = 7;
  stIn.stMeta.sztLevel = 32;
  stIn.stMeta.sztSize = 512;
  stIn.stRaw.sztLevel = 5;
  stIn.stRaw.sztSize = 64;
  ZE_KEST_Port_s stOut = {};
  stOut.stMeta.sztSize = 1000;
  filter.u32InPortCount = 2;  // the first slot is empty, what lies behind the second is stale
  filter.apstInPort[1] = filter.apstInPort[2] = &stIn;
  filter.u32OutPortCount = 100;  // more than there are
  filter.apstOutPort[0] = &stOut;

  const Texts expected = {
      "kest_debug_node=print\n",
      kRule,
      "[DebugInfoList]\n",
      kRule,
      "idx:0  ===== p:Decoder_13           ================= tid:1234 t:thread              ================ "
      "cb:0x(nil)\n",
      "idx:1  RUN   Decoder_13             Volume            tid:7    t:worker              (ds:2,tgt:-3   ) "
      "AutoConsume: 1, cb:0x(nil)\n",
      kRule,
      "idx:0  Decoder_13\n",
      "           -> (0)SpeakerOutput\n",
      kRule,
      "Decoder_13 Volume in 1 256/1024(4096 20480 7) 32/512 5/64 (o)\n",
      "Decoder_13 Volume ou 0 0/0(0 0 0) 0/1000 0/0 (x)\n",
      "u64TotalIoSize=26159\n",
      kRule};
  EXPECT_EQ(expected, PrintsOf("kest_debug_list=print"));

  // Every state has its name; a filter without a pipeline shows as unknown.
  const char *const apszStates[] = {"NONE ", "IDLE ", "STOP ", "PREPA", "RUN  ", "PAUSE", "DRAIN", "?    "};
  for (uint32_t i = 0; i < 8; ++i) {
    filter.pstParentPipeline->u32State = i;
    EXPECT_THAT(PrintsOf("kest_debug_list=print")[5], StartsWith(std::string("idx:1  ") + apszStates[i]));
  }
  filter.pstParentPipeline = nullptr;
  EXPECT_THAT(PrintsOf("kest_debug_list=print")[5],
              AllOf(StartsWith("idx:1  ?    "), HasSubstr("AutoConsume: 0,")));
}

TEST_F(Listing, ConnectionsFillTheFirstFreeSlotOfTheFirstPipelineAndTheNinthIsDropped) {
  AddPipeline("P");
  AddFilter("P", "F");
  AddPipeline("P");
  for (int i = 0; i < 9; ++i)
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_ConnectPipeline("P", i % 2 == 0 ? "even" : "odd"));
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_ConnectPipeline("nobody", "x"));
  const auto connectionsOf = [](const ZE_KEST_DebugInfo_s &info) {
    std::string text;
    for (const auto &szName : info.aszConnected)
      text += std::string(szName) + ",";
    return text;
  };
  const ZE_KEST_DebugInfo_s &first = *Head()->pstInfo;
  EXPECT_EQ("even,odd,even,odd,even,odd,even,odd,", connectionsOf(first));
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_DisconnectPipeline("P", "even"));
  EXPECT_EQ(",odd,,odd,,odd,,odd,", connectionsOf(first));
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_ConnectPipeline("P", "new"));
  EXPECT_EQ("new,odd,,odd,,odd,,odd,", connectionsOf(first));

  // Missing names are reported.
  const ReportCapture capture;
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Debug_ConnectPipeline(nullptr, "x"));
  EXPECT_EQ(ZE_KEST_FAILED, ze_kest_Debug_ConnectPipeline("P", nullptr));
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_DisconnectPipeline(nullptr, "x"));
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_DisconnectPipeline("P", nullptr));
  EXPECT_EQ((Texts{"pszPipelineName is NULL.\n", "Err! Strncpy failed!\n", "pszPipelineName is NULL.\n",
                   "pszFedPipelineName is NULL.\n"}),
            capture.Texts("<ERR>"));
}

TEST_F(Listing, TheNodeCommandsWorkOnTheTestEntries) {
  const auto confirms = [](const char *pszValue, const char *pszText) {
    EXPECT_EQ((Texts{pszText}), PrintsOf((std::string("kest_debug_node=") + pszValue).c_str()));
  };
  confirms("register", "kest_debug_node=register\n");
  EXPECT_EQ((Texts{"Pipeline0:Filter0"}), Entries());
  EXPECT_EQ(0u, Head()->pstInfo->u32Tid);
  EXPECT_STREQ("Thread0", Head()->pstInfo->szThreadName);
  AddPipeline("Decoder_13");
  AddPipeline("Loopback");
  AddPipeline("SpeakerOutput");
  AddFilter("SpeakerOutput", "Volume");
  AddFilter("Loopback", "F");
  confirms("pipeline_connect", "pipeline_connect\n");
  const ZE_KEST_DebugInfo_s &decoder = *Head()->pstNext->pstInfo;
  EXPECT_STREQ("SpeakerOutput", decoder.aszConnected[0]);
  EXPECT_STREQ("Loopback", decoder.aszConnected[1]);
  confirms("pipeline_disconnect", "pipeline_disconnect\n");
  EXPECT_STREQ("", decoder.aszConnected[0]);
  confirms("remove_filter", "kest_debug_node=remove_filter\n");
  confirms("remove_pipeline", "kest_debug_node=remove_pipeline\n");
  // The test filter bears the name of its latest use.
  EXPECT_EQ((Texts{"Pipeline0:Volume", "Decoder_13", "SpeakerOutput"}), Entries());
  confirms("release", "kest_debug_node=release\n");
  EXPECT_EQ(nullptr, Head());
  EXPECT_EQ((Texts{"kest_debug_node=release\n"}),
            PrintsOf("kest_debug_node=release", ZE_KEST_INVALID_ARGUMENT));
}

}  // namespace
}  // namespace kest::test
