// SPDX-License-Identifier: Apache-2.0
// Flaws in which samples stay the same: clipping, gaps, silence.
#pragma once

#include "ctl/audio/signal.h"

namespace kest::ctl {

// Tops that are cut off, at full scale or below it. Runs that lie close together are one flaw; its value is
// the number of samples.
Flaws FindClipping(const Signal &signal);
// Stretches without sound, or with a sample that is held, between loud ones. From half a second on it is
// silence. The value is the length in ms.
Flaws FindGaps(const Signal &signal);
// A constant offset. The value is relative to full scale.
Flaws FindOffset(const Signal &signal);

}  // namespace kest::ctl
