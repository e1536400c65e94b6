// SPDX-License-Identifier: Apache-2.0
// The settings that processes share: a process's own and what the shared block holds.
#pragma once

#include <cstdint>
#include <string>

namespace kest::ctl {

struct ProcessSettings {
  uint32_t level = 0;
  uint32_t sharedLevel = 0;
  std::string presets;  // own and shared text, as printed
  bool presetOn = false;
  bool sharedPresetOn = false;
};

}  // namespace kest::ctl
