// SPDX-License-Identifier: Apache-2.0
#include "debug/control/command_thread.h"

#include <algorithm>
#include <iterator>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "debug/base/debug_mutex.h"
#include "debug/base/debug_thread.h"
#include "debug/base/wake_up.h"
#include "debug/control/dispatcher.h"
#include "utility/core/debug_dir.h"
#include "utility/core/guarded_open.h"
#include "utility/core/report.h"

namespace kest {
namespace {

constexpr const char *kPipePath = KEST_DEBUG_PATH("D");
constexpr const char *kMonitor = "_ZE_KEST_Debug_RuntimeMonitor";
constexpr size_t kLineSize = 128;
constexpr int kLookAtPathMs = 500;
constexpr int kShortestPauseMs = 1;
constexpr int kLongestPauseMs = 512;

void *_ZE_KEST_Debug_RuntimeMonitor(void *pvUnused);

KEST_DEFINE_THREAD_ATTRIBUTES(SetAttributes, DestroyAttributes, _stKestDebugRuntimeMonitorThreadAttr,
                              _stKestDebugRuntimeMonitorSched, OTHER)

DebugThread g_stCommandThread = {"KestDebug", _ZE_KEST_Debug_RuntimeMonitor,
                                 &_stKestDebugRuntimeMonitorThreadAttr, SetAttributes, DestroyAttributes};
WakeUp g_wakeUp;  // told when a shut-down begins

bool IsPipe(int s32Fd) {
  struct stat stOpen = {};
  return fstat(s32Fd, &stOpen) == 0 && S_ISFIFO(stOpen.st_mode);
}

// Whether the path still leads to the open pipe, so that writers reach it.
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
  // Opened for writing too: the open then needs no writer to wait for, and a read never sees end of file.
  // Without O_NOATIME every byte read updates the access time. Only the pipe's owner may use the flag.
  int s32Fd = OpenGuarded(kPipePath, FileKind::kAny, O_RDWR | O_NOATIME);
  if (s32Fd < 0 && errno == EPERM) s32Fd = OpenGuarded(kPipePath, FileKind::kAny, O_RDWR);
  if (s32Fd < 0) {
    const int s32Error = errno;
    KEST_ERR_AS(kMonitor, "Err! open ret = %d : %s\n", s32Fd, ErrorText(s32Error).c_str());
    if (s32Error != ELOOP) return s32Fd;  // a link in its place is no pipe either
  }
  if (IsPipe(s32Fd)) return s32Fd;
  // PRINT, not ERR: the default level hides ERR, and without the pipe no command can raise the level.
  KEST_PRINT_AS(kMonitor,
                "Err! %s is no pipe, no commands are read: remove it and start this process again\n",
                kPipePath);
  if (s32Fd >= 0) close(s32Fd);
  return -1;
}

// Waits for bytes. Once a shut-down has begun, and where nothing can tell of one, no longer than until the
// next look at the path. Other failures than a signal count as bytes: the read that follows reports the
// reason.
bool HasBytes(int s32Fd) {
  const int s32WakeUp = IsRunning(g_stCommandThread) ? g_wakeUp.Descriptor() : -1;
  struct pollfd astWaitedFor[] = {{s32Fd, POLLIN, 0}, {s32WakeUp, POLLIN, 0}};
  if (poll(astWaitedFor, std::size(astWaitedFor), s32WakeUp < 0 ? kLookAtPathMs : -1) < 0)
    return errno != EINTR;
  // A forked copy of this process shares the descriptor and may have written to it.
  if (astWaitedFor[1].revents != 0) g_wakeUp.Clear();
  return astWaitedFor[0].revents != 0;
}

// False when a shut-down waits for a line but none can come, because the pipe was removed.
bool WaitForBytes(int s32Fd) {
  while (!HasBytes(s32Fd)) {
    if (IsRunning(g_stCommandThread) || IsAtItsPath(s32Fd)) continue;
    KEST_ERR_AS(kMonitor, "Err! %s was removed, the thread waits for no line\n", kPipePath);
    return false;
  }
  return true;
}

// Several processes read the pipe: the one that reads the first byte of a line must read all of it. Where the
// platform refuses the lock, lines are read without it.
bool LockLine(int s32Fd) {
  return flock(s32Fd, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

void UnlockLine(int s32Fd) {
  flock(s32Fd, LOCK_UN);
}

enum class ReadResult { kByte, kNothing, kOtherReader, kEnd };

ReadResult ReadByte(int s32Fd, char *pcByte) {
  const ssize_t s32Read = read(s32Fd, pcByte, 1);
  if (s32Read == 1) return ReadResult::kByte;
  if (s32Read < 0 && (errno == EINTR || errno == EAGAIN)) return ReadResult::kNothing;
  const int s32Error = errno;
  KEST_ERR_AS(kMonitor, "Err! read ret = %zd : %s\n", s32Read, ErrorText(s32Error).c_str());
  return ReadResult::kEnd;
}

// Reads the first byte of a line unless another process is reading it; on success the lock stays held.
ReadResult TryToBegin(int s32Fd, char *pcByte) {
  if (!LockLine(s32Fd)) return ReadResult::kOtherReader;
  const ReadResult eResult = ReadByte(s32Fd, pcByte);
  if (eResult != ReadResult::kByte) UnlockLine(s32Fd);
  return eResult;
}

bool IsToRepeat(ReadResult eResult) {
  return eResult == ReadResult::kNothing || eResult == ReadResult::kOtherReader;
}

// Pauses grow while the other reader keeps its line: it may have been stopped in the middle of it.
int NextPauseMs(ReadResult eResult, int s32PauseMs) {
  return eResult == ReadResult::kOtherReader ? std::min(2 * s32PauseMs, kLongestPauseMs) : kShortestPauseMs;
}

// Waits for a line to begin. False when the thread is to end. It tries to read before it waits, so lines that
// are already in the pipe are read without a delay.
bool BeginLine(int s32Fd, char *pcByte) {
  int s32PauseMs = kShortestPauseMs;
  ReadResult eResult = TryToBegin(s32Fd, pcByte);
  while (IsToRepeat(eResult)) {
    if (!WaitForBytes(s32Fd)) return false;
    eResult = TryToBegin(s32Fd, pcByte);
    if (!IsToRepeat(eResult)) break;
    // Another process is reading the line. A shut-down here counts it as the line it waits for.
    if (!IsRunning(g_stCommandThread)) return false;
    g_wakeUp.Sleep(s32PauseMs);
    s32PauseMs = NextPauseMs(eResult, s32PauseMs);
  }
  return eResult == ReadResult::kByte;
}

// False when no more bytes can come.
bool NextByte(int s32Fd, char *pcByte) {
  ReadResult eResult = ReadByte(s32Fd, pcByte);
  for (; eResult == ReadResult::kNothing; eResult = ReadByte(s32Fd, pcByte)) {
    if (!WaitForBytes(s32Fd)) return false;
  }
  return eResult == ReadResult::kByte;
}

// Reads the rest of the line that begins in szLine[0], without its newline. A longer line is cut: its 128th
// byte is lost and the rest becomes the next line. False when the pipe has failed or was removed.
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

// Returns once the layer counts as started, so that the thread's reports reach the log file.
void WaitForStart() {
  const HoldingOwned started(g_startMutex);
}

void *_ZE_KEST_Debug_RuntimeMonitor(void * /*pvUnused*/) {
  WaitForStart();
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
  g_wakeUp.Open();
  return CreateDebugThread(g_stCommandThread);
}

// A thread that found no pipe, or lost it, has already ended; it is joined all the same.
void _ZE_KEST_Debug_DestroyThread() {
  Store(g_stCommandThread.bRunning, uint8_t{0});  // what the thread finds when it wakes up
  g_wakeUp.Wake();
  DestroyDebugThread(g_stCommandThread);
  g_wakeUp.Close();
}

}  // namespace kest
