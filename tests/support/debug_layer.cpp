// SPDX-License-Identifier: Apache-2.0
#include "tests/support/debug_layer.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ze_kest/debug.h"

namespace kest::test {

DebugLayer::DebugLayer() {
  EmptyDebugDirectory();
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_Init());
  WriteToPipe("");  // the command thread reads it: from here on it says and does nothing by itself
}

DebugLayer::~DebugLayer() {
  EXPECT_EQ(ZE_KEST_OK, ShutDown());
}

void EmptyDebugDirectory() {
  std::filesystem::create_directories(KEST_DEBUG_DIR);
  for (const auto &entry : std::filesystem::directory_iterator(KEST_DEBUG_DIR))
    std::filesystem::remove_all(entry.path());
}

uint32_t ShutDown() {
  std::atomic<bool> bDone{false};
  std::thread poke([&bDone] {
    for (; !bDone; std::this_thread::sleep_for(std::chrono::milliseconds(2)))
      TryWriteToPipe("\n");
  });
  const uint32_t u32Result = ze_kest_Debug_DeInit();
  bDone = true;
  poke.join();
  return u32Result;
}

bool TryWriteToPipe(const std::string &bytes) {
  const int s32Fd = open(kPipe, O_WRONLY | O_NONBLOCK);
  if (s32Fd < 0) return false;
  const ssize_t s32Written = write(s32Fd, bytes.data(), bytes.size());
  close(s32Fd);
  return s32Written == static_cast<ssize_t>(bytes.size());
}

void WriteToPipe(const std::string &bytes) {
  EXPECT_TRUE(WaitFor([&bytes] { return TryWriteToPipe(bytes); }));
}

void Command(const std::string &line) {
  EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_SetParameter(line.c_str())) << line;
}

bool WaitFor(const std::function<bool()> &condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

void InThreads(int s32Count, const std::function<void(int)> &function) {
  std::vector<std::thread> threads(static_cast<size_t>(s32Count));
  for (int i = 0; i < s32Count; ++i)
    threads[static_cast<size_t>(i)] = std::thread(function, i);
  for (std::thread &thread : threads)
    thread.join();
}

int ThreadsNamed(const std::string &name) {
  int s32Count = 0;
  for (const auto &task : std::filesystem::directory_iterator("/proc/self/task")) {
    if (ReadFile(task.path() / "comm") == name + "\n") ++s32Count;
  }
  return s32Count;
}

std::ptrdiff_t OpenDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

std::string ReadFile(const std::string &path) {
  std::ostringstream contents;  // fast enough for a file that others write to all the time
  contents << std::ifstream(path, std::ios::binary).rdbuf();
  return contents.str();
}

std::vector<std::string> LinesOf(const std::string &text, char cEnd) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line, cEnd);)
    lines.push_back(line);
  return lines;
}

void WriteFile(const std::string &path, const std::string &contents) {
  std::ofstream(path, std::ios::binary) << contents;
}

bool MayMount() {
  const char *pszNamespace = getenv("KEST_TEST_NAMESPACE");
  return pszNamespace != nullptr && std::string(pszNamespace) == "1";
}

int InAnotherProcess(const std::function<void()> &function) {
  const pid_t s32Pid = fork();
  if (s32Pid == 0) {
    function();
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int s32Status = -1;
  waitpid(s32Pid, &s32Status, 0);
  return s32Status;
}

}  // namespace kest::test
