// SPDX-License-Identifier: Apache-2.0
// The prompt. Each line looks for the process anew, so the shell goes on when the process is started again.
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "ctl/channel/interrupt.h"
#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/parse/lines.h"
#include "ctl/render/escape.h"
#include "ctl/terminal/completer.h"
#include "ctl/terminal/line_editor.h"
#include "ctl/terminal/run_words.h"
#include "ctl/terminal/words.h"

namespace kest::ctl {
namespace {

// More candidates than these are shown side by side, without their descriptions.
constexpr size_t kDescribedCandidates = 30;
constexpr size_t kGap = 2;

bool g_isRunning = false;

std::string HistoryPath() {
  const char *state = std::getenv("XDG_STATE_HOME");
  if (state != nullptr && *state == '/') return std::string(state) + "/kestctl/history";
  const char *home = std::getenv("HOME");
  return home == nullptr || *home == '\0' ? "" : std::string(home) + "/.local/state/kestctl/history";
}

size_t TerminalWidth() {
  winsize size{};
  const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return isKnown ? size.ws_col : 80;
}

size_t WidestOf(const std::vector<Candidate> &candidates) {
  size_t widest = 0;
  for (const Candidate &candidate : candidates)
    widest = std::max(widest, WidthOf(candidate.text));
  return widest;
}

std::string Padded(const std::string &text, size_t width) {
  return text + std::string(width - std::min(width, WidthOf(text)), ' ');
}

// Cut, so that a line of the terminal is enough.
std::string FirstColumns(const std::string &text, size_t columns) {
  if (WidthOf(text) <= columns) return text;
  std::string cut;
  for (const char character : text) {
    cut.push_back(character);
    if (WidthOf(cut) > columns) break;
  }
  cut.pop_back();
  return cut;
}

std::string ListWithDescriptions(const std::vector<Candidate> &candidates) {
  const size_t widest = WidestOf(candidates);
  std::string text;
  for (const Candidate &candidate : candidates) {
    std::string line = Padded(candidate.text, widest + kGap) + Escape(candidate.description);
    line.erase(line.find_last_not_of(' ') + 1);
    text += FirstColumns(line, TerminalWidth() - 1) + "\n";
  }
  return text;
}

std::string ListInColumns(const std::vector<Candidate> &candidates) {
  const size_t width = WidestOf(candidates) + kGap;
  const size_t columns = std::max<size_t>(1, TerminalWidth() / width);
  std::string text;
  for (size_t i = 0; i < candidates.size(); ++i) {
    const bool isLast = i + 1 == candidates.size() || (i + 1) % columns == 0;
    text += isLast ? candidates[i].text + "\n" : Padded(candidates[i].text, width);
  }
  return text;
}

std::string List(const std::vector<Candidate> &candidates) {
  return candidates.size() > kDescribedCandidates ? ListInColumns(candidates)
                                                  : ListWithDescriptions(candidates);
}

std::string CommonBeginning(const std::vector<Candidate> &candidates) {
  std::string common = candidates[0].text;
  for (const Candidate &candidate : candidates) {
    const auto [end, other] =
        std::mismatch(common.begin(), common.end(), candidate.text.begin(), candidate.text.end());
    common.erase(end, common.end());
  }
  // A character is taken whole.
  while (ToUtf8(common) != common)
    common.pop_back();
  return common;
}

std::string ClosingOf(const Word &word, const std::string &text) {
  if (!text.empty() && text.back() == '/') return "";
  return (word.openQuote == 0 ? "" : std::string(1, word.openQuote)) + " ";
}

class Shell {
 public:
  explicit Shell(Context &context) : context_(context), completer_(context.GetSettings()) {}

  // Fails as the first line did that failed.
  void RunLinesOfInput(Result &result) {
    std::string line;
    int lines = 0;
    int failed = 0;
    while (!isDone_ && std::getline(std::cin, line)) {
      const ExitCode exit = Run(line);
      ThrowIfInterrupted();
      ++lines;
      if (exit == ExitCode::kDone) continue;
      if (++failed == 1) result.exit = exit;
    }
    ThrowIfInterrupted();
    result.data = {{"lines", lines}, {"failed", failed}};
    result.message = fmt::format("{} of {} lines failed", failed, lines);
  }

  void RunLinesTyped() {
    LineEditor editor(HistoryPath(), [this](const std::string &line) { return Complete(line); });
    while (!isDone_ && !IsToldToEnd()) {
      ForgetInterrupt();
      const auto line = editor.Read(Prompt());
      if (!line) break;
      ForgetInterrupt();
      Run(*line);
    }
    if (IsToldToEnd()) ThrowIfInterrupted();
  }

 private:
  // Who answers, as seen now.
  std::string Prompt() {
    const auto &processes = context_.GetChannel().GetReaders().processes;
    std::string who = "no process";
    if (processes.size() == 1) who = fmt::format("{}[{}]", Escape(processes[0].name), processes[0].pid);
    if (processes.size() > 1) who = fmt::format("{} processes", processes.size());
    if (!context_.UsesColour()) return who + "> ";
    return fmt::format("\1\033[{}m\1{}\1\033[0m\1> ", processes.size() == 1 ? 32 : 31, who);
  }

  ExitCode Run(const std::string &line) {
    std::vector<std::string> words = TextsOf(SplitWords(line));
    if (words.empty() || words[0][0] == '#') return ExitCode::kDone;
    isDone_ = words.size() == 1 && (words[0] == "exit" || words[0] == "quit");
    if (isDone_) return ExitCode::kDone;
    if (BeginsWith(words[0], "kest_")) words = {"send", line.substr(line.find_first_not_of(" \t"))};
    return RunWords(words, context_.GetSettings(), &context_);
  }

  Completion Complete(const std::string &line) {
    const std::vector<Word> words = SplitUnfinished(line);
    const Word &last = words.back();
    Completion completion;
    completion.replaced = line.substr(last.begin);
    completion.replacement = completion.replaced;
    std::vector<Candidate> candidates = completer_.Complete(TextsOf(words));
    if (words.size() == 1 && BeginsWith("exit", last.text)) candidates.push_back({"exit", "Leave the shell"});
    if (candidates.empty()) return completion;
    const std::string common = CommonBeginning(candidates);
    const std::string opening = last.openQuote == 0 ? "" : std::string(1, last.openQuote);
    if (common != last.text || candidates.size() == 1)
      completion.replacement = opening + Quote(common, last.openQuote);
    if (candidates.size() == 1) {
      completion.replacement += ClosingOf(last, common);
    } else if (common == last.text) {
      completion.listing = List(candidates);
    }
    return completion;
  }

  Context &context_;
  Completer completer_;
  bool isDone_ = false;
};

}  // namespace

Result RunShell(Context &context, const Arguments & /*arguments*/) {
  if (g_isRunning) throw CtlError(ExitCode::kUsage, "this is the shell", "exit leaves it");
  g_isRunning = true;
  context.GetChannel().WhenLate({});
  Shell shell(context);
  Result result;
  if (isatty(STDIN_FILENO) != 0) {
    shell.RunLinesTyped();
  } else {
    shell.RunLinesOfInput(result);
  }
  context.Forget();
  return result;
}

}  // namespace kest::ctl
