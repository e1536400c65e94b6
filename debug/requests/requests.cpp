// SPDX-License-Identifier: Apache-2.0
#include "debug/requests/requests.h"

namespace kest {

void ResetRequests() {
  ClearTestToneRequest();
  ClearPcmLevelRequest();
  ClearDataRateRequest();
}

}  // namespace kest
