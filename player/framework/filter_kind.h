// SPDX-License-Identifier: Apache-2.0
// A kind of filter: what a layout can say about one, how one is made, and what can be asked of one from a
// shell.
//
// Parameters and commands are called on the command thread while the filter runs on its own thread: values
// are exchanged through atomics only, and nothing blocks.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <variant>

#include "player/framework/table.h"

namespace kest::player {

class Filter;
struct FilterLayout;
struct FilterMaterial;

// Where a filter may stand in a chain.
enum class FilterPlace {
  kInputStart,   // the first one of an input
  kOutputStart,  // the first one of the output
  kOutputEnd,    // the last one of the output
  kBetween       // any number of them, in any order, behind the first one
};

struct FileNameRange {
  bool (*isNoFile)(const std::string &name);  // whether a name means something else, and is taken as it is
};

struct TextRange {
  const char *needed;  // what it says, for an error message
};

struct WholeNumberRange {
  int min;
  int max;
};

struct Setting {
  const char *key;
  std::variant<FileNameRange, TextRange, WholeNumberRange> range;
  bool isMandatory = false;
};

struct ParameterRange {
  const char *unit;  // "" for none
  int64_t least;     // below 0: the value is signed
  int64_t most;
  uint32_t decimals;  // the value counts units of 10 to the power of -decimals
};

struct Parameter {
  const char *name;
  const char *description;
  ParameterRange range;
  uint32_t size;  // bytes of its value, at most 8
  void (*get)(const Filter &filter, uint32_t index, void *value);
  void (*set)(Filter &filter, uint32_t index, const void *value);  // nullptr: it can only be read
  uint32_t index = 0;  // handed to both; tells parameters apart that share these functions
};

struct FilterCommand {
  const char *text;
  void (*run)(Filter &filter);
};

struct FilterKind {
  const char *name;
  FilterPlace place;
  // Throws PlayerError when a file is needed and cannot be created. layout.kind is this kind.
  std::unique_ptr<Filter> (*make)(const FilterLayout &layout, const FilterMaterial &material);
  Table<Setting> settings;
  Table<Parameter> parameters;    // that all its filters have; see Filter::Parameters
  Table<FilterCommand> commands;  // in addition to those that every kind has
};

}  // namespace kest::player
