// SPDX-License-Identifier: Apache-2.0
#include "player/session/pipe_waker.h"

#include <chrono>

#include <fcntl.h>
#include <sys/stat.h>

#include "programs/unique_fd.h"

namespace kest::player {
namespace {

constexpr const char *kCommandPipe = KEST_DEBUG_DIR "D";
constexpr std::chrono::milliseconds kPeriod{50};

// Failures are ignored: nobody reads the pipe, or it is full of lines. A regular file in its place belongs to
// somebody and is left alone.
void WakeReader() {
  const UniqueFd pipe(open(kCommandPipe, O_WRONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat opened = {};
  if (fstat(pipe.Get(), &opened) == 0 && S_ISFIFO(opened.st_mode)) (void)!write(pipe.Get(), "\n", 1);
}

}  // namespace

PipeWaker::~PipeWaker() {
  Set(done_);
  thread_.join();
}

void PipeWaker::Run() {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return started_ || done_; });
  while (!done_) {
    WakeReader();
    changed_.wait_for(lock, kPeriod, [this] { return done_; });
  }
}

void PipeWaker::Set(bool &flag) {
  const std::lock_guard<std::mutex> lock(mutex_);
  flag = true;
  changed_.notify_one();
}

}  // namespace kest::player
