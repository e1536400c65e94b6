// SPDX-License-Identifier: Apache-2.0
// A JSON file, indexed by the library's reader.
#pragma once

#include <memory>
#include <string>

#include "ze_kest/utility.h"

#include "player/config/json_value.h"

namespace kest::player {

class JsonDocument {
 public:
  // Throws PlayerError when the file cannot be read or is not one JSON text.
  explicit JsonDocument(const std::string &path);

  // Valid as long as the document.
  [[nodiscard]] JsonValue Root() const;

 private:
  struct Free {
    void operator()(void *text) const { ze_kest_Utility_MemoryFree(&text); }
  };

  class Index {
   public:
    Index() { ze_kest_Utility_Jsmn_Create(&record); }
    ~Index();
    Index(const Index &) = delete;
    Index &operator=(const Index &) = delete;

    ZE_KEST_Jsmn_s record;
  };

  void ReadFile();
  void FillIndex();

  std::string path_;
  std::unique_ptr<char, Free> text_;
  Index index_;
};

}  // namespace kest::player
