// SPDX-License-Identifier: Apache-2.0
#include "ctl/commands/report_sound.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "ctl/commands/commands.h"
#include "ctl/render/output_file.h"

namespace kest::ctl {
namespace {

namespace fs = std::filesystem;

constexpr const char *kSeconds = "1";

// Only its owner may read it. Gone with all that is in it at the end.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::error_code error;
    path_ = (fs::temp_directory_path(error) / "kestctl.XXXXXX").string();
    if (error) throw CannotWrite("the directory for temporary files", error.message());
    if (mkdtemp(path_.data()) == nullptr) throw CannotWrite(path_, std::strerror(errno));
  }
  ~TemporaryDirectory() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  TemporaryDirectory(const TemporaryDirectory &) = delete;
  TemporaryDirectory &operator=(const TemporaryDirectory &) = delete;

  [[nodiscard]] const std::string &Path() const { return path_; }

 private:
  std::string path_;
};

std::string BytesOf(const fs::path &path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void DumpInto(Context &context, const std::string &filter, const std::string &directory) {
  Arguments arguments;
  arguments.words = {filter};
  arguments.options = {{"seconds", kSeconds}, {"output", directory}};
  const Result result = RunDump(context, arguments);
  if (result.exit == ExitCode::kDone) return;
  // That nothing has passed does not mean that the process is silent.
  const bool isInterrupted = result.exit == ExitCode::kInterrupted;
  throw CtlError(isInterrupted ? ExitCode::kInterrupted : ExitCode::kLost, result.message, result.hint);
}

}  // namespace

std::vector<SoundFile> RecordSound(Context &context, const std::string &filter) {
  const TemporaryDirectory directory;
  DumpInto(context, filter, directory.Path());
  std::vector<SoundFile> files;
  for (const fs::directory_entry &entry : fs::directory_iterator(directory.Path()))
    files.push_back({entry.path().filename().string(), BytesOf(entry.path())});
  return files;
}

}  // namespace kest::ctl
