// SPDX-License-Identifier: Apache-2.0
#include "player/debug_session.h"

#include <cerrno>
#include <cstring>
#include <iostream>

#include <sys/stat.h>
#include <unistd.h>

#include "ze_kest/debug.h"

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
  waker_.Start();
  ze_kest_Debug_DeInit();
}

}  // namespace kest::player
