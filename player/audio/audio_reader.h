// SPDX-License-Identifier: Apache-2.0
// Reads the frames of an audio file, or of a stream.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <sndfile.h>
#include <sys/types.h>

#include "player/audio/audio_sink.h"
#include "player/audio/frame_chunk.h"
#include "player/audio/standard_input.h"
#include "player/audio/stream_format.h"
#include "programs/unique_fd.h"

namespace kest::player {

class AudioReader {
 public:
  // Throws PlayerError when the file cannot be opened or is not an audio file that can be played.
  explicit AudioReader(const std::string &path);
  // stream: behind its header, if it has one. Throws PlayerError when the format cannot be played.
  AudioReader(std::unique_ptr<StandardInput> stream, const StreamFormat &format);

  // For messages.
  [[nodiscard]] const std::string &Name() const { return name_; }
  [[nodiscard]] const std::string &Path() const { return path_; }
  [[nodiscard]] uint32_t Channels() const { return static_cast<uint32_t>(info_.channels); }
  [[nodiscard]] uint32_t SampleRate() const { return static_cast<uint32_t>(info_.samplerate); }
  [[nodiscard]] bool CanRewind() const { return !stream_ && info_.seekable != 0; }
  [[nodiscard]] SampleBits Bits() const;

  // Reads interleaved frames, samples left-aligned; floating-point samples saturate at full scale. Returns
  // fewer frames than asked for only at the end of the file, or when a stream has no more at hand. Throws
  // PlayerError when the file is damaged or has become shorter since it was opened.
  template <typename Sample>
  uint32_t Read(Sample *interleaved, uint32_t frames);
  void Rewind();

  // Waits until a stream has so many frames at hand, or has ended; the frames of a file always are.
  void Await(uint32_t frames);
  // Ends this and all later waits. Callable from any thread.
  void StopWaiting();
  // At the end of a stream: throws PlayerError when it broke off, or within a frame.
  void CheckIsWhole() const;

 private:
  struct Close {
    void operator()(SNDFILE *file) const { sf_close(file); }
  };

  void CheckSampleRate() const;
  [[nodiscard]] off_t Bytes() const;
  [[nodiscard]] bool IsFloatingPoint() const;
  [[nodiscard]] uint32_t FramesAtHand() const;
  uint32_t ReadFile(int16_t *interleaved, uint32_t frames);
  uint32_t ReadFile(int32_t *interleaved, uint32_t frames);
  uint32_t ReadFloatingPoint(int32_t *interleaved, uint32_t frames);
  [[nodiscard]] uint32_t Checked(sf_count_t framesRead, uint32_t framesWanted) const;

  std::string name_;
  std::string path_;
  UniqueFd fd_;
  off_t bytesAtStart_ = 0;
  std::unique_ptr<StandardInput> stream_;  // instead of the file
  size_t bytesPerFrame_ = 1;               // of the stream
  SF_INFO info_{};
  std::unique_ptr<SNDFILE, Close> file_;
  FrameChunks ahead_;
};

}  // namespace kest::player
