// SPDX-License-Identifier: Apache-2.0
#include "ctl/audio/wav_writer.h"

#include <utility>

#include "ctl/render/output_file.h"

namespace kest::ctl {
namespace {

// With more than two channels the header says which speakers they belong to.
int FormatOf(const WavFormat &format) {
  constexpr int kSubFormats[] = {SF_FORMAT_PCM_16, SF_FORMAT_PCM_24, SF_FORMAT_PCM_32};
  return (format.channels > 2 ? SF_FORMAT_WAVEX : SF_FORMAT_WAV) | kSubFormats[format.bytesPerSample - 2];
}

SNDFILE *Create(const std::string &path, const WavFormat &format) {
  SF_INFO info = {};
  info.channels = static_cast<int>(format.channels);
  info.samplerate = static_cast<int>(format.rate);
  info.format = FormatOf(format);
  return sf_open(path.c_str(), SFM_WRITE, &info);
}

}  // namespace

WavWriter::WavWriter(const std::string &path, const WavFormat &format)
    : path_(path), file_(Create(path, format)) {
  Check(file_ != nullptr);
}

WavWriter::~WavWriter() {
  if (file_ != nullptr) sf_close(file_);
}

void WavWriter::Write(std::string_view frames) {
  const auto bytes = static_cast<sf_count_t>(frames.size());
  Check(sf_write_raw(file_, frames.data(), bytes) == bytes);
}

void WavWriter::Close() {
  const int result = sf_close(std::exchange(file_, nullptr));
  if (result == SF_ERR_NO_ERROR) return;
  throw CannotWrite(path_, sf_error_number(result));
}

void WavWriter::Check(bool isGood) const {
  if (!isGood) throw CannotWrite(path_, sf_strerror(file_));
}

}  // namespace kest::ctl
