// SPDX-License-Identifier: Apache-2.0
#include "ctl/terminal/screen.h"

#include <algorithm>
#include <clocale>

// The macro "move" would take the place of std::move.
#define NCURSES_NOMACROS 1
#include <curses.h>

#include "ctl/channel/interrupt.h"
#include "ctl/error.h"
#include "ctl/render/escape.h"

namespace kest::ctl {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kHeaderLines = 2;  // stay where they are
constexpr int kEscape = 27;

void PrepareColours() {
  start_color();
  use_default_colors();
  const short colours[] = {-1, -1, COLOR_GREEN, COLOR_YELLOW, COLOR_RED};  // by Tone
  for (short tone = 1; tone < static_cast<short>(std::size(colours)); ++tone)
    init_pair(tone, colours[tone], -1);
}

attr_t AttributesOf(Tone tone, bool colour) {
  const attr_t bold = tone == Tone::kTitle || tone == Tone::kBad ? static_cast<attr_t>(A_BOLD) : 0u;
  return colour ? bold | static_cast<attr_t>(COLOR_PAIR(static_cast<int>(tone))) : bold;
}

// As much of the text as the columns have room for.
std::string Cut(std::string text, size_t columns) {
  while (WidthOf(text) > columns)
    text.pop_back();
  return text;
}

void DrawLine(int row, const ToneLine &line, size_t columns, bool colour) {
  move(row, 0);
  for (const ToneText &part : line) {
    attrset(static_cast<int>(AttributesOf(part.tone, colour)));
    const std::string text = Cut(part.text, columns);
    addstr(text.c_str());
    columns -= WidthOf(text);
  }
  attrset(A_NORMAL);
}

}  // namespace

Screen::Screen(bool colour) : colour_(colour) {
  std::setlocale(LC_CTYPE, "");
  screen_ = newterm(nullptr, stdout, stdin);
  if (screen_ == nullptr)
    throw CtlError(ExitCode::kUsage, "this terminal cannot show a screen", "take --batch, or set TERM");
  if (colour_ && has_colors()) PrepareColours();
  colour_ = colour_ && has_colors();
  cbreak();
  noecho();
  nonl();
  keypad(stdscr, TRUE);
  curs_set(0);
}

Screen::~Screen() {
  endwin();
  delscreen(screen_);
}

size_t Screen::Columns() {
  return static_cast<size_t>(std::max(getmaxx(stdscr), 1));
}

void Screen::Show(std::vector<ToneLine> lines, const std::string &status) {
  lines_ = std::move(lines);
  status_ = status;
  Draw();
}

void Screen::Draw() {
  const int rows = getmaxy(stdscr);
  const int count = static_cast<int>(lines_.size());
  top_ = std::clamp(top_, 0, std::max(count - rows, 0));
  erase();
  for (int row = 0; row < rows; ++row) {
    const int index = row < kHeaderLines ? row : row + top_;
    if (index < count) DrawLine(row, lines_[static_cast<size_t>(index)], Columns(), colour_);
  }
  const int column = getmaxx(stdscr) - static_cast<int>(WidthOf(status_));
  if (count > 0 && column > 0) mvaddstr(0, column, status_.c_str());
  refresh();
}

bool Screen::TakeKeys(std::chrono::milliseconds duration) {
  for (const auto deadline = Clock::now() + duration; true;) {
    ThrowIfInterrupted();
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() <= 0) return true;
    timeout(static_cast<int>(left.count()));
    const int key = getch();
    if (!TakeKey(key)) return false;
    if (isResized_) return true;
  }
}

bool Screen::TakeResized() {
  const bool isResized = isResized_;
  isResized_ = false;
  return isResized;
}

bool Screen::TakeKey(int key) {
  const int page = std::max(getmaxy(stdscr) - kHeaderLines, 1);
  switch (key) {
    case 'q':
    case 'Q':
    case kEscape:
      return false;
    case KEY_RESIZE:
      isResized_ = true;
      return true;
    case KEY_UP:
    case 'k':
      --top_;
      break;
    case KEY_DOWN:
    case 'j':
      ++top_;
      break;
    case KEY_PPAGE:
      top_ -= page;
      break;
    case KEY_NPAGE:
    case ' ':
      top_ += page;
      break;
    case KEY_HOME:
      top_ = 0;
      break;
    default:
      return true;
  }
  Draw();
  return true;
}

}  // namespace kest::ctl
