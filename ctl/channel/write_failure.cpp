// SPDX-License-Identifier: Apache-2.0
#include "ctl/channel/write_failure.h"

#include <fmt/format.h>

namespace kest::ctl {
namespace {

std::string DirectoryOf(const std::string &path) {
  return path.substr(0, path.rfind('/') + 1);
}

CtlError NoPipe(Host &host, const std::string &path) {
  const std::string directory = DirectoryOf(path);
  if (host.Look(directory).kind != FileKind::kDirectory) {
    return {ExitCode::kUnreachable, fmt::format("there is no directory {}", directory),
            fmt::format("create it with mkdir -p {} and start the process again, or name another with --dir",
                        directory)};
  }
  return {ExitCode::kUnreachable, fmt::format("there is no pipe {}", path),
          "start the process, or start it again if the pipe was removed; a process creates it"};
}

CtlError Denied(Host &host, const std::string &path) {
  const FileFacts pipe = host.Look(path);
  const bool isKnown = pipe.kind == FileKind::kPipe;
  const std::string owner = isKnown ? fmt::format(", which belongs to {}", pipe.owner) : "";
  return {ExitCode::kUnreachable, fmt::format("no permission to write to {}{}", path, owner),
          isKnown ? fmt::format("run kestctl as {} or as root", pipe.owner) : "run kestctl as root"};
}

}  // namespace

CtlError WriteFailure(Host &host, const std::string &path, WriteResult result) {
  switch (result) {
    case WriteResult::kNotPipe:
      return {ExitCode::kUnreachable, fmt::format("{} is no pipe", path),
              "somebody wrote to it before a process had created the pipe: remove it and start the process "
              "again"};
    case WriteResult::kNoReader:
      return {ExitCode::kUnreachable, fmt::format("no process reads {}", path),
              "start the process; if it runs, start it again: the pipe is not the one it has open"};
    case WriteResult::kFull:
      return {ExitCode::kNoAnswer, fmt::format("{} is full of lines that nobody has read", path),
              "kestctl doctor says why"};
    case WriteResult::kDenied:
      return Denied(host, path);
    default:
      return NoPipe(host, path);
  }
}

}  // namespace kest::ctl
