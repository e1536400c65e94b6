// SPDX-License-Identifier: Apache-2.0
#include "player/modules/record_check.h"

#include <cctype>
#include <string_view>

namespace kest::player {
namespace {

constexpr uint32_t kAllFlags =
    ZE_KEST_MODULE_FORWARDS_METADATA | ZE_KEST_MODULE_MAY_DIFFER | ZE_KEST_MODULE_MAY_BLOCK;
constexpr uint32_t kAllWidths = ZE_KEST_MODULE_16_BITS | ZE_KEST_MODULE_32_BITS;
constexpr uint32_t kMostChannels = 22;  // of all channel groups
constexpr uint32_t kMostDecimals = 6;

bool IsLine(const char *text) {
  return text != nullptr && std::strpbrk(text, "\r\n") == nullptr;
}

std::string Quoted(const char *text) {
  return text == nullptr ? "NULL" : "\"" + std::string(text) + "\"";
}

std::string WrongName(const char *name) {
  return "the name is " + Quoted(name) + "; 1 to " + std::to_string(ZE_KEST_NAME_SIZE - 1) +
         " letters, digits and '_' are needed";
}

// No other field can be trusted when a size is wrong.
std::string WrongSize(const char *field, uint32_t size, size_t needed) {
  return std::string(field) + " is " + std::to_string(size) + "; " + std::to_string(needed) +
         " is needed: build the module with this host's headers";
}

std::string FaultOfSizes(const ZE_KEST_ModuleFilter_s &filter) {
  if (filter.u32Size < sizeof(filter)) return WrongSize("u32Size", filter.u32Size, sizeof(filter));
  if (filter.u32FilterSize != sizeof(ZE_KEST_Filter_s)) {
    return WrongSize("u32FilterSize", filter.u32FilterSize, sizeof(ZE_KEST_Filter_s));
  }
  if (filter.u32PortSize != sizeof(ZE_KEST_Port_s)) {
    return WrongSize("u32PortSize", filter.u32PortSize, sizeof(ZE_KEST_Port_s));
  }
  return "";
}

struct Rule {
  bool kept;
  const char *broken;
};

template <size_t kCount>
std::string FirstBroken(const char *name, const Rule (&rules)[kCount]) {
  const auto *rule =
      std::find_if(rules, rules + kCount, [](const Rule &candidate) { return !candidate.kept; });
  return rule == rules + kCount ? "" : std::string(name) + ": " + rule->broken;
}

}  // namespace

bool IsName(const char *text) {
  const std::string_view name(text == nullptr ? "" : text);
  return !name.empty() && name.size() < ZE_KEST_NAME_SIZE &&
         std::all_of(name.begin(), name.end(),
                     [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; });
}

std::string FaultOf(const ZE_KEST_ModuleFilter_s &filter) {
  if (std::string fault = FaultOfSizes(filter); !fault.empty()) return fault;
  if (!IsName(filter.pszName)) return WrongName(filter.pszName);
  const Rule rules[] = {
      {IsLine(filter.pszVersion), "pszVersion is not a line of text"},
      {IsLine(filter.pszDescription), "pszDescription is not a line of text"},
      {(filter.u32Flags & ~kAllFlags) == 0, "u32Flags has unknown bits"},
      {filter.u32Widths != 0, "u32Widths names no width"},
      {(filter.u32Widths & ~kAllWidths) == 0, "u32Widths has unknown bits"},
      {filter.u32LeastChannels >= 1, "u32LeastChannels is 0"},
      {filter.u32LeastChannels <= filter.u32MostChannels, "u32LeastChannels is above u32MostChannels"},
      {filter.u32MostChannels <= kMostChannels, "u32MostChannels is above 22"},
      {filter.pfnCreate != nullptr, "pfnCreate is missing"},
      {filter.pfnDestroy != nullptr, "pfnDestroy is missing"},
      {filter.pfnProcess != nullptr, "pfnProcess is missing"},
      {filter.pfnParameter == nullptr || filter.pfnGet != nullptr, "there are parameters, but no pfnGet"},
  };
  return FirstBroken(filter.pszName, rules);
}

std::string FaultOf(const ZE_KEST_ModuleParameter_s &parameter) {
  if (parameter.u32Size < sizeof(parameter)) {
    return WrongSize("u32Size", parameter.u32Size, sizeof(parameter));
  }
  if (!IsName(parameter.pszName)) return WrongName(parameter.pszName);
  const bool isReadOnly = (parameter.u32Flags & ZE_KEST_MODULE_READ_ONLY) != 0;
  const Rule rules[] = {
      {IsLine(parameter.pszDescription), "pszDescription is not a line of text"},
      {IsLine(parameter.pszUnit), "pszUnit is not a line of text"},
      {(parameter.u32Flags & ~uint32_t{ZE_KEST_MODULE_READ_ONLY}) == 0, "u32Flags has unknown bits"},
      {parameter.u32Decimals <= kMostDecimals, "u32Decimals is above 6"},
      {parameter.s32Least <= parameter.s32Most, "s32Least is above s32Most"},
      {isReadOnly ||
           (parameter.s32Default >= parameter.s32Least && parameter.s32Default <= parameter.s32Most),
       "s32Default is outside the limits"},
  };
  return FirstBroken(parameter.pszName, rules);
}

std::string FaultOf(const ZE_KEST_ModuleFilter_s &filter, const ZE_KEST_ModuleParameter_s &parameter) {
  if (std::string fault = FaultOf(parameter); !fault.empty()) return fault;
  const bool isReadOnly = (parameter.u32Flags & ZE_KEST_MODULE_READ_ONLY) != 0;
  return isReadOnly || filter.pfnSet != nullptr
             ? ""
             : std::string(parameter.pszName) + ": it can be set, but there is no pfnSet";
}

}  // namespace kest::player
