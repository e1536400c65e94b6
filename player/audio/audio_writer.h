// SPDX-License-Identifier: Apache-2.0
// Writes a WAV file.
#pragma once

#include <cstdint>
#include <string>

#include <sndfile.h>

#include "player/audio/audio_reader.h"
#include "player/audio/frame_chunk.h"
#include "programs/unique_fd.h"

namespace kest::player {

struct AudioFormat {
  uint32_t channels;
  uint32_t sampleRate;  // Hz
  SampleBits bits;
};

class AudioWriter {
 public:
  // An existing file is overwritten. Throws PlayerError when it cannot be created.
  AudioWriter(const std::string &path, const AudioFormat &format);
  AudioWriter(AudioWriter &&other) noexcept;
  AudioWriter &operator=(AudioWriter &&) = delete;
  ~AudioWriter();

  // Writes interleaved frames with left-aligned samples; a narrower file keeps the upper bits. Throws
  // PlayerError when they cannot be written, which may be said of a later call's frames or when it is closed:
  // frames are collected.
  template <typename Sample>
  void Write(const Sample *interleaved, uint32_t frames);

  // Completes the file. Throws PlayerError when that fails. Without it, what is collected is still written.
  void Close();

 private:
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
