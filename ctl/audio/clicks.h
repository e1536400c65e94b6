// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ctl/audio/signal.h"

namespace kest::ctl {

// Samples that cannot be foreseen from those before them, unlike all around: clicks and missing pieces. The
// value is the size in dB below full scale.
Flaws FindClicks(const Signal &signal);

}  // namespace kest::ctl
