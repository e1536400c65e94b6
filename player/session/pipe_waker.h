// SPDX-License-Identifier: Apache-2.0
// Writes empty lines into the command pipe.
//
// Shutting down the debug layer waits until the command thread has read one more line. Another process on the
// same pipe may take that line, so this class keeps writing lines until it is destroyed.
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

namespace kest::player {

class PipeWaker {
 public:
  // Writes nothing before Start. Creates the thread now, because at the end it would be too late for the
  // std::system_error that a missing thread throws. The process must ignore SIGPIPE, since other readers may
  // leave the pipe.
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
