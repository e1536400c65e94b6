// SPDX-License-Identifier: Apache-2.0
#include "debug/registry/parameters.h"

#include "tests/debug/registry/registry_fixture.h"

namespace kest::test {
namespace {

std::string g_set;

class FilterParameters : public RegistryTest {
 protected:
  static uint32_t Set(ZE_KEST_Filter_s *pstFilter, const char *pszName, const void *pData, uint32_t u32Size) {
    EXPECT_TRUE(IsRegistryLocked());
    g_set = std::string(pstFilter->szName) + " " + pszName + " " +
            std::to_string(*static_cast<const int32_t *>(pData)) + " " + std::to_string(u32Size);
    return strcmp(pszName, "Bad") == 0 ? 0x21 : 0;
  }
};

TEST_F(FilterParameters, AreSetInTheFirstFilterWhoseNamesBeginAsGivenIfItHasAnEntry) {
  AddPipeline("Decoder_13");
  AddFilter("Decoder_13", "Volume_a").pfnSetParameter = Set;
  AddFilter("Decoder_13", "Volume_b").pfnSetParameter = Set;
  const Texts prints = PrintsOf("kest_debug_set_parameter=Dec,Vol,Gain,-6,4");
  const std::string function = "_ZE_KEST_Debug_Cmd_SetParameter";
  EXPECT_EQ((Texts{function + " pszDup=kest_debug_set_parameter=Dec,Vol,Gain,-6,4\n",
                   function + " pszSub=kest_debug_set_parameter, pszCmd=Dec,Vol,Gain,-6,4\n",
                   function + " Dec:Vol set parameter Gain -6 4\n",
                   "_ZE_KEST_Debug_SetFilterParameter Dec:Vol SetParameter Gain -6 4\n"}),
            prints);
  EXPECT_EQ("Volume_a Gain -6 4", g_set);
  PrintsOf("kest_debug_set_parameter=Decoder_13,Volume_b,Gain,1,4294967294");
  EXPECT_EQ("Volume_b Gain 1 4294967294", g_set);

  // No match and no entry do nothing, a refusal is reported.
  AddFilter("P", "Silent");
  AddFilter("P", "Volume").pfnSetParameter = Set;
  g_set.clear();
  for (const char *pszLine :
       {"kest_debug_set_parameter=P,Other,Gain,1,4", "kest_debug_set_parameter=X,Volume,Gain,1,4",
        "kest_debug_set_parameter=P,Silent,Gain,1,4"}) {
    EXPECT_EQ(3u, PrintsOf(pszLine).size()) << pszLine;
  }
  EXPECT_EQ("", g_set);
  const ReportCapture capture;
  Command("kest_debug_set_parameter=P,Volume,Gain,1,4");
  EXPECT_THAT(capture.Texts("<ERR>"), IsEmpty());
  Command("kest_debug_set_parameter=P,Volume,Bad,1,4");
  EXPECT_EQ((Texts{"Error (0x00000021)! Fail to set parameter from filter:'Volume'\n"}),
            capture.Texts("<ERR>"));
}

TEST_F(FilterParameters, EveryMalformedFieldIsNamed) {
  const std::pair<const char *, Texts> aCases[] = {
      {"pszFilterName", {"", "P"}},
      {"pszParameterName", {"P,F"}},
      {"pszParameter", {"P,F,N"}},
      {"wrong s32Parameter", {"P,F,N,2147483647,4", "P,F,N,-2147483648,4", "P,F,N,99999999999,4"}},
      {"wrong u32ParameterSize", {"P,F,N,1", "P,F,N,1,4294967295", "P,F,N,1,-1"}}};
  for (const auto &[pszField, rests] : aCases) {
    for (const std::string &rest : rests) {
      SCOPED_TRACE(rest);
      const std::string text = std::string(pszField) + " is NULL, format error\n";
      EXPECT_EQ("_ZE_KEST_Debug_Cmd_SetParameter " + text,
                PrintsOf(("kest_debug_set_parameter=" + rest).c_str(), ZE_KEST_INVALID_ARGUMENT).back());
    }
  }
  const ReportCapture capture;
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Debug_SetParameter("kest_debug_set_parameter"));
  EXPECT_TRUE(capture.Has("<ERR>", "pszCmd is NULL, format error\n"));
}

TEST_F(FilterParameters, TheSupportedOnesAreListedInOrder) {
  EXPECT_EQ((Texts{"kest_debug_node=parameter\n"}), PrintsOf("kest_debug_list=parameter"));
  ZE_KEST_SupportedParameter_s stSecond = {"Mute", "u32", 4, 0, nullptr};
  const ZE_KEST_SupportedParameter_s stFirst = {"Gain", "s32, dB", 4, 0, &stSecond};
  ze_kest_Debug_SetSupportedParameterList(&stFirst);
  EXPECT_EQ((Texts{"kest_debug_node=parameter\n", "'Gain', 's32, dB', '4'\n", "'Mute', 'u32', '4'\n"}),
            PrintsOf("kest_debug_list=parameter"));
  ze_kest_Debug_SetSupportedParameterList(nullptr);
}

TEST(ParameterQuery, ChecksItsArgumentsInOrderAndReadsNothing) {
  const ReportCapture capture;
  uint32_t u32Value = 5;
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Debug_GetParameter(nullptr, nullptr, 0));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Debug_GetParameter("x", nullptr, 0));
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Debug_GetParameter("x", &u32Value, 0));
  EXPECT_EQ(ZE_KEST_NOT_INITIALISED, ze_kest_Debug_GetParameter("x", &u32Value, 4));
  EXPECT_EQ((Texts{"pszParameterName is NULL.\n", "pData is NULL.\n", "Invalid parameter: sztSize!\n",
                   "Err! Not initialized yet!\n"}),
            capture.Texts("<ERR>"));
  const DebugLayer layer;
  const ReportCapture captureUp;
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_GetParameter("x", &u32Value, 4));
  EXPECT_EQ(5u, u32Value);
  EXPECT_EQ((Texts{"pszParameterName:x\n"}), captureUp.Texts("<INFO>"));
  EXPECT_EQ((Texts{"\n"}), captureUp.Texts("<PRINT>"));
}

}  // namespace
}  // namespace kest::test
