// SPDX-License-Identifier: Apache-2.0
#include "ctl/audio/spectrum.h"

#include <cmath>
#include <numeric>

#include <kissfft/kissfft.hh>

namespace kest::ctl {

struct Fourier::Plan {
  size_t size;
  kissfft<double> transform;
};

Fourier::Fourier(size_t size, bool isInverse)
    : plan_(std::make_unique<Plan>(Plan{size, kissfft<double>(size, isInverse)})) {}

Fourier::~Fourier() = default;

Spectrum Fourier::Transform(const Spectrum &input) const {
  Spectrum output(plan_->size);
  plan_->transform.transform(input.data(), output.data());
  return output;
}

std::vector<double> HannWindow(size_t size) {
  std::vector<double> window(size);
  for (size_t i = 0; i < size; ++i)
    window[i] = 0.5 - 0.5 * std::cos(2.0 * M_PI * (static_cast<double>(i) + 0.5) / static_cast<double>(size));
  const double sum = std::accumulate(window.begin(), window.end(), 0.0);
  for (double &value : window)
    value /= sum;
  return window;
}

size_t PowerOfTwo(size_t least) {
  size_t size = 1;
  while (size < least)
    size *= 2;
  return size;
}

}  // namespace kest::ctl
