// SPDX-License-Identifier: Apache-2.0
// A kind on the bench: an instance, ports, and streams that run through them.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "ze_kest/harness.h"

#include "player/check/subject.h"

namespace kest::player {

using Samples = std::vector<int32_t>;  // interleaved

struct Shape {
  uint32_t channels;
  uint32_t bits;
  uint32_t maxSamples = 256;
  uint32_t inputSamples = 1024;
  uint32_t outputSamples = 1024;
  uint32_t metadataBlocks = 0;
  uint32_t outputBlocks = 0;
  uint32_t sampleRate = 48000;
  uint32_t guard = ZE_KEST_HARNESS_GUARD_FAR;
  uint8_t marker = 0xA5;
};

// Stereo where the kind takes it, and the wider samples. A configuration may narrow what it takes.
Shape UsualShape(const Subject &subject);
// Every width; the least, the usual and the most channels.
std::vector<Shape> SomeShapes(const Subject &subject);
std::string TextOf(const Shape &shape);

class NoInstance : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class Rig {
 public:
  // With ports only.
  Rig(const Subject &subject, const Shape &shape);
  Rig(const Rig &) = delete;
  Rig &operator=(const Rig &) = delete;
  ~Rig();

  // Throws NoInstance with the kind's words.
  void Create();
  // pfnCreate's result.
  [[nodiscard]] uint32_t TryCreate();
  void Destroy() { ze_kest_Harness_Destroy(Get()); }
  [[nodiscard]] std::string Error() const { return ze_kest_Harness_Error(Get()); }

  [[nodiscard]] ZE_KEST_Harness_s *Get() const { return harness_.get(); }
  [[nodiscard]] const ModuleKind &Kind() const { return kind_; }
  [[nodiscard]] const ZE_KEST_ModuleFilter_s &Entries() const { return kind_.record; }
  [[nodiscard]] void *Self() const { return ze_kest_Harness_Self(Get()); }
  [[nodiscard]] uint32_t Channels() const { return shape_.channels; }
  [[nodiscard]] uint32_t Latency() const;
  [[nodiscard]] bool MayDiffer() const { return (Entries().u32Flags & ZE_KEST_MODULE_MAY_DIFFER) != 0; }

  // Adds the turn's faults to those of the rig.
  ZE_KEST_HarnessTurn_s Turn(bool ended);
  // The first of the faults in words, "" without one of them.
  [[nodiscard]] std::string FaultsOf(uint32_t mask) const;

 private:
  struct Closer {
    void operator()(ZE_KEST_Harness_s *harness) const { ze_kest_Harness_Close(harness); }
  };
  static constexpr size_t kFaults = 10;

  const ModuleKind &kind_;
  Shape shape_;
  std::unique_ptr<ZE_KEST_Harness_s, Closer> harness_;
  uint64_t turns_ = 0;
  std::array<std::string, kFaults> faults_;
};

// A rig with an instance.
std::unique_ptr<Rig> MakeRig(const Subject &subject, const Shape &shape);

// Where the harnesses of this process were hit; "" when they were not. For a signal's handler.
void DescribeGuardHit(const void *address, char *text, uint32_t size);

}  // namespace kest::player
