// SPDX-License-Identifier: Apache-2.0
#include "ctl/audio/dump_files.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <functional>

#include "ctl/render/output_file.h"

namespace kest::ctl {
namespace {

constexpr uint64_t kPieceFrames = 16384;
constexpr uint64_t kPieceBytes = 1 << 20;

// Hands the bytes over in pieces; ends early when the file does.
void ForEachPiece(Host &host, const DumpedBytes &dumped, uint64_t pieceBytes,
                  const std::function<void(std::string_view)> &take) {
  for (uint64_t done = 0; done < dumped.size;) {
    const uint64_t wanted = std::min(pieceBytes, dumped.size - done);
    const FilePart part = host.Read(dumped.path, dumped.from + done, wanted);
    take(part.bytes);
    done += wanted;
    if (part.bytes.size() < wanted) return;
  }
}

bool IsZero(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte == 0; });
}

// Which of the kept channels carry something.
void NoteSound(std::string_view frames, const WavFormat &kept, std::vector<bool> &hasSound) {
  for (unsigned channel = 0; channel < kept.channels; ++channel) {
    for (size_t at = size_t{channel} * kept.bytesPerSample; !hasSound[channel] && at < frames.size();
         at += kept.FrameBytes()) {
      hasSound[channel] = !IsZero(frames.substr(at, kept.bytesPerSample));
    }
  }
}

std::string FirstChannels(std::string_view frames, uint64_t frameBytes, uint64_t keptBytes) {
  std::string kept;
  kept.reserve(frames.size());
  for (size_t at = 0; at + frameBytes <= frames.size(); at += frameBytes)
    kept += frames.substr(at, keptBytes);
  return kept;
}

}  // namespace

WrittenWav WriteWav(Host &host, const DumpedBytes &dumped, const WavFormat &layout, const std::string &path,
                    unsigned channels) {
  const WavFormat kept = {channels, layout.bytesPerSample, layout.rate};
  WavWriter writer(path, kept);
  WrittenWav written;
  std::vector<bool> hasSound(channels, false);
  ForEachPiece(host, dumped, kPieceFrames * layout.FrameBytes(), [&](std::string_view piece) {
    const std::string frames = FirstChannels(piece, layout.FrameBytes(), kept.FrameBytes());
    NoteSound(frames, kept, hasSound);
    writer.Write(frames);
    written.frames += frames.size() / std::max<uint64_t>(kept.FrameBytes(), 1);
  });
  writer.Close();
  for (unsigned channel = 0; channel < channels; ++channel) {
    if (!hasSound[channel]) written.zeroChannels.push_back(channel + 1);
  }
  return written;
}

void CopyDump(Host &host, const DumpedBytes &dumped, const std::string &path) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  ForEachPiece(host, dumped, kPieceBytes, [&](std::string_view piece) {
    file.write(piece.data(), static_cast<std::streamsize>(piece.size()));
  });
  file.close();
  if (!file) throw CannotWrite(path, std::strerror(errno));
}

}  // namespace kest::ctl
