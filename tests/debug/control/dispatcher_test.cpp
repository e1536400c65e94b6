// SPDX-License-Identifier: Apache-2.0
#include <cstring>
#include <filesystem>

#include "debug/control/startup.h"
#include "tests/support/library_test.h"

namespace kest::test {
namespace {

uint32_t g_u32LevelBehind = 0;  // in force behind the latest line

// Label and text of every report that a line makes behind its echo and the empty line of the dispatcher.
// Without those of the set-parameter command, which reports on every line that comes as far.
Texts RepliesTo(const std::string &line, uint32_t u32Expected = ZE_KEST_OK,
                uint32_t u32Level = ZE_KEST_LEVEL_PRINT) {
  const ReportCapture capture(u32Level);
  EXPECT_EQ(u32Expected, ze_kest_Debug_SetParameter(line.c_str())) << line;
  g_u32LevelBehind = u32KestDebugLevel;
  Texts replies;
  for (const Report &report : capture.Reports()) {
    if (report.function == "_ZE_KEST_Debug_Cmd_SetParameter") continue;
    replies.push_back(report.label + report.text);
  }
  if (replies.size() < 2) return {"no reply at all"};
  EXPECT_EQ("<PRINT>pszParameterPairs:" + line + "\n", replies[0]);
  EXPECT_EQ("<PRINT>\n", replies[1]);
  return {replies.begin() + 2, replies.end()};
}

}  // namespace

TEST(Dispatcher, EveryInlineCommandConfirmsInItsOwnWords) {
  const DebugLayer layer;
  const std::pair<const char *, Texts> aCommands[] = {
      {"kest_print_current_shm",
       {"<PRINT>DebugLevel:0x1,0x1\n", "<PRINT>DebugPresetCmd:,\n", "<PRINT>bDebugPresetCmd:0,0\n"}},
      {"kest_log_to_print=on", {"<PRINT>kest_log_to_print=on\n", "<PRINT>Log to console(1)\n"}},
      {"kest_log_to_print=off", {"<PRINT>kest_log_to_print=off\n", "<PRINT>Log to console(0)\n"}},
      {"kest_log_to_file=off", {"<PRINT>kest_log_to_file=off\n", "<PRINT>Log to file(0)\n"}},
      {"kest_log_to_file=on", {"<PRINT>kest_log_to_file=on\n", "<PRINT>Log to file(1)\n"}},
      {"kest_log_restart", {"<PRINT>Log to file(0)\n", "<PRINT>Log to file(1)\n"}},
      {"kest_monitor_sleep_time=20000", {"<PRINT>sleep time:20000 ms\n"}},
      {"kest_log_size=524288", {"<PRINT>LogSizeMax:524288\n"}},
      {"kest_log_size=-5", {"<PRINT>LogSizeMax:-5\n"}},
      {"kest_atrace=on", {"<PRINT>kest_atrace=on\n"}},
      {"kest_atrace=off", {"<PRINT>kest_atrace=off\n"}},
      {"kest_debug_preset_cmd=all,a=b, c", {"<PRINT>kest_debug_preset_cmd=all\n"}},
      {"kest_print_current_shm",
       {"<PRINT>DebugLevel:0x1,0x1\n", "<PRINT>DebugPresetCmd:a=b, c,a=b, c\n",
        "<PRINT>bDebugPresetCmd:1,1\n"}},
      {"kest_debug_preset_cmd=off", {"<PRINT>kest_debug_preset_cmd=off\n"}},
      {"kest_print_current_shm",
       {"<PRINT>DebugLevel:0x1,0x1\n", "<PRINT>DebugPresetCmd:a=b, c,a=b, c\n",
        "<PRINT>bDebugPresetCmd:0,0\n"}},
      {"ascii_color", {}},
  };
  for (const auto &[pszLine, replies] : aCommands)
    EXPECT_EQ(replies, RepliesTo(pszLine)) << pszLine;
  EXPECT_EQ(20000, s32KestMonitorSleepTimeMs);
  EXPECT_EQ(0, bKestAtraceEnable);
}

TEST(Dispatcher, EveryLogLevelShowsTheTestLinesThatItLetsThrough) {
  const DebugLayer layer;
  const Texts tests = {"<INFO>Test:<INFO>\n", "<WRN>Test:<WRN>\n", "<ERR>Test:<ERR>\n"};
  const std::tuple<const char *, uint32_t, long> aLevels[] = {
      {"all", 240, 0}, {"trace", 80, 0}, {"info", 64, 0}, {"wrn", 48, 1},
      {"err", 32, 2},  {"sync", 33, 2},  {"hdmi", 34, 2}, {"none", 1, 3}};
  for (const auto &[pszName, u32Level, firstTest] : aLevels) {
    const std::string line = std::string("kest_log_level=") + pszName;
    Texts expected = {"<PRINT>" + line + "\n"};
    expected.insert(expected.end(), tests.begin() + firstTest, tests.end());
    EXPECT_EQ(expected, RepliesTo(line));
    EXPECT_EQ(u32Level, g_u32LevelBehind) << line;
  }
}

TEST(Dispatcher, ElevenSeparatorsSplitALineAndWhatFollowsTheValueIsIgnored) {
  const DebugLayer layer;
  for (const char cSeparator : {'{', '[', ']', '"', '.', ':', ' ', '=', ',', '\t', '\n'}) {
    const std::string line = std::string("kest_log_size") + cSeparator + "7" + cSeparator + "rest";
    EXPECT_EQ((Texts{"<PRINT>LogSizeMax:7\n"}), RepliesTo(line)) << line;
  }
  // The preset's text is split at its first comma alone.
  EXPECT_EQ((Texts{"<PRINT>kest_debug_preset_cmd=all\n"}), RepliesTo("kest_debug_preset_cmd all,x.y:z=1,2"));
  EXPECT_EQ("<PRINT>DebugPresetCmd:x.y:z=1,2,x.y:z=1,2\n", RepliesTo("kest_print_current_shm")[1]);
  // And cut at 255 characters.
  RepliesTo("kest_debug_preset_cmd=all," + std::string(300, 't'));
  const std::string kept(255, 't');
  EXPECT_EQ("<PRINT>DebugPresetCmd:" + kept + "," + kept + "\n", RepliesTo("kest_print_current_shm")[1]);
}

TEST(Dispatcher, WhatNoCommandTakesGivesEightAndChangesNothing) {
  const DebugLayer layer;
  constexpr const char *pszLines =
      "; ;=;nonsense; help;helpx;hel;kest_log_level;kest_log_level=;kest_log_level=loud;"
      "kest_log_level==all;kest_log_to_print=maybe;kest_atrace=;kest_log_size=;"
      "KEST_LOG_LEVEL=all;kest_debug_preset_cmd=;kest_debug_preset_cmd=some,x;"
      "kest_json_parser=;kest_debug_list=;kest_debug_list=all;";
  for (const std::string &line : LinesOf(pszLines, ';')) {
    EXPECT_EQ(Texts{}, RepliesTo(line, ZE_KEST_INVALID_ARGUMENT)) << line;
    EXPECT_EQ(ZE_KEST_LEVEL_PRINT, g_u32LevelBehind);
  }
  EXPECT_EQ(0, bKestAtraceEnable);
  EXPECT_EQ((Texts{"<PRINT>kest_debug_preset_cmd=all\n"}),
            RepliesTo("kest_debug_preset_cmd=all", ZE_KEST_INVALID_ARGUMENT));
  EXPECT_EQ("<PRINT>bDebugPresetCmd:0,0\n", RepliesTo("kest_print_current_shm")[2]);
}

TEST(Dispatcher, ANumberOutOfRangeIsAFormatErrorThoughItsLimitIsStored) {
  const DebugLayer layer;
  const auto restartsIn1000Messages = [] {
    const auto sztBefore = std::filesystem::file_size(kLogFile);
    for (int i = 0; i < 1000; ++i)
      ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "x\n");
    return std::filesystem::file_size(kLogFile) < sztBefore + 2000;
  };
  for (const char *pszKeyword : {"kest_monitor_sleep_time", "kest_log_size"}) {
    for (const char *pszNumber : {"2147483647", "-2147483648", "-99999999999", "99999999999999999999"}) {
      EXPECT_EQ((Texts{std::string("<PRINT>format error: ") + pszNumber + "\n"}),
                RepliesTo(std::string(pszKeyword) + "=" + pszNumber, ZE_KEST_INVALID_ARGUMENT));
      EXPECT_EQ(*pszNumber == '-' && strcmp(pszKeyword, "kest_log_size") == 0, restartsIn1000Messages());
    }
  }
}

TEST(Dispatcher, TheHelpHas128RowsAndTheVersion) {
  const DebugLayer layer;
  const Texts replies = RepliesTo("help");
  ASSERT_EQ(129u, replies.size());
  EXPECT_EQ("<PRINT>\n", replies[0]);
  EXPECT_EQ("<PRINT>---------------------------------\n", replies[1]);
  EXPECT_EQ("<PRINT>cd " KEST_DEBUG_DIR "\n", replies[2]);
  EXPECT_EQ("<PRINT>echo help >D\n", replies[4]);
  EXPECT_EQ("<PRINT>echo kest_print_filter_info=off >D\n", replies[72]);
  EXPECT_EQ("<PRINT>---------------------------------\n", replies[73]);
  for (size_t i = 74; i < 128; ++i)
    EXPECT_EQ("<PRINT>\n", replies[i]);
  EXPECT_THAT(replies[128], MatchesRegex("<PRINT>_ZE_KEST_Debug_GetVersion,[0-9]+,2023/06/01,01\n"));
}

TEST(Dispatcher, TheColourSamplesComeAtInfoLevel) {
  const DebugLayer layer;
  const Texts samples = RepliesTo("ascii_color", ZE_KEST_OK, ZE_KEST_LEVEL_INFO);
  ASSERT_EQ(24u, samples.size());
  EXPECT_EQ("<INFO><01>\033[30mCOLOR_BLACK\033[0m\n", samples[0]);
  EXPECT_EQ("<INFO><13>\033[1;34mCOLOR_BLUE\033[0m\n", samples[12]);
  EXPECT_EQ("<INFO><24>\033[1;7;37mCOLOR_INVERSE_WHITE\033[0m\n", samples[23]);
}

TEST(Dispatcher, TheExportedEntryRefusesNullAndALayerThatIsNotUp) {
  const ReportCapture capture;
  EXPECT_EQ(ZE_KEST_INVALID_ARGUMENT, ze_kest_Debug_SetParameter(nullptr));
  EXPECT_EQ(ZE_KEST_NOT_INITIALISED, ze_kest_Debug_SetParameter("help"));
  EXPECT_EQ((Texts{"pszParameterPairs is NULL.\n", "Err! Not initialized yet!\n"}), capture.Texts("<ERR>"));
}

}  // namespace kest::test
