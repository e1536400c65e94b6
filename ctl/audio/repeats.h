// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ctl/audio/signal.h"

namespace kest::ctl {

// Blocks that were heard before within half a second, sample by sample. The value is the length in ms. A tone
// repeats itself and is none.
Flaws FindRepeats(const Signal &signal);

}  // namespace kest::ctl
