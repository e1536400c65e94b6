// SPDX-License-Identifier: Apache-2.0
// How measured values are distributed.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kest::ctl {

struct Bin {
  double from;
  double to;  // excluded, but in the last bin
  size_t count;
};

struct Distribution {
  double least = 0.0;
  double median = 0.0;
  double most = 0.0;
  std::vector<Bin> bins;  // of equal width, one when all values are equal
};

// Of at least one value.
Distribution DistributionOf(std::vector<double> values, size_t mostBins);
// The value below which that part of the values lies.
double Quantile(const std::vector<double> &sorted, double part);

}  // namespace kest::ctl
