// SPDX-License-Identifier: Apache-2.0
#include "ctl/audio/audio_file.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>
#include <sys/stat.h>

#include "ctl/error.h"

namespace kest::ctl {
namespace {

constexpr sf_count_t kPieceFrames = 8192;
constexpr double kLeastAmplitude = 1e-10;

int32_t ToFixedPoint(double sample) {
  if (std::isnan(sample)) return 0;
  return static_cast<int32_t>(std::clamp(std::nearbyint(sample * kFullScale), -kFullScale, kFullScale - 1.0));
}

void CheckIsRegularFile(const std::string &path) {
  struct stat facts = {};
  if (stat(path.c_str(), &facts) == 0 && S_ISREG(facts.st_mode)) return;
  throw CtlError(ExitCode::kUsage, fmt::format("{} is no file that can be read", path));
}

}  // namespace

AudioFile::AudioFile(const std::string &path) : path_(path) {
  CheckIsRegularFile(path);
  file_.reset(sf_open(path.c_str(), SFM_READ, &info_));
  if (file_ == nullptr) {
    throw CtlError(ExitCode::kUsage, fmt::format("{} is no audio file: {}", path, sf_strerror(nullptr)),
                   "WAV, FLAC and OGG files can be read; kestctl dump makes WAV files of raw dumps");
  }
}

unsigned AudioFile::Bits() const {
  switch (info_.format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
      return 8;
    case SF_FORMAT_PCM_16:
      return 16;
    case SF_FORMAT_PCM_24:
      return 24;
    case SF_FORMAT_PCM_32:
      return 32;
    default:
      return 0;
  }
}

void AudioFile::ReadFloats(unsigned channel, Samples &samples) {
  std::vector<double> piece(static_cast<size_t>(kPieceFrames) * Channels());
  while (const sf_count_t frames = sf_readf_double(file_.get(), piece.data(), kPieceFrames)) {
    for (size_t i = 0; i < static_cast<size_t>(frames); ++i)
      samples.push_back(ToFixedPoint(piece[i * Channels() + channel]));
  }
}

void AudioFile::ReadWholeNumbers(unsigned channel, Samples &samples) {
  std::vector<int32_t> piece(static_cast<size_t>(kPieceFrames) * Channels());
  while (const sf_count_t frames = sf_readf_int(file_.get(), piece.data(), kPieceFrames)) {
    for (size_t i = 0; i < static_cast<size_t>(frames); ++i)
      samples.push_back(piece[i * Channels() + channel]);
  }
}

Samples AudioFile::Read(unsigned channel) {
  sf_seek(file_.get(), 0, SEEK_SET);
  Samples samples;
  samples.reserve(Frames());
  Bits() == 0 ? ReadFloats(channel, samples) : ReadWholeNumbers(channel, samples);
  if (sf_error(file_.get()) != SF_ERR_NO_ERROR) {
    throw CtlError(ExitCode::kUsage,
                   fmt::format("{} cannot be read to its end: {}", path_, sf_strerror(file_.get())));
  }
  return samples;
}

double ToDb(double amplitude) {
  return 20.0 * std::log10(std::max(amplitude, kLeastAmplitude));
}

}  // namespace kest::ctl
