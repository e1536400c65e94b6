// SPDX-License-Identifier: Apache-2.0
// Spectra and correlations.
#pragma once

#include <complex>
#include <memory>
#include <vector>

namespace kest::ctl {

using Spectrum = std::vector<std::complex<double>>;

// A transform of a length that is a power of two, forward or, without a factor, back.
class Fourier {
 public:
  Fourier(size_t size, bool isInverse);
  ~Fourier();
  Fourier(const Fourier &) = delete;
  Fourier &operator=(const Fourier &) = delete;

  [[nodiscard]] Spectrum Transform(const Spectrum &input) const;

 private:
  struct Plan;
  std::unique_ptr<Plan> plan_;
};

// The window of Hann, of a sum of 1.
std::vector<double> HannWindow(size_t size);
// At least so many, a power of two.
size_t PowerOfTwo(size_t least);

}  // namespace kest::ctl
