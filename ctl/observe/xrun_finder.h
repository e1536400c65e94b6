// SPDX-License-Identifier: Apache-2.0
// Finds under- and overruns in port lines, and the filter for which the port had to wait.
#pragma once

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "ctl/model/port_line.h"
#include "ctl/model/xrun.h"
#include "ctl/observe/chain.h"

namespace kest::ctl {

class XrunFinder {
 public:
  // seesAll: the lines of every turn come. Otherwise nobody can be blamed.
  XrunFinder(const Listing &listing, bool seesAll) : chain_(listing), seesAll_(seesAll) {}

  // When other pipelines run; what is known of those that stay is kept.
  void Learn(const Listing &listing) { chain_ = Chain(listing); }
  [[nodiscard]] bool Knows(const PortLine &line) const { return chain_.Knows(KeyOf(line)); }
  // Lines in the order in which they were printed.
  std::vector<Xrun> Take(const PortLine &line);

 private:
  struct Turn {
    uint64_t endUs;
    uint64_t us;  // since the pipeline's turn before
  };
  struct Known {
    PortLine last;
    std::deque<Turn> turns;        // the newest last
    std::vector<PortState> xruns;  // as told
  };

  static FilterKey KeyOf(const PortLine &line) { return {line.pipeline, line.filter}; }
  [[nodiscard]] std::vector<Neighbour> Around(const std::vector<FilterKey> &filters, uint64_t timeUs) const;
  [[nodiscard]] std::optional<Blame> Longest(const std::vector<FilterKey> &filters, uint64_t fromUs) const;
  [[nodiscard]] std::optional<Blame> LongestBefore(const FilterKey &filter, uint64_t fromUs,
                                                   size_t depth) const;
  [[nodiscard]] std::optional<Blame> LongestBehind(const FilterKey &filter, uint64_t fromUs) const;
  [[nodiscard]] bool IsToldOfOtherEnd(const FilterKey &filter, const PortState &port) const;
  [[nodiscard]] bool IsStarved(const FilterKey &filter) const;
  void Note(const PortLine &line);

  Chain chain_;
  bool seesAll_;
  std::map<FilterKey, Known> known_;
  std::map<std::string, uint64_t> lastTurnUs_;  // by pipeline
};

}  // namespace kest::ctl
