// SPDX-License-Identifier: Apache-2.0
#include "debug/control/command_thread.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "debug/control/debug_thread.h"
#include "debug/control/dispatcher.h"
#include "utility/core/debug_dir.h"
#include "utility/core/report.h"

namespace kest {
namespace {

constexpr const char *kPipePath = KEST_DEBUG_PATH("D");
constexpr const char *kMonitor = "_ZE_KEST_Debug_RuntimeMonitor";
constexpr size_t kLineSize = 128;
constexpr int kLookAtPathMs = 500;
constexpr useconds_t kOtherReaderUs = 1000;

void *_ZE_KEST_Debug_RuntimeMonitor(void *pvUnused);

KEST_DEFINE_THREAD_ATTRIBUTES(SetAttributes, DestroyAttributes, _stKestDebugRuntimeMonitorThreadAttr,
                              _stKestDebugRuntimeMonitorSched, OTHER)

DebugThread g_stCommandThread = {"KestDebug", _ZE_KEST_Debug_RuntimeMonitor,
                                 &_stKestDebugRuntimeMonitorThreadAttr, SetAttributes, DestroyAttributes};

bool IsPipe(int s32Fd) {
  struct stat stOpen = {};
  return fstat(s32Fd, &stOpen) == 0 && S_ISFIFO(stOpen.st_mode);
}

// Whether a writer who opens the path reaches the pipe that is open here.
bool IsAtItsPath(int s32Fd) {
  struct stat stOpen = {};
  struct stat stPath = {};
  return fstat(s32Fd, &stOpen) == 0 && stat(kPipePath, &stPath) == 0 && stOpen.st_dev == stPath.st_dev &&
         stOpen.st_ino == stPath.st_ino;
}

int OpenPipe() {
  const int s32Made = mkfifo(kPipePath, 0777);
  if (s32Made != 0) {
    const int s32Error = errno;
    KEST_ERR_AS(kMonitor, "Warn! mkfifo ret = %d : %s\n", s32Made, ErrorText(s32Error).c_str());
  }
  // Open for writing too: so the open waits for no writer and a read never sees the end of the file.
  constexpr int kFlags = O_RDWR | O_NONBLOCK | O_CLOEXEC;
  // Else every byte that is read sets the access time. Only the pipe's owner may ask for that.
  int s32Fd = open(kPipePath, kFlags | O_NOATIME);
  if (s32Fd < 0 && errno == EPERM) s32Fd = open(kPipePath, kFlags);
  if (s32Fd < 0) {
    const int s32Error = errno;
    KEST_ERR_AS(kMonitor, "Err! open ret = %d : %s\n", s32Fd, ErrorText(s32Error).c_str());
    return s32Fd;
  }
  if (IsPipe(s32Fd)) return s32Fd;
  // Not gated: the level of a first process would hide it, and no command can raise that any more.
  KEST_PRINT_AS(kMonitor,
                "Err! %s is no pipe, no commands are read: remove it and start this process again\n",
                kPipePath);
  close(s32Fd);
  return -1;
}

// A poll that fails counts as bytes: the read tells why.
bool HasBytes(int s32Fd, int s32TimeoutMs) {
  struct pollfd stPipe = {s32Fd, POLLIN, 0};
  return poll(&stPipe, 1, s32TimeoutMs) != 0;
}

// False when shut-down waits for a line and none can come, because the pipe was removed.
bool WaitForBytes(int s32Fd) {
  while (!HasBytes(s32Fd, kLookAtPathMs)) {
    if (IsRunning(g_stCommandThread) || IsAtItsPath(s32Fd)) continue;
    KEST_ERR_AS(kMonitor, "Err! %s was removed, the thread waits for no line\n", kPipePath);
    return false;
  }
  return true;
}

// Several processes read the pipe: who reads the first byte of a line reads all of it. Where the platform
// refuses the lock, lines are read without it.
bool LockLine(int s32Fd) {
  return flock(s32Fd, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

void UnlockLine(int s32Fd) {
  flock(s32Fd, LOCK_UN);
}

enum class Got { kByte, kNothing, kEnd };

Got ReadByte(int s32Fd, char *pcByte) {
  const ssize_t s32Read = read(s32Fd, pcByte, 1);
  if (s32Read == 1) return Got::kByte;
  if (s32Read < 0 && (errno == EINTR || errno == EAGAIN)) return Got::kNothing;
  const int s32Error = errno;
  KEST_ERR_AS(kMonitor, "Err! read ret = %zd : %s\n", s32Read, ErrorText(s32Error).c_str());
  return Got::kEnd;
}

// Takes the first byte of a line, if it is this process's to read, and keeps the lock.
Got TryToBegin(int s32Fd, char *pcByte) {
  if (!LockLine(s32Fd)) return Got::kNothing;
  const Got eGot = ReadByte(s32Fd, pcByte);
  if (eGot != Got::kByte) UnlockLine(s32Fd);
  return eGot;
}

// Waits for a line to begin. False when the thread is to end. Lines that stand behind one another are read
// without a wait between them.
bool BeginLine(int s32Fd, char *pcByte) {
  Got eGot = TryToBegin(s32Fd, pcByte);
  while (eGot == Got::kNothing) {
    if (!WaitForBytes(s32Fd)) return false;
    eGot = TryToBegin(s32Fd, pcByte);
    if (eGot != Got::kNothing) break;
    // Another process reads the line. For a shut-down here it has come.
    if (!IsRunning(g_stCommandThread)) return false;
    usleep(kOtherReaderUs);
  }
  return eGot == Got::kByte;
}

// False when no byte can come any more.
bool NextByte(int s32Fd, char *pcByte) {
  Got eGot = ReadByte(s32Fd, pcByte);
  for (; eGot == Got::kNothing; eGot = ReadByte(s32Fd, pcByte)) {
    if (!WaitForBytes(s32Fd)) return false;
  }
  return eGot == Got::kByte;
}

// The line whose first byte is there, without its newline. A longer one is cut: the byte in the last position
// is lost, the rest is the next line. False when the pipe has failed or was removed.
bool ReadLine(int s32Fd, char (&szLine)[kLineSize]) {
  size_t i = 0;
  while (szLine[i] != '\n' && i != kLineSize - 1) {
    ++i;
    if (!NextByte(s32Fd, &szLine[i])) return false;
  }
  szLine[i] = '\0';
  return true;
}

bool NextLine(int s32Fd, char (&szLine)[kLineSize]) {
  if (!BeginLine(s32Fd, &szLine[0])) return false;
  const bool bWhole = ReadLine(s32Fd, szLine);
  UnlockLine(s32Fd);
  return bWhole;
}

void ServeCommands(int s32Fd) {
  char szLine[kLineSize] = {};
  while (IsRunning(g_stCommandThread) && NextLine(s32Fd, szLine)) {
    const uint32_t u32Result = _ZE_KEST_Debug_SetParameter(szLine);
    if (u32Result != ZE_KEST_OK) KEST_ERR_AS(kMonitor, "Err! SetParameter failed(0x%x)!\n", u32Result);
  }
}

void *_ZE_KEST_Debug_RuntimeMonitor(void * /*pvUnused*/) {
  KEST_INFO("Start\n");
  const int s32Fd = OpenPipe();
  if (s32Fd >= 0) {
    ServeCommands(s32Fd);
    close(s32Fd);
  }
  Store(g_stCommandThread.bRunning, uint8_t{0});
  KEST_INFO("End\n");
  return nullptr;
}

}  // namespace

uint32_t CreateCommandThread() {
  return CreateDebugThread(g_stCommandThread);
}

// A thread that found no pipe, or lost it, has ended by itself and is waited for all the same.
void _ZE_KEST_Debug_DestroyThread() {
  DestroyDebugThread(g_stCommandThread);
}

}  // namespace kest
