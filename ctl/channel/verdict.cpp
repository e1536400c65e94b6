// SPDX-License-Identifier: Apache-2.0
#include "ctl/channel/verdict.h"

#include "ctl/parse/lines.h"
#include "ctl/parse/log_line.h"

namespace kest::ctl {
namespace {

// Prints of the dispatcher while it looks for the command, and the confirmation of the level commands around
// it.
constexpr std::string_view kEchoes[] = {
    "_ZE_KEST_Debug_Cmd_SetParameter pszDup=",
    "_ZE_KEST_Debug_Cmd_SetParameter pszSub=",
    "kest_log_level=",
};

bool IsEcho(const std::string &line) {
  for (const std::string_view echo : kEchoes) {
    if (BeginsWith(line, echo)) return true;
  }
  return line.empty() || IsOfInstrument(line);
}

// "Test:<ERR>": a level that lets ERR pass was set.
bool IsLevelTest(const LogLine &line) {
  return BeginsWith(line.text, "Test:<");
}

}  // namespace

std::vector<std::string> WithoutEcho(const std::vector<std::string> &lines) {
  std::vector<std::string> kept;
  for (const std::string &line : lines) {
    if (!IsEcho(line) && !IsLevelTest(ParseLogLine(line))) kept.push_back(line);
  }
  return kept;
}

Verdict Judge(const Reply &reply, bool refusalsAreVisible, int commandThread) {
  Verdict verdict;
  verdict.elapsedMs = reply.elapsedMs;
  for (const std::string &text : WithoutEcho(reply.lines)) {
    const LogLine line = ParseLogLine(text);
    const bool isOurs = commandThread == 0 || line.tid == commandThread;
    if (line.level == "ERR" && isOurs) {
      verdict.reported.push_back(line.text);
    } else if (!line.HasPrefix()) {
      verdict.lines.push_back(line.text);
    }
  }
  if (refusalsAreVisible) verdict.accepted = verdict.reported.empty();
  return verdict;
}

}  // namespace kest::ctl
