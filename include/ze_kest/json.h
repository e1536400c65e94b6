/* SPDX-License-Identifier: Apache-2.0
 *
 * The JSON reader; part of ze_kest/utility.h. */
#ifndef ZE_KEST_JSON_H
#define ZE_KEST_JSON_H

#include <stddef.h>
#include <stdint.h>

#include "ze_kest/model.h"
#include "ze_kest/result.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- JSON: an index of a text's tokens, and look-ups in it. Not real-time safe. ----
 *
 * Values are handed back as the characters that stand in the text; what they mean is the caller's business.
 * Create; set pszStringData and sztStringDataSize; FillUpTokenInfo; look up and read; Destroy. A context
 * belongs to one thread at a time; look-ups and reads, which change nothing, may run side by side. */

enum ZE_KEST_JsmnType_e {
  ZE_KEST_JSMN_UNDEF = 0,
  ZE_KEST_JSMN_OBJECT = 1,
  ZE_KEST_JSMN_ARRAY = 2,
  ZE_KEST_JSMN_STRING = 3,
  ZE_KEST_JSMN_PRIMITIVE = 4 /* a number, true, false, null or any other bare word */
};

/* One token. Its text: an object or array with its brackets, a string without its quotes, a primitive as it
 * stands. */
typedef struct ZE_KEST_JsmnTokenInfo_s {
  int32_t type;  /* a ZE_KEST_JsmnType_e */
  int32_t start; /* offset of the text's first character in pszStringData; -1 while the token is open */
  int32_t end;   /* offset behind its last character; -1 while the token is open */
  int32_t size;  /* direct children: keys of an object, elements of an array, the one value of a key */
} ZE_KEST_JsmnTokenInfo_s;

typedef struct ZE_KEST_Jsmn_s {
  uint32_t pos;                          /* offset of the next character to read */
  uint32_t toknext;                      /* index of the next free token */
  int32_t toksuper;                      /* index of the token around pos, -1 for none */
  ZE_KEST_JsmnTokenInfo_s *pstTokenInfo; /* the token array, owned by the context */
  const char *pszStringData;             /* the text, the caller's; read up to its size or a NUL before it.
                                            Must stay as it is while the index is in use */
  size_t sztTokenInfoSize;               /* bytes of the token array */
  size_t sztStringDataSize;              /* bytes of the text; nothing behind 2 GiB is read */
  uint32_t u32TotalTokenCounter;         /* tokens of the index, 0 before it is filled */
} ZE_KEST_Jsmn_s;

/* Makes an empty context with room for 256 tokens; what the record held before is overwritten.
 * ZE_KEST_OUT_OF_MEMORY: no memory for the token array (reported); the context is empty. */
ZE_KEST_API uint32_t ze_kest_Utility_Jsmn_Create(ZE_KEST_Jsmn_s *pstJsmn);

/* Releases the token array and zeroes the context; the text is left alone.
 * ZE_KEST_INVALID_ARGUMENT, with its report: NULL, or a context without a token array, such as one whose fill
 * has failed; that one holds nothing. */
ZE_KEST_API uint32_t ze_kest_Utility_Jsmn_Destroy(ZE_KEST_Jsmn_s *pstJsmn);

/* Fills the index from the text; the token array grows by 4096 bytes as often as it must, which makes
 * pointers to tokens invalid. A second call goes on behind what has been read. The time grows with the square
 * of the keys of an object. ZE_KEST_INVALID_ARGUMENT, with its report: NULL, no token array, no text or one
 * of 0 bytes. ZE_KEST_FAILED: the text is malformed (reported with -2), incomplete (-3) or holds no token
 * (0); the token array is released. ZE_KEST_OUT_OF_MEMORY: the array could not grow (reported) and stays as
 * it is. */
ZE_KEST_API uint32_t ze_kest_Utility_Jsmn_FillUpTokenInfo(ZE_KEST_Jsmn_s *pstJsmn);

/* The first string token that reads exactly pszDataName, key or value, at whatever depth.
 * pstTargetTokenInfo: NULL to search the whole text; or a key of this context, to search from itself to the
 * end of its value. A match that begins behind that end is reported at WRN level.
 * NULL, reported at ERR level: a context without tokens, no name, a target that is not of this context or is
 * its last token. NULL when nothing matches. */
ZE_KEST_API ZE_KEST_JsmnTokenInfo_s *ze_kest_Utility_Jsmn_GetTokenInfo_ByDataName(
    const ZE_KEST_Jsmn_s *pstJsmn, const ZE_KEST_JsmnTokenInfo_s *pstTargetTokenInfo,
    const char *pszDataName);

/* The first string token, key or value, behind a token of this context; NULL as target stands for token 0,
 * the root. NULL, reported at ERR level: a context without tokens, a target that is not of this context or is
 * its last token. NULL when no string follows. */
ZE_KEST_API ZE_KEST_JsmnTokenInfo_s *ze_kest_Utility_Jsmn_GetNextTokenInfo(
    const ZE_KEST_Jsmn_s *pstJsmn, const ZE_KEST_JsmnTokenInfo_s *pstTargetTokenInfo);

/* Bytes of the text of a key's value, the token behind it, into *psztDataSize. ZE_KEST_OK with *psztDataSize
 * unchanged for a token that is not of this context or is its last one. ZE_KEST_INVALID_ARGUMENT, with its
 * report: a context without tokens, NULL. */
ZE_KEST_API uint32_t ze_kest_Utility_Jsmn_GetDataSize_ByTokenInfo(const ZE_KEST_Jsmn_s *pstJsmn,
                                                                  const ZE_KEST_JsmnTokenInfo_s *pstTokenInfo,
                                                                  size_t *psztDataSize);

/* Copies the text of a key's value, the token behind it, without a terminating NUL.
 * pszData: out, sztDataSize bytes; sztDataSize: exactly the size of the value, not 0.
 * ZE_KEST_OK with nothing copied for a token that is not of this context or is its last one.
 * ZE_KEST_INVALID_ARGUMENT, with its report: a context without tokens, NULL, a size of 0.
 * ZE_KEST_NOTHING_TO_PROCESS: the value has another size (reported). */
ZE_KEST_API uint32_t ze_kest_Utility_Jsmn_ReadData_ByTokenInfo(const ZE_KEST_Jsmn_s *pstJsmn,
                                                               const ZE_KEST_JsmnTokenInfo_s *pstTokenInfo,
                                                               char *pszData, size_t sztDataSize);

#ifdef __cplusplus
}
#endif

#endif
