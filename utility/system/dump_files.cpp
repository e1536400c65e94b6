// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include <fcntl.h>

#include "ze_kest/utility.h"

#include "utility/core/begins_with.h"
#include "utility/core/guarded_open.h"
#include "utility/core/report.h"

namespace {

// What stands in the debug directory may be anybody's; other directories are the caller's affair.
FILE *Open(const char *pszPath) {
  if (kest::BeginsWith(pszPath, KEST_DEBUG_DIR)) return kest::OpenSink(pszPath, O_APPEND);
  return ze_kest_Utility_FileOpen(pszPath, "a+");
}

// A file opened for appending during one call. Failures are reported under the name of the calling function.
class AppendedFile {
 public:
  AppendedFile(const char *pszFunction, const char *pszFilePath, const char *pszFileName)
      : pszFunction_(pszFunction) {
    char szPath[128];
    if (snprintf(szPath, sizeof(szPath), "%s/%s", pszFilePath, pszFileName) < 0) {
      KEST_ERR_AS(pszFunction_, "Error! Fail to snprintf()!\n");
      return;
    }
    pFile_ = Open(szPath);
    if (pFile_ == nullptr) KEST_ERR_AS(pszFunction_, "Err! fopen failed!\n");
  }

  ~AppendedFile() {
    if (pFile_ == nullptr) return;
    if (fflush(pFile_) != 0) KEST_ERR_AS(pszFunction_, "Error! Fail to fflush()!\n");
    if (fclose(pFile_) != 0) KEST_ERR_AS(pszFunction_, "Error! Fail to fclose()!\n");
  }

  AppendedFile(const AppendedFile &) = delete;
  AppendedFile &operator=(const AppendedFile &) = delete;

  [[nodiscard]] bool IsOpen() const { return pFile_ != nullptr; }

  // False when not all of it could be written.
  [[nodiscard]] bool Write(const void *pvData, size_t sztSize) {
    return ze_kest_Utility_FileWrite(pvData, 1, sztSize, pFile_) == sztSize;
  }

 private:
  const char *pszFunction_;
  FILE *pFile_ = nullptr;
};

// True for the end address too: callers treat it as the start.
bool IsInRing(const void *pvPosition, const void *pvStart, const void *pvEnd) {
  const auto uPosition = reinterpret_cast<uintptr_t>(pvPosition);
  return reinterpret_cast<uintptr_t>(pvStart) <= uPosition && uPosition <= reinterpret_cast<uintptr_t>(pvEnd);
}

void AppendFromRing(AppendedFile &file, const uint8_t *pu8Position, const uint8_t *pu8Start,
                    const uint8_t *pu8End, size_t sztRemaining) {
  while (sztRemaining != 0) {
    if (pu8Position == pu8End) pu8Position = pu8Start;
    const size_t sztPart = std::min(static_cast<size_t>(pu8End - pu8Position), sztRemaining);
    if (!file.Write(pu8Position, sztPart)) return;
    pu8Position += sztPart;
    sztRemaining -= sztPart;
  }
}

}  // namespace

uint32_t ze_kest_Utility_DumpBuffer(const char *pszFilePath, const char *pszFileName, const void *pszBuffer,
                                    size_t sztSize) {
  KEST_REQUIRE(pszFilePath != nullptr, "pszFilePath is NULL.\n");
  KEST_REQUIRE(pszFileName != nullptr, "pszFileName is NULL.\n");
  KEST_REQUIRE(pszBuffer != nullptr, "pszBuffer is NULL.\n");
  KEST_REQUIRE(sztSize != 0, "Invalid parameter: sztSize!\n");
  AppendedFile file(__func__, pszFilePath, pszFileName);
  if (file.IsOpen()) static_cast<void>(file.Write(pszBuffer, sztSize));
  return ZE_KEST_OK;
}

uint32_t ze_kest_Utility_DumpRingBuffer(const char *pszFilePath, const char *pszFileName,
                                        const void *pszBuffer, const void *pszBufferStart,
                                        const void *pszBufferEnd, size_t sztSize) {
  KEST_REQUIRE(pszFilePath != nullptr, "pszFilePath is NULL.\n");
  KEST_REQUIRE(pszFileName != nullptr, "pszFileName is NULL.\n");
  KEST_REQUIRE(pszBuffer != nullptr, "pszBuffer is NULL.\n");
  KEST_REQUIRE(pszBufferStart != nullptr, "pszBufferStart is NULL.\n");
  KEST_REQUIRE(pszBufferEnd != nullptr, "pszBufferEnd is NULL.\n");
  KEST_REQUIRE(sztSize != 0, "Invalid parameter: sztSize!\n");
  KEST_REQUIRE(pszBufferStart != pszBufferEnd, "Invalid parameter: pszBufferEnd!\n");
  KEST_REQUIRE(IsInRing(pszBuffer, pszBufferStart, pszBufferEnd), "Invalid parameter: pszBuffer!\n");
  AppendedFile file(__func__, pszFilePath, pszFileName);
  if (!file.IsOpen()) return ZE_KEST_OK;
  AppendFromRing(file, static_cast<const uint8_t *>(pszBuffer), static_cast<const uint8_t *>(pszBufferStart),
                 static_cast<const uint8_t *>(pszBufferEnd), sztSize);
  return ZE_KEST_OK;
}
