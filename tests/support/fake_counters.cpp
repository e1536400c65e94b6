// SPDX-License-Identifier: Apache-2.0
// The linker gives the tests' calls of a few functions to the __wrap_ ones, which hand all others on.
#include "tests/support/fake_counters.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <map>

#include <fcntl.h>
#include <linux/perf_event.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace kest::test {
namespace {

bool Answers() {
  const FakeCounters *pFake = FakeCounters::pCurrent;
  return pFake != nullptr && !pFake->bTaskClock;
}

// Not every machine has the hardware's counters, while its kernel has this one.
void AskForTaskClock(void *pvAttributes) {
  auto *pstAttr = static_cast<perf_event_attr *>(pvAttributes);
  pstAttr->type = PERF_TYPE_SOFTWARE;
  pstAttr->config = PERF_COUNT_SW_TASK_CLOCK;
}

}  // namespace

int FakeCounters::Open(const void *pvAttributes, const std::array<int, 4> &arguments) {
  errno = ENOENT;
  if (s32OpensLeft == 0) return -1;
  if (s32OpensLeft > 0) --s32OpensLeft;
  uint32_t u32Size = 0;
  memcpy(&u32Size, static_cast<const uint8_t *>(pvAttributes) + sizeof(uint32_t), sizeof(u32Size));
  std::vector<uint64_t> attributes(u32Size / sizeof(uint64_t));
  memcpy(attributes.data(), pvAttributes, attributes.size() * sizeof(uint64_t));
  const int s32Fd = bReadable ? memfd_create("counter", 0) : open("/dev/null", O_WRONLY);
  const uint64_t u64Id = 100 + events.size();
  events.push_back({attributes, arguments, s32Fd, u64Id});
  return s32Fd;
}

int FakeCounters::Control(int s32Fd, unsigned long u32Request, void *pvArgument) {
  const auto event =
      std::find_if(events.rbegin(), events.rend(), [s32Fd](const Event &e) { return e.s32Fd == s32Fd; });
  if (event == events.rend()) return -1;
  if (u32Request == PERF_EVENT_IOC_ID) {
    memcpy(pvArgument, &event->u64Id, sizeof(event->u64Id));
    return 0;
  }
  const bool bGroup =
      reinterpret_cast<uintptr_t>(pvArgument) == PERF_IOC_FLAG_GROUP && event->arguments[2] == -1;
  static const std::map<unsigned long, std::string> requests = {{PERF_EVENT_IOC_RESET, "reset"},
                                                                {PERF_EVENT_IOC_ENABLE, "enable"},
                                                                {PERF_EVENT_IOC_DISABLE, "disable"}};
  controls.push_back(bGroup && requests.count(u32Request) != 0 ? requests.at(u32Request) : "?");
  if (u32Request == PERF_EVENT_IOC_DISABLE && bReadable) Deliver(s32Fd);
  return 0;
}

void FakeCounters::Deliver(int s32Fd) const {
  std::vector<uint64_t> words = group;
  if (words.empty()) {
    words = {counts.size()};
    for (size_t i = 0; i < counts.size(); ++i)
      words.insert(words.end(), {counts[i], events[events.size() - counts.size() + i].u64Id});
  }
  const size_t sztBytes = std::min(sztGroupBytes, words.size() * sizeof(uint64_t));
  [[maybe_unused]] const ssize_t s32Written = pwrite(s32Fd, words.data(), sztBytes, 0);
  lseek(s32Fd, 0, SEEK_SET);
}

}  // namespace kest::test

using kest::test::Answers;
using kest::test::AskForTaskClock;
using kest::test::FakeCounters;

extern "C" {

long __real_syscall(long s32Number, ...);
int __real_ioctl(int s32Fd, unsigned long u32Request, ...);
int __real_clock_gettime(clockid_t eClock, struct timespec *pstNow);

long __wrap_syscall(long s32Number, ...) {
  std::array<long, 6> a{};
  va_list args;
  va_start(args, s32Number);
  for (long &s32Argument : a)
    s32Argument = va_arg(args, long);
  va_end(args);
  const bool bOpensEvent = FakeCounters::pCurrent != nullptr && s32Number == __NR_perf_event_open;
  void *pvAttributes = reinterpret_cast<void *>(a[0]);
  if (bOpensEvent && Answers()) {
    const auto argument = [&a](size_t i) { return static_cast<int>(a[i]); };
    return FakeCounters::pCurrent.load()->Open(pvAttributes,
                                               {argument(1), argument(2), argument(3), argument(4)});
  }
  if (bOpensEvent) AskForTaskClock(pvAttributes);
  return __real_syscall(s32Number, a[0], a[1], a[2], a[3], a[4], a[5]);
}

int __wrap_ioctl(int s32Fd, unsigned long u32Request, ...) {
  va_list args;
  va_start(args, u32Request);
  void *pvArgument = va_arg(args, void *);
  va_end(args);
  if (!Answers() || _IOC_TYPE(u32Request) != '$') return __real_ioctl(s32Fd, u32Request, pvArgument);
  return FakeCounters::pCurrent.load()->Control(s32Fd, u32Request, pvArgument);
}

int __wrap_clock_gettime(clockid_t eClock, struct timespec *pstNow) {
  const FakeCounters *pFake = FakeCounters::pCurrent;
  if (pFake == nullptr || eClock != CLOCK_MONOTONIC) return __real_clock_gettime(eClock, pstNow);
  pstNow->tv_sec = static_cast<time_t>(pFake->u64NowUs / 1000000);
  pstNow->tv_nsec = static_cast<long>(pFake->u64NowUs % 1000000 * 1000);
  return 0;
}

}  // extern "C"
