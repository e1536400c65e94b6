// SPDX-License-Identifier: Apache-2.0
// Pictures of recordings.
#include <algorithm>
#include <array>
#include <cmath>

#include <fmt/format.h>

#include "ctl/audio/spectrum.h"
#include "ctl/render/gnuplot.h"
#include "ctl/render/plots.h"

namespace kest::ctl {
namespace {

constexpr size_t kColumns = 900;      // of the picture that the curve takes
constexpr size_t kFewSamples = 2000;  // that can be drawn one by one
constexpr int kPanelHeight = 190;     // of a channel
constexpr int kLeastHeight = 420;
constexpr int kMostHeight = 1700;
constexpr int kFullHeight = 560;

constexpr size_t kSpectrumSize = 2048;
constexpr size_t kRows = 400;        // of the spectrogram
constexpr double kFloorDb = -120.0;  // below which nothing is told apart

constexpr size_t kFewChannels = 4;     // whose peaks are named too
constexpr double kLevelWindow = 0.02;  // seconds at least

constexpr std::array<const char *, 10> kColours = {"#1f77b4", "#d62728", "#2ca02c", "#ff7f0e", "#9467bd",
                                                   "#8c564b", "#e377c2", "#7f7f7f", "#bcbd22", "#17becf"};

double Shown(double sample) {
  return sample / kFullScale;
}

// The next of 1, 2, 5, 10 ... that is not below the value, with powers of ten.
double RoundUp(double value) {
  const double power = std::pow(10.0, std::floor(std::log10(std::max(value, 1e-9))));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * power >= value) return factor * power;
  }
  return 10.0 * power;
}

double PeakOf(const std::vector<Signal> &channels) {
  double peak = 0.0;
  for (const Signal &channel : channels)
    peak = std::max({peak, std::abs(Shown(channel.least)), std::abs(Shown(channel.most))});
  return peak;
}

double LengthOf(const Signal &channel) {
  return channel.Seconds(channel.samples.size());
}

// Time and sample; of many samples time, smallest and largest of each column.
std::string WaveformData(const Signal &channel, double from) {
  std::string data;
  const size_t count = channel.samples.size();
  if (count <= kFewSamples) {
    for (size_t i = 0; i < count; ++i)
      data += fmt::format("{:.6f} {:.7f}\n", from + channel.Seconds(i), Shown(channel.samples[i]));
    return data;
  }
  for (size_t i = 0; i < kColumns; ++i) {
    const auto begin = channel.samples.begin() + static_cast<ptrdiff_t>(count * i / kColumns);
    const auto end = channel.samples.begin() + static_cast<ptrdiff_t>(count * (i + 1) / kColumns);
    const auto [least, most] = std::minmax_element(begin, end);
    data += fmt::format("{:.6f} {:.7f} {:.7f}\n", from + channel.Seconds(count * i / kColumns), Shown(*least),
                        Shown(*most));
  }
  return data;
}

std::string TitleOf(const Picture &picture) {
  return fmt::format("set title {} font 'sans,13'\n", GnuplotText(picture.title));
}

// Powers of the bins of one moment, the largest of those that share a row.
std::vector<double> RowsAt(const Signal &channel, size_t begin, const Fourier &fourier,
                           const std::vector<double> &window) {
  Spectrum input(kSpectrumSize);
  for (size_t i = 0; i < kSpectrumSize && begin + i < channel.samples.size(); ++i)
    input[i] = 2.0 * window[i] * Shown(channel.samples[begin + i]);
  const Spectrum bins = fourier.Transform(input);
  std::vector<double> rows(kRows, 0.0);
  for (size_t i = 0; i < kSpectrumSize / 2; ++i) {
    double &row = rows[i * kRows / (kSpectrumSize / 2)];
    row = std::max(row, std::abs(bins[i]));
  }
  return rows;
}

}  // namespace

std::string PlotWaveform(const Picture &picture, const std::vector<Signal> &channels) {
  const int height =
      std::clamp(60 + kPanelHeight * static_cast<int>(channels.size()), kLeastHeight, kMostHeight);
  const double range = RoundUp(PeakOf(channels));
  std::string script = GnuplotStart(height);
  for (size_t i = 0; i < channels.size(); ++i)
    script += fmt::format("$d{} << EOD\n{}EOD\n", i, WaveformData(channels[i], picture.from));
  script += fmt::format("set multiplot layout {},1 title {} font 'sans,13'\n", channels.size(),
                        GnuplotText(picture.title + ", full scale = 1"));
  script += fmt::format("set xrange [{}:{}]\nset yrange [{}:{}]\nset lmargin 12\nset rmargin 3\n",
                        picture.from, picture.from + LengthOf(channels[0]), -range, range);
  for (size_t i = 0; i < channels.size(); ++i) {
    const bool isLast = i + 1 == channels.size();
    const bool isFine = channels[i].samples.size() <= kFewSamples;
    script += fmt::format("set ylabel {}\nset xlabel {}\nset ytics {}\n",
                          GnuplotText(fmt::format("channel {}", picture.first + i)),
                          GnuplotText(isLast ? "time, s" : ""), range / 2.0);
    script +=
        fmt::format("plot 0 linecolor '#999999', $d{} using {} linecolor '{}'\n", i,
                    isFine ? "1:2 with linespoints pointtype 7 pointsize 0.2" : "1:2:3 with filledcurves",
                    kColours[i % kColours.size()]);
  }
  return script + "unset multiplot\n";
}

std::string PlotSpectrogram(const Picture &picture, const Signal &channel) {
  const Fourier fourier(kSpectrumSize, false);
  const std::vector<double> window = HannWindow(kSpectrumSize);
  const size_t count = channel.samples.size();
  const size_t last = count > kSpectrumSize ? count - kSpectrumSize : 0;
  const size_t columns = std::clamp<size_t>(last / 64, 2, kColumns);
  std::string data;
  for (size_t i = 0; i < columns; ++i) {
    for (const double row : RowsAt(channel, last * i / (columns - 1), fourier, window))
      data += fmt::format("{:.1f} ", std::max(ToDb(row), kFloorDb));
    data += "\n";
  }
  const double middle = static_cast<double>(kSpectrumSize) / 2.0 / channel.rate;  // of the first window
  // Each line of the data is a moment: the matrix is drawn with its rows along the time.
  const double length = LengthOf(channel);
  const double kilohertz = channel.rate / 2000.0;
  return GnuplotStart(kFullHeight) + TitleOf(picture) +
         fmt::format(
             "$d << EOD\n{}EOD\nunset grid\nset xlabel 'time, s'\nset ylabel 'frequency, kHz'\n"
             "set cblabel 'level, dBFS'\nset cbrange [{}:0]\nset xrange [{}:{}]\nset yrange [0:{}]\n"
             "set palette defined (0 '#000004', 1 '#320a5e', 2 '#781c6d', 3 '#bc3754', 4 '#ed6925', 5 "
             "'#fbb61a', 6 '#fcffa4')\n"
             "plot $d matrix using ({}+$2*{}):($1*{}):3 with image\n",
             data, kFloorDb, picture.from, picture.from + length, kilohertz, picture.from + middle,
             channel.Seconds(last) / static_cast<double>(columns - 1), kilohertz / (kRows - 1));
}

std::string PlotLevels(const Picture &picture, const std::vector<Signal> &channels) {
  std::string script = GnuplotStart(kFullHeight) + TitleOf(picture);
  std::string curves;
  const double window = std::max(kLevelWindow, LengthOf(channels[0]) / kColumns);
  for (size_t i = 0; i < channels.size(); ++i) {
    const Signal &channel = channels[i];
    const size_t step = std::max<size_t>(channel.Count(window), 1);
    script += fmt::format("$d{} << EOD\n", i);
    for (size_t begin = 0; begin < channel.samples.size(); begin += step) {
      const size_t end = std::min(begin + step, channel.samples.size());
      const Loudness loudness = LoudnessOf(channel, {begin, end});
      double peak = 0.0;
      for (size_t j = begin; j < end; ++j)
        peak = std::max(peak, std::abs(Shown(channel.samples[j])));
      script += fmt::format("{:.6f} {:.2f} {:.2f}\n", picture.from + channel.Seconds(begin),
                            std::max(ToDb(peak), kFloorDb),
                            std::max(ToDb(std::hypot(loudness.rms, loudness.mean) / kFullScale), kFloorDb));
    }
    script += "EOD\n";
    const char *colour = kColours[i % kColours.size()];
    curves += fmt::format(
        "{0}$d{1} using 1:2 with lines linewidth 1 dashtype 3 linecolor '{2}' title {4}, "
        "$d{1} using 1:3 with lines linewidth 2 linecolor '{2}' title 'channel {3}, RMS'",
        i == 0 ? "" : ", ", i, colour, picture.first + i,
        channels.size() > kFewChannels ? "''" : fmt::format("'channel {}, peak'", picture.first + i));
  }
  return script +
         fmt::format(
             "set xlabel 'time, s'\nset ylabel {}\nset xrange [{}:{}]\nset yrange [{}:6]\nset ytics 12\n"
             "set key outside right top vertical\nplot {}\n",
             GnuplotText(fmt::format("level in windows of {:.0f} ms, dBFS", window * 1000.0)), picture.from,
             picture.from + LengthOf(channels[0]), kFloorDb, curves);
}

}  // namespace kest::ctl
