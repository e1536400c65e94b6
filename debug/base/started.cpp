// SPDX-License-Identifier: Apache-2.0
#include "debug/base/started.h"

#include <cstdint>

#include <pthread.h>

#include "utility/core/shared_value.h"

namespace kest {
namespace {

uint8_t g_bStarted = 0;
uint8_t g_bEnding = 0;
pthread_mutex_t g_startingMutex = PTHREAD_MUTEX_INITIALIZER;

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

Starting::Starting() {
  pthread_mutex_lock(&g_startingMutex);
}

Starting::~Starting() {
  pthread_mutex_unlock(&g_startingMutex);
}

void WaitForStart() {
  const Starting starting;
}

}  // namespace kest
