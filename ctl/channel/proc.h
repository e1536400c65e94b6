// SPDX-License-Identifier: Apache-2.0
// Reads what /proc tells about processes.
#pragma once

#include <string>
#include <vector>

#include "ctl/channel/host.h"

namespace kest::ctl {

constexpr const char *kCommandThreadName = "KestDebug";

// What the texts of /proc/PID/fdinfo/N, /proc/PID/stat with /proc/stat, and /proc/locks say.
bool IsForReading(const std::string &fdInfo);
void TakeStat(const std::string &processStat, const std::string &systemStat, Process &process);
std::vector<int> LockHoldersIn(const std::string &locks, const FileFacts &file);
// Of st_mode.
FileKind KindOf(unsigned mode);

std::string ReadSmallFile(const std::string &path);
// All of /proc, or none when it is not mounted.
std::vector<int> AllPids();
Process DescribeProcess(int pid);

enum class Reading { kNo, kYes, kHidden };
// Whether the process has the file open for reading.
Reading HasOpenForReading(int pid, const FileFacts &file);

}  // namespace kest::ctl
