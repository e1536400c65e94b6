// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/utility.h"

#include "utility/core/report.h"

FILE *ze_kest_Utility_FileOpen(const char *pszPath, const char *pszMode) {
  KEST_REQUIRE_OR(pszPath != nullptr, nullptr, "pszPath is NULL.\n");
  KEST_REQUIRE_OR(pszMode != nullptr, nullptr, "pszMode is NULL.\n");
  return fopen(pszPath, pszMode);
}

int ze_kest_Utility_FileClose(FILE *pFile) {
  KEST_REQUIRE_OR(pFile != nullptr, EOF, "pFile is NULL.\n");
  const int s32Result = fclose(pFile);
  if (s32Result != 0) KEST_ERR("Error! Fail to close file\n");
  return s32Result;
}

size_t ze_kest_Utility_FileRead(void *pvBuf, size_t sztSize, size_t sztCount, FILE *pFile) {
  KEST_REQUIRE_OR(pvBuf != nullptr, 0, "pvBuf is NULL.\n");
  KEST_REQUIRE_OR(pFile != nullptr, 0, "pFile is NULL.\n");
  return fread(pvBuf, sztSize, sztCount, pFile);
}

size_t ze_kest_Utility_FileWrite(const void *pvBuf, size_t sztSize, size_t sztCount, FILE *pFile) {
  KEST_REQUIRE_OR(pvBuf != nullptr, 0, "pvBuf is NULL.\n");
  KEST_REQUIRE_OR(pFile != nullptr, 0, "pFile is NULL.\n");
  const size_t sztWritten = fwrite(pvBuf, sztSize, sztCount, pFile);
  if (sztWritten < sztCount) {
    KEST_WRN("Warning! Exptect to write %d count, but only %zu count can be written\n",
             static_cast<int>(sztCount), sztWritten);
  }
  return sztWritten;
}

int ze_kest_Utility_FileSetPos(FILE *pFile, const fpos_t *pstPos) {
  KEST_REQUIRE_OR(pFile != nullptr, -1, "pFile is NULL.\n");
  KEST_REQUIRE_OR(pstPos != nullptr, -1, "pstPos is NULL.\n");
  return fsetpos(pFile, pstPos);
}

int ze_kest_Utility_FileGetPos(FILE *pFile, fpos_t *pstPos) {
  KEST_REQUIRE_OR(pFile != nullptr, -1, "pFile is NULL.\n");
  KEST_REQUIRE_OR(pstPos != nullptr, -1, "pstPos is NULL.\n");
  return fgetpos(pFile, pstPos);
}

int ze_kest_Utility_FileSeek(FILE *pFile, long s32Offset, int s32Whence) {
  KEST_REQUIRE_OR(pFile != nullptr, -1, "pFile is NULL.\n");
  const int s32Result = fseek(pFile, s32Offset, s32Whence);
  if (s32Result != 0) KEST_ERR("Error! Fail to fseek file\n");
  return s32Result;
}

size_t ze_kest_Utility_GetFileSize(FILE *pFile) {
  KEST_REQUIRE_OR(pFile != nullptr, 0, "pFile is NULL.\n");
  if (fseek(pFile, 0, SEEK_END) != 0) KEST_ERR("Error! Fail to fseek()!\n");
  const long s32Position = ftell(pFile);
  if (s32Position < 0) KEST_ERR("Error! Fail to ftell()!\n");
  rewind(pFile);
  if (s32Position >= 0) return static_cast<size_t>(s32Position);
  KEST_ERR("Err! ZE_KEST_FTELL ret: %lld\n", static_cast<long long>(s32Position));
  return 0;
}
