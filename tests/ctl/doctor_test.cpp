// SPDX-License-Identifier: Apache-2.0
// Each reason of silence, made for real.
#include <csignal>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/ctl/ctl_test.h"
#include "tests/support/disk.h"

namespace kest::test {
namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;

constexpr const char *kSharedBlock = KEST_DEBUG_DIR "shm_global";

class Doctor : public CtlTest {
 protected:
  // The finding of one check.
  static nlohmann::json Find(const std::string &id, const std::string &before = "") {
    const nlohmann::json document = CtlJson("--timeout 300 doctor", before);
    for (const auto &check : document["data"]["checks"]) {
      if (check["id"] == id) return check;
    }
    return {};
  }
  static void ExpectBad(const std::string &id, const std::string &found, const std::string &before = "") {
    const nlohmann::json check = Find(id, before);
    ASSERT_TRUE(check.is_object()) << id;
    EXPECT_EQ("bad", check["status"]) << check;
    EXPECT_THAT(check["found"].get<std::string>(), HasSubstr(found));
    EXPECT_NE("", check["remedy"]);
    EXPECT_EQ(1, Ctl("--timeout 300 doctor", before).exitCode);
  }
  // What a command says that gets no answer.
  static void ExpectNoAnswer(int exitCode, const std::string &why) {
    const CtlResult level = Ctl("--timeout 300 level");
    EXPECT_EQ(exitCode, level.exitCode);
    EXPECT_THAT(level.err, HasSubstr(why));
  }
};

TEST_F(Doctor, FindsNothingWrongWithAPlayingPlayer) {
  StartPlayer();
  const CtlResult doctor = Ctl("doctor");
  EXPECT_EQ(0, doctor.exitCode) << doctor.out;
  EXPECT_EQ("note", Find("level")["status"]) << "the level at start hides refusals";
  Ctl("level err");
  EXPECT_EQ("good", Find("level")["status"]);
}

TEST_F(Doctor, SeesThatThereIsNoDirectory) {
  fs::remove_all(KEST_DEBUG_DIR);
  ExpectBad("directory", "there is no directory");
  ExpectNoAnswer(3, "there is no directory");
  fs::create_directories(KEST_DEBUG_DIR);
}

TEST_F(Doctor, SeesThatThereIsNoPipe) {
  ExpectBad("pipe", "there is no pipe");
  ExpectNoAnswer(3, "there is no pipe");
  EXPECT_FALSE(fs::exists(kPipe));
}

TEST_F(Doctor, SeesAFileInPlaceOfThePipe) {
  WriteFile(kPipe, "kest_log_level=all\n");
  ExpectBad("pipe", "is no pipe");
  ExpectNoAnswer(3, "is no pipe");
}

TEST_F(Doctor, SeesThatNobodyReads) {
  ASSERT_EQ(0, mkfifo(kPipe, 0777));
  ExpectBad("readers", "no process reads");
  ExpectNoAnswer(3, "no process reads");
}

TEST_F(Doctor, SeesAStoppedProcess) {
  PlayerProcess &player = StartPlayer();
  player.Signal(SIGSTOP);
  ExpectBad("running", "is stopped");
  ExpectNoAnswer(4, "is stopped");
  EXPECT_EQ("note", Find("unread")["status"]);
  player.Signal(SIGCONT);
  EXPECT_TRUE(WaitFor([] { return Ctl("level").exitCode == 0; }));
}

TEST_F(Doctor, SeesSeveralReaders) {
  StartPlayer();
  StartPlayer();
  ExpectBad("single_reader", "2 processes read the pipe");
}

TEST_F(Doctor, SeesALockOnThePipe) {
  StartPlayer();
  const int pipe = open(kPipe, O_WRONLY | O_NONBLOCK | O_CLOEXEC);
  ASSERT_TRUE(WaitFor([&] { return flock(pipe, LOCK_EX | LOCK_NB) == 0; }));
  ExpectBad("pipe_lock", "process " + std::to_string(getpid()) + " holds a lock");
  ExpectNoAnswer(4, "holds a lock");
  close(pipe);
}

TEST_F(Doctor, SeesThatThePipeOfAnotherMayNotBeUsed) {
  StartPlayer();
  fs::permissions(kPipe, fs::perms::none);
  // In a namespace of its own without rights, as another user.
  ExpectBad("permission", "may not be written", "unshare --user");
  EXPECT_EQ(3, Ctl("level", "unshare --user").exitCode);
  fs::permissions(kPipe, fs::perms::all);
  fs::permissions(kLogFile, fs::perms::none);
  ExpectBad("permission", "may not be read", "unshare --user");
}

TEST_F(Doctor, SeesThatFileLoggingIsOff) {
  StartPlayer();
  Ctl("--timeout 300 send kest_log_to_file=off");
  ExpectBad("file_logging", "does not log to");
  ExpectNoAnswer(4, "does not log to");
}

TEST_F(Doctor, SeesALogThatWasReplacedOrDeleted) {
  StartPlayer();
  fs::rename(kLogFile, std::string(kLogFile) + ".1");
  ExpectBad("log_file", "deleted");
  WriteFile(kLogFile, "");
  ExpectBad("log_file", "replaced");
  ExpectNoAnswer(4, "replaced");
  WriteToPipe("kest_log_restart\n");
  EXPECT_TRUE(WaitFor([] { return Ctl("--timeout 300 level").exitCode == 0; }));
}

TEST_F(Doctor, SeesAFullDisk) {
  if (!MayMount()) GTEST_SKIP() << "needs a mount namespace";
  const Disk disk(0, "size=256k");
  StartPlayer();
  Disk::Fill();
  ExpectBad("disk", "the disk is full");
  EXPECT_TRUE(WaitFor([] { return Ctl("--timeout 300 ls").exitCode == 4; })) << "once the last block is full";
  ExpectNoAnswer(4, "the disk is full");
  Disk::MakeRoom();
}

TEST_F(Doctor, SeesAThreadThatIsNotLogged) {
  StartPlayer();
  WriteToPipe("kest_debug_watch_tid=1\n");
  ExpectNoAnswer(4, "no answer came into the log");
  ExpectBad("answer", "no answer came into the log");
  WriteToPipe("kest_debug_watch_tid=0\n");
  EXPECT_TRUE(WaitFor([] { return Ctl("--timeout 300 level").exitCode == 0; }));
}

TEST_F(Doctor, SeesSettingsThatADeadProcessLeft) {
  PlayerProcess &player = StartPlayer();
  Ctl("level all");
  player.Signal(SIGKILL);
  player.Wait();
  ExpectBad("shared_block", "left behind");
}

TEST_F(Doctor, SeesASharedBlockThatWasRemoved) {
  StartPlayer();
  fs::remove(kSharedBlock);
  ExpectBad("shared_block", "removed or replaced");
}

}  // namespace
}  // namespace kest::test
