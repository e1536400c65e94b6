// SPDX-License-Identifier: Apache-2.0
#include "ctl/audio/reference.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "ctl/audio/spectrum.h"

namespace kest::ctl {
namespace {

constexpr size_t kExcerpt = 1 << 15;  // samples of the recording that are looked for
constexpr size_t kLongestReference = 1 << 21;
constexpr double kFound = 0.7;     // correlation from which a channel is the other
constexpr double kNotAtAll = 0.5;  // below which it is none of them
constexpr double kAsGood = 0.9;    // of the best: channels may be alike

// Where the excerpt of the recording is in the reference.
struct Alignment {
  size_t excerpt;  // where it begins in the recording
  size_t length;
  size_t reference;  // where it begins in the reference
};

size_t LoudestPart(const Signal &signal, size_t length) {
  size_t loudest = 0;
  double most = -1.0;
  for (size_t begin = 0; begin + length <= signal.samples.size(); begin += length / 2 + 1) {
    const double rms = LoudnessOf(signal, {begin, begin + length}).rms;
    if (rms > most) loudest = begin;
    most = std::max(most, rms);
  }
  return loudest;
}

Spectrum Padded(const Signal &signal, Span span, size_t size) {
  const double mean = LoudnessOf(signal, span).mean;
  Spectrum values(size);
  for (size_t i = span.begin; i < span.end; ++i)
    values[i - span.begin] = (signal.samples[i] - mean) / kFullScale;
  return values;
}

double Correlation(const Signal &recording, const Signal &reference, const Alignment &alignment) {
  const Span here = {alignment.excerpt, alignment.excerpt + alignment.length};
  const Span there = {alignment.reference, alignment.reference + alignment.length};
  const Loudness one = LoudnessOf(recording, here);
  const Loudness other = LoudnessOf(reference, there);
  if (one.rms == 0.0 || other.rms == 0.0) return 0.0;
  double sum = 0.0;
  for (size_t i = 0; i < alignment.length; ++i)
    sum += (recording.samples[here.begin + i] - one.mean) * (reference.samples[there.begin + i] - other.mean);
  return sum / static_cast<double>(alignment.length) / (one.rms * other.rms);
}

// The place of the largest correlation of a part of the recording with the reference.
Alignment Align(const Signal &recording, const Signal &reference) {
  const size_t referenceLength = std::min(reference.samples.size(), kLongestReference);
  const size_t length = std::min({recording.samples.size(), referenceLength, kExcerpt});
  const size_t excerpt = LoudestPart(recording, length);
  const size_t size = PowerOfTwo(referenceLength + length);
  const Fourier forward(size, false);
  const Spectrum part = forward.Transform(Padded(recording, {excerpt, excerpt + length}, size));
  Spectrum product = forward.Transform(Padded(reference, {0, referenceLength}, size));
  for (size_t i = 0; i < size; ++i)
    product[i] *= std::conj(part[i]);
  const Spectrum correlation = Fourier(size, true).Transform(product);
  size_t best = 0;
  for (size_t i = 0; i + length <= referenceLength; ++i) {
    if (std::abs(correlation[i].real()) > std::abs(correlation[best].real())) best = i;
  }
  return {excerpt, length, best};
}

// From the first pair of channels that are alike; all others are shifted by as much.
std::optional<Alignment> AlignAny(const std::vector<Signal> &recording,
                                  const std::vector<Signal> &reference) {
  for (const Signal &channel : recording) {
    if (channel.IsConstant()) continue;
    for (const Signal &model : reference) {
      if (model.IsConstant()) continue;
      const Alignment alignment = Align(channel, model);
      if (std::abs(Correlation(channel, model, alignment)) >= kFound) return alignment;
    }
  }
  return std::nullopt;
}

ChannelVerdict Judge(size_t channel, const std::vector<double> &correlations) {
  const auto isSmaller = [](double one, double other) { return std::abs(one) < std::abs(other); };
  const auto best = std::max_element(correlations.begin(), correlations.end(), isSmaller);
  const double own = correlations[channel];
  const auto bestChannel = static_cast<size_t>(best - correlations.begin());
  if (std::abs(own) >= kAsGood * std::abs(*best) && std::abs(own) >= kNotAtAll) {
    return own < 0.0 ? ChannelVerdict{"inverted", own, "correlation"} : ChannelVerdict{};
  }
  if (std::abs(*best) >= kFound) return {"swapped", static_cast<double>(bestChannel + 1), "of the reference"};
  return {"different", *best, "correlation"};
}

ChannelVerdict VerdictOn(size_t channel, const std::vector<Signal> &recording,
                         const std::vector<Signal> &reference, const std::optional<Alignment> &alignment) {
  const bool shouldSound = !reference[channel].IsConstant();
  const bool sounds = channel < recording.size() && !recording[channel].IsConstant();
  if (!shouldSound && !sounds) return {};
  if (!sounds) return {"missing", static_cast<double>(channel + 1), "of the reference"};
  std::vector<double> correlations;
  correlations.reserve(reference.size());
  for (const Signal &model : reference)
    correlations.push_back(alignment ? Correlation(recording[channel], model, *alignment) : 0.0);
  return Judge(channel, correlations);
}

}  // namespace

std::vector<ChannelVerdict> CompareChannels(const std::vector<Signal> &recording,
                                            const std::vector<Signal> &reference) {
  const std::optional<Alignment> alignment = AlignAny(recording, reference);
  std::vector<ChannelVerdict> verdicts;
  verdicts.reserve(reference.size());
  for (size_t channel = 0; channel < reference.size(); ++channel)
    verdicts.push_back(VerdictOn(channel, recording, reference, alignment));
  return verdicts;
}

}  // namespace kest::ctl
