// SPDX-License-Identifier: Apache-2.0
// Follows the log from its present end on: through restarts, which empty it, and through replacements.
#pragma once

#include <string>

#include "ctl/channel/host.h"

namespace kest::ctl {

class LogFollower {
 public:
  LogFollower(Host &host, std::string path);

  // What was added since the last call, at most a piece of it. After a restart the text begins at the new
  // beginning.
  std::string ReadMore();
  // Goes back so that the last bytes of what was read come again.
  void GoBack(size_t bytes) { offset_ -= bytes; }
  void GoTo(uint64_t offset) { offset_ = offset; }

  // Where the next text begins.
  [[nodiscard]] uint64_t Offset() const { return offset_; }
  [[nodiscard]] const FileFacts &Facts() const { return facts_; }
  // How often the log was emptied or replaced while it was followed.
  [[nodiscard]] int Restarts() const { return restarts_; }
  [[nodiscard]] const std::string &Path() const { return path_; }

 private:
  void NoteRestart(const FileFacts &now);

  Host &host_;
  std::string path_;
  FileFacts facts_;
  uint64_t offset_ = 0;
  int restarts_ = 0;
};

}  // namespace kest::ctl
