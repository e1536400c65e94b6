// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/output_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kest::ctl {
namespace {

bool WriteAll(const UniqueFd &file, const std::string &bytes) {
  for (size_t done = 0; done < bytes.size();) {
    const ssize_t count = write(file.Get(), bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) done += static_cast<size_t>(count);
  }
  return true;
}

// Where links lead, so that the link stays.
std::string BehindLinks(const std::string &path) {
  std::error_code error;
  const std::filesystem::path target = std::filesystem::canonical(path, error);
  return error ? path : target.string();
}

// What another file must not take the place of, such as /dev/null.
bool IsSpecial(const std::string &path) {
  struct stat facts = {};
  return stat(path.c_str(), &facts) == 0 && !S_ISREG(facts.st_mode);
}

}  // namespace

CtlError CannotWrite(const std::string &path, const std::string &reason) {
  return {ExitCode::kUnreachable, fmt::format("cannot write {}: {}", path, reason)};
}

mode_t OrdinaryMode() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

OutputFile::OutputFile(const std::string &path, mode_t mode) : path_(BehindLinks(path)), mode_(mode) {
  if (IsSpecial(path_)) {
    file_ = UniqueFd(open(path_.c_str(), O_WRONLY | O_CLOEXEC));
  } else {
    temporary_ = path_ + ".XXXXXX";
    file_ = UniqueFd(mkostemp(temporary_.data(), O_CLOEXEC));
  }
  if (!file_.IsOpen()) Fail();
}

OutputFile::~OutputFile() {
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

void OutputFile::Fail() const {
  throw CannotWrite(path_, std::strerror(errno));
}

void OutputFile::Write(const std::string &bytes) {
  if (!WriteAll(file_, bytes)) Fail();
  if (temporary_.empty()) return;
  const bool isSafe = fchmod(file_.Get(), mode_) == 0 && fsync(file_.Get()) == 0;
  if (!isSafe || std::rename(temporary_.c_str(), path_.c_str()) != 0) Fail();
  temporary_.clear();
}

}  // namespace kest::ctl
