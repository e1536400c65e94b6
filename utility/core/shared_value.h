// SPDX-License-Identifier: Apache-2.0
// Access to plain globals that other threads write without a lock: whole, in no order with anything else.
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

// The same for a pointer to what the writer has filled in before: the reader finds it filled in.
template <typename T>
T *LoadPublished(T *const &pointer) {
  return __atomic_load_n(&pointer, __ATOMIC_ACQUIRE);
}

template <typename T>
void Publish(T *&pointer, T *newPointer) {
  __atomic_store_n(&pointer, newPointer, __ATOMIC_RELEASE);
}

}  // namespace kest
