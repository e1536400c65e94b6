// SPDX-License-Identifier: Apache-2.0
#include "tests/support/library_test.h"
#include "tests/support/requests.h"

namespace kest::test {
namespace {

using AllRequests = Texts;

AllRequests AllGlobals() {
  return {PerfTarget(), StatusQuery(), TestTone(), PcmLevel(), DataRate()};
}

// Every request made, by the last of them first: a line changes only what it passes on its way.
void MakeEveryRequest() {
  for (const char *pszLine :
       {"kest_calculate_data_rate=p5,f5:1,2", "kest_calpcmlev=p4,f4,9", "kest_send_test_tone=p3,f3:7",
        "kest_process_status=filter,p2:f2", "kest_perf_event_target=filter,p1:f1"}) {
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_SetParameter(pszLine)) << pszLine;
  }
  EXPECT_EQ((AllRequests{"32|p1|f1", "32|p2|f2", "16|p3|f3|7", "16|p4|f4|9|9", "16|p5|f5|1|2"}),
            AllGlobals());
}

TEST(HandlerChain, ALineChangesTheRequestsThatItComesByUntilOneTakesIt) {
  const DebugLayer layer;
  struct {
    const char *pszLine;
    uint32_t u32Result;
    AllRequests globals;
  } const aLines[] = {
      {"kest_log_size=5", 0, {"32|p1|f1", "32|p2|f2", "16|p3|f3|7", "16|p4|f4|9|9", "16|p5|f5|1|2"}},
      {"kest_perf_event_target=none", 0, {"0||", "32|p2|f2", "16|p3|f3|7", "16|p4|f4|9|9", "16|p5|f5|1|2"}},
      {"kest_process_status=none", 0, {"0||", "0||", "16|p3|f3|7", "16|p4|f4|9|9", "16|p5|f5|1|2"}},
      {"kest_send_test_tone=off", 0, {"0||", "0||", "0|||0", "16|p4|f4|9|9", "16|p5|f5|1|2"}},
      {"kest_calpcmlev=off", 0, {"0||", "0||", "0|||0", "0|||0|0", "16|p5|f5|1|2"}},
      {"kest_calculate_data_rate=off", 0, {"0||", "0||", "0|||0", "16|||9|9", "0|||0|0"}},
      {"kest_log_level=loud", 8, {"0||", "0||", "0|||0", "16|||9|9", "16|p5|f5|1|2"}},
      {"no_equals_sign", 8, {"0||", "0||", "0|||0", "16|||9|9", "16|p5|f5|1|2"}},
      {"", 8, {"0||", "0||", "0|||0", "16|||9|9", "16|p5|f5|1|2"}},
      // Refused by its own handler, so it goes on to the others.
      {"kest_perf_event_target=pipeline,", 8, {"16|p1|f1", "0||", "0|||0", "16|||9|9", "16|p5|f5|1|2"}},
  };
  for (const auto &line : aLines) {
    MakeEveryRequest();
    EXPECT_EQ(line.u32Result, ze_kest_Debug_SetParameter(line.pszLine)) << line.pszLine;
    EXPECT_EQ(line.globals, AllGlobals()) << line.pszLine;
  }
}

TEST(HandlerChain, AStartFindsNoRequest) {
  for (uint32_t *pu32 :
       {&u32KestPerfEventTarget, &u32KestQueryProcessStatus, &u32KestSendTestTone,
        &u32KestSendTestToneInputPort, &u32KestCalPcmLev, &u32KestCalPcmLevMaxCount, &u32KestCalPcmLevCount,
        &u32KestCalculateDataRate, &u32KestCalculateDataRateInputPort, &u32KestCalculateDataRateOutputPort}) {
    *pu32 = 16;
  }
  const DebugLayer layer;
  EXPECT_EQ((AllRequests{"0||", "0||", "0|||0", "0|||0|0", "0|||0|0"}), AllGlobals());
}

}  // namespace
}  // namespace kest::test
