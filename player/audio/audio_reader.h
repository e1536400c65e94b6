// SPDX-License-Identifier: Apache-2.0
// Reads the frames of an audio file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <sndfile.h>
#include <sys/types.h>

#include "player/audio/audio_sink.h"
#include "player/audio/frame_chunk.h"
#include "programs/unique_fd.h"

namespace kest::player {

class AudioReader {
 public:
  // Throws PlayerError when the file cannot be opened or is not an audio file that can be played.
  explicit AudioReader(const std::string &path);

  [[nodiscard]] const std::string &Path() const { return path_; }
  [[nodiscard]] uint32_t Channels() const { return static_cast<uint32_t>(info_.channels); }
  [[nodiscard]] uint32_t SampleRate() const { return static_cast<uint32_t>(info_.samplerate); }
  [[nodiscard]] bool CanRewind() const { return info_.seekable != 0; }
  [[nodiscard]] SampleBits Bits() const;

  // Reads interleaved frames, samples left-aligned; floating-point samples saturate at full scale. Returns
  // fewer frames than asked for only at the end of the file. Throws PlayerError when the file is damaged or
  // has become shorter since it was opened.
  template <typename Sample>
  uint32_t Read(Sample *interleaved, uint32_t frames);
  void Rewind();

 private:
  struct Close {
    void operator()(SNDFILE *file) const { sf_close(file); }
  };

  [[nodiscard]] off_t Bytes() const;
  [[nodiscard]] bool IsFloatingPoint() const;
  uint32_t ReadFile(int16_t *interleaved, uint32_t frames);
  uint32_t ReadFile(int32_t *interleaved, uint32_t frames);
  uint32_t ReadFloatingPoint(int32_t *interleaved, uint32_t frames);
  [[nodiscard]] uint32_t Checked(sf_count_t framesRead, uint32_t framesWanted) const;

  std::string path_;
  UniqueFd fd_;
  off_t bytesAtStart_;
  SF_INFO info_{};
  std::unique_ptr<SNDFILE, Close> file_;
  FrameChunks ahead_;
};

}  // namespace kest::player
