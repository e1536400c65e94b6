// SPDX-License-Identifier: Apache-2.0
// A file that kestctl writes for others to read: it appears whole, or the former one stays.
#pragma once

#include <string>

#include <sys/types.h>

#include "ctl/error.h"
#include "programs/unique_fd.h"

namespace kest::ctl {

// reason: in the words of the system or of a library.
CtlError CannotWrite(const std::string &path, const std::string &reason);

// Of a file that nothing is special about.
mode_t OrdinaryMode();

class OutputFile {
 public:
  // Throws CtlError at once when it cannot be made, before anything is switched on.
  explicit OutputFile(const std::string &path, mode_t mode = OrdinaryMode());
  // Leaves nothing behind unless it was written.
  ~OutputFile();
  OutputFile(const OutputFile &) = delete;
  OutputFile &operator=(const OutputFile &) = delete;

  // The whole contents, once. Throws CtlError.
  void Write(const std::string &bytes);

 private:
  [[noreturn]] void Fail() const;

  std::string path_;
  std::string temporary_;  // the name until it is whole; empty for a device, a pipe or a socket
  mode_t mode_;
  UniqueFd file_;
};

}  // namespace kest::ctl
