// SPDX-License-Identifier: Apache-2.0
// Keeps the output from overwriting what the run reads or what the debug layer writes.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "player/audio/audio_reader.h"

namespace kest::player {

// Throws PlayerError when the output is, under whatever name, an input, the configuration file or a file of
// the debug layer.
void CheckOutput(const std::string &output, const std::vector<AudioReader> &inputs,
                 const std::optional<std::string> &config);

}  // namespace kest::player
