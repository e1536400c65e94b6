// SPDX-License-Identifier: Apache-2.0
#include "bench/resampler.h"

#include "bench/table.h"

namespace kest::bench {

Resampler::Resampler(AVSampleFormat eIn, AVSampleFormat eOut, uint32_t u32Channels) {
  constexpr int kRate = 48000;
  AVChannelLayout stLayout = {};
  av_channel_layout_default(&stLayout, static_cast<int>(u32Channels));
  SwrContext *pstContext = nullptr;
  swr_alloc_set_opts2(&pstContext, &stLayout, eOut, kRate, &stLayout, eIn, kRate, 0, nullptr);
  context_.reset(pstContext);
  if (pstContext == nullptr || swr_init(pstContext) < 0) ReportFault("libswresample refuses the format");
}

void Resampler::Convert(const Planes &out, const Planes &in, uint32_t u32Frames) const {
  Planes outPlanes = out;
  std::array<const uint8_t *, kMaxChannels> inPlanes;
  for (size_t i = 0; i < in.size(); ++i)
    inPlanes[i] = in[i];
  const auto s32Frames = static_cast<int>(u32Frames);
  swr_convert(context_.get(), outPlanes.data(), s32Frames, inPlanes.data(), s32Frames);
}

}  // namespace kest::bench
