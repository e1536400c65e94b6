// SPDX-License-Identifier: Apache-2.0
// The wall clock as the log shows it.
#pragma once

#include <ctime>
#include <string_view>

namespace kest {

// "month-day hour:minute:second" of a local time. Within one second the calendar is asked once, unless the
// time zone changes.
class WallTime {
 public:
  // Valid until the next call.
  std::string_view TextOf(time_t s64Second);

 private:
  // What tells one time zone from another, as far as the C library says so.
  struct Zone {
    long s32Offset;
    int s32Daylight;
    const char *apszName[2];
    bool operator==(const Zone &other) const;
  };
  static Zone ZoneNow();
  void Format(time_t s64Second);

  time_t s64Second_ = -1;
  Zone zone_ = {};
  char szText_[80] = "";
  size_t sztLength_ = 0;
};

}  // namespace kest
