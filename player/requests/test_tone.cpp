// SPDX-License-Identifier: Apache-2.0
#include "player/requests/test_tone.h"

#include <cmath>

#include "ze_kest/debug.h"

#include "player/base/relaxed.h"
#include "player/requests/pcm_rings.h"
#include "player/requests/request_names.h"

namespace kest::player {
namespace {

bool IsRequested(const ZE_KEST_Filter_s &filter) {
  return LoadRelaxed(u32KestSendTestTone) == ZE_KEST_REQUEST_MADE &&
         IsNamed(szKestSendTestToneName1, szKestSendTestToneName2, filter);
}

bool HasInput(const ZE_KEST_Filter_s &filter, uint32_t port) {
  return port < filter.u32InPortCount && port < ZE_KEST_MAX_PORTS && filter.apstInPort[port] != nullptr;
}

double ToneAt(uint32_t position, uint32_t sampleRate) {
  constexpr double kTurn = 6.283185307179586;
  return TestTone::kPeak * std::sin(kTurn * TestTone::kHertz * position / sampleRate);
}

void PutSample(int16_t *sample, double value) {
  *sample = static_cast<int16_t>(std::lrint(value * 32768.0));
}

void PutSample(int32_t *sample, double value) {
  *sample = static_cast<int32_t>(std::lrint(value * 2147483648.0));
}

}  // namespace

void TestTone::FeedInto(const ZE_KEST_Filter_s &filter) {
  if (!IsRequested(filter)) {
    *this = TestTone();
    return;
  }
  const uint32_t port = LoadRelaxed(u32KestSendTestToneInputPort);
  if (port != asked_) Begin(filter, port);
  if (hasPort_) Overwrite(filter.apstInPort[port]->stPcm);
}

void TestTone::Begin(const ZE_KEST_Filter_s &filter, uint32_t port) {
  *this = TestTone();
  asked_ = port;
  const char *pipeline = filter.pstParentPipeline->szName;
  hasPort_ = HasInput(filter, port);
  if (hasPort_) {
    ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "[SEND_TEST_TONE]%s:%s plays %u Hz into in%u\n", pipeline,
                      filter.szName, kHertz, port);
  } else {
    ze_kest_Debug_Log(ZE_KEST_LEVEL_PRINT, "[SEND_TEST_TONE]%s:%s has no in%u\n", pipeline, filter.szName,
                      port);
  }
}

// Only what has come since the last turn: the rest is the tone already, and nothing else may shift its phase.
void TestTone::Overwrite(ZE_KEST_PcmBuffer_s &pcm) {
  const uint32_t sampleRate = pcm.stPcmInfo.u32SampleRate;
  const PcmRun run = {pcm, pcm.sztPcmReadOffset + tonedSamples_, pcm.sztPcmLevel - tonedSamples_};
  ForEachSample(run, [&](uint32_t /*channel*/, uint32_t index, auto *sample) {
    PutSample(sample, ToneAt((position_ + index) % sampleRate, sampleRate));
  });
  position_ = (position_ + run.samples) % sampleRate;
  tonedSamples_ = pcm.sztPcmLevel;
}

void TestTone::AccountFor(const ZE_KEST_Filter_s &filter) {
  if (hasPort_) tonedSamples_ -= filter.apstInPort[*asked_]->stPcm.sztPcmReadSize;
}

}  // namespace kest::player
