// SPDX-License-Identifier: Apache-2.0
#include "debug/control/command_table.h"

#include "ze_kest/result.h"

#include "debug/control/ascii_color.h"
#include "debug/control/help.h"
#include "debug/control/json_command.h"
#include "debug/control/log_commands.h"
#include "debug/control/registry_commands.h"
#include "debug/control/shared_commands.h"

namespace kest {
namespace {

constexpr const char *kEverySeparator = "{[]\".: =,\t\n";
constexpr Split kTokens = {kEverySeparator, kEverySeparator};
// Values may contain dots and slashes.
constexpr Split kBlankOrEquals = {" =", " ="};
// The text after the first comma stays whole, including "=" signs and further commas.
constexpr Split kText = {" =", ","};

constexpr Command kCommands[] = {
    {"help", kNoValue, &kTokens, nullptr, PrintHelp},
    {"ascii_color", kNoValue, &kTokens, nullptr, PrintAsciiColors},
    {"kest_log_restart", kNoValue, &kTokens, nullptr, RestartLog},
    {"kest_print_current_shm", kNoValue, &kTokens, nullptr, PrintCurrentShm},
    {"kest_monitor_sleep_time", kAnyValue, &kTokens, nullptr, SetMonitorSleep},
    {"kest_log_to_print", "on", &kTokens, "kest_log_to_print=on\n", SwitchLogToConsole, 1},
    {"kest_log_to_print", "off", &kTokens, "kest_log_to_print=off\n", SwitchLogToConsole, 0},
    {"kest_log_to_file", "on", &kTokens, "kest_log_to_file=on\n", SwitchLogToFile, 1},
    {"kest_log_to_file", "off", &kTokens, "kest_log_to_file=off\n", SwitchLogToFile, 0},
    {"kest_log_level", "all", &kTokens, "kest_log_level=all\n", SetLogLevel, ZE_KEST_LEVEL_ENTER},
    {"kest_log_level", "trace", &kTokens, "kest_log_level=trace\n", SetLogLevel, ZE_KEST_LEVEL_TRACE},
    {"kest_log_level", "info", &kTokens, "kest_log_level=info\n", SetLogLevel, ZE_KEST_LEVEL_INFO},
    {"kest_log_level", "wrn", &kTokens, "kest_log_level=wrn\n", SetLogLevel, ZE_KEST_LEVEL_WRN},
    {"kest_log_level", "err", &kTokens, "kest_log_level=err\n", SetLogLevel, ZE_KEST_LEVEL_ERR},
    {"kest_log_level", "none", &kTokens, "kest_log_level=none\n", SetLogLevel, ZE_KEST_LEVEL_PRINT},
    {"kest_log_level", "sync", &kTokens, "kest_log_level=sync\n", SetLogLevel, ZE_KEST_LEVEL_SYNC},
    {"kest_log_level", "hdmi", &kTokens, "kest_log_level=hdmi\n", SetLogLevel, ZE_KEST_LEVEL_HDMI},
    {"kest_atrace", "on", &kTokens, "kest_atrace=on\n", SwitchAtrace, 1},
    {"kest_atrace", "off", &kTokens, "kest_atrace=off\n", SwitchAtrace, 0},
    {"kest_log_size", kAnyValue, &kTokens, nullptr, SetLogSize},
    {"kest_json_parser", kAnyValue, &kBlankOrEquals, nullptr, PrintJsonFile},
    {"kest_debug_node", "register", &kBlankOrEquals, "kest_debug_node=register\n", RegisterTestFilter},
    {"kest_debug_node", "remove_filter", &kBlankOrEquals, "kest_debug_node=remove_filter\n",
     RemoveTestFilter},
    {"kest_debug_node", "remove_pipeline", &kBlankOrEquals, "kest_debug_node=remove_pipeline\n",
     RemoveTestPipeline},
    {"kest_debug_node", "release", &kBlankOrEquals, "kest_debug_node=release\n", ReleaseRegistry},
    {"kest_debug_node", "pipeline_connect", &kBlankOrEquals, "pipeline_connect\n", ConnectTestPipelines},
    {"kest_debug_node", "pipeline_disconnect", &kBlankOrEquals, "pipeline_disconnect\n",
     DisconnectTestPipelines},
    // Deliberate: the lists confirm under the other keyword, kest_debug_node.
    {"kest_debug_list", "print", &kBlankOrEquals, "kest_debug_node=print\n", ListRegistry},
    {"kest_debug_list", "status", &kBlankOrEquals, "kest_debug_node=status\n", ListStatus},
    {"kest_debug_list", "parameter", &kBlankOrEquals, "kest_debug_node=parameter\n", ListParameters},
    {kEveryLine, kNoValue, nullptr, nullptr, _ZE_KEST_Debug_Cmd_SetParameter},
    {"kest_debug_send_cmd", kAnyValue, &kText, nullptr, SendCommandByIndex},
    {"kest_debug_preset_cmd", "all", &kText, nullptr, PresetForAll},
    {"kest_debug_preset_cmd", "off", &kText, nullptr, PresetOff},
    {"kest_debug_send_cmd_by_text", kAnyValue, &kText, nullptr, SendCommandByText},
};

}  // namespace

CommandTable Commands() {
  return CommandTable(kCommands);
}

}  // namespace kest
