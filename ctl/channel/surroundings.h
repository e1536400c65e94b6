// SPDX-License-Identifier: Apache-2.0
// What can be seen from outside of the pipe, the log and the processes that use them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ctl/channel/host.h"

namespace kest::ctl {

struct Surroundings {
  Surroundings(Host &host, std::string directory);

  [[nodiscard]] std::string PipePath() const { return directory + "D"; }
  [[nodiscard]] std::string LogPath() const { return directory + "KestLog.txt"; }
  [[nodiscard]] std::string SharedPath() const { return directory + "shm_global"; }

  Host &host;
  std::string directory;
  FileFacts pipe;
  FileFacts log;
  Readers readers;
  std::optional<size_t> unreadBytes;  // of the pipe; empty when that cannot be seen
};

// One thing that was looked at.
struct Finding {
  // kNote: not wrong, but good to know.
  enum class Status { kGood, kNote, kBad, kUnknown };

  const char *id;
  Status status;
  std::string found;
  std::string remedy;  // empty when good

  [[nodiscard]] bool IsBad() const { return status == Status::kBad; }
};

// Each looks at one thing, without sending anything.
Finding CheckDirectory(const Surroundings &around);
Finding CheckPipe(const Surroundings &around);
Finding CheckPermission(const Surroundings &around);
Finding CheckReaders(const Surroundings &around);
Finding CheckSingleReader(const Surroundings &around);
Finding CheckStopped(const Surroundings &around);
Finding CheckPipeLock(const Surroundings &around);
Finding CheckUnread(const Surroundings &around);
Finding CheckFileLogging(const Surroundings &around);
Finding CheckLogFile(const Surroundings &around);
Finding CheckDisk(const Surroundings &around);
Finding CheckSharedBlock(const Surroundings &around);

// Why no answer has come to a line that the pipe took; empty when nothing is wrong that can be seen. A
// passing reason can also be seen for a moment, when lines of others are read or the log restarts.
std::optional<Finding> LastingReasonOfSilence(const Surroundings &around);
std::optional<Finding> PassingReasonOfSilence(const Surroundings &around);

}  // namespace kest::ctl
