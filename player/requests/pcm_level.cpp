// SPDX-License-Identifier: Apache-2.0
#include "player/requests/pcm_level.h"

#include <algorithm>
#include <cmath>

#include "ze_kest/debug.h"

#include "player/base/relaxed.h"
#include "player/requests/pcm_rings.h"
#include "player/requests/request_names.h"

namespace kest::player {
namespace {

bool IsRequested(const ZE_KEST_Filter_s &filter) {
  return LoadRelaxed(u32KestCalPcmLev) == ZE_KEST_REQUEST_MADE &&
         IsNamed(szKestCalPcmLevName1, szKestCalPcmLevName2, filter);
}

bool HasOutput(const ZE_KEST_Filter_s &filter) {
  return filter.u32OutPortCount > 0;
}

PcmRun WrittenOrRead(const ZE_KEST_Filter_s &filter) {
  if (HasOutput(filter)) {
    const ZE_KEST_PcmBuffer_s &pcm = filter.apstOutPort[0]->stPcm;
    return {pcm, pcm.sztPcmReadOffset + pcm.sztPcmLevel, pcm.sztPcmWriteSize};
  }
  const ZE_KEST_PcmBuffer_s &pcm = filter.apstInPort[0]->stPcm;
  return {pcm, pcm.sztPcmReadOffset, pcm.sztPcmReadSize};
}

double OfFullScale(int16_t sample) {
  return sample / 32768.0;
}

double OfFullScale(int32_t sample) {
  return sample / 2147483648.0;
}

// -inf for silence.
double Db(double amplitude) {
  return 20.0 * std::log10(amplitude);
}

}  // namespace

// Several filters may share a request, each over its own cycles: the count is down as soon as one of them is
// done, and the others go on to their own ends. A count that has risen was asked for anew.
void PcmLevel::Measure(const ZE_KEST_Filter_s &filter) {
  if (!IsRequested(filter)) {
    cyclesLeft_ = 0;
    return;
  }
  if (LoadRelaxed(u32KestCalPcmLevCount) > cyclesLeft_) Begin(LoadRelaxed(u32KestCalPcmLevMaxCount));
  if (!IsRunning()) return;
  Add(filter);
  CountDown();
  if (!IsRunning()) Report(filter);
}

void PcmLevel::Begin(uint32_t cycles) {
  *this = PcmLevel();
  cycles_ = cycles;
  cyclesLeft_ = cycles;
}

void PcmLevel::Add(const ZE_KEST_Filter_s &filter) {
  const PcmRun run = WrittenOrRead(filter);
  ForEachSample(run, [&](uint32_t channel, uint32_t /*index*/, const auto *sample) {
    const double value = OfFullScale(*sample);
    channels_[channel].peak = std::max(channels_[channel].peak, std::abs(value));
    channels_[channel].squares += value * value;
  });
  samples_ += run.samples;
}

// Fails when the command thread has set the count meanwhile, which the next cycle sees.
void PcmLevel::CountDown() {
  --cyclesLeft_;
  uint32_t published = LoadRelaxed(u32KestCalPcmLevCount);
  if (published > cyclesLeft_) {
    __atomic_compare_exchange_n(&u32KestCalPcmLevCount, &published, cyclesLeft_, false, __ATOMIC_RELAXED,
                                __ATOMIC_RELAXED);
  }
}

void PcmLevel::Report(const ZE_KEST_Filter_s &filter) const {
  const char *pipeline = filter.pstParentPipeline->szName;
  const char *port = HasOutput(filter) ? "out0" : "in0";
  ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "[CAL_PCM_LEV]%s:%s %s: %u cycles, %llu samples\n", pipeline,
                    filter.szName, port, cycles_, static_cast<unsigned long long>(samples_));
  const uint32_t channels = WrittenOrRead(filter).pcm.stPcmInfo.u32TotalChannels;
  for (uint32_t i = 0; i < channels && samples_ > 0; ++i) {
    const double rms = std::sqrt(channels_[i].squares / static_cast<double>(samples_));
    ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "[CAL_PCM_LEV]%s:%s %s ch%u: peak %.2f dB, rms %.2f dB\n",
                      pipeline, filter.szName, port, i, Db(channels_[i].peak), Db(rms));
  }
}

}  // namespace kest::player
