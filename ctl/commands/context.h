// SPDX-License-Identifier: Apache-2.0
// What a command works with: the settings of the command line and the channel.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "ctl/channel/channel.h"
#include "ctl/channel/host.h"
#include "ctl/model/listing.h"
#include "ctl/model/parameter.h"
#include "ctl/model/status.h"

namespace kest::ctl {

enum class Colour { kAuto, kAlways, kNever };

struct Settings {
  std::string directory = KEST_DEBUG_DIR;
  std::optional<int> pid;
  bool anyProcess = false;
  std::chrono::milliseconds timeout{2000};
  std::string via;
  bool json = false;
  bool quiet = false;
  Colour colour = Colour::kAuto;

  bool operator==(const Settings &other) const;
};

class Context {
 public:
  explicit Context(Settings settings);

  [[nodiscard]] const Settings &GetSettings() const { return settings_; }
  [[nodiscard]] Host &GetHost() { return *host_; }
  [[nodiscard]] Channel &GetChannel() { return channel_; }
  [[nodiscard]] bool UsesColour() const;
  // Whether nothing is to be said of how far a command has come.
  [[nodiscard]] bool IsSilent() const { return settings_.quiet || settings_.json; }

  // From now on, a line on the terminal says so while an answer is late, unless nothing is to be said.
  void SayWhenLate();

  // What runs. Asked once for each command.
  const Listing &GetListing();
  const std::vector<Parameter> &GetParameters();
  StatusReport AskStatus();
  // Asks again what runs.
  void ForgetAnswers();
  // For the next line of a shell: asks again, and warns again.
  void Forget();

 private:
  Settings settings_;
  std::unique_ptr<Host> host_;
  Channel channel_;
  std::optional<Listing> listing_;
  std::optional<std::vector<Parameter>> parameters_;
};

}  // namespace kest::ctl
