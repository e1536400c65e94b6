// SPDX-License-Identifier: Apache-2.0
#include "player/config/filter_reader.h"

#include <algorithm>
#include <variant>

#include "player/base/text_list.h"
#include "player/modules/module_error.h"
#include "player/modules/module_kinds.h"
#include "player/modules/record_check.h"

namespace kest::player {
namespace {

constexpr const char *kModule = "module";
constexpr const char *kFilter = "filter";
constexpr const char *kConfig = "config";
constexpr const char *kParameters = "parameters";

const FilterKind &KindOf(const JsonValue &value, const FilterKinds &kinds) {
  const FilterKind *kind = FindKind(kinds, value.Name());
  if (kind == nullptr) {
    value.Fail("unknown filter; known: " + ListNames(kinds, [](const auto *known) { return known->name; }) +
               ", and those of a \"module\"");
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

  std::variant<int, std::string> operator()(const FileNameRange &range) const {
    const std::string name = value_.FileName();
    return range.isNoFile(name) ? name : (directory_ / name).string();
  }
  std::variant<int, std::string> operator()(const TextRange &range) const {
    return value_.NonEmptyText(range.needed);
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

void ReadParameters(const JsonValue &value, FilterLayout &filter) {
  for (const JsonValue &member : value.Members()) {
    filter.parameters.push_back({member.Name(), member.Number(), member.Place()});
  }
}

const FilterKind &LoadKindFor(const JsonValue &value, const FilterKinds &kinds, const std::string &module,
                              const std::string &name) {
  try {
    return LoadKind(kinds, module, name);
  } catch (const ModuleError &error) {
    value.Fail(error.what());
  }
}

// The value's name is that of the filter; the module tells which kind it is.
FilterLayout ReadModuleFilter(const JsonValue &value, const FilterKinds &kinds,
                              const std::filesystem::path &directory) {
  if (FindKind(kinds, value.Name()) != nullptr) value.Fail("is a built-in filter; choose another name");
  if (!IsName(value.Name().c_str())) value.Fail("a name of 1 to 63 letters, digits and '_' is needed");
  FilterLayout filter{};
  std::string module;
  std::string kind;
  for (const JsonValue &member : value.Members()) {
    if (member.Name() == kModule) {
      module = (directory / member.FileName()).string();
    } else if (member.Name() == kFilter) {
      kind = member.Text();
    } else if (member.Name() == kConfig) {
      filter.config = member.Text();
    } else if (member.Name() == kParameters) {
      ReadParameters(member, filter);
    } else {
      member.Fail("unknown setting; known: module, filter, config, parameters");
    }
  }
  filter.kind = &LoadKindFor(value, kinds, module, kind);
  filter.name = value.Name();
  filter.directory = directory.string();
  return filter;
}

bool IsOfModule(const JsonValue &value) {
  const std::vector<JsonValue> members = value.Members();
  return std::any_of(members.begin(), members.end(),
                     [](const JsonValue &member) { return member.Name() == kModule; });
}

}  // namespace

FilterLayout ReadFilter(const JsonValue &value, const FilterKinds &kinds,
                        const std::filesystem::path &directory) {
  if (IsOfModule(value)) return ReadModuleFilter(value, kinds, directory);
  FilterLayout filter{&KindOf(value, kinds)};
  for (const JsonValue &member : value.Members()) {
    const Setting &setting = FindSetting(member, filter.kind->settings);
    filter.settings[setting.key] = std::visit(ReadValue(member, directory), setting.range);
  }
  CheckIsComplete(value, filter);
  return filter;
}

}  // namespace kest::player
