// SPDX-License-Identifier: Apache-2.0
// How much of each input channel goes into each output channel.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kest::player {

class MixMatrix {
 public:
  static constexpr const char *kNeeded =
      "a row of numbers for each output channel, a number for each input channel, such as \"1 0 0.5; 0 1 "
      "0.5\"";

  // The rows lie between semicolons, their numbers between blanks or commas. Throws PlayerError when the text
  // is no matrix, or none for so many input channels.
  MixMatrix(const std::string &text, uint32_t inputChannels);

  [[nodiscard]] uint32_t OutputChannels() const { return static_cast<uint32_t>(rows_.size()); }
  // The factors of the input channels for an output channel.
  [[nodiscard]] const std::vector<double> &Row(uint32_t outputChannel) const { return rows_[outputChannel]; }

 private:
  std::vector<std::vector<double>> rows_;
};

}  // namespace kest::player
