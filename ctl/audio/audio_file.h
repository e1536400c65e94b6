// SPDX-License-Identifier: Apache-2.0
// Reads audio files.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <sndfile.h>

namespace kest::ctl {

using Samples = std::vector<int32_t>;  // left-aligned: full scale is 32 bits

constexpr double kFullScale = 2147483648.0;

class AudioFile {
 public:
  // Throws CtlError when it is no audio file that can be read.
  explicit AudioFile(const std::string &path);

  [[nodiscard]] unsigned Channels() const { return static_cast<unsigned>(info_.channels); }
  [[nodiscard]] unsigned Rate() const { return static_cast<unsigned>(info_.samplerate); }
  [[nodiscard]] uint64_t Frames() const { return static_cast<uint64_t>(info_.frames); }
  // Of a sample; 0 when they are no whole numbers.
  [[nodiscard]] unsigned Bits() const;
  // A channel, counted from 0. Samples beyond full scale are clipped.
  [[nodiscard]] Samples Read(unsigned channel);

 private:
  struct Closer {
    void operator()(SNDFILE *file) const { sf_close(file); }
  };

  void ReadFloats(unsigned channel, Samples &samples);
  void ReadWholeNumbers(unsigned channel, Samples &samples);

  std::string path_;
  SF_INFO info_{};
  std::unique_ptr<SNDFILE, Closer> file_;
};

// The amplitude in decibels below full scale, 1.0; not below -200.
double ToDb(double amplitude);

}  // namespace kest::ctl
