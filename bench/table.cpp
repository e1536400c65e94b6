// SPDX-License-Identifier: Apache-2.0
#include "bench/table.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <map>
#include <optional>

namespace kest::bench {
namespace {

struct RowName {
  std::string operation;
  Shape shape;
};

std::vector<RowName> &RowNames() {
  static std::vector<RowName> names;
  return names;
}

bool g_bFault = false;

// The times of one case, one per repetition.
using Times = std::vector<double>;
// The cases of one layout, indexed by Who.
using Contest = std::array<Times, 4>;
using Contests = std::map<std::string, Contest>;

double Median(Times times) {
  const auto middle = times.begin() + static_cast<ptrdiff_t>(times.size() / 2);
  std::nth_element(times.begin(), middle, times.end());
  return *middle;
}

// Collects the times of the row that is running. Its cases are named row/layout/who.
class Collector : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context & /*context*/) override { return true; }

  void ReportRuns(const std::vector<Run> &runs) override {
    for (const Run &run : runs) {
      if (run.run_type == Run::RT_Iteration) Take(run);
    }
  }

  Contests contests;

 private:
  void Take(const Run &run) {
    const std::string &name = run.run_name.function_name;
    const size_t sztLayout = name.find('/') + 1;
    const size_t sztWho = name.rfind('/') + 1;
    if (run.error_occurred) ReportFault(name + ": " + run.error_message);
    const bool bManual = run.run_name.time_type == "manual_time";
    const double f64Total = bManual ? run.real_accumulated_time : run.cpu_accumulated_time;
    contests[name.substr(sztLayout, sztWho - sztLayout)][std::stoul(name.substr(sztWho))].push_back(
        f64Total / static_cast<double>(run.iterations));
  }
};

struct Range {
  double f64Low;
  double f64High;
};

// The ratio of two columns' times: its lowest and highest value over the layouts. Empty if a layout lacks one
// of the columns.
std::optional<Range> Ratio(const Contests &contests, Who eOne, Who eOther) {
  std::optional<Range> range;
  for (const auto &[layout, contest] : contests) {
    const Times &one = contest[static_cast<size_t>(eOne)];
    const Times &other = contest[static_cast<size_t>(eOther)];
    if (one.empty() || other.empty()) return std::nullopt;
    const double f64 = Median(one) / Median(other);
    range = range ? Range{std::min(range->f64Low, f64), std::max(range->f64High, f64)} : Range{f64, f64};
  }
  return range;
}

std::string CellText(const std::optional<Range> &range) {
  if (!range) return "";
  char acLow[32];
  char acBoth[64];
  snprintf(acLow, sizeof(acLow), "%.2f", range->f64Low);
  snprintf(acBoth, sizeof(acBoth), "%s - %.2f", acLow, range->f64High);
  return range->f64High - range->f64Low < 0.005 ? acLow : acBoth;
}

std::string CountText(uint32_t u32Count) {
  return u32Count == 0 ? "" : std::to_string(u32Count);
}

void PrintHead() {
  printf(
      "| operation | channels | frames | times the limit | plain / it | libswresample / it |\n"
      "|---|---|---|---|---|---|\n");
}

void RunRow(size_t sztRow) {
  const RowName &row = RowNames()[sztRow];
  Collector collector;
  benchmark::RunSpecifiedBenchmarks(&collector, "^" + std::to_string(sztRow) + "/");
  const Contests &contests = collector.contests;
  printf("| %s | %s | %s | %s | %s | %s |\n", row.operation.c_str(), CountText(row.shape.u32Channels).c_str(),
         CountText(row.shape.u32Frames).c_str(),
         CellText(Ratio(contests, Who::kLibrary, Who::kLimit)).c_str(),
         CellText(Ratio(contests, Who::kPlain, Who::kLibrary)).c_str(),
         CellText(Ratio(contests, Who::kSwresample, Who::kLibrary)).c_str());
  fflush(stdout);
}

bool IsAskedFor(const std::string &operation, const std::vector<std::string> &texts) {
  return texts.empty() || std::any_of(texts.begin(), texts.end(), [&](const std::string &text) {
           return operation.find(text) != std::string::npos;
         });
}

// Default arguments for Google Benchmark come first, so that those of the command line override them.
void InitialiseBenchmark(std::vector<std::string> &texts, const char *pszProgram) {
  std::vector<std::string> all = {pszProgram, "--benchmark_enable_random_interleaving=true"};
  const auto quick = std::find(texts.begin(), texts.end(), "--quick");
  const bool bQuick = quick != texts.end();
  if (bQuick) texts.erase(quick);
  all.emplace_back(bQuick ? "--benchmark_repetitions=1" : "--benchmark_repetitions=15");
  all.emplace_back(bQuick ? "--benchmark_min_time=0.000001" : "--benchmark_min_time=0.001");
  all.insert(all.end(), texts.begin(), texts.end());

  std::vector<char *> args;
  for (std::string &text : all)
    args.push_back(text.data());
  auto s32Args = static_cast<int>(args.size());
  benchmark::Initialize(&s32Args, args.data());
  texts.assign(args.begin() + 1, args.begin() + s32Args);
}

}  // namespace

Row::Row(const std::string &operation, Shape shape) : sztIndex_(RowNames().size()) {
  RowNames().push_back({operation, shape});
}

std::string Row::CaseName(const std::string &layout, Who eWho) const {
  return std::to_string(sztIndex_) + "/" + layout + "/" + std::to_string(static_cast<int>(eWho));
}

Row &Row::AddTimed(Who eWho, std::function<double()> seconds) {
  benchmark::RegisterBenchmark(CaseName("", eWho).c_str(),
                               [seconds = std::move(seconds)](benchmark::State &state) {
                                 for (auto _ : state)
                                   state.SetIterationTime(seconds());
                               })
      ->UseManualTime()
      ->Iterations(1);
  return *this;
}

void ReportFault(const std::string &text) {
  g_bFault = true;
  fprintf(stderr, "%s\n", text.c_str());
}

int RunRows(int s32Args, char **apszArgs) {
  std::vector<std::string> texts(apszArgs + 1, apszArgs + s32Args);
  InitialiseBenchmark(texts, apszArgs[0]);
  PrintHead();
  for (size_t i = 0; i < RowNames().size(); ++i) {
    if (IsAskedFor(RowNames()[i].operation, texts)) RunRow(i);
  }
  return g_bFault ? 1 : 0;
}

}  // namespace kest::bench
