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
  // The next text begins at the offset.
  void GoTo(uint64_t offset);

  // Where the next text begins.
  [[nodiscard]] uint64_t Offset() const { return offset_; }
  // How often the log was seen to be emptied or replaced while it was followed.
  [[nodiscard]] int Restarts() const { return restarts_; }
  // Whether it was, or may have been unseen: it was written to and has not become longer.
  [[nodiscard]] bool MayHaveRestarted() const;
  [[nodiscard]] const std::string &Path() const { return path_; }

 private:
  [[nodiscard]] bool IsContinued(const FilePart &part) const;
  void NoteRestart(const FileFacts &now);

  Host &host_;
  std::string path_;
  FileFacts facts_;
  uint64_t offset_ = 0;
  std::string modified_;  // when the text before the offset was written
  std::string before_;    // the last bytes before the offset: other ones there mean that the log was emptied
                          // and has grown
  int restarts_ = 0;
};

}  // namespace kest::ctl
