// SPDX-License-Identifier: Apache-2.0
#include "player/audio/audio_writer.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>

#include "player/base/player_error.h"

namespace kest::player {
namespace {

constexpr mode_t kFileMode = 0666;
// Sizes in a WAV file have 32 bits; the remainder is room for the headers.
constexpr uint64_t kMaxDataBytes = UINT32_MAX - 4096;

int SubFormat(SampleBits bits) {
  switch (bits) {
    case SampleBits::k16:
      return SF_FORMAT_PCM_16;
    case SampleBits::k24:
      return SF_FORMAT_PCM_24;
    case SampleBits::k32:
      break;
  }
  return SF_FORMAT_PCM_32;
}

// With more than two channels the header must say which speakers they belong to.
int FileFormat(const AudioFormat &format) {
  return format.channels > 2 ? SF_FORMAT_WAVEX : SF_FORMAT_WAV;
}

}  // namespace

AudioWriter::AudioWriter(const std::string &path, const AudioFormat &format)
    : path_(path),
      fd_(open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, kFileMode)),
      channels_(format.channels) {
  if (!fd_.IsOpen()) throw PlayerError("cannot create " + path + ": " + std::strerror(errno));
  SF_INFO info{};
  info.channels = static_cast<int>(format.channels);
  info.samplerate = static_cast<int>(format.sampleRate);
  info.format = FileFormat(format) | SubFormat(format.bits);
  file_ = sf_open_fd(fd_.Get(), SFM_WRITE, &info, SF_FALSE);
  if (file_ == nullptr) Fail(sf_strerror(nullptr));
  framesLeft_ = kMaxDataBytes / (uint64_t{format.channels} * static_cast<uint32_t>(format.bits) / 8);
}

// What a run that failed has played so far belongs into the file; that this may fail too is no news.
AudioWriter::~AudioWriter() {
  if (file_ == nullptr) return;
  static_cast<void>(Flush<int16_t>() && Flush<int32_t>());
  sf_close(file_);
}

template <typename Sample>
void AudioWriter::Collect(const Sample *interleaved, uint32_t frames) {
  CheckSize(frames);
  auto &collected = std::get<FrameChunk<Sample>>(collected_);
  for (uint32_t done = 0; done < frames;) {
    if (collected.Room() == 0 && !Flush<Sample>()) Fail(sf_strerror(file_));
    done += collected.Append(interleaved + size_t{done} * channels_, frames - done, channels_);
  }
}

bool AudioWriter::Write(const int16_t *interleaved, uint32_t frames) {
  Collect(interleaved, frames);
  return true;
}

bool AudioWriter::Write(const int32_t *interleaved, uint32_t frames) {
  Collect(interleaved, frames);
  return true;
}

template <typename Sample>
bool AudioWriter::Flush() {
  bool complete = true;
  std::get<FrameChunk<Sample>>(collected_).Drain(channels_, [&](const Sample *interleaved, uint32_t frames) {
    complete = WriteFile(interleaved, frames) == frames;
  });
  return complete;
}

sf_count_t AudioWriter::WriteFile(const int16_t *interleaved, uint32_t frames) {
  return sf_writef_short(file_, interleaved, frames);
}

sf_count_t AudioWriter::WriteFile(const int32_t *interleaved, uint32_t frames) {
  return sf_writef_int(file_, interleaved, frames);
}

void AudioWriter::Close() {
  if (!Flush<int16_t>() || !Flush<int32_t>()) Fail(sf_strerror(file_));
  const int result = sf_close(std::exchange(file_, nullptr));
  if (result != SF_ERR_NO_ERROR) Fail(sf_error_number(result));
  if (!fd_.Close()) Fail(std::strerror(errno));
}

void AudioWriter::CheckSize(uint32_t frames) {
  if (frames > framesLeft_) Fail("a WAV file holds at most 4 GiB; end earlier with --seconds");
  framesLeft_ -= frames;
}

void AudioWriter::Fail(const std::string &reason) const {
  throw PlayerError("cannot write " + path_ + ": " + reason);
}

}  // namespace kest::player
