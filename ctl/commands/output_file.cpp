// SPDX-License-Identifier: Apache-2.0
#include "ctl/commands/output_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

#include <fmt/format.h>
#include <unistd.h>

#include "ctl/error.h"

namespace kest::ctl {

OutputFile::OutputFile(std::string path)
    : path_(std::move(path)), temporary_(fmt::format("{}.{}.part", path_, getpid())) {
  const std::ofstream file(temporary_, std::ios::binary);
  if (!file) Fail();
}

OutputFile::~OutputFile() {
  unlink(temporary_.c_str());
}

void OutputFile::Fail() const {
  throw CtlError(ExitCode::kUsage, fmt::format("{} cannot be written: {}", path_, std::strerror(errno)));
}

void OutputFile::Write(const std::string &text) {
  std::ofstream file(temporary_, std::ios::binary | std::ios::trunc);
  file << text;
  file.close();
  if (!file || std::rename(temporary_.c_str(), path_.c_str()) != 0) Fail();
}

}  // namespace kest::ctl
