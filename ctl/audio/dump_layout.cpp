// SPDX-License-Identifier: Apache-2.0
#include "ctl/audio/dump_layout.h"

#include <algorithm>
#include <cctype>

#include <fmt/format.h>

#include "ctl/error.h"

namespace kest::ctl {
namespace {

constexpr std::array<unsigned, 3> kWidths = {4, 2, 3};

bool Fits(uint64_t bytesPerFrame, unsigned width, unsigned mostChannels) {
  return bytesPerFrame % width == 0 && bytesPerFrame / width <= mostChannels;
}

// The only width that gives a whole number of channels; empty when there are several or none.
std::optional<unsigned> OnlyWidth(uint64_t bytesPerFrame, unsigned mostChannels) {
  std::optional<unsigned> only;
  for (const unsigned width : kWidths) {
    if (!Fits(bytesPerFrame, width, mostChannels)) continue;
    if (only) return std::nullopt;
    only = width;
  }
  return only;
}

std::optional<unsigned> WidthOf(uint64_t bytesPerFrame, unsigned slots, std::optional<int> bits) {
  if (bits) return static_cast<unsigned>(*bits) / 8;
  const bool isFull = bytesPerFrame % slots == 0;
  const uint64_t fullWidth = bytesPerFrame / slots;
  if (isFull && fullWidth >= 2 && fullWidth <= 4) return static_cast<unsigned>(fullWidth);
  return OnlyWidth(bytesPerFrame, slots);
}

}  // namespace

std::optional<FrameLayout> LayoutOf(const Port &port, size_t group, std::optional<int> bits) {
  if (port.groupBytes[group] == 0 || port.pcm.size == 0) return std::nullopt;
  const uint64_t bytesPerFrame = port.groupBytes[group] / port.pcm.size;
  const unsigned slots = kGroupChannels[group];
  const std::optional<unsigned> width = WidthOf(bytesPerFrame, slots, bits);
  if (!width || bytesPerFrame < *width) {
    throw CtlError(ExitCode::kUsage,
                   fmt::format("{} bytes in a frame of up to {} channels: how many bits has a sample?",
                               bytesPerFrame, slots),
                   "say it with --bits 16, --bits 24 or --bits 32");
  }
  return FrameLayout{static_cast<unsigned>(std::min<uint64_t>(bytesPerFrame / *width, slots)), *width};
}

std::string DumpName(const std::string &pipeline, const std::string &filter, const Port &port, unsigned run) {
  std::string name =
      fmt::format("Dump{}{}{}{}_{}", port.isInput ? "In" : "Out", pipeline, filter, port.number, run);
  std::replace(name.begin(), name.end(), '/', '_');
  return name;
}

std::string FileWord(const std::string &name) {
  std::string word = name;
  const auto isOdd = [](unsigned char character) {
    return std::isalnum(character) == 0 && character != '.' && character != '-' && character != '_';
  };
  std::replace_if(word.begin(), word.end(), isOdd, '_');
  if (!word.empty() && (word[0] == '.' || word[0] == '-')) word[0] = '_';
  return word;
}

}  // namespace kest::ctl
