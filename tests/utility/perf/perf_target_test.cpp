// SPDX-License-Identifier: Apache-2.0
#include "utility/perf/perf_target.h"

#include <gtest/gtest.h>

#include "tests/support/requests.h"

namespace kest::test {

TEST(PerfTarget, IsAPipelineAFilterOrNothing) {
  ExpectTaken(_ZE_KEST_Debug_Cmd_SetPerfEventTarget, PerfTarget,
              {{"kest_perf_event_target=filter,main:eq",
                {"<INFO>[PERF_EVENT]Cmd=filter\n", "<INFO>[PERF_EVENT]Pipeline Name=main\n",
                 "<INFO>[PERF_EVENT]Filter Name=eq\n"},
                "32|main|eq"},
               {"kest_perf_event_target=pipeline,Speaker=a,b:c",  // behind the first "," all is the name
                {"<INFO>[PERF_EVENT]Cmd=pipeline\n", "<INFO>[PERF_EVENT]Pipeline Name=Speaker=a,b:c\n"},
                "16|Speaker=a,b:c|eq"},
               {"kest_perf_event_target=none", {"<INFO>[PERF_EVENT]Cmd=none\n"}, "0||"}});
}

TEST(PerfTarget, KeepsItsNamesButTakesTheKindWhenNamesAreMissing) {
  ExpectOdd(_ZE_KEST_Debug_Cmd_SetPerfEventTarget, PerfTarget,
            {{"kest_perf_event_target=filter,main:eq", 0, "", "32|main|eq"},
             {"kest_perf_event_target=pipeline,", 8, "", "16|main|eq"},
             {"kest_perf_event_target=filter,:", 8, "", "32|main|eq"},
             {"kest_perf_event_target=pipeline", 8, "", "16|main|eq"},
             {"kest_perf_event_target=filter", 8, "pszSub2", "32|main|eq"},
             {"kest_perf_event_target=filter,:gain", 0, "", "32|main|gain"},
             {"kest_perf_event_target=filter,aux:", 0, "", "32|aux|gain"},
             {"kest_perf_event_target=filter,sub", 0, "", "32|sub|gain"},
             {"kest_perf_event_target=filters,x:y", 8, "", "32|sub|gain"},
             {"kest_perf_event_target=", 8, "", "32|sub|gain"},
             {"kest_perf_event_target", 8, "pszSub1", "32|sub|gain"},
             {nullptr, 8, "pszSub", "32|sub|gain"},
             {"kest_perf_event_targets=none", 8, "", "0||"}});
}

}  // namespace kest::test
