// SPDX-License-Identifier: Apache-2.0
#include "player/audio/audio_reader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>

#include "player/base/player_error.h"

namespace kest::player {
namespace {

constexpr uint32_t kMinSampleRate = 4000;
constexpr uint32_t kMaxSampleRate = 768000;

// Full scale is 1.0.
int32_t ToFixedPoint(double sample) {
  constexpr double kFullScale = 2147483648.0;
  if (std::isnan(sample)) return 0;
  const double scaled = std::clamp(sample * kFullScale, -kFullScale, kFullScale - 1.0);
  return static_cast<int32_t>(std::llrint(scaled));
}

// Opening or reading a pipe could block the player where no signal ends the wait.
UniqueFd OpenRegularFile(const std::string &path) {
  UniqueFd fd(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!fd.IsOpen()) throw PlayerError("cannot read " + path + ": " + std::strerror(errno));
  struct stat status {};
  if (fstat(fd.Get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    throw PlayerError(path + " is not a regular file; give the name of an audio file");
  }
  return fd;
}

// libsndfile decodes what a stream holds. It asks for no more than that, and never goes back.
SF_VIRTUAL_IO g_stStreamCalls = {
    [](void *) { return sf_count_t{INT64_MAX}; },           // length
    [](sf_count_t, int, void *) { return sf_count_t{0}; },  // seek: to the start, when it opens
    [](void *to, sf_count_t bytes, void *stream) {          // read
      return static_cast<sf_count_t>(
          static_cast<StandardInput *>(stream)->Take(to, static_cast<size_t>(bytes)));
    },
    [](const void *, sf_count_t, void *) { return sf_count_t{0}; },  // write
    [](void *) { return sf_count_t{0}; },                            // tell
};

}  // namespace

AudioReader::AudioReader(const std::string &path)
    : name_(path), path_(path), fd_(OpenRegularFile(path)), bytesAtStart_(Bytes()) {
  file_.reset(sf_open_fd(fd_.Get(), SFM_READ, &info_, SF_FALSE));
  if (!file_) {
    throw PlayerError(
        path + " is not an audio file that can be read (WAV, FLAC and OGG can be): " + sf_strerror(nullptr));
  }
  CheckSampleRate();
}

AudioReader::AudioReader(std::unique_ptr<StandardInput> stream, const StreamFormat &format)
    : name_(StandardInput::kName),
      path_(StandardInput::kPath),
      stream_(std::move(stream)),
      bytesPerFrame_(size_t{format.channels} * format.bytesPerSample) {
  info_.channels = static_cast<int>(format.channels);
  info_.samplerate = static_cast<int>(format.sampleRate);
  info_.format = SF_FORMAT_RAW | format.coding;
  CheckSampleRate();
  stream_->EndAfter(format.bytes);
  file_.reset(sf_open_virtual(&g_stStreamCalls, SFM_READ, &info_, stream_.get()));
  if (!file_) throw PlayerError(name_ + " cannot be played: " + sf_strerror(nullptr));
}

void AudioReader::CheckSampleRate() const {
  if (SampleRate() >= kMinSampleRate && SampleRate() <= kMaxSampleRate) return;
  throw PlayerError(name_ + " has an unsupported sample rate of " + std::to_string(SampleRate()) +
                    " Hz; 4000 to 768000 Hz can be played");
}

off_t AudioReader::Bytes() const {
  struct stat status {};
  fstat(fd_.Get(), &status);
  return status.st_size;
}

SampleBits AudioReader::Bits() const {
  switch (info_.format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
    case SF_FORMAT_PCM_16:
      return SampleBits::k16;
    case SF_FORMAT_PCM_24:
      return SampleBits::k24;
    default:
      return SampleBits::k32;
  }
}

bool AudioReader::IsFloatingPoint() const {
  switch (info_.format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_FLOAT:
    case SF_FORMAT_DOUBLE:
    case SF_FORMAT_VORBIS:
    case SF_FORMAT_OPUS:
    case SF_FORMAT_MPEG_LAYER_I:
    case SF_FORMAT_MPEG_LAYER_II:
    case SF_FORMAT_MPEG_LAYER_III:
      return true;
    default:
      return false;
  }
}

template <typename Sample>
uint32_t AudioReader::Read(Sample *interleaved, uint32_t frames) {
  auto &ahead = std::get<FrameChunk<Sample>>(ahead_);
  uint32_t done = 0;
  while (done < frames) {
    if (ahead.Held() == 0) {
      ahead.Fill(Channels(), [this](Sample *samples, uint32_t room) {
        return ReadFile(samples, std::min(room, FramesAtHand()));
      });
    }
    if (ahead.Held() == 0) break;
    done += ahead.Take(interleaved + size_t{done} * Channels(), frames - done, Channels());
  }
  return done;
}

uint32_t AudioReader::FramesAtHand() const {
  return stream_ ? static_cast<uint32_t>(stream_->Held() / bytesPerFrame_) : UINT32_MAX;
}

template uint32_t AudioReader::Read(int16_t *, uint32_t);
template uint32_t AudioReader::Read(int32_t *, uint32_t);

uint32_t AudioReader::ReadFile(int16_t *interleaved, uint32_t frames) {
  return Checked(sf_readf_short(file_.get(), interleaved, frames), frames);
}

uint32_t AudioReader::ReadFile(int32_t *interleaved, uint32_t frames) {
  if (IsFloatingPoint()) return ReadFloatingPoint(interleaved, frames);
  return Checked(sf_readf_int(file_.get(), interleaved, frames), frames);
}

uint32_t AudioReader::ReadFloatingPoint(int32_t *interleaved, uint32_t frames) {
  std::array<double, 1024> chunk;
  const auto chunkFrames = static_cast<uint32_t>(chunk.size()) / Channels();
  uint32_t done = 0;
  while (done < frames) {
    const uint32_t wanted = std::min(frames - done, chunkFrames);
    const uint32_t got = Checked(sf_readf_double(file_.get(), chunk.data(), wanted), wanted);
    interleaved =
        std::transform(chunk.data(), chunk.data() + size_t{got} * Channels(), interleaved, ToFixedPoint);
    done += got;
    if (got < wanted) break;
  }
  return done;
}

uint32_t AudioReader::Checked(sf_count_t framesRead, uint32_t framesWanted) const {
  if (framesRead == framesWanted) return framesWanted;
  if (Bytes() < bytesAtStart_) throw PlayerError(path_ + " became shorter while it was played");
  if (sf_error(file_.get()) != SF_ERR_NO_ERROR) {
    throw PlayerError(path_ + " is damaged or cannot be read to its end: " + sf_strerror(file_.get()));
  }
  return static_cast<uint32_t>(framesRead);
}

void AudioReader::Rewind() {
  if (sf_seek(file_.get(), 0, SEEK_SET) < 0) {
    throw PlayerError("cannot rewind " + path_ + ": " + sf_strerror(file_.get()));
  }
  std::get<FrameChunk<int16_t>>(ahead_).Clear();
  std::get<FrameChunk<int32_t>>(ahead_).Clear();
}

void AudioReader::Await(uint32_t frames) {
  const uint32_t decoded =
      std::get<FrameChunk<int16_t>>(ahead_).Held() + std::get<FrameChunk<int32_t>>(ahead_).Held();
  if (stream_ && frames > decoded) stream_->Await((frames - decoded) * bytesPerFrame_);
}

void AudioReader::StopWaiting() {
  if (stream_) stream_->StopWaiting();
}

void AudioReader::CheckIsWhole() const {
  if (!stream_) return;
  stream_->CheckIsWhole();
  if (!stream_->HasEnded() || stream_->Held() % bytesPerFrame_ == 0) return;
  throw PlayerError(name_ + " ended within a frame; its last " +
                    std::to_string(stream_->Held() % bytesPerFrame_) + " bytes were left out");
}

}  // namespace kest::player
