// SPDX-License-Identifier: Apache-2.0
#include "ctl/channel/remote_host.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <map>
#include <sstream>

#include <fmt/format.h>
#include <sys/stat.h>

#include "ctl/channel/proc.h"
#include "ctl/parse/lines.h"

namespace kest::ctl {
namespace {

// Mode, device, inode, size, user id, user and time of modification: GNU's stat and toybox's know all of
// them. The time has a different number of words in each.
constexpr const char *kFacts = "%f %d %i %s %u %U %y";
constexpr uint64_t kBlockBytes = 4096;
constexpr std::chrono::milliseconds kWritePatience{1000};
constexpr std::chrono::milliseconds kLongestEnd{10'000};

FileFacts ParseFacts(std::istream &fields) {
  FileFacts facts;
  unsigned mode = 0;
  std::string user;
  fields >> std::hex >> mode >> std::dec >> facts.device >> facts.inode >> facts.size >> user >> facts.owner;
  if (!fields) return {};
  std::getline(fields, facts.modified);
  facts.kind = KindOf(mode);
  facts.mode = mode & 07777u;
  if (facts.owner == "UNKNOWN") facts.owner = "user " + user;
  return facts;
}

FileFacts ParseFacts(const std::string &line) {
  std::istringstream fields(line);
  return ParseFacts(fields);
}

FileFacts NoFacts(const std::string &error) {
  FileFacts facts;
  facts.kind = Contains(error, "ermission denied") ? FileKind::kDenied : FileKind::kMissing;
  return facts;
}

int NumberBehind(const std::string &text, size_t position) {
  return std::atoi(text.c_str() + std::min(position, text.size()));
}

// "PATH -> 'TARGET'"; the quotes, and whether there are any, differ.
std::string TargetOf(const std::string &line) {
  constexpr std::string_view kArrow = " -> ";
  const size_t arrow = line.find(kArrow);
  if (arrow == std::string::npos) return {};
  std::string target = line.substr(arrow + kArrow.size());
  const bool isQuoted = target.size() >= 2 && Contains("'\"`", target.substr(0, 1));
  return isQuoted ? target.substr(1, target.size() - 2) : target;
}

// A word that the text does not hold.
std::string EndWordFor(const std::string &text) {
  std::string word = "kestctl.end";
  while (Contains(text, word))
    word += '.';
  return word;
}

}  // namespace

FileFacts RemoteHost::Look(const std::string &path) {
  const auto output = shell_.Run(fmt::format("stat -c '{}' -- {} 2>&1", kFacts, Quote(path)));
  return output.status == 0 ? ParseFacts(output.bytes) : NoFacts(output.bytes);
}

// dd skips whole blocks only. What it reads too much is cut off here: to read byte by byte would be slow.
FilePart RemoteHost::Read(const std::string &path, uint64_t offset, size_t maxBytes) {
  const uint64_t skipped = offset / kBlockBytes;
  const uint64_t tooEarly = offset % kBlockBytes;
  const uint64_t blocks = maxBytes == 0 ? 0 : (tooEarly + maxBytes + kBlockBytes - 1) / kBlockBytes;
  const std::string script = fmt::format(
      "f={0}\n"
      "if [ -f \"$f\" ] && [ -r \"$f\" ]; then\n"
      "{{ stat -L -c '{1}' /proc/self/fd/0 && dd bs={2} skip={3} count={4}; }} <\"$f\"\n"
      "else echo unread; stat -L -c '{1}' -- \"$f\" 2>&1; fi",
      Quote(path), kFacts, kBlockBytes, skipped, blocks);
  const auto output = shell_.Run(script);
  const size_t lineEnd = std::min(output.bytes.find('\n'), output.bytes.size() - 1);
  if (BeginsWith(output.bytes, "unread")) {
    FileFacts facts = ParseFacts(output.bytes.substr(lineEnd + 1));
    if (facts.kind == FileKind::kMissing) facts = NoFacts(output.bytes);
    if (facts.kind == FileKind::kRegular) facts.kind = FileKind::kDenied;
    return {facts, {}};
  }
  FilePart part = {ParseFacts(output.bytes), {}};
  part.facts.owner.clear();
  const size_t begin = lineEnd + 1 + tooEarly;
  if (begin < output.bytes.size()) part.bytes = output.bytes.substr(begin, maxBytes);
  return part;
}

// A shell's open for writing waits for a reader, and its write for room. So the writer runs in the background
// and is ended when it takes too long. dd gathers all bytes for one write, which a pipe takes whole or not at
// all.
WriteResult RemoteHost::WriteToPipe(const std::string &path, const std::string &bytes) {
  const FileFacts facts = Look(path);
  if (facts.kind == FileKind::kMissing) return WriteResult::kMissing;
  if (facts.kind == FileKind::kDenied) return WriteResult::kDenied;
  if (facts.kind != FileKind::kPipe) return WriteResult::kNotPipe;
  const std::string script = fmt::format(
      "p={0}\n"
      "[ -w \"$p\" ] || {{ echo denied; false; }} && [ -p \"$p\" ] && {{\n"
      "{{ echo opened >&3; exec dd obs=4096; }} 3>&1 >\"$p\" <<'{2}' &\n"
      "{1}{2}\n"
      "echo pid $!; wait $!; }}",
      Quote(path), bytes, EndWordFor(bytes));
  shell_.Begin(script);
  return FinishWrite();
}

WriteResult RemoteHost::FinishWrite() {
  auto output = shell_.Finish(kWritePatience);
  if (!output) {
    const std::string partial = shell_.Partial();
    const size_t pid = partial.find("pid ");
    if (pid != std::string::npos)
      RemoteShell(shell_.Command()).Run(fmt::format("kill {}", NumberBehind(partial, pid + 4)));
    output = shell_.Finish(kLongestEnd);
  }
  if (!output) return WriteResult::kFull;
  if (output->status == 0) return WriteResult::kWritten;
  if (Contains(output->bytes, "denied")) return WriteResult::kDenied;
  return Contains(output->bytes, "opened") ? WriteResult::kFull : WriteResult::kNoReader;
}

std::optional<size_t> RemoteHost::UnreadBytes(const std::string & /*path*/) {
  return std::nullopt;
}

std::string RemoteHost::Cat(const std::string &path) {
  return shell_.Run("cat " + path).bytes;
}

std::vector<int> RemoteHost::ReadersAmong(const std::string &descriptors, const FileFacts &file) {
  const auto output = shell_.Run(fmt::format("stat -L -c '%d %i %n' {}", descriptors));
  const std::string wanted = fmt::format("{} {} /proc/", file.device, file.inode);
  std::vector<int> pids;
  for (const std::string &line : SplitLines(output.bytes)) {
    if (!BeginsWith(line, wanted)) continue;
    const int pid = NumberBehind(line, wanted.size());
    if (!pids.empty() && pids.back() == pid) continue;
    const std::string fd = line.substr(line.rfind('/') + 1);
    if (IsForReading(Cat(fmt::format("/proc/{}/fdinfo/{}", pid, fd)))) pids.push_back(pid);
  }
  std::sort(pids.begin(), pids.end());
  return pids;
}

Process RemoteHost::Describe(int pid) {
  Process process;
  process.pid = pid;
  const std::string name = Cat(fmt::format("/proc/{}/comm", pid));
  process.name = name.substr(0, name.find('\n'));
  TakeStat(Cat(fmt::format("/proc/{}/stat", pid)), Cat("/proc/stat"), process);
  const std::string exe = shell_.Run(fmt::format("stat -c %N /proc/{}/exe", pid)).bytes;
  process.exe = TargetOf(exe.substr(0, exe.find('\n')));
  const auto threads = shell_.Run(
      fmt::format("for t in /proc/{}/task/*; do read -r c <$t/comm; echo \"${{t##*/}} $c\"; done", pid));
  for (const std::string &line : SplitLines(threads.bytes)) {
    const int tid = std::atoi(line.c_str());
    process.threads.push_back(tid);
    if (line.substr(line.find(' ') + 1) == kCommandThreadName) process.commandThread = tid;
  }
  std::sort(process.threads.begin(), process.threads.end());
  return process;
}

Readers RemoteHost::FindReaders(const FileFacts &pipe) {
  Readers readers;
  for (const int pid : ReadersAmong("/proc/[0-9]*/fd/*", pipe))
    readers.processes.push_back(Describe(pid));
  const auto hidden =
      shell_.Run("n=0\nfor p in /proc/[0-9]*; do [ -r $p/fd ] || [ ! -d $p ] || n=$((n+1)); done\necho $n");
  readers.hidden = std::atoi(hidden.bytes.c_str());
  return readers;
}

bool RemoteHost::IsReader(int pid, const FileFacts &pipe) {
  return !ReadersAmong(fmt::format("/proc/{}/fd/*", pid), pipe).empty();
}

std::vector<OpenFile> RemoteHost::OpenFiles(int pid) {
  const auto output = shell_.Run(
      fmt::format("stat -c %N /proc/{0}/fd/*\nstat -L -c 'facts %n {1}' /proc/{0}/fd/*", pid, kFacts));
  std::map<std::string, std::string> targets;
  std::vector<OpenFile> files;
  for (const std::string &line : SplitLines(output.bytes)) {
    std::istringstream fields(line);
    std::string word;
    fields >> word;
    if (word != "facts") {
      word.erase(std::remove(word.begin(), word.end(), '\''), word.end());
      targets[word] = TargetOf(line);
    } else if (fields >> word) {
      files.push_back({ParseFacts(fields), targets[word]});
      files.back().facts.owner.clear();
    }
  }
  return files;
}

bool RemoteHost::Remove(const std::string &path) {
  return shell_.Run(fmt::format("rm -f -- {}", Quote(path))).status == 0;
}

int64_t RemoteHost::FreeBytes(const std::string &path) {
  std::istringstream fields(shell_.Run(fmt::format("stat -f -c '%a %S' -- {}", Quote(path))).bytes);
  int64_t blocks = 0;
  int64_t blockBytes = 0;
  return fields >> blocks >> blockBytes ? blocks * blockBytes : -1;
}

std::vector<int> RemoteHost::LockHolders(const FileFacts &file) {
  return LockHoldersIn(Cat("/proc/locks"), file);
}

std::shared_ptr<void> RemoteHost::LockOut(const std::string &path, std::chrono::milliseconds timeout) {
  const char *own = std::getenv("XDG_RUNTIME_DIR");
  const std::string directory = own == nullptr || *own == '\0' ? "/tmp" : own;
  const size_t place = std::hash<std::string>()(shell_.Command() + "\n" + path);
  return local_.LockOut(fmt::format("{}/kestctl-{:x}.lock", directory, place), timeout);
}

}  // namespace kest::ctl
