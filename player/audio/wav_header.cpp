// SPDX-License-Identifier: Apache-2.0
#include "player/audio/wav_header.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

#include <sndfile.h>

#include "player/base/player_error.h"

namespace kest::player {
namespace {

constexpr uint32_t kExtensible = 0xFFFE;
constexpr size_t kFormatBytes = 16;
constexpr size_t kExtensibleFormatBytes = 26;  // up to what stands in place of kExtensible
constexpr size_t kOffsetOfExtensibleTag = 24;

struct WavSamples {
  uint32_t tag;
  uint32_t bits;
  int coding;
};

constexpr WavSamples kWavSamples[] = {
    {1, 8, SF_FORMAT_PCM_U8}, {1, 16, SF_FORMAT_PCM_16}, {1, 24, SF_FORMAT_PCM_24}, {1, 32, SF_FORMAT_PCM_32},
    {3, 32, SF_FORMAT_FLOAT}, {3, 64, SF_FORMAT_DOUBLE}, {6, 8, SF_FORMAT_ALAW},    {7, 8, SF_FORMAT_ULAW},
};

uint32_t LittleEndian(const uint8_t *bytes, size_t count) {
  uint32_t number = 0;
  for (size_t i = count; i > 0; --i) {
    number = number << 8 | bytes[i - 1];
  }
  return number;
}

// A writer that cannot know the size puts 0, or about the largest number with or without a sign.
bool IsPlaceholder(uint32_t bytes) {
  constexpr uint32_t kAbout = 65536;
  constexpr uint32_t kLargestWithSign = 0x80000000;
  return bytes == 0 || bytes >= UINT32_MAX - kAbout ||
         (bytes >= kLargestWithSign - kAbout && bytes <= kLargestWithSign);
}

void Read(StandardInput &stream, void *to, size_t bytes) {
  if (stream.Await(bytes)) {
    stream.Take(to, bytes);
    return;
  }
  stream.CheckIsWhole();
  if (!stream.HasEnded()) throw RunCancelled("played nothing: ended before standard input had a WAV header");
  throw PlayerError("standard input ended before the end of its WAV header; samples without one need --raw");
}

void Skip(StandardInput &stream, uint64_t bytes) {
  std::array<uint8_t, 4096> skipped;
  for (size_t step = 0; bytes > 0; bytes -= step) {
    step = static_cast<size_t>(std::min<uint64_t>(bytes, skipped.size()));
    Read(stream, skipped.data(), step);
  }
}

struct Chunk {
  std::array<char, 4> name;
  uint32_t bytes;

  [[nodiscard]] bool Is(const char *text) const { return std::memcmp(name.data(), text, name.size()) == 0; }
  [[nodiscard]] uint64_t BytesInStream() const { return uint64_t{bytes} + bytes % 2; }
};

Chunk ReadChunk(StandardInput &stream) {
  Chunk chunk{};
  std::array<uint8_t, 4> size;
  Read(stream, chunk.name.data(), chunk.name.size());
  Read(stream, size.data(), size.size());
  chunk.bytes = LittleEndian(size.data(), size.size());
  return chunk;
}

StreamFormat ReadFormat(StandardInput &stream, const Chunk &chunk) {
  std::array<uint8_t, kExtensibleFormatBytes> fields{};
  const size_t held = std::min<size_t>(chunk.bytes, fields.size());
  Read(stream, fields.data(), held);
  Skip(stream, chunk.BytesInStream() - held);
  uint32_t tag = LittleEndian(&fields[0], 2);
  const uint32_t channels = LittleEndian(&fields[2], 2);
  const uint32_t bytesPerFrame = LittleEndian(&fields[12], 2);
  const uint32_t bits = LittleEndian(&fields[14], 2);
  if (tag == kExtensible) tag = LittleEndian(&fields[kOffsetOfExtensibleTag], 2);
  const auto *samples =
      std::find_if(std::begin(kWavSamples), std::end(kWavSamples),
                   [&](const WavSamples &row) { return row.tag == tag && row.bits == bits; });
  if (chunk.bytes < kFormatBytes || samples == std::end(kWavSamples) || channels == 0 ||
      bytesPerFrame != channels * bits / 8) {
    throw PlayerError("standard input has WAV samples of kind " + std::to_string(tag) + " with " +
                      std::to_string(bits) +
                      " bits, which cannot be played from a stream; convert them to PCM");
  }
  return {channels, LittleEndian(&fields[4], 4), bits / 8, samples->coding | SF_ENDIAN_LITTLE};
}

void CheckIsWav(StandardInput &stream) {
  const Chunk riff = ReadChunk(stream);
  std::array<char, 4> kind;
  Read(stream, kind.data(), kind.size());
  if (riff.Is("RIFF") && std::memcmp(kind.data(), "WAVE", kind.size()) == 0) return;
  throw PlayerError(
      "standard input has no WAV header; convert it to WAV, or describe its samples with --raw");
}

}  // namespace

StreamFormat ReadWavHeader(StandardInput &stream) {
  CheckIsWav(stream);
  StreamFormat format{};
  for (;;) {
    const Chunk chunk = ReadChunk(stream);
    if (chunk.Is("data")) {
      if (format.channels == 0) throw PlayerError("standard input has a WAV header without a format");
      if (!IsPlaceholder(chunk.bytes)) format.bytes = chunk.bytes;
      return format;
    }
    if (chunk.Is("fmt ")) {
      format = ReadFormat(stream, chunk);
    } else {
      Skip(stream, chunk.BytesInStream());
    }
  }
}

}  // namespace kest::player
