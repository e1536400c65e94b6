// SPDX-License-Identifier: Apache-2.0
// Runs the parsers of kestctl on arbitrary text in place of the log, and on every such text cut at a point:
// nothing may be read beyond its end, and what is shown of it must not command a terminal.
#include <algorithm>
#include <string>

#include "ctl/channel/verdict.h"
#include "ctl/parse/dump.h"
#include "ctl/parse/latency.h"
#include "ctl/parse/lines.h"
#include "ctl/parse/listing.h"
#include "ctl/parse/log_line.h"
#include "ctl/parse/parameter_values.h"
#include "ctl/parse/parameters.h"
#include "ctl/parse/perf_line.h"
#include "ctl/parse/port_line.h"
#include "ctl/parse/settings.h"
#include "ctl/parse/status.h"
#include "ctl/parse/trace.h"
#include "ctl/render/escape.h"
#include "fuzz/expect.h"

namespace kest::fuzz {
namespace {

bool IsHarmless(const std::string &shown) {
  return std::none_of(shown.begin(), shown.end(), [](char character) {
    return static_cast<unsigned char>(character) < 0x20 || character == 0x7f;
  });
}

void CheckLines(const std::vector<std::string> &lines) {
  size_t ports = 0;
  for (const ctl::Pipeline &pipeline : ctl::ParseListing(lines).listing.pipelines) {
    for (const ctl::Filter &filter : pipeline.filters)
      ports += filter.ports.size();
  }
  Expect(ports <= lines.size(), "more ports than lines");
  static_cast<void>(ctl::ParseStatus(lines));
  static_cast<void>(ctl::ParseParameters(lines));
  static_cast<void>(ctl::ParseParameterValues(lines, "Decoder_13", "Volume"));
  static_cast<void>(ctl::ParseSettings(lines));
  static_cast<void>(ctl::ParseDumpRun(lines, true));
  static_cast<void>(ctl::ParseLatencyRun(lines));
  ctl::LatencyReport report;
  for (const std::string &line : lines)
    ctl::TakeLatencyLine(line, report);
  Expect(report.isInserted || !report.totalBytes, "a burst that was found before it was inserted");
  ctl::Reply reply;
  reply.lines = lines;
  const ctl::Verdict verdict = ctl::Judge(reply, true, 0);
  Expect(verdict.accepted == verdict.reported.empty(), "a verdict that does not agree with the reports");
}

// Whatever the text: turns follow each other within their cycle, and cycles each other.
void CheckTrace(const std::string &text) {
  uint64_t last = 0;
  for (const ctl::Cycle &cycle : ctl::ParseTrace(text).trace.cycles) {
    Expect(cycle.startUs >= last && cycle.endUs >= cycle.startUs, "cycles that overlap");
    last = cycle.startUs;
    for (const ctl::FilterTurn &turn : cycle.turns) {
      Expect(turn.startUs >= last && turn.endUs >= turn.startUs && turn.endUs <= cycle.endUs,
             "turns that overlap");
      last = turn.endUs;
    }
    last = cycle.endUs;
  }
}

void CheckText(const std::string &text) {
  CheckTrace(text);
  const std::vector<std::string> lines = ctl::SplitLogLines(text);
  for (const std::string &line : lines) {
    const ctl::LogLine parsed = ctl::ParseLogLine(line);
    Expect(parsed.text.size() <= line.size(), "more text than there is");
    Expect(IsHarmless(ctl::Escape(line)), "a control character is shown as it is");
    static_cast<void>(ctl::EscapeButColours(line));
    static_cast<void>(ctl::WithoutColours(line));
    static_cast<void>(ctl::ParsePerfLine(line));
    const auto ports = ctl::ParsePortLine(line);
    Expect(!ports || ports->ports.size() <= line.size(), "more ports than there is text");
  }
  CheckLines(lines);
}

}  // namespace
}  // namespace kest::fuzz

// The first byte says where the text is cut.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pu8Data, size_t sztSize) {
  if (sztSize == 0) return 0;
  const std::string text(pu8Data + 1, pu8Data + sztSize);
  kest::fuzz::CheckText(text);
  kest::fuzz::CheckText(text.substr(std::min<size_t>(text.size(), text.size() * pu8Data[0] / 256)));
  kest::fuzz::CheckText(text.substr(0, text.size() * pu8Data[0] / 256));
  return 0;
}
