// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "ctl/channel/write_failure.h"
#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/render/table.h"

namespace kest::ctl {
namespace {

void RefuseWithoutPipe(Context &context) {
  const std::string path = context.GetSettings().directory + "D";
  switch (context.GetHost().Look(path).kind) {
    case FileKind::kPipe:
      return;
    case FileKind::kMissing:
      throw WriteFailure(context.GetHost(), path, WriteResult::kMissing);
    case FileKind::kDenied:
      throw WriteFailure(context.GetHost(), path, WriteResult::kDenied);
    default:
      throw WriteFailure(context.GetHost(), path, WriteResult::kNotPipe);
  }
}

std::string StateName(char state) {
  switch (state) {
    case 'R':
    case 'S':
    case 'D':
      return "runs";
    case 'T':
    case 't':
      return "stopped";
    default:
      return std::string(1, state);
  }
}

}  // namespace

Result RunPs(Context &context, const Arguments & /*arguments*/) {
  RefuseWithoutPipe(context);
  const Readers &readers = context.GetChannel().GetReaders();
  Result result;
  result.data["processes"] = Json::array();
  result.data["hidden"] = readers.hidden;
  Table table({{"PID", Table::Align::kRight},
               {"NAME"},
               {"STATE"},
               {"START"},
               {"THREADS", Table::Align::kRight},
               {"PROGRAM"}});
  for (const Process &process : readers.processes) {
    result.data["processes"].push_back(ToJson(process));
    table.Add({std::to_string(process.pid), process.name, StateName(process.state), process.start,
               std::to_string(process.threads.size()), process.exe});
  }
  if (readers.hidden > 0) {
    context.GetChannel().Warn(
        fmt::format("the files of {} processes may not be looked at; root sees all", readers.hidden));
  }
  if (table.IsEmpty()) {
    result.exit = ExitCode::kUnreachable;
    result.message = readers.hidden > 0 ? "no process is seen to read the pipe" : "no process reads the pipe";
    result.hint = "kestctl doctor looks for the reason";
    return result;
  }
  result.text = table.Text();
  return result;
}

}  // namespace kest::ctl
