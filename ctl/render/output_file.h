// SPDX-License-Identifier: Apache-2.0
// Files that kestctl writes for others to read.
#pragma once

#include <string>

#include <sys/types.h>

namespace kest::ctl {

// Writes the whole file under another name beside it and renames it: whoever reads sees all of it or the
// former one. Throws CtlError when it cannot be written.
void ReplaceFile(const std::string &path, const std::string &bytes, mode_t mode);

}  // namespace kest::ctl
