// SPDX-License-Identifier: Apache-2.0
// The part of the status report that depends on what kind of filter it is.
#pragma once

#include "ze_kest/model.h"

namespace kest {

// Prints the part of the filter's kind, which its name tells; nothing for a name that tells none.
void PrintKindStatus(ZE_KEST_Filter_s &filter);

}  // namespace kest
