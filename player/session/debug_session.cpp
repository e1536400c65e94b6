// SPDX-License-Identifier: Apache-2.0
#include "player/session/debug_session.h"

#include <cerrno>
#include <cstring>
#include <iostream>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include "ze_kest/debug.h"

namespace kest::player {
namespace {

constexpr const char *kDirectory = KEST_DEBUG_DIR;
constexpr const char *kCommandPipe = KEST_DEBUG_DIR "D";
constexpr const char *kLogFile = KEST_DEBUG_DIR "KestLog.txt";

void WarnAboutDirectory() {
  std::cerr << "kest-player: there will be no log and no command pipe: " << kDirectory << ": "
            << std::strerror(errno) << "\n"
            << "kest-player: to have them, run  mkdir -p " << kDirectory
            << "  and make the directory writable for you\n";
}

// Whether the library will be able to make the command pipe, tried under a name that nobody uses.
bool MayMakePipe() {
  const std::string probe = kCommandPipe + std::to_string(getpid());
  return mkfifo(probe.c_str(), 0600) == 0 && unlink(probe.c_str()) == 0;
}

void WarnAboutPipe() {
  struct stat status {};
  if (stat(kCommandPipe, &status) == 0) {
    if (S_ISFIFO(status.st_mode)) return;
    std::cerr << "kest-player: " << kCommandPipe
              << " is no pipe, no commands are read; remove it while no player is running\n";
  } else if (errno == ENOENT && !MayMakePipe()) {
    std::cerr << "kest-player: no commands are read: cannot make the pipe " << kCommandPipe << ": "
              << std::strerror(errno) << "\n";
  }
}

// Warns of a file that another user's player has left behind or is using.
void WarnAboutFile(const char *path) {
  if (access(path, R_OK | W_OK) == 0 || errno == ENOENT) return;
  std::cerr << "kest-player: " << path << " cannot be used: " << std::strerror(errno)
            << "; run as the user it belongs to, or remove it while no player is running\n";
}

void WarnAboutWhatIsMissing() {
  if (access(kDirectory, W_OK | X_OK) != 0) return WarnAboutDirectory();
  WarnAboutPipe();
  WarnAboutFile(kCommandPipe);
  WarnAboutFile(kLogFile);
}

}  // namespace

DebugSession::DebugSession() {
  WarnAboutWhatIsMissing();
  // The library changes the umask when it creates shared files; the player's output must be created with the
  // user's own.
  const mode_t userMask = umask(0);
  umask(userMask);
  ze_kest_Debug_Init();
  umask(userMask);
}

DebugSession::~DebugSession() {
  waker_.Start();
  ze_kest_Debug_DeInit();
}

}  // namespace kest::player
