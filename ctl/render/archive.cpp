// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/archive.h"

#include <ctime>
#include <utility>

#include <archive.h>
#include <archive_entry.h>
#include <fmt/format.h>

#include "ctl/error.h"

namespace kest::ctl {
namespace {

constexpr unsigned kMode = 0644;

la_ssize_t Take(archive * /*writer*/, void *bytes, const void *piece, size_t size) {
  static_cast<std::string *>(bytes)->append(static_cast<const char *>(piece), size);
  return static_cast<la_ssize_t>(size);
}

struct FreeEntry {
  void operator()(archive_entry *entry) const { archive_entry_free(entry); }
};

}  // namespace

Archive::Archive(std::string directory) : directory_(std::move(directory)), writer_(archive_write_new()) {
  archive_write_add_filter_gzip(writer_);
  archive_write_set_format_pax_restricted(writer_);
  Check(archive_write_open(writer_, &bytes_, nullptr, Take, nullptr));
}

Archive::~Archive() {
  archive_write_free(writer_);
}

void Archive::Check(int status) const {
  if (status >= ARCHIVE_WARN) return;
  throw CtlError(ExitCode::kRefused,
                 fmt::format("the archive cannot be made: {}", archive_error_string(writer_)));
}

void Archive::Add(const std::string &name, const std::string &bytes) {
  const std::unique_ptr<archive_entry, FreeEntry> entry(archive_entry_new());
  archive_entry_set_pathname(entry.get(), (directory_ + "/" + name).c_str());
  archive_entry_set_size(entry.get(), static_cast<la_int64_t>(bytes.size()));
  archive_entry_set_filetype(entry.get(), AE_IFREG);
  archive_entry_set_perm(entry.get(), kMode);
  archive_entry_set_mtime(entry.get(), std::time(nullptr), 0);
  Check(archive_write_header(writer_, entry.get()));
  Check(static_cast<int>(archive_write_data(writer_, bytes.data(), bytes.size())));
}

std::string Archive::Finish() {
  Check(archive_write_close(writer_));
  return std::move(bytes_);
}

}  // namespace kest::ctl
