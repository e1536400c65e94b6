// SPDX-License-Identifier: Apache-2.0
#include "ctl/commands/context.h"

#include <cstdlib>
#include <tuple>

#include <fmt/format.h>
#include <unistd.h>

#include "ctl/channel/local_host.h"
#include "ctl/channel/remote_host.h"
#include "ctl/parse/listing.h"
#include "ctl/parse/parameters.h"
#include "ctl/parse/status.h"
#include "ctl/render/status_line.h"

namespace kest::ctl {
namespace {

std::unique_ptr<Host> MakeHost(const Settings &settings) {
  if (!settings.via.empty()) return std::make_unique<RemoteHost>(settings.via);
  return std::make_unique<LocalHost>();
}

}  // namespace

bool Settings::operator==(const Settings &other) const {
  const auto fields = [](const Settings &settings) {
    return std::tie(settings.directory, settings.pid, settings.anyProcess, settings.timeout, settings.via,
                    settings.json, settings.quiet, settings.colour);
  };
  return fields(*this) == fields(other);
}

Context::Context(Settings settings)
    : settings_(std::move(settings)),
      host_(MakeHost(settings_)),
      channel_(*host_, {settings_.directory, settings_.timeout, settings_.pid, settings_.anyProcess}) {}

bool Context::UsesColour() const {
  if (settings_.colour != Colour::kAuto) return settings_.colour == Colour::kAlways;
  const char *noColour = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) != 0 && (noColour == nullptr || *noColour == '\0');
}

void Context::SayWhenLate() {
  if (IsSilent()) return;
  channel_.WhenLate([] {
    auto line = std::make_shared<StatusLine>(false);
    line->Show("waiting for an answer");
    return line;
  });
}

const Listing &Context::GetListing() {
  if (listing_) return *listing_;
  ParsedListing parsed = ParseListing(channel_.Ask({"kest_debug_list=print"}).lines);
  if (!parsed.isWhole) {
    throw CtlError(ExitCode::kLost, "the list was not understood",
                   "parts of it may be missing: see kestctl doctor");
  }
  for (const std::string &line : parsed.unknown)
    channel_.Warn(fmt::format("not part of the list: {}", line));
  listing_ = std::move(parsed.listing);
  return *listing_;
}

const std::vector<Parameter> &Context::GetParameters() {
  if (!parameters_) parameters_ = ParseParameters(channel_.Ask({"kest_debug_list=parameter"}).lines);
  return *parameters_;
}

StatusReport Context::AskStatus() {
  ParsedStatus parsed = ParseStatus(channel_.Ask({"kest_debug_list=status"}).lines);
  if (!parsed.isWhole) throw CtlError(ExitCode::kLost, "the status report was not understood");
  for (const std::string &line : parsed.unknown)
    channel_.Warn(fmt::format("not part of the report: {}", line));
  return std::move(parsed.report);
}

void Context::ForgetAnswers() {
  listing_.reset();
  parameters_.reset();
}

void Context::Forget() {
  ForgetAnswers();
  channel_.ForgetWarnings();
}

}  // namespace kest::ctl
