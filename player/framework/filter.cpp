// SPDX-License-Identifier: Apache-2.0
#include "player/framework/filter.h"

#include <algorithm>

#include "ze_kest/debug.h"
#include "ze_kest/utility.h"

#include "player/framework/filter_entries.h"
#include "player/framework/metadata_block.h"

namespace kest::player {
namespace {

// Four cycles, because a filter may leave a remainder that does not fill a cycle.
constexpr uint32_t kPortFrames = 4 * kCycleFrames;

uint32_t WriteAllOutputs(const ZE_KEST_Filter_s *pstFilter, uint32_t frames, int16_t *const *sources,
                         const uint16_t *strides) {
  return ze_kest_Utility_WriteAllOutputPort16BitPcmBuffer(pstFilter, frames, sources, strides);
}

uint32_t WriteAllOutputs(const ZE_KEST_Filter_s *pstFilter, uint32_t frames, int32_t *const *sources,
                         const uint16_t *strides) {
  return ze_kest_Utility_WriteAllOutputPort32BitPcmBuffer(pstFilter, frames, sources, strides);
}

}  // namespace

Filter::Filter(const FilterKind &kind, const PcmFormat &format, const std::string &name)
    : kind_(kind), format_(format) {
  ze_kest_Utility_Strncpy(record_.szName, name.empty() ? kind.name : name.c_str(),
                          sizeof(record_.szName) - 1);
  record_.filter = this;
  record_.pfnGetParameter = GetFilterParameter;
  record_.pfnSetParameter = SetFilterParameter;
  record_.sztMaxInPcmProcessSize = kCycleFrames;
  record_.sztMaxOutPcmProcessSize = kCycleFrames;
}

PortCapacity Filter::InputCapacity() const {
  return PortCapacity::ForFrames(kPortFrames);
}

void Filter::SetParent(ZE_KEST_Pipeline_s &pipeline) {
  record_.pstParentPipeline = &pipeline;
}

void Filter::ConnectInput(PortStorage &port) {
  record_.apstInPort[record_.u32InPortCount++] = &port.Record();
  inputs_.push_back(&port);
}

void Filter::ConnectOutput(PortStorage &port) {
  record_.apstOutPort[record_.u32OutPortCount++] = &port.Record();
  outputs_.push_back(&port);
}

void Filter::AnnounceFormat() {
  const ZE_KEST_PcmInfo_s info = format_.Info();
  const PcmGroups groups = format_.Groups();
  ze_kest_Utility_UpdatePcmInfoToAllOutputPort(&record_, &info);
  ze_kest_Utility_UpdatePcmGroupToAllOutputPort(&record_, 0, groups.data());
}

void Filter::RunCycle(bool upstreamEnded) {
  upstreamEnded_ = upstreamEnded;
  {
    const MeasuredWork measured(record_.pstParentPipeline->szName, record_.szName, measure_);
    TakeTurn();
  }
  ended_ = IsComplete();
}

void Filter::TakeTurn() {
  ze_kest_Debug_MeasureLatency(&record_, ZE_KEST_LATENCY_START);
  Process();
  ze_kest_Debug_Filter(&record_);
  for (PortStorage *input : inputs_) {
    input->ReleaseRead();
  }
  for (PortStorage *output : outputs_) {
    output->CommitWritten();
  }
}

bool Filter::IsComplete() const {
  return upstreamEnded_ && InputsAreEmpty();
}

// Ignores metadata: what is left after the last full block of frames belongs to no frames that will still
// come.
bool Filter::InputsAreEmpty() const {
  return std::all_of(inputs_.begin(), inputs_.end(),
                     [](const PortStorage *input) { return input->FramesHeld() == 0; });
}

uint32_t Filter::FramesAvailable() const {
  uint32_t frames = 0;
  ze_kest_Utility_CalculateInputPortPcmProcessSize(&record_, &frames);
  return frames;
}

uint32_t Filter::FramesWanted() {
  uint32_t frames = 0;
  ze_kest_Utility_CalculateOutputPortPcmProcessSize(&record_, &frames);
  if (frames == 0) CountOverruns();
  return frames;
}

uint32_t Filter::FramesToProcess() {
  const uint32_t available = FramesAvailable();
  return available == 0 ? 0 : std::min(available, FramesWanted());
}

void Filter::CountOverruns() {
  for (PortStorage *output : outputs_) {
    if (output->Record().stPcm.sztPcmSpace == 0) output->CountXrun();
  }
}

template <typename Sample>
void Filter::ReadFrames(uint32_t port, Sample *interleaved, uint32_t frames) const {
  ze_kest_Utility_ReadInputPortPcmBuffer(&record_, port, interleaved, frames, format_.FirstChannel(),
                                         format_.LastChannel(), format_.channels);
}

template <typename Sample>
void Filter::WriteFrames(Sample *interleaved, uint32_t frames) {
  std::array<Sample *, ZE_KEST_PCM_CHANNEL_ENTRIES> channels{};
  std::array<uint16_t, ZE_KEST_PCM_CHANNEL_ENTRIES> strides{};
  const uint32_t first = format_.Group() * ZE_KEST_PCM_GROUP_ENTRIES;
  for (uint32_t slot = 0; slot < format_.channels; ++slot) {
    channels[first + slot] = interleaved + slot;
    strides[first + slot] = static_cast<uint16_t>(format_.channels);
  }
  WriteChannels<Sample>(channels.data(), strides.data(), frames);
}

template <typename Sample>
void Filter::WriteChannels(Sample *const *channels, const uint16_t *strides, uint32_t frames) {
  WriteAllOutputs(&record_, frames, channels, strides);
  ze_kest_Utility_UpdateAllOutputPortPcmWriteSize(&record_, frames);
}

template void Filter::ReadFrames(uint32_t, int16_t *, uint32_t) const;
template void Filter::ReadFrames(uint32_t, int32_t *, uint32_t) const;
template void Filter::WriteFrames(int16_t *, uint32_t);
template void Filter::WriteFrames(int32_t *, uint32_t);
template void Filter::WriteChannels(int16_t *const *, const uint16_t *, uint32_t);
template void Filter::WriteChannels(int32_t *const *, const uint16_t *, uint32_t);

void Filter::ForwardMetadata(uint32_t frames) {
  const uint32_t blocksDue = (metadataRemainder_ + frames) / ZE_KEST_METADATA_SAMPLES;
  const uint32_t bytes = ze_kest_Utility_QueryInputMinMetaProcessSize(
      &record_, frames, MetadataBytesToForward(), &metadataRemainder_);
  // Blocks that found no room yet stay due.
  metadataRemainder_ += (blocksDue - bytes / kMetadataBlockBytes) * ZE_KEST_METADATA_SAMPLES;
  ze_kest_Utility_WriteAllOutputPortMetadataBuffer(&record_, 0, bytes);
  ze_kest_Utility_UpdateAllOutputPortMetadataWriteSize(&record_, bytes);
  ze_kest_Utility_UpdateAllInputPortMetadataReadSize(&record_, bytes);
}

uint32_t Filter::MetadataBytesToForward() const {
  uint32_t available = 0;
  uint32_t room = 0;
  ze_kest_Utility_CalculateInputPortMetadataProcessSize(&record_, &available);
  ze_kest_Utility_CalculateOutputPortMetadataProcessSize(&record_, &room);
  return std::min(available, room);
}

}  // namespace kest::player
