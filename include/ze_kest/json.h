/* SPDX-License-Identifier: Apache-2.0
 *
 * The JSON reader; part of ze_kest/utility.h. A function that stores something returns a result code of
 * result.h.
 *
 * Everywhere, pstJsmn: the context; pstTokenInfo: a key of it. */
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
 * Values are returned as the characters in the text; interpreting them is up to the caller.
 * Call sequence: Create; set pszStringData and sztStringDataSize; FillUpTokenInfo; look up and read; Destroy.
 * A context belongs to one thread at a time, but look-ups and reads do not modify it and may run
 * concurrently. */

/* What a token is. */
enum ZE_KEST_JsmnType_e {
  ZE_KEST_JSMN_UNDEF = 0,
  ZE_KEST_JSMN_OBJECT = 1,
  ZE_KEST_JSMN_ARRAY = 2,
  ZE_KEST_JSMN_STRING = 3,
  ZE_KEST_JSMN_PRIMITIVE = 4 /* a number, true, false, null or any other bare word */
};

/* One token. Its text includes an object's or array's brackets but not a string's quotes; a primitive is as
 * written. */
typedef struct ZE_KEST_JsmnTokenInfo_s {
  int32_t type;  /* a ZE_KEST_JsmnType_e */
  int32_t start; /* offset of the text's first character in pszStringData; -1 while the token is open */
  int32_t end;   /* offset just past its last character; -1 while the token is open */
  int32_t size;  /* direct children: keys of an object, elements of an array, the one value of a key */
} ZE_KEST_JsmnTokenInfo_s;

/* A context: a text and the index of its tokens. */
typedef struct ZE_KEST_Jsmn_s {
  uint32_t pos;                          /* offset of the next character to read */
  uint32_t toknext;                      /* index of the next free token */
  int32_t toksuper;                      /* index of the token that encloses pos, -1 for none */
  ZE_KEST_JsmnTokenInfo_s *pstTokenInfo; /* the token array, owned by the context */
  const char *pszStringData;             /* the text, owned by the caller; read up to its size or an
                                            earlier NUL. Must not change while the index is in use */
  size_t sztTokenInfoSize;               /* bytes of the token array */
  size_t sztStringDataSize;              /* bytes of the text; nothing beyond 2 GiB is read */
  uint32_t u32TotalTokenCounter;         /* tokens in the index, 0 until it is filled */
} ZE_KEST_Jsmn_s;

/* Initialises an empty context with room for 256 tokens; previous contents of the record are overwritten.
 * ZE_KEST_OUT_OF_MEMORY: no memory for the token array (reported); the context is empty. */
ZE_KEST_API uint32_t ze_kest_Utility_Jsmn_Create(ZE_KEST_Jsmn_s *pstJsmn);

/* Releases the token array and zeroes the context; the text is not touched.
 * ZE_KEST_INVALID_ARGUMENT (reported): NULL, or a context without a token array, for example one whose fill
 * has failed; there is nothing to release in that case. */
ZE_KEST_API uint32_t ze_kest_Utility_Jsmn_Destroy(ZE_KEST_Jsmn_s *pstJsmn);

/* Fills the index from the text. The token array grows in steps of 4096 bytes as needed, which invalidates
 * pointers to tokens. A second call continues after what has already been read. The time grows with the
 * square of the number of keys in an object. ZE_KEST_INVALID_ARGUMENT (reported): NULL, no token array, no
 * text, or a text of 0 bytes. ZE_KEST_FAILED: the text is malformed (reported with -2), incomplete (-3) or
 * holds no token (0); the token array is released. ZE_KEST_OUT_OF_MEMORY: the array could not grow
 * (reported); it is kept as it is. */
ZE_KEST_API uint32_t ze_kest_Utility_Jsmn_FillUpTokenInfo(ZE_KEST_Jsmn_s *pstJsmn);

/* Finds the first string token, key or value at any depth, whose text is exactly pszDataName.
 * pstTargetTokenInfo: NULL to search the whole text; or a key of this context, to search from that key itself
 * to the end of its value. If the first match begins after that end, it is reported at WRN level and the
 * result is NULL.
 * NULL, reported at ERR level: a context without tokens, no name, a target that is not in this context or is
 * its last token. NULL when nothing matches. */
ZE_KEST_API ZE_KEST_JsmnTokenInfo_s *ze_kest_Utility_Jsmn_GetTokenInfo_ByDataName(
    const ZE_KEST_Jsmn_s *pstJsmn, const ZE_KEST_JsmnTokenInfo_s *pstTargetTokenInfo,
    const char *pszDataName);

/* Finds the first string token, key or value, after pstTargetTokenInfo, a token of this context; NULL stands
 * for token 0, the root. NULL, reported at ERR level: a context without tokens, a target that is not in this
 * context or is its last token. NULL when no string follows. */
ZE_KEST_API ZE_KEST_JsmnTokenInfo_s *ze_kest_Utility_Jsmn_GetNextTokenInfo(
    const ZE_KEST_Jsmn_s *pstJsmn, const ZE_KEST_JsmnTokenInfo_s *pstTargetTokenInfo);

/* Stores the size in bytes of a key's value, which is the token after the key, in *psztDataSize. For a token
 * that is not in this context or is its last one, returns ZE_KEST_OK and leaves *psztDataSize unchanged.
 * ZE_KEST_INVALID_ARGUMENT (reported): a context without tokens, NULL. */
ZE_KEST_API uint32_t ze_kest_Utility_Jsmn_GetDataSize_ByTokenInfo(const ZE_KEST_Jsmn_s *pstJsmn,
                                                                  const ZE_KEST_JsmnTokenInfo_s *pstTokenInfo,
                                                                  size_t *psztDataSize);

/* Copies the text of a key's value, which is the token after the key, without a terminating NUL.
 * pszData: out, sztDataSize bytes; sztDataSize: exactly the size of the value, not 0.
 * For a token that is not in this context or is its last one, returns ZE_KEST_OK and copies nothing.
 * ZE_KEST_INVALID_ARGUMENT (reported): a context without tokens, NULL, a size of 0.
 * ZE_KEST_NOTHING_TO_PROCESS: the value has a different size (reported). */
ZE_KEST_API uint32_t ze_kest_Utility_Jsmn_ReadData_ByTokenInfo(const ZE_KEST_Jsmn_s *pstJsmn,
                                                               const ZE_KEST_JsmnTokenInfo_s *pstTokenInfo,
                                                               char *pszData, size_t sztDataSize);

#ifdef __cplusplus
}
#endif

#endif
