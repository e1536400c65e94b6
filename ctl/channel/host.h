// SPDX-License-Identifier: Apache-2.0
// What kestctl does to the system on which the processes run: this one, or one behind a remote shell.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ctl/model/process.h"

namespace kest::ctl {

enum class FileKind { kMissing, kPipe, kRegular, kDirectory, kOther, kDenied };

struct FileFacts {
  FileKind kind = FileKind::kMissing;
  uint64_t device = 0;
  uint64_t inode = 0;
  uint64_t size = 0;
  std::string owner;  // only from Look
  unsigned mode = 0;
  std::string modified;  // when it was last written to: to be compared, not to be read

  [[nodiscard]] bool IsSameFile(const FileFacts &other) const {
    return kind == other.kind && device == other.device && inode == other.inode;
  }
};

enum class WriteResult { kWritten, kMissing, kNotPipe, kNoReader, kFull, kDenied };

// A part of a file, with what was known of the file when it was read.
struct FilePart {
  FileFacts facts;
  std::string bytes;
};

struct Readers {
  std::vector<Process> processes;
  int hidden = 0;  // processes whose files could not be looked at
};

// A file that a process has open.
struct OpenFile {
  FileFacts facts;
  std::string path;  // as the system shows it, " (deleted)" included
};

class Host {
 public:
  Host() = default;
  virtual ~Host() = default;
  Host(const Host &) = delete;
  Host &operator=(const Host &) = delete;

  // Of the path itself when it is a symbolic link.
  virtual FileFacts Look(const std::string &path) = 0;
  // At most maxBytes from the offset on; no bytes when the file is missing or shorter.
  virtual FilePart Read(const std::string &path, uint64_t offset, size_t maxBytes) = 0;
  // The text of a file of /proc, whose size is not known before; empty when there is none.
  virtual std::string ReadProc(const std::string &path) = 0;
  // Writes all bytes at once or none. Never waits and never creates the file.
  virtual WriteResult WriteToPipe(const std::string &path, const std::string &bytes) = 0;
  // Bytes that nobody has read yet; empty when that cannot be seen.
  virtual std::optional<size_t> UnreadBytes(const std::string &path) = 0;
  virtual Readers FindReaders(const FileFacts &pipe) = 0;
  // Whether the process still has the pipe open; cheaper than looking for all readers.
  virtual bool IsReader(int pid, const FileFacts &pipe) = 0;
  virtual std::vector<OpenFile> OpenFiles(int pid) = 0;
  // False when the file is still there.
  virtual bool Remove(const std::string &path) = 0;
  // Bytes that can still be written beside the path; -1 when unknown.
  virtual int64_t FreeBytes(const std::string &path) = 0;
  // Pids that hold a lock on the file.
  virtual std::vector<int> LockHolders(const FileFacts &file) = 0;
  // Keeps other kestctl processes from sending until the returned object dies. Empty when the lock file
  // cannot be used; throws when it cannot be had in time.
  virtual std::shared_ptr<void> LockOut(const std::string &path, std::chrono::milliseconds timeout) = 0;
};

}  // namespace kest::ctl
