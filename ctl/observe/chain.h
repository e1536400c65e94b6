// SPDX-License-Identifier: Apache-2.0
// Which filter comes before and behind which, within a pipeline and from one to the next.
#pragma once

#include <string>
#include <vector>

#include "ctl/model/listing.h"
#include "ctl/observe/port_sampler.h"

namespace kest::ctl {

class Chain {
 public:
  explicit Chain(const Listing &listing);

  // Of the filter: its predecessor, or the last filters of the pipelines that feed its pipeline.
  [[nodiscard]] std::vector<FilterKey> Before(const FilterKey &filter) const;
  [[nodiscard]] std::vector<FilterKey> Behind(const FilterKey &filter) const;
  // All filters of its pipeline that stand before it, the nearest first.
  [[nodiscard]] std::vector<FilterKey> AllBefore(const FilterKey &filter) const;
  [[nodiscard]] std::vector<FilterKey> AllBehind(const FilterKey &filter) const;
  [[nodiscard]] bool IsFirst(const FilterKey &filter) const;
  [[nodiscard]] bool Knows(const FilterKey &filter) const { return Find(filter).isFound; }
  // The last filters of the pipelines that feed this one, and the first ones of those that it feeds.
  [[nodiscard]] std::vector<FilterKey> Feeders(const std::string &pipeline) const;
  [[nodiscard]] std::vector<FilterKey> Fed(const std::string &pipeline) const;

 private:
  struct Link {
    std::string pipeline;
    std::vector<FilterKey> filters;  // those that can be told from all others
    std::vector<std::string> feeds;
  };
  struct Place {
    size_t link = 0;
    size_t filter = 0;
    bool isFound = false;
  };
  [[nodiscard]] Place Find(const FilterKey &filter) const;

  std::vector<Link> links_;
};

}  // namespace kest::ctl
