// SPDX-License-Identifier: Apache-2.0
// --check finds each fault by the test for it, and nothing else.
#include <algorithm>
#include <csignal>
#include <map>
#include <sstream>

#include <nlohmann/json.hpp>

#include "tests/player/player_process.h"
#include "tests/player/player_test.h"

namespace kest::test {
namespace {

using Json = nlohmann::json;
using Results = std::map<std::string, std::string>;  // of each test that did not succeed, skipped ones apart

const std::string kModules = KEST_FAULTY_MODULES;

PlayerResult RunCheck(const std::string &file, std::vector<std::string> options = {}) {
  std::vector<std::string> arguments = {"--check", kModules + "/" + file, "--seed", "1"};
  arguments.insert(arguments.end(), options.begin(), options.end());
  return PlayerProcess(arguments).Wait();
}

// "Group.Test=result Group.Test=result".
Results Parse(const std::string &text) {
  Results results;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    const size_t sign = word.find('=');
    results[word.substr(0, sign)] = word.substr(sign + 1);
  }
  return results;
}

Results ResultsOf(const PlayerResult &result) {
  const Json json = Json::parse(result.out, nullptr, false);
  EXPECT_FALSE(json.is_discarded()) << result.out << result.err;
  Results results;
  if (json.is_discarded()) return results;
  for (const Json &row : json["results"]) {
    const std::string name = row["test"];
    const std::string verdict = row["result"];
    // How long something takes is the machine's affair; its own fault makes it certain.
    if (verdict == "warning" && (name == "RealTime.WorstTurn" || name == "Load.ScanTime")) continue;
    if (verdict != "success" && verdict != "skipped") results[name] = verdict;
  }
  return results;
}

struct Fault {
  const char *kind;
  const char *results;  // of --check: what does not succeed
};

void PrintTo(const Fault &fault, std::ostream *out) {
  *out << fault.kind;
}

const Fault kFaults[] = {
    {"Sound", ""},
    {"SoundDelay", ""},
    {"SoundMetadata", ""},
    {"MayDiffer", ""},
    {"MayBlock", ""},
    {"Leak", "Life.Leaks=failed"},
    {"DestroyNeedsTurn", "Life.DestroyUnused=crashed"},
    {"FloatingPoint", "Life.Process=failed"},
    {"Descriptor", "Life.Process=failed"},
    {"SharedState", "Life.TwoInstances=failed Result.Splits=warning"},
    {"RefusesSilently", "Life.Refusal=failed"},
    {"ConfigSilently", "Life.Configuration=failed"},
    {"UncheckedAllocation", "Life.FailedAllocation=crashed"},
    {"FillsMemory", "Life.Refusal=crashed Life.FailedAllocation=crashed"},
    {"RefusesThree", "Shapes.Formats=failed"},
    {"StuckAtSeventeen", "Shapes.Amounts=failed"},
    {"IgnoresWrap",
     "Shapes.Wraps=failed Bounds.GuardPages=crashed Bounds.Unwritten=failed Result.Splits=warning"},
    {"WritesBehind", "Bounds.GuardPages=crashed"},
    {"WritesUnasked", "Supply.EmptyInput=failed Supply.Starved=failed"},
    {"ForgetsWhenStarved", "Supply.Starved=failed"},
    {"LosesWhenFull", "Supply.FullOutput=failed Supply.RoomForOne=failed"},
    {"NeedsRoomForTwo", "Supply.RoomForOne=failed"},
    {"NeedsConnection", "Supply.Disconnected=crashed"},
    {"LeavesLast", "Supply.End=failed Supply.RoomForOne=failed"},
    {"PendingForever", "Supply.End=failed"},
    {"ChangesInput", "Bounds.Input=failed"},
    {"ChangesRecord", "Bounds.Records=failed"},
    {"ChangesOutput", "Bounds.Output=failed"},
    {"LeavesUnwritten", "Bounds.Unwritten=failed Result.Splits=warning"},
    {"UsesUnheld", "Bounds.UnheldBytes=failed Result.Splits=warning"},
    {"ReadsTooMuch", "Accounting.Read=failed"},
    {"WritesTooMuch", "Accounting.Written=failed"},
    {"MovesTooMuch", "Accounting.MaxSamples=failed"},
    {"LosesFirst", "Accounting.Total=failed Accounting.Impulse=failed Result.Splits=warning"},
    {"PendingTwice", "Accounting.Pending=failed"},
    {"Drifts", "Accounting.Drift=failed"},
    {"WrongLatency", "Accounting.Impulse=failed Accounting.Total=failed"},
    {"TouchesMetadata", "Metadata.LeftAlone=failed"},
    {"CorruptsBlock", "Metadata.EveryBlock=failed Metadata.FullOutput=failed"},
    {"LosesBlock", "Metadata.EveryBlock=failed Metadata.FullOutput=failed Metadata.InStep=failed"},
    {"AccountsForNoBlock", "Metadata.WholeBlocks=failed"},
    {"DropsWhenFull", "Metadata.FullOutput=failed"},
    {"OutOfStep", "Metadata.InStep=failed Metadata.FullOutput=failed"},
    {"Differs", "Result.Repeat=failed Bounds.UnheldBytes=failed Result.Splits=warning"},
    {"DependsOnSplits", "Result.Splits=warning"},
    {"WrapsAround", "Result.FullScale=warning"},
    {"CallsSystem", "RealTime.SystemCalls=failed"},
    {"Allocates", "RealTime.Allocations=failed RealTime.SystemCalls=failed"},
    {"Locks", "RealTime.Locks=failed"},
    {"NoUnit", "Parameters.Records=failed"},
    {"WrongDefault", "Parameters.Defaults=failed"},
    {"RoundsValue", "Parameters.RoundTrip=failed"},
    {"DividesByLeast", "Parameters.Limits=crashed"},
    {"OddValueKills", "Parameters.RandomSets=crashed Parameters.SecondThread=crashed"},
    {"RacesWithSet", "Parameters.SecondThread=crashed"},
    {"TakesEveryCommand", "Parameters.Commands=failed"},
    {"LongCommandKills", "Parameters.Commands=crashed"},
};

// What this build and machine cannot test is skipped.
Results Without(const Results &skipped, Results results) {
  for (const auto &row : skipped) {
    results.erase(row.first);
  }
  return results;
}

Results SkippedHere() {
  static const Results skipped = [] {
    Results names;
    const Json json = Json::parse(RunCheck("faulty_kinds.so:Sound", {"--json", "--only", "RealTime"}).out);
    for (const Json &row : json["results"]) {
      if (row["result"] == "skipped") names[row["test"]] = "skipped";
    }
    if (names.count("RealTime.Allocations") > 0) {
      names["Life.FailedAllocation"] = names["Life.Leaks"] = "skipped";
    }
    return names;
  }();
  return skipped;
}

// Each check starts a process for every one of its tests, which takes minutes under an emulator or a
// sanitizer.
#if defined(__arm__) || defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kOnlyOneKind = true;
#else
constexpr bool kOnlyOneKind = false;
#endif

class Check : public PlayerTest, public testing::WithParamInterface<Fault> {};

TEST_P(Check, FindsTheFaultAndNothingElse) {
  const Fault &fault = GetParam();
  if (kOnlyOneKind && std::string(fault.kind) != "Sound") GTEST_SKIP() << "one of many, and slow";
  const PlayerResult result = RunCheck(std::string("faulty_kinds.so:") + fault.kind, {"--json"});
  const Results expected = Without(SkippedHere(), Parse(fault.results));
  EXPECT_EQ(expected, ResultsOf(result)) << result.out;
  const bool hasFailed =
      std::any_of(expected.begin(), expected.end(), [](const auto &row) { return row.second != "warning"; });
  EXPECT_EQ(hasFailed ? 1 : 0, result.exitCode);
}

INSTANTIATE_TEST_SUITE_P(Faults, Check, testing::ValuesIn(kFaults),
                         [](const auto &row) { return std::string(row.param.kind); });

using CheckFile = PlayerTest;

TEST_F(CheckFile, FindsFaultsOfTheWholeFile) {
  const struct {
    const char *file;
    const char *test;
    const char *result;
    const char *seen;
  } faults[] = {{"faulty_file_1.so", "Load.Exports", "failed", "a_second_export"},
                {"faulty_file_2.so", "Load.ForeignAbi", "failed", "for version 0"},
                {"faulty_file_3.so", "Load.PastTheEnd", "failed", "for index 2"},
                {"faulty_file_4.so", "Load.Process", "failed", "umask"},
                {"faulty_file_5.so", "Load.ScanTime", "warning", "ms"},
                {"faulty_stack.so", "Load.Stack", "failed", "executable stack"}};
  for (const auto &fault : faults) {
    const PlayerResult result = RunCheck(fault.file, {"--json", "--only", "Load"});
    const Json json = Json::parse(result.out);
    EXPECT_EQ(std::size(faults), json["results"].size()) << fault.file;
    for (const Json &row : json["results"]) {
      const bool isIt = row["test"] == fault.test;
      if (!isIt && row["test"] == "Load.ScanTime") continue;
      EXPECT_EQ(isIt ? fault.result : "success", row["result"]) << fault.file << " " << row;
      if (isIt) {
        EXPECT_THAT(std::string(row["seen"]), HasSubstr(fault.seen));
      }
    }
  }
}

TEST_F(CheckFile, ThatCannotBeLoadedHasItsOwnExitCode) {
  const struct {
    const char *file;
    const char *seen;
  } files[] = {{"faulty_file_6.so", "is_defined_nowhere"},
               {"faulty_file_7.so", "SIGABRT"},
               {"no_such_file.so", "cannot be found"},
               {"faulty_kinds.so:NoSuchKind", "no filter \"NoSuchKind\""}};
  for (const auto &file : files) {
    const PlayerResult result = RunCheck(file.file);
    EXPECT_EQ(3, result.exitCode) << file.file;
    EXPECT_THAT(result.err, HasSubstr(file.seen));
  }
}

TEST_F(CheckFile, WrongCommandLinesAreRefused) {
  EXPECT_EQ(2, RunCheck("faulty_kinds.so:Sound", {"--only", "NoSuchTest"}).exitCode);
  EXPECT_EQ(2, RunCheck("faulty_kinds.so:Sound", {"-o", "out.wav"}).exitCode);
  EXPECT_EQ(2, RunCheck("faulty_kinds.so:Sound,Gain=1").exitCode);
  EXPECT_EQ(2, PlayerProcess({"--seed", "1", "in.wav", "-o", "out.wav"}).Wait().exitCode);
}

TEST_F(CheckFile, AReportSaysWhatWasExpectedAndHowToRepeatIt) {
  const std::string file = kModules + "/faulty_kinds.so:WritesBehind";
  const PlayerResult all = RunCheck("faulty_kinds.so:WritesBehind", {"--only", "Bounds"});
  EXPECT_EQ(1, all.exitCode);
  EXPECT_THAT(all.out, HasSubstr("seed 1\n"));
  EXPECT_THAT(all.out,
              HasSubstr("      expected  no access beside the rings\n"
                        "      seen      it was ended by SIGSEGV: it accessed byte 1 behind the rings of "
                        "the output's group 0\n"
                        "      repeat    kest-player --check " +
                        file + " --only Bounds.GuardPages --seed 1 --in-process\n"));
  EXPECT_THAT(all.out, HasSubstr("6 tests: 5 success, 1 crashed\n"));

  for (const char *pszOptions : {"ASAN_OPTIONS", "TSAN_OPTIONS"})
    setenv(pszOptions, "handle_segv=0", 1);
  const PlayerResult again =
      RunCheck("faulty_kinds.so:WritesBehind", {"--only", "Bounds.GuardPages", "--in-process"});
  EXPECT_EQ(128 + SIGSEGV, again.exitCode);
}

TEST_F(CheckFile, ATestThatDoesNotEndIsStopped) {
  const PlayerResult result =
      RunCheck("faulty_kinds.so:Hangs", {"--only", "Shapes.Formats", "--time-limit", "1"});
  EXPECT_EQ(1, result.exitCode);
  EXPECT_THAT(result.out, HasSubstr("it did not come to an end within 1 s"));
}

TEST_F(CheckFile, ASlowTurnIsAWarning) {
  const PlayerResult result = RunCheck("faulty_kinds.so:Slow", {"--only", "RealTime.WorstTurn"});
  EXPECT_EQ(0, result.exitCode);
  EXPECT_THAT(result.out, HasSubstr("1 test: 1 warning\n"));
}

TEST_F(CheckFile, AllKindsOfAModuleAreTested) {
  const Json json = Json::parse(RunCheck("faulty_kinds.so", {"--json", "--only", "Life.DestroyUnused"}).out);
  EXPECT_GE(json["results"].size(), std::size(kFaults));
  EXPECT_EQ(json["counts"]["failed"], 0);
  EXPECT_EQ(json["counts"]["crashed"], 1);
}

}  // namespace
}  // namespace kest::test
