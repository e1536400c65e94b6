// SPDX-License-Identifier: Apache-2.0
#include "buffer.h"

#include <new>

#include <sys/mman.h>
#include <unistd.h>

namespace ladspa_host {

void Unmap::operator()(LADSPA_Data * /*samples*/) const {
  munmap(map, bytes);
}

Buffer MakeBuffer(uint32_t samples) {
  const size_t bytes = samples * sizeof(LADSPA_Data);
  const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  const size_t pages = (bytes + page - 1) / page * page;
  const Unmap map = {mmap(nullptr, pages + page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0),
                     pages + page};
  if (map.map == MAP_FAILED) throw std::bad_alloc();
  auto *end = static_cast<char *>(map.map) + pages;
  Buffer buffer(reinterpret_cast<LADSPA_Data *>(end - bytes), map);
  if (mprotect(map.map, pages, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
  return buffer;
}

}  // namespace ladspa_host
