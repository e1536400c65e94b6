// SPDX-License-Identifier: Apache-2.0
#include "ctl/parse/trace.h"

#include <algorithm>
#include <optional>

#include "ctl/parse/lines.h"
#include "ctl/parse/scanner.h"

namespace kest::ctl {
namespace {

// Relative to the cycle's start.
struct TurnLine {
  std::string filter;
  int32_t start = 0;
  int32_t end = 0;
};

std::optional<TurnLine> ParseTurn(std::string_view line) {
  constexpr std::string_view kStart = ",t1:";
  TurnLine turn;
  Scanner scanner(line);
  if (!scanner.Text("[f:")) return std::nullopt;
  const size_t nameEnd = scanner.Rest().rfind(kStart);  // the name may hold anything
  if (nameEnd == std::string_view::npos) return std::nullopt;
  turn.filter = scanner.Rest().substr(0, nameEnd);
  Scanner times(scanner.Rest().substr(nameEnd));
  int32_t difference = 0;
  const bool isWhole = times.Text(kStart) && times.Number(turn.start) && times.Text(",t2:") &&
                       times.Number(turn.end) && times.Text(",td:") && times.Number(difference) &&
                       times.Text("]") && times.AtEnd();
  if (!isWhole) return std::nullopt;
  return turn;
}

struct CycleLine {
  std::string pipeline;
  uint64_t start = 0;
  uint64_t end = 0;
};

std::optional<CycleLine> ParseCycle(std::string_view line) {
  CycleLine cycle;
  Scanner scanner(line);
  if (!scanner.Text("[ct:") || !scanner.Number(cycle.start) || !scanner.Text(",stop:") ||
      !scanner.Number(cycle.end) || !scanner.Text("][p:")) {
    return std::nullopt;
  }
  const size_t nameEnd = scanner.Rest().rfind(",t:");
  if (nameEnd == std::string_view::npos || line.back() != ']') return std::nullopt;
  cycle.pipeline = scanner.Rest().substr(0, nameEnd);
  return cycle;
}

class TraceParser {
 public:
  ParsedTrace Parse(std::string_view text) {
    for (const std::string &line : SplitLines(text)) {
      if (!line.empty()) TakeLine(line);
    }
    parsed_.trace.dropped += turns_.size();  // of a cycle whose end was not written any more
    return std::move(parsed_);
  }

 private:
  void TakeLine(std::string_view line) {
    if (auto turn = ParseTurn(line)) {
      turns_.push_back(*std::move(turn));
    } else if (const auto cycle = ParseCycle(line)) {
      TakeCycle(*cycle);
    } else {
      ++parsed_.trace.dropped;
    }
  }

  void TakeCycle(const CycleLine &line) {
    PipelineTrace &trace = parsed_.trace;
    parsed_.pipelines.insert(line.pipeline);
    trace.pipeline = line.pipeline;
    std::vector<TurnLine> turns;
    turns.swap(turns_);
    const bool isOverlapping = !trace.cycles.empty() && line.start < trace.cycles.back().endUs;
    if (line.end < line.start || isOverlapping) {
      trace.dropped += turns.size() + 1;
      return;
    }
    Cycle cycle = {line.start, line.end, {}};
    for (TurnLine &turn : turns)
      AddTurn(std::move(turn), cycle);
    trace.cycles.push_back(std::move(cycle));
  }

  // All pipelines share one start of a filter, so it may be that of another pipeline's. The end is always its
  // own.
  void AddTurn(TurnLine line, Cycle &cycle) {
    const uint64_t earliest = cycle.turns.empty() ? cycle.startUs : cycle.turns.back().endUs;
    const uint64_t end = cycle.startUs + static_cast<uint64_t>(std::max(line.end, 0));
    if (end < earliest || end > cycle.endUs) {
      ++parsed_.trace.dropped;
      return;
    }
    const uint64_t start = cycle.startUs + static_cast<uint64_t>(std::max(line.start, 0));
    FilterTurn turn = {std::move(line.filter), start, end, start < earliest || start > end};
    if (turn.isRepaired) {
      turn.startUs = earliest;
      ++parsed_.trace.repaired;
    }
    cycle.turns.push_back(std::move(turn));
  }

  ParsedTrace parsed_;
  std::vector<TurnLine> turns_;  // of the cycle whose end has not come
};

}  // namespace

ParsedTrace ParseTrace(std::string_view text) {
  return TraceParser().Parse(text);
}

}  // namespace kest::ctl
