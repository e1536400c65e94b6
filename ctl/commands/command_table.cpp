// SPDX-License-Identifier: Apache-2.0
#include "ctl/commands/command_table.h"

#include <fmt/format.h>

#include "ctl/commands/commands.h"
#include "ctl/commands/names.h"

namespace kest::ctl {

const std::vector<OptionInfo> &GlobalOptions() {
  static const std::vector<OptionInfo> options = {
      {"--dir", "DIR", "The directory of the pipe and the log; " KEST_DEBUG_DIR " unless given",
       Offer::kDirectory},
      {"--pid", "PID", "The process that is meant; refuses when another reads the pipe", Offer::kProcess},
      {"--any", nullptr, "Go on although several processes read the pipe, and take what comes"},
      {"--timeout", "MS", "How long to wait for an answer; 2000 unless given"},
      {"--via", "COMMAND", "Works on another system, through its shell: \"adb shell\", \"ssh HOST\""},
      {"--json", nullptr, "One JSON document on standard output, also on failure"},
      {"-q,--quiet", nullptr, "No warnings, hints and progress"},
      {"--color", "WHEN", "auto, always or never; auto unless given: on a terminal without NO_COLOR",
       Offer::kColour},
  };
  return options;
}

const std::vector<Command> &Commands() {
  static const std::vector<Command> commands = {
      {"ps", "List the processes that read the pipe", "", {}, {}, RunPs},
      {"doctor",
       "Look for the reasons of silence",
       "Looks at the directory, the pipe, who reads it, the log, the disk and the settings, and asks for an "
       "answer;\n"
       "says what to do about what is wrong. Exit code 1 when something is.",
       {},
       {},
       RunDoctor},
      {"ls",
       "List what runs",
       "Pipelines with their filters, what they feed and what their ports hold; or only pipelines, filters, "
       "ports or\n"
       "parameters, with more about them.",
       {{"WHAT", Offer::kListing, false}},
       {},
       RunLs},
      {"status",
       "Show what the filters report about themselves",
       "",
       {{"PIPELINE[/FILTER]", Offer::kTarget, false}},
       {},
       RunStatus},
      {"get",
       "Show the parameters of the filters with their values",
       "Of all filters that have some, or of one pipeline or filter; with units and ranges.",
       {{"PIPELINE[/FILTER]", Offer::kTarget, false}},
       {},
       RunGet},
      {"set",
       "Set a parameter of a filter",
       "Names may be shortened as long as they are unique. VALUE is a whole number.",
       {{"PIPELINE/FILTER", Offer::kFilter}, {"NAME", Offer::kParameter}, {"VALUE"}},
       {},
       RunSet},
      {"cmd",
       "Send a command of its own to a filter",
       "",
       {{"PIPELINE/FILTER", Offer::kFilter}, {"TEXT", Offer::kNothing, true, true}},
       {},
       RunCmd},
      {"send",
       "Send lines as they are and show the reply verbatim",
       "Each LINE is one line of the command language, such as kest_log_to_print=on.",
       {{"LINE", Offer::kNothing, true, true}},
       {},
       RunSend},
      {"level",
       "Show or set the log level",
       "LEVEL is none, err, sync, hdmi, wrn, info, trace or all. All processes share it.",
       {{"LEVEL", Offer::kLevel, false}},
       {},
       RunLevel},
      {"log",
       "Show the log",
       "Without the empty lines between commands and the lines by which kestctl finds its answers.",
       {},
       {{"-f,--follow", nullptr, "Go on as the log grows, through its restarts"},
        {"-n,--lines", "N", "The last N lines; 20 unless given"},
        {"--level", "LEVEL", "Only lines of this level and of more serious ones", Offer::kSeverity},
        {"--tid", "TID", "Only lines of this thread", Offer::kThread},
        {"--plain", nullptr, "Without prefixes and colours"},
        {"--raw", nullptr, "Every line"}},
       RunLog},
      {"top",
       "Show live how full the ports are, what the threads cost and what goes wrong",
       "For a moment of each look every filter prints what its ports hold, so the log grows; a longer delay "
       "lets it\n"
       "grow less. q ends it, the arrows scroll. Without a terminal, and with --json, each look is printed.",
       {},
       {{"-d,--delay", "SEC", "Seconds between two looks; 1 unless given"},
        {"-n,--count", "N", "Ends after N looks"},
        {"-b,--batch", nullptr, "Prints each look instead of using the whole terminal"}},
       RunTop},
      {"watch",
       "Tell under- and overruns as they happen, and who is to blame",
       "Every filter prints what its ports hold in every cycle, which fills the log within a minute or two; "
       "with\n"
       "--every only now and then, which tells what has happened but not why.",
       {},
       {{"--fail", nullptr, "Ends with exit code 1 at the first one"},
        {"--seconds", "N", "Ends after N seconds; without it, Ctrl-C does"},
        {"--every", "SEC", "Looks only every SEC seconds"}},
       RunWatch},
      {"perf",
       "Measure MIPS, MCPS and CPU of a pipeline and its filters",
       "A pipeline and each of its filters are measured one after the other. Needs the hardware counters of "
       "the CPU;\n"
       "without them the CPU percentage of the pipeline's thread is all there is.",
       {{"PIPELINE[/FILTER]", Offer::kTarget}},
       {{"--seconds", "N", "Seconds for each; 2 unless given"},
        {"--csv", nullptr, "Comma-separated values instead of a table"}},
       RunPerf},
      {"trace",
       "Record when each filter runs, for a trace viewer",
       "Writes Chrome trace-event JSON: pipelines as threads, filters as slices, port levels as counters. "
       "--convert\n"
       "makes it of trace files and logs that are there already: the words are then their paths.",
       {{"PIPELINE", Offer::kPipeline, true, true}},
       {{"--seconds", "N", "How long; 2 unless given. Ctrl-C ends it earlier"},
        {"-o,--output", "FILE", "Where to write; trace.json unless given"},
        {"--levels", "MS", "How often port levels are taken; 100 unless given, 0 for never"},
        {"--convert", nullptr, "Convert files that were recorded before"}},
       RunTrace},
      {"dump",
       "Dump what a filter reads and writes into WAV files",
       "One file for each port and channel group, with every channel that it has storage for; metadata and "
       "raw "
       "data\n"
       "beside them. Existing files are overwritten. Ctrl-C ends it early and keeps what came.",
       {{"PIPELINE/FILTER", Offer::kFilter}},
       {{"--in", nullptr, "Only what it reads"},
        {"--out", nullptr, "Only what it writes"},
        {"--seconds", "N", "How long; 5 unless given"},
        {"-o,--output", "DIR", "Where the files go; made when missing; the current directory unless given",
         Offer::kDirectory},
        {"--rate", "HZ", "The sample rate, which a process does not tell; 48000 unless given"},
        {"--channels", "N", "Only the first N channels"},
        {"--bits", "N", "16, 24 or 32; needed only where the storage leaves it open"}},
       RunDump},
      {"latency",
       "Measure the delay from one filter's input to another's output",
       "Silences the input for 500 cycles, puts a short burst in and waits for it; asks before it does so. "
       "Exact to\n"
       "the sample where all ports on the way have 32 bits. Exit code 1 when a burst was not found.",
       {{"FROM", Offer::kFilter}, {"TO", Offer::kFilter}},
       {{"--repeat", "N", "Measure N times; once unless given"},
        {"--wait", "SECONDS", "How long to wait for a burst; 5 unless given"},
        {"--yes", nullptr, "Do not ask"}},
       RunLatency},
      {"check",
       "Look for what is wrong with a recording",
       "Finds clipping, clicks, gaps, repeated blocks, silence and offsets, and phase jumps of a tone, whose "
       "SNR it\n"
       "gives; with a reference also channels that are missing, swapped, inverted or different. Exit code 1 "
       "when\n"
       "something is.",
       {{"FILE", Offer::kFile}},
       {{"--reference", "FILE", "What the recording should hold; it may begin anywhere in it", Offer::kFile},
        {"--min-snr", "DB", "A tone with a lower SNR is wrong"}},
       RunCheck},
      {"plot",
       "Draw a picture for a bug report",
       "KIND is waveform, spectrogram or levels, of an audio file; cycles, of the file of a timing trace "
       "(PIPELINE.txt);\n"
       "or latency, of what kestctl --json latency printed. Needs gnuplot.",
       {{"KIND", Offer::kPicture}, {"INPUT", Offer::kFile}},
       {{"-o,--output", "FILE", "The PNG file to write", Offer::kFile},
        {"--channel", "N", "Only this channel; a spectrogram shows the first unless given"},
        {"--from", "SECONDS", "Where the picture begins"},
        {"--seconds", "N", "How much of the recording it shows"}},
       RunPlot},
      {"metrics",
       "Give figures to a monitoring system",
       "Whether a process answers, and the levels and counters of its filters and ports, as text that the "
       "text-file\n"
       "collector of a node exporter reads. Exit code 0 also when nothing answers: kest_up is then 0.",
       {},
       {{"-o,--output", "FILE",
         "Replaces the file at once, for the collector FILE.prom; standard output unless given",
         Offer::kFile},
        {"--openmetrics", nullptr, "In the format of the OpenMetrics standard"},
        {"--watch", "SEC", "Again every SEC seconds, into the file"},
        {"--device", "NAME", "Adds the label device to every figure"}},
       RunMetrics},
      {"report",
       "Put all that a bug report needs into one archive",
       "What runs, settings, log, timing, versions, state of the process and of the system, what doctor "
       "says.\n"
       "No audio unless asked. Takes about two seconds. Also when nothing answers: then with what can be "
       "seen from outside.",
       {},
       {{"-o,--output", "FILE", "The archive, FILE.tar.gz", Offer::kFile},
        {"-n,--lines", "N", "The last N lines of the log; 2000 unless given"},
        {"--audio", "FILTER", "Also a second of what this filter reads and writes, as WAV files",
         Offer::kFilter}},
       RunReport},
      {"shell",
       "Take commands at a prompt",
       "Each line is a command as it stands behind kestctl; a line that begins with kest_ is sent as it is. "
       "Tab\n"
       "completes commands, options and the names of what runs; the arrows and Ctrl-R find earlier lines. "
       "Ctrl-C\n"
       "ends a command, exit or Ctrl-D the shell. Reads lines from standard input when that is no terminal; "
       "the\n"
       "exit code is then that of the first line that failed.",
       {},
       {},
       RunShell},
      {"completion",
       "Print what makes a shell complete kestctl's words",
       "bash: eval \"$(kestctl completion bash)\"; zsh: kestctl completion zsh >DIR/_kestctl, with DIR in "
       "fpath;\n"
       "fish: kestctl completion fish | source. An installed package brings them along.",
       {{"SHELL", Offer::kShellName}},
       {},
       RunCompletion},
      {"help",
       "Show this help, or that of a command",
       "",
       {{"COMMAND", Offer::kCommand, false}},
       {{"--man", nullptr, "The manual page, for man"}},
       RunHelp},
  };
  return commands;
}

const Command *FindCommand(std::string_view name) {
  for (const Command &command : Commands()) {
    if (command.name == name) return &command;
  }
  return nullptr;
}

const Command &CommandNamed(const std::string &name) {
  if (const Command *command = FindCommand(name)) return *command;
  std::vector<std::string> names;
  for (const Command &command : Commands())
    names.emplace_back(command.name);
  const std::string nearest = Nearest(names, name);
  throw CtlError(ExitCode::kUsage, fmt::format("there is no command \"{}\"", name),
                 nearest.empty() ? "kestctl --help lists them" : fmt::format("did you mean {}?", nearest));
}

}  // namespace kest::ctl
