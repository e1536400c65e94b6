// SPDX-License-Identifier: Apache-2.0
#include "debug/control/help.h"

#include "debug/base/version.h"
#include "utility/core/report.h"

namespace kest {
namespace {

constexpr int kHelpRows = 128;

#define KEST_RULE "---------------------------------\n"

constexpr const char *kHelp[] = {
    "\n",
    KEST_RULE,
    ("cd " KEST_DEBUG_DIR "\n"),
    KEST_RULE,
    "echo help >D\n",
    "echo ascii_color >D\n",
    "echo kest_log_restart >D\n",
    "echo kest_print_current_shm >D\n",
    "echo kest_monitor_sleep_time=20000 >D\n",
    KEST_RULE,
    "echo kest_log_to_print=on >D\n",
    "echo kest_log_to_print=off >D\n",
    KEST_RULE,
    "echo kest_log_to_file=on >D\n",
    "echo kest_log_to_file=off >D\n",
    KEST_RULE,
    "echo kest_log_level=all >D\n",
    "echo kest_log_level=trace >D\n",
    "echo kest_log_level=info >D\n",
    "echo kest_log_level=wrn >D\n",
    "echo kest_log_level=err >D\n",
    "echo kest_log_level=none >D\n",
    KEST_RULE,
    "echo kest_log_size=524288 >D\n",
    "echo kest_json_parser=/vendor/etc/Vul_Basic.json >D\n",
    KEST_RULE,
    "echo kest_debug_node=register >D\n",
    "echo kest_debug_node=remove_filter >D\n",
    "echo kest_debug_node=remove_pipeline >D\n",
    "echo kest_debug_node=release >D\n",
    "echo kest_debug_node=pipeline_connect >D\n",
    "echo kest_debug_node=pipeline_disconnect >D\n",
    KEST_RULE,
    "echo kest_debug_list=print >D\n",
    "echo kest_debug_send_cmd=0,dbgcmd1=test >D\n",
    "echo kest_debug_preset_cmd=all,adc_filter=dump_pcm >D\n",
    "echo kest_debug_preset_cmd=off >D\n",
    KEST_RULE,
    "echo kest_debug_watch_current_tids=on >D\n",
    "echo kest_debug_watch_current_tids=off >D\n",
    KEST_RULE,
    "echo kest_debug_watch=create_test >D\n",
    "echo kest_debug_watch_tid=123,456 >D\n",
    "echo kest_debug_watch_tid=0 >D\n",
    KEST_RULE,
    "echo kest_debug_filter_io=SpeakerOutput >D\n",
    "echo kest_debug_filter_io=SpeakerOutput,Mixer >D\n",
    "echo kest_debug_filter_io=BluetoothOutput >D\n",
    "echo kest_debug_filter_io=BluetoothOutput,Mixer >D\n",
    "echo kest_debug_filter_io=stop >D\n",
    "echo kest_debug_filter_io=restart >D\n",
    "echo kest_debug_filter_io=release >D\n",
    "echo kest_debug_filter_io=print_watch_list >D\n",
    KEST_RULE,
    "echo kest_perf_event_target=pipeline,PipelineName >D\n",
    "echo kest_perf_event_target=filter,PipelineName,FilterName >D\n",
    "echo kest_perf_event_target=none >D\n",
    KEST_RULE,
    "echo kest_latency_start_filter=PipelineName,FilterName >D\n",
    "echo kest_latency_end_filter=PipelineName,FilterName >D\n",
    "echo kest_latency=on >D\n",
    "echo kest_latency=off >D\n",
    "echo kest_dump_input_filter=PipelineName,FilterName >D\n",
    "echo kest_dump_input=on >D\n",
    "echo kest_dump_input=off >D\n",
    "echo kest_dump_output_filter=PipelineName,FilterName >D\n",
    "echo kest_dump_output=on >D\n",
    "echo kest_dump_output=off >D\n",
    "echo kest_output_sinewave_filter=PipelineName,FilterName >D\n",
    "echo kest_output_sinewave=on >D\n",
    "echo kest_output_sinewave=off >D\n",
    "echo kest_print_filter_info=on >D\n",
    "echo kest_print_filter_info=off >D\n",
    KEST_RULE,
};

constexpr int kTextRows = sizeof(kHelp) / sizeof(kHelp[0]);
static_assert(kTextRows <= kHelpRows, "the help is a table of 128 rows");

void _ZE_KEST_Debug_GetVersion() {
  KEST_PRINT("%s,%d,%s\n", __func__, __LINE__, kVersion);
}

}  // namespace

// Unused rows of the table print as empty lines.
uint32_t PrintHelp(const CommandArguments & /*arguments*/) {
  for (int i = 0; i < kHelpRows; ++i)
    KEST_PRINT_AS(kDispatcher, "%s", i < kTextRows ? kHelp[i] : "\n");
  _ZE_KEST_Debug_GetVersion();
  return ZE_KEST_OK;
}

}  // namespace kest
