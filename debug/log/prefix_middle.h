// SPDX-License-Identifier: Apache-2.0
// The part of the prefix, after the ids, that lines of the same second share.
#pragma once

#include <cstdint>
#include <ctime>
#include <string_view>

namespace kest {

// " [version,restarts][month-day hour:minute:second." in local time. Within one second it is formatted once,
// unless the number of restarts or the time zone changes.
class PrefixMiddle {
 public:
  // Valid until the next call.
  std::string_view TextOf(time_t s64Second, int32_t s32Restarts);

 private:
  // What distinguishes time zones, as far as the C library shows it.
  struct Zone {
    long s32Offset;
    int s32Daylight;
    const char *apszName[2];
    bool operator==(const Zone &other) const;
  };
  static Zone ZoneNow();
  void Format(time_t s64Second, int32_t s32Restarts);

  time_t s64Second_ = 0;
  int32_t s32Restarts_ = 0;
  Zone zone_ = {};
  char szText_[128] = "";
  size_t sztLength_ = 0;
};

}  // namespace kest
