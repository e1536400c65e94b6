// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "debug/datapath/requests.h"
#include "tests/support/requests.h"

using kest::_ZE_KEST_Debug_Cmd_SendTestTone;
using kest::test::ExpectOdd;
using kest::test::ExpectTaken;
using kest::test::TestTone;

TEST(TestTone, IsAskedOfAnInputPortUntilItIsSwitchedOff) {
  ExpectTaken(_ZE_KEST_Debug_Cmd_SendTestTone, TestTone,
              {{"kest_send_test_tone=main,mix:3",
                {"<INFO>pszLine=kest_send_test_tone=main,mix:3\n",
                 "<INFO>pszSub3=main,mix:3,pszSub=kest_send_test_tone\n",
                 "<PRINT>[SEND_TEST_TONE]pszSub3=mix:3,pszSub1=main\n", "<PRINT>[SEND_TEST_TONE]Cmd=main\n",
                 "<PRINT>[SEND_TEST_TONE]Pipeline Name=main\n", "<PRINT>[SEND_TEST_TONE]Filter Name=mix\n",
                 "<PRINT>[SEND_TEST_TONE]Input Port Number=3\n"},
                "16|main|mix|3"},
               {"kest_send_test_tone=off",
                {"<INFO>pszLine=kest_send_test_tone=off\n", "<INFO>pszSub3=off,pszSub=kest_send_test_tone\n",
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
