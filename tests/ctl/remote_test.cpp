// SPDX-License-Identifier: Apache-2.0
// Work on another system: the far side is a shell whose PATH holds nothing but the programs that kestctl may
// use.
#include <algorithm>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <numeric>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ctl/channel/local_host.h"
#include "ctl/channel/remote_host.h"
#include "tests/ctl/ctl_test.h"
#include "tests/ctl/trace_checker.h"

namespace kest::ctl {

bool operator==(const FileFacts &left, const FileFacts &right) {
  return left.IsSameFile(right) && left.size == right.size && left.mode == right.mode &&
         left.owner == right.owner;
}

bool operator==(const OpenFile &left, const OpenFile &right) {
  return left.facts == right.facts && left.path == right.path;
}

bool operator==(const Process &left, const Process &right) {
  return left.pid == right.pid && left.name == right.name && left.exe == right.exe &&
         left.start == right.start && left.threads == right.threads &&
         left.commandThread == right.commandThread;
}

}  // namespace kest::ctl

namespace kest::test {
namespace {

namespace fs = std::filesystem;

using ctl::LocalHost;
using ctl::RemoteHost;
using ctl::WriteResult;
using testing::HasSubstr;

struct Programs {
  const char *name;
  const char *shell;
  const char *stat;
};

std::string FarSide(const Programs &programs) {
  const std::string path = PlayerTest::Path("far");
  fs::create_directory(path);
  const std::pair<const char *, const char *> links[] = {{"sh", programs.shell},
                                                         {"stat", programs.stat},
                                                         {"dd", "/bin/dd"},
                                                         {"cat", "/bin/cat"},
                                                         {"rm", "/bin/rm"}};
  for (const auto &[name, program] : links)
    fs::create_symlink(program, path + "/" + name);
  return "env PATH=" + path;
}

// What RemoteHost finds in a shell of this system must be what LocalHost finds.
constexpr Programs kGnu = {"Gnu", "/bin/sh", "/usr/bin/stat"};

class FarHost : public CtlTest, public testing::WithParamInterface<Programs> {
 protected:
  void SetUp() override {
    if (!fs::exists(GetParam().shell) || !fs::exists(GetParam().stat)) GTEST_SKIP() << "not installed";
    far_ = std::make_unique<RemoteHost>(FarSide(GetParam()));
  }

  LocalHost near_;
  std::unique_ptr<RemoteHost> far_;
};

INSTANTIATE_TEST_SUITE_P(Shells, FarHost,
                         testing::Values(kGnu, Programs{"Bash", "/bin/bash", "/usr/bin/stat"},
                                         Programs{"Toybox", "/bin/mksh", "/usr/bin/toybox"}),
                         [](const auto &given) { return given.param.name; });

TEST_P(FarHost, SeesFilesOfEveryKindAsTheyAre) {
  const std::string odd = PlayerTest::Path("it's $(odd) \"\\n\" `x` *");
  WriteFile(odd, "text");
  ASSERT_EQ(0, mkfifo(kPipe, 0640));
  for (const std::string &path :
       {odd, std::string(kPipe), std::string(KEST_DEBUG_DIR), std::string("/dev/null"),
        PlayerTest::Path("far/sh"), PlayerTest::Path("missing"), odd + "/below"}) {
    EXPECT_TRUE(near_.Look(path) == far_->Look(path)) << path;
  }
  EXPECT_NEAR(static_cast<double>(near_.FreeBytes(odd)), static_cast<double>(far_->FreeBytes(odd)), 1 << 20);
  EXPECT_EQ(-1, far_->FreeBytes(PlayerTest::Path("missing")));
}

TEST_P(FarHost, ReadsAnyPartOfAFileByteForByte) {
  std::string bytes(20000, '\0');
  std::iota(bytes.begin(), bytes.end(), '\0');
  const std::string path = PlayerTest::Path("bytes");
  WriteFile(path, bytes);
  for (const uint64_t offset : std::initializer_list<uint64_t>{0, 1, 4095, 4096, 8191, 19999, 20000, 30000}) {
    for (const size_t size : std::initializer_list<size_t>{0, 1, 4096, 4097, 300000}) {
      const ctl::FilePart wanted = near_.Read(path, offset, size);
      const ctl::FilePart part = far_->Read(path, offset, size);
      EXPECT_EQ(wanted.bytes, part.bytes) << size << " from " << offset;
      EXPECT_TRUE(wanted.facts == part.facts);
    }
  }
  ASSERT_EQ(0, mkfifo(kPipe, 0777));
  EXPECT_EQ(ctl::FileKind::kPipe, far_->Read(kPipe, 0, 10).facts.kind) << "without waiting for a writer";
  EXPECT_EQ(ctl::FileKind::kMissing, far_->Read(PlayerTest::Path("missing"), 0, 10).facts.kind);
}

TEST_P(FarHost, FindsReadersTheirFilesAndLocks) {
  const PlayerProcess &player = StartPlayer();
  const ctl::FileFacts pipe = near_.Look(kPipe);
  const int writer = open(kPipe, O_WRONLY | O_CLOEXEC);
  const ctl::Readers readers = far_->FindReaders(pipe);
  ASSERT_EQ(1u, readers.processes.size()) << "who has it open for writing is no reader";
  EXPECT_TRUE(near_.FindReaders(pipe).processes == readers.processes);
  EXPECT_TRUE(far_->IsReader(player.Pid(), pipe));
  EXPECT_FALSE(far_->IsReader(getpid(), pipe));
  const auto path = [](const ctl::OpenFile &file) { return file.path; };
  const auto nearFiles = near_.OpenFiles(player.Pid());
  const auto farFiles = far_->OpenFiles(player.Pid());
  for (const std::string &wanted : {std::string(kPipe), std::string(kLogFile)}) {
    const auto isWanted = [&](const ctl::OpenFile &file) { return path(file) == wanted; };
    const auto nearFile = std::find_if(nearFiles.begin(), nearFiles.end(), isWanted);
    const auto farFile = std::find_if(farFiles.begin(), farFiles.end(), isWanted);
    ASSERT_TRUE(nearFile != nearFiles.end() && farFile != farFiles.end()) << wanted;
    EXPECT_TRUE(nearFile->facts.IsSameFile(farFile->facts));
  }
  EXPECT_TRUE(WaitFor([&] { return flock(writer, LOCK_EX | LOCK_NB) == 0; }));
  EXPECT_THAT(far_->LockHolders(pipe), testing::Contains(getpid()));
  close(writer);
}

TEST_P(FarHost, WritesToThePipeAllAtOnceOrNothing) {
  const std::string bytes = "it's $HOME `x` \\n\nkestctl.end\n" + std::string(4000, 'x') + "\n";
  EXPECT_EQ(WriteResult::kMissing, far_->WriteToPipe(kPipe, bytes));
  EXPECT_FALSE(fs::exists(kPipe));
  WriteFile(kPipe, "");
  EXPECT_EQ(WriteResult::kNotPipe, far_->WriteToPipe(kPipe, bytes));
  fs::remove(kPipe);
  ASSERT_EQ(0, mkfifo(kPipe, 0777));
  EXPECT_EQ(WriteResult::kNoReader, far_->WriteToPipe(kPipe, bytes));
  const int reader = open(kPipe, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  EXPECT_EQ(WriteResult::kWritten, far_->WriteToPipe(kPipe, ""));
  EXPECT_EQ(WriteResult::kWritten, far_->WriteToPipe(kPipe, bytes));
  EXPECT_EQ(bytes.size(), near_.UnreadBytes(kPipe));
  fcntl(reader, F_SETPIPE_SZ, 4096);
  EXPECT_EQ(WriteResult::kFull, far_->WriteToPipe(kPipe, bytes));
  std::string read(2 * bytes.size(), '\0');
  read.resize(static_cast<size_t>(::read(reader, read.data(), read.size())));
  EXPECT_EQ(bytes, read) << "what did not fit is not written later";
  close(reader);
}

// kestctl where the debug directory is empty, and the player where the test runs.
class FarSideOfKestctl : public CtlTest {
 protected:
  void SetUp() override {
    if (!MayMount()) GTEST_SKIP() << "needs a mount namespace";
    reach_ = "nsenter --mount=/proc/" + std::to_string(getpid()) + "/ns/mnt " + FarSide(kGnu);
    via_ = reach_ + " sh -c";
  }

  // before: a program that runs kestctl.
  [[nodiscard]] CtlResult FarCtl(const std::string &arguments, const std::string &before = "") const {
    return Ctl("--via " + ctl::Quote(via_) + " " + arguments, elsewhere_ + " " + before);
  }
  [[nodiscard]] nlohmann::json FarData(const std::string &arguments) const {
    return nlohmann::json::parse(FarCtl("--json " + arguments).out)["data"];
  }

  const std::string elsewhere_ =
      "unshare --mount sh -c 'mount -t tmpfs none " KEST_DEBUG_DIR " && exec \"$@\"' -";
  std::string reach_;
  std::string via_;
};

TEST_F(FarSideOfKestctl, EveryCommandWorksThere) {
  const PlayerProcess &player = StartPlayer();
  EXPECT_EQ(3, Ctl("level", elsewhere_).exitCode) << "nothing is here";
  EXPECT_THAT(FarCtl("ps").out, HasSubstr(std::to_string(player.Pid())));
  EXPECT_THAT(FarCtl("ls").out, HasSubstr("Decoder_13"));
  EXPECT_EQ("Gain of Decoder_13/Volume is set to -6\n", FarCtl("set Dec/Vol Gain -6").out);
  EXPECT_THAT(FarCtl("status Dec/Vol").out, HasSubstr("Gain -6"));
  EXPECT_EQ(1, FarCtl("cmd Dec/Vol mute=maybe").exitCode);
  EXPECT_EQ(0, FarCtl("cmd Dec/Vol state").exitCode);
  EXPECT_EQ("err\n", FarCtl("level err").out);
  EXPECT_EQ(Ctl("level").out, FarCtl("level").out);
  EXPECT_EQ(Ctl("log -n 5").out, FarCtl("log -n 5").out);
  EXPECT_EQ(0, FarCtl("doctor").exitCode) << FarCtl("doctor").out;
}

TEST_F(FarSideOfKestctl, EveryInstrumentWorksThere) {
  WriteNoise(Path("noise.wav"), 2, kWav32, 30000);
  PlayerProcess &player =
      StartPlayer({"--delay-ms", "20"},
                  "export LD_PRELOAD=" KEST_SOFTWARE_COUNTERS " ASAN_OPTIONS=verify_asan_link_order=0",
                  Path("noise.wav"));
  EXPECT_EQ(960, FarData("latency Mixer SpeakerOutput/Delay --yes")["runs"][0]["samples"]);
  const auto dump = FarData("dump SpeakerOutput/SpeakerOutput --in --seconds 0.25 --channels 2 -o " +
                            Path("dump"))["files"];
  ASSERT_EQ(2u, dump.size()) << dump;
  EXPECT_THAT(FarCtl("--json top -n 1").out, HasSubstr(R"("name":"Volume","mark":"ran")"));
  EXPECT_LE(50, FarData("perf Dec/Vol --seconds 1")["rows"][0]["cycles"]);
  EXPECT_EQ(2u, FarData("trace Dec Speaker --seconds 0.5 -o " + Path("trace.json"))["pipelines"].size());
  EXPECT_EQ("", TraceComplaint(nlohmann::json::parse(ReadFile(Path("trace.json")))));
  EXPECT_EQ(1u,
            FarData("trace --convert " KEST_DEBUG_DIR "Decoder_13.txt -o " + Path("again.json"))["pipelines"]
                .size());
  EXPECT_EQ(0, FarCtl("watch --seconds 0.2").exitCode);
  EXPECT_EQ(true, FarData("metrics")["up"]);
  EXPECT_EQ(CtlJson("report -o " + Path("near.tar.gz"))["data"]["files"].size(),
            FarData("report -o " + Path("far.tar.gz"))["files"].size());
  EXPECT_EQ(Ctl("get Dec/Vol").out, FarCtl("get Dec/Vol").out);
  for (const char *left : {"Dump", "Out"})
    EXPECT_TRUE(FilesOf(left).empty() && IsQuiet(left)) << left;
  player.Signal(SIGTERM);
  EXPECT_EQ(0, player.Wait().exitCode);
  const Samples dumped = ReadAudio(dump[0]["path"]).samples;
  const Samples played = ReadAudio(Path("out0.wav")).samples;
  EXPECT_EQ(24000u, dumped.size());
  EXPECT_NE(played.end(), std::search(played.begin(), played.end(), dumped.begin(), dumped.end()));
}

TEST_F(FarSideOfKestctl, AnInterruptLeavesNothingSwitchedOnThere) {
  StartPlayer();
  for (const std::string &words :
       {"dump Mixer --seconds 60 -o " + Path("dump"), std::string("latency Mixer Delay --repeat 99 --yes"),
        "trace Dec --seconds 60 -o " + Path("trace.json"), std::string("perf Dec --seconds 60"),
        std::string("watch")}) {
    EXPECT_EQ(130, FarCtl(words, "timeout --preserve-status --signal=INT 0.7").exitCode) << words;
    EXPECT_TRUE(FilesOf("Dump").empty() && FilesOf("Out").empty()) << words;
    EXPECT_TRUE(IsQuiet("Decoder_13.txt") && IsQuiet("Dump") && IsQuiet("Out")) << words;
    EXPECT_EQ("none\n", Ctl("level").out) << words;
  }
}

TEST_F(FarSideOfKestctl, AConnectionThatBreaksIsMadeAgainToSwitchOffOrItIsSaid) {
  StartPlayer();
  const std::string pid = Path("pid");
  via_ = "sh " + Path("connect") + ";:";
  for (const bool comesBack : {true, false}) {
    fs::remove(pid);
    WriteFile(Path("connect"), (comesBack ? "" : "[ ! -e " + pid + " ] || exit 1\n") + "echo $$ >" + pid +
                                   "\nexec " + reach_ + " sh");
    CtlResult dump = {};
    std::thread dumping([&] { dump = FarCtl("dump Mixer --seconds 20 -o " + Path("dump")); });
    EXPECT_TRUE(WaitFor([] { return !FilesOf("Dump").empty(); }));
    kill(std::stoi(ReadFile(pid)), SIGKILL);
    dumping.join();
    EXPECT_EQ(3, dump.exitCode) << dump.err;
    EXPECT_EQ(comesBack,
              dump.err.find("not switched off, send kest_dump_io=off yourself") == std::string::npos)
        << dump.err;
    EXPECT_EQ(comesBack, FilesOf("Dump").empty() && IsQuiet("Dump"));
  }
}

TEST_F(FarSideOfKestctl, SilenceIsExplainedFromThere) {
  PlayerProcess &player = StartPlayer();
  player.Signal(SIGSTOP);
  const CtlResult level = FarCtl("--timeout 300 level");
  EXPECT_EQ(4, level.exitCode);
  EXPECT_THAT(level.err, HasSubstr("is stopped"));
  player.Signal(SIGCONT);
  EXPECT_TRUE(WaitFor([&] { return FarCtl("level").exitCode == 0; }));
}

TEST_F(FarSideOfKestctl, AnInterruptAtAnyMomentLeavesTheLevel) {
  StartPlayer();
  for (int ms = 1; ms < 400; ms += 19) {
    for (const char *signal : {"INT", "KILL"}) {
      static_cast<void>(FarCtl("set Dec/Lpcm MdVol 1", std::string("timeout -s ") + signal + " 0." +
                                                           std::to_string(1000 + ms).substr(1)));
    }
  }
  const auto level = CtlJson("level")["data"];
  EXPECT_EQ("none", level["level"]);
  EXPECT_EQ("none", level["shared_level"]);
}

TEST_F(FarSideOfKestctl, ALostAnswerIsSaidToBeLost) {
  StartPlayer();
  std::atomic<bool> done{false};
  std::thread restarts([&] {
    while (!done) {
      WriteToPipe("kest_log_restart\n");
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  });
  for (int i = 0; i < 10; ++i)
    EXPECT_THAT(FarCtl("--timeout 20000 send kest_print_current_shm").exitCode, testing::AnyOf(0, 7));
  done = true;
  restarts.join();
}

TEST_F(CtlTest, ACommandThatGivesNoUsableShellIsUnreachable) {
  const struct {
    const char *via;
    const char *message;
  } kCases[] = {{"false", "gives no shell"},
                {"no-such-program", "gives no shell"},
                {"script -qec sh /dev/null;:", "changes line ends"},
                {"echo nothing;:", "gives no shell"},
                {"env PATH=/nowhere /bin/sh -s;:", "there is no program dd"}};
  for (const auto &example : kCases) {
    const CtlResult level = Ctl("--via '" + std::string(example.via) + "' level");
    EXPECT_EQ(3, level.exitCode) << example.via;
    EXPECT_THAT(level.err, HasSubstr(example.message));
  }
}

}  // namespace
}  // namespace kest::test
