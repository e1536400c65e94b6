// SPDX-License-Identifier: Apache-2.0
// A control port of a LADSPA plug-in as a parameter: a number with fixed decimals.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include <ladspa.h>
#include <ze_kest/module.h>

namespace ladspa_host {

class Control {
 public:
  Control(const LADSPA_Descriptor &plugin, unsigned long port, uint32_t sampleRate);

  [[nodiscard]] unsigned long Port() const { return port_; }
  [[nodiscard]] bool IsInput() const { return isInput_; }
  [[nodiscard]] const std::string &Name() const { return name_; }
  void Rename(const std::string &name) { name_ = name; }
  // Valid until the control is renamed or moved.
  [[nodiscard]] ZE_KEST_ModuleParameter_s Describe() const;

  // Any thread.
  [[nodiscard]] int32_t Get() const { return value_.load(std::memory_order_relaxed); }
  void Set(int32_t value) { value_.store(value, std::memory_order_relaxed); }

  // Where the plug-in reads or writes the control; the processing thread copies between it and the value.
  LADSPA_Data *Location() { return &data_; }
  void Exchange() { isInput_ ? ToPlugin() : FromPlugin(); }

 private:
  void ToPlugin();
  void FromPlugin();
  void FindLimits(const LADSPA_PortRangeHint &hint, uint32_t sampleRate);
  [[nodiscard]] double DefaultOf(LADSPA_PortRangeHintDescriptor hint) const;
  [[nodiscard]] int32_t ToNumber(double value) const;

  unsigned long port_;
  bool isInput_;
  std::string name_;
  std::string unit_;
  double least_ = 0.0;
  double most_ = 0.0;
  double default_ = 0.0;
  uint32_t decimals_ = 0;
  double scale_ = 1.0;  // 10 to the power of the decimals
  std::atomic<int32_t> value_{0};
  LADSPA_Data data_ = 0.0f;
};

}  // namespace ladspa_host
