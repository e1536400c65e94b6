// SPDX-License-Identifier: Apache-2.0
#include "ctl/observe/chain.h"

#include <algorithm>

namespace kest::ctl {

Chain::Chain(const Listing &listing) {
  const std::vector<FilterKey> distinct = DistinctFilters(listing);
  for (const Pipeline &pipeline : listing.pipelines) {
    Link link = {pipeline.name, {}, pipeline.feeds};
    for (const Filter &filter : pipeline.filters) {
      FilterKey key = {pipeline.name, filter.name};
      if (std::find(distinct.begin(), distinct.end(), key) != distinct.end())
        link.filters.push_back(std::move(key));
    }
    links_.push_back(std::move(link));
  }
}

Chain::Place Chain::Find(const FilterKey &filter) const {
  for (size_t i = 0; i < links_.size(); ++i) {
    const auto &filters = links_[i].filters;
    const auto found = std::find(filters.begin(), filters.end(), filter);
    if (found != filters.end()) return {i, static_cast<size_t>(found - filters.begin()), true};
  }
  return {};
}

std::vector<FilterKey> Chain::Feeders(const std::string &pipeline) const {
  std::vector<FilterKey> feeders;
  for (const Link &link : links_) {
    const bool feeds = std::find(link.feeds.begin(), link.feeds.end(), pipeline) != link.feeds.end();
    if (feeds && !link.filters.empty()) feeders.push_back(link.filters.back());
  }
  return feeders;
}

std::vector<FilterKey> Chain::Fed(const std::string &pipeline) const {
  std::vector<FilterKey> fed;
  for (const Link &link : links_) {
    if (link.pipeline != pipeline) continue;
    for (const Link &other : links_) {
      const bool isFed = std::find(link.feeds.begin(), link.feeds.end(), other.pipeline) != link.feeds.end();
      if (isFed && !other.filters.empty()) fed.push_back(other.filters.front());
    }
  }
  return fed;
}

std::vector<FilterKey> Chain::AllBefore(const FilterKey &filter) const {
  const Place place = Find(filter);
  if (!place.isFound) return {};
  const auto &filters = links_[place.link].filters;
  return {filters.rend() - static_cast<ptrdiff_t>(place.filter), filters.rend()};
}

std::vector<FilterKey> Chain::AllBehind(const FilterKey &filter) const {
  const Place place = Find(filter);
  if (!place.isFound) return {};
  const auto &filters = links_[place.link].filters;
  return {filters.begin() + static_cast<ptrdiff_t>(place.filter) + 1, filters.end()};
}

bool Chain::IsFirst(const FilterKey &filter) const {
  const Place place = Find(filter);
  return place.isFound && place.filter == 0;
}

std::vector<FilterKey> Chain::Before(const FilterKey &filter) const {
  const std::vector<FilterKey> own = AllBefore(filter);
  return own.empty() ? Feeders(filter.first) : std::vector<FilterKey>{own.front()};
}

std::vector<FilterKey> Chain::Behind(const FilterKey &filter) const {
  const std::vector<FilterKey> own = AllBehind(filter);
  return own.empty() ? Fed(filter.first) : std::vector<FilterKey>{own.front()};
}

}  // namespace kest::ctl
