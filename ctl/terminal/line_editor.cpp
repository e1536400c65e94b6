// SPDX-License-Identifier: Apache-2.0
#include "ctl/terminal/line_editor.h"

#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <filesystem>

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ctl/channel/interrupt.h"
#include "ctl/render/escape.h"

namespace kest::ctl {
namespace {

constexpr int kHistoryLines = 1000;
constexpr off_t kHistoryFileBytes = off_t{256} * 1024;
constexpr char kPromptEscape = '\1';

volatile std::sig_atomic_t g_resized = 0;
volatile std::sig_atomic_t g_continued = 0;

void NoteSignal(int signal) {
  (signal == SIGWINCH ? g_resized : g_continued) = 1;
}

sigset_t NoticedSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGWINCH, SIGCONT})
    sigaddset(&signals, signal);
  return signals;
}

// libedit's own signal handling would pass each signal on to the whole process group.
void NoticeSignals() {
  struct sigaction action {};
  action.sa_handler = NoteSignal;
  for (const int signal : {SIGWINCH, SIGCONT})
    sigaction(signal, &action, nullptr);
}

void ObeySignals(EditLine *editor) {
  if (g_resized != 0) el_resize(editor);
  g_resized = 0;
  if (g_continued == 0) return;
  g_continued = 0;
  // Another program had the terminal.
  el_set(editor, EL_PREP_TERM, 0);
  el_set(editor, EL_PREP_TERM, 1);
  el_set(editor, EL_REFRESH);
}

// False when interrupted.
bool WaitForInput(EditLine *editor) {
  const sigset_t noticed = NoticedSignals();
  sigset_t before;
  sigprocmask(SIG_BLOCK, &noticed, &before);
  pollfd input = {STDIN_FILENO, POLLIN, 0};
  int ready = 0;
  while (ready <= 0 && !IsInterrupted()) {
    ObeySignals(editor);
    ready = ppoll(&input, 1, nullptr, &before);
    if (ready < 0 && errno != EINTR) break;
  }
  sigprocmask(SIG_SETMASK, &before, nullptr);
  return !IsInterrupted();
}

void MakeDirectoryOf(const std::string &path) {
  std::error_code error;
  const std::filesystem::path directory = std::filesystem::path(path).parent_path();
  if (!std::filesystem::create_directories(directory, error)) return;
  std::filesystem::permissions(directory, std::filesystem::perms::owner_all, error);
}

// At once and one line only, so that several shells do not overwrite each other's lines.
void AppendToFile(const std::string &path, const std::string &line) {
  const mode_t before = umask(S_IRWXG | S_IRWXO);
  FILE *file = std::fopen(path.c_str(), "ae");
  umask(before);
  if (file == nullptr) return;
  const std::unique_ptr<History, decltype(&history_end)> single(history_init(), history_end);
  HistEvent event;
  history(single.get(), &event, H_SETSIZE, 1);
  history(single.get(), &event, H_ENTER, line.c_str());
  std::fseek(file, 0, SEEK_END);  // the heading stands at the beginning only
  history(single.get(), &event, H_SAVE_FP, file);
  std::fclose(file);
}

}  // namespace

LineEditor::LineEditor(const std::string &historyPath, Completing complete)
    : historyPath_(historyPath), complete_(std::move(complete)), history_(history_init()) {
  std::setlocale(LC_CTYPE, "");
  NoticeSignals();
  LoadHistory();
  editor_.reset(el_init("kestctl", stdin, stdout, stderr));
  EditLine *editor = editor_.get();
  el_set(editor, EL_CLIENTDATA, this);
  el_set(editor, EL_EDITOR, "emacs");
  el_set(editor, EL_PROMPT_ESC, &LineEditor::Prompt, kPromptEscape);
  el_set(editor, EL_GETCFN, &LineEditor::ReadCharacter);
  el_set(editor, EL_HIST, history, history_.get());
  el_set(editor, EL_ADDFN, "kestctl-complete", "Completes the word", &LineEditor::OnCompletionKey);
  el_set(editor, EL_BIND, "^R", "em-inc-search-prev", nullptr);
  el_source(editor, nullptr);  // the user's own ~/.editrc, which may choose other key tables
  el_set(editor, EL_BIND, "^I", "kestctl-complete", nullptr);
}

void LineEditor::LoadHistory() {
  HistEvent event;
  history(history_.get(), &event, H_SETSIZE, kHistoryLines);
  history(history_.get(), &event, H_SETUNIQUE, 1);
  if (historyPath_.empty()) return;
  MakeDirectoryOf(historyPath_);
  history(history_.get(), &event, H_LOAD, historyPath_.c_str());
  struct stat facts {};
  const bool isLong = stat(historyPath_.c_str(), &facts) == 0 && facts.st_size > kHistoryFileBytes;
  if (isLong) history(history_.get(), &event, H_SAVE, historyPath_.c_str());
}

void LineEditor::Remember(const std::string &line) {
  HistEvent event;
  const bool isRepeated = history(history_.get(), &event, H_FIRST) >= 0 && line == event.str;
  if (isRepeated) return;
  history(history_.get(), &event, H_ENTER, line.c_str());
  if (!historyPath_.empty()) AppendToFile(historyPath_, line);
}

char *LineEditor::Prompt(EditLine *editor) {
  LineEditor *self = nullptr;
  el_get(editor, EL_CLIENTDATA, &self);
  return self->prompt_.data();
}

int LineEditor::ReadCharacter(EditLine *editor, wchar_t *character) {
  std::mbstate_t state{};
  while (WaitForInput(editor)) {
    char byte = 0;
    const ssize_t size = read(STDIN_FILENO, &byte, 1);
    if (size == 0) return 0;
    if (size < 0 && errno != EINTR && errno != EAGAIN) return -1;
    if (size < 0) continue;
    const size_t length = std::mbrtowc(character, &byte, 1, &state);
    if (length == static_cast<size_t>(-1)) state = {};  // not of the locale: ignored
    if (length < static_cast<size_t>(-2)) return 1;
  }
  return -1;
}

std::optional<std::string> LineEditor::Read(const std::string &prompt) {
  prompt_ = prompt;
  int size = 0;
  const char *typed = el_gets(editor_.get(), &size);
  if (typed == nullptr || size <= 0) {
    const bool isCancelled = IsInterrupted() && !IsToldToEnd();
    std::fputs(isCancelled ? "^C\n" : "\n", stdout);
    return isCancelled ? std::optional<std::string>("") : std::nullopt;
  }
  std::string line(typed, static_cast<size_t>(size));
  line.erase(line.find_last_not_of("\r\n") + 1);
  if (line.find_first_not_of(" \t") != std::string::npos) Remember(line);
  return line;
}

unsigned char LineEditor::OnCompletionKey(EditLine *editor, int /*key*/) {
  LineEditor *self = nullptr;
  el_get(editor, EL_CLIENTDATA, &self);
  const LineInfo *line = el_line(editor);
  return self->Apply(self->complete_(std::string(line->buffer, line->cursor)));
}

unsigned char LineEditor::Apply(const Completion &completion) {
  if (completion.replaced != completion.replacement) {
    el_deletestr(editor_.get(), static_cast<int>(WidthOf(completion.replaced)));
    el_insertstr(editor_.get(), completion.replacement.c_str());
  }
  if (completion.listing.empty())
    return completion.replaced == completion.replacement ? CC_REFRESH_BEEP : CC_REFRESH;
  std::fputs(("\n" + completion.listing).c_str(), stdout);
  return CC_REDISPLAY;
}

}  // namespace kest::ctl
