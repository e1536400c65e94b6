// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/gnuplot.h"

#include <cerrno>
#include <cstring>

#include <fmt/format.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ctl/channel/interrupt.h"
#include "ctl/error.h"
#include "ctl/parse/lines.h"
#include "ctl/render/escape.h"
#include "programs/unique_fd.h"

namespace kest::ctl {
namespace {

constexpr std::string_view kPngSignature = "\x89PNG";

// A file without a name.
UniqueFd MakeFile(std::string_view contents) {
  UniqueFd file(memfd_create("kestctl", MFD_CLOEXEC));
  const auto size = static_cast<ssize_t>(contents.size());
  const bool isWritten = file.IsOpen() && write(file.Get(), contents.data(), contents.size()) == size;
  if (!isWritten || lseek(file.Get(), 0, SEEK_SET) != 0)
    throw CtlError(ExitCode::kUnreachable, fmt::format("no memory for a picture: {}", std::strerror(errno)));
  return file;
}

std::string Contents(const UniqueFd &file) {
  std::string contents;
  char piece[65536];
  lseek(file.Get(), 0, SEEK_SET);
  for (ssize_t size = 0; (size = read(file.Get(), piece, sizeof(piece))) > 0;)
    contents.append(piece, static_cast<size_t>(size));
  return contents;
}

pid_t Start(const UniqueFd &input, const UniqueFd &output, const UniqueFd &errors) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input.Get(), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output.Get(), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, errors.Get(), STDERR_FILENO);
  std::string name = "gnuplot";
  char *arguments[] = {name.data(), nullptr};
  pid_t pid = 0;
  const int error = posix_spawnp(&pid, name.c_str(), &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error == 0) return pid;
  throw CtlError(ExitCode::kUnreachable, fmt::format("gnuplot cannot be started: {}", std::strerror(error)),
                 "install it: apt-get install gnuplot-nox, or the package gnuplot of other systems");
}

int WaitFor(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

}  // namespace

std::string GnuplotText(std::string_view text) {
  std::string quoted = "'";
  for (const char character : Escape(text)) {
    if (character == '\'') quoted += '\'';
    quoted += character;
  }
  return quoted + "'";
}

std::string GnuplotStart(int height) {
  return fmt::format(
      "set terminal pngcairo size {},{} noenhanced font 'sans,11' background '#ffffff'\n"
      "set encoding utf8\n"
      "set grid back linecolor '#dddddd' linewidth 1\n"
      "set border 3 linecolor '#555555'\n"
      "set tics nomirror out\n"
      "set key top right opaque noautotitle\n",
      kPictureWidth, height);
}

std::string Draw(const std::string &script) {
  const UniqueFd input = MakeFile(script);
  const UniqueFd output = MakeFile({});
  const UniqueFd errors = MakeFile({});
  const int status = WaitFor(Start(input, output, errors));
  ThrowIfInterrupted();  // Ctrl-C on a terminal ends gnuplot too
  std::string picture = Contents(output);
  if (status == 0 && BeginsWith(picture, kPngSignature)) return picture;
  const std::vector<std::string> complaints = SplitLines(Trim(Contents(errors)));
  throw CtlError(
      ExitCode::kLost,
      fmt::format("gnuplot drew nothing: {}", complaints.empty() ? "it gave no reason" : complaints.back()),
      "its terminal pngcairo is needed: the packages gnuplot-nox and gnuplot-qt have it");
}

}  // namespace kest::ctl
