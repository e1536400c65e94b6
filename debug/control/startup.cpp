// SPDX-License-Identifier: Apache-2.0
#include "debug/control/startup.h"

#include <atomic>

#include "ze_kest/debug.h"

#include "debug/base/base_init.h"
#include "debug/base/debug_mutex.h"
#include "debug/base/shared_settings.h"
#include "debug/base/started.h"
#include "debug/control/command_thread.h"
#include "debug/control/create_thread.h"
#include "debug/datapath/dump.h"
#include "debug/datapath/io_trace.h"
#include "debug/datapath/latency.h"
#include "debug/datapath/sine_output.h"
#include "debug/datapath/switches.h"
#include "debug/log/log_file.h"
#include "debug/requests/requests.h"
#include "debug/thread/test_threads.h"
#include "debug/thread/thread_watch.h"
#include "utility/core/report.h"

uint8_t bKestAtraceEnable = 0;
FILE *pFileKestDebugPipeline = nullptr;

namespace kest {

int32_t s32KestMonitorSleepTimeMs = 0;

namespace {

enum class Base : uint8_t { kFresh, kReady, kShutDown };

constexpr int32_t kMonitorSleepTimeMs = 2000;

std::atomic<Base> g_base{Base::kFresh};

void SetBase(Base base) {
  g_base.store(base, std::memory_order_release);
}

Base GetBase() {
  return g_base.load(std::memory_order_acquire);
}

void ResetInstrumentation() {
  SwitchOff(kPrintFilterInfo);
  ResetDumps();
  ResetLatency();
  ResetSelection(_stKestSineSelection);
  RestartSine();
}

void InitialiseBase() {
  Store(bKestAtraceEnable, uint8_t{0});
  ResetRequests();
  _ZE_KEST_Debug_ShmInit();
  SetStarted(false);
  SetMonitorSleepTime(kMonitorSleepTimeMs);
  WatchEveryThread();
  ResetTestThreads();
  ResetLogSinks();
  ResetInstrumentation();
}

// Deliberate: whether they are locked or not. That does nothing to one that this thread does not hold.
KEST_UNCHECKED_LOCKS void UnlockMutexes() {
  _ZE_KEST_Debug_Mutex_Unlock();
  _ZE_KEST_Debug_ShmMutex_Unlock();
  _ZE_KEST_Debug_LogMutex_Unlock();
}

}  // namespace

void _ZE_KEST_Debug_Init() {
  // A report made during the initialisation calls this again on the same thread, which the mutex's owner
  // tells.
  if (GetBase() != Base::kFresh || g_baseMutex.owner.IsMine()) return;
  _ZE_KEST_Debug_MutexInit();
  const HoldingOwned holding(g_baseMutex);
  if (GetBase() != Base::kFresh) return;
  InitialiseBase();
  SetBase(Base::kReady);
}

void SetMonitorSleepTime(int32_t s32Ms) {
  Store(s32KestMonitorSleepTimeMs, s32Ms);
}

}  // namespace kest

uint32_t ze_kest_Debug_Init(void) {
  kest::Store(pFileKestDebugPipeline, static_cast<FILE *>(nullptr));
  if (kest::GetBase() == kest::Base::kShutDown) {
    kest::ResetIoTrace();
    kest::SetBase(kest::Base::kFresh);
  }
  kest::_ZE_KEST_Debug_Init();
  if (kest::IsStarted()) {
    KEST_ERR("Exit for double init\n");
    return ZE_KEST_OK;
  }

  kest::_ZE_KEST_Debug_SetMode(kest::kLogToFile, 1);
  // Reports of the creation come too early for the log file. The thread waits, so that its own reach it.
  const kest::HoldingOwned starting(kest::g_startMutex);
  const uint32_t u32Result = kest::_ZE_KEST_Debug_CreateThread(kest::kCommandThread);
  kest::SetStarted(true);
  return u32Result;
}

uint32_t ze_kest_Debug_DeInit(void) {
  KEST_INFO("DeInit\n");
  if (!kest::IsStarted()) {
    KEST_INFO("Exit for double DeInit\n");
    return ZE_KEST_OK;
  }

  KEST_PRINT("Log to file(%d)\n", 0);
  kest::CloseLogFile();
  kest::SetEnding(true);
  kest::_ZE_KEST_Debug_DestroyThread();
  // After the command thread has ended: its last line may have created a test thread.
  kest::EndTestThreads();
  if (kest::GetBase() == kest::Base::kReady) kest::FreeSharedSettings();
  kest::UnlockMutexes();
  kest::SetStarted(false);
  kest::SetEnding(false);
  kest::SetBase(kest::Base::kShutDown);
  // The last line from the pipe may have opened the log file again.
  kest::CloseLogFile();
  return ZE_KEST_OK;
}
