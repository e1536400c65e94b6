// SPDX-License-Identifier: Apache-2.0
#include "debug/control/command_thread.h"

#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

#include "debug/control/dispatcher.h"
#include "utility/core/debug_dir.h"
#include "utility/core/report.h"

namespace kest {
namespace {

constexpr const char *kPipePath = KEST_DEBUG_PATH("D");
constexpr size_t kLineSize = 128;

pthread_t g_thread;
pthread_attr_t _stKestDebugRuntimeMonitorThreadAttr;
struct sched_param _stKestDebugRuntimeMonitorSched;
uint8_t g_bRunning = 0;
bool g_bToJoin = false;  // the thread was created and nobody has waited for its end yet

bool IsRunning() {
  return Load(g_bRunning) != 0;
}

int OpenPipe() {
  const int s32Made = mkfifo(kPipePath, 0777);
  if (s32Made != 0) {
    const int s32Error = errno;
    KEST_ERR_AS("_ZE_KEST_Debug_RuntimeMonitor", "Warn! mkfifo ret = %d : %s\n", s32Made,
                ErrorText(s32Error).c_str());
  }
  // Open for writing too: so the open waits for no writer and a read never sees the end of the file.
  const int s32Fd = open(kPipePath, O_RDWR | O_CLOEXEC);
  if (s32Fd < 0) {
    const int s32Error = errno;
    KEST_ERR_AS("_ZE_KEST_Debug_RuntimeMonitor", "Err! open ret = %d : %s\n", s32Fd,
                ErrorText(s32Error).c_str());
  }
  return s32Fd;
}

ssize_t ReadByte(int s32Fd, char *pcByte) {
  ssize_t s32Read = 0;
  do {
    s32Read = read(s32Fd, pcByte, 1);
  } while (s32Read < 0 && errno == EINTR);
  return s32Read;
}

// One line without its newline. A longer one is cut: the byte in the last position is lost, the rest is the
// next line.
void ReadLine(int s32Fd, char (&szLine)[kLineSize]) {
  size_t i = 0;
  while (ReadByte(s32Fd, &szLine[i]) > 0 && szLine[i] != '\n' && i < kLineSize - 1)
    ++i;
  szLine[i] = '\0';
}

void ServeCommands(int s32Fd) {
  char szLine[kLineSize] = {};
  while (IsRunning()) {
    ReadLine(s32Fd, szLine);
    const uint32_t u32Result = _ZE_KEST_Debug_SetParameter(szLine);
    if (u32Result != ZE_KEST_OK) {
      KEST_ERR_AS("_ZE_KEST_Debug_RuntimeMonitor", "Err! SetParameter failed(0x%x)!\n", u32Result);
    }
  }
}

void *_ZE_KEST_Debug_RuntimeMonitor(void * /*pvUnused*/) {
  KEST_INFO("Start\n");
  const int s32Fd = OpenPipe();
  if (s32Fd >= 0) {
    ServeCommands(s32Fd);
    close(s32Fd);
  } else {
    Store(g_bRunning, uint8_t{0});
  }
  KEST_INFO("End\n");
  return nullptr;
}

void SetThreadAttributes() {
  constexpr const char *kFunction = "_ZE_KEST_Debug_CreateThread";
  KEST_THREAD_CALL_AS(kFunction, pthread_attr_init(&_stKestDebugRuntimeMonitorThreadAttr));
  // The size stands as the report of a failure quotes it.
  KEST_THREAD_CALL_AS(kFunction,
                      // NOLINTNEXTLINE(bugprone-implicit-widening-of-multiplication-result)
                      pthread_attr_setstacksize(&_stKestDebugRuntimeMonitorThreadAttr, (2 * 4096) * 8));
  KEST_THREAD_CALL_AS(
      kFunction, pthread_attr_setdetachstate(&_stKestDebugRuntimeMonitorThreadAttr, PTHREAD_CREATE_JOINABLE));
  KEST_THREAD_CALL_AS(
      kFunction, pthread_attr_setinheritsched(&_stKestDebugRuntimeMonitorThreadAttr, PTHREAD_EXPLICIT_SCHED));
  KEST_THREAD_CALL_AS(kFunction,
                      pthread_attr_setschedpolicy(&_stKestDebugRuntimeMonitorThreadAttr, SCHED_OTHER));
  KEST_THREAD_CALL_AS(kFunction, pthread_attr_getschedparam(&_stKestDebugRuntimeMonitorThreadAttr,
                                                            &_stKestDebugRuntimeMonitorSched));
  // Refused where the policy knows no priorities; the thread runs with the default one then.
  _stKestDebugRuntimeMonitorSched.sched_priority = 40;
  KEST_THREAD_CALL_AS(kFunction, pthread_attr_setschedparam(&_stKestDebugRuntimeMonitorThreadAttr,
                                                            &_stKestDebugRuntimeMonitorSched));
}

uint32_t CreateCommandThread() {
  constexpr const char *kFunction = "_ZE_KEST_Debug_CreateThread";
  if (IsRunning()) return ZE_KEST_OK;
  _ZE_KEST_Debug_DestroyThread();
  Store(g_bRunning, uint8_t{1});
  SetThreadAttributes();
  if (pthread_create(&g_thread, &_stKestDebugRuntimeMonitorThreadAttr, _ZE_KEST_Debug_RuntimeMonitor,
                     nullptr) != 0) {
    Store(g_bRunning, uint8_t{0});
    pthread_attr_destroy(&_stKestDebugRuntimeMonitorThreadAttr);
    KEST_ERR_AS(kFunction, "Err! pthread_create failed!\n");
    return ZE_KEST_FAILED;
  }
  g_bToJoin = true;
  KEST_THREAD_CALL_AS(kFunction, pthread_setname_np(g_thread, "KestDebug"));
  return ZE_KEST_OK;
}

}  // namespace

uint32_t _ZE_KEST_Debug_CreateThread(unsigned int u32Index) {
  if (u32Index == kCommandThread) return CreateCommandThread();
  return ZE_KEST_OK;
}

// A thread that found no pipe has ended by itself and is waited for all the same.
void _ZE_KEST_Debug_DestroyThread() {
  if (!g_bToJoin) return;
  g_bToJoin = false;
  Store(g_bRunning, uint8_t{0});
  KEST_THREAD_CALL(pthread_attr_destroy(&_stKestDebugRuntimeMonitorThreadAttr));
  KEST_THREAD_CALL(pthread_join(g_thread, nullptr));
}

}  // namespace kest
