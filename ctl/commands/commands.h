// SPDX-License-Identifier: Apache-2.0
// The functions behind the table of commands.
#pragma once

#include "ctl/commands/command.h"

namespace kest::ctl {

Result RunPs(Context &context, const Arguments &arguments);
Result RunDoctor(Context &context, const Arguments &arguments);
Result RunLs(Context &context, const Arguments &arguments);
Result RunStatus(Context &context, const Arguments &arguments);
Result RunGet(Context &context, const Arguments &arguments);
Result RunSet(Context &context, const Arguments &arguments);
Result RunCmd(Context &context, const Arguments &arguments);
Result RunSend(Context &context, const Arguments &arguments);
Result RunLevel(Context &context, const Arguments &arguments);
Result RunLog(Context &context, const Arguments &arguments);
Result RunTop(Context &context, const Arguments &arguments);
Result RunWatch(Context &context, const Arguments &arguments);
Result RunPerf(Context &context, const Arguments &arguments);
Result RunTrace(Context &context, const Arguments &arguments);
Result RunDump(Context &context, const Arguments &arguments);
Result RunLatency(Context &context, const Arguments &arguments);
Result RunCheck(Context &context, const Arguments &arguments);
Result RunPlot(Context &context, const Arguments &arguments);
Result RunMetrics(Context &context, const Arguments &arguments);
Result RunReport(Context &context, const Arguments &arguments);
Result RunShell(Context &context, const Arguments &arguments);
Result RunCompletion(Context &context, const Arguments &arguments);
Result RunHelp(Context &context, const Arguments &arguments);

}  // namespace kest::ctl
