// SPDX-License-Identifier: Apache-2.0
#include <climits>
#include <cstring>

#include "ze_kest/utility.h"

#include "utility/core/owned_memory.h"
#include "utility/core/report.h"

namespace {

// A new copy of the line with one more chunk appended; empty when memory is exhausted.
kest::Owned<char> Extended(const char *pszLine, size_t sztLine, const char *pszChunk, size_t sztChunk) {
  void *pv = nullptr;
  if (ze_kest_Utility_MemoryAlloc(&pv, sztLine + sztChunk + 1) != ZE_KEST_OK) return nullptr;
  kest::Owned<char> line(static_cast<char *>(pv));
  if (sztLine > 0) memcpy(line.get(), pszLine, sztLine);
  memcpy(line.get() + sztLine, pszChunk, sztChunk + 1);
  return line;
}

void StripLineEnd(char *pszLine) {
  const size_t sztLength = strlen(pszLine);
  if (sztLength >= 2 && pszLine[sztLength - 2] == '\r') {
    pszLine[sztLength - 2] = '\0';
  } else if (sztLength >= 1 && (pszLine[sztLength - 1] == '\r' || pszLine[sztLength - 1] == '\n')) {
    pszLine[sztLength - 1] = '\0';
  }
}

}  // namespace

char *ze_kest_Utility_FileReadLine(char *pszBuf, int s32Size, FILE *pFile) {
  KEST_REQUIRE_OR(pszBuf != nullptr, nullptr, "pszBuf is NULL.\n");
  KEST_REQUIRE_OR(s32Size >= 2, nullptr, "Invalid parameter: s32Size!\n");
  KEST_REQUIRE_OR(pFile != nullptr, nullptr, "pFile is NULL.\n");

  kest::Owned<char> line;
  size_t sztTotal = 0;
  while (feof(pFile) == 0) {
    if (fgets(pszBuf, s32Size, pFile) == nullptr) return line.release();
    const size_t sztChunk = strlen(pszBuf);
    if (sztTotal + sztChunk > INT_MAX) break;
    kest::Owned<char> longer = Extended(line.get(), sztTotal, pszBuf, sztChunk);
    if (longer == nullptr) {
      KEST_ERR("Err! MALLOC failed!\n");
      return line.release();
    }
    line = std::move(longer);
    sztTotal += sztChunk;
    if (strchr(pszBuf, '\n') != nullptr) break;
  }
  if (line != nullptr) StripLineEnd(line.get());
  return line.release();
}
