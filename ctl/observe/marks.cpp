// SPDX-License-Identifier: Apache-2.0
#include "ctl/observe/marks.h"

#include <algorithm>

namespace kest::ctl {
namespace {

bool HasInput(const Filter &filter) {
  return std::any_of(filter.ports.begin(), filter.ports.end(), [](const Port &port) {
    return port.isInput && (port.pcm.level > 0 || port.raw.level > 0);
  });
}

// The filter whose turn it is: the one behind that which ended its turn last. When none did, the last one
// that has something to work on: those before it have passed everything on. The number of filters when the
// pipeline waits between two cycles.
size_t AtWork(const Pipeline &pipeline, const std::vector<const PortLine *> &lines) {
  const size_t count = lines.size();
  size_t last = count;
  for (size_t i = 0; i < count; ++i) {
    if (lines[i] != nullptr && (last == count || lines[i]->timeUs >= lines[last]->timeUs)) last = i;
  }
  if (last < count) return last + 1;
  for (size_t i = count; i > 0; --i) {
    if (HasInput(pipeline.filters[i - 1])) return i - 1;
  }
  return count;
}

}  // namespace

std::vector<Mark> MarksOf(const Pipeline &pipeline, const std::vector<const PortLine *> &lines) {
  const size_t atWork = AtWork(pipeline, lines);
  std::vector<Mark> marks;
  marks.reserve(lines.size());
  for (size_t i = 0; i < lines.size(); ++i) {
    const Mark silent = i == atWork ? Mark::kUnfinished : Mark::kNotRun;
    marks.push_back(lines[i] != nullptr ? Mark::kRan : silent);
  }
  return marks;
}

}  // namespace kest::ctl
