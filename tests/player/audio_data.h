// SPDX-License-Identifier: Apache-2.0
// Audio files as the tests see them: samples left-aligned in 32 bits.
#pragma once

#include <cstdint>
#include <ios>
#include <string>
#include <vector>

#include <sndfile.h>

namespace kest::test {

constexpr const char *kRecording = "/usr/share/sounds/alsa/Front_Center.wav";

constexpr int kWav16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
constexpr int kWav24 = SF_FORMAT_WAV | SF_FORMAT_PCM_24;
constexpr int kWav32 = SF_FORMAT_WAV | SF_FORMAT_PCM_32;

using Samples = std::vector<int32_t>;

struct AudioData {
  int channels = 2;
  int sampleRate = 48000;
  int format = kWav16;
  Samples samples;  // interleaved

  [[nodiscard]] size_t Frames() const { return samples.size() / static_cast<size_t>(channels); }
};

// Noise that uses every bit of the format, the same for the same seed.
AudioData Noise(int channels, int format, size_t frames, uint32_t seed = 1);

// The sum sample by sample, saturated; the first one is the longer.
Samples SaturatedSum(Samples a, const Samples &b);
// So many samples of the endless repetition.
Samples Looped(const Samples &samples, size_t count);

void WriteAudio(const std::string &path, const AudioData &audio);
// Writes noise, and gives it.
AudioData WriteNoise(const std::string &path, int channels, int format, size_t frames, uint32_t seed = 1);
void WriteFloats(const std::string &path, const std::vector<double> &samples, int channels = 1);

// Zeroes 1000 bytes of a file.
void Damage(const std::string &path, std::streamoff position);

// Fails the test when the file cannot be read to its end.
AudioData ReadAudio(const std::string &path);

}  // namespace kest::test
