// SPDX-License-Identifier: Apache-2.0
// The system on which kestctl itself runs.
#pragma once

#include "ctl/channel/host.h"

namespace kest::ctl {

class LocalHost final : public Host {
 public:
  FileFacts Look(const std::string &path) override;
  FilePart Read(const std::string &path, uint64_t offset, size_t maxBytes) override;
  std::string ReadProc(const std::string &path) override;
  WriteResult WriteToPipe(const std::string &path, const std::string &bytes) override;
  std::optional<size_t> UnreadBytes(const std::string &path) override;
  Readers FindReaders(const FileFacts &pipe) override;
  bool IsReader(int pid, const FileFacts &pipe) override;
  std::vector<OpenFile> OpenFiles(int pid) override;
  bool Remove(const std::string &path) override;
  int64_t FreeBytes(const std::string &path) override;
  std::vector<int> LockHolders(const FileFacts &file) override;
  std::shared_ptr<void> LockOut(const std::string &path, std::chrono::milliseconds timeout) override;
};

}  // namespace kest::ctl
