// SPDX-License-Identifier: Apache-2.0
// Plays to a sound card, through libasound.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include <alsa/asoundlib.h>

#include "player/audio/audio_sink.h"

namespace kest::player {

// The device in the name of an output, "alsa:DEVICE"; none when it is a file.
std::optional<std::string> SoundCardIn(const std::string &output);

class SoundCard : public AudioSink {
 public:
  // device: as libasound names it; format.bits: k16 for 16-bit samples, else they have 32. Throws PlayerError
  // when there is no such device or it refuses the format.
  SoundCard(const std::string &device, const AudioFormat &format);

  [[nodiscard]] bool SetsThePace() const override { return true; }
  bool Write(const int16_t *interleaved, uint32_t frames) override;
  bool Write(const int32_t *interleaved, uint32_t frames) override;
  void Close() override;

 private:
  struct ClosePcm {
    void operator()(snd_pcm_t *pcm) const { snd_pcm_close(pcm); }
  };

  void Open();
  void Configure(const AudioFormat &format);
  bool WriteBytes(const uint8_t *frames, uint32_t count, size_t bytesPerFrame);
  bool Recover(int error);
  bool Resume();
  void WaitForRoom();
  [[noreturn]] void Fail(const std::string &what, int error) const;

  std::string device_;
  uint32_t channels_;
  std::unique_ptr<snd_pcm_t, ClosePcm> pcm_;
};

}  // namespace kest::player
