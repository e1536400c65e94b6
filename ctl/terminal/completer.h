// SPDX-License-Identifier: Apache-2.0
// What can be typed next: commands and options from the table, and the names of what runs.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ctl/commands/command.h"
#include "ctl/commands/context.h"

namespace kest::ctl {

struct Candidate {
  std::string text;  // the whole word; one that ends in a slash is to be continued
  std::string description;
};

class Completer {
 public:
  // settings: what holds without the options of the line.
  explicit Completer(Settings settings) : settings_(std::move(settings)) {}

  // What can stand in the place of the last of the words, which are those behind "kestctl". Empty also when
  // the process cannot be asked.
  std::vector<Candidate> Complete(const std::vector<std::string> &words);

 private:
  Context &ContextFor(Settings settings);

  Settings settings_;
  std::unique_ptr<Context> context_;  // of the last line
};

}  // namespace kest::ctl
