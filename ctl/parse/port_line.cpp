// SPDX-License-Identifier: Apache-2.0
#include "ctl/parse/port_line.h"

#include <algorithm>

#include "ctl/parse/lines.h"
#include "ctl/parse/scanner.h"

namespace kest::ctl {
namespace {

constexpr size_t kTimeWidth = 9;
constexpr size_t kNameWidth = 15;
constexpr std::string_view kCounters = ":cnt:";

struct Header {
  std::string_view text;
  PortLine::Kind kind;
};

constexpr Header kHeaders[] = {{"[pcm  level] ", PortLine::Kind::kPcm},
                               {"[meta level] ", PortLine::Kind::kMetadata},
                               {"[raw  level] ", PortLine::Kind::kRaw}};

std::string Unpadded(std::string_view name) {
  return std::string(name.substr(0, name.find_last_not_of(' ') + 1));
}

bool TakeHeader(Scanner &scanner, PortLine &line) {
  const auto header = std::find_if(std::begin(kHeaders), std::end(kHeaders),
                                   [&](const Header &known) { return scanner.Text(known.text); });
  if (header == std::end(kHeaders)) return false;
  line.kind = header->kind;
  const size_t before = scanner.Rest().size();
  if (!scanner.Number(line.timeUs)) return false;
  for (size_t width = before - scanner.Rest().size(); width < kTimeWidth; ++width)
    scanner.Text(" ");
  return scanner.Text(" ");
}

// Where the first port begins: " out0" or "  in0" before its counters; the end of the text without ports.
size_t FindPorts(std::string_view text) {
  const size_t counters = text.find(kCounters, 2 * kNameWidth);  // names may hold anything
  if (counters == std::string_view::npos) return text.size();
  const size_t digits = text.find_last_not_of("0123456789", counters - std::min<size_t>(counters, 1));
  const size_t side = text.rfind(' ', digits);
  return side == std::string_view::npos ? text.size() : side;
}

// Both names are padded. A pipeline's name of up to 15 characters may hold a colon, a longer one not.
bool TakeNames(std::string_view names, PortLine &line) {
  const size_t colon = names.find(':', kNameWidth);
  if (colon == std::string_view::npos) return false;
  line.pipeline = Unpadded(names.substr(0, colon));
  line.filter = Unpadded(names.substr(colon + 1));
  return !line.pipeline.empty() && !line.filter.empty();
}

bool TakeNumber(Scanner &scanner, std::string_view mark, uint64_t &number) {
  scanner.Blanks();
  if (!scanner.Text(mark) || !scanner.Number(number)) return false;
  scanner.Blanks();
  return true;
}

// "in0:cnt:352       ,0 ,0 ,0  l:256       ,a:768       ,s:1024      ,r:256        pts:0                   |"
bool TakePort(Scanner &scanner, PortLine &line) {
  PortState port;
  uint64_t ignored = 0;
  int64_t timeStamp = 0;
  scanner.Blanks();
  port.isInput = scanner.Text("in");
  if (!port.isInput && !scanner.Text("out")) return false;
  const bool isWhole = scanner.Number(port.number) && TakeNumber(scanner, kCounters, port.updates) &&
                       TakeNumber(scanner, ",", port.xruns) && TakeNumber(scanner, ",", ignored) &&
                       TakeNumber(scanner, ",", ignored) && TakeNumber(scanner, "l:", port.level) &&
                       TakeNumber(scanner, ",a:", ignored) && TakeNumber(scanner, ",s:", port.size) &&
                       TakeNumber(scanner, port.isInput ? ",r:" : ",w:", port.moved) &&
                       scanner.Text("pts:") && scanner.Number(timeStamp);
  if (!isWhole) return false;
  scanner.Blanks();
  line.ports.push_back(port);
  return scanner.Text("|");
}

}  // namespace

std::optional<PortLine> ParsePortLine(std::string_view line) {
  PortLine parsed;
  Scanner scanner(line);
  if (!TakeHeader(scanner, parsed)) return std::nullopt;
  const size_t ports = FindPorts(scanner.Rest());
  if (!TakeNames(scanner.Rest().substr(0, ports), parsed)) return std::nullopt;
  Scanner rest(scanner.Rest().substr(ports));
  while (TakePort(rest, parsed)) {
  }
  return parsed;
}

}  // namespace kest::ctl
