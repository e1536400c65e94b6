// SPDX-License-Identifier: Apache-2.0
// Work in a process of its own, which may crash or never end.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace kest::player {

struct ChildOutcome {
  std::string report;  // what it wrote
  bool hasTimedOut = false;
  int exitCode = 0;
  int signal = 0;  // that ended it; 0: none
};

// work: runs in the child and gets the descriptor to write to. What the child prints goes to stderr.
ChildOutcome RunInChild(const std::function<void(int fd)> &work, std::chrono::seconds limit);

// Replaces the process by this program anew, with these arguments. Returns when that fails.
void ExecuteAgain(const std::vector<std::string> &arguments, int inheritedFd);

// From now on a crash of this process is reported with the signal and, for a guard page, the place.
void ReportCrashesTo(int fd);
// Where that is; -1: nowhere.
int CrashReportFd();

void WriteAll(int fd, const std::string &text);

}  // namespace kest::player
