// SPDX-License-Identifier: Apache-2.0
// Records the timing traces of running pipelines.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "ctl/commands/context.h"
#include "ctl/model/trace.h"

namespace kest::ctl {

// The whole text of a file that nobody writes any more.
std::string ReadWhole(Host &host, const std::string &path);
// Throws when the text was written by several pipelines.
PipelineTrace TraceIn(const std::string &text, const std::string &path);
// Notes in which cycles port lines were printed.
void NotePrinted(TraceDocument &document);

struct TraceWish {
  std::vector<const Pipeline *> pipelines;
  std::chrono::milliseconds duration;
  std::chrono::milliseconds levelsEvery;  // 0: never
  std::function<void(std::chrono::milliseconds)> progress;
};

struct Recording {
  TraceDocument document;
  // Why it is shorter than wished: an interrupt, or the process has ended.
  ExitCode exit = ExitCode::kDone;
  std::string message;
};

// Throws when the trace could not be switched on; switches it off in any case.
Recording RecordTrace(Context &context, const TraceWish &wish);
// The same of one pipeline and of those whose names begin with its name, as the process writes it. An
// interrupt throws.
std::string RecordTraceText(Context &context, const Pipeline &pipeline, std::chrono::milliseconds duration);

}  // namespace kest::ctl
