// SPDX-License-Identifier: Apache-2.0
// Turns what a process has dumped into files that programs open.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ctl/audio/wav_writer.h"
#include "ctl/channel/host.h"

namespace kest::ctl {

// A part of a file of the process.
struct DumpedBytes {
  std::string path;
  uint64_t from = 0;
  uint64_t size = 0;
};

struct WrittenWav {
  uint64_t frames = 0;
  std::vector<unsigned> zeroChannels;  // counted from 1: those in which every sample is 0
};

// Keeps the first channels of each frame, as many as format has; layout says how the frames were dumped.
WrittenWav WriteWav(Host &host, const DumpedBytes &dumped, const WavFormat &layout, const std::string &path,
                    unsigned channels);
// The bytes as they are.
void CopyDump(Host &host, const DumpedBytes &dumped, const std::string &path);

}  // namespace kest::ctl
