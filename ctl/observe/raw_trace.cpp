// SPDX-License-Identifier: Apache-2.0
#include "ctl/observe/raw_trace.h"

#include <algorithm>

#include <fmt/format.h>

#include "ctl/channel/interrupt.h"
#include "ctl/observe/switched_on.h"
#include "ctl/parse/lines.h"

namespace kest::ctl {
namespace {

constexpr size_t kMostBytes = size_t{8} * 1024 * 1024;
constexpr const char *kRelease = "kest_debug_filter_io=release";

// A name that the command line takes apart, or that is no file name, cannot be traced.
void RefuseName(const std::string &pipeline) {
  if (pipeline.find_first_of(" ,=/") == std::string::npos) return;
  throw CtlError(ExitCode::kRefused, "the command for the trace does not take such a name");
}

// Releasing the watches would end somebody else's trace.
void RefuseWhenTraced(Channel &channel) {
  const Lines lines = channel.Ask({"kest_debug_filter_io=print_watch_list"}).lines;
  const bool isTraced = std::any_of(lines.begin(), lines.end(), [](const std::string &line) {
    return Contains(line, "bIoDebug=1") || Contains(line, " pf:0x");
  });
  if (isTraced) throw CtlError(ExitCode::kRefused, "somebody traces already");
}

// Not through a link, which could lead anywhere.
std::string ReadTrace(Host &host, const std::string &path) {
  if (host.Look(path).kind != FileKind::kRegular)
    throw CtlError(ExitCode::kRefused, fmt::format("the process has written no {}", path));
  return host.Read(path, 0, kMostBytes).bytes;
}

}  // namespace

std::string RecordRawTrace(Context &context, const std::string &pipeline,
                           std::chrono::milliseconds duration) {
  Channel &channel = context.GetChannel();
  RefuseName(pipeline);
  RefuseWhenTraced(channel);
  SwitchedOn trace(channel, {kRelease});
  const std::string watch = fmt::format("kest_debug_filter_io={},report", pipeline);
  static_cast<void>(channel.Send({watch, "kest_debug_filter_io=restart"}));
  Pause(duration);
  trace.Off();
  return ReadTrace(context.GetHost(), fmt::format("{}{}.txt", context.GetSettings().directory, pipeline));
}

}  // namespace kest::ctl
