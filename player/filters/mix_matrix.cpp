// SPDX-License-Identifier: Apache-2.0
#include "player/filters/mix_matrix.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

#include "player/base/player_error.h"
#include "player/framework/pcm_format.h"

namespace kest::player {
namespace {

constexpr double kMaxFactor = 1000.0;
constexpr std::string_view kSeparators = " \t,";

double ParseFactor(std::string_view text) {
  double factor = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), factor);
  if (error != std::errc() || end != text.data() + text.size() || !(std::abs(factor) <= kMaxFactor)) {
    throw PlayerError("\"" + std::string(text) + "\" in a mixing matrix is no number from -1000 to 1000");
  }
  return factor;
}

std::vector<double> ParseRow(std::string_view text) {
  std::vector<double> row;
  for (;;) {
    text.remove_prefix(std::min(text.find_first_not_of(kSeparators), text.size()));
    if (text.empty()) return row;
    const std::string_view factor = text.substr(0, text.find_first_of(kSeparators));
    row.push_back(ParseFactor(factor));
    text.remove_prefix(factor.size());
  }
}

}  // namespace

MixMatrix::MixMatrix(const std::string &text, uint32_t inputChannels) {
  for (size_t begin = 0; begin <= text.size();) {
    const size_t end = std::min(text.find(';', begin), text.size());
    rows_.push_back(ParseRow(std::string_view(text).substr(begin, end - begin)));
    if (rows_.back().size() != inputChannels) {
      throw PlayerError("row " + std::to_string(rows_.size()) + " of the mixing matrix \"" + text +
                        "\" has " + std::to_string(rows_.back().size()) + " numbers; " +
                        std::to_string(inputChannels) + " are needed, one for each channel that comes in");
    }
    begin = end + 1;
  }
  if (rows_.size() > kMaxChannels) {
    throw PlayerError("the mixing matrix has " + std::to_string(rows_.size()) + " rows; at most " +
                      std::to_string(kMaxChannels) + " channels can be played");
  }
}

}  // namespace kest::player
