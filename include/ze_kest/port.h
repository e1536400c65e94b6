/* SPDX-License-Identifier: Apache-2.0
 *
 * What filters call while they process: access to the PCM, metadata and raw data of their ports and the rings
 * that hold it, and sample conversions; part of ze_kest/utility.h.
 *
 * Unless a comment says otherwise: a function returns a result code of result.h; a NULL argument is reported
 * at ERR level and answered with ZE_KEST_INVALID_ARGUMENT; outputs keep their values on failure. The
 * functions work on the calling filter's own ports, on the thread that runs the filter, take no lock,
 * allocate nothing and log nothing on success, so they are real-time safe.
 *
 * Everywhere, pstFilter: the calling filter; u32PortIdx: the port's slot on its side, from 0; u32InPortIdx:
 * the input port's slot; psztProcessSize: out, the size; sztSamples: samples per channel; sztBytes: bytes;
 * u32Advance: where to begin, after the read offset; ePcmGroupType: the channel group, 0 to 2; pstPcmInfo:
 * the format; pastPcmGroup: the three group records.
 *
 * Where reads and writes begin (in the rings of model.h; all positions wrap):
 *
 *   PCM, metadata and raw input     read offset + read size. A second read in a cycle begins behind the first
 *                                   once that is accounted for, else at the same place.
 *   PCM output                      read offset + level. Deliberate: the write size does not count, so a
 *                                   second write in a cycle overwrites the first.
 *   metadata and raw output         read offset + level + write size, so writes that are accounted for follow
 *                                   each other.
 *   interleave and ring-to-ring     read offset + u32Advance: give the read size for an input and the level
 *                                   for an output. */
#ifndef ZE_KEST_PORT_H
#define ZE_KEST_PORT_H

#include <stdint.h>

#include "ze_kest/model.h"
#include "ze_kest/result.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Process size: how much a filter may process in this cycle ---- */

/* The largest amount that all ports of one side that count (see below) can deliver or accept: PCM in samples
 * per channel, metadata and raw data in bytes. *psztProcessSize is 0 whenever the result is
 * ZE_KEST_NOTHING_TO_PROCESS.
 *
 * Input PCM and metadata: counting starts at the first port with data, connected or not; empty ports before
 * it are skipped. Of the ports after it the connected ones count, and an empty one makes the size 0.
 * Output PCM: every port with a ring counts. Output metadata and raw: every connected port with a ring. Input
 * raw: every port with a ring.
 * PCM sizes are limited by the filter's sztMaxInPcmProcessSize and sztMaxOutPcmProcessSize. Deliberate: what
 * this cycle has read or written is subtracted from metadata and raw sizes, not from PCM sizes. */
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

/* Move one channel between its ring and a linear buffer in which it may be interleaved with other channels.
 * pu8RingBuf: start of the ring; pu8Pos: where in the ring to begin; sztRingSize: bytes of the ring; pu8Data:
 * the channel's first sample in the linear buffer; u64Bytes: bytes of ring data; a partial last sample is
 * moved whole; u32Stride: distance between the channel's samples in the linear buffer, in samples of that
 * buffer; u32BytesPerSample: sample width in the ring, 2, 3 or 4 (converting reads: 2 or 4); any other width
 * moves nothing.
 *
 * Deliberate: a stride of 1 copies the ring's bytes unchanged, for any width and even in the converting
 * reads.
 * Nothing outside the ring is touched: a sample that crosses its end is cut (when reading, the missing bytes
 * are 0); at most the rest of the ring plus one lap is moved; nothing is moved when pu8Pos is outside the
 * ring.
 * _To16Bit yields the upper 16 bits; _To24Le a 32-bit word with the upper 24 bits in its low three bytes, not
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

/* Copy sztCount bytes between byte rings, or from a ring into a linear buffer. pu8Dst, pu8Src, pu8Ring: the
 * start of each ring or buffer; sztDstSize, sztSrcSize, sztRingSize: bytes of a ring; sztDstOffset,
 * sztSrcOffset, sztOffset, sztDstAdvance, sztSrcAdvance, sztAdvance: where in a ring to begin; sztCount:
 * bytes to copy. The position is offset plus advance, minus the ring's size if it is not below that size; if
 * it is still outside the ring, nothing is copied. At most a ring's size is copied. All sizes are in bytes.
 */
ZE_KEST_API uint32_t ze_kest_Utility_CopyFromRingToRingBuffer(uint8_t *pu8Dst, uint32_t sztDstSize,
                                                              uint32_t sztDstOffset, uint32_t sztDstAdvance,
                                                              const uint8_t *pu8Src, uint32_t sztSrcSize,
                                                              uint32_t sztSrcOffset, uint32_t sztSrcAdvance,
                                                              uint32_t sztCount);
ZE_KEST_API uint32_t ze_kest_Utility_CopyFromRingToNonRingBuffer(uint8_t *pu8Dst, const uint8_t *pu8Ring,
                                                                 uint32_t sztRingSize, uint32_t sztOffset,
                                                                 uint32_t sztAdvance, uint32_t sztCount);

/* ---- Sample widths: convert a linear run of samples from one container to another. Any thread, real-time
 * safe. ---- */

/* Containers: 16 bits; 24 bits packed into three bytes, low byte first; 24LE, the low three bytes of a 32-bit
 * word (the top byte is ignored); 32 bits. A wider result holds the sample in its top bits, with zeros below;
 * a narrower one loses the sample's low bits. Nothing is rounded or saturated.
 *
 * pu16Ptr, pu8Ptr, pu32Ptr, pu32PtrSrc, pu32Src: the samples, or where their results go, as the const says;
 * pu16PtrDes, pu32Dest: out, u32Count samples; u32Count: samples; 0 converts nothing. Pointers need not be
 * aligned. The samples are converted one after another in ascending order, so the ranges may overlap as long
 * as no sample is overwritten before it is read. ZE_KEST_INVALID_ARGUMENT: a NULL pointer (reported), nothing
 * is written. */
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

/* A second generation of the same conversions: 16 to 32 bits, 24LE to 32 bits in place, 24LE to 16 bits. Here
 * the destination comes first, and a count of 0 is refused.
 * ps16Src, ps32Src: sztSamples samples; in place, ps32Src is also where the results go; ps32Dst, ps16Dst:
 * out, sztSamples samples; sztSamples: samples. Deliberate: ps16Dst is not checked, so it must not be NULL.
 * ZE_KEST_INVALID_ARGUMENT: another NULL pointer or 0 samples (each reported), nothing is written. */
ZE_KEST_API uint32_t ze_kest_Utility_Convert16BitPcmTo32BitPcm(int32_t *ps32Dst, const int16_t *ps16Src,
                                                               uint32_t sztSamples);
ZE_KEST_API uint32_t ze_kest_Utility_Convert32BitPcmFromLow24BitToHigh24Bit(int32_t *ps32Src,
                                                                            uint32_t sztSamples);
ZE_KEST_API uint32_t ze_kest_Utility_Convert32BitPcmFromLow24BitTo16BitPcm(int16_t *ps16Dst,
                                                                           const int32_t *ps32Src,
                                                                           uint32_t sztSamples);

/* ---- Interleave: one channel group of a port, given by the port's PCM part ---- */

/* Move the frames of an interleaved buffer into the rings of a group, and back. Channel k of a frame belongs
 * to slot k of the group. Deliberate: the channel map is ignored. No level or offset changes.
 *
 * pstPcm: the port's PCM part; ePcmGroupType: the group, 0 to 2; u32Advance: where in the rings to begin, in
 * samples after sztPcmReadOffset; sztSamples: samples per channel, that is, frames of pvSrc or pvDst; source
 * and destination must not overlap. Both sides have the sample width passed to the function, 16, 24 (packed)
 * or 32 bits; the group's storage is taken to consist of rings of that width. With any other width nothing is
 * moved, except that a single channel is still copied byte by byte.
 *
 * Nothing outside the rings is touched: nothing is moved when the position is beyond the ring even after
 * wrapping once or when the group has no storage; at most the rest of the ring plus one lap is moved.
 * ZE_KEST_INVALID_ARGUMENT: a group above 2 or a NULL pointer (each reported), nothing is written. */

/* pstPcm: the port's PCM part; pvSrc: sztSamples frames; u32ChNum: channels of a frame; 0, or more than the
 * group can have (2, 10, 10), counts as 2. u32BitWidth: bits of a sample; 0 counts as 16. Both corrections
 * are reported at INFO level. A sample has u32BitWidth / 8 bytes, rounded down: 20 bits are taken as 16, and
 * 24 always as packed. */
ZE_KEST_API uint32_t ze_kest_Utility_ConvertInterleaveToNonInterleave(uint32_t u32ChNum, uint32_t u32BitWidth,
                                                                      const ZE_KEST_PcmBuffer_s *pstPcm,
                                                                      uint32_t ePcmGroupType,
                                                                      uint32_t u32Advance, const void *pvSrc,
                                                                      uint32_t sztSamples);

/* pvDst: out, sztSamples frames; pstPcm: the port's PCM part; u32ChNum: channels of a frame; with 0 nothing
 * is done and no pointer is checked. Channels beyond the group's own have no ring: their places in the frames
 * are left unchanged. u32BytesPerSample: 2, 3 or 4. */
ZE_KEST_API uint32_t ze_kest_Utility_ConvertNonInterleaveToInterleave(
    void *pvDst, const ZE_KEST_PcmBuffer_s *pstPcm, uint32_t ePcmGroupType, uint32_t u32ChNum,
    uint32_t u32Advance, uint32_t sztSamples, uint32_t u32BytesPerSample);

/* Copies a group's channels from the rings of one port to the same slots of another, wrapping around on both
 * sides. The source's group record says which slots carry a channel; no level or offset changes.
 * pstDst, pstSrc: the ports' PCM parts, whose rings must not overlap; u32DstAdvance, u32SrcAdvance: where to
 * begin, in samples after each port's sztPcmReadOffset; sztSamples: samples per channel; ePcmGroupType: 0 to
 * 2. Both ports must have the same sample width; a u32BitWidth of 0 counts as 16 in the source and as the
 * source's width in the destination. Nothing is copied when a port has no storage for the group, when a
 * position is outside its ring even after wrapping once, or when the source's samples are wider than the
 * destination's. At most a ring's size is copied.
 * ZE_KEST_INVALID_ARGUMENT: a group above 2 or a NULL pointer (each reported). */
ZE_KEST_API uint32_t ze_kest_Utility_CopyNonInterleavePcmBuffer(const ZE_KEST_PcmBuffer_s *pstDst,
                                                                const ZE_KEST_PcmBuffer_s *pstSrc,
                                                                uint32_t u32DstAdvance,
                                                                uint32_t u32SrcAdvance, uint32_t sztSamples,
                                                                uint32_t ePcmGroupType);

/* ---- Reading an input port. Reading consumes nothing: account for it with the Update functions. ---- */

/* Reads channels u32FirstCh to u32LastCh of a port into an interleaved buffer.
 * u32PortIdx: 0 to u32InPortCount - 1; the port must be connected unless the index is 0; pvDst: sztSamples
 * frames of u32DstChNum samples; sztSamples: samples per channel; u32FirstCh, u32LastCh: global channel
 * numbers (0-1, 2-11 and 12-21 for groups 0, 1 and 2), both inclusive; u32DstChNum: samples per destination
 * frame, at least the number of channels read.
 *
 * Channel c goes to slot c - u32FirstCh of every frame. A channel that the port does not carry leaves its
 * slot unchanged. The destination's samples have the port's width, or the format of the ring reads with the
 * same suffix (for port widths 16 and 32). Deliberate: with u32DstChNum 1 the port's bytes are copied
 * unconverted, so pvDst needs room for samples of the port's width.
 *
 * Deliberate: a read that starts at channel 1 takes channel 0's samples for it. To get channel 1, the right
 * of a stereo pair, start at channel 0, or use ze_kest_Utility_AnalyzeInputPort16BitPcmGroup:
 *
 *   u32FirstCh, u32LastCh   frame on a port with every channel
 *   0, 1                    left, right
 *   1, 1                    left
 *   1, 3                    left, first of group 1, second of group 1
 *   3, 3                    second of group 1
 *
 * ZE_KEST_INVALID_ARGUMENT: a NULL pointer (reported), an empty channel range, more channels than
 * u32DstChNum, no such port. ZE_KEST_FAILED: u32LastCh is beyond the channels that can be read (reported);
 * the channels before that are written. Deliberate: from ports of 16 and 24 bits, and in the converting
 * reads, only the first channel of the range that lies in group 2 can be read; a range that continues past it
 * fails. */
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

/* Metadata blocks that cannot be read: one without a payload, with a length beyond 32 bits, or whose header
 * straddles the ring's end stops the two queries below, which count nothing from it on. A filter that
 * forwards what they say then consumes no metadata any more: the ring stays full, and whoever fills it waits.
 * If the length for 256 or more samples is 0 while the ring holds bytes, drop what it holds:
 *
 *   const ZE_KEST_DataBuffer_s *pstMeta = &pstFilter->apstInPort[u32PortIdx]->stMeta;
 *   ze_kest_Utility_UpdateSpecificInputPortMetadataReadSize(
 *       pstFilter, pstMeta->sztLevel - pstMeta->sztReadSize, u32PortIdx); */

/* Stores the tag and the size in bytes (header included) of the next unread metadata block of a port. The
 * caller must know that the ring holds one. u32Unused is not read. pu32Tag: out, the tag; pu32BlockSize: out,
 * the size. ZE_KEST_INVALID_ARGUMENT without a report when there is no such port or no whole header at its
 * read position. */
ZE_KEST_API uint32_t ze_kest_Utility_ReadOneBlockInputPortMetadataBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                                         uint32_t u32PortIdx,
                                                                         uint32_t u32Unused,
                                                                         uint32_t *pu32Tag,
                                                                         uint32_t *pu32BlockSize);

/* Stores the number of metadata bytes that belong to sztSamples samples in *pu32Len: the sizes of the next
 * sztSamples / 256 blocks of a port, stopping at a block without a payload and after the block that reaches
 * the end of the held data, which counts in full. Deliberate: the first block is taken from the read position
 * whatever the ring's level, so even an empty ring yields the block found there. *pu32LastBlockSize is the
 * size of the last block with a payload, left unchanged when there is none. ZE_KEST_INVALID_ARGUMENT without
 * a report when there is no such port. */
ZE_KEST_API uint32_t ze_kest_Utility_QueryInputPortMetadataLen(const ZE_KEST_Filter_s *pstFilter,
                                                               uint32_t u32PortIdx, uint32_t sztSamples,
                                                               uint32_t *pu32Len,
                                                               uint32_t *pu32LastBlockSize);

/* Returns the number of metadata bytes that go with a step of sztSamples samples on input port 0, counted in
 * blocks as above. The limit u32MaxBytes is first rounded down to a multiple of the last counted block's
 * size; the sum is not rounded, so where blocks differ in size the limit may fall inside one:
 *
 *   blocks         u32MaxBytes   result
 *   32, 32, 32     96            96
 *   32, 32, 32     95            64
 *   32, 40         60            40: the first block and 8 bytes of the second
 *
 * *pu32Remainder: in, samples left over from the previous step; out, samples left over for the next one. What
 * the limit holds back is not part of it: the caller counts those blocks as still due.
 * Returns bytes, not a result code; 0 for NULL, which is not reported. */
ZE_KEST_API uint32_t ze_kest_Utility_QueryInputMinMetaProcessSize(const ZE_KEST_Filter_s *pstFilter,
                                                                  uint32_t sztSamples, uint32_t u32MaxBytes,
                                                                  uint32_t *pu32Remainder);

/* ---- Writing output ports. Writing commits nothing: account for it with the Update functions. ---- */

/* Writes sztSamples samples per channel to one output port, after the data that its rings hold.
 * u32PortIdx: 0 to u32OutPortCount - 1; the port must be connected unless the index is 0; it has the
 * function's sample width or, in the 32-bit functions, packed 24-bit samples, in which case the sources have
 * them too; apSrc: 36 entries, 12 per group; the source of slot k of group g is at 12 * g + k, NULL for none;
 * au16Stride: 36 entries, distance between a source's samples, in samples. The caller must know that the
 * rings have the space. With ZE_KEST_OPTION_DIRECT_WRITE and a bound on the output process size, the samples
 * are stored without wrap-around. ZE_KEST_INVALID_ARGUMENT: a NULL pointer (reported), no such port. */
ZE_KEST_API uint32_t ze_kest_Utility_WriteOutputPort16BitPcmBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                                   uint32_t u32PortIdx, uint32_t sztSamples,
                                                                   int16_t *const *apSrc,
                                                                   const uint16_t *au16Stride);
ZE_KEST_API uint32_t ze_kest_Utility_WriteOutputPort32BitPcmBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                                   uint32_t u32PortIdx, uint32_t sztSamples,
                                                                   int32_t *const *apSrc,
                                                                   const uint16_t *au16Stride);

/* The same to every output port; ports that cannot be written are skipped. apSrc, au16Stride: as above. */
ZE_KEST_API uint32_t ze_kest_Utility_WriteAllOutputPort16BitPcmBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                                      uint32_t sztSamples,
                                                                      int16_t *const *apSrc,
                                                                      const uint16_t *au16Stride);
ZE_KEST_API uint32_t ze_kest_Utility_WriteAllOutputPort32BitPcmBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                                      uint32_t sztSamples,
                                                                      int32_t *const *apSrc,
                                                                      const uint16_t *au16Stride);

/* Forwards sztBytes unread bytes of one input port's ring to the ring of every connected output port. An
 * output is skipped when it lacks the space, when the input lacks the data, when either ring has no buffer,
 * and when the sizes contradict each other (reported). ZE_KEST_INVALID_ARGUMENT: a NULL filter (reported), no
 * such input port. */
ZE_KEST_API uint32_t ze_kest_Utility_WriteAllOutputPortMetadataBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                                      uint32_t u32InPortIdx,
                                                                      uint32_t sztBytes);
ZE_KEST_API uint32_t ze_kest_Utility_WriteAllOutputPortRawBuffer(const ZE_KEST_Filter_s *pstFilter,
                                                                 uint32_t u32InPortIdx, uint32_t sztBytes);

/* 1 when any output port has a metadata ring, 0 when none has, ZE_KEST_INVALID_ARGUMENT for NULL. */
ZE_KEST_API uint32_t ze_kest_Utility_IsOutputMetadataBufferExist(const ZE_KEST_Filter_s *pstFilter);

/* ---- Accounting: add what this cycle consumed or produced ---- */

/* Updates the ports of one side: the first one, and every later one that is connected. PCM in samples per
 * channel; for 0, ZE_KEST_NO and no change. Metadata and raw in bytes. Deliberate: PCM sizes and the metadata
 * write size stop at the ring's capacity, the other sizes do not. */
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

/* Updates one port, connected or not. A port that does not exist is not an error: nothing changes,
 * ZE_KEST_OK. */
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

/* First global channel and number of channels of groups 0, 1 and 2. */
extern ZE_KEST_API const uint32_t sztPcmGroupBaseChIdx[ZE_KEST_PCM_GROUPS];
extern ZE_KEST_API const uint32_t sztPcmGroupChNumber[ZE_KEST_PCM_GROUPS];

/* Copies a PCM format to the output ports: the first one, and every later one that is connected. */
ZE_KEST_API uint32_t ze_kest_Utility_UpdatePcmInfoToAllOutputPort(ZE_KEST_Filter_s *pstFilter,
                                                                  const ZE_KEST_PcmInfo_s *pstPcmInfo);

/* Copies three group records to the same ports, sets their number of groups to 3 and recalculates their
 * channel totals. A group for which a port has no storage is marked -1 in that port and not counted.
 * u32Unused is not read. */
ZE_KEST_API uint32_t ze_kest_Utility_UpdatePcmGroupToAllOutputPort(ZE_KEST_Filter_s *pstFilter,
                                                                   uint32_t u32Unused,
                                                                   const ZE_KEST_PcmGroup_s *pastPcmGroup);

/* Stores pointers to the unread samples of every channel of an input port. They are valid up to the ring's
 * end; the caller handles the wrap.
 * apCh: out, 36 entries; slot k of group g is at 12 * g + k, NULL where there is no channel; au16Stride: out,
 * 36 entries, all 1; pbGroupPresent: out, 1 when the port has group records, else left unchanged. A channel
 * count that contradicts the port's format is reported and does not change the result.
 * ZE_KEST_INVALID_ARGUMENT: a NULL pointer (reported), no such port. */
ZE_KEST_API uint32_t ze_kest_Utility_AnalyzeInputPort16BitPcmGroup(const ZE_KEST_Filter_s *pstFilter,
                                                                   uint32_t u32PortIdx, int16_t **apCh,
                                                                   uint16_t *au16Stride,
                                                                   uint8_t *pbGroupPresent);
ZE_KEST_API uint32_t ze_kest_Utility_AnalyzeInputPort32BitPcmGroup(const ZE_KEST_Filter_s *pstFilter,
                                                                   uint32_t u32PortIdx, int32_t **apCh,
                                                                   uint16_t *au16Stride,
                                                                   uint8_t *pbGroupPresent);

/* Whether the connected ports of a side carry a group: 1 when at least one does or when none is connected,
 * else 0. The first function requires this of both sides, the second of the outputs.
 * ZE_KEST_INVALID_ARGUMENT: a NULL filter (reported), a group above 2. */
ZE_KEST_API uint32_t ze_kest_Utility_CheckPcmGroupCapability(const ZE_KEST_Filter_s *pstFilter,
                                                             uint32_t ePcmGroupType);
ZE_KEST_API uint32_t ze_kest_Utility_CheckOutPortPcmGroupCapability(const ZE_KEST_Filter_s *pstFilter,
                                                                    uint32_t ePcmGroupType);

#ifdef __cplusplus
}
#endif

#endif
