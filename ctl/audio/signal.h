// SPDX-License-Identifier: Apache-2.0
// A channel of a recording, with what all checks need to know of it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "ctl/audio/audio_file.h"

namespace kest::ctl {

struct Signal {
  Samples samples;
  unsigned rate = 0;
  double step =
      1.0;  // the largest number of which all samples are multiples: attenuated sound has coarse ones
  int32_t least = 0;
  int32_t most = 0;

  [[nodiscard]] size_t Count(double seconds) const { return static_cast<size_t>(seconds * rate); }
  [[nodiscard]] double Seconds(size_t samplesCount) const { return static_cast<double>(samplesCount) / rate; }
  [[nodiscard]] bool IsConstant() const { return least == most; }
};

Signal SignalOf(Samples samples, unsigned rate);

struct Span {
  size_t begin;
  size_t end;
};

// Mean and root of the mean square without it, of a part that may be empty.
struct Loudness {
  double mean = 0.0;
  double rms = 0.0;
};

Loudness LoudnessOf(const Signal &signal, Span span);

// Something wrong with a recording.
struct Flaw {
  size_t begin = 0;  // samples
  size_t end = 0;
  const char *kind = "";
  double value = 0.0;
  const char *unit = "";
};

using Flaws = std::vector<Flaw>;

// Drops those within so many samples of others.
void DropNear(Flaws &flaws, const Flaws &others, size_t distance);

}  // namespace kest::ctl
