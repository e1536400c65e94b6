// SPDX-License-Identifier: Apache-2.0
// Access to plain globals that other threads write without a lock. A value is read and written as a whole,
// but without any ordering relative to other memory.
#pragma once

namespace kest {

template <typename T>
T Load(const T &value) {
  return __atomic_load_n(&value, __ATOMIC_RELAXED);
}

template <typename T>
void Store(T &value, T newValue) {
  __atomic_store_n(&value, newValue, __ATOMIC_RELAXED);
}

// For a pointer to data that the writer filled in before: a reader that sees the pointer also sees the data.
template <typename T>
T *LoadAcquire(T *const &pointer) {
  return __atomic_load_n(&pointer, __ATOMIC_ACQUIRE);
}

template <typename T>
void StoreRelease(T *&pointer, T *newPointer) {
  __atomic_store_n(&pointer, newPointer, __ATOMIC_RELEASE);
}

}  // namespace kest
