// SPDX-License-Identifier: Apache-2.0
#include "ctl/channel/log_tail.h"

#include <algorithm>

#include <fmt/format.h>

#include "ctl/channel/interrupt.h"
#include "ctl/error.h"
#include "ctl/parse/lines.h"

namespace kest::ctl {
namespace {

constexpr uint64_t kBlockBytes = uint64_t{256} * 1024;

FilePart ReadOrThrow(Host &host, const std::string &path, uint64_t offset, uint64_t size) {
  FilePart part = host.Read(path, offset, size);
  if (part.facts.kind == FileKind::kRegular) return part;
  if (part.facts.kind == FileKind::kDenied) {
    const std::string owner = host.Look(path).owner;
    throw CtlError(
        ExitCode::kUnreachable, fmt::format("no permission to read {}", path),
        owner.empty() ? "run kestctl as root" : fmt::format("run kestctl as {} or as root", owner));
  }
  throw CtlError(ExitCode::kUnreachable, fmt::format("there is no log {}", path),
                 "no process has started here, or file logging is off; kestctl doctor says more");
}

}  // namespace

LogTail ReadTail(Host &host, const std::string &path, size_t count,
                 const std::function<bool(const std::string &)> &takes) {
  LogTail tail;
  tail.end = ReadOrThrow(host, path, 0, 0).facts.size;
  std::string cut;  // the end of a line whose beginning is in the block before
  bool isFirst = true;
  std::vector<std::string> newestFirst;
  for (uint64_t end = tail.end; end > 0 && newestFirst.size() < count;) {
    ThrowIfInterrupted();
    const uint64_t start = end - std::min(end, kBlockBytes);
    std::string block = ReadOrThrow(host, path, start, end - start).bytes + cut;
    if (isFirst) {
      // A last line without an end is still being written.
      const size_t whole = block.rfind('\n') + 1;
      tail.end = start + whole;
      block.erase(whole);
      isFirst = false;
    }
    const size_t firstEnd = block.find('\n');
    const size_t from = start == 0 ? 0 : firstEnd == std::string::npos ? block.size() : firstEnd + 1;
    cut = block.substr(0, from);
    const std::vector<std::string> lines = SplitLogLines(std::string_view(block).substr(from));
    for (auto line = lines.rbegin(); line != lines.rend() && newestFirst.size() < count; ++line) {
      if (takes(*line)) newestFirst.push_back(*line);
    }
    end = start;
  }
  tail.lines.assign(newestFirst.rbegin(), newestFirst.rend());
  return tail;
}

}  // namespace kest::ctl
