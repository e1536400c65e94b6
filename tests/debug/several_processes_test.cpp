// SPDX-License-Identifier: Apache-2.0
// Real processes that start, log, command, are killed, shut down and start again on one debug directory.
//
// KEST_STRESS_SECONDS lengthens the run; KEST_STRESS_SEED repeats the choices of one that failed.
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>
#include <random>
#include <set>

#include <android/log.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "debug/base/shared_settings.h"
#include "tests/support/library_test.h"

namespace kest::test {
namespace {

using Clock = std::chrono::steady_clock;
using Random = std::mt19937;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr size_t kProcesses = 4;
constexpr seconds kHang{20};
// The log is emptied now and then only: what the test shall find in it must stay long enough.
constexpr uint32_t kStepsPerRestart = 50000;
constexpr const char *kCommands[] = {"kest_log_level=all",
                                     "kest_log_level=err",
                                     "kest_log_level=none",
                                     "kest_log_size=20000000",
                                     "kest_log_to_file=on",
                                     "kest_print_current_shm",
                                     "kest_debug_preset_cmd=all,aaaa",
                                     "kest_debug_preset_cmd=all,bbbbbbbbbbbbbbbbbbbb",
                                     "kest_debug_preset_cmd=off"};

uint32_t Below(Random &random, uint32_t u32Limit) {
  return static_cast<uint32_t>(random()) % u32Limit;
}

struct Board {
  std::atomic<bool> bStop;
  std::array<std::atomic<uint32_t>, kProcesses> aSteps;  // of a slot; move on while its process does not hang
};

// Of this process and those that it forks.
Board &SharedBoard() {
  static auto *pst =
      new (mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Board{};
  return *pst;
}

// A line that shows by itself whether it is whole; some are longer than any buffer of the standard library.
void LogStressLine(Random &random) {
  const size_t sztLength = Below(random, 10) == 0 ? 9000 : Below(random, 300);
  ze_kest_Debug_Log(ZE_KEST_LEVEL_ERR, "stress %zu %s|\n", sztLength, std::string(sztLength, 'x').c_str());
}

const char *AnyCommand(Random &random) {
  return kCommands[Below(random, std::size(kCommands))];
}

void Step(Random &random) {
  if (Below(random, kStepsPerRestart) == 0) ze_kest_Debug_SetParameter("kest_log_restart");
  if (Below(random, 20) == 0) ze_kest_Debug_SetParameter(AnyCommand(random));
  LogStressLine(random);
}

// The life of one process: until it is killed, or stopped and shut down.
void Live(std::atomic<uint32_t> &steps, uint32_t u32Seed) {
  __android_log_set_logger([](const __android_logger_data *, const char *) {});
  Random random(u32Seed);
  while (!SharedBoard().bStop) {
    ze_kest_Debug_Init();
    for (uint32_t u32Left = Below(random, 3000); u32Left > 0 && !SharedBoard().bStop; --u32Left) {
      ++steps;
      Step(random);
    }
    ze_kest_Debug_DeInit();
    ++steps;
  }
}

// What stands in the block while the processes write it: nothing yet, or settings that somebody has made.
void CheckSharedBlock() {
  const std::string block = ReadFile(KEST_DEBUG_DIR "shm_global");
  if (block.size() < sizeof(SharedSettings)) return;
  SharedSettings settings = {};
  memcpy(&settings, block.data(), sizeof(settings));
  EXPECT_THAT(settings.u32DebugLevel, testing::AnyOf(0u, 1u, 32u, 240u));
  EXPECT_THAT(settings.bPresetCmd, testing::AnyOf(0, 1));
  ASSERT_LT(strnlen(settings.szPresetCmd, kPresetCmdSize), kPresetCmdSize);
  EXPECT_EQ(strlen(settings.szPresetCmd), strspn(settings.szPresetCmd, "ab"));
}

// Starts the processes, kills them at random and starts them again.
class Director {
 public:
  void Run(Random &random, milliseconds length) {
    board_.bStop = false;
    const auto end = Clock::now() + length;
    while (Clock::now() < end && !testing::Test::HasFailure()) {
      StartMissing(random);
      Tick(random);
      const Process &process = aProcesses_[Below(random, kProcesses)];
      if (Below(random, 10) == 0 && process.s32Pid > 0) kill(process.s32Pid, SIGKILL);
    }
    board_.bStop = true;
    while (IsAnyAlive())
      Tick(random);
  }

  // Of these the last line may be cut: nobody can finish it.
  [[nodiscard]] const std::set<pid_t> &Killed() const { return killed_; }

 private:
  struct Process {
    pid_t s32Pid = 0;
    uint32_t u32Steps = 0;
    Clock::time_point lastStep;
  };

  void StartMissing(Random &random) {
    for (size_t i = 0; i < kProcesses; ++i) {
      if (aProcesses_[i].s32Pid > 0) continue;
      const auto u32Seed = static_cast<uint32_t>(random());
      const pid_t s32Pid = fork();
      if (s32Pid == 0) {
        Live(board_.aSteps[i], u32Seed);
        _exit(0);
      }
      aProcesses_[i] = {s32Pid, 0, Clock::now()};
    }
  }

  void Tick(Random &random) {
    TryWriteToPipe(AnyCommand(random) + std::string("\n"));  // an engineer's, when some process reads
    usleep(5000);
    CheckSharedBlock();
    for (size_t i = 0; i < kProcesses; ++i)
      Look(aProcesses_[i], board_.aSteps[i]);
  }

  void Look(Process &process, uint32_t u32Steps) {
    int s32Status = 0;
    if (process.s32Pid <= 0) return;
    if (waitpid(process.s32Pid, &s32Status, WNOHANG) == process.s32Pid) {
      NoteEnd(process, s32Status);
      return;
    }
    if (u32Steps != process.u32Steps) process.lastStep = Clock::now();
    process.u32Steps = u32Steps;
    if (Clock::now() - process.lastStep < kHang) return;
    ADD_FAILURE() << "process " << process.s32Pid << " hangs";
    kill(process.s32Pid, SIGKILL);
  }

  void NoteEnd(Process &process, int s32Status) {
    const bool bKilled = WIFSIGNALED(s32Status) && WTERMSIG(s32Status) == SIGKILL;
    EXPECT_TRUE(bKilled || s32Status == 0) << "process " << process.s32Pid << " ended with " << s32Status;
    if (bKilled) killed_.insert(process.s32Pid);
    process.s32Pid = 0;
  }

  [[nodiscard]] bool IsAnyAlive() const {
    return std::any_of(aProcesses_.begin(), aProcesses_.end(),
                       [](const Process &process) { return process.s32Pid > 0; });
  }

  Board &board_ = SharedBoard();
  std::array<Process, kProcesses> aProcesses_;
  std::set<pid_t> killed_;
};

// A line that does not say what it should be long counts as whole.
bool IsWhole(const std::string &text) {
  const size_t sztStart = text.find("stress ");
  if (sztStart == std::string::npos) return true;
  char *pszEnd = nullptr;
  const size_t sztLength = strtoul(&text[sztStart + strlen("stress ")], &pszEnd, 10);
  return pszEnd == " " + std::string(sztLength, 'x') + "|";
}

// Whether a prefix, as far as it goes, has the id of one of the processes: a kill may cut the id too.
bool MayBeOf(const std::set<pid_t> &killed, const std::string &text) {
  const std::string id = text.substr(std::min(text.find('m'), text.size() - 1) + 1);
  return std::any_of(killed.begin(), killed.end(), [&id](pid_t s32Pid) {
    const std::string own = std::to_string(s32Pid) + " ";
    const size_t sztBoth = std::min(own.size(), id.size());
    return own.compare(0, sztBoth, id, 0, sztBoth) == 0;
  });
}

// One line of the file: one prefix at its start, or what a kill has cut and the line that came behind it.
void CheckLine(const std::string &line, const std::set<pid_t> &killed, int &s32Whole) {
  static const std::string colour = "\033[1;";
  size_t sztStart = line.find(colour);
  EXPECT_TRUE(sztStart != std::string::npos || line.find("xx") == std::string::npos) << line.substr(0, 200);
  EXPECT_TRUE(sztStart == 0 || line.find("<ZE3>") == std::string::npos) << line.substr(0, 200);
  while (sztStart != std::string::npos) {
    const size_t sztNext = line.find(colour, sztStart + 1);
    const std::string text = line.substr(sztStart, sztNext - sztStart);
    const bool bWhole = sztNext == std::string::npos && IsWhole(text);
    if (bWhole) ++s32Whole;
    EXPECT_TRUE(bWhole || MayBeOf(killed, text)) << text.substr(0, 200);
    sztStart = sztNext;
  }
}

void CheckLog(const std::set<pid_t> &killed, int &s32Whole) {
  for (const std::string &line : LinesOf(ReadFile(kLogFile)))
    CheckLine(line, killed, s32Whole);
}

seconds StressLength() {
  const char *pszSeconds = getenv("KEST_STRESS_SECONDS");
  return seconds(pszSeconds == nullptr ? 3 : atoi(pszSeconds));
}

// Waits until the log holds the answer to the line.
bool IsAnswered(const std::string &size) {
  return WaitFor([&] { return ReadFile(kLogFile).find("LogSizeMax:" + size + "\n") != std::string::npos; });
}

// A process holds the pipe's lock while it carries out a line.
bool NobodyHoldsThePipe() {
  const int s32Fd = open(kPipe, O_RDWR | O_NONBLOCK | O_CLOEXEC);
  const bool bFree = flock(s32Fd, LOCK_EX | LOCK_NB) == 0;
  close(s32Fd);
  return bFree;
}

TEST(SeveralProcesses, AStoppedOneLeavesThePipeToTheOthers) {
  EmptyDebugDirectory();
  const pid_t s32Pid = fork();
  if (s32Pid == 0) {
    ze_kest_Debug_Init();
    for (;;)
      pause();
  }
  WriteToPipe("kest_log_size=111111111\n");
  EXPECT_TRUE(IsAnswered("111111111"));
  EXPECT_TRUE(WaitFor(NobodyHoldsThePipe));
  kill(s32Pid, SIGSTOP);
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
  WriteToPipe("kest_log_size=222222222\n");
  EXPECT_TRUE(IsAnswered("222222222"));
  kill(s32Pid, SIGKILL);
  waitpid(s32Pid, nullptr, 0);
  EXPECT_EQ(ZE_KEST_OK, ShutDown());
}

TEST(SeveralProcesses, ALineOfThePipeIsReadByOneOfThemAlone) {
  constexpr int kLines = 2000;
  EmptyDebugDirectory();
  SharedBoard().bStop = false;
  std::array<pid_t, kProcesses> as32Pids = {};
  for (size_t i = 0; i < kProcesses; ++i) {
    as32Pids[i] = fork();
    if (as32Pids[i] != 0) continue;
    ze_kest_Debug_Init();
    while (!SharedBoard().bStop)
      usleep(1000);
    _exit(0);
  }
  std::set<std::string> missing;
  for (int i = 0; i < kLines; ++i) {
    WriteToPipe("kest_log_size=" + std::to_string(100000000 + i) + "\n");
    missing.insert("LogSizeMax:" + std::to_string(100000000 + i));
  }
  EXPECT_TRUE(WaitFor([&] {
    for (const std::string &line : LinesOf(ReadFile(kLogFile)))
      missing.erase(line);
    return missing.empty();
  })) << missing.size()
      << " of the lines, the first " << *missing.begin();
  SharedBoard().bStop = true;
  for (const pid_t s32Pid : as32Pids)
    waitpid(s32Pid, nullptr, 0);
}

TEST(SeveralProcesses, LogCommandDieAndRestartInAnyOrderAndNoLineIsTornAndNoneHangs) {
  EmptyDebugDirectory();
  const char *pszSeed = getenv("KEST_STRESS_SEED");
  const uint32_t u32Seed =
      pszSeed == nullptr ? std::random_device{}() : static_cast<uint32_t>(strtoul(pszSeed, nullptr, 10));
  SCOPED_TRACE("KEST_STRESS_SEED=" + std::to_string(u32Seed));
  Random random(u32Seed);
  const auto end = Clock::now() + StressLength();
  int s32Whole = 0;
  // In rounds: a log is whole to read when nobody empties it.
  do {
    Director director;
    director.Run(random, milliseconds(1000));
    CheckLog(director.Killed(), s32Whole);
    std::filesystem::remove(kLogFile);
  } while (Clock::now() < end && !HasFailure());
  EXPECT_GT(s32Whole, 0);
}

}  // namespace
}  // namespace kest::test
