// SPDX-License-Identifier: Apache-2.0
#include "ctl/channel/log_follower.h"

#include <utility>

namespace kest::ctl {
namespace {

constexpr size_t kPieceBytes = 256 * 1024;

}  // namespace

LogFollower::LogFollower(Host &host, std::string path)
    : host_(host), path_(std::move(path)), facts_(host.Read(path_, 0, 0).facts), offset_(facts_.size) {}

void LogFollower::NoteRestart(const FileFacts &now) {
  const bool existed = facts_.kind == FileKind::kRegular;
  const bool exists = now.kind == FileKind::kRegular;
  // A log that is missing for a moment is one that is being replaced.
  if (!exists) return;
  if (existed && now.IsSameFile(facts_) && now.size >= offset_) {
    facts_ = now;
    return;
  }
  if (existed) ++restarts_;
  facts_ = now;
  offset_ = 0;
}

std::string LogFollower::ReadMore() {
  FilePart part = host_.Read(path_, offset_, kPieceBytes);
  const uint64_t asked = offset_;
  NoteRestart(part.facts);
  if (offset_ != asked) part = host_.Read(path_, offset_, kPieceBytes);
  offset_ += part.bytes.size();
  return std::move(part.bytes);
}

}  // namespace kest::ctl
