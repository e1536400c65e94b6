// SPDX-License-Identifier: Apache-2.0
#include "player/audio/sound_card.h"

#include <cerrno>

#include <unistd.h>

#include "player/base/player_error.h"

namespace kest::player {
namespace {

constexpr const char *kPrefix = "alsa:";
constexpr unsigned int kLatencyUs = 100'000;
constexpr int kPatienceMs = 5000;
constexpr int kResumePeriodUs = 10'000;

// What libasound has to say is in the errors that its functions return.
void SayNothing(const char *, int, const char *, int, const char *, ...) {}

}  // namespace

std::optional<std::string> SoundCardIn(const std::string &output) {
  const size_t length = std::char_traits<char>::length(kPrefix);
  if (output.compare(0, length, kPrefix) != 0) return std::nullopt;
  return output.substr(length);
}

SoundCard::SoundCard(const std::string &device, const AudioFormat &format)
    : device_(device), channels_(format.channels) {
  snd_lib_error_set_handler(SayNothing);
  Open();
  Configure(format);
}

// Waits in WaitForRoom only: a card that takes nothing any more must not hold the player for ever.
void SoundCard::Open() {
  snd_pcm_t *pcm = nullptr;
  const int error = snd_pcm_open(&pcm, device_.c_str(), SND_PCM_STREAM_PLAYBACK, SND_PCM_NONBLOCK);
  if (error < 0) Fail("cannot be opened", error);
  pcm_.reset(pcm);
}

void SoundCard::Configure(const AudioFormat &format) {
  const bool is16Bit = format.bits == SampleBits::k16;
  const int error = snd_pcm_set_params(pcm_.get(), is16Bit ? SND_PCM_FORMAT_S16 : SND_PCM_FORMAT_S32,
                                       SND_PCM_ACCESS_RW_INTERLEAVED, format.channels, format.sampleRate,
                                       0 /* no resampling */, kLatencyUs);
  if (error < 0) {
    Fail("refuses " + std::to_string(format.channels) + " channels of " + (is16Bit ? "16" : "32") +
             " bits at " + std::to_string(format.sampleRate) + " Hz; a device such as plughw converts",
         error);
  }
}

bool SoundCard::Write(const int16_t *interleaved, uint32_t frames) {
  return WriteBytes(reinterpret_cast<const uint8_t *>(interleaved), frames, channels_ * sizeof(int16_t));
}

bool SoundCard::Write(const int32_t *interleaved, uint32_t frames) {
  return WriteBytes(reinterpret_cast<const uint8_t *>(interleaved), frames, channels_ * sizeof(int32_t));
}

bool SoundCard::WriteBytes(const uint8_t *frames, uint32_t count, size_t bytesPerFrame) {
  bool inTime = true;
  while (count > 0) {
    const snd_pcm_sframes_t written = snd_pcm_writei(pcm_.get(), frames, count);
    if (written < 0) {
      inTime = Recover(static_cast<int>(written)) && inTime;
    } else {
      frames += static_cast<size_t>(written) * bytesPerFrame;
      count -= static_cast<uint32_t>(written);
      if (written == 0) WaitForRoom();
    }
  }
  return inTime;
}

// False when the card had run empty.
bool SoundCard::Recover(int error) {
  if (error == -EAGAIN) {
    WaitForRoom();
    return true;
  }
  if (error == -ESTRPIPE && Resume()) return true;
  if (error != -ESTRPIPE && error != -EPIPE) Fail("is gone or broken", error);
  error = snd_pcm_prepare(pcm_.get());
  if (error < 0) Fail("cannot go on after it ran empty", error);
  return false;
}

// After the system slept. False when the card must begin anew.
bool SoundCard::Resume() {
  for (int tries = kPatienceMs * 1000 / kResumePeriodUs; tries > 0; --tries) {
    const int error = snd_pcm_resume(pcm_.get());
    if (error != -EAGAIN) return error == 0;
    usleep(kResumePeriodUs);
  }
  return false;
}

void SoundCard::WaitForRoom() {
  const int result = snd_pcm_wait(pcm_.get(), kPatienceMs);
  if (result == 0) Fail("has taken nothing for " + std::to_string(kPatienceMs / 1000) + " s", -ETIMEDOUT);
  // The next write says what is wrong and recovers from it.
  if (result < 0 && result != -EPIPE && result != -ESTRPIPE && result != -EINTR)
    Fail("is gone or broken", result);
}

// Waits until the last frame was heard.
void SoundCard::Close() {
  snd_pcm_nonblock(pcm_.get(), 0);
  const int error = snd_pcm_drain(pcm_.get());
  if (error < 0 && error != -EPIPE) Fail("cannot play to its end", error);
  pcm_.reset();
}

void SoundCard::Fail(const std::string &what, int error) const {
  throw PlayerError("the sound card " + device_ + " " + what + ": " + snd_strerror(error));
}

}  // namespace kest::player
