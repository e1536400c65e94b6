// SPDX-License-Identifier: Apache-2.0
#include "player/audio/standard_input.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "player/base/player_error.h"

namespace kest::player {

StandardInput::StandardInput() : stopFd_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
  if (!stopFd_.IsOpen()) {
    throw PlayerError(std::string("cannot wait for standard input: ") + std::strerror(errno));
  }
  if (isatty(STDIN_FILENO) != 0) {
    throw PlayerError(
        "standard input is a terminal; let another program write into it, such as  sox in.flac -t wav - | "
        "kest-player - -o out.wav");
  }
}

bool StandardInput::Await(size_t bytes) {
  while (Held() < bytes && !ended_) {
    if (!WaitForData()) return false;
    ReadMore();
  }
  return Held() >= bytes;
}

// False when the wait was ended.
bool StandardInput::WaitForData() const {
  pollfd waits[] = {{STDIN_FILENO, POLLIN, 0}, {stopFd_.Get(), POLLIN, 0}, {endFd_, POLLIN, 0}};
  while (poll(waits, std::size(waits), -1) < 0 && errno == EINTR) {
  }
  return waits[1].revents == 0 && waits[2].revents == 0;
}

// The descriptor may be one that does not block, and another reader may have taken what was there.
void StandardInput::ReadMore() {
  std::copy(bytes_.data() + begin_, bytes_.data() + end_, bytes_.data());
  end_ -= begin_;
  begin_ = 0;
  const auto room = static_cast<size_t>(std::min<uint64_t>(bytesLeft_, bytes_.size() - end_));
  const ssize_t got = read(STDIN_FILENO, bytes_.data() + end_, room);
  if (got < 0 && (errno == EAGAIN || errno == EINTR)) return;
  if (got < 0) error_ = errno;
  if (got > 0) {
    end_ += static_cast<size_t>(got);
    bytesLeft_ -= static_cast<uint64_t>(got);
  }
  ended_ = got <= 0 || bytesLeft_ == 0;
}

void StandardInput::StopWaiting() {
  eventfd_write(stopFd_.Get(), 1);
}

size_t StandardInput::Take(void *to, size_t bytes) {
  bytes = std::min(bytes, Held());
  std::memcpy(to, bytes_.data() + begin_, bytes);
  begin_ += bytes;
  return bytes;
}

void StandardInput::EndAfter(uint64_t bytes) {
  if (Held() >= bytes) {
    end_ = begin_ + static_cast<size_t>(bytes);
    ended_ = true;
  }
  bytesLeft_ = bytes - Held();
}

void StandardInput::CheckIsWhole() const {
  if (error_ != 0) throw PlayerError(std::string("cannot read standard input: ") + std::strerror(error_));
}

}  // namespace kest::player
