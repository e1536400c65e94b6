// SPDX-License-Identifier: Apache-2.0
// A kind of filter, and what can be asked of one from a shell.
//
// Everything here is called on the command thread while the filter runs on its own thread: values are
// exchanged through atomics only, and nothing blocks.
#pragma once

#include <cstdint>

#include "player/framework/table.h"

namespace kest::player {

class Filter;

struct Parameter {
  const char *name;
  const char *description;
  uint32_t size;  // bytes of its value
  void (*get)(const Filter &filter, void *value);
  void (*set)(Filter &filter, const void *value);  // nullptr: it can only be read
};

struct FilterCommand {
  const char *text;
  void (*run)(Filter &filter);
};

struct FilterKind {
  const char *name;
  Table<Parameter> parameters;
  Table<FilterCommand> commands;  // in addition to those that every kind has
};

}  // namespace kest::player
