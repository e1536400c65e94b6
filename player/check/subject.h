// SPDX-License-Identifier: Apache-2.0
// What is tested.
#pragma once

#include <cstdint>
#include <string>

#include "player/modules/module.h"

namespace kest::player {

struct Subject {
  std::string file;
  std::string kind;    // empty in tests of the whole file
  std::string config;  // of its instances
  uint32_t seed;       // of everything random

  // Throws ModuleError.
  [[nodiscard]] const ModuleKind &Load() const { return Module::Load(file).Kind(kind); }
  // flag: ZE_KEST_ModuleFlag_e, of the kind.
  [[nodiscard]] bool Has(uint32_t flag) const { return (Load().record.u32Flags & flag) != 0; }
};

}  // namespace kest::player
