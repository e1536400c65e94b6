// SPDX-License-Identifier: Apache-2.0
#include "player/modules/module_instance.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>

#include "player/modules/module_error.h"
#include "player/modules/record_check.h"

namespace kest::player {
namespace {

constexpr uint32_t kMostParameters = 4096;
constexpr size_t kErrorSize = 1024;

std::string Plural(uint32_t count, const char *what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

uint32_t WidthBit(uint32_t bits) {
  return bits == 16 ? ZE_KEST_MODULE_16_BITS : ZE_KEST_MODULE_32_BITS;
}

ZE_KEST_ModuleSetup_s Record(const ModuleSetup &setup, const std::string &directory) {
  ZE_KEST_ModuleSetup_s record{};
  record.u32Size = sizeof(record);
  record.u32MaxSamples = setup.maxSamples;
  record.stPcmInfo = setup.format.Info();
  const PcmGroups groups = setup.format.Groups();
  std::copy(groups.begin(), groups.end(), record.astPcmGroup);
  record.pszConfig = setup.config.c_str();
  record.pszDirectory = directory.c_str();
  return record;
}

}  // namespace

std::string FaultOf(const ZE_KEST_ModuleFilter_s &filter, const PcmFormat &format) {
  if ((filter.u32Widths & WidthBit(format.bitsPerSample)) == 0) {
    return "takes no samples of " + std::to_string(format.bitsPerSample) + " bits";
  }
  if (format.channels < filter.u32LeastChannels || format.channels > filter.u32MostChannels) {
    return "takes " + std::to_string(filter.u32LeastChannels) + " to " +
           Plural(filter.u32MostChannels, "channel") + ", not " + std::to_string(format.channels);
  }
  return "";
}

ModuleInstance::ModuleInstance(const ModuleKind &kind, const ModuleSetup &setup) : kind_(kind) {
  const auto fail = [&](const std::string &why) {
    throw ModuleError(kind.module->Path(), std::string(Entries().pszName) + " " + why);
  };
  if (const std::string fault = FaultOf(Entries(), setup.format); !fault.empty()) fail(fault);

  const std::string directory = std::filesystem::absolute(setup.directory.empty() ? "." : setup.directory);
  ZE_KEST_ModuleSetup_s record = Record(setup, directory);
  std::array<char, kErrorSize> error{};
  record.pszError = error.data();
  record.u32ErrorSize = error.size();
  const uint32_t result = Entries().pfnCreate(kind.own, &record, &self_);
  if (result != ZE_KEST_OK) {
    error.back() = '\0';
    fail("cannot be created: " + (error.front() == '\0'
                                      ? "result " + std::to_string(result) + ", without a reason"
                                      : std::string(error.data())));
  }
  if (const std::string fault = ReadParameters(); !fault.empty()) {
    Entries().pfnDestroy(self_);
    fail("has a faulty parameter: " + fault);
  }
}

ModuleInstance::~ModuleInstance() {
  Entries().pfnDestroy(self_);
}

// What is wrong with them; empty when nothing is.
std::string ModuleInstance::ReadParameters() {
  if (Entries().pfnParameter == nullptr) return "";
  for (uint32_t i = 0; const ZE_KEST_ModuleParameter_s *own = Entries().pfnParameter(self_, i); ++i) {
    if (i == kMostParameters) return "the list of parameters does not end";
    const ZE_KEST_ModuleParameter_s parameter = Known(*own);
    if (const std::string fault = FaultOf(Entries(), parameter); !fault.empty()) {
      return "parameter " + std::to_string(i) + ": " + fault;
    }
    const bool isThere = std::any_of(parameters_.begin(), parameters_.end(), [&](const auto &earlier) {
      return std::strcmp(earlier.pszName, parameter.pszName) == 0;
    });
    if (isThere) return std::string("two parameters are called ") + parameter.pszName;
    parameters_.push_back(parameter);
  }
  return "";
}

uint32_t ModuleInstance::Latency() const {
  return Entries().pfnLatency == nullptr ? 0 : Entries().pfnLatency(self_);
}

uint32_t ModuleInstance::Pending() const {
  return Entries().pfnPending == nullptr ? 0 : Entries().pfnPending(self_);
}

int32_t ModuleInstance::Get(size_t index) const {
  return Entries().pfnGet(self_, static_cast<uint32_t>(index));
}

void ModuleInstance::Set(size_t index, int32_t value) {
  const ZE_KEST_ModuleParameter_s &parameter = parameters_[index];
  Entries().pfnSet(self_, static_cast<uint32_t>(index),
                   std::clamp(value, parameter.s32Least, parameter.s32Most));
}

uint32_t ModuleInstance::Command(const char *text) {
  return Entries().pfnCommand == nullptr ? uint32_t{ZE_KEST_INVALID_ARGUMENT}
                                         : Entries().pfnCommand(self_, text);
}

}  // namespace kest::player
