// SPDX-License-Identifier: Apache-2.0
#include "debug/thread/signal_test.h"

#include "ze_kest/utility.h"

#include "debug/base/monotonic_condition.h"
#include "debug/base/thread_safety.h"

namespace kest {
namespace {

constexpr const char *kMonitor = "_ZE_KEST_Debug_PthreadSignalTestMonitor";
constexpr uint64_t kLongestWaitUs = 5000000;

pthread_mutex_t _stKestDebugPthreadSignalTestMutex = PTHREAD_MUTEX_INITIALIZER;
pthread_cond_t _stKestDebugPthreadSignalTestCond;
pthread_once_t g_once = PTHREAD_ONCE_INIT;
uint8_t g_bRun = 0;

constexpr LockTag kSignalTestLock;  // stands for the mutex

// Failing calls are reported under pszCaller.
class KEST_SCOPED_CAPABILITY HoldingSignalTest {
 public:
  explicit HoldingSignalTest(const char *pszCaller) KEST_ACQUIRES_LOCK(kSignalTestLock)
      : pszCaller_(pszCaller) {
    KEST_THREAD_CALL_AS(pszCaller_, pthread_mutex_lock(&_stKestDebugPthreadSignalTestMutex));
  }
  ~HoldingSignalTest() KEST_RELEASES_LOCK() {
    KEST_THREAD_CALL_AS(pszCaller_, pthread_mutex_unlock(&_stKestDebugPthreadSignalTestMutex));
  }
  HoldingSignalTest(const HoldingSignalTest &) = delete;
  HoldingSignalTest &operator=(const HoldingSignalTest &) = delete;

 private:
  const char *pszCaller_;
};

bool IsAlive() {
  return IsRunning(_stKestDebugPthreadSignalTest);
}

void InitialiseOnce() {
  InitialiseMonotonicCondition("_ZE_KEST_Debug_PthreadSignalTestInit", &_stKestDebugPthreadSignalTestCond);
}

void SignalCondition(const char *pszCaller) {
  KEST_THREAD_CALL_AS(pszCaller, pthread_cond_signal(&_stKestDebugPthreadSignalTestCond));
}

// Locked, so that a "run" cannot get lost between the test of its flag and the wait. Does not wait either
// when the thread has already been told to stop.
void WaitUnlessRun() KEST_REQUIRES_LOCK(kSignalTestLock) {
  struct timespec outtime;
  ze_kest_Utility_MicrosecondToTimespec(&outtime, kLongestWaitUs);
  if (Load(g_bRun) != 0 || !IsAlive()) return;
  KEST_PRINT_AS(kMonitor, "Pthread signal: wait\n");
  KEST_THREAD_CALL_AS(kMonitor, pthread_cond_timedwait(&_stKestDebugPthreadSignalTestCond,
                                                       &_stKestDebugPthreadSignalTestMutex, &outtime));
  KEST_PRINT_AS(kMonitor, "Pthread signal: continue\n");
}

void RunOnce() {
  const HoldingSignalTest holding(kMonitor);
  WaitUnlessRun();
  KEST_PRINT_AS(kMonitor, "Pthread Signal Test: running\n");
}

void *_ZE_KEST_Debug_PthreadSignalTestMonitor(void * /*pvUnused*/) {
  if (IsAlive()) {
    KEST_PRINT("Pthread signal: start\n");
    do {
      RunOnce();
    } while (IsAlive());
  }
  KEST_PRINT("Pthread Signal Test: end\n");
  return nullptr;
}

KEST_DEFINE_THREAD_ATTRIBUTES(SetAttributes, DestroyAttributes,
                              _stKestDebugPthreadSignalTestMonitorThreadAttr,
                              _stKestDebugPthreadSignalTestMonitorSched, RR)

}  // namespace

DebugThread _stKestDebugPthreadSignalTest = {"KestSignalTest", _ZE_KEST_Debug_PthreadSignalTestMonitor,
                                             &_stKestDebugPthreadSignalTestMonitorThreadAttr, SetAttributes,
                                             DestroyAttributes};

void ResetSignalTest() {
  pthread_once(&g_once, InitialiseOnce);
  Store(_stKestDebugPthreadSignalTest.bRunning, uint8_t{0});
  Store(g_bRun, uint8_t{0});
}

void LetSignalTestRun(const char *pszCaller) {
  const HoldingSignalTest holding(pszCaller);
  Store(g_bRun, uint8_t{1});
  SignalCondition(pszCaller);
}

// Does not take the mutex: a thread that runs without a pause holds it nearly all the time.
void LetSignalTestWait() {
  Store(g_bRun, uint8_t{0});
}

void StopSignalTest() {
  constexpr const char *kFunction = "_ZE_KEST_Debug_DestroyThread";
  // Cleared before locking, so that a thread that runs without a pause ends and gives the mutex up.
  Store(_stKestDebugPthreadSignalTest.bRunning, uint8_t{0});
  const HoldingSignalTest holding(kFunction);
  SignalCondition(kFunction);
}

}  // namespace kest
