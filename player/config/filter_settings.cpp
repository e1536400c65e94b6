// SPDX-License-Identifier: Apache-2.0
#include "player/config/filter_settings.h"

#include <algorithm>
#include <iterator>
#include <variant>

#include "player/filters/delay.h"
#include "player/filters/lpcm.h"
#include "player/filters/mixer.h"
#include "player/filters/speaker_output.h"
#include "player/filters/volume.h"
#include "player/framework/table.h"

namespace kest::player {
namespace {

// A mandatory setting: nothing can be played without the file.
struct FileName {
  std::string FilterLayout::*field;
};

struct WholeNumber {
  int FilterLayout::*field;
  int min;
  int max;
};

struct Setting {
  const char *key;
  std::variant<FileName, WholeNumber> value;
};

struct FilterSettings {
  const FilterKind *kind;
  Table<Setting> settings;
};

constexpr Setting kFile[] = {{"file", FileName{&FilterLayout::file}}};
constexpr Setting kGain[] = {
    {"gain_db", WholeNumber{&FilterLayout::gainDb, Volume::kMinGainDb, Volume::kMaxGainDb}}};
constexpr Setting kDelay[] = {
    {"delay_ms", WholeNumber{&FilterLayout::delayMs, 0, static_cast<int>(Delay::kMaxDelayMs)}}};

constexpr FilterSettings kFilters[] = {{&Lpcm::kKind, kFile},
                                       {&Volume::kKind, kGain},
                                       {&Delay::kKind, kDelay},
                                       {&Mixer::kKind, {}},
                                       {&SpeakerOutput::kKind, kFile}};

void Read(const JsonValue &value, const FileName &setting, FilterLayout &filter) {
  filter.*setting.field = value.FileName();
}

void Read(const JsonValue &value, const WholeNumber &setting, FilterLayout &filter) {
  filter.*setting.field = value.WholeNumber(setting.min, setting.max);
}

template <typename Rows, typename Name>
std::string List(const Rows &rows, const Name &nameOf) {
  std::string list;
  for (const auto &row : rows) {
    list += (list.empty() ? "" : ", ") + std::string(nameOf(row));
  }
  return list.empty() ? "none" : list;
}

const FilterSettings &FindFilter(const JsonValue &value) {
  const auto *filter = std::find_if(std::begin(kFilters), std::end(kFilters),
                                    [&](const auto &row) { return row.kind->name == value.Name(); });
  if (filter == std::end(kFilters)) {
    value.Fail("unknown filter; known: " + List(kFilters, [](const auto &row) { return row.kind->name; }));
  }
  return *filter;
}

const Setting &FindSetting(const JsonValue &value, const Table<Setting> &settings) {
  const auto *setting = std::find_if(settings.begin(), settings.end(),
                                     [&](const auto &row) { return row.key == value.Name(); });
  if (setting == settings.end()) {
    value.Fail("unknown setting; known: " + List(settings, [](const auto &row) { return row.key; }));
  }
  return *setting;
}

void CheckHasFiles(const JsonValue &value, const Table<Setting> &settings, const FilterLayout &filter) {
  for (const Setting &setting : settings) {
    const auto *file = std::get_if<FileName>(&setting.value);
    if (file != nullptr && (filter.*file->field).empty()) {
      value.Fail("\"" + std::string(setting.key) + "\" is missing; the name of a file is needed");
    }
  }
}

}  // namespace

FilterLayout ReadFilter(const JsonValue &value) {
  const FilterSettings &known = FindFilter(value);
  FilterLayout filter{known.kind};
  for (const JsonValue &member : value.Members()) {
    const Setting &setting = FindSetting(member, known.settings);
    std::visit([&](const auto &type) { Read(member, type, filter); }, setting.value);
  }
  CheckHasFiles(value, known.settings, filter);
  return filter;
}

}  // namespace kest::player
