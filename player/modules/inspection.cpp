// SPDX-License-Identifier: Apache-2.0
#include "player/modules/inspection.h"

#include <algorithm>
#include <memory>
#include <sstream>

#include <nlohmann/json.hpp>

#include "player/framework/frame_buffer.h"
#include "player/framework/parameter_text.h"
#include "player/modules/module.h"
#include "player/modules/module_error.h"
#include "player/modules/module_instance.h"
#include "player/modules/parameter_value.h"

namespace kest::player {
namespace {

using Json = nlohmann::ordered_json;

constexpr uint32_t kSampleRate = 48000;

struct Flag {
  uint32_t bit;
  const char *key;
  const char *text;
};

constexpr Flag kFlags[] = {
    {ZE_KEST_MODULE_FORWARDS_METADATA, "forwards_metadata", "moves the metadata itself"},
    {ZE_KEST_MODULE_MAY_DIFFER, "may_differ", "two runs may differ"},
    {ZE_KEST_MODULE_MAY_BLOCK, "may_block", "may allocate, lock and call the system while it processes"}};

std::vector<const ModuleKind *> Chosen(const Inspection &inspection) {
  const Module &module = Module::Load(inspection.file);
  if (!inspection.kind.empty()) return {&module.Kind(inspection.kind)};
  std::vector<const ModuleKind *> kinds;
  kinds.reserve(module.Kinds().size());
  for (const ModuleKind &kind : module.Kinds()) {
    kinds.push_back(&kind);
  }
  return kinds;
}

// Stereo where the kind takes it, and the wider samples.
PcmFormat FormatFor(const ZE_KEST_ModuleFilter_s &filter) {
  const uint32_t channels = std::clamp(2u, filter.u32LeastChannels, filter.u32MostChannels);
  return {channels, kSampleRate, (filter.u32Widths & ZE_KEST_MODULE_32_BITS) != 0 ? 32u : 16u};
}

// An instance, or why there is none.
struct Attempt {
  std::unique_ptr<ModuleInstance> instance;
  PcmFormat format;
  std::string refusal;
};

Attempt TryInstance(const ModuleKind &kind, const std::string &config) {
  Attempt attempt{nullptr, FormatFor(kind.record), ""};
  if (attempt.format.channels > kMaxChannels) {
    attempt.refusal = "this host has at most " + std::to_string(kMaxChannels) + " channels";
    return attempt;
  }
  try {
    attempt.instance =
        std::make_unique<ModuleInstance>(kind, ModuleSetup{attempt.format, kCycleFrames, config});
  } catch (const ModuleError &error) {
    attempt.refusal = error.what();
  }
  return attempt;
}

std::string FormatText(const PcmFormat &format) {
  return std::to_string(format.channels) + (format.channels == 1 ? " channel, " : " channels, ") +
         std::to_string(format.bitsPerSample) + " bits, " + std::to_string(format.sampleRate) + " Hz";
}

std::string ValueWithUnit(const ZE_KEST_ModuleParameter_s &parameter, const std::string &value) {
  return *parameter.pszUnit == '\0' ? value : value + " " + parameter.pszUnit;
}

void PrintParameter(std::ostream &out, const ModuleInstance &instance, size_t index) {
  const ZE_KEST_ModuleParameter_s &parameter = instance.Parameters()[index];
  const std::string value = NumberText(instance.Get(index), parameter.u32Decimals);
  out << "      " << parameter.pszName << "  " << ValueWithUnit(parameter, value);
  const bool isReadOnly = (parameter.u32Flags & ZE_KEST_MODULE_READ_ONLY) != 0;
  out << " (" << (isReadOnly ? "read only" : RangeText(RangeOf(parameter))) << ")";
  if (*parameter.pszDescription != '\0') out << "  " << parameter.pszDescription;
  out << "\n";
}

void PrintInstance(std::ostream &out, const ModuleKind &kind, const std::string &config) {
  const Attempt attempt = TryInstance(kind, config);
  out << "    an instance with " << FormatText(attempt.format);
  if (attempt.instance == nullptr) {
    out << " cannot be made: " << attempt.refusal << "\n";
    return;
  }
  const ModuleInstance &instance = *attempt.instance;
  out << "\n      latency  " << instance.Latency() << " samples\n";
  for (size_t i = 0; i < instance.Parameters().size(); ++i) {
    PrintParameter(out, instance, i);
  }
}

void PrintKind(std::ostream &out, const ModuleKind &kind, const std::string &config) {
  const ZE_KEST_ModuleFilter_s &filter = kind.record;
  out << "  " << filter.pszName;
  if (*filter.pszVersion != '\0') out << " " << filter.pszVersion;
  if (*filter.pszDescription != '\0') out << ": " << filter.pszDescription;
  const char *widths[] = {"", "16", "32", "16 and 32"};
  out << "\n    takes " << widths[filter.u32Widths] << " bits, " << filter.u32LeastChannels << " to "
      << filter.u32MostChannels << " channels\n";
  for (const Flag &flag : kFlags) {
    if ((filter.u32Flags & flag.bit) != 0) out << "    " << flag.text << "\n";
  }
  if (filter.pfnCommand != nullptr) out << "    takes commands\n";
  PrintInstance(out, kind, config);
}

Json ParameterJson(const ModuleInstance &instance, size_t index) {
  const ZE_KEST_ModuleParameter_s &parameter = instance.Parameters()[index];
  return {{"name", parameter.pszName},
          {"description", parameter.pszDescription},
          {"unit", parameter.pszUnit},
          {"decimals", parameter.u32Decimals},
          {"least", parameter.s32Least},
          {"most", parameter.s32Most},
          {"default", parameter.s32Default},
          {"value", instance.Get(index)},
          {"read_only", (parameter.u32Flags & ZE_KEST_MODULE_READ_ONLY) != 0}};
}

Json InstanceJson(const ModuleKind &kind, const std::string &config) {
  const Attempt attempt = TryInstance(kind, config);
  Json json = {{"channels", attempt.format.channels},
               {"bits", attempt.format.bitsPerSample},
               {"sample_rate", attempt.format.sampleRate}};
  if (attempt.instance == nullptr) {
    json["refused"] = attempt.refusal;
    return json;
  }
  json["latency"] = attempt.instance->Latency();
  json["parameters"] = Json::array();
  for (size_t i = 0; i < attempt.instance->Parameters().size(); ++i) {
    json["parameters"].push_back(ParameterJson(*attempt.instance, i));
  }
  return json;
}

Json KindJson(const ModuleKind &kind, const std::string &config) {
  const ZE_KEST_ModuleFilter_s &filter = kind.record;
  Json json = {{"name", filter.pszName},
               {"version", filter.pszVersion},
               {"description", filter.pszDescription},
               {"widths", Json::array()},
               {"least_channels", filter.u32LeastChannels},
               {"most_channels", filter.u32MostChannels}};
  if ((filter.u32Widths & ZE_KEST_MODULE_16_BITS) != 0) json["widths"].push_back(16);
  if ((filter.u32Widths & ZE_KEST_MODULE_32_BITS) != 0) json["widths"].push_back(32);
  for (const Flag &flag : kFlags) {
    json[flag.key] = (filter.u32Flags & flag.bit) != 0;
  }
  json["takes_commands"] = filter.pfnCommand != nullptr;
  json["instance"] = InstanceJson(kind, config);
  return json;
}

}  // namespace

std::string InspectAsText(const Inspection &inspection) {
  const std::vector<const ModuleKind *> kinds = Chosen(inspection);
  std::ostringstream out;
  out << kinds.front()->module->Path() << "\n";
  for (const ModuleKind *kind : kinds) {
    PrintKind(out, *kind, inspection.config);
  }
  return out.str();
}

std::string InspectAsJson(const Inspection &inspection) {
  const std::vector<const ModuleKind *> kinds = Chosen(inspection);
  Json json = {{"file", kinds.front()->module->Path()}, {"filters", Json::array()}};
  for (const ModuleKind *kind : kinds) {
    json["filters"].push_back(KindJson(*kind, inspection.config));
  }
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace kest::player
