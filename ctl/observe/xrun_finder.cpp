// SPDX-License-Identifier: Apache-2.0
#include "ctl/observe/xrun_finder.h"

#include <algorithm>

namespace kest::ctl {
namespace {

constexpr size_t kRememberedTurns = 64;
constexpr size_t kTurnsInQuestion = 2;  // what made the port wait may have been the turn before
constexpr size_t kMostPipelines = 8;    // in a row; feeding may go in circles

std::optional<Blame> Longer(const std::optional<Blame> &one, const std::optional<Blame> &other) {
  if (!one || !other) return one ? one : other;
  return one->turnUs >= other->turnUs ? one : other;
}

uint64_t XrunsBefore(const PortLine &last, const PortState &port) {
  const auto same = std::find_if(last.ports.begin(), last.ports.end(),
                                 [&](const PortState &state) { return state.IsSamePort(port); });
  return same == last.ports.end() ? port.xruns : same->xruns;
}

}  // namespace

std::vector<Xrun> XrunFinder::Take(const PortLine &line) {
  const FilterKey key = KeyOf(line);
  if (line.kind != PortLine::Kind::kPcm || !chain_.Knows(key)) return {};
  const bool isFirst = known_.count(key) == 0;
  const PortLine last = isFirst ? line : known_[key].last;
  Note(line);
  std::vector<PortState> &told = known_[key].xruns;
  if (told.size() > kRememberedTurns) told.erase(told.begin());
  std::vector<Xrun> found;
  for (const PortState &port : line.ports) {
    const uint64_t before = XrunsBefore(last, port);
    if (port.xruns <= before || IsToldOfOtherEnd(key, port)) continue;
    known_[key].xruns.push_back(port);
    Xrun xrun = {line.timeUs, line.pipeline, line.filter, port, port.xruns - before, {}, {}, std::nullopt};
    xrun.before = Around(chain_.Before(key), line.timeUs);
    xrun.behind = Around(chain_.Behind(key), line.timeUs);
    const auto &turns = known_[key].turns;
    const uint64_t fromUs =
        turns.size() > kTurnsInQuestion ? turns[turns.size() - 1 - kTurnsInQuestion].endUs : 0;
    if (seesAll_) xrun.blame = port.isInput ? LongestBefore(key, fromUs, 0) : LongestBehind(key, fromUs);
    found.push_back(std::move(xrun));
  }
  return found;
}

// An output and the input behind it may be one and the same ring with one counter. The filter that counted
// prints it first.
bool XrunFinder::IsToldOfOtherEnd(const FilterKey &filter, const PortState &port) const {
  for (const FilterKey &other : port.isInput ? chain_.Before(filter) : chain_.Behind(filter)) {
    const auto found = known_.find(other);
    if (found == known_.end()) continue;
    const auto &told = found->second.xruns;
    const bool isTold = std::any_of(told.begin(), told.end(), [&](const PortState &state) {
      return state.isInput != port.isInput && state.xruns == port.xruns && state.size == port.size;
    });
    if (isTold) return true;
  }
  return false;
}

void XrunFinder::Note(const PortLine &line) {
  Known &known = known_[KeyOf(line)];
  known.last = line;
  uint64_t &lastUs = lastTurnUs_[line.pipeline];
  if (lastUs != 0 && line.timeUs >= lastUs) known.turns.push_back({line.timeUs, line.timeUs - lastUs});
  lastUs = line.timeUs;
  if (known.turns.size() > kRememberedTurns) known.turns.pop_front();
}

std::vector<Neighbour> XrunFinder::Around(const std::vector<FilterKey> &filters, uint64_t timeUs) const {
  std::vector<Neighbour> neighbours;
  for (const FilterKey &filter : filters) {
    const auto found = known_.find(filter);
    if (found == known_.end()) continue;
    const PortLine &last = found->second.last;
    neighbours.push_back({filter.first, filter.second, last.ports, timeUs - std::min(timeUs, last.timeUs)});
  }
  return neighbours;
}

std::optional<Blame> XrunFinder::Longest(const std::vector<FilterKey> &filters, uint64_t fromUs) const {
  std::optional<Blame> longest;
  for (const FilterKey &filter : filters) {
    const auto found = known_.find(filter);
    if (found == known_.end()) continue;
    for (const Turn &turn : found->second.turns) {
      if (turn.endUs > fromUs) longest = Longer(longest, Blame{filter.first, filter.second, turn.us});
    }
  }
  return longest;
}

// A first filter's turn includes what its pipeline waited. It waited for those who feed it only if they had
// nothing more in store for it than it took.
bool XrunFinder::IsStarved(const FilterKey &filter) const {
  const auto found = known_.find(filter);
  return found != known_.end() &&
         std::any_of(found->second.last.ports.begin(), found->second.last.ports.end(),
                     [](const PortState &port) { return port.isInput && port.level <= port.moved; });
}

std::optional<Blame> XrunFinder::LongestBefore(const FilterKey &filter, uint64_t fromUs, size_t depth) const {
  std::vector<FilterKey> own = chain_.AllBefore(filter);
  own.insert(own.begin(), filter);
  std::optional<Blame> longest = Longest(own, fromUs);
  const FilterKey &first = own.back();
  const bool isFirst = !longest || longest->filter == first.second;
  if (!isFirst || !IsStarved(first) || depth == kMostPipelines) return longest;
  std::optional<Blame> feeding;
  for (const FilterKey &feeder : chain_.Feeders(filter.first))
    feeding = Longer(feeding, LongestBefore(feeder, fromUs, depth + 1));
  const bool isFeedersFault = feeding && (!longest || feeding->turnUs * 2 >= longest->turnUs);
  return isFeedersFault ? feeding : longest;
}

std::optional<Blame> XrunFinder::LongestBehind(const FilterKey &filter, uint64_t fromUs) const {
  std::optional<Blame> longest = Longest(chain_.AllBehind(filter), fromUs);
  for (const FilterKey &fed : chain_.Fed(filter.first)) {
    std::vector<FilterKey> all = chain_.AllBehind(fed);
    all.push_back(fed);
    longest = Longer(longest, Longest(all, fromUs));
  }
  return longest;
}

}  // namespace kest::ctl
