// SPDX-License-Identifier: Apache-2.0
#include "player/config/filter_reader.h"

#include <algorithm>
#include <variant>

#include "player/base/text_list.h"

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
    return (directory_ / value_.FileName()).string();
  }
  std::variant<int, std::string> operator()(const WholeNumberRange &range) const {
    return value_.WholeNumber(range.min, range.max);
  }

 private:
  const JsonValue &value_;
  const std::filesystem::path &directory_;
};

void CheckHasFiles(const JsonValue &value, const FilterLayout &filter) {
  for (const Setting &setting : filter.kind->settings) {
    if (std::holds_alternative<FileNameRange>(setting.range) && filter.settings.count(setting.key) == 0) {
      value.Fail("\"" + std::string(setting.key) + "\" is missing; the name of a file is needed");
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
  CheckHasFiles(value, filter);
  return filter;
}

}  // namespace kest::player
