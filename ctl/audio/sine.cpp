// SPDX-License-Identifier: Apache-2.0
#include "ctl/audio/sine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>

#include "ctl/audio/distribution.h"
#include "ctl/audio/spectrum.h"

namespace kest::ctl {
namespace {

constexpr size_t kFrame = 4096;
constexpr size_t kPeakBins = 4;  // on each side of a tone's peak that belong to it
constexpr size_t kLeastBin = 4;
constexpr double kTonePart = 0.9;    // of a frame's energy
constexpr double kFrameParts = 0.6;  // of the frames that must be tones
constexpr int kRefinements = 8;
constexpr double kDisturbed = 10.0;  // times the usual remainder

constexpr size_t kLeastPhaseHop = 16;
constexpr size_t kHopsPerWindow = 32;
constexpr size_t kLeastPhaseWindow = 128;
constexpr double kPhasePeriods = 3.0;
constexpr double kLeastJump = 3.0 * M_PI / 180.0;
constexpr double kTimesUsual = 8.0;
constexpr double kLeastAmplitude = 0.5;  // of the usual one

// The fit of a tone to a frame: offset, cosine and sine, and how the frequency must change for it.
struct Fit {
  double radians = 0.0;  // per sample
  double cosine = 0.0;
  double sine = 0.0;
  double signalPower = 0.0;
  double restPower = 0.0;
};

template <size_t kSize>
using Matrix = std::array<std::array<double, kSize + 1>, kSize>;

// By elimination with pivots; the last column is the right side.
template <size_t kSize>
std::array<double, kSize> Solve(Matrix<kSize> rows) {
  for (size_t i = 0; i < kSize; ++i) {
    size_t pivot = i;
    for (size_t j = i + 1; j < kSize; ++j) {
      if (std::abs(rows[j][i]) > std::abs(rows[pivot][i])) pivot = j;
    }
    std::swap(rows[i], rows[pivot]);
    if (rows[i][i] == 0.0) return {};
    for (size_t j = 0; j < kSize; ++j) {
      if (j == i) continue;
      const double factor = rows[j][i] / rows[i][i];
      for (size_t k = i; k <= kSize; ++k)
        rows[j][k] -= factor * rows[i][k];
    }
  }
  std::array<double, kSize> solution{};
  for (size_t i = 0; i < kSize; ++i)
    solution[i] = rows[i][kSize] / rows[i][i];
  return solution;
}

// Offset, cosine, sine and the change of the frequency by which the tone fits best, in the least squares. The
// last only when the fit has a tone already.
template <size_t kSize>
std::array<double, kSize> BestFit(const Signal &signal, Span span, const Fit &fit) {
  Matrix<kSize> rows{};
  const std::complex<double> turn = std::polar(1.0, fit.radians);
  std::complex<double> pointer = 1.0;  // of a length that stays near enough to 1 within a span
  for (size_t i = span.begin; i < span.end; ++i, pointer *= turn) {
    const auto time = static_cast<double>(i - span.begin);
    const double c = pointer.real();
    const double s = pointer.imag();
    const std::array<double, 4> terms = {1.0, c, s, time * (fit.sine * c - fit.cosine * s)};
    const double sample = signal.samples[i] / kFullScale;
    for (size_t j = 0; j < kSize; ++j) {
      for (size_t k = 0; k < kSize; ++k)
        rows[j][k] += terms[j] * terms[k];
      rows[j][kSize] += terms[j] * sample;
    }
  }
  return Solve<kSize>(rows);
}

void TakeRest(const Signal &signal, Span span, double offset, Fit &fit) {
  double rest = 0.0;
  for (size_t i = span.begin; i < span.end; ++i) {
    const auto time = static_cast<double>(i - span.begin);
    const double tone = fit.cosine * std::cos(fit.radians * time) + fit.sine * std::sin(fit.radians * time);
    const double difference = signal.samples[i] / kFullScale - offset - tone;
    rest += difference * difference;
  }
  fit.restPower = rest / static_cast<double>(span.end - span.begin);
  fit.signalPower = (fit.cosine * fit.cosine + fit.sine * fit.sine) / 2.0;
}

Fit FitTone(const Signal &signal, Span span, double radians) {
  Fit fit;
  fit.radians = radians;
  double offset = 0.0;
  const auto start = BestFit<3>(signal, span, fit);
  offset = start[0];
  fit.cosine = start[1];
  fit.sine = start[2];
  for (int i = 0; i < kRefinements; ++i) {
    const auto better = BestFit<4>(signal, span, fit);
    offset = better[0];
    fit.cosine = better[1];
    fit.sine = better[2];
    fit.radians += better[3];
    if (std::abs(better[3]) < 1e-12) break;
  }
  TakeRest(signal, span, offset, fit);
  return fit;
}

// The frequency of the frame in radians per sample; 0 when it is no tone.
double ToneOf(const Signal &signal, size_t begin, size_t size, const Fourier &fourier,
              const std::vector<double> &window) {
  const Loudness loudness = LoudnessOf(signal, {begin, begin + size});
  Spectrum input(size);
  for (size_t i = 0; i < size; ++i)
    input[i] = window[i] * (signal.samples[begin + i] - loudness.mean);
  const Spectrum bins = fourier.Transform(input);
  size_t peak = 0;
  double whole = 0.0;
  for (size_t i = 1; i < size / 2; ++i) {
    whole += std::norm(bins[i]);
    if (peak == 0 || std::norm(bins[i]) > std::norm(bins[peak])) peak = i;
  }
  if (peak < kLeastBin || peak + kPeakBins >= size / 2) return 0.0;
  double tone = 0.0;
  double moment = 0.0;
  for (size_t i = peak - std::min(peak - 1, kPeakBins); i <= peak + kPeakBins; ++i) {
    tone += std::norm(bins[i]);
    moment += std::norm(bins[i]) * static_cast<double>(i);
  }
  if (whole <= 0.0 || tone < kTonePart * whole) return 0.0;
  return 2.0 * M_PI * (moment / tone) / static_cast<double>(size);
}

double MedianOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return Quantile(values, 0.5);
}

// The part of the tone in a window: its amplitude, with the phase that it would have at the beginning.
std::complex<double> PhasorOf(const Signal &signal, Span span, double radians) {
  Fit fit;
  fit.radians = radians;
  const auto best = BestFit<3>(signal, span, fit);
  return std::complex<double>(best[1], -best[2]) *
         std::polar(1.0, -radians * static_cast<double>(span.begin));
}

double TurnBetween(const std::complex<double> &before, const std::complex<double> &after) {
  return std::arg(after * std::conj(before));
}

}  // namespace

std::optional<Sine> FindSine(const Signal &signal) {
  if (signal.IsConstant()) return std::nullopt;
  const size_t size = std::min(kFrame, PowerOfTwo(signal.samples.size() / 2 + 1));
  if (size < kFrame / 4) return std::nullopt;
  const Fourier fourier(size, false);
  const std::vector<double> window = HannWindow(size);
  std::vector<size_t> places;
  std::vector<double> tones;
  const size_t frames = signal.samples.size() / size;
  for (size_t i = 0; i < frames; ++i) {
    const double radians = ToneOf(signal, i * size, size, fourier, window);
    if (radians == 0.0) continue;
    places.push_back(i * size);
    tones.push_back(radians);
  }
  if (static_cast<double>(tones.size()) < kFrameParts * static_cast<double>(frames)) return std::nullopt;
  const double usual = MedianOf(tones);
  std::vector<Fit> fits;
  std::vector<double> rests;
  for (size_t i = 0; i < tones.size(); ++i) {
    if (std::abs(tones[i] - usual) > 4.0 * M_PI / static_cast<double>(size)) continue;
    fits.push_back(FitTone(signal, {places[i], places[i] + size}, tones[i]));
    rests.push_back(fits.back().restPower);
  }
  if (static_cast<double>(fits.size()) < kFrameParts * static_cast<double>(frames)) return std::nullopt;
  const double usualRest = MedianOf(rests);
  double signalPower = 0.0;
  double restPower = 0.0;
  std::vector<double> radians;
  for (const Fit &fit : fits) {
    if (fit.restPower > kDisturbed * usualRest) continue;
    signalPower += fit.signalPower;
    restPower += fit.restPower;
    radians.push_back(fit.radians);
  }
  const double mean = signalPower / static_cast<double>(radians.size());
  return Sine{MedianOf(radians) * signal.rate / (2.0 * M_PI), std::sqrt(2.0 * mean),
              ToDb(std::sqrt(signalPower)) - ToDb(std::sqrt(restPower))};
}

Flaws FindPhaseJumps(const Signal &signal, const Sine &sine) {
  const double radians = 2.0 * M_PI * sine.hz / signal.rate;
  const auto periods = static_cast<size_t>(kPhasePeriods * 2.0 * M_PI / radians);
  const size_t hop = std::max(kLeastPhaseHop, periods / kHopsPerWindow);
  const size_t ahead = (std::max(kLeastPhaseWindow, periods) + hop - 1) / hop;
  const size_t window = ahead * hop;
  const size_t count = signal.samples.size();
  std::vector<std::complex<double>> phasors;  // of the windows that begin at multiples of the hop
  for (size_t begin = 0; begin + window <= count; begin += hop)
    phasors.push_back(PhasorOf(signal, {begin, begin + window}, radians));
  if (phasors.size() <= 3 * ahead) return {};
  std::vector<double> amplitudes;
  std::vector<double> turns;
  for (size_t i = 0; i + ahead < phasors.size(); ++i) {
    amplitudes.push_back(std::abs(phasors[i]));
    turns.push_back(TurnBetween(phasors[i], phasors[i + ahead]));
  }
  const double drift = MedianOf(turns);
  std::vector<double> sizes;
  for (double &turn : turns) {
    turn = std::remainder(turn - drift, 2.0 * M_PI);
    sizes.push_back(std::abs(turn));
  }
  const double leastAmplitude = kLeastAmplitude * MedianOf(amplitudes);
  const double least = std::max(kLeastJump, kTimesUsual * MedianOf(sizes));
  Flaws flaws;
  const auto isLoud = [&](size_t i) { return std::abs(phasors[i]) >= leastAmplitude; };
  for (size_t i = ahead; i + 2 * ahead < phasors.size(); ++i) {
    if (sizes[i] < least || !isLoud(i) || !isLoud(i + ahead)) continue;
    const double lasting =
        std::remainder(TurnBetween(phasors[i - ahead], phasors[i + 2 * ahead]) - 3.0 * drift, 2.0 * M_PI);
    if (std::abs(lasting) < least || lasting * turns[i] < 0.0) continue;
    const auto first = sizes.begin() + static_cast<ptrdiff_t>(i - ahead);
    const auto last = sizes.begin() + static_cast<ptrdiff_t>(std::min(i + ahead, sizes.size() - 1));
    const auto top = std::max_element(first, last + 1);
    if (top != sizes.begin() + static_cast<ptrdiff_t>(i)) continue;
    const size_t at = i * hop + window;
    if (!flaws.empty() && at - flaws.back().begin < window) continue;
    flaws.push_back({at, at + 1, "phase_jump", turns[i] * 180.0 / M_PI, "degrees"});
  }
  return flaws;
}

}  // namespace kest::ctl
