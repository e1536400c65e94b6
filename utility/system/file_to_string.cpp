// SPDX-License-Identifier: Apache-2.0
#include <climits>
#include <cstring>

#include <sys/stat.h>

#include "ze_kest/utility.h"

#include "utility/core/owned_file.h"
#include "utility/core/owned_memory.h"
#include "utility/core/report.h"

namespace {

constexpr size_t kPage = 4096;

// Rounds up to a multiple of a page that is strictly greater than the size, so there is always room for a
// NUL.
constexpr size_t SizeOnPages(size_t sztSize) {
  return (sztSize + kPage) & ~(kPage - 1);
}

// These must not be opened: opening a pipe blocks until it has a writer, and a device has no size and may
// never end.
bool IsSpecial(const char *pszPath) {
  struct stat stFile = {};
  return stat(pszPath, &stFile) == 0 && !S_ISREG(stFile.st_mode);
}

}  // namespace

uint32_t ze_kest_Utility_FileToString(const char *pszPath, char **ppszString, size_t *psztSize) {
  KEST_REQUIRE(pszPath != nullptr, "pszPath is NULL.\n");
  KEST_REQUIRE(ppszString != nullptr, "ppszString is NULL.\n");
  KEST_REQUIRE(psztSize != nullptr, "psztSize is NULL.\n");
  *ppszString = nullptr;
  *psztSize = 0;

  KEST_REQUIRE_OR(!IsSpecial(pszPath), ZE_KEST_FAILED, "Invalid file size.\n");
  const kest::OwnedFile file(ze_kest_Utility_FileOpen(pszPath, "r"));
  KEST_REQUIRE_OR(file != nullptr, ZE_KEST_FAILED, "Err! ze_kest_Utility_FileOpen failed!\n");

  const size_t sztSize = ze_kest_Utility_GetFileSize(file.get());
  KEST_REQUIRE_OR(sztSize >= 1 && sztSize <= INT_MAX - kPage, ZE_KEST_FAILED, "Invalid file size.\n");

  const size_t sztBuffer = SizeOnPages(sztSize);
  KEST_INFO("File size: %d bytes => after alignment: %d bytes.\n", static_cast<int>(sztSize),
            static_cast<int>(sztBuffer));
  void *pv = nullptr;
  const uint32_t u32Alloc = ze_kest_Utility_MemoryAlloc(&pv, sztBuffer);
  KEST_REQUIRE_OR(u32Alloc == ZE_KEST_OK, ZE_KEST_FAILED, "File string buffer allocation failed!\n");
  kest::Owned<char> string(static_cast<char *>(pv));
  memset(string.get(), 0, sztBuffer);

  const size_t sztRead = ze_kest_Utility_FileRead(string.get(), 1, sztSize, file.get());
  if (sztRead != sztSize) {
    KEST_ERR("Reading file(%s) size(%d) failed! ret(%d)\n", pszPath, static_cast<int>(sztSize),
             static_cast<int>(sztRead));
    return ZE_KEST_FAILED;
  }
  KEST_INFO("Success to Read file(%s) size(%d)! read size(%d)\n", pszPath, static_cast<int>(sztSize),
            static_cast<int>(sztRead));
  *ppszString = string.release();
  *psztSize = sztSize;
  return ZE_KEST_OK;
}
