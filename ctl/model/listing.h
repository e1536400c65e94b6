// SPDX-License-Identifier: Apache-2.0
// What runs in a process: its pipelines, their filters and what the ports hold.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kest::ctl {

struct Fill {
  uint64_t level = 0;
  uint64_t size = 0;
};

struct Port {
  bool isInput = true;
  unsigned number = 0;
  Fill pcm;                              // samples per channel
  std::array<uint64_t, 3> groupBytes{};  // storage of the channel groups
  Fill metadata;                         // bytes
  Fill raw;                              // bytes
  bool connected = false;
};

struct Filter {
  int index = 0;  // in the list; kest_debug_send_cmd takes it
  std::string state;
  std::string name;
  int tid = 0;
  std::string thread;
  int ds = 0;
  int tgt = 0;
  bool autoConsume = false;
  bool takesCommands = false;
  std::vector<Port> ports;
};

struct Pipeline {
  std::optional<int> index;  // empty when only filters of it are registered
  std::string name;
  int tid = 0;
  std::string thread;
  std::vector<std::string> feeds;
  std::vector<Filter> filters;
};

struct Listing {
  std::vector<Pipeline> pipelines;
  uint64_t ioBytes = 0;
};

}  // namespace kest::ctl
