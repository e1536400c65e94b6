// SPDX-License-Identifier: Apache-2.0
#include "ctl/channel/local_host.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <fmt/format.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "ctl/channel/interrupt.h"
#include "ctl/channel/proc.h"
#include "ctl/error.h"
#include "programs/unique_fd.h"

namespace kest::ctl {
namespace {

constexpr std::chrono::microseconds kLockPause{50};

std::string UserName(uid_t user) {
  passwd entry = {};
  passwd *found = nullptr;
  char text[4096];
  getpwuid_r(user, &entry, text, sizeof(text), &found);
  return found == nullptr ? fmt::format("user {}", user) : found->pw_name;
}

FileFacts FactsOf(const struct stat &facts) {
  return {KindOf(facts.st_mode),
          facts.st_dev,
          facts.st_ino,
          static_cast<uint64_t>(facts.st_size),
          {},
          facts.st_mode & 07777u,
          fmt::format("{}.{:09}", facts.st_mtim.tv_sec, facts.st_mtim.tv_nsec)};
}

FileFacts NoFacts(int error) {
  FileFacts facts;
  facts.kind = error == EACCES ? FileKind::kDenied : FileKind::kMissing;
  return facts;
}

WriteResult ReasonFor(int error) {
  switch (error) {
    case ENXIO:
    case EPIPE:
      return WriteResult::kNoReader;
    case EAGAIN:
      return WriteResult::kFull;
    case EACCES:
    case EPERM:
    case EROFS:
      return WriteResult::kDenied;
    default:
      return WriteResult::kMissing;
  }
}

// Open without O_CREAT and without waiting for a reader.
UniqueFd OpenPipe(const std::string &path) {
  return UniqueFd(open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW));
}

bool IsPipe(const UniqueFd &fd) {
  struct stat facts = {};
  return fstat(fd.Get(), &facts) == 0 && S_ISFIFO(facts.st_mode);
}

std::string ReadAt(const UniqueFd &file, uint64_t offset, size_t size) {
  std::string bytes(size, '\0');
  const ssize_t count = pread(file.Get(), bytes.data(), size, static_cast<off_t>(offset));
  bytes.resize(count < 0 ? 0 : static_cast<size_t>(count));
  return bytes;
}

UniqueFd OpenLockFile(const std::string &path) {
  UniqueFd file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666));
  if (file.IsOpen()) (void)!fchmod(file.Get(), 0666);  // for other users too, whatever the umask
  return file;
}

}  // namespace

FileFacts LocalHost::Look(const std::string &path) {
  struct stat facts = {};
  if (lstat(path.c_str(), &facts) != 0) return NoFacts(errno);
  FileFacts known = FactsOf(facts);
  known.owner = UserName(facts.st_uid);
  return known;
}

FilePart LocalHost::Read(const std::string &path, uint64_t offset, size_t maxBytes) {
  // A pipe in place of the log must not make the open wait.
  const UniqueFd file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file.IsOpen()) return {NoFacts(errno), {}};
  struct stat facts = {};
  if (fstat(file.Get(), &facts) != 0) return {NoFacts(errno), {}};
  FilePart part = {FactsOf(facts), {}};
  if (part.facts.kind != FileKind::kRegular || part.facts.size <= offset) return part;
  part.bytes = ReadAt(file, offset, std::min<uint64_t>(maxBytes, part.facts.size - offset));
  return part;
}

std::string LocalHost::ReadProc(const std::string &path) {
  return ReadSmallFile(path);
}

WriteResult LocalHost::WriteToPipe(const std::string &path, const std::string &bytes) {
  struct stat facts = {};
  if (lstat(path.c_str(), &facts) != 0) return ReasonFor(errno);
  if (!S_ISFIFO(facts.st_mode)) return WriteResult::kNotPipe;
  const UniqueFd pipe = OpenPipe(path);
  if (!pipe.IsOpen()) return ReasonFor(errno);
  if (!IsPipe(pipe)) return WriteResult::kNotPipe;
  // Up to 4096 bytes a pipe takes as a whole or not at all.
  const ssize_t written = write(pipe.Get(), bytes.data(), bytes.size());
  return written == static_cast<ssize_t>(bytes.size()) ? WriteResult::kWritten : ReasonFor(errno);
}

std::optional<size_t> LocalHost::UnreadBytes(const std::string &path) {
  const UniqueFd pipe = OpenPipe(path);
  int count = 0;
  if (!pipe.IsOpen() || ioctl(pipe.Get(), FIONREAD, &count) != 0) return std::nullopt;
  return static_cast<size_t>(count);
}

Readers LocalHost::FindReaders(const FileFacts &pipe) {
  Readers readers;
  for (const int pid : AllPids()) {
    const Reading reading = HasOpenForReading(pid, pipe);
    if (reading == Reading::kYes) readers.processes.push_back(DescribeProcess(pid));
    if (reading == Reading::kHidden) ++readers.hidden;
  }
  return readers;
}

bool LocalHost::IsReader(int pid, const FileFacts &pipe) {
  return HasOpenForReading(pid, pipe) == Reading::kYes;
}

std::vector<OpenFile> LocalHost::OpenFiles(int pid) {
  std::vector<OpenFile> files;
  std::error_code error;
  for (const auto &entry : std::filesystem::directory_iterator(fmt::format("/proc/{}/fd", pid), error)) {
    struct stat facts = {};
    if (stat(entry.path().c_str(), &facts) != 0) continue;
    files.push_back({FactsOf(facts), std::filesystem::read_symlink(entry.path(), error).string()});
  }
  return files;
}

bool LocalHost::Remove(const std::string &path) {
  return unlink(path.c_str()) == 0 || errno == ENOENT;
}

int64_t LocalHost::FreeBytes(const std::string &path) {
  struct statvfs facts = {};
  if (statvfs(path.c_str(), &facts) != 0) return -1;
  return static_cast<int64_t>(uint64_t{facts.f_bavail} * facts.f_frsize);
}

std::vector<int> LocalHost::LockHolders(const FileFacts &file) {
  return LockHoldersIn(ReadSmallFile("/proc/locks"), file);
}

std::shared_ptr<void> LocalHost::LockOut(const std::string &path, std::chrono::milliseconds timeout) {
  UniqueFd file = OpenLockFile(path);
  if (!file.IsOpen()) return nullptr;
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (flock(file.Get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) return nullptr;
    if (std::chrono::steady_clock::now() > deadline) {
      throw CtlError(ExitCode::kNoAnswer, "another kestctl has been waiting for an answer all the time",
                     fmt::format("it holds {}; end it or wait for it", path));
    }
    Pause(kLockPause);
  }
  return std::make_shared<UniqueFd>(std::move(file));
}

}  // namespace kest::ctl
