// SPDX-License-Identifier: Apache-2.0
// Fields of the records that the command thread reads while the pipelines run. Each is stored in one piece,
// and neither call orders it with other fields.
#pragma once

namespace kest::player {

template <typename T>
void StoreRelaxed(T &field, T value) {
  __atomic_store_n(&field, value, __ATOMIC_RELAXED);
}

// For threads other than the writer's.
template <typename T>
T LoadRelaxed(const T &field) {
  return __atomic_load_n(&field, __ATOMIC_RELAXED);
}

}  // namespace kest::player
