// SPDX-License-Identifier: Apache-2.0
// Wakes a thread that waits for something else in poll().
#pragma once

namespace kest {

class WakeUp {
 public:
  // Takes a descriptor. Where there is none, waits are not woken and callers must end them by themselves.
  void Open();
  // Only when no thread waits any more.
  void Close();

  void Wake() const;
  // Forgets earlier wake-ups.
  void Clear() const;

  // Readable once it was woken; -1 without a descriptor.
  [[nodiscard]] int Descriptor() const { return s32Fd_; }

  // Waits until it is woken, but no longer than this.
  void Sleep(int s32Ms) const;

 private:
  int s32Fd_ = -1;
};

}  // namespace kest
