// SPDX-License-Identifier: Apache-2.0
#include "player/check/process_state.h"

#include <cfenv>
#include <filesystem>
#include <iterator>

#include <pthread.h>
#include <sys/stat.h>

namespace kest::player {
namespace {

namespace fs = std::filesystem;

std::set<std::string> Descriptors() {
  std::set<std::string> names;
  for (const auto &entry : fs::directory_iterator("/proc/self/fd")) {
    std::error_code gone;  // the one that lists them
    const fs::path target = fs::read_symlink(entry.path(), gone);
    if (!gone) names.insert(entry.path().filename().string() + " " + target.string());
  }
  return names;
}

size_t Threads() {
  return static_cast<size_t>(
      std::distance(fs::directory_iterator("/proc/self/task"), fs::directory_iterator()));
}

mode_t Umask() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return mask;
}

// Rounding, traps and flushing of denormals, without the flags that arithmetic sets.
unsigned long FloatingPointControl() {
#if defined(__x86_64__)
  constexpr unsigned kControl = 0xFFC0;
  return __builtin_ia32_stmxcsr() & kControl;
#elif defined(__arm__)
  constexpr unsigned kControl = 0x07C09F00;
  return __builtin_arm_get_fpscr() & kControl;
#else
  return static_cast<unsigned long>(fegetround());
#endif
}

bool IsSame(const sigset_t &a, const sigset_t &b) {
  for (int number = 1; number < SIGRTMAX; ++number) {
    if (sigismember(&a, number) != sigismember(&b, number)) return false;
  }
  return true;
}

}  // namespace

ProcessState ProcessState::Now() {
  ProcessState state{Descriptors(), Threads(), fs::current_path(), Umask(), {}, FloatingPointControl()};
  pthread_sigmask(SIG_SETMASK, nullptr, &state.blocked);
  return state;
}

std::string ProcessState::ChangeSince() const {
  const unsigned long control = FloatingPointControl();
  const ProcessState now = Now();
  if (control != floatingPoint) return "changes the floating-point control of the calling thread";
  for (const std::string &descriptor : now.descriptors) {
    if (descriptors.count(descriptor) == 0) return "leaves descriptor " + descriptor + " open";
  }
  if (now.descriptors.size() < descriptors.size()) return "closes a descriptor of the process";
  if (now.threads != threads) {
    return "leaves " + std::to_string(now.threads) + " threads, before there were " + std::to_string(threads);
  }
  if (now.directory != directory) return "changes the working directory to " + now.directory;
  if (now.umask != umask) return "changes the umask";
  if (!IsSame(now.blocked, blocked)) return "changes the signal mask";
  return "";
}

}  // namespace kest::player
