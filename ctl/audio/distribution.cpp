// SPDX-License-Identifier: Apache-2.0
#include "ctl/audio/distribution.h"

#include <algorithm>
#include <cmath>

namespace kest::ctl {
namespace {

std::vector<Bin> BinsOf(const std::vector<double> &sorted, size_t count) {
  const double least = sorted.front();
  const double width = (sorted.back() - least) / static_cast<double>(count);
  std::vector<Bin> bins;
  bins.reserve(count);
  for (size_t i = 0; i < count; ++i)
    bins.push_back({least + width * static_cast<double>(i), least + width * static_cast<double>(i + 1), 0});
  for (const double value : sorted) {
    const auto place = width > 0.0 ? static_cast<size_t>((value - least) / width) : 0;
    ++bins[std::min(place, count - 1)].count;
  }
  return bins;
}

}  // namespace

double Quantile(const std::vector<double> &sorted, double part) {
  const double place = part * static_cast<double>(sorted.size() - 1);
  const auto below = static_cast<size_t>(place);
  const size_t above = std::min(below + 1, sorted.size() - 1);
  return sorted[below] + (sorted[above] - sorted[below]) * (place - std::floor(place));
}

Distribution DistributionOf(std::vector<double> values, size_t mostBins) {
  std::sort(values.begin(), values.end());
  const bool isOneValue = values.front() == values.back();
  return {values.front(), Quantile(values, 0.5), values.back(), BinsOf(values, isOneValue ? 1 : mostBins)};
}

}  // namespace kest::ctl
