// SPDX-License-Identifier: Apache-2.0
#include "player/config/options.h"

#include <CLI/CLI.hpp>

#include "ze_kest/model.h"

#include "player/filters/delay.h"
#include "player/filters/volume.h"

namespace kest::player {
namespace {

constexpr int kMisuse = 2;

constexpr const char *kDescription =
    "Plays audio files through pipelines of filters into a WAV file.\n"
    "\n"
    "Each input runs through a decoder pipeline of its own (Lpcm, Volume); the pipeline\n"
    "SpeakerOutput (Mixer, Delay, SpeakerOutput) adds them up and writes the result.\n"
    "A configuration file can lay the pipelines out differently.\n"
    "While it plays, the library's debug commands work; see the pipe D and the log in\n" KEST_DEBUG_DIR;

constexpr const char *kFooter =
    "The output has the channels, the sample rate and the sample width of the first\n"
    "input: 16, 24 or 32 bits; 8-bit files become 16 bits, floating-point and lossy\n"
    "ones 32 bits, saturated. A narrower output keeps the upper bits. All inputs need\n"
    "the same channels (1 to 10) and sample rate.\n"
    "\n"
    "A configuration is a JSON file such as player/example.json: an object of pipelines;\n"
    "each is an object of filters, in the order of the chain; each is an object of\n"
    "settings. 1 to 8 pipelines feed the one named SpeakerOutput:\n"
    "  input          Lpcm, then any of Volume and Delay\n"
    "  SpeakerOutput  Mixer, then any of Volume and Delay, then SpeakerOutput\n"
    "Settings: \"file\" of Lpcm and SpeakerOutput, relative to the configuration's\n"
    "directory; \"gain_db\" of Volume and \"delay_ms\" of Delay, 0 when left out.\n"
    "\n"
    "Exit code: 0 played, also when ended by SIGINT, SIGTERM or SIGHUP; 1 an error; 2 a\n"
    "wrong command line.";

class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App *, std::string) const override {
    return "\nUsage: kest-player IN... -o OUT.wav [OPTIONS]\n"
           "       kest-player --config FILE [OPTIONS]\n";
  }
};

std::string CheckSeconds(const std::string &text) {
  double seconds = 0.0;
  const bool isNumber = CLI::detail::lexical_cast(text, seconds);
  return isNumber && seconds >= 0.001 && seconds <= 1e9 ? "" : text + " is not 0.001 to 1000000000 seconds";
}

void AddOptions(CLI::App &app, Options &options) {
  app.add_option("IN", options.inputs, "Audio files that libsndfile reads, such as WAV, FLAC and OGG")
      ->expected(1, ZE_KEST_MAX_PORTS)
      ->type_name("FILE");
  app.add_option("-o,--output", options.output, "WAV file to write; overwritten when it exists")
      ->type_name("OUT.wav");
  app.add_option("--config", options.config,
                 "Read files, pipelines, filters and their settings from a JSON file")
      ->type_name("FILE");
  app.add_flag("--fast", options.fast, "Play as fast as possible instead of in real time");
  app.add_flag("--loop", options.loop, "Start an input over when it has ended");
  app.add_option("--seconds", options.seconds, "End after this many seconds of output")
      ->check(CheckSeconds)
      ->type_name("N");
  app.add_option("--gain-db", options.gainDb, "Gain of every input, whole decibels")
      ->check(CLI::Range(Volume::kMinGainDb, Volume::kMaxGainDb))
      ->type_name("N");
  app.add_option("--delay-ms", options.delayMs, "Silence before the sound, milliseconds")
      ->check(CLI::Range(0u, Delay::kMaxDelayMs))
      ->type_name("N");
  app.add_flag("--wide", options.wide,
               "Use 32-bit samples in the pipelines even where 16 bits hold the input");
  app.add_flag("--logcat", options.logcat, "Show the library's Android log on stderr");
}

// With --config these options are refused; without it the files must be given.
void CheckSourceOfLayout(const CLI::App &app) {
  const bool hasConfig = app.count("--config") > 0;
  for (const char *name : {"IN", "--output", "--gain-db", "--delay-ms"}) {
    if (hasConfig && app.count(name) > 0) {
      throw CLI::ValidationError(name, "cannot be given with --config; the configuration file sets it");
    }
  }
  for (const char *name : {"IN", "--output"}) {
    if (!hasConfig && app.count(name) == 0) throw CLI::RequiredError(name);
  }
}

// Refuses a run that would fill the disk without anybody hearing it.
void RefuseEndlessFastRun(const Options &options) {
  if (options.fast && options.loop && !options.seconds) {
    throw CLI::ValidationError("--loop with --fast never ends", "say how long with --seconds");
  }
}

}  // namespace

std::variant<Options, int> ParseOptions(int argc, const char *const *argv) {
  CLI::App app(kDescription, "kest-player");
  app.footer(kFooter);
  app.formatter(std::make_shared<HelpFormatter>());
  app.set_version_flag("--version", "kest-player " KEST_VERSION, "Print the version and exit");
  Options options;
  AddOptions(app, options);
  try {
    app.parse(argc, argv);
    CheckSourceOfLayout(app);
    RefuseEndlessFastRun(options);
  } catch (const CLI::ParseError &error) {
    return app.exit(error) == 0 ? 0 : kMisuse;
  }
  return options;
}

}  // namespace kest::player
