// SPDX-License-Identifier: Apache-2.0
// Reads what /proc tells about processes.
#pragma once

#include <string>
#include <vector>

#include "ctl/channel/host.h"

namespace kest::ctl {

std::string ReadSmallFile(const std::string &path);
// All of /proc, or none when it is not mounted.
std::vector<int> AllPids();
Process DescribeProcess(int pid);

enum class Reading { kNo, kYes, kHidden };
// Whether the process has the file open for reading.
Reading HasOpenForReading(int pid, const FileFacts &file);

}  // namespace kest::ctl
