// SPDX-License-Identifier: Apache-2.0
#include <cstdio>
#include <ctime>
#include <functional>

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <unistd.h>

#include "ctl/channel/log_tail.h"
#include "ctl/channel/verdict.h"
#include "ctl/commands/command_table.h"
#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/commands/names.h"
#include "ctl/commands/option_values.h"
#include "ctl/commands/report_sound.h"
#include "ctl/model/level.h"
#include "ctl/observe/trace_recorder.h"
#include "ctl/parse/lines.h"
#include "ctl/parse/log_line.h"
#include "ctl/render/archive.h"
#include "ctl/render/escape.h"
#include "ctl/render/output_file.h"

namespace kest::ctl {
namespace {

constexpr int kDefaultLogLines = 2000;
constexpr std::chrono::milliseconds kTraced{1000};
constexpr mode_t kForOwner = 0600;  // as private as the log can be

// A command whose result becomes two files: the text for people, the data for programs.
struct Part {
  const char *file;
  const char *command;
  std::vector<std::string> words;
  const char *answers;
};

const std::vector<Part> &PartsBefore() {
  static const std::vector<Part> parts = {
      {"doctor", "doctor", {}, "Does the process answer, and what is wrong with pipe, log and disk?"},
      {"process", "ps", {}, "Which program is it, and since when does it run?"},
      {"list", "ls", {}, "Which pipelines and filters run, and how do they feed each other?"},
      {"ports", "ls", {"ports"}, "How full is each port?"},
      {"parameters", "ls", {"parameters"}, "Which parameters are there?"},
      {"status", "status", {}, "What do the filters say of themselves: settings, underruns, frames?"},
      {"level", "level", {}, "What was logged?"},
  };
  return parts;
}

const std::vector<Part> &PartsAfter() {
  static const std::vector<Part> parts = {
      {"later/ports", "ls", {"ports"}, "Has anything moved a second later?"},
      {"later/status", "status", {}, "Has anything been counted a second later?"},
  };
  return parts;
}

// Files of the system on which the process runs; {} is the process.
struct SystemFile {
  const char *file;
  const char *path;
  const char *answers;
};

constexpr SystemFile kSystemFiles[] = {
    {"system/version.txt", "/proc/version", "Which kernel?"},
    {"system/os-release.txt", "/etc/os-release", "Which system?"},
    {"system/cpuinfo.txt", "/proc/cpuinfo", "Which processor?"},
    {"system/meminfo.txt", "/proc/meminfo", "How much memory is free?"},
    {"system/loadavg.txt", "/proc/loadavg", "How busy is the system?"},
    {"system/uptime.txt", "/proc/uptime", "Since when does the system run?"},
};

constexpr SystemFile kProcessFiles[] = {
    {"process/status.txt", "/proc/{}/status", "How much memory, which user?"},
    {"process/limits.txt", "/proc/{}/limits", "May it run in real time?"},
    {"process/maps.txt", "/proc/{}/maps", "Which libraries, at which addresses?"},
};

struct Wishes {
  size_t logLines;
  std::optional<std::string> soundOf;  // a filter
};

class Bundle {
 public:
  explicit Bundle(const std::string &directory) : archive_(directory) {}

  void Add(const std::string &name, const std::string &answers, const std::string &bytes) {
    archive_.Add(name, bytes);
    files_.push_back({{"name", name}, {"bytes", bytes.size()}, {"answers", ToJson(answers)}});
  }
  // Runs what adds a file. What is wrong is said in place of the file.
  void Try(const std::string &name, const std::function<void()> &add) {
    try {
      add();
    } catch (const CtlError &error) {
      if (error.Code() == ExitCode::kInterrupted) throw;
      missing_.push_back({{"name", name}, {"reason", ToJson(std::string(error.what()))}});
    }
  }
  // The same for what asks the process: one that did not answer once is not waited for again and again.
  void TryAsking(const std::string &name, const std::function<void()> &add) {
    Try(name, [&] {
      if (silence_) throw CtlError(*silence_);
      try {
        add();
      } catch (const CtlError &error) {
        if (error.Code() == ExitCode::kNoAnswer) silence_ = error;
        throw;
      }
    });
  }
  [[nodiscard]] const Json &Files() const { return files_; }
  [[nodiscard]] const Json &Missing() const { return missing_; }
  std::string Finish(const Json &about) {
    Json manifest = about;
    manifest["files"] = files_;
    manifest["missing"] = missing_;
    archive_.Add("manifest.json", manifest.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
    return archive_.Finish();
  }

 private:
  Archive archive_;
  Json files_ = Json::array();
  Json missing_ = Json::array();
  std::optional<CtlError> silence_;
};

void AddParts(Context &context, const std::vector<Part> &parts, Bundle &bundle) {
  for (const Part &part : parts) {
    bundle.TryAsking(part.file, [&] {
      Arguments arguments;
      arguments.words = part.words;
      context.ForgetAnswers();
      const Result result = FindCommand(part.command)->run(context, arguments);
      bundle.Add(fmt::format("{}.txt", part.file), part.answers, WithoutColours(result.text));
      bundle.Add(fmt::format("{}.json", part.file), part.answers, Dump(result.data) + "\n");
    });
  }
}

template <size_t kCount>
void AddFiles(Host &host, const SystemFile (&files)[kCount], const std::string &pid, Bundle &bundle) {
  for (const SystemFile &file : files) {
    bundle.Try(file.file, [&] {
      std::string path = file.path;
      if (const size_t hole = path.find("{}"); hole != std::string::npos) path.replace(hole, 2, pid);
      const std::string bytes = host.ReadProc(path);
      if (bytes.empty()) throw CtlError(ExitCode::kUnreachable, fmt::format("{} cannot be read", path));
      bundle.Add(file.file, file.answers, bytes);
    });
  }
}

void AddThreads(Host &host, const Process &process, Bundle &bundle) {
  std::string text;
  for (const int tid : process.threads)
    text += host.ReadProc(fmt::format("/proc/{}/task/{}/stat", process.pid, tid));
  bundle.Add("process/threads.txt", "What do its threads do, and how much of the processor did they take?",
             text);
}

// The version is a part of every prefix, and no level but none lets a line with a prefix pass. The level goes
// up and down within one write.
std::string LibraryVersion(Channel &channel) {
  const Level *level = FindLevel(channel.AskSettings().level);
  if (level == nullptr) throw CtlError(ExitCode::kRefused, "the log level is an unknown one");
  const Reply reply = channel.Ask({"kest_log_level=err", fmt::format("kest_log_level={}", level->name)});
  for (const std::string &text : reply.lines) {
    const LogLine line = ParseLogLine(text);
    if (line.HasPrefix()) return line.version;
  }
  throw CtlError(ExitCode::kLost, "the process did not print its version");
}

void AddVersions(Context &context, Bundle &bundle) {
  std::string text = "kestctl " KEST_VERSION "\n";
  bundle.TryAsking("version of the library",
                   [&] { text += fmt::format("library {}\n", LibraryVersion(context.GetChannel())); });
  bundle.Add("versions.txt", "Which versions?", text);
}

void AddSettings(Context &context, Bundle &bundle) {
  bundle.TryAsking("settings.txt", [&] {
    const Lines lines =
        context.GetChannel().Ask({"kest_print_current_shm", "kest_debug_filter_io=print_watch_list"}).lines;
    std::string text;
    for (const std::string &line : WithoutEcho(lines))
      text += WithoutColours(line) + "\n";
    bundle.Add("settings.txt", "Which level, preset command and watches are set?", text);
  });
}

void AddLog(Context &context, size_t lines, Bundle &bundle) {
  bundle.Try("log.txt", [&] {
    const std::string path = context.GetSettings().directory + "KestLog.txt";
    std::string text;
    for (const std::string &line :
         ReadTail(context.GetHost(), path, lines, [](const std::string &) { return true; }).lines)
      text += line + "\n";
    bundle.Add("log.txt", "What does the log say?", text);
  });
}

// A name never becomes a path: the traces are numbered.
void AddTraces(Context &context, Bundle &bundle) {
  bundle.TryAsking("trace", [&] {
    const std::vector<Pipeline> pipelines = context.GetListing().pipelines;
    const auto each = kTraced / static_cast<int>(std::max<size_t>(pipelines.size(), 1));
    for (size_t i = 0; i < pipelines.size(); ++i) {
      const std::string name = fmt::format("trace/{}.txt", i);
      bundle.TryAsking(fmt::format("{} of {}", name, pipelines[i].name), [&] {
        bundle.Add(name, fmt::format("How long do the cycles of {} and its filters take?", pipelines[i].name),
                   RecordTraceText(context, pipelines[i], each));
      });
    }
  });
}

// Whether there is sound in the report.
bool AddSound(Context &context, const std::string &filter, Bundle &bundle) {
  bool isAdded = false;
  bundle.TryAsking("audio", [&] {
    for (const SoundFile &file : RecordSound(context, filter)) {
      bundle.Add("audio/" + file.name, fmt::format("What passes through {}?", filter), file.bytes);
      isAdded = true;
    }
  });
  return isAdded;
}

void AddProcess(Context &context, Bundle &bundle) {
  Host &host = context.GetHost();
  for (const Process &process : context.GetChannel().GetReaders().processes) {
    AddFiles(host, kProcessFiles, std::to_string(process.pid), bundle);
    AddThreads(host, process, bundle);
    return;  // of several, the first
  }
}

void Say(const Context &context, const char *text) {
  if (!context.IsSilent() && isatty(STDERR_FILENO) != 0) fmt::print(stderr, "kestctl: {}\n", text);
}

Json About(const Context &context, bool holdsSound) {
  const char *const sound = holdsSound ? ", audio" : "";
  const char *const noSound = holdsSound ? "" : "audio, ";
  const std::string via = context.GetSettings().via;
  return {{"schema", "kestctl-report/1"},
          {"made", fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(std::time(nullptr)))},
          {"kestctl", KEST_VERSION},
          {"directory", ToJson(context.GetSettings().directory)},
          {"via", via.empty() ? Json() : ToJson(via)},
          {"holds",
           fmt::format("what runs, settings, log, timing, versions, state of the process and of the system{}",
                       sound)},
          {"does_not_hold", fmt::format("{}the process's arguments and environment", noSound)}};
}

std::string Gather(Context &context, const Wishes &wishes, Bundle &bundle) {
  AddParts(context, PartsBefore(), bundle);
  AddVersions(context, bundle);
  AddSettings(context, bundle);
  AddProcess(context, bundle);
  AddFiles(context.GetHost(), kSystemFiles, "", bundle);
  Say(context, "tracing for a second");
  AddTraces(context, bundle);
  const bool holdsSound = wishes.soundOf && AddSound(context, *wishes.soundOf, bundle);
  AddParts(context, PartsAfter(), bundle);
  AddLog(context, wishes.logLines, bundle);
  return bundle.Finish(About(context, holdsSound));
}

// A mistyped name is told before anything is gathered. A process that does not answer is a case for a report.
void RefuseUnknownFilter(Context &context, const std::string &filter) {
  try {
    static_cast<void>(FindFilter(context.GetListing(), filter));
  } catch (const CtlError &error) {
    if (error.Code() == ExitCode::kNotFound || error.Code() == ExitCode::kInterrupted) throw;
  }
}

std::string Summary(const std::string &path, const Bundle &bundle) {
  std::string text = fmt::format("{}: {} files; manifest.json says what they hold\n", Escape(path),
                                 bundle.Files().size() + 1);
  for (const Json &missing : bundle.Missing()) {
    text += fmt::format("without {}: {}\n", Escape(missing["name"].get<std::string>()),
                        Escape(missing["reason"].get<std::string>()));
  }
  return text;
}

}  // namespace

Result RunReport(Context &context, const Arguments &arguments) {
  const int logLines = WholeOption(arguments, "lines", {0, kMostWhole}).value_or(kDefaultLogLines);
  const Wishes wishes = {static_cast<size_t>(logLines), arguments.Option("audio")};
  const auto path = arguments.Option("output");
  if (!path) throw CtlError(ExitCode::kUsage, "the archive needs a name", "add -o FILE.tar.gz");
  OutputFile file(*path, kForOwner);
  if (wishes.soundOf) RefuseUnknownFilter(context, *wishes.soundOf);
  Say(context, "gathering what runs");
  Bundle bundle("kest-report");
  file.Write(Gather(context, wishes, bundle));
  Result result;
  result.data = {{"file", ToJson(*path)}, {"files", bundle.Files()}, {"missing", bundle.Missing()}};
  result.text = Summary(*path, bundle);
  return result;
}

}  // namespace kest::ctl
