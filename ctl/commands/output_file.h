// SPDX-License-Identifier: Apache-2.0
// A file that a command makes: it appears whole, or not at all.
#pragma once

#include <string>

namespace kest::ctl {

class OutputFile {
 public:
  // Throws at once when it cannot be made, before anything is switched on.
  explicit OutputFile(std::string path);
  ~OutputFile();
  OutputFile(const OutputFile &) = delete;
  OutputFile &operator=(const OutputFile &) = delete;

  void Write(const std::string &text);

 private:
  [[noreturn]] void Fail() const;

  std::string path_;
  std::string temporary_;
};

}  // namespace kest::ctl
