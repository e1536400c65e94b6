// SPDX-License-Identifier: Apache-2.0
#include "debug/registry/process_status.h"

#include <gtest/gtest.h>

#include "tests/support/requests.h"

namespace kest::test {

TEST(ProcessStatus, IsAskedOfAFilterAPipelineOrNobody) {
  ExpectTaken(
      _ZE_KEST_Debug_Cmd_QueryProcessStatus, StatusQuery,
      {{"kest_process_status=filter,Decoder_13:Volume",
        {"<INFO>pszSub3=filter,Decoder_13:Volume,pszSub=kest_process_status\n",
         "<INFO>pszSub3=Decoder_13:Volume,pszSub1=filter\n", "<INFO>[PROCESS_STATUS]Cmd=filter\n",
         "<INFO>[PROCESS_STATUS]Target=filter\n", "<INFO>pszSub3=Volume,pszSub2=Decoder_13\n",
         "<INFO>[PROCESS_STATUS]Pipeline Name=Decoder_13\n", "<INFO>[PROCESS_STATUS]Filter Name=Volume\n"},
        "32|Decoder_13|Volume"},
       {"kest_process_status=pipeline,SpeakerOutput",
        {"<INFO>pszSub3=pipeline,SpeakerOutput,pszSub=kest_process_status\n",
         "<INFO>pszSub3=SpeakerOutput,pszSub1=pipeline\n", "<INFO>[PROCESS_STATUS]Cmd=pipeline\n",
         "<INFO>[PROCESS_STATUS]Target=pipeline\n", "<INFO>[PROCESS_STATUS]Pipeline Name=SpeakerOutput\n"},
        "16|SpeakerOutput|Volume"},
       {"kest_process_status=none",
        {"<INFO>pszSub3=none,pszSub=kest_process_status\n", "<INFO>pszSub3=(null),pszSub1=none\n",
         "<INFO>[PROCESS_STATUS]Cmd=none\n", "<INFO>[PROCESS_STATUS]Target=none\n"},
        "0||"}});
}

TEST(ProcessStatus, KeepsItsNamesButTakesTheKindWhenNamesAreMissing) {
  ExpectOdd(_ZE_KEST_Debug_Cmd_QueryProcessStatus, StatusQuery,
            {{"kest_process_status=filter,main:eq", 0, "", "32|main|eq"},
             {"kest_process_status=pipeline,", 8, "", "16|main|eq"},
             {"kest_process_status=filter,:", 8, "", "32|main|eq"},
             {"kest_process_status=pipeline", 8, "", "16|main|eq"},
             {"kest_process_status=filter", 8, "pszSub2", "32|main|eq"},
             {"kest_process_status=filter,:gain", 0, "", "32|main|gain"},
             {"kest_process_status=filter,aux", 0, "", "32|aux|gain"},
             {"kest_process_status=nobody", 8, "", "32|aux|gain"},
             {"kest_process_status", 8, "pszSub1", "32|aux|gain"},
             {nullptr, 8, "pszSub", "32|aux|gain"},
             {"kest_process_state=none", 8, "", "0||"}});
}

}  // namespace kest::test
