// SPDX-License-Identifier: Apache-2.0
// Writes frames into a WAV file as they are, bit by bit.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <sndfile.h>

namespace kest::ctl {

struct WavFormat {
  unsigned channels = 0;
  unsigned bytesPerSample = 0;  // 2, 3 or 4
  unsigned rate = 0;            // Hz

  [[nodiscard]] uint64_t FrameBytes() const { return uint64_t{channels} * bytesPerSample; }
};

// Sizes in a WAV file have 32 bits; the remainder is room for the headers.
constexpr uint64_t kMostWavBytes = UINT32_MAX - 4096;

class WavWriter {
 public:
  // Throws CtlError when the file cannot be made; an existing one is overwritten.
  WavWriter(const std::string &path, const WavFormat &format);
  ~WavWriter();
  WavWriter(const WavWriter &) = delete;
  WavWriter &operator=(const WavWriter &) = delete;

  // Whole frames, interleaved, little-endian.
  void Write(std::string_view frames);
  // Completes the file; throws when that fails.
  void Close();

 private:
  void Check(bool isGood) const;

  std::string path_;
  SNDFILE *file_;
};

}  // namespace kest::ctl
