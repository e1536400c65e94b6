// SPDX-License-Identifier: Apache-2.0
#include "player/session/output_check.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string_view>

#include <sys/stat.h>

#include "player/audio/sound_card.h"
#include "player/base/player_error.h"

namespace kest::player {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kSharedMemoryPrefix = "shm_";
constexpr std::string_view kSuffixes[] = {".txt", ".pcm", ".meta"};  // log and traces, dumps

// Same device and inode: links of either kind do not matter.
bool IsSameFile(const std::string &a, const std::string &b) {
  struct stat statA {};
  struct stat statB {};
  return stat(a.c_str(), &statA) == 0 && stat(b.c_str(), &statB) == 0 && statA.st_dev == statB.st_dev &&
         statA.st_ino == statB.st_ino;
}

bool IsNameOfDebugLayer(const fs::path &path) {
  const std::string name = path.filename();
  return name == "D" || name.rfind(kSharedMemoryPrefix, 0) == 0 ||
         std::find(std::begin(kSuffixes), std::end(kSuffixes), path.extension().string()) !=
             std::end(kSuffixes);
}

bool IsOfDebugLayer(const std::string &output) {
  const fs::path directory = fs::absolute(output).parent_path();
  if (IsNameOfDebugLayer(output) && IsSameFile(directory, KEST_DEBUG_DIR)) return true;
  std::error_code missing;
  const fs::directory_iterator files(KEST_DEBUG_DIR, missing);
  return std::any_of(begin(files), end(files), [&](const fs::directory_entry &file) {
    return IsNameOfDebugLayer(file.path()) && IsSameFile(file.path(), output);
  });
}

}  // namespace

void CheckOutput(const std::string &output, const std::vector<AudioReader> &inputs,
                 const std::optional<std::string> &config) {
  if (SoundCardIn(output)) return;
  const auto refuseAs = [&](const char *what) {
    throw PlayerError("the output " + output + " is " + what + "; choose another output");
  };
  for (const AudioReader &input : inputs) {
    if (IsSameFile(input.Path(), output)) refuseAs("also an input");
  }
  if (config && IsSameFile(*config, output)) refuseAs("the configuration file");
  if (IsOfDebugLayer(output)) refuseAs("a file of the debug layer in " KEST_DEBUG_DIR);
}

}  // namespace kest::player
