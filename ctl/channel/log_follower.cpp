// SPDX-License-Identifier: Apache-2.0
#include "ctl/channel/log_follower.h"

#include <algorithm>
#include <utility>

namespace kest::ctl {
namespace {

constexpr size_t kPieceBytes = size_t{256} * 1024;
constexpr size_t kRememberedBytes = 64;

}  // namespace

LogFollower::LogFollower(Host &host, std::string path)
    : host_(host), path_(std::move(path)), facts_(host.Read(path_, 0, 0).facts), modified_(facts_.modified) {
  GoTo(facts_.size);
}

void LogFollower::GoTo(uint64_t offset) {
  const size_t remembered = std::min<uint64_t>(offset, kRememberedBytes);
  const FilePart part = host_.Read(path_, offset - remembered, remembered);
  offset_ = offset;
  before_ = part.bytes;
  // Emptied since the offset was known.
  if (before_.size() < remembered) NoteRestart(part.facts);
}

bool LogFollower::IsContinued(const FilePart &part) const {
  const bool existed = facts_.kind == FileKind::kRegular;
  return existed && part.facts.IsSameFile(facts_) && part.bytes.compare(0, before_.size(), before_) == 0;
}

void LogFollower::NoteRestart(const FileFacts &now) {
  if (facts_.kind == FileKind::kRegular) ++restarts_;
  facts_ = now;
  offset_ = 0;
  before_.clear();
}

std::string LogFollower::ReadMore() {
  FilePart part = host_.Read(path_, offset_ - before_.size(), kPieceBytes);
  // A log that is missing for a moment is one that is being replaced.
  if (part.facts.kind != FileKind::kRegular) return {};
  if (!IsContinued(part)) {
    NoteRestart(part.facts);
    part = host_.Read(path_, 0, kPieceBytes);
  }
  std::string more = part.bytes.substr(std::min(part.bytes.size(), before_.size()));
  if (!more.empty()) modified_ = part.facts.modified;
  offset_ += more.size();
  before_ = part.bytes.substr(part.bytes.size() - std::min(part.bytes.size(), kRememberedBytes));
  return more;
}

bool LogFollower::MayHaveRestarted() const {
  if (restarts_ > 0) return true;
  const FileFacts now = host_.Read(path_, 0, 0).facts;
  return now.kind == FileKind::kRegular && now.size <= offset_ && now.modified != modified_;
}

}  // namespace kest::ctl
