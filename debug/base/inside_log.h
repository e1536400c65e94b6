// SPDX-License-Identifier: Apache-2.0
// Marks the calling thread as working on the log itself.
#pragma once

namespace kest {

// While an object of this class exists, the thread's reports go to the Android log only. The library's own
// log would come back to this code, which may hold the log mutex or have just failed to use the file.
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
