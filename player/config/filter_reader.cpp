// SPDX-License-Identifier: Apache-2.0
#include "player/config/filter_reader.h"

#include <algorithm>
#include <variant>

#include "player/audio/sound_card.h"
#include "player/config/text_list.h"

namespace kest::player {
namespace {

const FilterKind &KindOf(const JsonValue &value, const FilterKinds &kinds) {
  const FilterKind *kind = FindKind(kinds, value.Name());
  if (kind == nullptr) {
    value.Fail("unknown filter; known: " + ListNames(kinds, [](const auto *known) { return known->name; }));
  }
  return *kind;
}

const Setting &FindSetting(const JsonValue &value, const Table<Setting> &settings) {
  const auto *setting = std::find_if(settings.begin(), settings.end(),
                                     [&](const auto &row) { return row.key == value.Name(); });
  if (setting == settings.end()) {
    const std::string known = ListNames(settings, [](const auto &row) { return row.key; });
    value.Fail("unknown setting; known: " + (known.empty() ? "none" : known));
  }
  return *setting;
}

// Reads a setting's value in the way that its range asks for.
class ReadValue {
 public:
  ReadValue(const JsonValue &value, const std::filesystem::path &directory)
      : value_(value), directory_(directory) {}

  std::variant<int, std::string> operator()(const FileNameRange &) const {
    const std::string name = value_.FileName();
    return SoundCardIn(name) ? name : (directory_ / name).string();
  }
  std::variant<int, std::string> operator()(const TextRange &range) const {
    return value_.Text(range.needed);
  }
  std::variant<int, std::string> operator()(const WholeNumberRange &range) const {
    return value_.WholeNumber(range.min, range.max);
  }

 private:
  const JsonValue &value_;
  const std::filesystem::path &directory_;
};

// What a setting's value has to be.
struct Needed {
  std::string operator()(const FileNameRange &) const { return "the name of a file"; }
  std::string operator()(const TextRange &range) const { return range.needed; }
  std::string operator()(const WholeNumberRange &range) const {
    return "a whole number from " + std::to_string(range.min) + " to " + std::to_string(range.max);
  }
};

void CheckIsComplete(const JsonValue &value, const FilterLayout &filter) {
  for (const Setting &setting : filter.kind->settings) {
    if (setting.isMandatory && filter.settings.count(setting.key) == 0) {
      value.Fail("\"" + std::string(setting.key) + "\" is missing; " + std::visit(Needed{}, setting.range) +
                 " is needed");
    }
  }
}

}  // namespace

FilterLayout ReadFilter(const JsonValue &value, const FilterKinds &kinds,
                        const std::filesystem::path &directory) {
  FilterLayout filter{&KindOf(value, kinds)};
  for (const JsonValue &member : value.Members()) {
    const Setting &setting = FindSetting(member, filter.kind->settings);
    filter.settings[setting.key] = std::visit(ReadValue(member, directory), setting.range);
  }
  CheckIsComplete(value, filter);
  return filter;
}

}  // namespace kest::player
