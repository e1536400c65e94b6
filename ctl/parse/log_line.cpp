// SPDX-License-Identifier: Apache-2.0
#include "ctl/parse/log_line.h"

#include "ctl/parse/lines.h"
#include "ctl/parse/scanner.h"

namespace kest::ctl {
namespace {

bool PassColour(Scanner &scanner) {
  return scanner.Text("\033[") && scanner.UpTo("m").has_value();
}

bool ParseVersion(std::string_view text, LogLine &line) {
  const size_t comma = text.rfind(',');  // the version holds a comma itself
  if (comma == std::string_view::npos) return false;
  line.version = text.substr(0, comma);
  Scanner restarts(text.substr(comma + 1));
  return restarts.Number(line.restarts) && restarts.AtEnd();
}

bool ParsePrefix(Scanner &scanner, LogLine &line) {
  PassColour(scanner);
  if (!scanner.Number(line.pid) || !scanner.Text(" ") || !scanner.Number(line.tid) || !scanner.Text(" [")) {
    return false;
  }
  const auto version = scanner.UpTo("][");
  if (!version || !ParseVersion(*version, line)) return false;
  const auto time = scanner.UpTo("]<ZE3><");
  const auto level = time ? scanner.UpTo(">") : std::nullopt;
  if (!level) return false;
  line.time = *time;
  line.level = *level;
  PassColour(scanner);
  return line.pid > 0;
}

// "Function[162 ]: text". Messages that do not begin with a function are left alone.
void ParseFunction(LogLine &line) {
  Scanner scanner(line.text);
  const auto function = scanner.UpTo("[");
  if (!function || function->empty() || function->find_first_of(" \t=:,") != std::string_view::npos) return;
  int sourceLine = 0;
  if (!scanner.Number(sourceLine)) return;
  scanner.Blanks();
  if (!scanner.Text("]: ")) return;
  line.function = *function;
  line.sourceLine = sourceLine;
  line.text = std::string(scanner.Rest());
}

}  // namespace

LogLine ParseLogLine(std::string_view text) {
  LogLine line;
  Scanner scanner(text);
  if (!ParsePrefix(scanner, line)) {
    line = {};
    line.level = "PRINT";
    line.text = text;
    return line;
  }
  line.text = scanner.Rest();
  ParseFunction(line);
  return line;
}

}  // namespace kest::ctl
