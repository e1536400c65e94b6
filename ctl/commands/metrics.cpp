// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/metrics.h"

#include <fmt/format.h>

#include "ctl/channel/interrupt.h"
#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/commands/option_values.h"
#include "ctl/render/escape.h"
#include "ctl/render/metrics_text.h"
#include "ctl/render/output_file.h"

namespace kest::ctl {
namespace {

constexpr mode_t kForAllToRead = 0644;
constexpr NumberRange kWatchSeconds = {0.001, 86400.0};

struct Plan {
  std::optional<std::string> path;
  bool openMetrics = false;
  std::string device;
  std::optional<double> watchSeconds;
};

bool IsForCollector(const std::string &path) {
  constexpr std::string_view kEnd = ".prom";
  return path.size() > kEnd.size() && path.substr(path.size() - kEnd.size()) == kEnd;
}

Plan PlanOf(const Arguments &arguments) {
  Plan plan;
  plan.path = arguments.Option("output");
  plan.openMetrics = arguments.Has("openmetrics");
  plan.device = arguments.Option("device").value_or("");
  plan.watchSeconds = RealOption(arguments, "watch", kWatchSeconds);
  if (plan.watchSeconds && !plan.path)
    throw CtlError(ExitCode::kUsage, "--watch needs a file to write into", "add -o FILE.prom");
  if (plan.openMetrics && plan.path && IsForCollector(*plan.path)) {
    throw CtlError(ExitCode::kUsage, "the collector of *.prom files does not read OpenMetrics",
                   "leave --openmetrics away, or name the file otherwise");
  }
  return plan;
}

ProcessFigures AskProcess(Context &context) {
  ProcessFigures figures;
  static_cast<void>(context.GetChannel().TheProcess());
  figures.logLevel = context.GetChannel().AskSettings().level;
  figures.answerSeconds = context.GetChannel().ElapsedMs() / 1000.0;
  figures.listing = context.GetListing();
  figures.status = context.AskStatus();
  return figures;
}

// Whatever is wrong with the process is a figure too; the reason becomes a warning.
Figures Gather(Context &context) {
  Figures figures;
  try {
    const FileFacts log = context.GetHost().Look(context.GetSettings().directory + "KestLog.txt");
    if (log.kind == FileKind::kRegular) figures.logBytes = log.size;
    figures.processes = context.GetChannel().GetReaders().processes.size();
    figures.inside = AskProcess(context);
  } catch (const CtlError &error) {
    if (error.Code() == ExitCode::kInterrupted) throw;
    context.GetChannel().Warn(fmt::format("kest_up is 0: {}", error.what()));
  }
  return figures;
}

struct Round {
  Figures figures;
  std::vector<MetricFamily> families;
  std::string text;
};

Round RunRound(Context &context, const Plan &plan) {
  Round round;
  round.figures = Gather(context);
  round.families = MetricsOf(round.figures, plan.device);
  round.text = plan.openMetrics ? OpenMetricsText(round.families) : ClassicText(round.families);
  if (plan.path) OutputFile(*plan.path, kForAllToRead).Write(round.text);
  return round;
}

// Says when the process begins to answer and when it stops; the file has the rest.
[[noreturn]] void Watch(Context &context, const Plan &plan) {
  bool wasUp = true;
  while (true) {
    context.Forget();
    const bool isUp = RunRound(context, plan).figures.inside.has_value();
    if (isUp != wasUp && !context.GetSettings().quiet) {
      const auto &warnings = context.GetChannel().Warnings();
      fmt::print(stderr, "kestctl: {}\n",
                 isUp || warnings.empty() ? "kest_up is 1" : Escape(warnings.back()));
    }
    wasUp = isUp;
    Pause(std::chrono::microseconds(static_cast<int64_t>(*plan.watchSeconds * 1e6)));
  }
}

}  // namespace

Result RunMetrics(Context &context, const Arguments &arguments) {
  const Plan plan = PlanOf(arguments);
  if (plan.watchSeconds) Watch(context, plan);
  const Round round = RunRound(context, plan);
  Result result;
  result.data = {{"up", round.figures.inside.has_value()},
                 {"file", plan.path ? ToJson(*plan.path) : Json()},
                 {"metrics", Json::array()}};
  for (const MetricFamily &family : round.families)
    result.data["metrics"].push_back(ToJson(family));
  if (!plan.path) result.text = round.text;
  return result;
}

}  // namespace kest::ctl
