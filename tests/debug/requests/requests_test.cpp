// SPDX-License-Identifier: Apache-2.0
// The commands that publish a request for filters, what then stands in its globals, and the chain that
// offers every line to one command after the other.
#include "debug/requests/requests.h"

#include <cstring>

#include "tests/support/library_test.h"

namespace kest::test {
namespace {

// What stands in a request's globals; a name that is not terminated shows as one of 64 characters.
struct Globals {
  uint32_t u32State;
  std::string pipeline;
  std::string filter;
  std::vector<uint32_t> numbers = {};  // ports or counts

  bool operator==(const Globals &other) const {
    return u32State == other.u32State && pipeline == other.pipeline && filter == other.filter &&
           numbers == other.numbers;
  }
};

void PrintTo(const Globals &globals, std::ostream *pStream) {
  *pStream << globals.u32State << " '" << globals.pipeline << "' '" << globals.filter << "'";
  for (const uint32_t u32 : globals.numbers)
    *pStream << ' ' << u32;
}

// A line of a form that is meant: every report behind that of the line itself, "#" for the request's mark.
struct TakenLine {
  std::string line;
  Globals globals;
  std::string reports;
};

// A line with something missing: what is reported as NULL, "" for nothing.
struct OddLine {
  const char *pszLine;
  uint32_t u32Result;
  std::string missing;
  Globals globals;
};

struct Request {
  const char *pszTestName;
  uint32_t (*pfnHandler)(const char *);
  std::string mark;
  uint32_t *pu32State;
  std::vector<uint32_t *> numbers;
  const char *pszName1;
  const char *pszName2;
  std::vector<TakenLine> taken;
  std::vector<OddLine> odd;

  [[nodiscard]] Globals Now() const {
    Globals globals = {*pu32State,
                       std::string(pszName1, strnlen(pszName1, ZE_KEST_NAME_SIZE)),
                       std::string(pszName2, strnlen(pszName2, ZE_KEST_NAME_SIZE)),
                       {}};
    for (const uint32_t *pu32 : numbers)
      globals.numbers.push_back(*pu32);
    return globals;
  }
};

void PrintTo(const Request &request, std::ostream *pStream) {
  *pStream << request.pszTestName;
}

const Request kRequests[] = {
    {"PerfTarget",
     _ZE_KEST_Debug_Cmd_SetPerfEventTarget,
     "<INFO>[PERF_EVENT]",
     &u32KestPerfEventTarget,
     {},
     szKestPerfEventTargetName1,
     szKestPerfEventTargetName2,
     {{"kest_perf_event_target=filter,main:eq",
       {32, "main", "eq"},
       "#Cmd=filter\n#Pipeline Name=main\n#Filter Name=eq\n"},
      // Behind the first "," all is the name.
      {"kest_perf_event_target=pipeline,Speaker=a,b:c",
       {16, "Speaker=a,b:c", "eq"},
       "#Cmd=pipeline\n#Pipeline Name=Speaker=a,b:c\n"},
      {"kest_perf_event_target=none", {0, "", ""}, "#Cmd=none\n"}},
     // It keeps its names but takes the kind when names are missing.
     {{"kest_perf_event_target=filter,main:eq", 0, "", {32, "main", "eq"}},
      {"kest_perf_event_target=pipeline,", 8, "", {16, "main", "eq"}},
      {"kest_perf_event_target=filter,:", 8, "", {32, "main", "eq"}},
      {"kest_perf_event_target=pipeline", 8, "", {16, "main", "eq"}},
      {"kest_perf_event_target=filter", 8, "pszSub2", {32, "main", "eq"}},
      {"kest_perf_event_target=filter,:gain", 0, "", {32, "main", "gain"}},
      {"kest_perf_event_target=filter,aux:", 0, "", {32, "aux", "gain"}},
      {"kest_perf_event_target=filter,sub", 0, "", {32, "sub", "gain"}},
      {"kest_perf_event_target=filters,x:y", 8, "", {32, "sub", "gain"}},
      {"kest_perf_event_target=", 8, "", {32, "sub", "gain"}},
      {"kest_perf_event_target", 8, "pszSub1", {32, "sub", "gain"}},
      {nullptr, 8, "pszSub", {32, "sub", "gain"}},
      {"kest_perf_event_targets=none", 8, "", {0, "", ""}}}},

    {"ProcessStatus",
     _ZE_KEST_Debug_Cmd_QueryProcessStatus,
     "<INFO>[PROCESS_STATUS]",
     &u32KestQueryProcessStatus,
     {},
     szKestQueryProcessStatusName1,
     szKestQueryProcessStatusName2,
     {{"kest_process_status=filter,Decoder_13:Volume",
       {32, "Decoder_13", "Volume"},
       "<INFO>pszSub3=filter,Decoder_13:Volume,pszSub=kest_process_status\n"
       "<INFO>pszSub3=Decoder_13:Volume,pszSub1=filter\n#Cmd=filter\n#Target=filter\n"
       "<INFO>pszSub3=Volume,pszSub2=Decoder_13\n#Pipeline Name=Decoder_13\n#Filter Name=Volume\n"},
      {"kest_process_status=pipeline,SpeakerOutput",
       {16, "SpeakerOutput", "Volume"},
       "<INFO>pszSub3=pipeline,SpeakerOutput,pszSub=kest_process_status\n"
       "<INFO>pszSub3=SpeakerOutput,pszSub1=pipeline\n#Cmd=pipeline\n#Target=pipeline\n"
       "#Pipeline Name=SpeakerOutput\n"},
      {"kest_process_status=none",
       {0, "", ""},
       "<INFO>pszSub3=none,pszSub=kest_process_status\n<INFO>pszSub3=(null),pszSub1=none\n"
       "#Cmd=none\n#Target=none\n"}},
     // The same here.
     {{"kest_process_status=filter,main:eq", 0, "", {32, "main", "eq"}},
      {"kest_process_status=pipeline,", 8, "", {16, "main", "eq"}},
      {"kest_process_status=filter,:", 8, "", {32, "main", "eq"}},
      {"kest_process_status=pipeline", 8, "", {16, "main", "eq"}},
      {"kest_process_status=filter", 8, "pszSub2", {32, "main", "eq"}},
      {"kest_process_status=filter,:gain", 0, "", {32, "main", "gain"}},
      {"kest_process_status=filter,aux", 0, "", {32, "aux", "gain"}},
      {"kest_process_status=nobody", 8, "", {32, "aux", "gain"}},
      {"kest_process_status", 8, "pszSub1", {32, "aux", "gain"}},
      {nullptr, 8, "pszSub", {32, "aux", "gain"}},
      {"kest_process_state=none", 8, "", {0, "", ""}}}},

    {"TestTone",
     _ZE_KEST_Debug_Cmd_SendTestTone,
     "<PRINT>[SEND_TEST_TONE]",
     &u32KestSendTestTone,
     {&u32KestSendTestToneInputPort},
     szKestSendTestToneName1,
     szKestSendTestToneName2,
     {{"kest_send_test_tone=main,mix:3",
       {16, "main", "mix", {3}},
       "<INFO>pszSub3=main,mix:3,pszSub=kest_send_test_tone\n#pszSub3=mix:3,pszSub1=main\n#Cmd=main\n"
       "#Pipeline Name=main\n#Filter Name=mix\n#Input Port Number=3\n"},
      {"kest_send_test_tone=off",
       {0, "", "", {0}},
       "<INFO>pszSub3=off,pszSub=kest_send_test_tone\n#pszSub3=(null),pszSub1=off\n#Cmd=off\n"
       "#Target=off\n"}},
     // None is asked for without a port, though the pipeline's name is taken.
     {{"another=1", 8, "", {0, "", "", {0}}},
      {"kest_send_test_tone=main", 8, "pszSub2", {0, "main", "", {0}}},
      {"kest_send_test_tone=aux,mix", 8, "pszSub2", {0, "aux", "", {0}}},
      {"kest_send_test_tone=,:-1", 0, "", {16, "aux", "", {4294967295}}},
      {"kest_send_test_tone=,mix:", 0, "", {16, "aux", "mix", {0}}},
      {"kest_send_test_tone", 8, "pszSub1", {16, "aux", "mix", {0}}},
      {nullptr, 8, "pszSub", {16, "aux", "mix", {0}}},
      {"kest_send_test_tones", 8, "", {0, "", "", {0}}}}},

    {"PcmLevel",
     _ZE_KEST_Debug_Cmd_CalPcmLev,
     "<PRINT>[CAL_PCM_LEV]",
     &u32KestCalPcmLev,
     {&u32KestCalPcmLevMaxCount, &u32KestCalPcmLevCount},
     szKestCalPcmLevName1,
     szKestCalPcmLevName2,
     {{"kest_calpcmlev=main,mix,100",
       {16, "main", "mix", {100, 100}},
       "<INFO>pszSub3=main,mix,100,pszSub=kest_calpcmlev\n#pszSub3=mix,100,pszSub2=main\n#Cmd=main\n"
       "#Pipeline Name=main\n#pszSub3=100,pszSub2=main,pszSub1=mix\n#Cmd=mix\n#Filter Name=mix\n"
       "#MaxCount=100 Count=100\n"},
      {"kest_calpcmlev=off",
       {0, "", "", {0, 0}},
       "<INFO>pszSub3=off,pszSub=kest_calpcmlev\n#pszSub3=(null),pszSub2=off\n#Cmd=off\n#Target=off\n"}},
     // Without cycles it is for none, without a filter refused, and another command asks every filter.
     {{"kest_calpcmlev=main,mix,", 0, "", {16, "main", "mix", {0, 0}}},
      {"kest_calpcmlev=,,7", 0, "", {16, "main", "mix", {7, 7}}},
      {"kest_calpcmlev=,eq", 0, "", {16, "main", "eq", {0, 0}}},
      {"kest_calpcmlev=aux", 8, "pszSub1", {16, "aux", "eq", {0, 0}}},
      {"kest_calpcmlev", 8, "pszSub2", {16, "aux", "eq", {0, 0}}},
      {nullptr, 8, "pszSub", {16, "aux", "eq", {0, 0}}},
      {"kest_calpcmlev=off", 0, "", {0, "", "", {0, 0}}},
      {"kest_calpcmlevel=off", 8, "", {16, "", "", {0, 0}}}}},

    {"DataRate",
     _ZE_KEST_Debug_Cmd_CalculateDataRate,
     "<PRINT>[CAL_DATA_RATE]",
     &u32KestCalculateDataRate,
     {&u32KestCalculateDataRateInputPort, &u32KestCalculateDataRateOutputPort},
     szKestCalculateDataRateName1,
     szKestCalculateDataRateName2,
     {{"kest_calculate_data_rate=main,mix:1,2",
       {16, "main", "mix", {1, 2}},
       "<INFO>pszSub4=main,mix:1,2,pszSub=kest_calculate_data_rate\n#pszSub4=mix:1,2,pszSub1=main\n"
       "#Cmd=main\n#Pipeline Name=main\n#Filter Name=mix\n#Input Port Number=1\n#Output Port Number=2\n"},
      {"kest_calculate_data_rate=off",
       {0, "", "", {0, 0}},
       "<INFO>pszSub4=off,pszSub=kest_calculate_data_rate\n#pszSub4=(null),pszSub1=off\n#Cmd=off\n"
       "#Target=off\n"}},
     // None is asked for without both ports, though the names are taken, and another command leaves it alone.
     {{"kest_calculate_data_rate=off", 0, "", {0, "", "", {0, 0}}},
      {"kest_calculate_data_rate=main", 8, "pszSub2", {0, "main", "", {0, 0}}},
      {"kest_calculate_data_rate=,mix", 8, "pszSub3", {0, "main", "mix", {0, 0}}},
      {"kest_calculate_data_rate=aux,eq:1", 8, "pszSub3", {0, "aux", "eq", {0, 0}}},
      {"kest_calculate_data_rate=,:x,7y", 0, "", {16, "aux", "eq", {0, 7}}},
      {"kest_calculate_data_rate", 8, "pszSub1", {16, "aux", "eq", {0, 7}}},
      {nullptr, 8, "pszSub", {16, "aux", "eq", {0, 7}}},
      {"kest_calculate_data=off", 8, "", {16, "aux", "eq", {0, 7}}}}},
};

// The reports of a taken line as they must come.
std::string Expected(const Request &request, const TakenLine &taken) {
  std::string text = "<INFO>pszLine=" + taken.line + "\n" + taken.reports;
  for (size_t sztMark = 0; (sztMark = text.find('#', sztMark)) != std::string::npos;)
    text.replace(sztMark, 1, request.mark);
  return text;
}

// What MakeEveryRequest makes, and what is left when it is taken back.
const Globals kTarget = {32, "p1", "f1"};
const Globals kQuery = {32, "p2", "f2"};
const Globals kTone = {16, "p3", "f3", {7}};
const Globals kLevel = {16, "p4", "f4", {9, 9}};
const Globals kLevelOfAll = {16, "", "", {9, 9}};
const Globals kRate = {16, "p5", "f5", {1, 2}};
const Globals kNone = {0, "", ""};
const Globals kNoTone = {0, "", "", {0}};
const Globals kNoLevel = {0, "", "", {0, 0}};
const Globals kNoRate = {0, "", "", {0, 0}};

std::vector<Globals> AllGlobals() {
  std::vector<Globals> globals;
  for (const Request &request : kRequests)
    globals.push_back(request.Now());
  return globals;
}

// By the last of them first: a line changes only what it passes on its way.
void MakeEveryRequest() {
  for (const char *pszLine :
       {"kest_calculate_data_rate=p5,f5:1,2", "kest_calpcmlev=p4,f4,9", "kest_send_test_tone=p3,f3:7",
        "kest_process_status=filter,p2:f2", "kest_perf_event_target=filter,p1:f1"})
    Command(pszLine);
  EXPECT_EQ((std::vector<Globals>{kTarget, kQuery, kTone, kLevel, kRate}), AllGlobals());
}

using Requests = ::testing::TestWithParam<Request>;

INSTANTIATE_TEST_SUITE_P(Each, Requests, ::testing::ValuesIn(kRequests),
                         [](const auto &test) { return test.param.pszTestName; });

TEST_P(Requests, AreMadeUntilTheyAreTakenBackAndReportedStepByStep) {
  const Request &request = GetParam();
  for (const TakenLine &taken : request.taken) {
    SCOPED_TRACE(taken.line);
    const ReportCapture capture;
    EXPECT_EQ(ZE_KEST_OK, request.pfnHandler(taken.line.c_str()));
    std::string reports;
    for (const std::string &line : capture.Lines())
      reports += line;
    EXPECT_EQ(Expected(request, taken), reports);
    EXPECT_EQ(taken.globals, request.Now());
  }
}

TEST_P(Requests, WithSomethingMissingKeepWhatWasReadBeforeIt) {
  const Request &request = GetParam();
  for (const OddLine &odd : request.odd) {
    SCOPED_TRACE(odd.pszLine == nullptr ? "no line" : odd.pszLine);
    const ReportCapture capture;
    EXPECT_EQ(odd.u32Result, request.pfnHandler(odd.pszLine));
    EXPECT_EQ(odd.missing.empty() ? Texts{} : Texts{odd.missing + " is NULL, format error\n"},
              capture.Texts("<ERR>"));
    EXPECT_EQ(odd.globals, request.Now());
  }
}

TEST(HandlerChain, ALineChangesTheRequestsThatItComesByUntilOneTakesIt) {
  const DebugLayer layer;
  struct Line {
    const char *pszLine;
    uint32_t u32Result;
    std::vector<Globals> globals;
  };
  const Line aLines[] = {
      {"kest_log_size=5", 0, {kTarget, kQuery, kTone, kLevel, kRate}},
      {"kest_perf_event_target=none", 0, {kNone, kQuery, kTone, kLevel, kRate}},
      {"kest_process_status=none", 0, {kNone, kNone, kTone, kLevel, kRate}},
      {"kest_send_test_tone=off", 0, {kNone, kNone, kNoTone, kLevel, kRate}},
      {"kest_calpcmlev=off", 0, {kNone, kNone, kNoTone, kNoLevel, kRate}},
      {"kest_calculate_data_rate=off", 0, {kNone, kNone, kNoTone, kLevelOfAll, kNoRate}},
      {"kest_log_level=loud", 8, {kNone, kNone, kNoTone, kLevelOfAll, kRate}},
      {"no_equals_sign", 8, {kNone, kNone, kNoTone, kLevelOfAll, kRate}},
      {"", 8, {kNone, kNone, kNoTone, kLevelOfAll, kRate}},
      // Refused by its own handler, so it goes on to the others.
      {"kest_perf_event_target=pipeline,", 8, {{16, "p1", "f1"}, kNone, kNoTone, kLevelOfAll, kRate}},
  };
  for (const auto &[pszLine, u32Result, globals] : aLines) {
    MakeEveryRequest();
    EXPECT_EQ(u32Result, ze_kest_Debug_SetParameter(pszLine)) << pszLine;
    EXPECT_EQ(globals, AllGlobals()) << pszLine;
  }
}

TEST(HandlerChain, AStartFindsNoRequest) {
  for (const Request &request : kRequests) {
    *request.pu32State = 16;
    for (uint32_t *pu32 : request.numbers)
      *pu32 = 16;
  }
  const DebugLayer layer;
  EXPECT_EQ((std::vector<Globals>{kNone, kNone, kNoTone, kNoLevel, kNoRate}), AllGlobals());
}

}  // namespace
}  // namespace kest::test
