/* SPDX-License-Identifier: Apache-2.0
 *
 * A test harness for the filters of modules (ze_kest/module.h): it makes ports whose rings lie between guard
 * pages, fills them, takes a filter's turns as a host does, and looks at what each turn did to the records
 * and the rings. `kest-player --check` is built on it; a module's own tests use it to say what the filter
 * should sound like. It is a static library of its own: link kest::harness with CMake, or -lkest_harness
 * before -lkest.
 *
 *   ZE_KEST_Harness_s *pst = NULL;
 *   const ZE_KEST_HarnessSetup_s stSetup = {.u32Size = sizeof(stSetup), .u32Channels = 2,
 *                                           .u32SampleRate = 48000, .u32BitWidth = 16,
 *                                           .u32InputSamples = 1024, .u32OutputSamples = 1024,
 *                                           .u32MaxSamples = 256};
 *   ze_kest_Harness_Open(&stSetup, &pst);
 *   ze_kest_Harness_Create(pst, ze_kest_module(ZE_KEST_MODULE_ABI, 0));
 *   ze_kest_Harness_Fill(pst, as32In, 256);
 *   assert(ze_kest_Harness_Turn(pst, 0, NULL) == 0);
 *   ze_kest_Harness_Take(pst, as32Out, 256);
 *   ze_kest_Harness_Close(pst);
 *
 * Samples outside the rings are int32_t, interleaved, in the range of the ports' width: a frame has one
 * sample for each channel. With 1 or 2 channels they lie in group 0, with 3 to 10 in group 1, as in
 * kest-player; with more, the first 2 lie in group 0, the next 10 in group 1 and the rest in group 2.
 *
 * One thread at a time for a harness. Turn, Fill and Take allocate nothing and do not call the system. No
 * function takes a NULL harness except Close.
 *
 * Everywhere, pstHarness: the harness. */
#ifndef ZE_KEST_HARNESS_H
#define ZE_KEST_HARNESS_H

#include <stddef.h>
#include <stdint.h>

#include "ze_kest/model.h"
#include "ze_kest/module.h"
#include "ze_kest/result.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A filter record with one input and one output port, and at most one instance of a module's filter. */
typedef struct ZE_KEST_Harness_s ZE_KEST_Harness_s;

/* Where the guard pages lie. An access to one ends the process. */
enum ZE_KEST_HarnessGuard_e {
  ZE_KEST_HARNESS_GUARD_BEHIND = 0, /* the first byte behind the rings of a channel group lies in one */
  ZE_KEST_HARNESS_GUARD_BEFORE = 1, /* the last byte before them does */
  ZE_KEST_HARNESS_GUARD_FAR = 2     /* a page of the marker lies between, on both sides */
};

/* The ports that a harness is to have. */
typedef struct ZE_KEST_HarnessSetup_s {
  uint32_t u32Size;          /* sizeof(ZE_KEST_HarnessSetup_s) */
  uint32_t u32Channels;      /* 1 to 22 */
  uint32_t u32SampleRate;    /* Hz */
  uint32_t u32BitWidth;      /* 16 or 32 */
  uint32_t u32InputSamples;  /* length of the input's rings, in samples; at least 1 */
  uint32_t u32OutputSamples; /* length of the output's rings, in samples; at least 1 */
  uint32_t u32MaxSamples;    /* most samples that a turn moves; at least 1 */
  uint32_t u32InputBlocks;   /* metadata blocks that the input has room for; 0: it has no metadata */
  uint32_t u32OutputBlocks;  /* the same for the output */
  uint32_t eGuard;           /* ZE_KEST_HarnessGuard_e */
  uint8_t u8Marker;          /* what every byte of a ring that holds no data is set to */
  const char *pszConfig;     /* configuration text of the instance; NULL for "" */
  const char *pszDirectory;  /* absolute directory for it; NULL for "/" */
} ZE_KEST_HarnessSetup_s;

/* What a turn may have done wrong. */
enum ZE_KEST_HarnessFault_e {
  ZE_KEST_HARNESS_READ_TOO_MUCH = 0x0001,     /* accounted for more samples than the input held */
  ZE_KEST_HARNESS_WROTE_TOO_MUCH = 0x0002,    /* accounted for more samples than the output had room for */
  ZE_KEST_HARNESS_MOVED_TOO_MUCH = 0x0004,    /* accounted for more than u32MaxSamples on a side */
  ZE_KEST_HARNESS_CHANGED_RECORD = 0x0008,    /* changed a field of the records that is not its own */
  ZE_KEST_HARNESS_CHANGED_INPUT = 0x0010,     /* changed what lies in the input's rings */
  ZE_KEST_HARNESS_CHANGED_OUTPUT = 0x0020,    /* changed the output's rings beyond what it accounted for */
  ZE_KEST_HARNESS_UNWRITTEN = 0x0040,         /* accounted for 8 or more bytes in a row that still hold the
                                                 marker */
  ZE_KEST_HARNESS_MOVED_METADATA = 0x0080,    /* moved metadata, which the host does for this kind */
  ZE_KEST_HARNESS_METADATA_TOO_MUCH = 0x0100, /* accounted for more metadata than there was, or room for */
  ZE_KEST_HARNESS_SPLIT_METADATA = 0x0200     /* accounted for a part of a metadata block */
};

/* What a turn did. */
typedef struct ZE_KEST_HarnessTurn_s {
  uint32_t u32Faults;  /* ZE_KEST_HarnessFault_e, or-ed */
  uint32_t u32Read;    /* samples read: what was accounted for, limited to what was possible */
  uint32_t u32Written; /* samples written, in the same way */
  uint32_t u32Pending; /* what pfnPending said after a turn with bEnded; else 0 */
  char szSeen[512];    /* the faults in words with their numbers; "" without a fault */
} ZE_KEST_HarnessTurn_s;

/* Makes the ports. pstSetup: see above, copied; ppstHarness: out, kept on failure.
 * ZE_KEST_OK; ZE_KEST_INVALID_ARGUMENT: a NULL pointer, or a field outside its range; ZE_KEST_OUT_OF_MEMORY.
 */
uint32_t ze_kest_Harness_Open(const ZE_KEST_HarnessSetup_s *pstSetup, ZE_KEST_Harness_s **ppstHarness);

/* Destroys the instance, if there is one, and frees everything. NULL is fine. */
void ze_kest_Harness_Close(ZE_KEST_Harness_s *pstHarness);

/* Makes an instance of the kind for these ports, and announces the format to the output.
 * pstKind: as the module's function returned it; it must stay valid until the harness is closed.
 * ZE_KEST_OK; ZE_KEST_INVALID_ARGUMENT: there is an instance already, or the kind takes no such format (the
 * error text says so); or what pfnCreate answered: ze_kest_Harness_Error is its text. */
uint32_t ze_kest_Harness_Create(ZE_KEST_Harness_s *pstHarness, const ZE_KEST_ModuleFilter_s *pstKind);

/* Ends the instance; nothing without one. The ports and their data stay. */
void ze_kest_Harness_Destroy(ZE_KEST_Harness_s *pstHarness);

/* Returns why the last Create failed, cut to 1023 bytes; "" when no reason was given. Valid until the next
 * Create. */
const char *ze_kest_Harness_Error(const ZE_KEST_Harness_s *pstHarness);

/* What pfnCreate gave, for calls of the kind's other entries; NULL without an instance. */
void *ze_kest_Harness_Self(const ZE_KEST_Harness_s *pstHarness);

/* Returns the filter's record, for what the harness has no function for, such as disconnecting a port. */
ZE_KEST_Filter_s *ze_kest_Harness_Filter(ZE_KEST_Harness_s *pstHarness);

/* Return the samples that the input can still take, and those that the output holds. */
uint32_t ze_kest_Harness_Room(const ZE_KEST_Harness_s *pstHarness);
uint32_t ze_kest_Harness_Held(const ZE_KEST_Harness_s *pstHarness);

/* Makes an empty ring begin at another place: u32Input and u32Output are read offsets, taken modulo the
 * length of the rings. A ring that holds data stays as it is. */
void ze_kest_Harness_Place(ZE_KEST_Harness_s *pstHarness, uint32_t u32Input, uint32_t u32Output);

/* Appends frames to the input. ps32Frames: u32Frames frames; NULL for silence. 16-bit ports take the low 16
 * bits of each. Returns how many frames it had room for. */
uint32_t ze_kest_Harness_Fill(ZE_KEST_Harness_s *pstHarness, const int32_t *ps32Frames, uint32_t u32Frames);

/* Takes the oldest frames out of the output. ps32Frames: out, room for u32Frames frames; NULL to drop them.
 * Returns how many there were. */
uint32_t ze_kest_Harness_Take(ZE_KEST_Harness_s *pstHarness, int32_t *ps32Frames, uint32_t u32Frames);

/* Appends a metadata block of 32 bytes to the input. Its bytes follow from u64Number.
 * ZE_KEST_OK; ZE_KEST_NOTHING_TO_PROCESS: there is no room. */
uint32_t ze_kest_Harness_FillMetadata(ZE_KEST_Harness_s *pstHarness, uint64_t u64Number);

/* Takes the oldest metadata block out of the output. pu64Number: out, its number, also when it has changed.
 * ZE_KEST_OK; ZE_KEST_FAILED: its bytes are not those of a block of that number; ZE_KEST_NOTHING_TO_PROCESS:
 * there is none, *pu64Number is kept. */
uint32_t ze_kest_Harness_TakeMetadata(ZE_KEST_Harness_s *pstHarness, uint64_t *pu64Number);

/* Takes a turn as a host does: calls pfnProcess, moves the metadata that belongs to what was read unless the
 * kind does so itself, releases what was read and commits what was written, both limited to what was
 * possible, and metadata to whole blocks. Not without an instance. Without the debug hook, so that no debug
 * directory is needed. bEnded: as for pfnProcess; pstTurn: out, NULL when the faults are enough. Returns
 * ZE_KEST_HarnessFault_e, or-ed; 0 for a turn that kept to the interface. */
uint32_t ze_kest_Harness_Turn(ZE_KEST_Harness_s *pstHarness, uint32_t bEnded, ZE_KEST_HarnessTurn_s *pstTurn);

/* What a guard page was hit for, in words, such as "byte 2 behind the rings of the output's group 0".
 * pvAddress: the address of the access, si_addr of a SIGSEGV; pszText: out, u32Size bytes, cut to them.
 * May be called in the signal's handler. Returns 1, or 0 when the address lies in no guard page of this
 * harness; pszText is then "". */
uint32_t ze_kest_Harness_Where(const ZE_KEST_Harness_s *pstHarness, const void *pvAddress, char *pszText,
                               uint32_t u32Size);

/* Fills u32Count samples with noise of full scale. ps32Samples: out, the samples; u32BitWidth: 16 or 32, the
 * range of the samples; pu32Seed: in and out; the same seed gives the same noise on every machine. */
void ze_kest_Harness_Noise(int32_t *ps32Samples, uint32_t u32Count, uint32_t u32BitWidth, uint32_t *pu32Seed);

/* Compares u32Count samples. ps32A, ps32B: the samples; u32Tolerance: how far two samples may lie apart.
 * Returns the number of the first one that differs by more, u32Count when none does. */
uint32_t ze_kest_Harness_Compare(const int32_t *ps32A, const int32_t *ps32B, uint32_t u32Count,
                                 uint32_t u32Tolerance);

#ifdef __cplusplus
}
#endif

#endif
