// SPDX-License-Identifier: Apache-2.0
// The counters of the calling thread, opened as one group of kernel performance events.
#include <algorithm>
#include <cstring>

#include <linux/perf_event.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "ze_kest/performance.h"

#include "utility/core/guarded_open.h"
#include "utility/core/owned_memory.h"
#include "utility/core/report.h"

const char PERF_EVENT_NAME[ZE_KEST_PERF_EVENTS][ZE_KEST_PERF_EVENT_NAME_SIZE] = {"HwInstr", "HwCpuCycles",
                                                                                 "SwTaskClock"};
const uint32_t PERF_EVENT_TYPE[ZE_KEST_PERF_EVENTS] = {PERF_TYPE_HARDWARE, PERF_TYPE_HARDWARE,
                                                       PERF_TYPE_SOFTWARE};
const uint64_t PERF_EVENT_CONFIG[ZE_KEST_PERF_EVENTS] = {PERF_COUNT_HW_INSTRUCTIONS, PERF_COUNT_HW_CPU_CYCLES,
                                                         PERF_COUNT_SW_TASK_CLOCK};

namespace {

constexpr uint32_t kLeader = 0;
constexpr size_t kGroupBytes = 4096;

// The size of the attributes as the oldest kernel in use knows them; newer headers may declare more.
constexpr uint32_t kAttributeBytes = 120;
static_assert(sizeof(perf_event_attr) >= kAttributeBytes, "the kernel would read beside the attributes");

// One event of a group as the kernel delivers it. A u64 with the number of events precedes the first one.
struct GroupEntry {
  uint64_t u64Value;
  uint64_t u64Id;
};

perf_event_attr Attributes(uint32_t u32Event) {
  perf_event_attr stAttr = {};
  stAttr.type = PERF_EVENT_TYPE[u32Event];
  stAttr.size = kAttributeBytes;
  stAttr.config = PERF_EVENT_CONFIG[u32Event];
  stAttr.read_format = PERF_FORMAT_GROUP | PERF_FORMAT_ID;
  stAttr.disabled = 1;
  stAttr.exclude_kernel = 1;
  stAttr.exclude_hv = 1;
  return stAttr;
}

// Opens one event for the calling thread on any CPU. False when the kernel refuses.
bool OpenEvent(ZE_KEST_PerfEvent_s &stPerfEvent, uint32_t u32Event) {
  perf_event_attr stAttr = Attributes(u32Event);
  const int s32GroupFd = u32Event == kLeader ? -1 : stPerfEvent.as32Fd[kLeader];
  const auto s32Fd = static_cast<int>(syscall(__NR_perf_event_open, &stAttr, 0, -1, s32GroupFd, 0UL));
  stPerfEvent.as32Fd[u32Event] = kest::AboveStandard(s32Fd);
  if (stPerfEvent.as32Fd[u32Event] == -1) return false;
  ioctl(stPerfEvent.as32Fd[u32Event], PERF_EVENT_IOC_ID, &stPerfEvent.au64Id[u32Event]);
  return true;
}

void ControlGroup(const ZE_KEST_PerfEvent_s &stPerfEvent, unsigned long u32Request) {
  ioctl(stPerfEvent.as32Fd[kLeader], u32Request, PERF_IOC_FLAG_GROUP);
}

void TakeEntry(ZE_KEST_PerfEvent_s &stPerfEvent, uint32_t u32Event, const GroupEntry &stEntry) {
  if (stEntry.u64Id != stPerfEvent.au64Id[u32Event]) return;
  stPerfEvent.au64Count[u32Event] = stEntry.u64Value;
  stPerfEvent.au64Total[u32Event] += stEntry.u64Value;
}

// The number of events that the group claims, limited to what the bytes read can hold.
size_t EntryCount(const uint8_t *pu8Group, size_t sztBytes) {
  uint64_t u64Claimed = 0;
  if (sztBytes < sizeof(u64Claimed)) return 0;
  memcpy(&u64Claimed, pu8Group, sizeof(u64Claimed));
  const size_t sztHeld = (sztBytes - sizeof(u64Claimed)) / sizeof(GroupEntry);
  return static_cast<size_t>(std::min<uint64_t>(u64Claimed, sztHeld));
}

void TakeGroup(ZE_KEST_PerfEvent_s &stPerfEvent, const uint8_t *pu8Group, size_t sztBytes) {
  const size_t sztEntries = EntryCount(pu8Group, sztBytes);
  const uint8_t *pu8Entries = pu8Group + sizeof(uint64_t);
  for (uint32_t u32Event = 0; u32Event < ZE_KEST_PERF_EVENTS; ++u32Event) {
    if (stPerfEvent.as32Fd[u32Event] == -1) continue;
    for (size_t i = 0; i < sztEntries; ++i) {
      GroupEntry stEntry;
      memcpy(&stEntry, pu8Entries + i * sizeof(stEntry), sizeof(stEntry));
      TakeEntry(stPerfEvent, u32Event, stEntry);
    }
  }
}

}  // namespace

uint32_t ze_kest_Utility_PerfEvent_Open(ZE_KEST_PerfEvent_s *pstPerfEvent) {
  KEST_REQUIRE(pstPerfEvent != nullptr, "pstPerfEvent is NULL.\n");
  if (pstPerfEvent->bInit == 1) ze_kest_Utility_PerfEvent_Close(pstPerfEvent);
  std::fill_n(pstPerfEvent->as32Fd, ZE_KEST_PERF_EVENTS, -1);
  pstPerfEvent->bInit = 1;
  if (!OpenEvent(*pstPerfEvent, kLeader)) {
    pstPerfEvent->bInit = 0;
    KEST_ERR("Error opening leader %llx for  %s\n",
             static_cast<unsigned long long>(PERF_EVENT_CONFIG[kLeader]), PERF_EVENT_NAME[kLeader]);
    return ZE_KEST_NOT_INITIALISED;
  }
  for (uint32_t u32Event = kLeader + 1; u32Event < ZE_KEST_PERF_EVENTS; ++u32Event) {
    if (OpenEvent(*pstPerfEvent, u32Event)) continue;
    // Deliberate: events opened before this one stay open, and Close refuses the record.
    pstPerfEvent->bInit = 0;
    KEST_ERR("Error opening leader %llx for %s\n",
             static_cast<unsigned long long>(PERF_EVENT_CONFIG[u32Event]), PERF_EVENT_NAME[u32Event]);
    return ZE_KEST_NOT_INITIALISED;
  }
  return ZE_KEST_OK;
}

uint32_t ze_kest_Utility_PerfEvent_Enable(ZE_KEST_PerfEvent_s *pstPerfEvent) {
  KEST_REQUIRE(pstPerfEvent != nullptr, "pstPerfEvent is NULL.\n");
  KEST_REQUIRE_OR(pstPerfEvent->bInit == 1, ZE_KEST_NOT_INITIALISED, "Perf Event not initizlized\n");
  ControlGroup(*pstPerfEvent, PERF_EVENT_IOC_RESET);
  ControlGroup(*pstPerfEvent, PERF_EVENT_IOC_ENABLE);
  return ZE_KEST_OK;
}

uint32_t ze_kest_Utility_PerfEvent_GetCurrentEventCount(ZE_KEST_PerfEvent_s *pstPerfEvent) {
  KEST_REQUIRE(pstPerfEvent != nullptr, "pstPerfEvent is NULL.\n");
  KEST_REQUIRE_OR(pstPerfEvent->bInit == 1, ZE_KEST_NOT_INITIALISED, "Perf Event are not initialized\n");
  ControlGroup(*pstPerfEvent, PERF_EVENT_IOC_DISABLE);
  const auto group = kest::Allocate<uint8_t>(kGroupBytes);
  KEST_REQUIRE_OR(group != nullptr, ZE_KEST_FAILED, "malloc failed.\n");
  const ssize_t s32Read = read(pstPerfEvent->as32Fd[kLeader], group.get(), kGroupBytes);
  KEST_REQUIRE_OR(s32Read != -1, ZE_KEST_FAILED, "Perf Event read failed.\n");
  TakeGroup(*pstPerfEvent, group.get(), static_cast<size_t>(s32Read));
  return ZE_KEST_OK;
}

uint32_t ze_kest_Utility_PerfEvent_Close(ZE_KEST_PerfEvent_s *pstPerfEvent) {
  KEST_REQUIRE(pstPerfEvent != nullptr, "pstPerfEvent is NULL.\n");
  KEST_REQUIRE_OR(pstPerfEvent->bInit == 1, ZE_KEST_NOT_INITIALISED, "Perf Event not initizlized\n");
  for (const int32_t s32Fd : pstPerfEvent->as32Fd) {
    if (s32Fd != -1) close(s32Fd);
  }
  pstPerfEvent->bInit = 0;
  return ZE_KEST_OK;
}
