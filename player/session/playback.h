// SPDX-License-Identifier: Apache-2.0
// One run of the player: the pipelines, their filters and the links between them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "player/config/layout.h"
#include "player/config/options.h"
#include "player/filters/filter_material.h"
#include "player/framework/pipeline.h"
#include "player/framework/pipeline_link.h"

namespace kest::player {

class SpeakerOutput;

class Playback {
 public:
  // Opens all files and builds the pipelines. endFd: readable when the run is to end before a stream has said
  // its format; -1: never. Throws PlayerError or RunCancelled; the output file is touched only once all
  // inputs are known to be playable.
  Playback(const Layout &layout, const Options &options, int endFd = -1);
  ~Playback();
  Playback(const Playback &) = delete;
  Playback &operator=(const Playback &) = delete;

  // In no particular order.
  [[nodiscard]] std::vector<const Filter *> Filters() const;

  void Start();
  void RequestStop();
  // Whether the output has. Only Finish ends the inputs.
  [[nodiscard]] bool HasEnded() const;
  // Waits for the end. Rethrows what ended the run early.
  void Finish();

  [[nodiscard]] double SecondsPlayed() const;
  // One line for the user. Only after the end.
  [[nodiscard]] std::string Summary() const;

 private:
  static std::unique_ptr<Pipeline> Build(const PipelineLayout &layout, FilterMaterial material,
                                         PipelineLink::Patience inputPatience);
  // The inputs come first: what they give is what the output takes.
  void BuildInputs(const Layout &layout, std::vector<AudioReader> &readers, FilterMaterial material,
                   uint32_t bitsOfPorts);
  void BuildOutput(const Layout &layout, FilterMaterial material);

  std::string outputPath_;
  std::vector<std::unique_ptr<PipelineLink>> links_;
  std::vector<std::unique_ptr<Pipeline>> pipelines_;  // the output first, then the inputs
  const SpeakerOutput *output_ = nullptr;
};

}  // namespace kest::player
