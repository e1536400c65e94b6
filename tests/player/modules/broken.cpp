// SPDX-License-Identifier: Apache-2.0
// A module that is broken in the way that the environment variable KEST_FAULT names. Without it, it passes
// the sound on unchanged and tells stderr when its instances go.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "ze_kest/debug.h"
#include "ze_kest/module.h"
#include "ze_kest/utility.h"

namespace {

using Kind = ZE_KEST_ModuleFilter_s;
using Parameter = ZE_KEST_ModuleParameter_s;

bool Is(std::string_view fault) {
  const char *set = std::getenv("KEST_FAULT");
  return set != nullptr && fault == set;
}

// ---- Parameters ----

constexpr Parameter kSound[] = {
    {sizeof(Parameter), 0, "Level", "kept, not used", "dB", 1, -600, 60, -25},
    {sizeof(Parameter), ZE_KEST_MODULE_READ_ONLY, "Turns", "", "", 0, 0, INT32_MAX, 0}};

struct ParameterFault {
  const char *name;
  void (*apply)(Parameter &parameter);
};

constexpr ParameterFault kParameterFaults[] = {
    {"parameter size", [](Parameter &parameter) { parameter.u32Size -= 4; }},
    {"parameter name", [](Parameter &parameter) { parameter.pszName = "a b"; }},
    {"parameter description", [](Parameter &parameter) { parameter.pszDescription = "a\nb"; }},
    {"parameter unit", [](Parameter &parameter) { parameter.pszUnit = nullptr; }},
    {"parameter flags", [](Parameter &parameter) { parameter.u32Flags = 2; }},
    {"parameter decimals", [](Parameter &parameter) { parameter.u32Decimals = 7; }},
    {"parameter limits", [](Parameter &parameter) { parameter.s32Least = 61; }},
    {"parameter default", [](Parameter &parameter) { parameter.s32Default = 61; }},
    {"parameter twice", [](Parameter &parameter) { parameter.pszName = "Turns"; }}};

const Parameter *GetParameter(void *, uint32_t index) {
  static Parameter faulty;
  if (Is("parameters without end")) return &(faulty = kSound[0]);
  if (index > 0) return index < 2 ? &kSound[index] : nullptr;
  const auto *fault = std::find_if(std::begin(kParameterFaults), std::end(kParameterFaults),
                                   [](const ParameterFault &row) { return Is(row.name); });
  if (fault == std::end(kParameterFaults)) return &kSound[0];
  faulty = kSound[0];
  fault->apply(faulty);
  return &faulty;
}

// ---- Instances ----

struct Instance {
  int32_t values[2] = {-25, 0};
  uint32_t width;
};

uint32_t Create(const Kind *, const ZE_KEST_ModuleSetup_s *setup, void **self) {
  if (Is("silent refusal")) return ZE_KEST_FAILED;
  if (std::strncmp(setup->pszConfig, "refuse", 6) == 0) {
    std::snprintf(setup->pszError, setup->u32ErrorSize, "%s in %s", setup->pszConfig, setup->pszDirectory);
    return ZE_KEST_INVALID_ARGUMENT;
  }
  *self = new Instance{{-25, 0}, setup->stPcmInfo.u32BitWidth};
  return ZE_KEST_OK;
}

void Destroy(void *self) {
  if (std::getenv("KEST_TELL") != nullptr) std::fputs("an instance is destroyed\n", stderr);
  delete static_cast<Instance *>(self);
}

// Copies the rings' bytes, in one piece at both sides.
uint32_t PassOn(const Instance &instance, ZE_KEST_Filter_s *filter) {
  const ZE_KEST_PcmBuffer_s &input = filter->apstInPort[0]->stPcm;
  uint32_t held = 0;
  uint32_t room = 0;
  ze_kest_Utility_CalculateInputPortPcmProcessSize(filter, &held);
  ze_kest_Utility_CalculateOutputPortPcmProcessSize(filter, &room);
  const uint32_t samples = std::min({held, room, input.sztPcmRingSamples - input.sztPcmReadOffset});
  std::array<uint16_t, ZE_KEST_PCM_CHANNEL_ENTRIES> strides{};
  uint8_t groupPresent = 0;
  if (instance.width == 16) {
    std::array<int16_t *, ZE_KEST_PCM_CHANNEL_ENTRIES> channels{};
    ze_kest_Utility_AnalyzeInputPort16BitPcmGroup(filter, 0, channels.data(), strides.data(), &groupPresent);
    ze_kest_Utility_WriteAllOutputPort16BitPcmBuffer(filter, samples, channels.data(), strides.data());
  } else {
    std::array<int32_t *, ZE_KEST_PCM_CHANNEL_ENTRIES> channels{};
    ze_kest_Utility_AnalyzeInputPort32BitPcmGroup(filter, 0, channels.data(), strides.data(), &groupPresent);
    ze_kest_Utility_WriteAllOutputPort32BitPcmBuffer(filter, samples, channels.data(), strides.data());
  }
  return samples;
}

// Takes all that there is, and accounts for blocks that nobody has written.
void MoveGarbledMetadata(ZE_KEST_Filter_s *filter) {
  ze_kest_Utility_UpdateAllInputPortMetadataReadSize(filter, filter->apstInPort[0]->stMeta.sztLevel);
  ze_kest_Utility_UpdateAllOutputPortMetadataWriteSize(filter, filter->apstOutPort[0]->stMeta.sztSpace);
}

void Process(void *self, ZE_KEST_Filter_s *filter, uint32_t ended) {
  auto &instance = *static_cast<Instance *>(self);
  __atomic_add_fetch(&instance.values[1], 1, __ATOMIC_RELAXED);
  if (Is("stands still") || (Is("stands still at the end") && ended != 0)) return;
  const uint32_t samples = PassOn(instance, filter);
  // The library limits what is accounted for to the size of the rings, which is more than they hold.
  const uint32_t more = Is("accounts for more") && samples > 0 ? filter->apstInPort[0]->stPcm.sztPcmSpace : 0;
  ze_kest_Utility_UpdateAllOutputPortPcmWriteSize(filter, samples + more);
  ze_kest_Utility_UpdateAllInputPortPcmReadSize(filter, samples + more);
  if (Is("garbled metadata")) MoveGarbledMetadata(filter);
}

uint32_t Command(void *, const char *text) {
  if (std::strcmp(text, "sing") != 0) return ZE_KEST_INVALID_ARGUMENT;
  ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "la la la\n");
  return ZE_KEST_OK;
}

// ---- Kinds ----

struct KindFault {
  const char *name;
  void (*apply)(Kind &kind);
};

constexpr KindFault kKindFaults[] = {{"size", [](Kind &kind) { kind.u32Size = 8; }},
                                     {"filter size", [](Kind &kind) { kind.u32FilterSize += 8; }},
                                     {"port size", [](Kind &kind) { kind.u32PortSize -= 8; }},
                                     {"flags", [](Kind &kind) { kind.u32Flags = 8; }},
                                     {"name", [](Kind &kind) { kind.pszName = "a,b"; }},
                                     {"no name", [](Kind &kind) { kind.pszName = nullptr; }},
                                     {"built-in name", [](Kind &kind) { kind.pszName = "Volume"; }},
                                     {"version", [](Kind &kind) { kind.pszVersion = nullptr; }},
                                     {"description", [](Kind &kind) { kind.pszDescription = "a\nb"; }},
                                     {"no width", [](Kind &kind) { kind.u32Widths = 0; }},
                                     {"widths", [](Kind &kind) { kind.u32Widths = 4; }},
                                     {"no channels", [](Kind &kind) { kind.u32LeastChannels = 0; }},
                                     {"channels", [](Kind &kind) { kind.u32LeastChannels = 3; }},
                                     {"too many channels", [](Kind &kind) { kind.u32MostChannels = 23; }},
                                     {"no create", [](Kind &kind) { kind.pfnCreate = nullptr; }},
                                     {"no destroy", [](Kind &kind) { kind.pfnDestroy = nullptr; }},
                                     {"no process", [](Kind &kind) { kind.pfnProcess = nullptr; }},
                                     {"no get", [](Kind &kind) { kind.pfnGet = nullptr; }},
                                     {"no set", [](Kind &kind) { kind.pfnSet = nullptr; }}};

Kind Describe(const char *name) {
  Kind kind{};
  kind.u32Size = sizeof(Kind);
  kind.u32FilterSize = sizeof(ZE_KEST_Filter_s);
  kind.u32PortSize = sizeof(ZE_KEST_Port_s);
  kind.pszName = name;
  kind.pszVersion = "0.1";
  kind.pszDescription = "";
  kind.u32Widths = ZE_KEST_MODULE_16_BITS | ZE_KEST_MODULE_32_BITS;
  kind.u32LeastChannels = 1;
  kind.u32MostChannels = 2;
  kind.pfnCreate = Create;
  kind.pfnDestroy = Destroy;
  kind.pfnProcess = Process;
  kind.pfnParameter = GetParameter;
  kind.pfnGet = [](void *self, uint32_t index) {
    return __atomic_load_n(&static_cast<Instance *>(self)->values[index], __ATOMIC_RELAXED);
  };
  kind.pfnSet = [](void *self, uint32_t index, int32_t value) {
    __atomic_store_n(&static_cast<Instance *>(self)->values[index], value, __ATOMIC_RELAXED);
  };
  kind.pfnCommand = Command;
  return kind;
}

}  // namespace

const ZE_KEST_ModuleFilter_s *ze_kest_module(uint32_t u32Abi, uint32_t u32Index) {
  static Kind kinds[2];
  if (u32Abi != ZE_KEST_MODULE_ABI || Is("foreign version")) return nullptr;
  kinds[0] = Describe("Plain");
  if (Is("garbled metadata")) kinds[0].u32Flags = ZE_KEST_MODULE_FORWARDS_METADATA;
  kinds[1] = Describe(Is("two of a name") ? "Plain" : "Narrow");
  kinds[1].u32Widths = ZE_KEST_MODULE_16_BITS;
  for (const KindFault &fault : kKindFaults) {
    if (Is(fault.name)) fault.apply(kinds[0]);
  }
  if (Is("kinds without end")) return &kinds[u32Index % 2];
  return u32Index < 2 ? &kinds[u32Index] : nullptr;
}
