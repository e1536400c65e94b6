// SPDX-License-Identifier: Apache-2.0
#include "player/session/capabilities.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "ze_kest/debug.h"

#include "player/framework/parameter_text.h"

namespace kest::player {
namespace {

using SupportedParameter = ZE_KEST_SupportedParameter_s;

SupportedParameter Describe(const char *owner, const Parameter &parameter) {
  SupportedParameter supported{};
  std::snprintf(supported.szName, sizeof(supported.szName), "%s", parameter.name);
  const std::string description = std::string(owner) + ": " + DescriptionOf(parameter);
  std::snprintf(supported.szDescription, sizeof(supported.szDescription), "%s", description.c_str());
  supported.sztSize = parameter.size;
  return supported;
}

// Filters that several inputs have are listed once.
void AddNew(std::vector<SupportedParameter> &list, const SupportedParameter &parameter) {
  const bool isThere = std::any_of(list.begin(), list.end(), [&](const SupportedParameter &earlier) {
    return std::strcmp(earlier.szName, parameter.szName) == 0 &&
           std::strcmp(earlier.szDescription, parameter.szDescription) == 0;
  });
  if (!isThere) list.push_back(parameter);
}

std::vector<SupportedParameter> SupportedParameters(const FilterKinds &kinds,
                                                    const std::vector<const Filter *> &filters) {
  std::vector<SupportedParameter> list;
  for (const FilterKind *kind : kinds) {
    for (const Parameter &parameter : kind->parameters) {
      list.push_back(Describe(kind->name, parameter));
    }
  }
  for (const Filter *filter : filters) {
    if (FindKind(kinds, filter->Kind().name) != nullptr) continue;
    for (const Parameter &parameter : filter->Parameters()) {
      AddNew(list, Describe(filter->Record().szName, parameter));
    }
  }
  for (size_t i = 1; i < list.size(); ++i) {
    list[i - 1].pstNext = &list[i];
  }
  return list;
}

// A WAV file takes none of the compressed formats that the status report shows.
std::array<uint8_t, ZE_KEST_SAD_SIZE> OutputFormats() {
  constexpr size_t kLpcm = 1;
  constexpr size_t kEntrySize = 24;
  constexpr size_t kByte3Offset = 16;
  constexpr uint8_t k16And24Bits = 0x05;
  std::array<uint8_t, ZE_KEST_SAD_SIZE> formats{};
  formats[kLpcm * kEntrySize] = 1;
  formats[kLpcm * kEntrySize + kByte3Offset] = k16And24Bits;
  return formats;
}

}  // namespace

void AnnounceCapabilities(const FilterKinds &kinds, const std::vector<const Filter *> &filters) {
  static std::vector<SupportedParameter> parameters;  // the library keeps the pointer
  parameters = SupportedParameters(kinds, filters);
  ze_kest_Debug_SetSupportedParameterList(parameters.data());
  const auto formats = OutputFormats();
  ze_kest_Debug_SetSAD(formats.data(), ZE_KEST_SAD_SIZE);
}

}  // namespace kest::player
