// SPDX-License-Identifier: Apache-2.0
// The debug layer of this process, up for the length of a test, on an empty debug directory.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace kest::test {

constexpr const char *kLogFile = KEST_DEBUG_DIR "KestLog.txt";
constexpr const char *kPipe = KEST_DEBUG_DIR "D";

class DebugLayer {
 public:
  DebugLayer();
  ~DebugLayer();
  DebugLayer(const DebugLayer &) = delete;
  DebugLayer &operator=(const DebugLayer &) = delete;
};

// Removes what earlier tests of this process left in the debug directory.
void EmptyDebugDirectory();

// ze_kest_Debug_DeInit, with lines written to the pipe until it returns.
uint32_t ShutDown();

// Writes bytes to the command pipe: if its reader is there; once it is there.
bool TryWriteToPipe(const std::string &bytes);
void WriteToPipe(const std::string &bytes);

// Gives a line that must be carried out to the dispatcher.
void Command(const std::string &line);

// Waits until the condition holds; false when it does not within a generous time.
bool WaitFor(const std::function<bool()> &condition);

// Runs the function in as many threads at once, with their numbers from 0 on.
void InThreads(int s32Count, const std::function<void(int)> &function);

// The threads of this process that bear the name.
int ThreadsNamed(const std::string &name);

// The descriptors that this process has open.
std::ptrdiff_t OpenDescriptors();

std::string ReadFile(const std::string &path);
// The lines of a text, or what it has between other marks.
std::vector<std::string> LinesOf(const std::string &text, char cEnd = '\n');
void WriteFile(const std::string &path, const std::string &contents);

// Whether the test has a mount namespace of its own.
bool MayMount();

// Runs the function in a process of its own; gives its exit status, 0 when every expectation held.
int InAnotherProcess(const std::function<void()> &function);

}  // namespace kest::test
