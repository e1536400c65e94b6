// SPDX-License-Identifier: Apache-2.0
#include "player/audio/stream_format.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

#include <sndfile.h>

#include "player/base/player_error.h"
#include "player/base/text_list.h"

namespace kest::player {
namespace {

struct RawSamples {
  std::string_view name;
  uint32_t bytes;
  int coding;
};

constexpr RawSamples kRawSamples[] = {
    {"u8", 1, SF_FORMAT_PCM_U8},
    {"s8", 1, SF_FORMAT_PCM_S8},
    {"s16le", 2, SF_FORMAT_PCM_16 | SF_ENDIAN_LITTLE},
    {"s16be", 2, SF_FORMAT_PCM_16 | SF_ENDIAN_BIG},
    {"s24le", 3, SF_FORMAT_PCM_24 | SF_ENDIAN_LITTLE},
    {"s24be", 3, SF_FORMAT_PCM_24 | SF_ENDIAN_BIG},
    {"s32le", 4, SF_FORMAT_PCM_32 | SF_ENDIAN_LITTLE},
    {"s32be", 4, SF_FORMAT_PCM_32 | SF_ENDIAN_BIG},
    {"f32le", 4, SF_FORMAT_FLOAT | SF_ENDIAN_LITTLE},
    {"f32be", 4, SF_FORMAT_FLOAT | SF_ENDIAN_BIG},
    {"f64le", 8, SF_FORMAT_DOUBLE | SF_ENDIAN_LITTLE},
    {"f64be", 8, SF_FORMAT_DOUBLE | SF_ENDIAN_BIG},
};

// Takes a number and the colon behind it off the text. 0 when they are not there.
uint32_t TakeNumber(std::string_view &text) {
  uint32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const auto length = static_cast<size_t>(end - text.data());
  if (error != std::errc() || length == text.size() || text[length] != ':') return 0;
  text.remove_prefix(length + 1);
  return number;
}

}  // namespace

StreamFormat ParseRawFormat(const std::string &text) {
  std::string_view rest = text;
  const uint32_t sampleRate = TakeNumber(rest);
  const uint32_t channels = TakeNumber(rest);
  const auto *samples = std::find_if(std::begin(kRawSamples), std::end(kRawSamples),
                                     [&](const RawSamples &row) { return row.name == rest; });
  if (sampleRate == 0 || channels == 0 || samples == std::end(kRawSamples)) {
    throw PlayerError("the raw format \"" + text + "\" is not " + kRawFormatNeeded + "; the samples are " +
                      ListNames(kRawSamples, [](const RawSamples &row) { return row.name; }));
  }
  return {channels, sampleRate, samples->bytes, samples->coding};
}

}  // namespace kest::player
