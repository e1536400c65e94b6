// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "debug/datapath/requests.h"
#include "tests/support/requests.h"

using kest::_ZE_KEST_Debug_Cmd_CalculateDataRate;
using kest::test::DataRate;
using kest::test::ExpectOdd;
using kest::test::ExpectTaken;

TEST(DataRate, IsAskedOfTwoPortsUntilItIsSwitchedOff) {
  ExpectTaken(
      _ZE_KEST_Debug_Cmd_CalculateDataRate, DataRate,
      {{"kest_calculate_data_rate=main,mix:1,2",
        {"<INFO>pszLine=kest_calculate_data_rate=main,mix:1,2\n",
         "<INFO>pszSub4=main,mix:1,2,pszSub=kest_calculate_data_rate\n",
         "<PRINT>[CAL_DATA_RATE]pszSub4=mix:1,2,pszSub1=main\n", "<PRINT>[CAL_DATA_RATE]Cmd=main\n",
         "<PRINT>[CAL_DATA_RATE]Pipeline Name=main\n", "<PRINT>[CAL_DATA_RATE]Filter Name=mix\n",
         "<PRINT>[CAL_DATA_RATE]Input Port Number=1\n", "<PRINT>[CAL_DATA_RATE]Output Port Number=2\n"},
        "16|main|mix|1|2"},
       {"kest_calculate_data_rate=off",
        {"<INFO>pszLine=kest_calculate_data_rate=off\n",
         "<INFO>pszSub4=off,pszSub=kest_calculate_data_rate\n",
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
