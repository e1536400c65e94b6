// SPDX-License-Identifier: Apache-2.0
#include "ctl/channel/proc.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace kest::ctl {
namespace {

struct DirectoryCloser {
  void operator()(DIR *directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, DirectoryCloser>;

// The entries of a directory whose names are numbers.
std::vector<int> Numbers(DIR *directory) {
  std::vector<int> numbers;
  while (const dirent *entry = readdir(directory)) {
    if (std::isdigit(static_cast<unsigned char>(entry->d_name[0])) != 0) {
      numbers.push_back(std::atoi(entry->d_name));
    }
  }
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

std::vector<int> NumbersIn(const std::string &path) {
  const Directory directory(opendir(path.c_str()));
  return directory == nullptr ? std::vector<int>{} : Numbers(directory.get());
}

std::string FirstLine(const std::string &path) {
  const std::string text = ReadSmallFile(path);
  return text.substr(0, text.find('\n'));
}

// The fields of /proc/PID/stat behind the name, which may hold blanks and parentheses.
std::vector<std::string> StatFields(const std::string &text) {
  const size_t nameEnd = text.rfind(')');
  if (nameEnd == std::string::npos) return {};
  std::istringstream rest(text.substr(nameEnd + 1));
  std::vector<std::string> fields;
  for (std::string field; rest >> field;)
    fields.push_back(field);
  return fields;
}

time_t BootTime(const std::string &systemStat) {
  std::istringstream stat(systemStat);
  for (std::string word; stat >> word;) {
    time_t seconds = 0;
    if (word == "btime" && stat >> seconds) return seconds;
  }
  return 0;
}

std::string LocalTime(time_t seconds) {
  struct tm local {};
  localtime_r(&seconds, &local);
  char text[32];
  const size_t length = std::strftime(text, sizeof(text), "%F %T", &local);
  return {text, length};
}

std::string StartTime(const std::vector<std::string> &fields, const std::string &systemStat) {
  constexpr size_t kStartTicks = 19;
  if (fields.size() <= kStartTicks) return {};
  const auto ticks = std::strtoull(fields[kStartTicks].c_str(), nullptr, 10);
  return LocalTime(BootTime(systemStat) +
                   static_cast<time_t>(ticks / static_cast<uint64_t>(sysconf(_SC_CLK_TCK))));
}

int FindCommandThread(const Process &process) {
  for (const int tid : process.threads) {
    if (FirstLine(fmt::format("/proc/{}/task/{}/comm", process.pid, tid)) == kCommandThreadName) return tid;
  }
  return 0;
}

}  // namespace

std::string ReadSmallFile(const std::string &path) {
  const std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

bool IsForReading(const std::string &fdInfo) {
  const size_t flags = fdInfo.find("flags:");
  if (flags == std::string::npos) return false;
  return (std::strtoul(fdInfo.c_str() + flags + 6, nullptr, 8) & O_ACCMODE) != O_WRONLY;
}

void TakeStat(const std::string &processStat, const std::string &systemStat, Process &process) {
  const std::vector<std::string> fields = StatFields(processStat);
  if (!fields.empty()) process.state = fields[0][0];
  process.start = StartTime(fields, systemStat);
}

// "1: FLOCK  ADVISORY  WRITE 26305 00:2f:3 0 EOF"; a waiter has "->" after the number.
std::vector<int> LockHoldersIn(const std::string &locks, const FileFacts &file) {
  const std::string wanted =
      fmt::format("{:02x}:{:02x}:{}", major(file.device), minor(file.device), file.inode);
  std::istringstream lines(locks);
  std::vector<int> holders;
  for (std::string line; std::getline(lines, line);) {
    std::istringstream fields(line);
    std::string number, kind, mode, access, inode;
    int pid = 0;
    if (fields >> number >> kind >> mode >> access >> pid >> inode && inode == wanted) holders.push_back(pid);
  }
  return holders;
}

FileKind KindOf(unsigned mode) {
  if (S_ISFIFO(mode)) return FileKind::kPipe;
  if (S_ISREG(mode)) return FileKind::kRegular;
  if (S_ISDIR(mode)) return FileKind::kDirectory;
  return FileKind::kOther;
}

std::vector<int> AllPids() {
  return NumbersIn("/proc");
}

Process DescribeProcess(int pid) {
  Process process;
  process.pid = pid;
  process.name = FirstLine(fmt::format("/proc/{}/comm", pid));
  std::error_code unreadable;
  process.exe = std::filesystem::read_symlink(fmt::format("/proc/{}/exe", pid), unreadable).string();
  TakeStat(ReadSmallFile(fmt::format("/proc/{}/stat", pid)), ReadSmallFile("/proc/stat"), process);
  process.threads = NumbersIn(fmt::format("/proc/{}/task", pid));
  process.commandThread = FindCommandThread(process);
  return process;
}

Reading HasOpenForReading(int pid, const FileFacts &file) {
  const Directory directory(opendir(fmt::format("/proc/{}/fd", pid).c_str()));
  if (directory == nullptr) return errno == EACCES ? Reading::kHidden : Reading::kNo;
  for (const int fd : Numbers(directory.get())) {
    struct stat facts = {};
    if (fstatat(dirfd(directory.get()), std::to_string(fd).c_str(), &facts, 0) != 0) continue;
    const bool isFile = facts.st_dev == file.device && facts.st_ino == file.inode;
    if (isFile && IsForReading(ReadSmallFile(fmt::format("/proc/{}/fdinfo/{}", pid, fd))))
      return Reading::kYes;
  }
  return Reading::kNo;
}

}  // namespace kest::ctl
