// SPDX-License-Identifier: Apache-2.0
// One table of ratios: what an operation of the library costs beside the limit of the machine, beside plain
// code and beside another library. The cases of a row run in one process, in random order, many times each.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

namespace kest::bench {

// The columns. The limit is a memcpy of the same bytes where the row names no other.
enum class Who { kLibrary, kLimit, kPlain, kSwresample };

struct Shape {
  uint32_t u32Channels;
  uint32_t u32Frames;
};

// The cases of a row that differ in where the data lies share its cells, which then give the lowest and the
// highest ratio.
class Row {
 public:
  Row(const std::string &operation, Shape shape);
  explicit Row(const std::string &operation) : Row(operation, {0, 0}) {}

  // Measures the processor time of a call.
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

  // For what has its own way of measuring: seconds gives the time of one unit of the row.
  Row &AddTimed(Who eWho, std::function<double()> seconds);

 private:
  [[nodiscard]] std::string CaseName(const std::string &layout, Who eWho) const;

  size_t sztIndex_;
};

// Runs the rows whose operation contains one of the texts, all without a text, and prints the table. Takes
// out the arguments of Google Benchmark and --quick. The exit status of the process.
int RunRows(int s32Args, char **apszArgs);

// Counts against the run: it ends with a failure.
void ReportFault(const std::string &text);

}  // namespace kest::bench
