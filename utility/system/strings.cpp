// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include "ze_kest/utility.h"

#include "utility/core/report.h"

namespace {

const char *OrEmpty(const char *psz) {
  return psz == nullptr ? "" : psz;
}

}  // namespace

size_t ze_kest_Utility_Strlen(const char *psz) {
  return strlen(OrEmpty(psz));
}

// Deliberate: compares by length first, so this is not lexicographic order.
int ze_kest_Utility_Strcmp(const char *pszA, const char *pszB) {
  const size_t sztA = ze_kest_Utility_Strlen(pszA);
  const size_t sztB = ze_kest_Utility_Strlen(pszB);
  if (sztA < sztB) return -1;
  if (sztA > sztB) return 1;
  return strncmp(OrEmpty(pszA), OrEmpty(pszB), sztA);
}

int ze_kest_Utility_Strncmp(const char *pszA, const char *pszB, size_t sztCount) {
  return strncmp(OrEmpty(pszA), OrEmpty(pszB), sztCount);
}

char *ze_kest_Utility_Strncpy(char *pszDst, const char *pszSrc, size_t sztCount) {
  if (pszDst == nullptr || pszSrc == nullptr) return nullptr;
  return strncpy(pszDst, pszSrc, sztCount);
}

char *ze_kest_Utility_Strncat(char *pszDst, const char *pszSrc, size_t sztCount) {
  if (pszDst == nullptr || pszSrc == nullptr) return nullptr;
  return strncat(pszDst, pszSrc, sztCount);
}

char *ze_kest_Utility_Strdup(const char *psz) {
  if (psz == nullptr) return nullptr;
  char *pszCopy = strdup(psz);
  KEST_REQUIRE_OR(pszCopy != nullptr, nullptr, "Error! MALLOC error! \n");
  return pszCopy;
}

char *ze_kest_Utility_Strsep(char **ppszRest, const char *pszDelimiters) {
  return ppszRest == nullptr ? nullptr : strsep(ppszRest, OrEmpty(pszDelimiters));
}

char *ze_kest_Utility_Strchr(const char *psz, int s32Char) {
  return psz == nullptr ? nullptr : const_cast<char *>(strchr(psz, s32Char));
}
