// SPDX-License-Identifier: Apache-2.0
#include "player/filters/down_mix.h"

#include <cmath>
#include <numeric>
#include <utility>

#include "ze_kest/utility.h"

#include "player/filters/filter_material.h"
#include "player/framework/filter_layout.h"
#include "player/framework/parameter_rows.h"
#include "player/framework/saturate.h"

namespace kest::player {
namespace {

constexpr ParameterRange kChannels = {"", 0, kMaxChannels, 0};

constexpr Parameter kParameters[] = {
    ReadOnly<uint32_t, &DownMix::InputChannels>("InChannels", "channels of the input", kChannels),
    ReadOnly<uint32_t, &DownMix::OutputChannels>("OutChannels", "channels of the output", kChannels),
};
constexpr Setting kSettings[] = {{DownMix::kMatrixSetting, TextRange{MixMatrix::kNeeded}, true}};

std::unique_ptr<Filter> Make(const FilterLayout &layout, const FilterMaterial &material) {
  MixMatrix matrix(layout.Text(DownMix::kMatrixSetting), material.format.channels);
  return std::make_unique<DownMix>(material.format, std::move(matrix));
}

PcmFormat WithChannels(PcmFormat format, uint32_t channels) {
  format.channels = channels;
  return format;
}

}  // namespace

const FilterKind DownMix::kKind = {"DownMix", FilterPlace::kBetween, Make, kSettings, kParameters, {}};

DownMix::DownMix(const PcmFormat &format, MixMatrix matrix)
    : Filter(kKind, format, WithChannels(format, matrix.OutputChannels())), matrix_(std::move(matrix)) {}

void DownMix::Process() {
  const uint32_t frames = FramesToProcess();
  if (frames == 0) return;
  WithSampleType(Format(), [&](auto sample) { MixFrames<decltype(sample)>(frames); });
  ForwardMetadata(frames);
  ze_kest_Utility_UpdateAllInputPortPcmReadSize(&Record(), frames);
}

// Rounded to the nearest sample. Half way between two, the even one is taken.
template <typename Sample>
void DownMix::MixFrames(uint32_t frames) {
  const uint32_t outputChannels = OutputFormat().channels;
  const Sample *frame = input_.Samples<Sample>();
  Sample *mixed = mixed_.Samples<Sample>();
  ReadFrames(0, input_.Samples<Sample>(), frames);
  for (uint32_t i = 0; i < frames; ++i, frame += Format().channels) {
    for (uint32_t channel = 0; channel < outputChannels; ++channel) {
      const std::vector<double> &factors = matrix_.Row(channel);
      const double sum = std::inner_product(factors.begin(), factors.end(), frame, 0.0);
      *mixed++ = Saturate<Sample>(std::llrint(sum));
    }
  }
  WriteFrames(mixed_.Samples<Sample>(), frames);
}

}  // namespace kest::player
