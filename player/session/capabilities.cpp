// SPDX-License-Identifier: Apache-2.0
#include "player/session/capabilities.h"

#include <array>
#include <cstdio>
#include <vector>

#include "ze_kest/debug.h"

#include "player/framework/parameter_text.h"

namespace kest::player {
namespace {

using SupportedParameter = ZE_KEST_SupportedParameter_s;

SupportedParameter Describe(const FilterKind &kind, const Parameter &parameter) {
  SupportedParameter supported{};
  std::snprintf(supported.szName, sizeof(supported.szName), "%s", parameter.name);
  std::snprintf(supported.szDescription, sizeof(supported.szDescription), "%s: %s", kind.name,
                DescriptionOf(parameter).c_str());
  supported.sztSize = parameter.size;
  return supported;
}

std::vector<SupportedParameter> SupportedParameters(const FilterKinds &kinds) {
  std::vector<SupportedParameter> list;
  for (const FilterKind *kind : kinds) {
    for (const Parameter &parameter : kind->parameters) {
      list.push_back(Describe(*kind, parameter));
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

void AnnounceCapabilities(const FilterKinds &kinds) {
  static const std::vector<SupportedParameter> parameters =
      SupportedParameters(kinds);  // the library keeps the pointer
  ze_kest_Debug_SetSupportedParameterList(parameters.data());
  const auto formats = OutputFormats();
  ze_kest_Debug_SetSAD(formats.data(), ZE_KEST_SAD_SIZE);
}

}  // namespace kest::player
