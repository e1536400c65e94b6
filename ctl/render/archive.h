// SPDX-License-Identifier: Apache-2.0
// A tar.gz archive, put together in memory.
#pragma once

#include <memory>
#include <string>

struct archive;

namespace kest::ctl {

class Archive {
 public:
  // All files get into one directory.
  explicit Archive(std::string directory);
  ~Archive();
  Archive(const Archive &) = delete;
  Archive &operator=(const Archive &) = delete;

  // name: relative to the directory, with slashes.
  void Add(const std::string &name, const std::string &bytes);
  // The whole archive. To be called once, last.
  std::string Finish();

 private:
  void Check(int status) const;

  std::string directory_;
  std::string bytes_;
  archive *writer_;
};

}  // namespace kest::ctl
