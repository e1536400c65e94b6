// SPDX-License-Identifier: Apache-2.0
#include "player/config/json_document.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <sys/stat.h>

#include "ze_kest/result.h"

#include "player/base/player_error.h"

namespace kest::player {
namespace {

// Reading a pipe could block the player where no signal ends the wait.
void CheckIsRegularFile(const std::string &path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    throw PlayerError("cannot read " + path + ": " + std::strerror(errno));
  }
  if (!S_ISREG(status.st_mode)) {
    throw PlayerError(path + " is not a regular file; give the name of a configuration file");
  }
}

}  // namespace

// After a failed fill there is nothing to release.
JsonDocument::Index::~Index() {
  if (record.pstTokenInfo != nullptr) ze_kest_Utility_Jsmn_Destroy(&record);
}

JsonDocument::JsonDocument(const std::string &path) : path_(path) {
  ReadFile();
  FillIndex();
}

JsonValue JsonDocument::Root() const {
  return {index_.record, index_.record.pstTokenInfo[0], "", path_};
}

void JsonDocument::ReadFile() {
  CheckIsRegularFile(path_);
  char *text = nullptr;
  size_t bytes = 0;
  errno = 0;
  if (ze_kest_Utility_FileToString(path_.c_str(), &text, &bytes) != ZE_KEST_OK) {
    throw PlayerError("cannot read " + path_ + ": " + (errno == 0 ? "it is empty" : std::strerror(errno)));
  }
  text_.reset(text);
  index_.record.pszStringData = text;
  index_.record.sztStringDataSize = bytes;
}

void JsonDocument::FillIndex() {
  ZE_KEST_Jsmn_s &index = index_.record;
  const uint32_t result = ze_kest_Utility_Jsmn_FillUpTokenInfo(&index);
  if (result != ZE_KEST_OK) {
    const auto line = 1 + std::count(text_.get(), text_.get() + index.pos, '\n');
    throw PlayerError(path_ + ": malformed or incomplete JSON in line " + std::to_string(line) +
                      " (the reader answered " + std::to_string(result) + ")");
  }
  // Nothing may follow the root value.
  const ZE_KEST_JsmnTokenInfo_s *tokens = index.pstTokenInfo;
  if (tokens[index.u32TotalTokenCounter - 1].start >= tokens[0].end) {
    throw PlayerError(path_ + ": there is more than one JSON value; one object is needed");
  }
}

}  // namespace kest::player
