// SPDX-License-Identifier: Apache-2.0
// The requests that an engineer can make to a filter, around each of its turns.
#pragma once

#include "ze_kest/debug.h"

#include "player/base/relaxed.h"
#include "player/requests/data_rate.h"
#include "player/requests/pcm_level.h"
#include "player/requests/process_status.h"
#include "player/requests/test_tone.h"

namespace kest::player {

// Whether a filter is asked for anything. A level over 0 cycles is nothing.
inline bool IsAnythingRequested() {
  return (LoadRelaxed(u32KestQueryProcessStatus) | LoadRelaxed(u32KestSendTestTone) |
          LoadRelaxed(u32KestCalculateDataRate)) != 0 ||
         (LoadRelaxed(u32KestCalPcmLev) != 0 && LoadRelaxed(u32KestCalPcmLevCount) != 0);
}

class FilterRequests {
 public:
  // Before the filter reads its input.
  void TurnBegins(const ZE_KEST_Filter_s &filter) {
    const bool wasWatching = watching_;
    watching_ = IsAnythingRequested() || level_.IsRunning();
    if (watching_ || wasWatching) Begin(filter);
  }
  // After the debug hook, before the filter's data is released and committed.
  void TurnEnds(const ZE_KEST_Filter_s &filter) {
    if (watching_) End(filter);
  }

 private:
  void Begin(const ZE_KEST_Filter_s &filter);
  void End(const ZE_KEST_Filter_s &filter);

  bool watching_ = false;
  FilterStatus status_;
  TestTone tone_;
  PcmLevel level_;
  DataRate rate_;
};

}  // namespace kest::player
