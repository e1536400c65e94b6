// SPDX-License-Identifier: Apache-2.0
// A table of ratios: the cost of library operations relative to the limit of the machine, to plain code and
// to another library. All cases of a row run in one process, in random order, many times each.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

namespace kest::bench {

// The columns. Unless the row says otherwise, the limit is a memcpy of the same bytes.
enum class Who { kLibrary, kLimit, kPlain, kSwresample };

struct Shape {
  uint32_t u32Channels;
  uint32_t u32Frames;
};

// A row of the table. Cases that differ only in their layout, that is, in where the data lies, share the
// cells of the row, which then show the lowest and the highest ratio.
class Row {
 public:
  Row(const std::string &operation, Shape shape);
  explicit Row(const std::string &operation) : Row(operation, {0, 0}) {}

  // Measures the CPU time of a call.
  template <typename Call>
  Row &Add(const std::string &layout, Who eWho, Call call) {
    benchmark::RegisterBenchmark(CaseName(layout, eWho).c_str(), [call](benchmark::State &state) {
      for (auto _ : state) {
        call();
        benchmark::ClobberMemory();
      }
    });
    return *this;
  }

  // For cases that measure themselves: seconds returns the time of one unit of the row.
  Row &AddTimed(Who eWho, std::function<double()> seconds);

 private:
  [[nodiscard]] std::string CaseName(const std::string &layout, Who eWho) const;

  size_t sztIndex_;
};

// Runs the rows whose operation contains one of the texts, or all rows if there is no text, and prints the
// table. The options of Google Benchmark and --quick are not taken for texts. Returns the exit status of the
// process.
int RunRows(int s32Args, char **apszArgs);

// Reports a fault and makes the whole run end with a failure.
void ReportFault(const std::string &text);

}  // namespace kest::bench
