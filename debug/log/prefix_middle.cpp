// SPDX-License-Identifier: Apache-2.0
#include "debug/log/prefix_middle.h"

#include <algorithm>
#include <cstdio>

#include "debug/base/version.h"
#include "utility/core/report.h"

namespace kest {

bool PrefixMiddle::Zone::operator==(const Zone &other) const {
  return s32Offset == other.s32Offset && s32Daylight == other.s32Daylight &&
         apszName[0] == other.apszName[0] && apszName[1] == other.apszName[1];
}

PrefixMiddle::Zone PrefixMiddle::ZoneNow() {
  return {timezone, daylight, {tzname[0], tzname[1]}};
}

std::string_view PrefixMiddle::TextOf(time_t s64Second, int32_t s32Restarts) {
  const bool bSame = sztLength_ != 0 && s64Second == s64Second_ && s32Restarts == s32Restarts_;
  if (!bSame || !(ZoneNow() == zone_)) Format(s64Second, s32Restarts);
  return {szText_, sztLength_};
}

void PrefixMiddle::Format(time_t s64Second, int32_t s32Restarts) {
  struct tm stLocal = {};
  localtime_r(&s64Second, &stLocal);
  const int s32Length =
      snprintf(szText_, sizeof(szText_), " [%s,%d][%.2d-%.2d %.2d:%.2d:%.2d.", kVersion, s32Restarts,
               stLocal.tm_mon + 1, stLocal.tm_mday, stLocal.tm_hour, stLocal.tm_min, stLocal.tm_sec);
  if (s32Length < 0) KEST_ERR_AS("_ZE_KEST_Debug_LogPrefix", "Error! Fail to snprintf()!\n");
  sztLength_ = static_cast<size_t>(std::clamp(s32Length, 0, int{sizeof(szText_)} - 1));
  s64Second_ = s64Second;
  s32Restarts_ = s32Restarts;
  // Read afterwards: localtime_r may have loaded the time zone.
  zone_ = ZoneNow();
}

}  // namespace kest
