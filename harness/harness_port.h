/* SPDX-License-Identifier: Apache-2.0
 *
 * A port of the harness: its record, its rings between guard pages, and what both were before a turn. */
#ifndef KEST_HARNESS_PORT_H
#define KEST_HARNESS_PORT_H

#include "ze_kest/harness.h"

#include "harness/guarded.h"

#define METADATA_BLOCK_SIZE 32u

typedef struct HarnessPort_s {
  ZE_KEST_Port_s stRecord;
  ZE_KEST_Port_s stBefore;
  Guarded_s astGroup[ZE_KEST_PCM_GROUPS];
  Guarded_s stMeta;
  uint8_t u8Marker;
} HarnessPort_s;

/* Channels of a format in each group. */
void ChannelsOfGroups(uint32_t u32Channels, uint32_t *au32Count);

int HarnessPortMake(HarnessPort_s *pst, const ZE_KEST_HarnessSetup_s *pstSetup, uint32_t u32Samples,
                    uint32_t u32Blocks);
void HarnessPortFree(HarnessPort_s *pst);
void HarnessPortPlace(HarnessPort_s *pst, uint32_t u32Offset);

/* Frames and blocks behind what the rings hold, and the oldest ones. The caller knows that they fit. */
void HarnessPortPut(HarnessPort_s *pst, const int32_t *ps32Frames, uint32_t u32Frames);
void HarnessPortGet(HarnessPort_s *pst, int32_t *ps32Frames, uint32_t u32Frames);
void HarnessPortPutBlock(HarnessPort_s *pst, const uint8_t *pu8Block);
void HarnessPortGetBlock(HarnessPort_s *pst, uint8_t *pu8Block);

void HarnessPortRemember(HarnessPort_s *pst);
/* Whether bytes of the rings have changed since, other than those of the next u32Samples samples and
 * u32MetaBytes bytes of metadata behind what the rings held. */
int HarnessPortChanged(const HarnessPort_s *pst, uint32_t u32Samples, uint32_t u32MetaBytes);
/* Whether 8 or more of the bytes that u32Samples new samples occupy in a row still hold the marker. */
int HarnessPortUnwritten(const HarnessPort_s *pst, uint32_t u32Samples);

/* Add to the levels, and to the read offsets, what a turn moved. */
void HarnessPortCommit(HarnessPort_s *pst, uint32_t u32Samples, uint32_t u32MetaBytes);
void HarnessPortRelease(HarnessPort_s *pst, uint32_t u32Samples, uint32_t u32MetaBytes);

#endif
