// SPDX-License-Identifier: Apache-2.0
// A filter: its record, its turn in the cycle, and the steps that most filters share.
#pragma once

#include <string>
#include <vector>

#include "ze_kest/model.h"

#include "player/framework/filter_kind.h"
#include "player/framework/filter_record.h"
#include "player/framework/frame_buffer.h"
#include "player/framework/measured_work.h"
#include "player/framework/metadata_block.h"
#include "player/framework/pcm_format.h"
#include "player/framework/port_storage.h"
#include "player/requests/filter_requests.h"

namespace kest::player {

class Filter {
 public:
  // name: of its record; without one, the kind's.
  Filter(const FilterKind &kind, const PcmFormat &format, const std::string &name = {})
      : Filter(kind, format, format, name) {}
  Filter(const FilterKind &kind, const PcmFormat &input, const PcmFormat &output,
         const std::string &name = {});
  virtual ~Filter() = default;
  Filter(const Filter &) = delete;
  Filter &operator=(const Filter &) = delete;

  [[nodiscard]] const FilterKind &Kind() const { return kind_; }
  [[nodiscard]] ZE_KEST_Filter_s &Record() { return record_; }
  [[nodiscard]] const ZE_KEST_Filter_s &Record() const { return record_; }
  [[nodiscard]] const PcmFormat &OutputFormat() const { return output_; }
  // Valid as long as the filter.
  [[nodiscard]] virtual Table<Parameter> Parameters() const { return kind_.parameters; }
  // A command that is not in the tables; false when the filter does not know it either. Called on the command
  // thread while the filter runs.
  virtual bool RunCommand(const char * /*text*/) { return false; }
  // The capacity that its input ports must have.
  [[nodiscard]] virtual PortCapacity InputCapacity() const;

  void SetParent(ZE_KEST_Pipeline_s &pipeline);
  void ConnectInput(PortStorage &port);
  void ConnectOutput(PortStorage &port);
  // Tells the output ports the format. Called before the first cycle.
  void AnnounceFormat();

  // Waits for what a turn needs from outside of the process. Called before every cycle, for the first filter.
  virtual void AwaitInput() {}
  // Ends this and all later waits. Callable from any thread.
  virtual void StopWaiting() {}
  // Runs one turn. upstreamEnded: nothing will follow what the input ports hold now.
  void RunCycle(bool upstreamEnded);
  // Whether everything has been passed on.
  [[nodiscard]] bool Ended() const { return ended_; }
  // Called after the last cycle, on the thread that ran it.
  virtual void Finish() {}

  // An input did not come in time.
  void CountInputXrun(uint32_t port);

  // Logs a line about the filter when its own debug level lets it through ("kest_filter_debug_level"). The
  // text is cut at 255 characters and ends without a newline. Callable from any thread.
  [[nodiscard]] bool Logs(uint32_t level) const { return LoadRelaxed(record_.u32DbgLvl) >= level; }
  void Log(uint32_t level, const char *format, ...) const ZE_KEST_PRINTF(3, 4);

 protected:
  virtual void Process() = 0;
  [[nodiscard]] virtual bool IsComplete() const;

  // Of the input; that of most filters' output too.
  [[nodiscard]] const PcmFormat &Format() const { return input_; }
  [[nodiscard]] bool UpstreamEnded() const { return upstreamEnded_; }

  // Number of frames that all inputs can deliver, that all outputs can take, and the smaller of both; never
  // more than one cycle's.
  [[nodiscard]] uint32_t FramesAvailable() const;
  [[nodiscard]] uint32_t FramesWanted();
  [[nodiscard]] uint32_t FramesToProcess();
  // What FramesToProcess counts, for a filter that asks the library for its sizes itself.
  void CountOverrun() { static_cast<void>(FramesToProcess()); }

  // Reads without marking the frames as read.
  template <typename Sample>
  void ReadFrames(uint32_t port, Sample *interleaved, uint32_t frames) const;
  // Both write to all outputs and account for what they wrote.
  template <typename Sample>
  void WriteFrames(Sample *interleaved, uint32_t frames);
  template <typename Sample>
  void WriteChannels(Sample *const *channels, const uint16_t *strides, uint32_t frames);

  // Of the only input's metadata, forwards what belongs to its next frames, and accounts for it.
  void ForwardMetadata(uint32_t frames);
  // Takes the next block out of the only input, and accounts for it. False when there is none.
  bool TakeMetadataBlock(MetadataBlock &block);

 private:
  void TakeTurn();
  void LogTurn() const;
  [[nodiscard]] bool InputsAreEmpty() const;
  void CountOverruns();
  [[nodiscard]] uint32_t MetadataBytesToForward() const;

  const FilterKind &kind_;
  PcmFormat input_;
  PcmFormat output_;
  FilterRecord record_{};
  std::vector<PortStorage *> inputs_;
  std::vector<PortStorage *> outputs_;
  PerformanceMeasure measure_;
  FilterRequests requests_;
  uint32_t metadataRemainder_ = 0;  // frames whose metadata has not been forwarded
  bool upstreamEnded_ = false;
  bool ended_ = false;
};

}  // namespace kest::player
