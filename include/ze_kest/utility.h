/* SPDX-License-Identifier: Apache-2.0
 *
 * The helpers that the whole framework uses. It also includes the headers for what filters call while they
 * process: ports, CPU counters and JSON.
 *
 * Unless a comment says otherwise: a function returns a result code of result.h; a NULL argument is reported
 * at ERR level and answered with ZE_KEST_INVALID_ARGUMENT; outputs keep their values on failure.
 *
 * Everywhere, pstFilter: the filter; pFile: an open stream. */
#ifndef ZE_KEST_UTILITY_H
#define ZE_KEST_UTILITY_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <time.h>

#include "ze_kest/json.h"
#include "ze_kest/model.h"
#include "ze_kest/performance.h"
#include "ze_kest/port.h"
#include "ze_kest/result.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Memory. Any thread, not real-time safe. ---- */

/* Allocates sztSize uninitialised bytes into *ppvOut. ZE_KEST_FAILED, with *ppvOut NULL, for a size of 0 and
 * when memory is exhausted. Release with ze_kest_Utility_MemoryFree. */
ZE_KEST_API uint32_t ze_kest_Utility_MemoryAlloc(void **ppvOut, size_t sztSize);

/* Releases *ppvInOut and sets it to NULL. ZE_KEST_FAILED when it is already NULL. */
ZE_KEST_API uint32_t ze_kest_Utility_MemoryFree(void **ppvInOut);

/* realloc. pvBlock: NULL or a block of MemoryAlloc; sztSize: bytes. Returns what realloc does. */
ZE_KEST_API void *ze_kest_Utility_MemoryReAlloc(void *pvBlock, size_t sztSize);

/* ---- Strings. Any thread; real-time safe but for Strdup. NULL strings are tolerated. psz, pszA, pszB,
 * pszSrc: strings to read; pszDst: out, room for the result; sztCount: at most so many characters of the
 * second string; ppszRest: in and out, what is left to split; pszDelimiters: the characters that end a piece;
 * s32Char: the character to find. ---- */

/* Length in bytes, 0 for NULL. */
ZE_KEST_API size_t ze_kest_Utility_Strlen(const char *psz);

/* Compares by length first, then like strncmp: shorter gives -1, longer 1. NULL counts as "". */
ZE_KEST_API int ze_kest_Utility_Strcmp(const char *pszA, const char *pszB);

/* The standard functions of the same names. NULL counts as "" in functions that only read strings; functions
 * that return a string return NULL for a NULL argument, and so does Strdup when memory is exhausted
 * (reported). Like strncpy, Strncpy does not terminate a text that it cuts. */
ZE_KEST_API int ze_kest_Utility_Strncmp(const char *pszA, const char *pszB, size_t sztCount);
ZE_KEST_API char *ze_kest_Utility_Strncpy(char *pszDst, const char *pszSrc, size_t sztCount);
ZE_KEST_API char *ze_kest_Utility_Strncat(char *pszDst, const char *pszSrc, size_t sztCount);
ZE_KEST_API char *ze_kest_Utility_Strdup(const char *psz);
ZE_KEST_API char *ze_kest_Utility_Strsep(char **ppszRest, const char *pszDelimiters);
ZE_KEST_API char *ze_kest_Utility_Strchr(const char *psz, int s32Char);

/* Reads a number from the first u32Length (at most 32) characters: base 16 after "0x", else base 10; trailing
 * text is ignored. Returns 0 for NULL, for text that is not a number, and for INT32_MIN, INT32_MAX and
 * anything beyond them (reported at ERR level). */
ZE_KEST_API int32_t ze_kest_Utility_StrToInt(const char *pszSrc, uint32_t u32Length);

/* ---- Process, thread, time. Any thread. ---- */

/* Returns the id of the process. */
ZE_KEST_API int32_t ze_kest_Utility_GetPid(void);

/* Returns the kernel's id of the calling thread. */
ZE_KEST_API int32_t ze_kest_Utility_GetTid(void);

/* Sleeps for u32Ms milliseconds. */
ZE_KEST_API void ze_kest_Utility_DelayMs(unsigned int u32Ms);

/* Stores a deadline: the current time of the monotonic clock plus u64Us microseconds. *pstOut is zero when
 * the clock cannot be read. */
ZE_KEST_API void ze_kest_Utility_MicrosecondToTimespec(struct timespec *pstOut, uint64_t u64Us);

/* ---- Files. Any thread, not real-time safe. pszPath: the file; pszMode: as for fopen; pvBuf: sztCount items
 * of sztSize bytes; sztSize: bytes of an item; sztCount: items; pstPos: the position; s32Offset, s32Whence:
 * as for fseek. ---- */

/* fopen. Returns NULL for a NULL argument or on failure. */
ZE_KEST_API FILE *ze_kest_Utility_FileOpen(const char *pszPath, const char *pszMode);

/* fclose. Returns 0, or EOF on failure (reported) and for NULL. The stream is closed even on failure. */
ZE_KEST_API int ze_kest_Utility_FileClose(FILE *pFile);

/* fread. Returns the number of items read, 0 for a NULL argument. */
ZE_KEST_API size_t ze_kest_Utility_FileRead(void *pvBuf, size_t sztSize, size_t sztCount, FILE *pFile);

/* fwrite. Returns the number of items written (fewer than requested is reported at WRN level), 0 for a NULL
 * argument. */
ZE_KEST_API size_t ze_kest_Utility_FileWrite(const void *pvBuf, size_t sztSize, size_t sztCount, FILE *pFile);

/* Reads one whole line of any length and returns it without its line end ("\n", "\r\n" or "\r"), newly
 * allocated: release it with ze_kest_Utility_MemoryFree. NULL at the end of the file and for an invalid
 * argument.
 * pszBuf: scratch buffer of s32Size bytes, at least 2. */
ZE_KEST_API char *ze_kest_Utility_FileReadLine(char *pszBuf, int s32Size, FILE *pFile);

/* fsetpos, fgetpos, fseek. Return 0, or non-zero on failure and for NULL (a failing fseek is reported). */
ZE_KEST_API int ze_kest_Utility_FileSetPos(FILE *pFile, const fpos_t *pstPos);
ZE_KEST_API int ze_kest_Utility_FileGetPos(FILE *pFile, fpos_t *pstPos);
ZE_KEST_API int ze_kest_Utility_FileSeek(FILE *pFile, long s32Offset, int s32Whence);

/* Size in bytes; 0 on failure (reported) and for NULL. Leaves the file position at the start. */
ZE_KEST_API size_t ze_kest_Utility_GetFileSize(FILE *pFile);

/* Reads a whole file into a new buffer that is zero-filled after the data, so the text is NUL-terminated.
 * pszPath: the file; ppszString: out, the buffer; release it with ze_kest_Utility_MemoryFree; psztSize: out,
 * bytes of data. ZE_KEST_FAILED (reported) when the file cannot be opened or read, is empty, larger than 2
 * GiB or not a regular file, or when memory is exhausted; the outputs are then NULL and 0. */
ZE_KEST_API uint32_t ze_kest_Utility_FileToString(const char *pszPath, char **ppszString, size_t *psztSize);

/* Appends data to a file, creating it if necessary; the file is closed again before the function returns.
 * pszFilePath: the directory; pszFileName: the file in it (the path is cut to 127 characters); pszBuffer:
 * sztSize bytes, at least 1. A file that cannot be opened, written or closed is reported (a failed write at
 * WRN level, the others at ERR level) and does not change the result. */
ZE_KEST_API uint32_t ze_kest_Utility_DumpBuffer(const char *pszFilePath, const char *pszFileName,
                                                const void *pszBuffer, size_t sztSize);

/* The same for data in a ring. pszFilePath, pszFileName: as above. Writes sztSize bytes starting at pszBuffer
 * and continues at pszBufferStart whenever it reaches pszBufferEnd, the address just past the ring. If
 * sztSize exceeds the ring's size, the ring's data is written repeatedly. A pszBuffer equal to pszBufferEnd
 * means the start. ZE_KEST_INVALID_ARGUMENT also for a ring of 0 bytes and for a pszBuffer outside the ring
 * (reported). */
ZE_KEST_API uint32_t ze_kest_Utility_DumpRingBuffer(const char *pszFilePath, const char *pszFileName,
                                                    const void *pszBuffer, const void *pszBufferStart,
                                                    const void *pszBufferEnd, size_t sztSize);

/* Names of the framework's enumerators: constant strings, "Unkown" (spelled like this) for values past the
 * last one. u32Value: the enumerator. Returns its name. Real-time safe. */
ZE_KEST_API const char *ze_kest_Utility_DecPlayTypeEnumString(uint32_t u32Value);
ZE_KEST_API const char *ze_kest_Utility_FilterDecTypeEnumString(uint32_t u32Value);
ZE_KEST_API const char *ze_kest_Utility_DecodeFormatEnumString(uint32_t u32Value);
ZE_KEST_API const char *ze_kest_Utility_DigitalOutputEnumString(uint32_t u32Value);
ZE_KEST_API const char *ze_kest_Utility_MpeghStreamTypeEnumString(uint32_t u32Value);

/* ---- Small conversions and platform questions ---- */

/* Linear gain 10^(dB/20) in Q23 (0x800000 is 1.0). s32Db: whole decibels; the gain overflows Q23 above 54.
 * Real-time safe. */
ZE_KEST_API uint32_t ze_kest_Utility_FixedPtDb(int s32Db);

/* Bytes per millisecond of a PCM format, (bits / 8) * channels * (rate / 1000); a field of 0 counts as 2
 * channels, 48000 Hz or 16 bits. 0 for NULL. pstFormat: the format. Real-time safe. */
ZE_KEST_API uint32_t ze_kest_Utility_BytesPerMs(const ZE_KEST_PcmInfo_s *pstFormat);

/* Merges a filter's sleep settings into its parent pipeline. ZE_KEST_FAILED without a parent pipeline.
 * Real-time safe. */
ZE_KEST_API uint32_t ze_kest_Utility_UpdatePipelineSleepConfiguration(ZE_KEST_Filter_s *pstFilter);

/* Stores in *peSourceType the input source named in the filter's configuration text: 5 MM, 3 DTV, 2 ATV, 4
 * HDMI, 1 ANALOG, 0 none. If several are named, the first in this order wins. */
ZE_KEST_API uint32_t ze_kest_Utility_GetSourceType(const ZE_KEST_Filter_s *pstFilter,
                                                   unsigned int *peSourceType);

/* Whether the platform's local sound card is present. Queries the file system, so not real-time safe. */
ZE_KEST_API bool ze_kest_utility_IsLKESTMode(void);

/* Always ZE_KEST_OK. */
ZE_KEST_API uint32_t ze_kest_utility_LkestCheckParentPipeline(void);

/* ---- Named shared memory. Any thread, not real-time safe. ---- */

/* Size of every block in bytes. */
#define ZE_KEST_SHM_SIZE 3072

/* Maps the block with the given name, shared with the other processes that map it; creates it, zeroed, if it
 * does not exist. Deliberate: creating a block leaves the process's umask at 077.
 * pszName: part of a file name; the path is cut to 127 characters.
 * ps32ShmFd, ps32LockFd, ppvAddr: out, the descriptors of the block and its lock file and the address; owned
 * by the caller until ze_kest_Utility_ShmFree. They must not be used after a failure. Whoever shortens the
 * file kills each process that touches the mapping then (SIGBUS); pread and pwrite on ps32ShmFd do not fault.
 * ZE_KEST_NOT_INITIALISED: a file could not be opened, created, sized (the disk is full) or mapped; a block
 * that had been opened is removed. ZE_KEST_NOTHING_TO_PROCESS: the path could not be formatted. */
ZE_KEST_API uint32_t ze_kest_Utility_ShmAlloc(const char *pszName, int *ps32ShmFd, int *ps32LockFd,
                                              void **ppvAddr);

/* Closes, unmaps and removes the block with the given name, for every process: a later ShmAlloc creates a new
 * one. pszName: as for ShmAlloc; ps32ShmFd, ps32LockFd, pvAddr: what ShmAlloc stored. The descriptors are
 * read but not reset. ZE_KEST_FAILED: a path could not be formatted. */
ZE_KEST_API uint32_t ze_kest_Utility_ShmFree(const char *pszName, const int *ps32ShmFd, const int *ps32LockFd,
                                             void *pvAddr);

#ifdef __cplusplus
}
#endif

#endif
