// SPDX-License-Identifier: Apache-2.0
// Scripts for gnuplot, one for each kind of picture.
#pragma once

#include <string>
#include <vector>

#include "ctl/audio/signal.h"
#include "ctl/model/trace.h"

namespace kest::ctl {

struct Picture {
  std::string title;
  double from = 0.0;   // seconds at which the signals begin
  unsigned first = 1;  // the number of the first channel
};

// All channels, one below the other.
std::string PlotWaveform(const Picture &picture, const std::vector<Signal> &channels);
std::string PlotSpectrogram(const Picture &picture, const Signal &channel);
// Peak and RMS of each channel in dB over time.
std::string PlotLevels(const Picture &picture, const std::vector<Signal> &channels);
// How long cycles took: their distribution, and one after the other.
std::string PlotCycles(const Picture &picture, const std::vector<Cycle> &cycles);
// The distribution of measured delays in ms.
std::string PlotLatency(const Picture &picture, const std::vector<double> &delaysMs);

}  // namespace kest::ctl
