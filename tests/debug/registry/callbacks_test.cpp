// SPDX-License-Identifier: Apache-2.0
#include "debug/registry/callbacks.h"

#include "tests/debug/registry/registry_fixture.h"

namespace kest::test {
namespace {

std::string g_received;
unsigned int g_u32Answer = 0;

class Callbacks : public RegistryTest {
 protected:
  static unsigned int Receive(ZE_KEST_Filter_s *pstFilter, signed char *pszCommand) {
    EXPECT_TRUE(IsRegistryLocked());
    g_received = std::string(pstFilter->szName) + "<-" + reinterpret_cast<char *>(pszCommand);
    return g_u32Answer;
  }
};

// What reaches a filter of the line; "" when none gets it and the line goes on unrecognised.
std::string ReceivedOf(const char *pszLine) {
  g_received.clear();
  const ReportCapture capture(ZE_KEST_LEVEL_PRINT);
  const uint32_t u32Result = ze_kest_Debug_SetParameter(pszLine);
  EXPECT_EQ(g_received.empty() || g_u32Answer != 0 ? ZE_KEST_INVALID_ARGUMENT : ZE_KEST_OK, u32Result)
      << pszLine;
  return g_received;
}

TEST_F(Callbacks, ACommandByIndexReachesTheEntryAtThatPosition) {
  AddFilter("P", "A", Receive);
  AddPipeline("P");
  AddFilter("P", "B", Receive);
  AddFilter("P", "mute");
  EXPECT_EQ("A<-dbgcmd1=test", ReceivedOf("kest_debug_send_cmd=0,dbgcmd1=test"));
  EXPECT_EQ("A<-", ReceivedOf("kest_debug_send_cmd=0,"));
  EXPECT_EQ("B<-a,b=c d", ReceivedOf("kest_debug_send_cmd 2,a,b=c d"));
  EXPECT_EQ("B<-x", ReceivedOf("kest_debug_send_cmd=0x2,x"));
  for (const char *pszLine : {"kest_debug_send_cmd=3,x", "kest_debug_send_cmd=4,x",
                              "kest_debug_send_cmd=-1,x", "kest_debug_send_cmd=0", "kest_debug_send_cmd="}) {
    EXPECT_EQ("", ReceivedOf(pszLine)) << pszLine;
  }
}

TEST_F(Callbacks, ACommandByTextReachesTheFilterOfExactlyTheseNames) {
  AddPipeline("P");
  AddFilter("P", "Vol", Receive);
  AddFilter("P", "Volume", Receive);
  AddFilter("P", "mute");
  EXPECT_EQ("Volume<-mute=on,now", ReceivedOf("kest_debug_send_cmd_by_text=P,Volume,mute=on,now"));
  for (const char *pszLine :
       {"kest_debug_send_cmd_by_text=P,Volum,x", "kest_debug_send_cmd_by_text=p,Volume,x",
        "kest_debug_send_cmd_by_text=P,mute,x", "kest_debug_send_cmd_by_text=P,Volume",
        "kest_debug_send_cmd_by_text=P", "kest_debug_send_cmd_by_text=P,,x"}) {
    EXPECT_EQ("", ReceivedOf(pszLine)) << pszLine;
  }
  const ReportCapture capture;
  Command("kest_debug_send_cmd_by_text=P,Vol,x");
  EXPECT_EQ((Texts{"szTargetPipelineName=P\n", "szTargetFilterName=Vol\n", "debug cmd=x\n",
                   "PipelineName=P,FilterName=\n", "PipelineName=P,FilterName=Vol\n", "Founded!!!\n"}),
            capture.Texts("<INFO>"));

  // A refusal of the filter lets the line go on.
  g_u32Answer = 5;
  EXPECT_EQ("Vol<-x", ReceivedOf("kest_debug_send_cmd=1,x"));
  EXPECT_EQ("Vol<-x", ReceivedOf("kest_debug_send_cmd_by_text=P,Vol,x"));
  g_u32Answer = 0;
}

TEST_F(Callbacks, TheTestFilterAnswersItsTwoCommands) {
  PrintsOf("kest_debug_node=register");
  EXPECT_EQ((Texts{"dbgcmd1=test\n"}), PrintsOf("kest_debug_send_cmd=0,dbgcmd1=test"));
  EXPECT_EQ((Texts{"adc_filter=dump_pcm\n"}), PrintsOf("kest_debug_send_cmd=0,adc_filter dump_pcm"));
  for (const char *pszText : {"dbgcmd1=dump_pcm", "dbgcmd1", "", "other=test"}) {
    const std::string line = std::string("kest_debug_send_cmd=0,") + pszText;
    EXPECT_EQ(Texts{}, PrintsOf(line.c_str(), ZE_KEST_INVALID_ARGUMENT)) << line;
  }
}

}  // namespace
}  // namespace kest::test
