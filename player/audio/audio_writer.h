// SPDX-License-Identifier: Apache-2.0
// Writes a WAV file.
#pragma once

#include <cstdint>
#include <string>

#include <sndfile.h>

#include "player/audio/audio_sink.h"
#include "player/audio/frame_chunk.h"
#include "programs/unique_fd.h"

namespace kest::player {

class AudioWriter : public AudioSink {
 public:
  // An existing file is overwritten. Throws PlayerError when it cannot be created.
  AudioWriter(const std::string &path, const AudioFormat &format);
  ~AudioWriter() override;

  // A narrower file keeps the upper bits of the samples. Frames are collected: that they cannot be written
  // may be said of a later call's frames or when it is closed.
  bool Write(const int16_t *interleaved, uint32_t frames) override;
  bool Write(const int32_t *interleaved, uint32_t frames) override;

  // Without it, what is collected is still written.
  void Close() override;

 private:
  template <typename Sample>
  void Collect(const Sample *interleaved, uint32_t frames);
  void CheckSize(uint32_t frames);
  template <typename Sample>
  [[nodiscard]] bool Flush();
  [[nodiscard]] sf_count_t WriteFile(const int16_t *interleaved, uint32_t frames);
  [[nodiscard]] sf_count_t WriteFile(const int32_t *interleaved, uint32_t frames);
  [[noreturn]] void Fail(const std::string &reason) const;

  std::string path_;
  UniqueFd fd_;
  SNDFILE *file_ = nullptr;
  uint32_t channels_;
  FrameChunks collected_;
  uint64_t framesLeft_;  // until the file is as large as a WAV file can be
};

}  // namespace kest::player
