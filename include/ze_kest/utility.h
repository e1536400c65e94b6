/* SPDX-License-Identifier: Apache-2.0
 *
 * What filters call while they process, and the helpers that the whole framework uses.
 *
 * Unless a comment says otherwise: a function returns a result code of result.h; a NULL argument is reported
 * at ERR level and answered with ZE_KEST_INVALID_ARGUMENT; outputs keep their values on failure; the port
 * functions work on the calling filter's own ports, on the thread that runs the filter, take no lock,
 * allocate nothing and log nothing on success, so they are real-time safe. */
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
#include "ze_kest/result.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Memory. Any thread, not real-time safe. ---- */

/* Allocates sztSize bytes, uninitialised, into *ppvOut. ZE_KEST_FAILED with *ppvOut NULL for a size of 0 and
 * when memory is exhausted. Release with ze_kest_Utility_MemoryFree. */
ZE_KEST_API uint32_t ze_kest_Utility_MemoryAlloc(void **ppvOut, size_t sztSize);

/* Releases *ppvInOut and sets it to NULL. ZE_KEST_FAILED when it is NULL already. */
ZE_KEST_API uint32_t ze_kest_Utility_MemoryFree(void **ppvInOut);

/* realloc. */
ZE_KEST_API void *ze_kest_Utility_MemoryReAlloc(void *pvBlock, size_t sztSize);

/* ---- Strings. Any thread; real-time safe but for Strdup. NULL strings are tolerated. ---- */

/* Length in bytes, 0 for NULL. */
ZE_KEST_API size_t ze_kest_Utility_Strlen(const char *psz);

/* Orders by length first, then like strncmp: the shorter string gives -1, the longer 1. NULL counts as "". */
ZE_KEST_API int ze_kest_Utility_Strcmp(const char *pszA, const char *pszB);

/* The standard functions of the same names. NULL counts as "" where a string is read; where a result string
 * is due, a NULL argument gives NULL, and so does Strdup when memory is exhausted (reported). Like strncpy,
 * Strncpy leaves a text that it cuts unterminated. */
ZE_KEST_API int ze_kest_Utility_Strncmp(const char *pszA, const char *pszB, size_t sztCount);
ZE_KEST_API char *ze_kest_Utility_Strncpy(char *pszDst, const char *pszSrc, size_t sztCount);
ZE_KEST_API char *ze_kest_Utility_Strncat(char *pszDst, const char *pszSrc, size_t sztCount);
ZE_KEST_API char *ze_kest_Utility_Strdup(const char *psz);
ZE_KEST_API char *ze_kest_Utility_Strsep(char **ppszRest, const char *pszDelimiters);
ZE_KEST_API char *ze_kest_Utility_Strchr(const char *psz, int s32Char);

/* Reads a number from the first u32Length (at most 32) characters: base 16 after "0x", else base 10; trailing
 * text is ignored. 0 for NULL, for text that is no number, and for one beyond 32 bits (reported at ERR
 * level). */
ZE_KEST_API int32_t ze_kest_Utility_StrToInt(const char *pszSrc, uint32_t u32Length);

/* ---- Process, thread, time. Any thread. ---- */

ZE_KEST_API int32_t ze_kest_Utility_GetPid(void);

/* The kernel's id of the calling thread. */
ZE_KEST_API int32_t ze_kest_Utility_GetTid(void);

/* Sleeps for u32Ms milliseconds. */
ZE_KEST_API void ze_kest_Utility_DelayMs(unsigned int u32Ms);

/* Deadline: now on the monotonic clock plus u64Us microseconds. pstOut is zero when the clock
 * cannot be read. */
ZE_KEST_API void ze_kest_Utility_MicrosecondToTimespec(struct timespec *pstOut, uint64_t u64Us);

/* ---- Files. Any thread, not real-time safe. ---- */

/* fopen; NULL for a NULL argument or on failure. */
ZE_KEST_API FILE *ze_kest_Utility_FileOpen(const char *pszPath, const char *pszMode);

/* fclose; 0, or EOF on failure (reported) and for NULL. The stream is closed either way. */
ZE_KEST_API int ze_kest_Utility_FileClose(FILE *pFile);

/* fread; the items read, 0 for a NULL argument. */
ZE_KEST_API size_t ze_kest_Utility_FileRead(void *pvBuf, size_t sztSize, size_t sztCount, FILE *pFile);

/* fwrite; the items written (fewer than asked: reported at WRN level), 0 for a NULL argument. */
ZE_KEST_API size_t ze_kest_Utility_FileWrite(const void *pvBuf, size_t sztSize, size_t sztCount, FILE *pFile);

/* One whole line of any length without its line end ("\n", "\r\n" or "\r"), newly allocated: release it with
 * ze_kest_Utility_MemoryFree. NULL at the end of the file and for an invalid argument.
 * pszBuf: scratch buffer of s32Size bytes, at least 2. */
ZE_KEST_API char *ze_kest_Utility_FileReadLine(char *pszBuf, int s32Size, FILE *pFile);

/* fsetpos, fgetpos, fseek: 0, or non-zero on failure and for NULL (a failing fseek is reported). */
ZE_KEST_API int ze_kest_Utility_FileSetPos(FILE *pFile, const fpos_t *pstPos);
ZE_KEST_API int ze_kest_Utility_FileGetPos(FILE *pFile, fpos_t *pstPos);
ZE_KEST_API int ze_kest_Utility_FileSeek(FILE *pFile, long s32Offset, int s32Whence);

/* Size in bytes, 0 on failure (reported) and for NULL. Leaves the file at its start. */
ZE_KEST_API size_t ze_kest_Utility_GetFileSize(FILE *pFile);

/* Reads a whole file into a new buffer that is zero-filled behind the data, so it is NUL-terminated.
 * pszPath: the file; ppszString: out, the buffer, release it with ze_kest_Utility_MemoryFree; psztSize: out,
 * bytes of data. ZE_KEST_FAILED when the file cannot be opened or read, is empty, larger than 2 GiB or no
 * regular file, or memory is exhausted (each reported); both outputs are then NULL and 0. */
ZE_KEST_API uint32_t ze_kest_Utility_FileToString(const char *pszPath, char **ppszString, size_t *psztSize);

/* Appends data to a file, which is created when it does not exist and is closed again before the return.
 * pszFilePath: the directory; pszFileName: the file in it (the path is cut at 127 characters); pszBuffer:
 * sztSize bytes, at least 1. A file that cannot be opened, written or closed is reported (the write at WRN
 * level, the others at ERR level) and does not change the result. */
ZE_KEST_API uint32_t ze_kest_Utility_DumpBuffer(const char *pszFilePath, const char *pszFileName,
                                                const void *pszBuffer, size_t sztSize);

/* The same for data in a ring: sztSize bytes from pszBuffer on, from pszBufferStart again wherever
 * pszBufferEnd, the first byte behind the ring, is reached; more than the ring holds is written in laps.
 * ZE_KEST_INVALID_ARGUMENT too for a ring without bytes and for a pszBuffer outside it (reported);
 * pszBufferEnd itself stands for the start. */
ZE_KEST_API uint32_t ze_kest_Utility_DumpRingBuffer(const char *pszFilePath, const char *pszFileName,
                                                    const void *pszBuffer, const void *pszBufferStart,
                                                    const void *pszBufferEnd, size_t sztSize);

/* ---- Names of the framework's enumerations: constant strings, "Unkown" past the last one. Real-time safe.
 * ---- */

ZE_KEST_API const char *ze_kest_Utility_DecPlayTypeEnumString(uint32_t u32Value);
ZE_KEST_API const char *ze_kest_Utility_FilterDecTypeEnumString(uint32_t u32Value);
ZE_KEST_API const char *ze_kest_Utility_DecodeFormatEnumString(uint32_t u32Value);
ZE_KEST_API const char *ze_kest_Utility_DigitalOutputEnumString(uint32_t u32Value);
ZE_KEST_API const char *ze_kest_Utility_MpeghStreamTypeEnumString(uint32_t u32Value);

/* ---- Small conversions and platform questions ---- */

/* Linear gain 10^(dB/20) in Q23 (0x800000 is 1.0). s32Db: whole decibels; above 54 the gain does not fit into
 * Q23. Real-time safe. */
ZE_KEST_API uint32_t ze_kest_Utility_FixedPtDb(int s32Db);

/* Bytes per millisecond of a PCM format, (bits / 8) * channels * (rate / 1000); a zero field stands for
 * 2 channels, 48000 Hz, 16 bits. 0 for NULL. Real-time safe. */
ZE_KEST_API uint32_t ze_kest_Utility_BytesPerMs(const ZE_KEST_PcmInfo_s *pstFormat);

/* Merges a filter's sleep settings into its parent pipeline. ZE_KEST_FAILED without a parent. Real-time safe.
 */
ZE_KEST_API uint32_t ze_kest_Utility_UpdatePipelineSleepConfiguration(ZE_KEST_Filter_s *pstFilter);

/* Input source named in the filter's configuration text, into *peSourceType: 5 MM, 3 DTV, 2 ATV, 4 HDMI,
 * 1 ANALOG, 0 none; the first of this order wins. */
ZE_KEST_API uint32_t ze_kest_Utility_GetSourceType(const ZE_KEST_Filter_s *pstFilter,
                                                   unsigned int *peSourceType);

/* Whether the platform's local sound card is present. Asks the file system, not real-time safe. */
ZE_KEST_API bool ze_kest_utility_IsLKESTMode(void);

/* Always ZE_KEST_OK. */
ZE_KEST_API uint32_t ze_kest_utility_LkestCheckParentPipeline(void);

/* ---- Named shared memory. Any thread, not real-time safe. ---- */

/* Bytes of every block. */
#define ZE_KEST_SHM_SIZE 3072

/* Maps the block of a name, shared with the other processes that map it; creates it, zeroed, when it does not
 * exist. The process's umask is 077 after a creation.
 * pszName: part of a file name; the path is cut at 127 characters.
 * ps32ShmFd, ps32LockFd, ppvAddr: out, the descriptors of block and lock file and the address; owned by the
 * caller until ze_kest_Utility_ShmFree. On failure they must not be used.
 * ZE_KEST_NOT_INITIALISED: a file could not be opened, created, sized (the disk is full) or mapped (a block
 * that could be opened is removed then); ZE_KEST_NOTHING_TO_PROCESS: the path could not be formatted. */
ZE_KEST_API uint32_t ze_kest_Utility_ShmAlloc(const char *pszName, int *ps32ShmFd, int *ps32LockFd,
                                              void **ppvAddr);

/* Closes, unmaps and removes the block of a name, for every process: a later ShmAlloc creates a new one.
 * The descriptors are read, not reset. ZE_KEST_FAILED: a path could not be formatted. */
ZE_KEST_API uint32_t ze_kest_Utility_ShmFree(const char *pszName, const int *ps32ShmFd, const int *ps32LockFd,
                                             void *pvAddr);

/* ---- Process size: how much a filter may process in this cycle ---- */

/* The largest amount that the counting ports of one side can all deliver or take, PCM in samples per channel,
 * metadata and raw in bytes. *psztProcessSize is 0 whenever the result is ZE_KEST_NOTHING_TO_PROCESS.
 *
 * Input PCM and metadata: the first port with data counts, connected or not; empty ports before it are passed
 * over. Ports after it count when they are connected, and an empty one makes the size 0.
 * Output PCM: every port with a ring counts. Output metadata and raw: every connected port with a ring.
 * Input raw: every port with a ring.
 * PCM sizes are limited by the filter's sztMaxInPcmProcessSize and sztMaxOutPcmProcessSize. */
ZE_KEST_API uint32_t ze_kest_Utility_CalculateInputPortPcmProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                                      uint32_t *psztProcessSize);
ZE_KEST_API uint32_t ze_kest_Utility_CalculateOutputPortPcmProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                                       uint32_t *psztProcessSize);
ZE_KEST_API uint32_t ze_kest_Utility_CalculateInputPortMetadataProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                                           uint32_t *psztProcessSize);
ZE_KEST_API uint32_t ze_kest_Utility_CalculateOutputPortMetadataProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                                            uint32_t *psztProcessSize);
ZE_KEST_API uint32_t ze_kest_Utility_CalculateInputPortRawProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                                      uint32_t *psztProcessSize);
ZE_KEST_API uint32_t ze_kest_Utility_CalculateOutputPortRawProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                                       uint32_t *psztProcessSize);

/* ---- Rings. No argument is checked; all return ZE_KEST_OK; source and destination must not overlap. ---- */

/* One channel between its ring and a linear buffer in which it may be interleaved with others.
 * pu8RingBuf: start of the ring; pu8Pos: where in the ring to begin; sztRingSize: bytes of the ring;
 * pu8Data: the channel's first sample in the linear buffer; u64Bytes: bytes of ring data, a partial last
 * sample is moved whole; u32Stride: distance of the channel's samples in the linear buffer, in its samples;
 * u32BytesPerSample: width in the ring, 2, 3 or 4 (the converting reads: 2 or 4), any other moves nothing.
 *
 * A stride of 1 copies the ring's bytes as they are, whatever the width and in the converting reads too.
 * Nothing outside the ring is touched: a sample that crosses its end is cut (missing bytes read as 0), more
 * than the rest of the ring and one lap is not moved, and nothing is when pu8Pos lies outside.
 * _To16Bit gives the upper 16 bits; _To24Le a 32-bit word with the upper 24 bits in its low three bytes, not
 * sign-extended; _To32Bit the sample left-aligned in 32 bits. */
ZE_KEST_API uint32_t ze_kest_Utility_WriteDataToNonInterleaveRingBuffer(uint8_t *pu8RingBuf, uint8_t *pu8Pos,
                                                                        uint32_t sztRingSize,
                                                                        const uint8_t *pu8Data,
                                                                        uint64_t u64Bytes, uint32_t u32Stride,
                                                                        uint32_t u32BytesPerSample);
ZE_KEST_API uint32_t ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer(
    const uint8_t *pu8RingBuf, const uint8_t *pu8Pos, uint32_t sztRingSize, uint8_t *pu8Data,
    uint64_t u64Bytes, uint32_t u32Stride, uint32_t u32BytesPerSample);
ZE_KEST_API uint32_t ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To16Bit(
    const uint8_t *pu8RingBuf, const uint8_t *pu8Pos, uint32_t sztRingSize, uint8_t *pu8Data,
    uint64_t u64Bytes, uint32_t u32Stride, uint32_t u32BytesPerSample);
ZE_KEST_API uint32_t ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To24Le(
    const uint8_t *pu8RingBuf, const uint8_t *pu8Pos, uint32_t sztRingSize, uint8_t *pu8Data,
    uint64_t u64Bytes, uint32_t u32Stride, uint32_t u32BytesPerSample);
ZE_KEST_API uint32_t ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To32Bit(
    const uint8_t *pu8RingBuf, const uint8_t *pu8Pos, uint32_t sztRingSize, uint8_t *pu8Data,
    uint64_t u64Bytes, uint32_t u32Stride, uint32_t u32BytesPerSample);

/* Copies sztCount bytes between byte rings, or from a ring into a linear buffer. A position is offset plus
 * advance, less the ring's size once when it is not below it; nothing is copied when it lies outside still.
 * Not more than a ring's size is copied. All sizes in bytes. */
ZE_KEST_API uint32_t ze_kest_Utility_CopyFromRingToRingBuffer(uint8_t *pu8Dst, uint32_t sztDstSize,
                                                              uint32_t sztDstOffset, uint32_t sztDstAdvance,
                                                              const uint8_t *pu8Src, uint32_t sztSrcSize,
                                                              uint32_t sztSrcOffset, uint32_t sztSrcAdvance,
                                                              uint32_t sztCount);
ZE_KEST_API uint32_t ze_kest_Utility_CopyFromRingToNonRingBuffer(uint8_t *pu8Dst, const uint8_t *pu8Ring,
                                                                 uint32_t sztRingSize, uint32_t sztOffset,
                                                                 uint32_t sztAdvance, uint32_t sztCount);

/* ---- Sample widths: a linear run of samples from one container to another. Any thread, real-time safe. ----
 */

/* Containers: 16 bits; 24 bits packed into three bytes, the low one first; 24LE, the low three bytes of a
 * 32-bit word (the top byte is dropped); 32 bits. A wider sample has its bits at the top (24LE apart), the
 * rest zero; a narrower one loses its low bits: nothing is rounded or saturated.
 *
 * u32Count: samples; 0 converts nothing. Pointers need not be aligned. The samples are converted one after
 * another in ascending order, so ranges may overlap where no sample is written over before it is read.
 * ZE_KEST_INVALID_ARGUMENT: a NULL pointer (reported), nothing is written. */
ZE_KEST_API uint32_t ze_kest_Utility_ConvertPcmFrom16BitTo24Bit(const uint16_t *pu16Ptr, uint8_t *pu8Ptr,
                                                                uint32_t u32Count);
ZE_KEST_API uint32_t ze_kest_Utility_ConvertPcmFrom24BitTo16Bit(const uint8_t *pu8Ptr, uint16_t *pu16Ptr,
                                                                uint32_t u32Count);
ZE_KEST_API uint32_t ze_kest_Utility_ConvertPcmFrom16BitTo32Bit(const uint16_t *pu16Ptr, uint32_t *pu32Dest,
                                                                uint32_t u32Count);
ZE_KEST_API uint32_t ze_kest_Utility_ConvertPcmFrom32BitTo16Bit(const uint32_t *pu32PtrSrc,
                                                                uint16_t *pu16PtrDes, uint32_t u32Count);
ZE_KEST_API uint32_t ze_kest_Utility_ConvertPcmFrom24BitTo32Bit(const uint8_t *pu8Ptr, uint32_t *pu32Ptr,
                                                                uint32_t u32Count);
ZE_KEST_API uint32_t ze_kest_Utility_ConvertPcmFrom24LETo16Bit(const uint32_t *pu32Ptr, uint16_t *pu16Ptr,
                                                               uint32_t u32Count);
ZE_KEST_API uint32_t ze_kest_Utility_ConvertPcmFrom24LETo32Bit(const uint32_t *pu32Src, uint32_t *pu32Dest,
                                                               uint32_t u32Count);

/* A second generation of the same conversions: 16 to 32 bits, 24LE to 32 bits in place, 24LE to 16 bits. The
 * destination comes first, and to convert no samples is refused.
 * ps32Dst, ps16Dst: sztSamples samples, out; ps16Dst must not be NULL: it is not checked.
 * ZE_KEST_INVALID_ARGUMENT: another NULL pointer or 0 samples (each reported), nothing is written. */
ZE_KEST_API uint32_t ze_kest_Utility_Convert16BitPcmTo32BitPcm(int32_t *ps32Dst, const int16_t *ps16Src,
                                                               uint32_t sztSamples);
ZE_KEST_API uint32_t ze_kest_Utility_Convert32BitPcmFromLow24BitToHigh24Bit(int32_t *ps32Src,
                                                                            uint32_t sztSamples);
ZE_KEST_API uint32_t ze_kest_Utility_Convert32BitPcmFromLow24BitTo16BitPcm(int16_t *ps16Dst,
                                                                           const int32_t *ps32Src,
                                                                           uint32_t sztSamples);

/* ---- Interleave: one channel group of a port, given by the port's PCM part ---- */

/* Frames of an interleaved buffer into the rings of a group, and back. Channel k of a frame belongs to slot k
 * of the group; the channel map is not asked, no level or offset changes.
 *
 * pstPcm: the port's PCM part; ePcmGroupType: the group, 0 to 2; u32Advance: where in the rings to begin, in
 * samples from sztPcmReadOffset; sztSamples: samples per channel, the frames of pvSrc or pvDst; source and
 * destination must not overlap. The samples have the width given here on both sides, 16, 24 (packed) or 32
 * bits, and the group's storage is one of rings of that width. Of any other width nothing is moved, but with
 * one channel its bytes are copied all the same.
 *
 * Nothing outside the rings is touched: nothing is moved when the position lies beyond the ring after one lap
 * or when the group has no storage, and not more than the rest of the ring and one lap.
 * ZE_KEST_INVALID_ARGUMENT: a group above 2 or a NULL pointer (each reported), nothing is written. */

/* u32ChNum: channels of a frame; 0 and more than the group's number of channels count as 2. u32BitWidth: bits
 * of a sample; 0 counts as 16. Both corrections are reported at INFO level. */
ZE_KEST_API uint32_t ze_kest_Utility_ConvertInterleaveToNonInterleave(uint32_t u32ChNum, uint32_t u32BitWidth,
                                                                      const ZE_KEST_PcmBuffer_s *pstPcm,
                                                                      uint32_t ePcmGroupType,
                                                                      uint32_t u32Advance, const void *pvSrc,
                                                                      uint32_t sztSamples);

/* u32ChNum: channels of a frame; 0: nothing is done, no pointer is checked. Channels beyond the group's
 * number of channels have no ring: their slots of the frames stay as they were. u32BytesPerSample: 2, 3 or 4.
 */
ZE_KEST_API uint32_t ze_kest_Utility_ConvertNonInterleaveToInterleave(
    void *pvDst, const ZE_KEST_PcmBuffer_s *pstPcm, uint32_t ePcmGroupType, uint32_t u32ChNum,
    uint32_t u32Advance, uint32_t sztSamples, uint32_t u32BytesPerSample);

/* Copies a group's channels from the rings of one port to the same slots of another, with wrap-around on both
 * sides. The source's group record says which slots carry a channel; no level or offset changes.
 * pstDst, pstSrc: the ports' PCM parts, whose rings must not overlap; u32DstAdvance, u32SrcAdvance: where to
 * begin, in samples from the ports' sztPcmReadOffset; sztSamples: samples per channel; ePcmGroupType: 0 to 2.
 * The ports have the same sample width: u32BitWidth 0 of the source counts as 16, of the destination as the
 * source's. Nothing is copied when a port has no storage for the group, a position lies outside its ring
 * after one lap or the source's samples are the wider ones; never more than a ring's size is.
 * ZE_KEST_INVALID_ARGUMENT: a group above 2 or a NULL pointer (each reported). */
ZE_KEST_API uint32_t ze_kest_Utility_CopyNonInterleavePcmBuffer(const ZE_KEST_PcmBuffer_s *pstDst,
                                                                const ZE_KEST_PcmBuffer_s *pstSrc,
                                                                uint32_t u32DstAdvance,
                                                                uint32_t u32SrcAdvance, uint32_t sztSamples,
                                                                uint32_t ePcmGroupType);

/* ---- Reading an input port. Reading consumes nothing: account for it with the Update functions. ---- */

/* Reads channels u32FirstCh to u32LastCh of a port into an interleaved buffer.
 * u32PortIdx: 0 to u32InPortCount - 1, connected unless it is 0; pvDst: sztSamples frames of u32DstChNum
 * samples; sztSamples: samples per channel; u32FirstCh, u32LastCh: global channel numbers (0-1, 2-11 and
 * 12-21 for groups 0, 1 and 2), both inclusive; u32DstChNum: samples of a destination frame, at least the
 * channels read.
 *
 * Channel c goes to slot c - u32FirstCh of every frame. A channel that the port does not carry leaves its
 * slot as it was. The destination's samples have the port's width, or are those of the ring reads of the same
 * suffix (port widths 16 and 32). With u32DstChNum 1 the port's bytes come unconverted, so pvDst needs room
 * for samples of the port's width.
 *
 * ZE_KEST_INVALID_ARGUMENT: a NULL pointer (reported), an empty channel range, more channels than
 * u32DstChNum, no such port. ZE_KEST_FAILED: u32LastCh lies beyond the groups that can be read (reported);
 * the channels before it are written. Ports of 16 and 24 bits and the converting reads give group 2 only to
 * the last channel read. */
ZE_KEST_API uint32_t ze_kest_Utility_ReadInputPortPcmBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                            uint32_t u32PortIdx, void *pvDst,
                                                            uint32_t sztSamples, uint32_t u32FirstCh,
                                                            uint32_t u32LastCh, uint32_t u32DstChNum);
ZE_KEST_API uint32_t ze_kest_Utility_ReadInputPortPcmBuffer_To16Bit(const ZE_KEST_Filter_s *pstFilter,
                                                                    uint32_t u32PortIdx, void *pvDst,
                                                                    uint32_t sztSamples, uint32_t u32FirstCh,
                                                                    uint32_t u32LastCh, uint32_t u32DstChNum);
ZE_KEST_API uint32_t ze_kest_Utility_ReadInputPortPcmBuffer_To24Le(const ZE_KEST_Filter_s *pstFilter,
                                                                   uint32_t u32PortIdx, void *pvDst,
                                                                   uint32_t sztSamples, uint32_t u32FirstCh,
                                                                   uint32_t u32LastCh, uint32_t u32DstChNum);

/* Tag and size in bytes (header included) of the next unread metadata block of a port. The caller knows that
 * the ring holds one. u32Unused is not read. ZE_KEST_INVALID_ARGUMENT without a report when there is no such
 * port or no whole header at its read position. */
ZE_KEST_API uint32_t ze_kest_Utility_ReadOneBlockInputPortMetadataBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                                         uint32_t u32PortIdx,
                                                                         uint32_t u32Unused,
                                                                         uint32_t *pu32Tag,
                                                                         uint32_t *pu32BlockSize);

/* Bytes of metadata that belong to a number of samples: the next sztSamples / 256 blocks of a port, up to the
 * one that reaches the end of the held data, which counts whole. The first is taken from the read position
 * whatever the ring holds, so an empty ring gives the block there. *pu32LastBlockSize is the size of the last
 * block with a payload and is left alone when there is none. ZE_KEST_INVALID_ARGUMENT without a report when
 * there is no such port. */
ZE_KEST_API uint32_t ze_kest_Utility_QueryInputPortMetadataLen(const ZE_KEST_Filter_s *pstFilter,
                                                               uint32_t u32PortIdx, uint32_t sztSamples,
                                                               uint32_t *pu32Len,
                                                               uint32_t *pu32LastBlockSize);

/* Bytes of metadata that go with a step of sztSamples on input port 0, counted in blocks as above, not more
 * than u32MaxBytes (in whole blocks). *pu32Remainder: samples left over from the step before, in; left over
 * for the next one, out. Returns bytes, not a result code; 0 for NULL, which is not reported. */
ZE_KEST_API uint32_t ze_kest_Utility_QueryInputMinMetaProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                                  uint32_t sztSamples, uint32_t u32MaxBytes,
                                                                  uint32_t *pu32Remainder);

/* ---- Writing output ports. Writing commits nothing: account for it with the Update functions. ---- */

/* Writes sztSamples samples per channel to one output port behind the data that its rings hold.
 * u32PortIdx: 0 to u32OutPortCount - 1, connected unless it is 0; the port has the function's sample width,
 * or, in the 32-bit functions, packed 24-bit samples as the sources then have; apSrc: 36 entries,
 * 12 per group, the source of slot k of group g at 12 * g + k, NULL for none; au16Stride: 36 entries,
 * distance of a source's samples, in samples. The caller knows that the rings have the space. With
 * ZE_KEST_OPTION_DIRECT_WRITE and a bound of the output process size the samples are stored without
 * wrap-around. ZE_KEST_INVALID_ARGUMENT: a NULL pointer (reported), no such port. */
ZE_KEST_API uint32_t ze_kest_Utility_WriteOutputPort16BitPcmBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                                   uint32_t u32PortIdx, uint32_t sztSamples,
                                                                   int16_t *const *apSrc,
                                                                   const uint16_t *au16Stride);
ZE_KEST_API uint32_t ze_kest_Utility_WriteOutputPort32BitPcmBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                                   uint32_t u32PortIdx, uint32_t sztSamples,
                                                                   int32_t *const *apSrc,
                                                                   const uint16_t *au16Stride);

/* The same to every output port; ports that cannot be written are passed over. */
ZE_KEST_API uint32_t ze_kest_Utility_WriteAllOutputPort16BitPcmBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                                      uint32_t sztSamples,
                                                                      int16_t *const *apSrc,
                                                                      const uint16_t *au16Stride);
ZE_KEST_API uint32_t ze_kest_Utility_WriteAllOutputPort32BitPcmBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                                      uint32_t sztSamples,
                                                                      int32_t *const *apSrc,
                                                                      const uint16_t *au16Stride);

/* Forwards sztBytes unread bytes of one input port's ring to the ring of every connected output port. A port
 * without the space, or an input without the data, is passed over, and so is a ring without a buffer; sizes
 * that contradict each other are reported and passed over. ZE_KEST_INVALID_ARGUMENT: a NULL filter
 * (reported), no such input port. */
ZE_KEST_API uint32_t ze_kest_Utility_WriteAllOutputPortMetadataBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                                      uint32_t u32InPortIdx,
                                                                      uint32_t sztBytes);
ZE_KEST_API uint32_t ze_kest_Utility_WriteAllOutputPortRawBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                                 uint32_t u32InPortIdx, uint32_t sztBytes);

/* 1 when some output port has a metadata ring, 0 when none has, ZE_KEST_INVALID_ARGUMENT for NULL. */
ZE_KEST_API uint32_t ze_kest_Utility_IsOutputMetadataBufferExist(const ZE_KEST_Filter_s *pstFilter);

/* ---- Accounting: add what this cycle consumed or produced ---- */

/* All ports of one side: the first one, and every later one that is connected. PCM in samples per channel,
 * ZE_KEST_NO and no change for 0; metadata and raw in bytes. PCM sizes and the metadata write size stop at
 * the ring's capacity, the others do not. */
ZE_KEST_API uint32_t ze_kest_Utility_UpdateAllInputPortPcmReadSize(ZE_KEST_Filter_s *pstFilter,
                                                                   uint32_t sztSamples);
ZE_KEST_API uint32_t ze_kest_Utility_UpdateAllOutputPortPcmWriteSize(ZE_KEST_Filter_s *pstFilter,
                                                                     uint32_t sztSamples);
ZE_KEST_API uint32_t ze_kest_Utility_UpdateAllInputPortMetadataReadSize(ZE_KEST_Filter_s *pstFilter,
                                                                        uint32_t sztBytes);
ZE_KEST_API uint32_t ze_kest_Utility_UpdateAllOutputPortMetadataWriteSize(ZE_KEST_Filter_s *pstFilter,
                                                                          uint32_t sztBytes);
ZE_KEST_API uint32_t ze_kest_Utility_UpdateAllInputPortRawReadSize(ZE_KEST_Filter_s *pstFilter,
                                                                   uint32_t sztBytes);
ZE_KEST_API uint32_t ze_kest_Utility_UpdateAllOutputPortRawWriteSize(ZE_KEST_Filter_s *pstFilter,
                                                                     uint32_t sztBytes);

/* One port, connected or not. A port that does not exist is not an error: nothing changes, ZE_KEST_OK. */
ZE_KEST_API uint32_t ze_kest_Utility_UpdateSpecificInputPortPcmReadSize(ZE_KEST_Filter_s *pstFilter,
                                                                        uint32_t sztSamples,
                                                                        uint32_t u32PortIdx);
ZE_KEST_API uint32_t ze_kest_Utility_UpdateSpecificOutputPortPcmWriteSize(ZE_KEST_Filter_s *pstFilter,
                                                                          uint32_t sztSamples,
                                                                          uint32_t u32PortIdx);
ZE_KEST_API uint32_t ze_kest_Utility_UpdateSpecificInputPortMetadataReadSize(ZE_KEST_Filter_s *pstFilter,
                                                                             uint32_t sztBytes,
                                                                             uint32_t u32PortIdx);
ZE_KEST_API uint32_t ze_kest_Utility_UpdateSpecificInputPortRawReadSize(ZE_KEST_Filter_s *pstFilter,
                                                                        uint32_t sztBytes,
                                                                        uint32_t u32PortIdx);

/* ---- Channel groups ---- */

/* First global channel and number of channels of the groups 0, 1 and 2. */
extern ZE_KEST_API const uint32_t sztPcmGroupBaseChIdx[ZE_KEST_PCM_GROUPS];
extern ZE_KEST_API const uint32_t sztPcmGroupChNumber[ZE_KEST_PCM_GROUPS];

/* Copies a PCM format to the output ports: the first one, and every later one that is connected. */
ZE_KEST_API uint32_t ze_kest_Utility_UpdatePcmInfoToAllOutputPort(ZE_KEST_Filter_s *pstFilter,
                                                                  const ZE_KEST_PcmInfo_s *pstPcmInfo);

/* Copies three group records to the same ports and counts their channels anew. A group for which a port has
 * no storage is marked -1 there and not counted. u32Unused is not read. */
ZE_KEST_API uint32_t ze_kest_Utility_UpdatePcmGroupToAllOutputPort(ZE_KEST_Filter_s *pstFilter,
                                                                   uint32_t u32Unused,
                                                                   const ZE_KEST_PcmGroup_s *pastPcmGroup);

/* Pointers to the unread samples of every channel of an input port, valid up to the ring's end; the caller
 * handles the wrap.
 * apCh: out, 36 entries, slot k of group g at 12 * g + k, NULL where there is no channel;
 * au16Stride: out, 36 entries, all 1; pbGroupPresent: out, 1 when the port has group records, else left
 * alone. A channel count that contradicts the port's format is reported and does not change the result.
 * ZE_KEST_INVALID_ARGUMENT: a NULL pointer (reported), no such port. */
ZE_KEST_API uint32_t ze_kest_Utility_AnalyzeInputPort16BitPcmGroup(const ZE_KEST_Filter_s *pstFilter,
                                                                   uint32_t u32PortIdx, int16_t **apCh,
                                                                   uint16_t *au16Stride,
                                                                   uint8_t *pbGroupPresent);
ZE_KEST_API uint32_t ze_kest_Utility_AnalyzeInputPort32BitPcmGroup(const ZE_KEST_Filter_s *pstFilter,
                                                                   uint32_t u32PortIdx, int32_t **apCh,
                                                                   uint16_t *au16Stride,
                                                                   uint8_t *pbGroupPresent);

/* Whether a side's connected ports carry a group: 1 when one does or none is connected, else 0. The first
 * asks both sides, the second the outputs. ZE_KEST_INVALID_ARGUMENT: a NULL filter (reported), a group
 * above 2. */
ZE_KEST_API uint32_t ze_kest_Utility_CheckPcmGroupCapability(const ZE_KEST_Filter_s *pstFilter,
                                                             uint32_t ePcmGroupType);
ZE_KEST_API uint32_t ze_kest_Utility_CheckOutPortPcmGroupCapability(const ZE_KEST_Filter_s *pstFilter,
                                                                    uint32_t ePcmGroupType);

#ifdef __cplusplus
}
#endif

#endif
