// SPDX-License-Identifier: Apache-2.0
#include "debug/control/help.h"

#include <cstring>

#include "debug/base/version.h"
#include "utility/core/report.h"

namespace kest {
namespace {

// One text: a table of pointers would cost more in relocations than the rows themselves.
constexpr char kHelp[] =
    "\n"
    "---------------------------------\n"
    "cd " KEST_DEBUG_DIR
    "\n"
    "---------------------------------\n"
    "echo help >D\n"
    "echo ascii_color >D\n"
    "echo kest_log_restart >D\n"
    "echo kest_print_current_shm >D\n"
    "echo kest_monitor_sleep_time=20000 >D\n"
    "---------------------------------\n"
    "echo kest_log_to_print=on >D\n"
    "echo kest_log_to_print=off >D\n"
    "---------------------------------\n"
    "echo kest_log_to_file=on >D\n"
    "echo kest_log_to_file=off >D\n"
    "---------------------------------\n"
    "echo kest_log_level=all >D\n"
    "echo kest_log_level=trace >D\n"
    "echo kest_log_level=info >D\n"
    "echo kest_log_level=wrn >D\n"
    "echo kest_log_level=err >D\n"
    "echo kest_log_level=none >D\n"
    "---------------------------------\n"
    "echo kest_log_size=524288 >D\n"
    "echo kest_json_parser=/vendor/etc/Vul_Basic.json >D\n"
    "---------------------------------\n"
    "echo kest_debug_node=register >D\n"
    "echo kest_debug_node=remove_filter >D\n"
    "echo kest_debug_node=remove_pipeline >D\n"
    "echo kest_debug_node=release >D\n"
    "echo kest_debug_node=pipeline_connect >D\n"
    "echo kest_debug_node=pipeline_disconnect >D\n"
    "---------------------------------\n"
    "echo kest_debug_list=print >D\n"
    "echo kest_debug_send_cmd=0,dbgcmd1=test >D\n"
    "echo kest_debug_preset_cmd=all,adc_filter=dump_pcm >D\n"
    "echo kest_debug_preset_cmd=off >D\n"
    "---------------------------------\n"
    "echo kest_debug_watch_current_tids=on >D\n"
    "echo kest_debug_watch_current_tids=off >D\n"
    "---------------------------------\n"
    "echo kest_debug_watch=create_test >D\n"
    "echo kest_debug_watch_tid=123,456 >D\n"
    "echo kest_debug_watch_tid=0 >D\n"
    "---------------------------------\n"
    "echo kest_debug_filter_io=SpeakerOutput >D\n"
    "echo kest_debug_filter_io=SpeakerOutput,Mixer >D\n"
    "echo kest_debug_filter_io=BluetoothOutput >D\n"
    "echo kest_debug_filter_io=BluetoothOutput,Mixer >D\n"
    "echo kest_debug_filter_io=stop >D\n"
    "echo kest_debug_filter_io=restart >D\n"
    "echo kest_debug_filter_io=release >D\n"
    "echo kest_debug_filter_io=print_watch_list >D\n"
    "---------------------------------\n"
    "echo kest_perf_event_target=pipeline,PipelineName >D\n"
    "echo kest_perf_event_target=filter,PipelineName,FilterName >D\n"
    "echo kest_perf_event_target=none >D\n"
    "---------------------------------\n"
    "echo kest_latency_start_filter=PipelineName,FilterName >D\n"
    "echo kest_latency_end_filter=PipelineName,FilterName >D\n"
    "echo kest_latency=on >D\n"
    "echo kest_latency=off >D\n"
    "echo kest_dump_input_filter=PipelineName,FilterName >D\n"
    "echo kest_dump_input=on >D\n"
    "echo kest_dump_input=off >D\n"
    "echo kest_dump_output_filter=PipelineName,FilterName >D\n"
    "echo kest_dump_output=on >D\n"
    "echo kest_dump_output=off >D\n"
    "echo kest_output_sinewave_filter=PipelineName,FilterName >D\n"
    "echo kest_output_sinewave=on >D\n"
    "echo kest_output_sinewave=off >D\n"
    "echo kest_print_filter_info=on >D\n"
    "echo kest_print_filter_info=off >D\n"
    "---------------------------------\n";

constexpr int kHelpRows = 128;

void _ZE_KEST_Debug_GetVersion() {
  KEST_PRINT("%s,%d,%s\n", __func__, __LINE__, kVersion);
}

}  // namespace

// Row by row; behind the last one empty lines follow, up to the number of rows.
uint32_t PrintHelp(const CommandArguments & /*arguments*/) {
  const char *pszRow = kHelp;
  for (int i = 0; i < kHelpRows; ++i) {
    const auto s32Length = static_cast<int>(strcspn(pszRow, "\n"));
    KEST_PRINT_AS(kDispatcher, "%.*s\n", s32Length, pszRow);
    pszRow += s32Length;
    if (*pszRow != '\0') ++pszRow;
  }
  _ZE_KEST_Debug_GetVersion();
  return ZE_KEST_OK;
}

}  // namespace kest
