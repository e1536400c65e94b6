// SPDX-License-Identifier: Apache-2.0
#include "player/requests/filter_requests.h"

namespace kest::player {

// Also in the turn after the last request, so that what was asked for before is forgotten.
void FilterRequests::Begin(const ZE_KEST_Filter_s &filter) {
  if (!watching_) {
    *this = FilterRequests();
    return;
  }
  status_.TurnBegins(filter);
  tone_.FeedInto(filter);
}

void FilterRequests::End(const ZE_KEST_Filter_s &filter) {
  status_.TurnEnds(filter);
  tone_.AccountFor(filter);
  level_.Measure(filter);
  rate_.Count(filter, DataRate::Clock::now());
}

}  // namespace kest::player
