// SPDX-License-Identifier: Apache-2.0
#include "tests/player/audio_data.h"

#include <algorithm>
#include <fstream>
#include <memory>
#include <random>

#include <gtest/gtest.h>

namespace kest::test {
namespace {

using File = std::unique_ptr<SNDFILE, int (*)(SNDFILE *)>;

File Create(const std::string &path, int channels, int sampleRate, int format) {
  SF_INFO info{};
  info.channels = channels;
  info.samplerate = sampleRate;
  info.format = format;
  File file(sf_open(path.c_str(), SFM_WRITE, &info), sf_close);
  EXPECT_NE(nullptr, file) << path << ": " << sf_strerror(nullptr);
  sf_command(file.get(), SFC_SET_SCALE_INT_FLOAT_WRITE, nullptr, SF_TRUE);
  return file;
}

uint32_t BitMask(int format) {
  switch (format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_U8:
      return 0xFF000000u;
    case SF_FORMAT_PCM_16:
      return 0xFFFF0000u;
    case SF_FORMAT_PCM_24:
      return 0xFFFFFF00u;
    default:
      return 0xFFFFFFFFu;
  }
}

}  // namespace

AudioData Noise(int channels, int format, size_t frames, uint32_t seed) {
  std::mt19937 random(seed);
  AudioData audio{channels, 48000, format, {}};
  audio.samples.resize(frames * static_cast<size_t>(channels));
  for (int32_t &sample : audio.samples)
    sample = static_cast<int32_t>(static_cast<uint32_t>(random()) & BitMask(format));
  return audio;
}

Samples SaturatedSum(Samples a, const Samples &b) {
  std::transform(b.begin(), b.end(), a.begin(), a.begin(), [](int64_t x, int64_t y) {
    return static_cast<int32_t>(std::clamp<int64_t>(x + y, INT32_MIN, INT32_MAX));
  });
  return a;
}

Samples Looped(const Samples &samples, size_t count) {
  Samples looped(count);
  for (size_t i = 0; i < count; ++i)
    looped[i] = samples[i % samples.size()];
  return looped;
}

void WriteAudio(const std::string &path, const AudioData &audio) {
  const File file = Create(path, audio.channels, audio.sampleRate, audio.format);
  const auto count = static_cast<sf_count_t>(audio.samples.size());
  EXPECT_EQ(count, sf_write_int(file.get(), audio.samples.data(), count));
}

AudioData WriteNoise(const std::string &path, int channels, int format, size_t frames, uint32_t seed) {
  AudioData audio = Noise(channels, format, frames, seed);
  WriteAudio(path, audio);
  return audio;
}

void WriteFloats(const std::string &path, const std::vector<double> &samples, int channels) {
  const File file = Create(path, channels, 48000, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
  const auto count = static_cast<sf_count_t>(samples.size());
  EXPECT_EQ(count, sf_write_double(file.get(), samples.data(), count));
}

void Damage(const std::string &path, std::streamoff position) {
  std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(position);
  file << std::string(1000, '\0');
}

AudioData ReadAudio(const std::string &path) {
  SF_INFO info{};
  const File file(sf_open(path.c_str(), SFM_READ, &info), sf_close);
  EXPECT_NE(nullptr, file) << path << ": " << sf_strerror(nullptr);
  if (!file) return {};
  AudioData audio{info.channels, info.samplerate, info.format, {}};
  audio.samples.resize(static_cast<size_t>(info.frames * info.channels));
  const auto count = static_cast<sf_count_t>(audio.samples.size());
  EXPECT_EQ(count, sf_read_int(file.get(), audio.samples.data(), count));
  return audio;
}

}  // namespace kest::test
