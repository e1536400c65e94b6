// SPDX-License-Identifier: Apache-2.0
#include "debug/base/started.h"

#include <cstdint>

#include "utility/core/shared_value.h"

namespace kest {
namespace {

uint8_t g_bStarted = 0;
uint8_t g_bEnding = 0;

}  // namespace

bool IsStarted() {
  return Load(g_bStarted) != 0;
}

void SetStarted(bool bStarted) {
  Store(g_bStarted, static_cast<uint8_t>(bStarted));
}

bool IsEnding() {
  return Load(g_bEnding) != 0;
}

void SetEnding(bool bEnding) {
  Store(g_bEnding, static_cast<uint8_t>(bEnding));
}

}  // namespace kest
