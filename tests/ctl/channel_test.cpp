// SPDX-License-Identifier: Apache-2.0
// Many answers, beside others who ask and while the log restarts: each is right, or is said to be lost.
#include "ctl/channel/channel.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <thread>

#include <unistd.h>

#include "ctl/channel/local_host.h"
#include "ctl/model/level.h"
#include "ctl/parse/listing.h"
#include "tests/ctl/ctl_test.h"

namespace kest::test {
namespace {

namespace fs = std::filesystem;

using ctl::CtlError;
using ctl::ExitCode;

// A few hundred unless the environment says more.
int Commands() {
  const char *count = std::getenv("KEST_CTL_SOAK");
  return count == nullptr ? 300 : std::atoi(count);
}

class Channel : public CtlTest {
 protected:
  static ctl::ChannelSettings Settings() {
    ctl::ChannelSettings settings;
    settings.directory = KEST_DEBUG_DIR;
    settings.timeout = std::chrono::seconds(20);
    return settings;
  }

  ctl::LocalHost host_;
};

// Runs the function again and again beside the test.
class Beside {
 public:
  explicit Beside(std::function<void()> function)
      : thread_([this, function = std::move(function)] {
          while (!done_)
            function();
        }) {}
  ~Beside() {
    done_ = true;
    thread_.join();
  }

 private:
  std::atomic<bool> done_{false};
  std::thread thread_;
};

struct Tally {
  int right = 0;
  int lost = 0;
  std::vector<double> ms;

  [[nodiscard]] double Median() {
    std::nth_element(ms.begin(), ms.begin() + static_cast<ptrdiff_t>(ms.size() / 2), ms.end());
    return ms[ms.size() / 2];
  }
  void Print(const char *name) {
    std::cout << name << ": " << right << " right, " << lost << " lost, median " << Median()
              << " ms, longest " << *std::max_element(ms.begin(), ms.end()) << " ms\n";
  }
};

// A number that only this command's answer holds. Lines of the audio threads may come between.
ctl::Reply AskForNumber(ctl::Channel &channel, int number) {
  const std::string text = std::to_string(1'000'000 + number);
  ctl::Reply reply = channel.Send({"kest_monitor_sleep_time=" + text});
  EXPECT_THAT(reply.lines, testing::Contains("sleep time:" + text + " ms"));
  return reply;
}

ctl::Reply AskForList(ctl::Channel &channel) {
  ctl::Reply reply = channel.Send({"kest_debug_list=print"});
  const ctl::ParsedListing parsed = ctl::ParseListing(reply.lines);
  EXPECT_TRUE(parsed.isWhole);
  EXPECT_EQ(2u, parsed.listing.pipelines.size());
  return reply;
}

Tally AskManyTimes(ctl::Channel &channel) {
  Tally tally;
  for (int i = 0; i < Commands() && !testing::Test::HasFailure(); ++i) {
    try {
      const ctl::Reply reply = i % 4 == 0 ? AskForList(channel) : AskForNumber(channel, i);
      tally.ms.push_back(reply.elapsedMs);
      ++tally.right;
    } catch (const CtlError &error) {
      EXPECT_EQ(ExitCode::kLost, error.Code()) << error.what();
      ++tally.lost;
    }
  }
  return tally;
}

TEST_F(Channel, EveryAnswerComesBesideAnotherKestctl) {
  StartPlayer();
  ctl::Channel channel(host_, Settings());
  const Beside other([] { Ctl("ls"); });
  const Beside another([] { Ctl("set Dec/Vol Gain -3"); });
  Tally tally = AskManyTimes(channel);
  tally.Print("beside another kestctl");
  EXPECT_EQ(0, tally.lost);
}

TEST_F(Channel, EveryAnswerIsRightOrLostWhileTheLogRestarts) {
  StartPlayer();
  ctl::Channel channel(host_, Settings());
  Ctl("send kest_log_size=20000 kest_print_filter_info=on");
  const Beside restarts([] {
    WriteToPipe("kest_log_restart\n");
    usleep(5'000);
  });
  Tally tally = AskManyTimes(channel);
  tally.Print("while the log restarts");
  EXPECT_LT(0, tally.right);
}

TEST_F(Channel, ALogThatIsEmptyBeforeAndAfterTakesTheAnswerWithIt) {
  StartPlayer();
  ctl::ChannelSettings settings = Settings();
  settings.timeout = std::chrono::milliseconds(500);  // what each lost answer costs at most
  ctl::Channel channel(host_, settings);
  const Beside restarts([] {
    fs::resize_file(kLogFile, 0);
    usleep(1'000);
  });
  Tally tally = AskManyTimes(channel);
  tally.Print("while the log is emptied");
}

TEST_F(Channel, AnAnswerThatARestartMayHaveTakenIsLostAndNotMissing) {
  StartPlayer();
  ctl::ChannelSettings settings = Settings();
  settings.timeout = std::chrono::milliseconds(200);
  ctl::Channel channel(host_, settings);
  const auto codeOfSilence = [&] {
    try {
      channel.Send({"kest_print_current_shm"});
    } catch (const CtlError &error) {
      return error.Code();
    }
    return ExitCode::kDone;
  };
  WriteToPipe("kest_debug_watch_tid=1\n");
  EXPECT_TRUE(WaitFor([&] { return codeOfSilence() == ExitCode::kNoAnswer; }));
  const Beside restarts([] {
    WriteToPipe("kest_log_restart\n");
    usleep(5'000);
  });
  EXPECT_TRUE(WaitFor([] { return fs::file_size(kLogFile) == 0; }));
  EXPECT_EQ(ExitCode::kLost, codeOfSilence()) << "although the log is empty before and after";
}

TEST_F(Channel, AnInterruptAtAnyMomentLeavesTheLevel) {
  StartPlayer();
  for (int us = 0; us < 6000; us += std::max(1, 60'000 / Commands())) {
    const std::string seconds = std::to_string(0.000001 * us + 0.000001);
    for (const char *signal : {"INT", "KILL"})
      Ctl("set Dec/Lpcm MdVol 1", std::string("timeout -s ") + signal + " " + seconds);
  }
  ctl::Channel channel(host_, Settings());
  EXPECT_EQ(1u, channel.AskSettings().level);
  EXPECT_EQ(1u, channel.AskSettings().sharedLevel);
}

TEST_F(Channel, GoesOnWithAProcessThatStartedAgain) {
  ctl::Channel channel(host_, Settings());
  for (int i = 0; i < 3; ++i) {
    PlayerProcess &player = StartPlayer();
    EXPECT_EQ(player.Pid(), channel.TheProcess().pid);
    EXPECT_EQ(1u, channel.AskSettings().level);
    player.Signal(SIGTERM);
    player.Wait();
    players_.clear();
    EXPECT_THROW(channel.AskSettings(), CtlError);
  }
}

}  // namespace
}  // namespace kest::test
