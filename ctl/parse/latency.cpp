// SPDX-License-Identifier: Apache-2.0
#include "ctl/parse/latency.h"

#include "ctl/parse/lines.h"
#include "ctl/parse/scanner.h"

namespace kest::ctl {
namespace {

bool Address(Scanner &scanner, uint64_t &address) {
  return scanner.Text("0x") && scanner.Number(address, 16);
}

// "0x7f12 0x7f00 0x8f00 0 1024 256 4": start, ring, its end, read offset, ring size, level, width.
bool TakeCycle(std::string_view line, LatencyReport &report) {
  Scanner scanner(line);
  SearchedCycle cycle;
  uint64_t number = 0;
  const bool isCycle = Address(scanner, cycle.start) && scanner.Text(" ") &&
                       Address(scanner, cycle.ringStart) && scanner.Text(" ") &&
                       Address(scanner, cycle.ringEnd);
  if (!isCycle) return false;
  for (int i = 0; i < 4; ++i) {
    if (!scanner.Text(" ") || !scanner.Number(number)) return false;
  }
  if (scanner.AtEnd()) report.cycle = cycle;
  return scanner.AtEnd();
}

// "... ch:1 sr:48000 bits:32"
bool TakeFormat(std::string_view line, LatencyReport &report) {
  Scanner scanner(line);
  unsigned rate = 0;
  unsigned bits = 0;
  if (!scanner.UpTo(" ch:1 sr:") || !scanner.Number(rate) || !scanner.Text(" bits:") || !scanner.Number(bits))
    return false;
  report.rate = rate;
  report.bits = bits;
  return true;
}

// "... find[0x7f10]:0x10b5150f offset:4"
bool TakeHit(std::string_view line, LatencyReport &report) {
  Scanner scanner(line);
  uint64_t address = 0;
  uint64_t offset = 0;
  if (!scanner.UpTo(" find[") || !Address(scanner, address) || !scanner.UpTo(" offset:") ||
      !scanner.Number(offset))
    return false;
  report.hitAddress = address;
  report.hitOffset = offset;
  return true;
}

// "... 0 TotalBytes:9604 RealLatency:50 ms"
bool TakeTotal(std::string_view line, LatencyReport &report) {
  Scanner scanner(line);
  uint64_t bytes = 0;
  if (!scanner.UpTo(" TotalBytes:") || !scanner.Number(bytes) || !scanner.Text(" RealLatency:")) return false;
  report.totalBytes = bytes;
  return true;
}

// "... StartTime:5221043167 EndTime:5221096312 ProcTime:53145 us"
bool TakeTime(std::string_view line, LatencyReport &report) {
  Scanner scanner(line);
  uint64_t us = 0;
  if (!scanner.UpTo(" ProcTime:") || !scanner.Number(us) || !scanner.Text(" us")) return false;
  report.processingUs = us;
  return true;
}

}  // namespace

void TakeLatencyLine(std::string_view line, LatencyReport &report) {
  if (BeginsWith(line, "[latency] insert ")) report.isInserted = true;
  if (!report.isInserted) return;
  if (!BeginsWith(line, "[latency]")) {
    if (!report.totalBytes) TakeCycle(line, report);
    return;
  }
  static_cast<void>(TakeFormat(line, report) || TakeHit(line, report) || TakeTotal(line, report) ||
                    TakeTime(line, report));
}

std::optional<unsigned> ParseLatencyRun(const std::vector<std::string> &lines) {
  for (const std::string &line : lines) {
    Scanner scanner(line);
    unsigned run = 0;
    if (!scanner.UpTo(" latency measure enable ")) continue;
    if (scanner.Number(run) && scanner.Text(" ")) return run;
  }
  return std::nullopt;
}

}  // namespace kest::ctl
