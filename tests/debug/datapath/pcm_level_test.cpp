// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "debug/datapath/requests.h"
#include "tests/support/requests.h"

using kest::_ZE_KEST_Debug_Cmd_CalPcmLev;
using kest::test::ExpectOdd;
using kest::test::ExpectTaken;
using kest::test::PcmLevel;

TEST(PcmLevel, IsAskedOfAFilterForSomeCyclesUntilItIsSwitchedOff) {
  ExpectTaken(
      _ZE_KEST_Debug_Cmd_CalPcmLev, PcmLevel,
      {{"kest_calpcmlev=main,mix,100",
        {"<INFO>pszLine=kest_calpcmlev=main,mix,100\n", "<INFO>pszSub3=main,mix,100,pszSub=kest_calpcmlev\n",
         "<PRINT>[CAL_PCM_LEV]pszSub3=mix,100,pszSub2=main\n", "<PRINT>[CAL_PCM_LEV]Cmd=main\n",
         "<PRINT>[CAL_PCM_LEV]Pipeline Name=main\n",
         "<PRINT>[CAL_PCM_LEV]pszSub3=100,pszSub2=main,pszSub1=mix\n", "<PRINT>[CAL_PCM_LEV]Cmd=mix\n",
         "<PRINT>[CAL_PCM_LEV]Filter Name=mix\n", "<PRINT>[CAL_PCM_LEV]MaxCount=100 Count=100\n"},
        "16|main|mix|100|100"},
       {"kest_calpcmlev=off",
        {"<INFO>pszLine=kest_calpcmlev=off\n", "<INFO>pszSub3=off,pszSub=kest_calpcmlev\n",
         "<PRINT>[CAL_PCM_LEV]pszSub3=(null),pszSub2=off\n", "<PRINT>[CAL_PCM_LEV]Cmd=off\n",
         "<PRINT>[CAL_PCM_LEV]Target=off\n"},
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
