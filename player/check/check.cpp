// SPDX-License-Identifier: Apache-2.0
#include "player/check/check.h"

#include <algorithm>
#include <cstring>
#include <iostream>
#include <random>
#include <sstream>
#include <vector>

#include <unistd.h>

#include "player/check/check_report.h"
#include "player/check/check_test.h"
#include "player/check/child.h"
#include "player/modules/module.h"
#include "player/modules/module_error.h"

namespace kest::player {
namespace {

using Texts = std::vector<std::string>;

constexpr char kRefusal = '!';  // begins the report of a module that cannot be loaded

// ---- What there is to test ----

std::string KindsOf(const CheckRequest &request) {
  try {
    const Module &module = Module::Load(request.file);
    if (!request.kind.empty()) return std::string(module.Kind(request.kind).record.pszName) + "\n";
    std::string names;
    for (const ModuleKind &kind : module.Kinds()) {
      names += std::string(kind.record.pszName) + "\n";
    }
    return names;
  } catch (const ModuleError &error) {
    return kRefusal + std::string(error.what());
  }
}

// A module that hangs or crashes while it is loaded cannot be loaded.
std::string AskForKinds(const CheckRequest &request) {
  if (request.inProcess) return KindsOf(request);
  const auto limit = std::chrono::seconds(request.timeLimitSeconds);
  const ChildOutcome outcome = RunInChild([&](int fd) { WriteAll(fd, KindsOf(request)); }, limit);
  if (!outcome.report.empty()) return outcome.report;
  const std::string why = outcome.hasTimedOut ? "it does not come to an end"
                          : outcome.signal != 0
                              ? std::string("it was ended by SIG") + sigabbrev_np(outcome.signal)
                              : "it ended the process";
  return kRefusal + request.file + ": cannot be loaded: " + why;
}

Texts Lines(const std::string &text) {
  Texts lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

// ---- One test ----

std::string Quoted(const std::string &text) {
  const auto isPlain = [](unsigned char c) {
    return std::isalnum(c) != 0 || std::strchr("/._-:=+,", c) != nullptr;
  };
  if (!text.empty() && std::all_of(text.begin(), text.end(), isPlain)) return text;
  std::string quoted = "'";
  for (const char c : text) {
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  }
  return quoted + "'";
}

Texts ArgumentsFor(const CheckTest &test, const Subject &subject) {
  const std::string kind = subject.kind.empty() ? "" : ":" + subject.kind;
  Texts arguments = {"--check", subject.file + kind,          "--only",      test.name,
                     "--seed",  std::to_string(subject.seed), "--in-process"};
  if (!subject.config.empty()) arguments.insert(arguments.end(), {"--module-config", subject.config});
  return arguments;
}

std::string RepeatOf(const CheckTest &test, const Subject &subject) {
  std::string command = "kest-player";
  for (const std::string &argument : ArgumentsFor(test, subject)) {
    command += " " + Quoted(argument);
  }
  return command;
}

std::string ReportOf(const Finding &finding) {
  return std::string(NameOf(finding.verdict)) + "\n" + finding.seen;
}

void RunForParent(const CheckTest &test, const Subject &subject, int fd) {
  ReportCrashesTo(fd);
  WriteAll(fd, ReportOf(RunHere(test, subject)));
  _exit(0);
}

Finding FindingOf(const ChildOutcome &outcome, uint32_t limitSeconds) {
  const size_t line = outcome.report.find('\n');
  if (line != std::string::npos) {
    for (int i = 0; i < kVerdicts; ++i) {
      const auto verdict = static_cast<Verdict>(i);
      if (outcome.report.compare(0, line, NameOf(verdict)) == 0)
        return {verdict, outcome.report.substr(line + 1)};
    }
  }
  if (outcome.hasTimedOut)
    return Failed("it did not come to an end within " + std::to_string(limitSeconds) + " s");
  return {Verdict::kCrashed, outcome.signal != 0
                                 ? std::string("it was ended by SIG") + sigabbrev_np(outcome.signal)
                                 : "it ended the process with exit code " + std::to_string(outcome.exitCode)};
}

// Where this program cannot be executed anew, as under an emulator, the fork does as well: its parent has
// loaded no module.
Finding RunInProcessOfItsOwn(const CheckTest &test, const Subject &subject, uint32_t limitSeconds) {
  const auto work = [&](int fd) {
    Texts arguments = ArgumentsFor(test, subject);
    arguments.insert(arguments.end(), {"--report-fd", std::to_string(fd)});
    ExecuteAgain(arguments, fd);
    RunForParent(test, subject, fd);
  };
  return FindingOf(RunInChild(work, std::chrono::seconds(limitSeconds)), limitSeconds);
}

void RunOne(const CheckTest &test, const Subject &subject, const CheckRequest &request, CheckReport &report) {
  const std::string kind = IsOfFile(test) ? "" : subject.kind;
  report.Begin(kind, test);
  Finding finding = request.inProcess ? RunHere(test, subject)
                                      : RunInProcessOfItsOwn(test, subject, request.timeLimitSeconds);
  report.Add({kind, &test, std::move(finding), RepeatOf(test, subject)});
}

void RunAll(const Texts &kinds, const CheckRequest &request, uint32_t seed, CheckReport &report) {
  const std::vector<const CheckTest *> tests = FindTests(request.only);
  for (const CheckTest *test : tests) {
    if (IsOfFile(*test)) RunOne(*test, {request.file, kinds.front(), request.config, seed}, request, report);
  }
  for (const std::string &kind : kinds) {
    for (const CheckTest *test : tests) {
      if (!IsOfFile(*test)) RunOne(*test, {request.file, kind, request.config, seed}, request, report);
    }
  }
}

int ListTests() {
  for (const CheckTest *test : FindTests("")) {
    std::cout << test->name << ": " << test->expected << "\n";
  }
  std::cout << std::flush;
  return kAllPassed;
}

}  // namespace

int Check(const CheckRequest &request) {
  if (request.list) return ListTests();
  const std::vector<const CheckTest *> tests = FindTests(request.only);
  if (tests.empty()) {
    std::cerr << "kest-player: there is no test \"" << request.only << "\"; see --check FILE --list\n";
    return kMisuseOfCheck;
  }
  const uint32_t seed = request.seed.value_or(std::random_device()());
  if (request.reportFd >= 0) {
    RunForParent(*tests.front(), {request.file, request.kind, request.config, seed}, request.reportFd);
  }
  const std::string kinds = AskForKinds(request);
  if (kinds.front() == kRefusal) {
    std::cerr << "kest-player: " << kinds.substr(1) << "\n";
    return kNotLoaded;
  }
  CheckReport report(request.file, seed, request.json);
  RunAll(Lines(kinds), request, seed, report);
  report.Finish();
  return report.HasFailed() ? kSomeFailed : kAllPassed;
}

}  // namespace kest::player
