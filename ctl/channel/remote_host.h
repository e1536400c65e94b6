// SPDX-License-Identifier: Apache-2.0
// A system behind a remote shell. Nothing but a POSIX shell, dd, stat, cat and rm is needed there.
#pragma once

#include "ctl/channel/host.h"
#include "ctl/channel/local_host.h"
#include "ctl/channel/remote_shell.h"

namespace kest::ctl {

class RemoteHost final : public Host {
 public:
  // command reaches the system: "adb shell", "ssh tv".
  explicit RemoteHost(const std::string &command) : shell_(command) {}

  FileFacts Look(const std::string &path) override;
  FilePart Read(const std::string &path, uint64_t offset, size_t maxBytes) override;
  std::string ReadProc(const std::string &path) override { return Cat(path); }
  // May take a second to find that nobody reads or that the pipe is full.
  WriteResult WriteToPipe(const std::string &path, const std::string &bytes) override;
  // Never known.
  std::optional<size_t> UnreadBytes(const std::string &path) override;
  Readers FindReaders(const FileFacts &pipe) override;
  bool IsReader(int pid, const FileFacts &pipe) override;
  std::vector<OpenFile> OpenFiles(int pid) override;
  bool Remove(const std::string &path) override;
  int64_t FreeBytes(const std::string &path) override;
  std::vector<int> LockHolders(const FileFacts &file) override;
  // Keeps out those that reach the same path by the same command from this system.
  std::shared_ptr<void> LockOut(const std::string &path, std::chrono::milliseconds timeout) override;

 private:
  std::string Cat(const std::string &path);
  Process Describe(int pid);
  // Pids of those that have the file open for reading, among descriptors given as a pattern.
  std::vector<int> ReadersAmong(const std::string &descriptors, const FileFacts &file);
  WriteResult FinishWrite();

  RemoteShell shell_;
  LocalHost local_;
};

}  // namespace kest::ctl
