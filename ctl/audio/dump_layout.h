// SPDX-License-Identifier: Apache-2.0
// What the files of a dump are called and how their frames are laid out.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "ctl/model/listing.h"

namespace kest::ctl {

constexpr std::array<unsigned, 3> kGroupChannels = {2, 10, 10};
constexpr std::array<const char *, 3> kGroupNames = {"dmx", "mc", "rawmc"};

struct FrameLayout {
  unsigned channels = 0;
  unsigned bytesPerSample = 0;
};

// How a port's channel group is dumped: every channel that it has storage for. Empty without storage. A width
// that the storage leaves open is taken from bits; throws CtlError when that is not given or does not fit.
std::optional<FrameLayout> LayoutOf(const Port &port, size_t group, std::optional<int> bits);

// The beginning of the names of all files of a port, without directory and without the name's kind:
// "DumpInSpeakerOutputMixer0_7".
std::string DumpName(const std::string &pipeline, const std::string &filter, const Port &port, unsigned run);

// A name as a part of a file's: everything but letters, digits, dots, dashes and underlines replaced.
std::string FileWord(const std::string &name);

}  // namespace kest::ctl
