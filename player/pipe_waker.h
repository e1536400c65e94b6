// SPDX-License-Identifier: Apache-2.0
// Writes empty lines into the command pipe.
//
// The end of the debug layer waits until the command thread has read one more line. Another process on the
// same pipe may take that line, so this writes them until it is destroyed.
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

namespace kest::player {

class PipeWaker {
 public:
  // Waits for Start. Throws std::system_error without a thread: at the end it would be too late for that. The
  // process has to ignore SIGPIPE, because other readers may leave the pipe.
  PipeWaker() : thread_([this] { Run(); }) {}
  ~PipeWaker();
  PipeWaker(const PipeWaker &) = delete;
  PipeWaker &operator=(const PipeWaker &) = delete;

  void Start() { Set(started_); }

 private:
  void Run();
  void Set(bool &flag);

  std::mutex mutex_;
  std::condition_variable changed_;
  bool started_ = false;
  bool done_ = false;
  std::thread thread_;
};

}  // namespace kest::player
