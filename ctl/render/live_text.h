// SPDX-License-Identifier: Apache-2.0
// A look at a process as lines of a terminal and as JSON.
#pragma once

#include <string>
#include <vector>

#include "ctl/model/live.h"
#include "ctl/render/json.h"

namespace kest::ctl {

enum class Tone { kPlain, kTitle, kGood, kDoubtful, kBad };

// Parts of a line from left to right.
struct ToneText {
  Tone tone = Tone::kPlain;
  std::string text;
};
using ToneLine = std::vector<ToneText>;

// 80 columns show everything; names are cut before anything else is.
std::vector<ToneLine> ShowLive(const LiveSample &sample, size_t columns);
// The parts of a line, coloured or not; without an end.
std::string Join(const ToneLine &line, bool colour);

Json ToJson(const LiveSample &sample);

}  // namespace kest::ctl
