// SPDX-License-Identifier: Apache-2.0
#include "player/session/process_setup.h"

#include <fcntl.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace kest::player {
namespace {

bool IsHangUpIgnored() {
  struct sigaction hangUp {};
  return sigaction(SIGHUP, nullptr, &hangUp) == 0 && hangUp.sa_handler == SIG_IGN;
}

}  // namespace

void FillStandardDescriptors() {
  int fd = 0;
  do {
    fd = open("/dev/null", O_RDWR | O_CLOEXEC);
  } while (fd >= 0 && fd <= STDERR_FILENO);
  if (fd >= 0) close(fd);
}

sigset_t BlockEndSignals() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  if (!IsHangUpIgnored()) sigaddset(&set, SIGHUP);
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
  return set;
}

UniqueFd WatchSignals(const sigset_t &signals) {
  return UniqueFd(signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC));
}

void IgnoreWriteSignals() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace kest::player
