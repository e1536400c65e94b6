// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/output_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ctl/error.h"
#include "programs/unique_fd.h"

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

[[noreturn]] void Fail(const std::string &path) {
  throw CtlError(ExitCode::kRefused, fmt::format("{} cannot be written: {}", path, std::strerror(errno)));
}

// Removed unless it was renamed.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string &pattern)
      : name_(pattern), file_(mkostemp(name_.data(), O_CLOEXEC)) {}
  ~TemporaryFile() {
    if (file_.IsOpen() && !isRenamed_) unlink(name_.c_str());
  }
  TemporaryFile(const TemporaryFile &) = delete;
  TemporaryFile &operator=(const TemporaryFile &) = delete;

  [[nodiscard]] const UniqueFd &File() const { return file_; }
  bool RenameTo(const std::string &path) {
    isRenamed_ = rename(name_.c_str(), path.c_str()) == 0;
    return isRenamed_;
  }

 private:
  std::string name_;
  UniqueFd file_;
  bool isRenamed_ = false;
};

}  // namespace

void ReplaceFile(const std::string &path, const std::string &bytes, mode_t mode) {
  TemporaryFile temporary(path + ".XXXXXX");
  const UniqueFd &file = temporary.File();
  const bool isWritten =
      file.IsOpen() && WriteAll(file, bytes) && fchmod(file.Get(), mode) == 0 && fsync(file.Get()) == 0;
  if (!isWritten || !temporary.RenameTo(path)) Fail(path);
}

}  // namespace kest::ctl
