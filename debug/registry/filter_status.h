// SPDX-License-Identifier: Apache-2.0
// The part of the status report that depends on the kind of filter.
#pragma once

#include "ze_kest/model.h"

namespace kest {

// Prints the part for the filter's kind, which its name tells; nothing for an unknown name.
void PrintKindStatus(ZE_KEST_Filter_s &filter);

}  // namespace kest
