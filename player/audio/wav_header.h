// SPDX-License-Identifier: Apache-2.0
// The header of a WAV stream.
#pragma once

#include "player/audio/standard_input.h"
#include "player/audio/stream_format.h"

namespace kest::player {

// Takes everything in front of the first frame out of the stream. A size that a writer has put there because
// it could not know it counts as none. Throws PlayerError when this is not the header of samples that can be
// played, RunCancelled when the wait for it was ended.
StreamFormat ReadWavHeader(StandardInput &stream);

}  // namespace kest::player
