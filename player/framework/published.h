// SPDX-License-Identifier: Apache-2.0
// Fields of the records that the command thread looks at while the pipelines run: each is written whole.
#pragma once

namespace kest::player {

template <typename T>
void Publish(T &field, T value) {
  __atomic_store_n(&field, value, __ATOMIC_RELAXED);
}

}  // namespace kest::player
