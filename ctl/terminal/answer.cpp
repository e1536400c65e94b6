// SPDX-License-Identifier: Apache-2.0
#include "ctl/terminal/answer.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "ctl/render/escape.h"
#include "ctl/render/fit.h"

namespace kest::ctl {
namespace {

constexpr const char *kSchema = "kestctl/1";

Json ProcessOf(Context *context) {
  if (context == nullptr) return {};
  const auto &processes = context->GetChannel().KnownReaders().processes;
  if (processes.size() != 1) return {};
  return {{"pid", processes[0].pid}, {"name", ToJson(processes[0].name)}};
}

Json DocumentOf(Context *context, const Command *command, const Result &result) {
  Json json;
  json["schema"] = kSchema;
  json["command"] = command == nullptr ? Json() : Json(command->name);
  json["ok"] = result.exit == ExitCode::kDone;
  json["exit"] = static_cast<int>(result.exit);
  json["process"] = ProcessOf(context);
  json["elapsed_ms"] = context == nullptr ? 0.0 : context->GetChannel().ElapsedMs();
  json["warnings"] = context == nullptr ? Json::array() : ToJson(context->GetChannel().Warnings());
  json["data"] = result.data;
  if (result.exit != ExitCode::kDone) {
    json["error"] = {
        {"code", NameOf(result.exit)}, {"message", ToJson(result.message)}, {"hint", ToJson(result.hint)}};
  }
  return json;
}

// What is no table is shown as it is: lines of the log, replies, metrics.
bool HasTables(const Command *command) {
  constexpr std::string_view kCommands[] = {"ps", "doctor", "ls", "status"};
  return command != nullptr &&
         std::find(std::begin(kCommands), std::end(kCommands), command->name) != std::end(kCommands);
}

// 0: as wide as the text is.
size_t TerminalWidth() {
  winsize size = {};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

void PrintForPeople(Context *context, const Command *command, const Result &result, bool quiet) {
  fmt::print("{}", HasTables(command) ? FitTo(TerminalWidth(), result.text) : result.text);
  std::fflush(stdout);
  if (context != nullptr && !quiet) {
    for (const std::string &warning : context->GetChannel().Warnings())
      fmt::print(stderr, "kestctl: warning: {}\n", Escape(warning));
  }
  if (result.exit == ExitCode::kDone || result.message.empty()) return;
  // The terminal has shown ^C where the cursor was.
  if (result.exit == ExitCode::kInterrupted && isatty(STDERR_FILENO) != 0) fmt::print(stderr, "\n");
  fmt::print(stderr, "kestctl: {}\n", Escape(result.message));
  if (!quiet && !result.hint.empty()) fmt::print(stderr, "         {}\n", Escape(result.hint));
}

int Print(Context *context, const Command *command, const Result &result, const Settings &settings) {
  if (settings.json) {
    fmt::print("{}\n", Dump(DocumentOf(context, command, result)));
  } else {
    PrintForPeople(context, command, result, settings.quiet);
  }
  std::fflush(stdout);
  return static_cast<int>(result.exit);
}

}  // namespace

int PrintResult(Context &context, const Command &command, const Result &result) {
  return Print(&context, &command, result, context.GetSettings());
}

int PrintFailure(Context *context, const Command *command, const CtlError &error, const Settings &settings) {
  Result result;
  result.exit = error.Code();
  result.message = error.what();
  result.hint = error.Hint();
  return Print(context, command, result, settings);
}

}  // namespace kest::ctl
