// SPDX-License-Identifier: Apache-2.0
#include "debug/base/debug_thread.h"

#include <atomic>

#include "tests/support/library_test.h"

namespace kest::test {
namespace {

KEST_DEFINE_THREAD_ATTRIBUTES(SetAttributes, DestroyAttributes, g_stAttributes, g_stSched, OTHER)

std::atomic<int> g_s32Started{0};
int g_s32Destroyed = 0;
size_t g_sztStack = 0;

void CountDestroyed() {
  ++g_s32Destroyed;
  DestroyAttributes();
}

void *EndByItself(void *pv);
DebugThread g_stThread = {"KestTestBody", EndByItself, &g_stAttributes, SetAttributes, CountDestroyed};

void *EndByItself(void *pv) {
  ++g_s32Started;
  pthread_attr_t attributes;
  pthread_getattr_np(pthread_self(), &attributes);
  pthread_attr_getstacksize(&attributes, &g_sztStack);
  pthread_attr_destroy(&attributes);
  Store(g_stThread.bRunning, uint8_t{0});
  return pv;
}

}  // namespace

// The thread sanitizer tells when one is not.
TEST(DebugThread, OneThatHasEndedByItselfIsWaitedForByTheNextCreationOrItsDestruction) {
  DestroyDebugThread(g_stThread);  // never created
  for (int i = 1; i <= 3; ++i) {
    EXPECT_EQ(ZE_KEST_OK, CreateDebugThread(g_stThread));
    EXPECT_TRUE(WaitFor([] { return !IsRunning(g_stThread); }));
    EXPECT_EQ(i, g_s32Started);
    EXPECT_EQ(i - 1, g_s32Destroyed);
  }
  DestroyDebugThread(g_stThread);
  EXPECT_EQ(3, g_s32Destroyed);
#if !defined(__SANITIZE_THREAD__)  // which enlarges it
  EXPECT_EQ(65536u, g_sztStack);
#endif
  EXPECT_EQ(40, g_stSched.sched_priority);
}

// Time-sharing threads have no priorities.
TEST(DebugThread, ARefusedAttributeIsQuotedAndTheThreadCreatedAllTheSame) {
  const ReportCapture capture;
  EXPECT_EQ(ZE_KEST_OK, CreateDebugThread(g_stThread));
  DestroyDebugThread(g_stThread);
  EXPECT_TRUE(capture.Has(
      "<WRN>", "pthread_attr_setschedparam(&g_stAttributes, &g_stSched) error:22,Invalid argument \n"));
  const ReportCapture errorsAlone(ZE_KEST_LEVEL_ERR);
  EXPECT_EQ(ZE_KEST_OK, CreateDebugThread(g_stThread));
  DestroyDebugThread(g_stThread);
  EXPECT_EQ(Texts{}, errorsAlone.Texts("<WRN>"));
}

}  // namespace kest::test
