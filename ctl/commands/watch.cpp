// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstdio>

#include <fmt/format.h>

#include "ctl/channel/interrupt.h"
#include "ctl/channel/log_lines.h"
#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/commands/option_values.h"
#include "ctl/observe/port_sampler.h"
#include "ctl/observe/switched_on.h"
#include "ctl/observe/xrun_finder.h"
#include "ctl/parse/port_line.h"
#include "ctl/render/escape.h"
#include "ctl/render/live_output.h"
#include "ctl/render/xrun_text.h"

namespace kest::ctl {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kPause{2};
constexpr milliseconds kSilence{500};  // in which filters that run print lines
constexpr milliseconds kWindow{100};
constexpr milliseconds kForEver{0};

class Watch {
 public:
  Watch(Context &context, const Arguments &arguments)
      : context_(context),
        endsAtFirst_(arguments.Has("fail")),
        duration_(SecondsOption(arguments, "seconds").value_or(kForEver)),
        every_(SecondsOption(arguments, "every").value_or(kForEver)),
        process_(context.GetChannel().TheProcess()),
        finder_(context.GetListing(), every_ == kForEver) {}

  Result Run() {
    if (!context_.IsSilent()) {
      fmt::print(stderr, "kestctl: watching {} ({}); Ctrl-C ends it\n", Escape(process_.name), process_.pid);
    }
    if (every_ == kForEver) {
      WatchEveryTurn();
    } else {
      LookNowAndThen();
    }
    return Summary();
  }

 private:
  [[nodiscard]] bool IsOver() const {
    if (endsAtFirst_ && count_ > 0) return true;
    return duration_ != kForEver && Clock::now() - start_ >= duration_;
  }

  void WatchEveryTurn() {
    LogLines log(context_.GetHost(), context_.GetSettings().directory);
    const SwitchedOn portLines(context_.GetChannel(), {kPortLinesOff});
    static_cast<void>(context_.GetChannel().Send({kPortLinesOn}));
    auto heard = Clock::now();
    while (!IsOver()) {
      const bool isAny = TakeAll(log.Next());
      const auto now = Clock::now();
      if (isAny) {
        heard = now;
        ThrowIfInterrupted();
        continue;
      }
      if (now - heard > kSilence) {
        SwitchOnAgain();
        heard = now;
      }
      Pause(kPause);
    }
  }

  // Another kestctl may have switched the lines off, or no filter runs.
  void SwitchOnAgain() {
    if (context_.GetChannel().TheProcess().pid != process_.pid) ThrowEnded();
    if (context_.GetHost().UnreadBytes(context_.GetSettings().directory + "D").value_or(0) == 0)
      static_cast<void>(context_.GetChannel().Send({kPortLinesOn}));
  }

  [[noreturn]] void ThrowEnded() const {
    throw CtlError(ExitCode::kUnreachable, fmt::format("{} ({}) has ended; another process reads the pipe",
                                                       process_.name, process_.pid));
  }

  void LookNowAndThen() {
    for (auto next = Clock::now(); !IsOver();) {
      if (Clock::now() < next) {
        Pause(std::min<std::chrono::microseconds>(every_, milliseconds(50)));
        continue;
      }
      next += every_;
      if (context_.GetChannel().TheProcess().pid != process_.pid) ThrowEnded();
      for (const PortLine &line :
           SamplePorts(context_.GetChannel(), DistinctFilters(context_.GetListing()), kWindow).all) {
        Take(line);
      }
    }
  }

  bool TakeAll(const std::vector<std::string> &texts) {
    bool isAny = false;
    for (const std::string &text : texts) {
      const auto line = ParsePortLine(text);
      if (!line || line->kind != PortLine::Kind::kPcm) continue;
      isAny = true;
      if (!IsOver()) Take(*line);
    }
    return isAny;
  }

  void Take(const PortLine &line) {
    if (!finder_.Knows(line)) LearnWhatRuns();
    for (const Xrun &xrun : finder_.Take(line)) {
      if (endsAtFirst_ && count_ > 0) return;
      count_ += xrun.added;
      Tell(xrun);
    }
  }

  // Pipelines come and go; those whose names are not distinct stay unknown.
  void LearnWhatRuns() {
    if (Clock::now() - learned_ < kSilence) return;
    learned_ = Clock::now();
    context_.Forget();
    finder_.Learn(context_.GetListing());
  }

  void Tell(const Xrun &xrun) const {
    if (context_.GetSettings().json) {
      fmt::print("{}\n", Dump({{"schema", "kestctl/1"}, {"xrun", ToJson(xrun)}}));
    } else {
      fmt::print("{}  {}\n", TimeOfDay(), ShowXrun(xrun));
    }
    FlushOutput();
  }

  [[nodiscard]] Result Summary() const {
    Result result;
    const double seconds = std::chrono::duration<double>(Clock::now() - start_).count();
    result.data = {{"xruns", count_}, {"seconds", seconds}};
    result.text = context_.GetSettings().json
                      ? ""
                      : fmt::format("{} under- and overruns in {:.1f} s\n", count_, seconds);
    if (endsAtFirst_ && count_ > 0) {
      result.exit = ExitCode::kRefused;
      result.message = "there was an underrun or overrun";
    }
    return result;
  }

  Context &context_;
  bool endsAtFirst_;
  milliseconds duration_;
  milliseconds every_;
  Process process_;
  XrunFinder finder_;
  Clock::time_point start_ = Clock::now();
  Clock::time_point learned_{};
  uint64_t count_ = 0;
};

}  // namespace

Result RunWatch(Context &context, const Arguments &arguments) {
  return Watch(context, arguments).Run();
}

}  // namespace kest::ctl
