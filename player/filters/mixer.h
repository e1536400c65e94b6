// SPDX-License-Identifier: Apache-2.0
// Adds up its inputs and saturates the sum. An input that has ended does not hold up the others.
#pragma once

#include <array>
#include <tuple>

#include "player/framework/filter.h"

namespace kest::player {

class Mixer : public Filter {
 public:
  static const FilterKind kKind;

  explicit Mixer(const PcmFormat &format) : Filter(kKind, format) {}

 protected:
  void Process() override;

 private:
  template <typename Sample>
  void MixFrames(uint32_t frames);
  template <typename Sample, typename Sum>
  void AddInput(uint32_t port, uint32_t frames, Sum *sums);
  void ForwardFirstMetadata(uint32_t frames);
  uint32_t MetadataBytes(uint32_t port, uint32_t frames);
  void ReleaseInputs(uint32_t frames);
  [[nodiscard]] bool HasData(uint32_t port) const;

  std::array<uint32_t, ZE_KEST_MAX_PORTS> metadataRemainders_{};  // frames since each input's last block
  FrameBuffer buffer_;
  std::tuple<FrameArray<int32_t>, FrameArray<int64_t>> sums_{};  // of 16-bit and of 32-bit samples
};

}  // namespace kest::player
