// SPDX-License-Identifier: Apache-2.0
#include "ctl/channel/surroundings.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "ctl/parse/lines.h"

namespace kest::ctl {
namespace {

using Status = Finding::Status;

constexpr int64_t kLeastFreeBytes = int64_t{64} * 1024;

Finding Good(const char *id, std::string found) {
  return {id, Status::kGood, std::move(found), {}};
}

Finding Bad(const char *id, std::string found, std::string remedy) {
  return {id, Status::kBad, std::move(found), std::move(remedy)};
}

Finding Unknown(const char *id, std::string found, std::string remedy = {}) {
  return {id, Status::kUnknown, std::move(found), std::move(remedy)};
}

std::string NameWithPid(const Process &process) {
  return fmt::format("{} ({})", process.name, process.pid);
}

std::string NamesOf(const std::vector<Process> &processes) {
  std::vector<std::string> names;
  std::transform(processes.begin(), processes.end(), std::back_inserter(names), NameWithPid);
  return fmt::format("{}", fmt::join(names, ", "));
}

// The file that the process has open under the path, be it still there or not.
const OpenFile *FindOpen(const std::vector<OpenFile> &files, const std::string &path) {
  const auto found = std::find_if(files.begin(), files.end(),
                                  [&](const OpenFile &file) { return BeginsWith(file.path, path); });
  return found == files.end() ? nullptr : &*found;
}

bool IsStopped(const Process &process) {
  return process.state == 'T' || process.state == 't';
}

// Runs a check of the open file on every reader; the first that is not good counts.
template <typename Check>
Finding ForEveryReader(const char *id, const Surroundings &around, Check check) {
  if (around.readers.processes.empty()) return Unknown(id, "no process to look at");
  Finding finding = Good(id, "");
  for (const Process &process : around.readers.processes) {
    finding = check(process);
    if (finding.status != Status::kGood) break;
  }
  return finding;
}

std::optional<Finding> FirstBad(const Surroundings &around,
                                std::initializer_list<Finding (*)(const Surroundings &)> checks) {
  for (const auto check : checks) {
    Finding finding = check(around);
    if (finding.IsBad()) return finding;
  }
  return std::nullopt;
}

}  // namespace

Surroundings::Surroundings(Host &hostIn, std::string directoryIn)
    : host(hostIn),
      directory(std::move(directoryIn)),
      pipe(host.Look(PipePath())),
      log(host.Look(LogPath())) {
  if (pipe.kind != FileKind::kPipe) return;
  readers = host.FindReaders(pipe);
  unreadBytes = host.UnreadBytes(PipePath());
}

Finding CheckDirectory(const Surroundings &around) {
  constexpr const char *kId = "directory";
  const FileFacts facts = around.host.Look(around.directory);
  if (facts.kind == FileKind::kDirectory) {
    return Good(kId, fmt::format("{}, mode {:o}, of {}", around.directory, facts.mode, facts.owner));
  }
  const bool isDenied = facts.kind == FileKind::kDenied;
  return Bad(
      kId, fmt::format(isDenied ? "{} may not be read" : "there is no directory {}", around.directory),
      fmt::format("mkdir -p {} as a user that the processes share, and start them again", around.directory));
}

Finding CheckPipe(const Surroundings &around) {
  constexpr const char *kId = "pipe";
  switch (around.pipe.kind) {
    case FileKind::kPipe:
      return Good(
          kId, fmt::format("{}, mode {:o}, of {}", around.PipePath(), around.pipe.mode, around.pipe.owner));
    case FileKind::kMissing:
      return Bad(
          kId, fmt::format("there is no pipe {}", around.PipePath()),
          "start the process, or start it again if it runs: a process creates the pipe when it starts");
    case FileKind::kDenied:
      return Bad(kId, fmt::format("{} may not be looked at", around.PipePath()), "run kestctl as root");
    default:
      return Bad(
          kId, fmt::format("{} is no pipe", around.PipePath()),
          fmt::format("rm {} and start the process again; somebody wrote there before the pipe existed",
                      around.PipePath()));
  }
}

Finding CheckPermission(const Surroundings &around) {
  constexpr const char *kId = "permission";
  if (around.pipe.kind != FileKind::kPipe) return Unknown(kId, "no pipe to open");
  // Writing nothing opens the pipe like a command does.
  if (around.host.WriteToPipe(around.PipePath(), "") == WriteResult::kDenied) {
    return Bad(kId,
               fmt::format("{} belongs to {} and may not be written", around.PipePath(), around.pipe.owner),
               fmt::format("run kestctl as {} or as root", around.pipe.owner));
  }
  if (around.host.Read(around.LogPath(), 0, 0).facts.kind == FileKind::kDenied) {
    return Bad(kId, fmt::format("{} belongs to {} and may not be read", around.LogPath(), around.log.owner),
               fmt::format("run kestctl as {} or as root", around.log.owner));
  }
  return Good(kId, "the pipe may be written and the log be read");
}

Finding CheckReaders(const Surroundings &around) {
  constexpr const char *kId = "readers";
  if (around.pipe.kind != FileKind::kPipe) return Unknown(kId, "no pipe to look for");
  const auto &processes = around.readers.processes;
  if (!processes.empty()) return Good(kId, NamesOf(processes));
  if (around.host.WriteToPipe(around.PipePath(), "") != WriteResult::kNoReader) {
    return Unknown(kId, fmt::format("the files of {} processes may not be looked at", around.readers.hidden),
                   "run kestctl as root to see who reads the pipe");
  }
  return Bad(kId, fmt::format("no process reads {}", around.PipePath()),
             "start the process; if it runs, start it again: it has another pipe open, or none");
}

Finding CheckSingleReader(const Surroundings &around) {
  constexpr const char *kId = "single_reader";
  const auto &processes = around.readers.processes;
  if (processes.size() <= 1) return Good(kId, "no two processes share the pipe");
  return Bad(kId, fmt::format("{} processes read the pipe: {}", processes.size(), NamesOf(processes)),
             "each line goes to whichever is first: end all but one");
}

Finding CheckStopped(const Surroundings &around) {
  constexpr const char *kId = "running";
  return ForEveryReader(kId, around, [](const Process &process) {
    if (!IsStopped(process)) return Good(kId, fmt::format("{} runs", NameWithPid(process)));
    return Bad(kId, fmt::format("{} is stopped", NameWithPid(process)),
               fmt::format("kill -CONT {}, or let the debugger continue it", process.pid));
  });
}

Finding CheckPipeLock(const Surroundings &around) {
  constexpr const char *kId = "pipe_lock";
  if (around.pipe.kind != FileKind::kPipe) return Unknown(kId, "no pipe to look at");
  // A process locks the pipe while it reads a line; others must not.
  for (const int pid : around.host.LockHolders(around.pipe)) {
    const auto &processes = around.readers.processes;
    const bool isReader = std::any_of(processes.begin(), processes.end(),
                                      [&](const Process &process) { return process.pid == pid; });
    if (!isReader) {
      return Bad(kId, fmt::format("process {} holds a lock on {}", pid, around.PipePath()),
                 "end it: while it holds the lock, no line is read");
    }
  }
  return Good(kId, "nobody but its readers locks the pipe");
}

Finding CheckUnread(const Surroundings &around) {
  constexpr const char *kId = "unread";
  if (!around.unreadBytes) return Unknown(kId, "how much is unread cannot be seen");
  if (*around.unreadBytes == 0) return Good(kId, "every line has been read");
  const std::string found = fmt::format("{} bytes in the pipe have not been read", *around.unreadBytes);
  if (CheckStopped(around).IsBad() || CheckPipeLock(around).IsBad()) return {kId, Status::kNote, found, {}};
  return Bad(kId, found,
             "the command thread is busy or hangs, for example in a filter's command; look at its stack");
}

Finding CheckFileLogging(const Surroundings &around) {
  constexpr const char *kId = "file_logging";
  return ForEveryReader(kId, around, [&](const Process &process) {
    const std::vector<OpenFile> files = around.host.OpenFiles(process.pid);
    if (files.empty())
      return Unknown(kId, fmt::format("the files of {} cannot be seen", NameWithPid(process)));
    if (FindOpen(files, around.LogPath()) != nullptr)
      return Good(kId, fmt::format("{} logs to the file", NameWithPid(process)));
    return Bad(
        kId, fmt::format("{} does not log to {}", NameWithPid(process), around.LogPath()),
        fmt::format("echo kest_log_to_file=on >{0}; if the log was moved away, echo kest_log_restart >{0}",
                    around.PipePath()));
  });
}

Finding CheckLogFile(const Surroundings &around) {
  constexpr const char *kId = "log_file";
  return ForEveryReader(kId, around, [&](const Process &process) {
    const std::vector<OpenFile> files = around.host.OpenFiles(process.pid);
    const OpenFile *open = FindOpen(files, around.LogPath());
    if (open == nullptr) return Unknown(kId, fmt::format("{} has no log open", NameWithPid(process)));
    if (open->facts.IsSameFile(around.log)) {
      return Good(kId, fmt::format("{}, {} bytes", around.LogPath(), around.log.size));
    }
    const bool isGone = around.log.kind == FileKind::kMissing;
    return Bad(
        kId,
        fmt::format("{} writes to a log that was {}", NameWithPid(process), isGone ? "deleted" : "replaced"),
        fmt::format("echo kest_log_restart >{} makes it open the path again", around.PipePath()));
  });
}

Finding CheckDisk(const Surroundings &around) {
  constexpr const char *kId = "disk";
  const int64_t free = around.host.FreeBytes(around.directory);
  if (free < 0) return Unknown(kId, "the free space is not known");
  if (free >= kLeastFreeBytes) return Good(kId, fmt::format("{} MiB free", free / (int64_t{1024} * 1024)));
  return Bad(kId, fmt::format("the disk is full: {} bytes free in {}", free, around.directory),
             "make room: remove dumps, or echo kest_log_restart to empty the log");
}

Finding CheckSharedBlock(const Surroundings &around) {
  constexpr const char *kId = "shared_block";
  const FileFacts block = around.host.Look(around.SharedPath());
  const bool exists = block.kind == FileKind::kRegular;
  if (around.readers.processes.empty()) {
    if (!exists) return Good(kId, "no settings are left behind");
    const bool unseen = around.readers.hidden > 0;
    if (unseen) return Unknown(kId, "whether a process uses the shared settings cannot be seen");
    return Bad(
        kId, fmt::format("{} was left behind by a process that is gone", around.SharedPath()),
        "the next process takes over its level and preset command; remove it to begin with the defaults");
  }
  return ForEveryReader(kId, around, [&](const Process &process) {
    const std::vector<OpenFile> files = around.host.OpenFiles(process.pid);
    const OpenFile *open = FindOpen(files, around.SharedPath());
    if (open == nullptr) {
      return Bad(kId, fmt::format("{} has no shared settings", NameWithPid(process)),
                 "it started while the directory could not be written; start it again");
    }
    if (open->facts.IsSameFile(block))
      return Good(kId, fmt::format("{} shares its settings", NameWithPid(process)));
    return Bad(
        kId,
        fmt::format("{} was removed or replaced since {} started", around.SharedPath(), NameWithPid(process)),
        "level and preset command no longer reach other processes; start all of them again");
  });
}

std::optional<Finding> LastingReasonOfSilence(const Surroundings &around) {
  return FirstBad(around, {CheckPipe, CheckReaders, CheckStopped, CheckPipeLock, CheckDisk});
}

std::optional<Finding> PassingReasonOfSilence(const Surroundings &around) {
  return FirstBad(around, {CheckUnread, CheckFileLogging, CheckLogFile, CheckSingleReader});
}

}  // namespace kest::ctl
