// SPDX-License-Identifier: Apache-2.0
// The module: an instance of a filter runs a LADSPA plug-in, given by the configuration, on all channels.
#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <exception>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <ze_kest/module.h>
#include <ze_kest/utility.h>

#include "buffer.h"
#include "control.h"
#include "plugin.h"

namespace ladspa_host {
namespace {

constexpr const char *kNonFinite = "NonFinite";

// Sample types: the library's functions for them, and full scale.
template <typename Sample>
using Pointers = std::array<Sample *, ZE_KEST_PCM_CHANNEL_ENTRIES>;
using Strides = std::array<uint16_t, ZE_KEST_PCM_CHANNEL_ENTRIES>;

void Analyze(const ZE_KEST_Filter_s &filter, Pointers<int16_t> &channels, Strides &strides) {
  uint8_t present = 0;
  ze_kest_Utility_AnalyzeInputPort16BitPcmGroup(&filter, 0, channels.data(), strides.data(), &present);
}
void Analyze(const ZE_KEST_Filter_s &filter, Pointers<int32_t> &channels, Strides &strides) {
  uint8_t present = 0;
  ze_kest_Utility_AnalyzeInputPort32BitPcmGroup(&filter, 0, channels.data(), strides.data(), &present);
}
void Write(const ZE_KEST_Filter_s &filter, uint32_t samples, const Pointers<int16_t> &channels,
           const Strides &strides) {
  ze_kest_Utility_WriteAllOutputPort16BitPcmBuffer(&filter, samples, channels.data(), strides.data());
}
void Write(const ZE_KEST_Filter_s &filter, uint32_t samples, const Pointers<int32_t> &channels,
           const Strides &strides) {
  ze_kest_Utility_WriteAllOutputPort32BitPcmBuffer(&filter, samples, channels.data(), strides.data());
}

template <typename Sample>
constexpr double kFullScale = -static_cast<double>(std::numeric_limits<Sample>::min());

// Rounded and saturated.
template <typename Sample>
Sample FromFloat(LADSPA_Data value) {
  const double scaled = std::rint(double{value} * kFullScale<Sample>);
  return static_cast<Sample>(std::clamp(scaled, -kFullScale<Sample>, kFullScale<Sample> - 1.0));
}

struct Channel {
  uint32_t entry;  // in the arrays that the library takes
  Buffer in;
  Buffer out;
  std::vector<int32_t> samples;  // room for the output in either width
};

class Filter {
 public:
  explicit Filter(const ZE_KEST_ModuleSetup_s &setup);

  void Process(ZE_KEST_Filter_s &filter, bool ended) {
    if (bits_ == 16) return ProcessAs<int16_t>(filter, ended);
    ProcessAs<int32_t>(filter, ended);
  }
  [[nodiscard]] uint32_t Latency() const { return latency_; }
  [[nodiscard]] uint32_t Pending() const { return pending_; }
  [[nodiscard]] const ZE_KEST_ModuleParameter_s *Parameter(uint32_t index) const {
    return index < parameters_.size() ? &parameters_[index] : nullptr;
  }
  [[nodiscard]] int32_t Get(uint32_t index) const {
    return index < controls_.size() ? controls_[index]->Get() : nonFinite_.load(std::memory_order_relaxed);
  }
  void Set(uint32_t index, int32_t value) { controls_[index]->Set(value); }

 private:
  void MakeChannels(const ZE_KEST_ModuleSetup_s &setup);
  void MakeControls();
  [[nodiscard]] std::vector<std::unique_ptr<Instance>> MakeInstances();
  [[nodiscard]] uint32_t MeasureLatency();
  template <typename Sample>
  void ProcessAs(ZE_KEST_Filter_s &filter, bool ended);
  template <typename Sample>
  void Take(const ZE_KEST_Filter_s &filter, uint32_t samples);
  template <typename Sample>
  void Give(const ZE_KEST_Filter_s &filter, uint32_t samples);
  void Run(uint32_t samples);

  const LADSPA_Descriptor &plugin_;
  uint32_t bits_;
  uint32_t sampleRate_;
  uint32_t maxSamples_;
  AudioPorts ports_;
  std::vector<Channel> channels_;
  std::vector<std::unique_ptr<Control>> controls_;
  std::vector<ZE_KEST_ModuleParameter_s> parameters_;
  LADSPA_Data unused_ = 0.0f;  // control outputs of all instances but the first
  std::vector<std::unique_ptr<Instance>> instances_;
  uint32_t latency_ = 0;
  uint32_t pending_ = 0;
  std::atomic<int32_t> nonFinite_{0};
};

std::string Count(size_t count, const char *what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// Plug-ins take the rate for that of sound: at a thousand times as much they would exhaust the memory.
void CheckRate(uint32_t rate) {
  constexpr uint32_t kLeast = 4000;
  constexpr uint32_t kMost = 768000;
  if (rate >= kLeast && rate <= kMost) return;
  throw std::runtime_error("plug-ins are run at " + std::to_string(kLeast) + " to " + std::to_string(kMost) +
                           " Hz, not at " + std::to_string(rate));
}

void CheckPorts(const LADSPA_Descriptor &plugin, const AudioPorts &ports, size_t channels) {
  const size_t ins = ports.inputs.size();
  const size_t outs = ports.outputs.size();
  if (ins == outs && (ins == 1 || ins == channels)) return;
  throw std::runtime_error(std::string(plugin.Label) + " has " + Count(ins, "audio input") + " and " +
                           Count(outs, "audio output") + "; for " + Count(channels, "channel") +
                           " one of each, or as many of each as channels, are needed");
}

Filter::Filter(const ZE_KEST_ModuleSetup_s &setup)
    : plugin_(FindPlugin(setup.pszConfig, setup.pszDirectory)),
      bits_(setup.stPcmInfo.u32BitWidth),
      sampleRate_(setup.stPcmInfo.u32SampleRate),
      maxSamples_(setup.u32MaxSamples),
      ports_(AudioPortsOf(plugin_)) {
  CheckRate(sampleRate_);
  MakeChannels(setup);
  CheckPorts(plugin_, ports_, channels_.size());
  MakeControls();
  const FlushDenormals flush;
  latency_ = MeasureLatency();
  pending_ = latency_;
  for (const auto &control : controls_) {
    control->Set(parameters_[static_cast<size_t>(&control - controls_.data())].s32Default);
  }
  instances_ = MakeInstances();
}

void Filter::MakeChannels(const ZE_KEST_ModuleSetup_s &setup) {
  for (uint32_t group = 0; group < ZE_KEST_PCM_GROUPS; ++group) {
    for (uint32_t slot = 0; slot < setup.astPcmGroup[group].u32ChannelCount; ++slot) {
      channels_.push_back({group * ZE_KEST_PCM_GROUP_ENTRIES + slot, MakeBuffer(maxSamples_),
                           MakeBuffer(maxSamples_), std::vector<int32_t>(maxSamples_)});
    }
  }
}

// Names that are there already get a number.
void Filter::MakeControls() {
  for (unsigned long port = 0; port < plugin_.PortCount; ++port) {
    if (!LADSPA_IS_PORT_CONTROL(plugin_.PortDescriptors[port])) continue;
    auto control = std::make_unique<Control>(plugin_, port, sampleRate_);
    const std::string name = control->Name();
    const auto isTaken = [&](const auto &earlier) { return earlier->Name() == control->Name(); };
    for (int number = 2;
         control->Name() == kNonFinite || std::any_of(controls_.begin(), controls_.end(), isTaken);
         ++number) {
      control->Rename(name + "_" + std::to_string(number));
    }
    controls_.push_back(std::move(control));
  }
  for (const auto &control : controls_) {
    parameters_.push_back(control->Describe());
  }
  ZE_KEST_ModuleParameter_s nonFinite{};
  nonFinite.u32Size = sizeof(nonFinite);
  nonFinite.u32Flags = ZE_KEST_MODULE_READ_ONLY;
  nonFinite.pszName = kNonFinite;
  nonFinite.pszDescription = "samples that were no numbers and became 0";
  nonFinite.pszUnit = "";
  nonFinite.s32Most = std::numeric_limits<int32_t>::max();
  parameters_.push_back(nonFinite);
}

// One for all channels, or one for each.
std::vector<std::unique_ptr<Instance>> Filter::MakeInstances() {
  std::vector<std::unique_ptr<Instance>> instances;
  const size_t channelsOfEach = ports_.inputs.size();
  for (size_t first = 0; first < channels_.size(); first += channelsOfEach) {
    auto instance = std::make_unique<Instance>(plugin_, sampleRate_);
    for (size_t i = 0; i < channelsOfEach; ++i) {
      instance->Connect(ports_.inputs[i], channels_[first + i].in.get());
      instance->Connect(ports_.outputs[i], channels_[first + i].out.get());
    }
    for (const auto &control : controls_) {
      const bool isShown = control->IsInput() || first == 0;
      instance->Connect(control->Port(), isShown ? control->Location() : &unused_);
    }
    instance->Activate();
    instances.push_back(std::move(instance));
  }
  return instances;
}

// Plug-ins tell their latency only after they have run, so instances of their own do that.
uint32_t Filter::MeasureLatency() {
  const auto reports = [](const auto &control) {
    return !control->IsInput() && (control->Name() == "latency" || control->Name() == "_latency");
  };
  const auto port = std::find_if(controls_.begin(), controls_.end(), reports);
  if (port == controls_.end()) return 0;
  for (const auto &instance : MakeInstances()) {
    instance->Run(maxSamples_);
  }
  const LADSPA_Data latency = *(*port)->Location();
  for (Channel &channel : channels_) {
    std::fill_n(channel.out.get(), maxSamples_, 0.0f);
  }
  constexpr float kMost = 1e6f;
  return latency > 0.0f && latency < kMost ? static_cast<uint32_t>(std::lrint(latency)) : 0;
}

template <typename Sample>
void Filter::ProcessAs(ZE_KEST_Filter_s &filter, bool ended) {
  const ZE_KEST_PcmBuffer_s &input = filter.apstInPort[0]->stPcm;
  uint32_t held = 0;
  uint32_t room = 0;
  ze_kest_Utility_CalculateInputPortPcmProcessSize(&filter, &held);
  ze_kest_Utility_CalculateOutputPortPcmProcessSize(&filter, &room);
  // In one piece: the pointers that Analyze gives end with the ring.
  const uint32_t taken = std::min({held, room, input.sztPcmRingSamples - input.sztPcmReadOffset});
  const bool isRest = taken == 0 && ended && input.sztPcmLevel == 0;
  const uint32_t given = isRest ? std::min(pending_, room) : taken;
  if (given == 0) return;
  if (isRest) pending_ -= given;

  Take<Sample>(filter, taken);
  Run(given);
  Give<Sample>(filter, given);
  ze_kest_Utility_UpdateAllOutputPortPcmWriteSize(&filter, given);
  ze_kest_Utility_UpdateAllInputPortPcmReadSize(&filter, taken);
}

// Silence when nothing is taken.
template <typename Sample>
void Filter::Take(const ZE_KEST_Filter_s &filter, uint32_t samples) {
  Pointers<Sample> sources{};
  Strides strides{};
  if (samples > 0) Analyze(filter, sources, strides);
  for (Channel &channel : channels_) {
    const Sample *source = sources[channel.entry];
    if (source == nullptr) {
      std::fill_n(channel.in.get(), maxSamples_, 0.0f);
      continue;
    }
    std::transform(source, source + samples, channel.in.get(),
                   [](Sample sample) { return static_cast<LADSPA_Data>(sample / kFullScale<Sample>); });
  }
}

void Filter::Run(uint32_t samples) {
  for (const auto &control : controls_) {
    if (control->IsInput()) control->Exchange();
  }
  const FlushDenormals flush;
  for (const auto &instance : instances_) {
    instance->Run(samples);
  }
  for (const auto &control : controls_) {
    if (!control->IsInput()) control->Exchange();
  }
}

template <typename Sample>
void Filter::Give(const ZE_KEST_Filter_s &filter, uint32_t samples) {
  Pointers<Sample> targets{};
  Strides strides{};
  strides.fill(1);
  for (Channel &channel : channels_) {
    auto *target = static_cast<Sample *>(static_cast<void *>(channel.samples.data()));
    for (uint32_t i = 0; i < samples; ++i) {
      const bool isNumber = std::isfinite(channel.out[i]);
      if (!isNumber) nonFinite_.fetch_add(1, std::memory_order_relaxed);
      target[i] = isNumber ? FromFloat<Sample>(channel.out[i]) : Sample{0};
    }
    targets[channel.entry] = target;
  }
  Write(filter, samples, targets, strides);
}

uint32_t Create(const ZE_KEST_ModuleFilter_s * /*pstKind*/, const ZE_KEST_ModuleSetup_s *pstSetup,
                void **ppvSelf) {
  try {
    *ppvSelf = std::make_unique<Filter>(*pstSetup).release();
    return ZE_KEST_OK;
  } catch (const std::exception &error) {
    std::string line = error.what();  // may quote a configuration of several lines
    std::replace_if(
        line.begin(), line.end(), [](unsigned char c) { return std::iscntrl(c) != 0; }, '?');
    std::snprintf(pstSetup->pszError, pstSetup->u32ErrorSize, "%s", line.c_str());
    return ZE_KEST_FAILED;
  }
}

Filter &Self(void *pvSelf) {
  return *static_cast<Filter *>(pvSelf);
}

struct Kind {
  const char *name;
  const char *description;
  uint32_t flags;
};

constexpr Kind kKinds[] = {
    {"Ladspa", "a LADSPA plug-in; configuration: FILE:LABEL", 0},
    {"LadspaMayDiffer", "the same, for one whose runs may differ", ZE_KEST_MODULE_MAY_DIFFER},
    {"LadspaMayBlock", "the same, for one that is not real-time safe", ZE_KEST_MODULE_MAY_BLOCK},
    {"LadspaMayDifferAndBlock", "the same, for one that is both",
     ZE_KEST_MODULE_MAY_DIFFER | ZE_KEST_MODULE_MAY_BLOCK}};

ZE_KEST_ModuleFilter_s Describe(const Kind &kind) {
  ZE_KEST_ModuleFilter_s filter{};
  filter.u32Size = sizeof(filter);
  filter.u32FilterSize = sizeof(ZE_KEST_Filter_s);
  filter.u32PortSize = sizeof(ZE_KEST_Port_s);
  filter.u32Flags = kind.flags;
  filter.pszName = kind.name;
  filter.pszVersion = "1.0";
  filter.pszDescription = kind.description;
  filter.u32Widths = ZE_KEST_MODULE_16_BITS | ZE_KEST_MODULE_32_BITS;
  filter.u32LeastChannels = 1;
  filter.u32MostChannels = 22;
  filter.pfnCreate = Create;
  filter.pfnDestroy = [](void *pvSelf) { delete &Self(pvSelf); };
  filter.pfnProcess = [](void *pvSelf, ZE_KEST_Filter_s *pstFilter, uint32_t bEnded) {
    Self(pvSelf).Process(*pstFilter, bEnded != 0);
  };
  filter.pfnLatency = [](void *pvSelf) { return Self(pvSelf).Latency(); };
  filter.pfnPending = [](void *pvSelf) { return Self(pvSelf).Pending(); };
  filter.pfnParameter = [](void *pvSelf, uint32_t u32Index) { return Self(pvSelf).Parameter(u32Index); };
  filter.pfnGet = [](void *pvSelf, uint32_t u32Index) { return Self(pvSelf).Get(u32Index); };
  filter.pfnSet = [](void *pvSelf, uint32_t u32Index, int32_t s32Value) {
    Self(pvSelf).Set(u32Index, s32Value);
  };
  return filter;
}

}  // namespace
}  // namespace ladspa_host

const ZE_KEST_ModuleFilter_s *ze_kest_module(uint32_t u32Abi, uint32_t u32Index) {
  using namespace ladspa_host;
  constexpr uint32_t kCount = std::size(kKinds);
  static const auto kFilters = [] {
    std::array<ZE_KEST_ModuleFilter_s, kCount> filters{};
    std::transform(std::begin(kKinds), std::end(kKinds), filters.begin(), Describe);
    return filters;
  }();
  return u32Abi == ZE_KEST_MODULE_ABI && u32Index < kCount ? &kFilters[u32Index] : nullptr;
}
