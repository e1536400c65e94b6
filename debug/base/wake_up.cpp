// SPDX-License-Identifier: Apache-2.0
#include "debug/base/wake_up.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "utility/core/guarded_open.h"

namespace kest {

void WakeUp::Open() {
  if (s32Fd_ < 0) s32Fd_ = AboveStandard(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
}

void WakeUp::Close() {
  if (s32Fd_ >= 0) close(s32Fd_);
  s32Fd_ = -1;
}

void WakeUp::Wake() const {
  eventfd_write(s32Fd_, 1);
}

void WakeUp::Clear() const {
  eventfd_t u64Count = 0;
  eventfd_read(s32Fd_, &u64Count);
}

void WakeUp::Sleep(int s32Ms) const {
  struct pollfd stWakeUp = {s32Fd_, POLLIN, 0};
  poll(&stWakeUp, 1, s32Ms);
}

}  // namespace kest
