// SPDX-License-Identifier: Apache-2.0
#include "player/framework/filter.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include "ze_kest/debug.h"
#include "ze_kest/utility.h"

#include "player/framework/filter_entries.h"

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

Filter::Filter(const FilterKind &kind, const PcmFormat &input, const PcmFormat &output,
               const std::string &name)
    : kind_(kind), input_(input), output_(output) {
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
  const ZE_KEST_PcmInfo_s info = output_.Info();
  const PcmGroups groups = output_.Groups();
  ze_kest_Utility_UpdatePcmInfoToAllOutputPort(&record_, &info);
  ze_kest_Utility_UpdatePcmGroupToAllOutputPort(&record_, 0, groups.data());
}

void Filter::RunCycle(bool upstreamEnded) {
  upstreamEnded_ = upstreamEnded;
  {
    const MeasuredWork measured(record_.pstParentPipeline->szName, record_.szName, measure_);
    TakeTurn();
  }
  const bool complete = IsComplete();
  if (complete && !ended_) Log(ZE_KEST_LEVEL_INFO, "has passed everything on");
  ended_ = complete;
}

void Filter::TakeTurn() {
  requests_.TurnBegins(record_);
  ze_kest_Debug_MeasureLatency(&record_, ZE_KEST_LATENCY_START);
  Process();
  ze_kest_Debug_Filter(&record_);
  requests_.TurnEnds(record_);
  if (Logs(ZE_KEST_LEVEL_TRACE)) LogTurn();
  for (PortStorage *input : inputs_) {
    input->ReleaseRead();
  }
  for (PortStorage *output : outputs_) {
    output->CommitWritten();
  }
}

void Filter::LogTurn() const {
  for (size_t i = 0; i < inputs_.size(); ++i) {
    const ZE_KEST_Port_s &port = inputs_[i]->Record();
    Log(ZE_KEST_LEVEL_TRACE, "in%zu read %u of %u samples, %u of %u bytes of metadata", i,
        port.stPcm.sztPcmReadSize, port.stPcm.sztPcmLevel, port.stMeta.sztReadSize, port.stMeta.sztLevel);
  }
  for (size_t i = 0; i < outputs_.size(); ++i) {
    const ZE_KEST_Port_s &port = outputs_[i]->Record();
    Log(ZE_KEST_LEVEL_TRACE, "out%zu wrote %u of %u samples, %u of %u bytes of metadata", i,
        port.stPcm.sztPcmWriteSize, port.stPcm.sztPcmSpace, port.stMeta.sztWriteSize, port.stMeta.sztSpace);
  }
}

void Filter::Log(uint32_t level, const char *format, ...) const {
  if (!Logs(level)) return;
  char text[256];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof(text), format, arguments);
  va_end(arguments);
  ze_kest_Debug_Log(level, "%s %s: %s\n", record_.pstParentPipeline->szName, record_.szName, text);
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
    if (output->Record().stPcm.sztPcmSpace > 0) continue;
    output->CountXrun();
    Log(ZE_KEST_LEVEL_WRN, "an output is full");
  }
}

void Filter::CountInputXrun(uint32_t port) {
  inputs_[port]->CountXrun();
  Log(ZE_KEST_LEVEL_WRN, "in%u came too late", port);
}

template <typename Sample>
void Filter::ReadFrames(uint32_t port, Sample *interleaved, uint32_t frames) const {
  ze_kest_Utility_ReadInputPortPcmBuffer(&record_, port, interleaved, frames, input_.FirstChannel(),
                                         input_.LastChannel(), input_.channels);
}

template <typename Sample>
void Filter::WriteFrames(Sample *interleaved, uint32_t frames) {
  std::array<Sample *, ZE_KEST_PCM_CHANNEL_ENTRIES> channels{};
  std::array<uint16_t, ZE_KEST_PCM_CHANNEL_ENTRIES> strides{};
  const uint32_t first = output_.Group() * ZE_KEST_PCM_GROUP_ENTRIES;
  for (uint32_t slot = 0; slot < output_.channels; ++slot) {
    channels[first + slot] = interleaved + slot;
    strides[first + slot] = static_cast<uint16_t>(output_.channels);
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

bool Filter::TakeMetadataBlock(MetadataBlock &block) {
  uint32_t bytes = 0;
  ze_kest_Utility_CalculateInputPortMetadataProcessSize(&record_, &bytes);
  if (bytes < kMetadataBlockBytes) return false;
  const ZE_KEST_DataBuffer_s &ring = record_.apstInPort[0]->stMeta;
  ze_kest_Utility_CopyFromRingToNonRingBuffer(reinterpret_cast<uint8_t *>(&block), ring.pu8Buf, ring.sztSize,
                                              ring.sztReadOffset, ring.sztReadSize, kMetadataBlockBytes);
  ze_kest_Utility_UpdateAllInputPortMetadataReadSize(&record_, kMetadataBlockBytes);
  return true;
}

}  // namespace kest::player
