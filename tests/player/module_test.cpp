// SPDX-License-Identifier: Apache-2.0
// Modules: what is said about broken ones, and how sound ones play.
#include <csignal>
#include <cstdlib>
#include <fstream>

#include "player/config/layout_reader.h"
#include "player/framework/parameter_text.h"
#include "player/modules/module_error.h"
#include "player/modules/module_instance.h"
#include "player/modules/module_kinds.h"
#include "player/modules/parameter_value.h"
#include "tests/player/player_test.h"

namespace kest::test {
namespace {

const std::string kModules = KEST_TEST_MODULES;
const std::string kBroken = kModules + "/broken.so";
const std::string kMyFilter = KEST_EXAMPLE_MODULES "/my_filter.so";
const std::string kMyDelay = KEST_EXAMPLE_MODULES "/my_delay.so";
constexpr player::PcmFormat kStereo = {2, 48000, 32};

std::string WithoutPath(std::string text, const std::string &path) {
  const size_t place = text.find(path);
  return place == std::string::npos ? text : text.replace(place, path.size(), "x");
}

// What is said when an instance of the kind is made; "" when one could be made.
std::string Refusal(const std::string &path, const std::string &kind = "Plain",
                    const player::ModuleSetup &setup = {kStereo, 256}) {
  try {
    const player::ModuleFilterKind &loaded = player::LoadKind(player::BuiltInKinds(), path, kind);
    const player::ModuleInstance instance(*loaded.module, setup);
    return "";
  } catch (const player::ModuleError &error) {
    return WithoutPath(error.what(), path);
  }
}

class Module : public PlayerTest {};

TEST_F(Module, WhatCannotBeLoadedIsNamedWithTheLoadersWords) {
  const std::string text = PlayerTest::Path("text.so");
  std::ofstream(text) << "no shared object\n";
  const std::string unresolved = kModules + "/unresolved.so";
  EXPECT_EQ("x: cannot be found: No such file or directory", Refusal("/missing/filter.so"));
  EXPECT_EQ("x: is not a regular file; give the name of a shared object", Refusal("/tmp"));
  EXPECT_THAT(Refusal(text), StartsWith("x: cannot be loaded: "));
  EXPECT_THAT(Refusal(unresolved), AllOf(StartsWith("x: cannot be loaded: "), HasSubstr("MissingFunction")));
  EXPECT_THAT(Refusal(kModules + "/none.so"), StartsWith("x: is no module: it exports no ze_kest_module: "));
  EXPECT_EQ("x: has no filter \"Other\"; it has: Plain, Narrow", Refusal(kBroken, "Other"));
  EXPECT_EQ("x: say which of its filters is meant; it has: Plain, Narrow", Refusal(kBroken, ""));
  EXPECT_EQ("", Refusal(kMyFilter, "")) << "the only one";
}

TEST_F(Module, EveryBrokenRecordIsRefusedWithItsReason) {
  const std::pair<const char *, std::string> faults[] = {
      {"foreign version", "has no filter for version 1 of the interface, which this host has"},
      {"kinds without end", "two filters are called Plain"},
      {"two of a name", "two filters are called Plain"},
      {"size", "filter 0: u32Size is 8; " + std::to_string(sizeof(ZE_KEST_ModuleFilter_s)) +
                   " is needed: build the module with this host's headers"},
      {"filter size", "filter 0: u32FilterSize is " + std::to_string(sizeof(ZE_KEST_Filter_s) + 8)},
      {"port size", "filter 0: u32PortSize is " + std::to_string(sizeof(ZE_KEST_Port_s) - 8)},
      {"name", "filter 0: the name is \"a,b\"; 1 to 63 letters, digits and '_' are needed"},
      {"no name", "filter 0: the name is NULL; "},
      {"version", "filter 0: Plain: pszVersion is not a line of text"},
      {"description", "filter 0: Plain: pszDescription is not a line of text"},
      {"flags", "filter 0: Plain: u32Flags has unknown bits"},
      {"no width", "filter 0: Plain: u32Widths names no width"},
      {"widths", "filter 0: Plain: u32Widths has unknown bits"},
      {"no channels", "filter 0: Plain: u32LeastChannels is 0"},
      {"channels", "filter 0: Plain: u32LeastChannels is above u32MostChannels"},
      {"too many channels", "filter 0: Plain: u32MostChannels is above 22"},
      {"no create", "filter 0: Plain: pfnCreate is missing"},
      {"no destroy", "filter 0: Plain: pfnDestroy is missing"},
      {"no process", "filter 0: Plain: pfnProcess is missing"},
      {"no get", "filter 0: Plain: there are parameters, but no pfnGet"},
      {"built-in name", "its filter Volume has the name of a built-in one; rename it"},  // last: it is kept
  };
  for (const auto &[fault, reason] : faults) {
    setenv("KEST_FAULT", fault, 1);
    EXPECT_THAT(Refusal(kBroken), StartsWith("x: " + reason)) << fault;
  }
}

TEST_F(Module, AnInstanceThatCannotBeMadeSaysWhy) {
  const std::pair<const char *, const char *> faults[] = {
      {"silent refusal", "cannot be created: result 3, without a reason"},
      {"parameters without end", "has a faulty parameter: two parameters are called Level"},
      {"parameter twice", "has a faulty parameter: two parameters are called Turns"},
      {"parameter size", "has a faulty parameter: parameter 0: u32Size is "},
      {"parameter name", "has a faulty parameter: parameter 0: the name is \"a b\"; "},
      {"parameter description", "has a faulty parameter: parameter 0: Level: pszDescription is not a line"},
      {"parameter unit", "has a faulty parameter: parameter 0: Level: pszUnit is not a line of text"},
      {"parameter flags", "has a faulty parameter: parameter 0: Level: u32Flags has unknown bits"},
      {"parameter decimals", "has a faulty parameter: parameter 0: Level: u32Decimals is above 6"},
      {"parameter limits", "has a faulty parameter: parameter 0: Level: s32Least is above s32Most"},
      {"parameter default", "has a faulty parameter: parameter 0: Level: s32Default is outside the limits"}};
  EXPECT_EQ("", Refusal(kBroken));
  for (const auto &[fault, reason] : faults) {
    setenv("KEST_FAULT", fault, 1);
    EXPECT_THAT(Refusal(kBroken), StartsWith("x: Plain " + std::string(reason))) << fault;
  }
  unsetenv("KEST_FAULT");
  EXPECT_EQ("x: Narrow takes no samples of 32 bits", Refusal(kBroken, "Narrow"));
  EXPECT_EQ("x: Plain takes 1 to 2 channels, not 3", Refusal(kBroken, "Plain", {{3, 48000, 16}, 256}));
  EXPECT_EQ("x: Plain cannot be created: refuse in /usr",
            Refusal(kBroken, "Plain", {kStereo, 256, "refuse", "/usr"}));
}

TEST_F(Module, ValuesAreDecimalNumbersInTheUnitOfTheirParameter) {
  ZE_KEST_ModuleParameter_s parameter{};
  parameter.u32Decimals = 2;
  parameter.s32Least = -600;
  parameter.s32Most = 50;
  const std::pair<const char *, std::optional<int32_t>> texts[] = {{"-6", -600},
                                                                   {"-6.01", std::nullopt},
                                                                   {"0.5", 50},
                                                                   {"0.51", std::nullopt},
                                                                   {"-0.05", -5},
                                                                   {"-5.9", -590},
                                                                   {"0", 0},
                                                                   {"0.001", std::nullopt},
                                                                   {"", std::nullopt},
                                                                   {"-", std::nullopt},
                                                                   {".5", std::nullopt},
                                                                   {"-.5", std::nullopt},
                                                                   {"0.", std::nullopt},
                                                                   {"x", std::nullopt},
                                                                   {"1e1", std::nullopt},
                                                                   {"0.-1", std::nullopt},
                                                                   {"99999999999999999999", std::nullopt},
                                                                   {"+0.1", std::nullopt}};
  for (const auto &[text, value] : texts) {
    EXPECT_EQ(value, player::ParseValue(text, parameter)) << text;
  }
  EXPECT_EQ("-6.00 to 0.50", player::RangeText(player::RangeOf(parameter)));
  EXPECT_EQ("-2147483648", player::NumberText(INT32_MIN, 0));
  EXPECT_EQ("-2147.483648", player::NumberText(INT32_MIN, 6));
}

class PlayerModules : public PlayerTest {
 protected:
  [[nodiscard]] Samples Played(Texts arguments) const {
    arguments.insert(arguments.end(), {"-o", out_});
    const PlayerResult result = PlayFast(arguments);
    EXPECT_EQ(0, result.exitCode) << result.err;
    EXPECT_THAT(result.out, HasSubstr("in order"));
    return ReadAudio(out_).samples;
  }
  static void ExpectComplaint(const Texts &arguments, int exitCode, const std::string &complaint,
                              const std::string &preparation = "") {
    const PlayerResult result = PlayFast(arguments, preparation);
    EXPECT_EQ(exitCode, result.exitCode) << complaint;
    EXPECT_THAT(result.err, HasSubstr(complaint));
  }
};

// A delay shows lost, added and misplaced samples; the summary tells about the metadata.
TEST_F(PlayerModules, PlayEveryWidthAndChannelCountLikeABuiltInFilter) {
  for (const auto &[channels, format] : {std::pair(1, kWav16), {2, kWav16}, {2, kWav32}, {10, kWav24}}) {
    WriteNoise(Path("in.wav"), channels, format, 5001);
    const Samples wanted = Played({Path("in.wav"), "--delay-ms", "20"});
    EXPECT_TRUE(wanted == Played({Path("in.wav"), "--module", kMyDelay, "--module-config", "960"}))
        << channels;
    EXPECT_TRUE(wanted == Played({Path("in.wav"), "--module", kMyDelay + ":MyDelay", "--module", kMyFilter,
                                  "--module", kMyDelay}))
        << channels << ", two of 480";
  }
}

TEST_F(PlayerModules, StandWhereverTheConfigurationPutsThem) {
  WriteNoise(Path("in.wav"), 2, kWav16, 5001);
  const Samples wanted = Played({Path("in.wav"), "--delay-ms", "20"});
  std::filesystem::create_symlink(kMyDelay, Path("delay.so"));
  std::ofstream(Path("x.json")) << R"({
    "In": {"Lpcm": {"file": "in.wav"},
           "Late": {"module": "delay.so", "config": "0"}, "Volume": {},
           "Later": {"module": "delay.so", "filter": "MyDelay", "config": "60"}},
    "SpeakerOutput": {"Mixer": {}, "Latest": {"module": "delay.so", "config": "900"},
           "Loud": {"module": ")"
                                << kMyFilter << R"(", "parameters": {"Gain": 0.0}},
           "SpeakerOutput": {"file": "out.wav"}}})";
  const PlayerResult result = PlayFast({"--config", Path("x.json")});
  EXPECT_EQ(0, result.exitCode) << result.err;
  EXPECT_TRUE(wanted == ReadAudio(out_).samples);
}

TEST_F(PlayerModules, ErrorsNameTheirPlace) {
  WriteNoise(Path("in.wav"), 2, kWav32, 100);
  const std::pair<std::string, std::string> faults[] = {
      {R"("Volume": {"module": "m.so"})", "x: In: Volume: is a built-in filter; choose another name"},
      {R"("a b": {"module": "m.so"})", "x: In: a b: a name of 1 to 63 letters, digits and '_' is needed"},
      {R"("M": {"module": "m.so", "gain": 1})",
       "x: In: M: gain: unknown setting; known: module, filter, config, parameters"},
      {R"("M": {"module": "m.so", "config": 1})", "x: In: M: config is 1; a text, in quotes, is needed"},
      {R"("M": {"module": "m.so", "parameters": {"Gain": "1"}})",
       "x: In: M: parameters: Gain is \"1\"; a number is needed"},
      {R"("M": {"module": "m.so", "parameters": {"Gain": true}})",
       "x: In: M: parameters: Gain is true; a number is needed"},
      {R"("M": {"module": "none.so"})",
       "x: In: M: " + Path("none.so") + ": cannot be found: No such file or directory"},
      {R"("M": {"module": "m.so", "filter": "Other"})", "has no filter \"Other\"; it has: MyFilter"},
      {R"("M": {"module": "m.so", "parameters": {"Gain": 20.1}})",
       "x: In: M: parameters: Gain is 20.1; a number from -100.0 to 20.0, with as many decimals at most, is"},
      {R"("M": {"module": "m.so", "parameters": {"Other": 1}})",
       "x: In: M: parameters: Other: unknown parameter; known: Gain"},
      {R"("M": {"module": "b.so", "filter": "Plain", "config": "refuse"})",
       "broken.so: Plain cannot be created: refuse in " + Path("").substr(0, Path("").size() - 1)},
      {R"("M": {"module": "b.so", "filter": "Plain", "parameters": {"Turns": 1}})",
       "x: In: M: parameters: Turns: it can only be read"},
      {R"("M": {"module": "b.so", "filter": "Narrow"})", "broken.so: Narrow takes no samples of 32 bits"}};
  std::filesystem::create_symlink(kMyFilter, Path("m.so"));
  std::filesystem::create_symlink(kBroken, Path("b.so"));
  for (const auto &[filter, complaint] : faults) {
    std::ofstream(Path("x.json"))
        << R"({"In": {"Lpcm": {"file": "in.wav"}, )" << filter
        << R"(}, "SpeakerOutput": {"Mixer": {}, "SpeakerOutput": {"file": "o.wav"}}})";
    const PlayerResult result = PlayFast({"--config", Path("x.json")});
    EXPECT_EQ(1, result.exitCode) << filter;
    EXPECT_THAT(WithoutPath(result.err, Path("x.json")), HasSubstr(complaint));
  }
  const Texts play = {Path("in.wav"), "-o", out_, "--module"};
  const auto with = [&](const Texts &more) {
    Texts arguments = play;
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  };
  ExpectComplaint(with({kMyFilter + ",Gain=x"}), 1, "Gain is x; a number from -100.0 to 20.0");
  ExpectComplaint(with({kMyFilter + ",Gain"}), 2, "Gain is not NAME=VALUE");
  ExpectComplaint({Path("in.wav"), "-o", out_, "--module-config", "x"}, 2,
                  "the module must be named before it");
}

TEST_F(PlayerModules, AreSetAndCommandedThroughThePipeAndDestroyedAtTheEnd) {
  WriteNoise(Path("in.wav"), 2, kWav16, 5001);
  PlayerProcess player({Path("in.wav"), "-o", out_, "--loop", "--module", kBroken + ":Plain,Level=-12.5"},
                       "export KEST_TELL=1");
  ASSERT_TRUE(PlayOn(player, 100000)) << player.Wait().err;
  const std::string list = Ask("kest_debug_list=parameter");
  EXPECT_THAT(list, HasSubstr("\n'Level', 'Plain: kept, not used, dB, -60.0 to 6.0', '4'\n"));
  EXPECT_THAT(list, HasSubstr("\n'Turns', 'Plain: ', '4'\n"));
  Ask("kest_log_level=err");
  EXPECT_THAT(Ask("kest_debug_send_cmd_by_text=Decoder_13,Plain,sing"), HasSubstr("\nla la la\n"));
  EXPECT_THAT(Ask("kest_debug_send_cmd_by_text=Decoder_13,Plain,state"),
              HasSubstr("Decoder_13 Plain in 0: "));
  EXPECT_THAT(Ask("kest_debug_send_cmd_by_text=Decoder_13,Plain,shout"),
              HasSubstr("SetParameter failed(0x8)!"));
  EXPECT_THAT(Ask("kest_debug_set_parameter=Decoder_13,Plain,Level,-100,4"), Not(HasSubstr("Fail to set")));
  EXPECT_THAT(Ask("kest_debug_set_parameter=Decoder_13,Plain,Turns,0,4"), HasSubstr("Fail to set"));
  player.Signal(SIGINT);
  const PlayerResult result = player.Wait();
  EXPECT_EQ(0, result.exitCode);
  EXPECT_EQ("an instance is destroyed\n", result.err);
}

TEST_F(PlayerModules, ThatStandStillEndTheRunAndThoseThatOverstateAreHeldBack) {
  WriteNoise(Path("in.wav"), 2, kWav16, 5001);
  const Texts play = {Path("in.wav"), "-o", out_, "--module", kBroken + ":Plain"};
  ExpectComplaint(play, 1, "broken.so: Plain stands still: it moved nothing in 1000 turns, with ",
                  "export KEST_FAULT='stands still'");
  ExpectComplaint(play, 1,
                  "Plain stands still: it moved nothing in 1000 turns, with 137 samples in its input",
                  "export KEST_FAULT='stands still at the end'");
  const PlayerResult result = PlayFast(play, "export KEST_FAULT='accounts for more'");
  EXPECT_EQ(0, result.exitCode) << result.err;
  EXPECT_THAT(ReadFile(kLogFile), HasSubstr("Decoder_13 Plain accounts for more samples than it had: "));

  const PlayerResult garbled = PlayFast(play, "export KEST_FAULT='garbled metadata'");
  EXPECT_THAT(garbled.out, StartsWith("played 5001 frames (0.10 s) and 0 metadata blocks in order"));
  EXPECT_THAT(ReadFile(kLogFile), HasSubstr("Decoder_13 Plain moves metadata that is not in whole blocks"));
}

TEST_F(PlayerModules, AreInspectedWithoutPlaying) {
  const PlayerResult text = PlayerProcess({"--inspect", kBroken}).Wait();
  EXPECT_EQ(0, text.exitCode) << text.err;
  EXPECT_THAT(WithoutPath(text.out, kBroken),
              StartsWith("x\n  Plain 0.1\n    takes 16 and 32 bits, 1 to 2 channels\n"));
  EXPECT_THAT(text.out, HasSubstr("      Level  -2.5 dB (-60.0 to 6.0)  kept, not used\n"
                                  "      Turns  0 (read only)\n  Narrow 0.1\n    takes 16 bits, "));
  const PlayerResult refused =
      PlayerProcess({"--inspect", kBroken + ":Plain", "--module-config", "refuse"}).Wait();
  EXPECT_EQ(0, refused.exitCode);
  EXPECT_THAT(refused.out, AllOf(HasSubstr(" cannot be made: "), Not(HasSubstr("Narrow"))));
  const PlayerResult noSet = PlayerProcess({"--inspect", kBroken}, "export KEST_FAULT='no set'").Wait();
  EXPECT_THAT(noSet.out, HasSubstr("parameter 0: Level: it can be set, but there is no pfnSet\n"));
  const PlayerResult json = PlayerProcess({"--inspect", kMyDelay, "--json", "--module-config", "7"}).Wait();
  EXPECT_EQ(0, json.exitCode);
  EXPECT_THAT(json.out, AllOf(HasSubstr("\"name\": \"MyDelay\""), HasSubstr("\"latency\": 7,")));

  ExpectComplaint({"--inspect", kBroken}, 2, "cannot be given with --inspect");  // --fast
  EXPECT_EQ(2, PlayerProcess({"--json"}).Wait().exitCode);
  EXPECT_EQ(3, PlayerProcess({"--inspect", "/missing.so"}).Wait().exitCode);
  EXPECT_EQ(3, PlayerProcess({"--inspect", kBroken + ":Other"}).Wait().exitCode);
}

}  // namespace
}  // namespace kest::test
