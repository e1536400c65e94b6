// SPDX-License-Identifier: Apache-2.0
#include "debug/log/wall_time.h"

#include <algorithm>
#include <cstdio>

#include "utility/core/report.h"

namespace kest {

bool WallTime::Zone::operator==(const Zone &other) const {
  return s32Offset == other.s32Offset && s32Daylight == other.s32Daylight &&
         apszName[0] == other.apszName[0] && apszName[1] == other.apszName[1];
}

WallTime::Zone WallTime::ZoneNow() {
  return {timezone, daylight, {tzname[0], tzname[1]}};
}

std::string_view WallTime::TextOf(time_t s64Second) {
  if (sztLength_ == 0 || s64Second != s64Second_ || !(ZoneNow() == zone_)) Format(s64Second);
  return {szText_, sztLength_};
}

void WallTime::Format(time_t s64Second) {
  struct tm stLocal = {};
  localtime_r(&s64Second, &stLocal);
  const int s32Length = snprintf(szText_, sizeof(szText_), "%.2d-%.2d %.2d:%.2d:%.2d", stLocal.tm_mon + 1,
                                 stLocal.tm_mday, stLocal.tm_hour, stLocal.tm_min, stLocal.tm_sec);
  if (s32Length < 0) KEST_ERR_AS("_ZE_KEST_Debug_LogPrefix", "Error! Fail to snprintf()!\n");
  sztLength_ = static_cast<size_t>(std::clamp(s32Length, 0, int{sizeof(szText_)} - 1));
  s64Second_ = s64Second;
  // The conversion may have read the zone.
  zone_ = ZoneNow();
}

}  // namespace kest
