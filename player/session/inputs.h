// SPDX-License-Identifier: Apache-2.0
// Opens what a run plays.
#pragma once

#include <vector>

#include "player/audio/audio_reader.h"
#include "player/config/layout.h"

namespace kest::player {

// One reader for each input of the layout. Waits for the header of a stream; endFd is readable when the run
// is to end, -1 for never. Throws PlayerError when an input cannot be played, or not in a loop if that is
// wanted; RunCancelled when the run ends before it begins.
std::vector<AudioReader> OpenInputs(const Layout &layout, bool loop, int endFd);

// For messages.
std::string FormatText(const std::string &name, uint32_t channels, uint32_t sampleRate);

}  // namespace kest::player
