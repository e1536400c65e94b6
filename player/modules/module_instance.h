// SPDX-License-Identifier: Apache-2.0
// An instance of a module's filter. Threads as in ze_kest/module.h.
#pragma once

#include <string>
#include <vector>

#include "ze_kest/module.h"

#include "player/framework/pcm_format.h"
#include "player/modules/module.h"

namespace kest::player {

struct ModuleSetup {
  PcmFormat format;
  uint32_t maxSamples;  // per call
  std::string config{};
  std::string directory{};  // where relative paths in it start; the working directory when empty
};

// Why the kind cannot have the format; empty when it can.
std::string FaultOf(const ZE_KEST_ModuleFilter_s &filter, const PcmFormat &format);

class ModuleInstance {
 public:
  // Throws ModuleError when the kind does not take the format, when the module refuses, with its words, and
  // when its parameters are faulty.
  ModuleInstance(const ModuleKind &kind, const ModuleSetup &setup);
  ~ModuleInstance();
  ModuleInstance(const ModuleInstance &) = delete;
  ModuleInstance &operator=(const ModuleInstance &) = delete;

  [[nodiscard]] const ModuleKind &Kind() const { return kind_; }
  [[nodiscard]] const std::vector<ZE_KEST_ModuleParameter_s> &Parameters() const { return parameters_; }

  // One turn on the record's ports. The caller releases and commits.
  void Process(ZE_KEST_Filter_s &record, bool ended) { Entries().pfnProcess(self_, &record, ended ? 1 : 0); }
  [[nodiscard]] uint32_t Latency() const;
  [[nodiscard]] uint32_t Pending() const;
  [[nodiscard]] int32_t Get(size_t index) const;
  // Clamps the value to the parameter's limits. Not for one that can only be read.
  void Set(size_t index, int32_t value);
  // A result code.
  uint32_t Command(const char *text);

 private:
  [[nodiscard]] const ZE_KEST_ModuleFilter_s &Entries() const { return kind_.record; }
  [[nodiscard]] std::string ReadParameters();

  const ModuleKind &kind_;
  void *self_ = nullptr;
  std::vector<ZE_KEST_ModuleParameter_s> parameters_;
};

}  // namespace kest::player
