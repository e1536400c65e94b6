// SPDX-License-Identifier: Apache-2.0
#include "player/config/options.h"

#include <algorithm>

#include <CLI/CLI.hpp>

#include "ze_kest/model.h"

#include "player/audio/standard_input.h"
#include "player/filters/delay.h"
#include "player/filters/src.h"
#include "player/filters/volume.h"
#include "player/modules/record_check.h"

namespace kest::player {
namespace {

constexpr int kMisuse = 2;
constexpr const char *kCheck = "--check";
constexpr const char *kInspect = "--inspect";

constexpr const char *kDescription =
    "Plays audio files through pipelines of filters into a WAV file or to a sound card.\n"
    "\n"
    "Each input runs through a decoder pipeline of its own (Lpcm, Volume); the pipeline\n"
    "SpeakerOutput (Mixer, Delay, SpeakerOutput) adds them up and writes the result.\n"
    "A configuration file can lay the pipelines out differently.\n"
    "While it plays, the library's debug commands work; see the pipe D and the log in\n" KEST_DEBUG_DIR;

constexpr const char *kFooter =
    "The output has the sample width of the first input: 16, 24 or 32 bits; 8-bit files\n"
    "become 16 bits, floating-point and lossy ones 32 bits, saturated. A narrower output\n"
    "keeps the upper bits. Without --rate and --mix it has its channels and sample rate\n"
    "too. All inputs need the same channels (1 to 10) and, without --rate, sample rate.\n"
    "\n"
    "A configuration is a JSON file such as player/example.json: an object of pipelines;\n"
    "each is an object of filters, in the order of the chain; each is an object of\n"
    "settings. 1 to 8 pipelines feed the one named SpeakerOutput:\n"
    "  input          Lpcm, then any of Volume, Delay, Src, DownMix and modules\n"
    "  SpeakerOutput  Mixer, then any of these, then SpeakerOutput\n"
    "Settings: \"file\" of Lpcm and SpeakerOutput, relative to the configuration's\n"
    "directory; \"raw\" of Lpcm, a text as for --raw; \"gain_db\" of Volume and\n"
    "\"delay_ms\" of Delay, 0 when left out; \"rate_hz\" of Src; \"matrix\" of DownMix, a\n"
    "text as for --mix. A filter with a \"module\" (a file, relative too) may have any\n"
    "other name; \"filter\" tells which of the module's it is, \"config\" is a text for it,\n"
    "\"parameters\" an object of numbers.\n"
    "\n"
    "Exit code: 0 played, also when ended by SIGINT, SIGTERM or SIGHUP; 1 an error; 2 a\n"
    "wrong command line; 3 --inspect or --check could not load the module. --check also\n"
    "ends with 1 when a test failed; warnings do not matter.";

ModuleOption ParseModule(const std::string &text) {
  std::vector<std::string> parts = CLI::detail::split(text, ',');
  ModuleOption module{parts.front(), "", {}};
  const size_t colon = module.file.rfind(':');
  if (colon != std::string::npos && IsName(module.file.c_str() + colon + 1)) {
    module.kind = module.file.substr(colon + 1);
    module.file.resize(colon);
  }
  for (auto part = parts.begin() + 1; part != parts.end(); ++part) {
    const size_t sign = part->find('=');
    if (sign == std::string::npos)
      throw CLI::ValidationError("--module " + text, *part + " is not NAME=VALUE");
    const std::string name = part->substr(0, sign);
    module.parameters.push_back({name, part->substr(sign + 1), "--module " + module.file + ": " + name});
  }
  return module;
}

// Without NAME=VALUE: where nothing is played, no value is set.
ModuleOption ParseModuleAndKind(const char *option, const std::string &text) {
  ModuleOption module = ParseModule(text);
  if (!module.parameters.empty()) throw CLI::ValidationError(option, text + " is not FILE[:KIND]");
  return module;
}

class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App *, std::string) const override {
    return "\nUsage: kest-player IN... -o OUT.wav [OPTIONS]\n"
           "       kest-player --config FILE [OPTIONS]\n"
           "       kest-player --inspect FILE[:KIND] [--json]\n"
           "       kest-player --check FILE[:KIND] [--json] [--only TEST] [--seed N]\n";
  }
};

std::string CheckSeconds(const std::string &text) {
  double seconds = 0.0;
  const bool isNumber = CLI::detail::lexical_cast(text, seconds);
  return isNumber && seconds >= 0.001 && seconds <= 1e9 ? "" : text + " is not 0.001 to 1000000000 seconds";
}

void SetModuleConfig(Options &options, const std::string &text) {
  if (options.inspect) {
    options.inspect->config = text;
  } else if (options.check) {
    options.check->config = text;
  } else if (!options.modules.empty()) {
    options.modules.back().config = text;
  } else {
    throw CLI::ValidationError("--module-config", "the module must be named before it");
  }
}

void AddOptions(CLI::App &app, Options &options) {
  app.add_option("IN", options.inputs,
                 "Audio files that libsndfile reads, such as WAV, FLAC and OGG; or -, standard\ninput, as "
                 "WAV or as --raw says")
      ->expected(1, ZE_KEST_MAX_PORTS)
      ->type_name("FILE");
  app.add_option("--raw", options.raw,
                 "Standard input holds raw samples: RATE:CHANNELS:SAMPLES, such as 48000:2:s16le;\n"
                 "also u8, s8, s24le, s32le, f32le, f64le, and with be")
      ->type_name("FORMAT");
  app.add_option("-o,--output", options.output,
                 "WAV file to write, overwritten when it exists; or alsa:DEVICE, a sound card")
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
  app.add_option("--rate", options.rateHz, "Convert every input to this sample rate, Hz")
      ->check(CLI::Range(Src::kMinRateHz, Src::kMaxRateHz))
      ->type_name("N");
  app.add_option("--mix", options.mixMatrix,
                 "Make other channels of the mixed ones: a row of factors for each output channel, such as "
                 "\"1 0 0.5; 0 1 0.5\" for 3 channels to 2")
      ->type_name("MATRIX");
  app.add_option_function<std::string>(
         "--module", [&](const std::string &text) { options.modules.push_back(ParseModule(text)); },
         "Add a filter from a module behind the Volume of every input; may be given\nseveral times")
      ->type_name("FILE[:KIND][,NAME=VALUE...]")
      ->trigger_on_parse();
  app.add_option_function<std::string>(
         "--module-config", [&](const std::string &text) { SetModuleConfig(options, text); },
         "Configuration text of the module named before it")
      ->type_name("TEXT")
      ->trigger_on_parse();
  app.add_option_function<std::string>(
         kInspect, [&](const std::string &text) { options.inspect = ParseModuleAndKind(kInspect, text); },
         "Show a module's filters and their parameters instead of playing")
      ->type_name("FILE[:KIND]")
      ->trigger_on_parse();
  app.add_flag("--json", options.json, "With --inspect and --check: as JSON");
  app.add_flag("--wide", options.wide,
               "Use 32-bit samples in the pipelines even where 16 bits hold the input");
  app.add_flag("--logcat", options.logcat, "Show the library's Android log on stderr");
}

void AddCheckOptions(CLI::App &app, Options &options, CheckRequest &request) {
  app.add_option_function<std::string>(
         kCheck,
         [&](const std::string &text) {
           const ModuleOption module = ParseModuleAndKind(kCheck, text);
           options.check.emplace();
           options.check->file = module.file;
           options.check->kind = module.kind;
         },
         "Test a module's filters, each test in a process of its own, instead of playing")
      ->type_name("FILE[:KIND]")
      ->trigger_on_parse();
  app.add_option("--only", request.only, "With --check: one test, or a group such as Life")
      ->type_name("TEST");
  app.add_option("--seed", request.seed, "With --check: of everything random; what a report names repeats it")
      ->type_name("N");
  app.add_option("--time-limit", request.timeLimitSeconds, "With --check: seconds that a test may take")
      ->check(CLI::Range(1u, 86400u))
      ->type_name("N");
  app.add_flag("--in-process", request.inProcess,
               "With --check: run the tests in this process, for a debugger");
  app.add_flag("--list", request.list, "With --check: name the tests and what each expects");
  app.add_option("--report-fd", request.reportFd)->group("");  // of a process that --check started
}

// What was given beside --check.
void CompleteCheck(Options &options, const CheckRequest &request) {
  CheckRequest complete = request;
  complete.file = options.check->file;
  complete.kind = options.check->kind;
  complete.config = options.check->config;
  complete.json = options.json;
  options.check = complete;
}

bool BelongsToCheck(const std::string &name) {
  for (const char *known : {"--only", "--seed", "--time-limit", "--in-process", "--list"}) {
    if (name == known) return true;
  }
  return false;
}

// Without playing, only what asks about the module may be given. purpose: --inspect, --check, or none.
void RefuseWhatDoesNotBelong(const CLI::App &app, const std::string &purpose) {
  for (const CLI::Option *option : app.get_options()) {
    const std::string name = option->get_name();
    if (option->count() == 0 || name == purpose || name.empty()) continue;  // a hidden one has no name
    if (purpose != kCheck && BelongsToCheck(name))
      throw CLI::ValidationError(name, "works with --check only");
    if (purpose.empty() || name == "--json" || name == "--module-config") continue;
    if (purpose == kCheck && BelongsToCheck(name)) continue;
    throw CLI::ValidationError(name, "cannot be given with " + purpose);
  }
}

// With --config these options are refused; without it the files must be given.
void CheckSourceOfLayout(const CLI::App &app) {
  const bool hasConfig = app.count("--config") > 0;
  for (const char *name : {"IN", "--raw", "--output", "--gain-db", "--delay-ms", "--rate", "--mix",
                           "--module", "--module-config"}) {
    if (hasConfig && app.count(name) > 0) {
      throw CLI::ValidationError(name, "cannot be given with --config; the configuration file sets it");
    }
  }
  for (const char *name : {"IN", "--output"}) {
    if (!hasConfig && app.count(name) == 0) throw CLI::RequiredError(name);
  }
}

void RefuseRawFiles(const Options &options) {
  const bool hasStream = std::any_of(options.inputs.begin(), options.inputs.end(), StandardInput::IsMeantBy);
  if (options.raw && !hasStream) throw CLI::ValidationError("--raw", "works with -, standard input, only");
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
  CheckRequest check;
  AddOptions(app, options);
  AddCheckOptions(app, options, check);
  try {
    app.parse(argc, argv);
    RefuseWhatDoesNotBelong(app, options.inspect ? kInspect : options.check ? kCheck : "");
    if (options.check) {
      CompleteCheck(options, check);
    } else if (!options.inspect) {
      if (options.json) throw CLI::ValidationError("--json", "works with --inspect and --check only");
      CheckSourceOfLayout(app);
      RefuseRawFiles(options);
      RefuseEndlessFastRun(options);
    }
  } catch (const CLI::ParseError &error) {
    return app.exit(error) == 0 ? 0 : kMisuse;
  }
  return options;
}

}  // namespace kest::player
