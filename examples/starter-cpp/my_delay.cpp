// SPDX-License-Identifier: Apache-2.0
// A filter to begin with in C++: it delays the sound by as many samples as its configuration says. It shows
// latency, what a filter does after the end of its input, and a configuration text. No exception may leave
// the entries.
#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <ze_kest/module.h>
#include <ze_kest/utility.h>

namespace {

constexpr uint32_t kMostDelay = 48000;
constexpr uint32_t kUsualDelay = 480;

uint32_t ParseDelay(std::string_view text) {
  if (text.empty()) return kUsualDelay;
  uint32_t samples = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), samples);
  if (error != std::errc() || end != text.data() + text.size() || samples > kMostDelay) {
    throw std::invalid_argument("the configuration is the delay, 0 to " + std::to_string(kMostDelay) +
                                " samples");
  }
  return samples;
}

class Delay {
 public:
  virtual ~Delay() = default;
  virtual void Process(ZE_KEST_Filter_s &filter, bool ended) = 0;
  [[nodiscard]] virtual uint32_t Latency() const = 0;
  [[nodiscard]] virtual uint32_t Pending() const = 0;
};

// The library's functions for a width.
template <typename Sample>
void WriteOutput(const ZE_KEST_Filter_s &filter, uint32_t samples, Sample *const *channels,
                 const uint16_t *strides) {
  if constexpr (sizeof(Sample) == 2) {
    ze_kest_Utility_WriteAllOutputPort16BitPcmBuffer(&filter, samples, channels, strides);
  } else {
    ze_kest_Utility_WriteAllOutputPort32BitPcmBuffer(&filter, samples, channels, strides);
  }
}

template <typename Sample>
void Analyze(const ZE_KEST_Filter_s &filter, Sample **channels, uint16_t *strides) {
  uint8_t groupPresent = 0;
  if constexpr (sizeof(Sample) == 2) {
    ze_kest_Utility_AnalyzeInputPort16BitPcmGroup(&filter, 0, channels, strides, &groupPresent);
  } else {
    ze_kest_Utility_AnalyzeInputPort32BitPcmGroup(&filter, 0, channels, strides, &groupPresent);
  }
}

template <typename Sample>
class DelayOf : public Delay {
 public:
  DelayOf(const ZE_KEST_ModuleSetup_s &setup, uint32_t delay) : delay_(delay), pending_(delay) {
    for (uint32_t group = 0; group < ZE_KEST_PCM_GROUPS; ++group) {
      const ZE_KEST_PcmGroup_s &slots = setup.astPcmGroup[group];
      for (uint32_t slot = 0; slot < slots.u32ChannelCount; ++slot) {
        lines_.push_back({group * ZE_KEST_PCM_GROUP_ENTRIES + slot, std::vector<Sample>(delay),
                          std::vector<Sample>(setup.u32MaxSamples)});
      }
    }
  }

  void Process(ZE_KEST_Filter_s &filter, bool ended) override {
    uint32_t room = 0;
    ze_kest_Utility_CalculateOutputPortPcmProcessSize(&filter, &room);
    const uint32_t samples = std::min(SamplesHeld(filter), room);
    if (samples > 0) {
      Move(filter, samples);
      ze_kest_Utility_UpdateAllInputPortPcmReadSize(&filter, samples);
    } else if (ended && filter.apstInPort[0]->stPcm.sztPcmLevel == 0) {
      const uint32_t rest = std::min(pending_, room);
      Move(filter, rest);  // silence goes in
      pending_ -= rest;
    }
  }
  [[nodiscard]] uint32_t Latency() const override { return delay_; }
  [[nodiscard]] uint32_t Pending() const override { return pending_; }

 private:
  struct Line {
    uint32_t entry;  // of the channel, in the arrays that the library takes
    std::vector<Sample> held;
    std::vector<Sample> out;
  };

  // In one piece: the pointers that Analyze gives end with the ring.
  static uint32_t SamplesHeld(const ZE_KEST_Filter_s &filter) {
    const ZE_KEST_PcmBuffer_s &input = filter.apstInPort[0]->stPcm;
    uint32_t held = 0;
    ze_kest_Utility_CalculateInputPortPcmProcessSize(&filter, &held);
    return std::min(held, input.sztPcmRingSamples - input.sztPcmReadOffset);
  }

  void Move(ZE_KEST_Filter_s &filter, uint32_t samples) {
    std::array<Sample *, ZE_KEST_PCM_CHANNEL_ENTRIES> in{};
    std::array<Sample *, ZE_KEST_PCM_CHANNEL_ENTRIES> out{};
    std::array<uint16_t, ZE_KEST_PCM_CHANNEL_ENTRIES> strides{};
    if (filter.apstInPort[0]->stPcm.sztPcmLevel > 0) Analyze(filter, in.data(), strides.data());
    strides.fill(1);
    for (Line &line : lines_) {
      Run(line, in[line.entry], samples);
      out[line.entry] = line.out.data();
    }
    if (delay_ > 0) position_ = (position_ + samples) % delay_;
    WriteOutput<Sample>(filter, samples, out.data(), strides.data());
    ze_kest_Utility_UpdateAllOutputPortPcmWriteSize(&filter, samples);
  }

  // in: nullptr for silence.
  void Run(Line &line, const Sample *in, uint32_t samples) const {
    uint32_t position = position_;
    for (uint32_t i = 0; i < samples; ++i) {
      Sample sample = in == nullptr ? Sample{0} : in[i];
      if (delay_ > 0) std::swap(sample, line.held[position]);
      line.out[i] = sample;
      if (++position >= delay_) position = 0;
    }
  }

  uint32_t delay_;
  uint32_t pending_;
  uint32_t position_ = 0;  // of the oldest sample that is held
  std::vector<Line> lines_;
};

std::unique_ptr<Delay> MakeDelay(const ZE_KEST_ModuleSetup_s &setup) {
  const uint32_t delay = ParseDelay(setup.pszConfig);
  if (setup.stPcmInfo.u32BitWidth == 16) return std::make_unique<DelayOf<int16_t>>(setup, delay);
  return std::make_unique<DelayOf<int32_t>>(setup, delay);
}

uint32_t Create(const ZE_KEST_ModuleFilter_s * /*pstKind*/, const ZE_KEST_ModuleSetup_s *pstSetup,
                void **ppvSelf) {
  try {
    *ppvSelf = MakeDelay(*pstSetup).release();
    return ZE_KEST_OK;
  } catch (const std::exception &error) {
    std::snprintf(pstSetup->pszError, pstSetup->u32ErrorSize, "%s", error.what());
    return ZE_KEST_FAILED;
  }
}

ZE_KEST_ModuleFilter_s DescribeDelay() {
  ZE_KEST_ModuleFilter_s filter{};
  filter.u32Size = sizeof(ZE_KEST_ModuleFilter_s);
  filter.u32FilterSize = sizeof(ZE_KEST_Filter_s);
  filter.u32PortSize = sizeof(ZE_KEST_Port_s);
  filter.pszName = "MyDelay";
  filter.pszVersion = "1.0";
  filter.pszDescription = "a delay to begin with; configuration: how many samples";
  filter.u32Widths = ZE_KEST_MODULE_16_BITS | ZE_KEST_MODULE_32_BITS;
  filter.u32LeastChannels = 1;
  filter.u32MostChannels = 22;
  filter.pfnCreate = Create;
  filter.pfnDestroy = [](void *pvSelf) { delete static_cast<Delay *>(pvSelf); };
  filter.pfnProcess = [](void *pvSelf, ZE_KEST_Filter_s *pstFilter, uint32_t bEnded) {
    static_cast<Delay *>(pvSelf)->Process(*pstFilter, bEnded != 0);
  };
  filter.pfnLatency = [](void *pvSelf) { return static_cast<const Delay *>(pvSelf)->Latency(); };
  filter.pfnPending = [](void *pvSelf) { return static_cast<const Delay *>(pvSelf)->Pending(); };
  return filter;
}

}  // namespace

const ZE_KEST_ModuleFilter_s *ze_kest_module(uint32_t u32Abi, uint32_t u32Index) {
  static const ZE_KEST_ModuleFilter_s kDelay = DescribeDelay();
  return u32Abi == ZE_KEST_MODULE_ABI && u32Index == 0 ? &kDelay : nullptr;
}
