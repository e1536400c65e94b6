// SPDX-License-Identifier: Apache-2.0
// The live view, on the screen or line by line.
#include <memory>

#include <fmt/format.h>
#include <unistd.h>

#include "ctl/channel/interrupt.h"
#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/commands/option_values.h"
#include "ctl/observe/live_view.h"
#include "ctl/render/live_output.h"
#include "ctl/render/live_text.h"
#include "ctl/terminal/screen.h"

namespace kest::ctl {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kDefaultInterval{1000};
constexpr milliseconds kLongestWindow{100};
constexpr size_t kBatchColumns = 80;

class Top {
 public:
  Top(Context &context, const Arguments &arguments)
      : context_(context),
        interval_(SecondsOption(arguments, "delay").value_or(kDefaultInterval)),
        looks_(WholeOption(arguments, "count", {1, kMostWhole}).value_or(0)),
        isBatch_(arguments.Has("batch") || context.GetSettings().json || isatty(STDOUT_FILENO) == 0 ||
                 isatty(STDIN_FILENO) == 0),
        view_(context, std::min(kLongestWindow, interval_ / 4)) {}

  Result Run() {
    auto next = Clock::now();
    do {
      Show(Look());
      ++done_;
      next = std::max(next + interval_, Clock::now());
    } while (done_ != looks_ && Wait(next));
    screen_.reset();
    Result result;
    result.data = {{"looks", done_}};
    return result;
  }

 private:
  // A program that reads the lines must learn of every failure; who looks at a screen waits until it is over.
  LiveSample Look() {
    if (isBatch_) return view_.Look();
    try {
      LiveSample sample = view_.Look();
      if (sample.problem.empty()) {
        last_ = std::move(sample);
      } else {
        last_.process = sample.process;
        last_.problem = sample.problem;
      }
    } catch (const CtlError &error) {
      if (done_ == 0 || error.Code() == ExitCode::kInterrupted) throw;
      last_.problem = error.what();
    }
    return last_;
  }

  void Show(const LiveSample &sample) {
    if (isBatch_) {
      Print(sample);
      return;
    }
    if (screen_ == nullptr) {
      context_.GetChannel().WhenLate({});  // would be written across the screen
      screen_ = std::make_unique<Screen>(context_.UsesColour());
    }
    screen_->Show(ShowLive(sample, Screen::Columns()), TimeOfDay());
  }

  void Print(const LiveSample &sample) const {
    if (context_.GetSettings().json) {
      fmt::print("{}\n", Dump({{"schema", "kestctl/1"}, {"live", ToJson(sample)}}));
    } else {
      fmt::print("{}{}\n", done_ == 0 ? "" : "\n", TimeOfDay());
      for (const ToneLine &line : ShowLive(sample, kBatchColumns))
        fmt::print("{}\n", Join(line, context_.UsesColour()));
    }
    FlushOutput();
  }

  bool Wait(Clock::time_point until) {
    while (true) {
      const auto left = std::chrono::ceil<milliseconds>(until - Clock::now());
      if (left.count() <= 0) return true;
      if (isBatch_) {
        Pause(left);
      } else if (!screen_->TakeKeys(left)) {
        return false;
      } else if (screen_->TakeResized()) {
        screen_->Show(ShowLive(last_, Screen::Columns()), TimeOfDay());
      }
    }
  }

  Context &context_;
  milliseconds interval_;
  int64_t looks_;  // 0: for ever
  bool isBatch_;
  LiveView view_;
  LiveSample last_;
  std::unique_ptr<Screen> screen_;
  int64_t done_ = 0;
};

}  // namespace

Result RunTop(Context &context, const Arguments &arguments) {
  return Top(context, arguments).Run();
}

}  // namespace kest::ctl
