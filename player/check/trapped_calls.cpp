// SPDX-License-Identifier: Apache-2.0
#include "player/check/trapped_calls.h"

#include <array>
#include <csetjmp>
#include <csignal>
#include <cstddef>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "player/check/child.h"

namespace kest::player {
namespace {

// The thread ends through a call that the filter lets pass: with this code.
constexpr uint32_t kEndCode = 0x6B657374;

struct Trap {
  void (*code)(void *);
  void *argument;
  bool isSet = false;
  int number = -1;  // of the trapped call
  sigjmp_buf back{};
};

thread_local Trap *t_trap = nullptr;

struct CallName {
  int number;
  const char *name;
};

#define KEST_CALL(name) \
  { SYS_##name, #name }

constexpr CallName kCallNames[] = {
    KEST_CALL(read),         KEST_CALL(write),   KEST_CALL(openat),        KEST_CALL(close),
    KEST_CALL(brk),          KEST_CALL(munmap),  KEST_CALL(mprotect),      KEST_CALL(madvise),
    KEST_CALL(mremap),       KEST_CALL(futex),   KEST_CALL(nanosleep),     KEST_CALL(clock_nanosleep),
    KEST_CALL(sched_yield),  KEST_CALL(ioctl),   KEST_CALL(writev),        KEST_CALL(clone),
    KEST_CALL(gettid),       KEST_CALL(getpid),  KEST_CALL(clock_gettime), KEST_CALL(rt_sigprocmask),
    KEST_CALL(rt_sigaction), KEST_CALL(sendto),  KEST_CALL(tgkill),        KEST_CALL(getrandom),
    KEST_CALL(ppoll),        KEST_CALL(pread64), KEST_CALL(lseek),         KEST_CALL(sched_setscheduler),
    KEST_CALL(exit_group),
#ifdef SYS_mmap
    KEST_CALL(mmap),
#endif
#ifdef SYS_mmap2
    KEST_CALL(mmap2),
#endif
#ifdef SYS_open
    KEST_CALL(open),
#endif
};
#undef KEST_CALL

std::string NameOfCall(int number) {
  for (const CallName &call : kCallNames) {
    if (call.number == number) return call.name;
  }
  return "system call " + std::to_string(number);
}

void OnTrappedCall(int, siginfo_t *info, void *) {
  if (t_trap == nullptr) return;
  t_trap->number = info->si_syscall;
  siglongjmp(t_trap->back, 1);
}

// Passes the end of the thread, of a signal's handler, and what the handler of a crash reports.
bool TrapCalls() {
  constexpr auto kNumber = static_cast<uint32_t>(offsetof(seccomp_data, nr));
  constexpr auto kFirstArgument = static_cast<uint32_t>(offsetof(seccomp_data, args));
  const auto crashFd = static_cast<uint32_t>(CrashReportFd());
  std::array<sock_filter, 10> program = {{
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, kNumber),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_rt_sigreturn, 6, 0),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_write, 0, 2),
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, kFirstArgument),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, crashFd, 3, 4),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_exit, 0, 3),
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, kFirstArgument),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, kEndCode, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRAP),
  }};
  const sock_fprog filter = {program.size(), program.data()};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter, 0, 0) == 0;
}

// Neither returns nor unwinds: both would call the system in the C library's name.
void *RunOnThread(void *argument) {
  Trap &trap = *static_cast<Trap *>(argument);
  t_trap = &trap;
  trap.isSet = TrapCalls();
  if (!trap.isSet) return nullptr;
  if (sigsetjmp(trap.back, 0) == 0) trap.code(trap.argument);
  for (;;) {
    syscall(SYS_exit, kEndCode);
  }
}

}  // namespace

TrappedCalls RunTrapped(void (*code)(void *argument), void *argument) {
  struct sigaction action {};
  action.sa_sigaction = OnTrappedCall;
  action.sa_flags = SA_SIGINFO;
  sigaction(SIGSYS, &action, nullptr);

  Trap trap{code, argument};
  pthread_t thread{};
  if (pthread_create(&thread, nullptr, RunOnThread, &trap) != 0) return {false, ""};
  pthread_join(thread, nullptr);
  return {trap.isSet, trap.number < 0 ? "" : NameOfCall(trap.number)};
}

}  // namespace kest::player
