// SPDX-License-Identifier: Apache-2.0
// The samples of a channel for a plug-in. They end at a page that nobody may access: a plug-in that runs
// beyond them is stopped there, where it could change what belongs to others or make sound of it.
#pragma once

#include <cstdint>
#include <memory>

#include <ladspa.h>

namespace ladspa_host {

struct Unmap {
  void *map = nullptr;
  size_t bytes = 0;
  void operator()(LADSPA_Data * /*samples*/) const;
};

using Buffer = std::unique_ptr<LADSPA_Data[], Unmap>;

// Silence. Throws std::bad_alloc.
Buffer MakeBuffer(uint32_t samples);

}  // namespace ladspa_host
