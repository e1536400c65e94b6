// SPDX-License-Identifier: Apache-2.0
// Marks that the calling thread works on the log itself.
#pragma once

namespace kest {

// While one lives, the thread's reports go to the Android log alone: the library's own log would come back
// here, to a mutex that the thread may hold and a file that has just failed.
class InsideLog {
 public:
  InsideLog();
  ~InsideLog();
  InsideLog(const InsideLog &) = delete;
  InsideLog &operator=(const InsideLog &) = delete;

  static bool IsThisThread();

 private:
  bool bBefore_;
};

}  // namespace kest
