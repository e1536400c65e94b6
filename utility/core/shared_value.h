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

}  // namespace kest
