// SPDX-License-Identifier: Apache-2.0
// Pictures of measured times.
#include <algorithm>
#include <array>
#include <cmath>

#include <fmt/format.h>

#include "ctl/audio/distribution.h"
#include "ctl/render/gnuplot.h"
#include "ctl/render/plots.h"

namespace kest::ctl {
namespace {

constexpr int kHeight = 480;
constexpr int kTwoPanels = 700;
constexpr size_t kBins = 60;
constexpr size_t kMostPoints = 20000;

struct Marks {
  double median;
  double p99;
  double most;
};

Marks MarksOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return {Quantile(values, 0.5), Quantile(values, 0.99), values.back()};
}

// Middle of the bin, count, width.
std::string BinData(const Distribution &distribution, double narrowest) {
  std::string data;
  for (const Bin &bin : distribution.bins) {
    data += fmt::format("{:.6f} {} {:.6f}\n", (bin.from + bin.to) / 2.0, bin.count,
                        std::max(bin.to - bin.from, narrowest));
  }
  return data;
}

std::string Line(double at, const char *colour) {
  return fmt::format(
      "set arrow from {0:.6f}, graph 0 to {0:.6f}, graph 1 nohead front dashtype 2 linecolor '{1}'\n", at,
      colour);
}

std::vector<double> TimesOf(const std::vector<Cycle> &cycles) {
  std::vector<double> times;
  times.reserve(cycles.size());
  for (const Cycle &cycle : cycles)
    times.push_back(static_cast<double>(cycle.endUs - cycle.startUs));
  return times;
}

std::string CycleHistogram(const std::vector<double> &times, const Marks &marks) {
  const Distribution distribution = DistributionOf(times, kBins);
  const double margin = std::max((distribution.most - distribution.least) * 0.03, 1.0);
  return fmt::format("$h << EOD\n{}EOD\n", BinData(distribution, 1.0)) + Line(marks.median, "#2ca02c") +
         Line(marks.p99, "#d62728") +
         fmt::format(
             "set xlabel 'cycle time, µs'\nset ylabel 'cycles'\nset xrange [{:.3f}:{:.3f}]\n"
             "set logscale y\nset yrange [0.5:*]\nset style fill solid 0.8 border\n"
             "plot $h using 1:2:3 with boxes linecolor '#1f77b4'\n",
             std::max(0.0, distribution.least - margin), distribution.most + margin);
}

std::string CyclesInOrder(const std::vector<Cycle> &cycles, const std::vector<double> &times) {
  std::string data;
  const size_t stride = times.size() / kMostPoints + 1;
  for (size_t i = 0; i < times.size(); i += stride) {
    const uint64_t sinceFirst = cycles[i].startUs - cycles[0].startUs;
    data += fmt::format("{:.6f} {:.3f}\n", static_cast<double>(sinceFirst) / 1e6, times[i]);
  }
  return fmt::format(
      "$t << EOD\n{}EOD\nunset arrow\nunset title\nunset logscale y\nset xlabel 'time, s'\n"
      "set ylabel 'cycle time, µs'\nset xrange [*:*]\nset yrange [0:*]\n"
      "plot $t using 1:2 with points pointtype 7 pointsize 0.3 linecolor '#1f77b4'\n",
      data);
}

}  // namespace

std::string PlotCycles(const Picture &picture, const std::vector<Cycle> &cycles) {
  const std::vector<double> times = TimesOf(cycles);
  const Marks marks = MarksOf(times);
  const std::string figures = fmt::format("{} cycles, median {:.0f}, 99 % below {:.0f}, longest {:.0f} µs",
                                          times.size(), marks.median, marks.p99, marks.most);
  return GnuplotStart(kTwoPanels) +
         fmt::format(
             "set multiplot layout 2,1 title {} font 'sans,13'\nset lmargin 12\nset rmargin 3\n"
             "set title {} font 'sans,11'\n",
             GnuplotText(picture.title), GnuplotText(figures)) +
         CycleHistogram(times, marks) + CyclesInOrder(cycles, times) + "unset multiplot\n";
}

std::string PlotLatency(const Picture &picture, const std::vector<double> &delaysMs) {
  const Distribution distribution =
      DistributionOf(delaysMs, std::clamp<size_t>(delaysMs.size() / 2, 10, kBins));
  const double margin = std::max((distribution.most - distribution.least) * 0.05, 0.5);
  const double narrowest = margin / 10.0;
  size_t most = 0;
  for (const Bin &bin : distribution.bins)
    most = std::max(most, bin.count);
  const std::string figures =
      fmt::format("{} runs, minimum {:.3f}, median {:.3f}, maximum {:.3f} ms", delaysMs.size(),
                  distribution.least, distribution.median, distribution.most);
  return GnuplotStart(kHeight) +
         fmt::format("$d << EOD\n{}EOD\nset title {} font 'sans,13' offset 0,1\nset tmargin 5\n",
                     BinData(distribution, narrowest), GnuplotText(picture.title)) +
         fmt::format("set label {} at graph 0.5, graph 1.05 center\n", GnuplotText(figures)) +
         Line(distribution.median, "#2ca02c") +
         fmt::format(
             "set xlabel 'delay, ms'\nset ylabel 'runs'\nset xrange [{:.6f}:{:.6f}]\nset yrange [0:{}]\n"
             "set format x '%.2f'\nset style fill solid 0.8 border\n{}"
             "plot $d using 1:2:3 with boxes linecolor '#1f77b4'\n",
             distribution.least - margin, distribution.most + margin, static_cast<double>(most) * 1.1,
             most <= 10 ? "set ytics 1\n" : "");
}

}  // namespace kest::ctl
