// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/requests.h"

#include <gtest/gtest.h>

#include "tests/support/requests.h"

namespace kest::test {

TEST(TestTone, IsAskedOfAnInputPortUntilItIsSwitchedOff) {
  ExpectTaken(_ZE_KEST_Debug_Cmd_SendTestTone, TestTone,
              {{"kest_send_test_tone=main,mix:3",
                {"<INFO>pszSub3=main,mix:3,pszSub=kest_send_test_tone\n",
                 "<PRINT>[SEND_TEST_TONE]pszSub3=mix:3,pszSub1=main\n", "<PRINT>[SEND_TEST_TONE]Cmd=main\n",
                 "<PRINT>[SEND_TEST_TONE]Pipeline Name=main\n", "<PRINT>[SEND_TEST_TONE]Filter Name=mix\n",
                 "<PRINT>[SEND_TEST_TONE]Input Port Number=3\n"},
                "16|main|mix|3"},
               {"kest_send_test_tone=off",
                {"<INFO>pszSub3=off,pszSub=kest_send_test_tone\n",
                 "<PRINT>[SEND_TEST_TONE]pszSub3=(null),pszSub1=off\n", "<PRINT>[SEND_TEST_TONE]Cmd=off\n",
                 "<PRINT>[SEND_TEST_TONE]Target=off\n"},
                "0|||0"}});
}

TEST(TestTone, IsNotAskedForWithoutAPortThoughThePipelineNameIsTaken) {
  ExpectOdd(_ZE_KEST_Debug_Cmd_SendTestTone, TestTone,
            {{"another=1", 8, "", "0|||0"},
             {"kest_send_test_tone=main", 8, "pszSub2", "0|main||0"},
             {"kest_send_test_tone=aux,mix", 8, "pszSub2", "0|aux||0"},
             {"kest_send_test_tone=,:-1", 0, "", "16|aux||4294967295"},
             {"kest_send_test_tone=,mix:", 0, "", "16|aux|mix|0"},
             {"kest_send_test_tone", 8, "pszSub1", "16|aux|mix|0"},
             {nullptr, 8, "pszSub", "16|aux|mix|0"},
             {"kest_send_test_tones", 8, "", "0|||0"}});
}

TEST(PcmLevel, IsAskedOfAFilterForSomeCyclesUntilItIsSwitchedOff) {
  ExpectTaken(
      _ZE_KEST_Debug_Cmd_CalPcmLev, PcmLevel,
      {{"kest_calpcmlev=main,mix,100",
        {"<INFO>pszSub3=main,mix,100,pszSub=kest_calpcmlev\n",
         "<PRINT>[CAL_PCM_LEV]pszSub3=mix,100,pszSub2=main\n", "<PRINT>[CAL_PCM_LEV]Cmd=main\n",
         "<PRINT>[CAL_PCM_LEV]Pipeline Name=main\n",
         "<PRINT>[CAL_PCM_LEV]pszSub3=100,pszSub2=main,pszSub1=mix\n", "<PRINT>[CAL_PCM_LEV]Cmd=mix\n",
         "<PRINT>[CAL_PCM_LEV]Filter Name=mix\n", "<PRINT>[CAL_PCM_LEV]MaxCount=100 Count=100\n"},
        "16|main|mix|100|100"},
       {"kest_calpcmlev=off",
        {"<INFO>pszSub3=off,pszSub=kest_calpcmlev\n", "<PRINT>[CAL_PCM_LEV]pszSub3=(null),pszSub2=off\n",
         "<PRINT>[CAL_PCM_LEV]Cmd=off\n", "<PRINT>[CAL_PCM_LEV]Target=off\n"},
        "0|||0|0"}});
}

TEST(PcmLevel, WithoutCyclesIsForNoneWithoutAFilterIsRefusedAndAnotherCommandAsksEveryFilter) {
  ExpectOdd(_ZE_KEST_Debug_Cmd_CalPcmLev, PcmLevel,
            {{"kest_calpcmlev=main,mix,", 0, "", "16|main|mix|0|0"},
             {"kest_calpcmlev=,,7", 0, "", "16|main|mix|7|7"},
             {"kest_calpcmlev=,eq", 0, "", "16|main|eq|0|0"},
             {"kest_calpcmlev=aux", 8, "pszSub1", "16|aux|eq|0|0"},
             {"kest_calpcmlev", 8, "pszSub2", "16|aux|eq|0|0"},
             {nullptr, 8, "pszSub", "16|aux|eq|0|0"},
             {"kest_calpcmlev=off", 0, "", "0|||0|0"},
             {"kest_calpcmlevel=off", 8, "", "16|||0|0"}});
}

TEST(DataRate, IsAskedOfTwoPortsUntilItIsSwitchedOff) {
  ExpectTaken(
      _ZE_KEST_Debug_Cmd_CalculateDataRate, DataRate,
      {{"kest_calculate_data_rate=main,mix:1,2",
        {"<INFO>pszSub4=main,mix:1,2,pszSub=kest_calculate_data_rate\n",
         "<PRINT>[CAL_DATA_RATE]pszSub4=mix:1,2,pszSub1=main\n", "<PRINT>[CAL_DATA_RATE]Cmd=main\n",
         "<PRINT>[CAL_DATA_RATE]Pipeline Name=main\n", "<PRINT>[CAL_DATA_RATE]Filter Name=mix\n",
         "<PRINT>[CAL_DATA_RATE]Input Port Number=1\n", "<PRINT>[CAL_DATA_RATE]Output Port Number=2\n"},
        "16|main|mix|1|2"},
       {"kest_calculate_data_rate=off",
        {"<INFO>pszSub4=off,pszSub=kest_calculate_data_rate\n",
         "<PRINT>[CAL_DATA_RATE]pszSub4=(null),pszSub1=off\n", "<PRINT>[CAL_DATA_RATE]Cmd=off\n",
         "<PRINT>[CAL_DATA_RATE]Target=off\n"},
        "0|||0|0"}});
}

TEST(DataRate, IsNotAskedForWithoutBothPortsThoughTheNamesAreTakenAndAnotherCommandLeavesItAlone) {
  ExpectOdd(_ZE_KEST_Debug_Cmd_CalculateDataRate, DataRate,
            {{"kest_calculate_data_rate=off", 0, "", "0|||0|0"},
             {"kest_calculate_data_rate=main", 8, "pszSub2", "0|main||0|0"},
             {"kest_calculate_data_rate=,mix", 8, "pszSub3", "0|main|mix|0|0"},
             {"kest_calculate_data_rate=aux,eq:1", 8, "pszSub3", "0|aux|eq|0|0"},
             {"kest_calculate_data_rate=,:x,7y", 0, "", "16|aux|eq|0|7"},
             {"kest_calculate_data_rate", 8, "pszSub1", "16|aux|eq|0|7"},
             {nullptr, 8, "pszSub", "16|aux|eq|0|7"},
             {"kest_calculate_data=off", 8, "", "16|aux|eq|0|7"}});
}

}  // namespace kest::test
