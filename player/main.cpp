// SPDX-License-Identifier: Apache-2.0
// kest-player: plays audio files through pipelines of filters that use the library.
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <iostream>
#include <system_error>

#include <android/log.h>
#include <unistd.h>

#include "player/base/player_error.h"
#include "player/check/check.h"
#include "player/config/layout.h"
#include "player/config/options.h"
#include "player/modules/inspection.h"
#include "player/modules/module_error.h"
#include "player/session/capabilities.h"
#include "player/session/debug_session.h"
#include "player/session/playback.h"
#include "player/session/process_setup.h"

namespace kest::player {
namespace {

constexpr int kCannotBeLoaded = 3;
constexpr timespec kWatchPeriod = {0, 20'000'000};

void LogToStderr(const __android_logger_data *data, const char *message) {
  constexpr const char *kPriorities = "??VDIWEF";
  std::fprintf(stderr, "%c %s %s", kPriorities[std::clamp(data->priority, 0, 7)], data->tag, message);
}

void LogNowhere(const __android_logger_data *, const char *) {}

void WaitForEnd(Playback &playback, const sigset_t &endSignals, bool showProgress) {
  while (!playback.HasEnded()) {
    if (sigtimedwait(&endSignals, nullptr, &kWatchPeriod) > 0) playback.RequestStop();
    if (showProgress) std::fprintf(stderr, "\r%.1f s ", playback.SecondsPlayed());
  }
  if (showProgress) std::fprintf(stderr, "\r        \r");
}

void Play(const Options &options, const FilterKinds &kinds, const sigset_t &endSignals) {
  Playback playback(MakeLayout(options, kinds), options, WatchSignals(endSignals).Get());
  AnnounceCapabilities(kinds, playback.Filters());
  playback.Start();
  WaitForEnd(playback, endSignals, isatty(STDERR_FILENO) != 0 && !options.logcat);
  playback.Finish();
  std::cout << playback.Summary() << std::endl;
}

int Inspect(const ModuleOption &module, bool json) {
  const Inspection inspection{module.file, module.kind, module.config};
  try {
    std::cout << (json ? InspectAsJson(inspection) : InspectAsText(inspection)) << std::flush;
  } catch (const ModuleError &error) {
    std::fprintf(stderr, "kest-player: %s\n", error.what());
    return kCannotBeLoaded;
  }
  return 0;
}

int Main(int argc, char **argv) {
  FillStandardDescriptors();
  const auto parsed = ParseOptions(argc, argv);
  if (const int *exitCode = std::get_if<int>(&parsed)) return *exitCode;
  const Options &options = std::get<Options>(parsed);

  if (options.inspect) {
    __android_log_set_logger(LogNowhere);
    return Inspect(*options.inspect, options.json);
  }

  if (options.check) {
    __android_log_set_logger(LogNowhere);
    return Check(*options.check);
  }

  const sigset_t endSignals = BlockEndSignals();
  IgnoreWriteSignals();
  __android_log_set_logger(options.logcat ? LogToStderr : LogNowhere);
  const DebugSession session;
  const FilterKinds kinds = BuiltInKinds();
  try {
    Play(options, kinds, endSignals);
  } catch (const RunCancelled &cancelled) {
    std::cout << cancelled.what() << std::endl;
  }
  return 0;
}

}  // namespace
}  // namespace kest::player

int main(int argc, char **argv) {
  try {
    return kest::player::Main(argc, argv);
  } catch (const std::system_error &error) {
    std::fprintf(stderr, "kest-player: cannot start a thread: %s; see ulimit -u\n", error.what());
    return 1;
  } catch (const std::exception &error) {
    std::fprintf(stderr, "kest-player: %s\n", error.what());
    return 1;
  }
}
