// SPDX-License-Identifier: Apache-2.0
#include "ctl/parse/perf_line.h"

#include "ctl/parse/scanner.h"

namespace kest::ctl {
namespace {

constexpr std::string_view kFigures = "][MIPS=";

// "1.23": hundredths, which a number of the C library's locale cannot disturb.
bool TakeFigure(Scanner &scanner, std::string_view mark, double &figure) {
  int64_t whole = 0;
  int64_t hundredths = 0;
  if (!scanner.Text(mark) || !scanner.Number(whole) || !scanner.Text(".") || !scanner.Number(hundredths))
    return false;
  figure = static_cast<double>(whole) + static_cast<double>(hundredths) / 100.0;
  return true;
}

}  // namespace

std::optional<PerfLine> ParsePerfLine(std::string_view line) {
  PerfLine parsed;
  Scanner scanner(line);
  if (!scanner.Text("[PERF_EVENT][") || !scanner.Number(parsed.cycles) || !scanner.Text("][")) {
    return std::nullopt;
  }
  // Names may hold anything, so the last occurrence counts.
  const size_t nameEnd = scanner.Rest().rfind(kFigures);
  if (nameEnd == std::string_view::npos) return std::nullopt;
  parsed.name = scanner.Rest().substr(0, nameEnd);
  Scanner figures(scanner.Rest().substr(nameEnd));
  const bool isWhole = TakeFigure(figures, kFigures, parsed.mips) &&
                       TakeFigure(figures, "][MCPS=", parsed.mcps) &&
                       TakeFigure(figures, "][CPU%=", parsed.cpuPercent) && figures.Text("%]");
  if (!isWhole) return std::nullopt;
  return parsed;
}

}  // namespace kest::ctl
