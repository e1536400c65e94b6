// SPDX-License-Identifier: Apache-2.0
#include "debug/control/command_thread.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "debug/control/debug_thread.h"
#include "debug/control/dispatcher.h"
#include "utility/core/debug_dir.h"
#include "utility/core/report.h"

namespace kest {
namespace {

constexpr const char *kPipePath = KEST_DEBUG_PATH("D");
constexpr size_t kLineSize = 128;

void *_ZE_KEST_Debug_RuntimeMonitor(void *pvUnused);

KEST_DEFINE_THREAD_ATTRIBUTES(SetAttributes, DestroyAttributes, _stKestDebugRuntimeMonitorThreadAttr,
                              _stKestDebugRuntimeMonitorSched, OTHER)

DebugThread g_stCommandThread = {"KestDebug", _ZE_KEST_Debug_RuntimeMonitor,
                                 &_stKestDebugRuntimeMonitorThreadAttr, SetAttributes, DestroyAttributes};

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
  while (IsRunning(g_stCommandThread)) {
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
    Store(g_stCommandThread.bRunning, uint8_t{0});
  }
  KEST_INFO("End\n");
  return nullptr;
}

}  // namespace

uint32_t CreateCommandThread() {
  return CreateDebugThread(g_stCommandThread);
}

// A thread that found no pipe has ended by itself and is waited for all the same.
void _ZE_KEST_Debug_DestroyThread() {
  DestroyDebugThread(g_stCommandThread);
}

}  // namespace kest
