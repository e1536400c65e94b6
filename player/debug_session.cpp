// SPDX-License-Identifier: Apache-2.0
#include "player/debug_session.h"

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <iostream>
#include <mutex>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>

#include "ze_kest/debug.h"

#include "player/unique_fd.h"

namespace kest::player {
namespace {

constexpr const char *kDirectory = KEST_DEBUG_DIR;
constexpr const char *kCommandPipe = KEST_DEBUG_DIR "D";
constexpr const char *kLogFile = KEST_DEBUG_DIR "KestLog.txt";

void WarnOfDirectory() {
  std::cerr << "kest-player: there will be no log and no command pipe: " << kDirectory << ": "
            << std::strerror(errno) << "\n"
            << "kest-player: to have them, run  mkdir -p " << kDirectory
            << "  and make the directory writable for you\n";
}

// What a player of another user has left, or uses.
void WarnOfFile(const char *path) {
  if (access(path, R_OK | W_OK) == 0 || errno == ENOENT) return;
  std::cerr << "kest-player: " << path << " cannot be used: " << std::strerror(errno)
            << "; play as the user whom it belongs to, or remove it when nobody plays\n";
}

void WarnOfWhatIsMissing() {
  if (access(kDirectory, W_OK | X_OK) != 0) return WarnOfDirectory();
  WarnOfFile(kCommandPipe);
  WarnOfFile(kLogFile);
}

// The end of the debug layer waits until the command thread has read one more line. Another process on the
// same pipe may take that line, so this writes empty ones for as long as it lives.
class PipeWaker {
 public:
  PipeWaker() : thread_([this] { Run(); }) {}
  ~PipeWaker() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      done_ = true;
    }
    doneChanged_.notify_one();
    thread_.join();
  }
  PipeWaker(const PipeWaker &) = delete;
  PipeWaker &operator=(const PipeWaker &) = delete;

 private:
  static constexpr std::chrono::milliseconds kPeriod{50};

  void Run() {
    std::unique_lock<std::mutex> lock(mutex_);
    do {
      WriteLine();
    } while (!doneChanged_.wait_for(lock, kPeriod, [this] { return done_; }));
  }

  // Nothing to do when it fails: nobody reads, or the pipe is full of lines. A file in the pipe's place is
  // somebody's.
  static void WriteLine() {
    const UniqueFd pipe(open(kCommandPipe, O_WRONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat opened = {};
    if (fstat(pipe.Get(), &opened) == 0 && S_ISFIFO(opened.st_mode)) (void)!write(pipe.Get(), "\n", 1);
  }

  std::mutex mutex_;
  std::condition_variable doneChanged_;
  bool done_ = false;
  std::thread thread_;
};

}  // namespace

DebugSession::DebugSession() {
  WarnOfWhatIsMissing();
  // The library changes the umask when it creates shared files; the player's output keeps the user's.
  const mode_t userMask = umask(0);
  umask(userMask);
  ze_kest_Debug_Init();
  umask(userMask);
}

DebugSession::~DebugSession() {
  const PipeWaker waker;
  ze_kest_Debug_DeInit();
}

}  // namespace kest::player
