// SPDX-License-Identifier: Apache-2.0
// Every machine can count a thread's time; few in a data centre let a process count its instructions. Loaded
// into a process, this gives it the first for the second.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <linux/perf_event.h>
#include <stdarg.h>
#include <sys/syscall.h>

long syscall(long number, ...) {
  long (*real)(long, ...) = (long (*)(long, ...))dlsym(RTLD_NEXT, "syscall");
  va_list list;
  long arguments[6];
  va_start(list, number);
  for (int i = 0; i < 6; ++i)
    arguments[i] = va_arg(list, long);
  va_end(list);
  if (number == SYS_perf_event_open) {
    struct perf_event_attr *attributes = (struct perf_event_attr *)arguments[0];
    attributes->type = PERF_TYPE_SOFTWARE;
    attributes->config = PERF_COUNT_SW_TASK_CLOCK;
  }
  return real(number, arguments[0], arguments[1], arguments[2], arguments[3], arguments[4], arguments[5]);
}
