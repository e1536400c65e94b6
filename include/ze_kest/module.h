/* SPDX-License-Identifier: Apache-2.0
 *
 * Filters in modules: what a shared object exports so that a host such as kest-player can load filters from
 * it. A module needs this header, ze_kest/port.h and libkest; docs/write-a-filter.md begins with five
 * commands.
 *
 * A module exports one function, ze_kest_module. It gives the kinds of filters that the module holds; each
 * kind's record has the entries that make and run instances of it.
 *
 * An instance's life has two states. pfnCreate makes it for one PCM format that never changes, and it is
 * ready to process; pfnDestroy ends it. A host destroys every instance that it created before its process
 * exits, and never unloads a module.
 *
 * Threads: one thread, the host's main thread, loads the module, creates and destroys all instances and asks
 * for parameters and latency. One audio thread for each instance calls pfnProcess and pfnPending. The command
 * thread calls pfnGet, pfnSet and pfnCommand at any time between, also while pfnProcess runs. A thread that
 * creates an instance has finished before another one processes with it, and the other way round for
 * destroying; for everything else the module uses atomics. No entry is called twice at a time for the same
 * instance, except that pfnGet, pfnSet and pfnCommand run beside pfnProcess and pfnPending. Different
 * instances run beside each other.
 *
 * Texts that a host reads from a module are NUL-terminated and stay valid and unchanged until the process
 * ends, or the instance that they belong to is destroyed. A name has 1 to 63 letters, digits and '_': names
 * stand in commands.
 *
 * Every record begins with its own size, set by whoever fills it in. Records grow only at their end: a reader
 * takes what lies beyond the size for 0.
 *
 * Everywhere, pvSelf: what pfnCreate stored in *ppvSelf. */
#ifndef ZE_KEST_MODULE_H
#define ZE_KEST_MODULE_H

#include <stdint.h>

#include "ze_kest/model.h"
#include "ze_kest/result.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The version of this interface. It rises only when modules that were built for the earlier one cannot be
 * used any more. */
#define ZE_KEST_MODULE_ABI 1u

typedef struct ZE_KEST_ModuleFilter_s ZE_KEST_ModuleFilter_s;

/* The only function that a module exports. The host calls it from its main thread, with u32Index from 0 until
 * the result is NULL.
 * u32Abi: the host's ZE_KEST_MODULE_ABI; u32Index: number of a kind, from 0.
 * Returns the kind's record, the same one for the same index, valid until the process ends; NULL past the
 * last kind, and for every index when the module cannot serve u32Abi. */
ZE_KEST_API const ZE_KEST_ModuleFilter_s *ze_kest_module(uint32_t u32Abi, uint32_t u32Index);

/* Its name and its type, for hosts, which look it up. */
#define ZE_KEST_MODULE_ENTRY "ze_kest_module"
typedef const ZE_KEST_ModuleFilter_s *(*ZE_KEST_ModuleEntry)(uint32_t u32Abi, uint32_t u32Index);

/* What a host hands to pfnCreate. It is valid during that call only; copy what is needed later. */
typedef struct ZE_KEST_ModuleSetup_s {
  uint32_t u32Size;            /* sizeof(ZE_KEST_ModuleSetup_s) */
  uint32_t u32MaxSamples;      /* most samples per channel that one pfnProcess may move; at least 1 */
  ZE_KEST_PcmInfo_s stPcmInfo; /* format of all ports: u32BitWidth is 16 or 32, and u32TotalChannels is within
                                  the kind's limits */
  ZE_KEST_PcmGroup_s astPcmGroup[ZE_KEST_PCM_GROUPS]; /* where the channels lie. kest-player: mono and stereo
                                                         in group 0, 3 to 10 channels in group 1 */
  const char *pszConfig; /* configuration text of the instance, as the user wrote it; "" when there is none */
  const char *pszDirectory; /* absolute directory that relative paths in pszConfig start from */
  char *pszError;           /* in: ""; on failure, why, in one line without its end, for the user to read */
  uint32_t u32ErrorSize;    /* bytes of pszError, its NUL included; at least 256 */
} ZE_KEST_ModuleSetup_s;

/* A parameter: a signed number, which is what commands carry. */
typedef struct ZE_KEST_ModuleParameter_s {
  uint32_t u32Size;           /* sizeof(ZE_KEST_ModuleParameter_s) */
  uint32_t u32Flags;          /* ZE_KEST_ModuleParameterFlag_e; other bits are 0 */
  const char *pszName;        /* a name, different from the instance's other parameters' */
  const char *pszDescription; /* one line without its end; may be "" */
  const char *pszUnit;        /* of the value, such as "dB"; "" for none */
  uint32_t u32Decimals;       /* 0 to 6: the value counts units of 10^-u32Decimals. With 1 and "dB", -25 is
                                 -2.5 dB */
  int32_t s32Least;           /* limits, both inclusive; the host keeps every value within them */
  int32_t s32Most;            /* see s32Least */
  int32_t s32Default;         /* the value after pfnCreate; within the limits */
} ZE_KEST_ModuleParameter_s;

/* What a parameter may be. */
enum ZE_KEST_ModuleParameterFlag_e {
  ZE_KEST_MODULE_READ_ONLY = 0x01 /* pfnSet is never called for it; s32Default and the limits do not bind what
                                     pfnGet returns */
};

/* Sample widths that a kind takes. */
enum ZE_KEST_ModuleWidth_e { ZE_KEST_MODULE_16_BITS = 0x01, ZE_KEST_MODULE_32_BITS = 0x02 };

/* What a kind may be. */
enum ZE_KEST_ModuleFlag_e {
  /* The kind moves all metadata itself, in whole blocks: a host may drop anything else. Without the flag the
   * host does, in step with the samples that pfnProcess reads, and the kind leaves the metadata alone. */
  ZE_KEST_MODULE_FORWARDS_METADATA = 0x01,
  ZE_KEST_MODULE_MAY_DIFFER = 0x02, /* two runs over the same input may give different samples */
  ZE_KEST_MODULE_MAY_BLOCK = 0x04   /* pfnProcess may allocate, lock and call the system */
};

/* Makes an instance. [main thread; may block and allocate]
 * pstKind: the record that ze_kest_module returned, so that kinds can share the function; pstSetup: see
 * above; ppvSelf: out, whatever the other entries are to get; may become NULL. ZE_KEST_OK: the instance
 * exists. Any other result code: nothing is left of it, pszError says why, pfnDestroy is not called, and
 * *ppvSelf is not used. */
typedef uint32_t (*ZE_KEST_ModuleCreate)(const ZE_KEST_ModuleFilter_s *pstKind,
                                         const ZE_KEST_ModuleSetup_s *pstSetup, void **ppvSelf);

/* Ends an instance. [main thread; may block] No entry is called with pvSelf any more. */
typedef void (*ZE_KEST_ModuleDestroy)(void *pvSelf);

/* One turn of the filter. [audio thread; real-time safe, unless the kind has ZE_KEST_MODULE_MAY_BLOCK]
 *
 * pstFilter: the filter's record, with one input port and one output port, both in slot 0, in the format of
 * the setup. The module works on them only through ze_kest/port.h: it asks how much it may process, reads,
 * writes, and accounts for what it read and wrote with the Update functions. It reads at most what the input
 * holds, writes at most the output's space, and moves at most u32MaxSamples on either side. Moving less, or
 * nothing, is fine; the turn comes again. No field of the records is changed otherwise.
 * bEnded: 1 when nothing will follow what the input holds now; it stays 1.
 *
 * After the end the filter reads what is left, writes what it still holds (pfnPending), and then moves
 * nothing. As long as the output has space, it may pause for a limited number of calls only: a host may give
 * up on a filter that no longer moves. kest-player ends its run with an error after 1000 such calls in a row.
 *
 * The host does the rest: it calls ze_kest_Debug_MeasureLatency before and ze_kest_Debug_Filter after the
 * call, releases what was read and commits what was written, and announces the format to the output before
 * the first turn. */
typedef void (*ZE_KEST_ModuleProcess)(void *pvSelf, ZE_KEST_Filter_s *pstFilter, uint32_t bEnded);

/* Samples per channel by which the output lags behind the input: what input sample n holds comes out as
 * output sample n + latency. Constant for the instance's life. [main thread] */
typedef uint32_t (*ZE_KEST_ModuleLatency)(void *pvSelf);

/* Samples per channel that the instance would still write if its input port held nothing and nothing
 * followed; falls to 0 after the end. A filter that delays by its latency holds that many, a reverberation
 * its tail. Called after each pfnProcess with bEnded. [audio thread; real-time safe] */
typedef uint32_t (*ZE_KEST_ModulePending)(void *pvSelf);

/* The instance's parameter u32Index, from 0; NULL past the last one. The records stay valid and unchanged
 * until the instance is destroyed. [main thread, once after pfnCreate] */
typedef const ZE_KEST_ModuleParameter_s *(*ZE_KEST_ModuleParameter)(void *pvSelf, uint32_t u32Index);

/* The present value of a parameter, and a new one, which the host has clamped to the limits and which takes
 * effect in the next turn. pfnSet is also called before the first turn, with the values that the user
 * configured. [command thread beside pfnProcess, or main thread before the first turn; neither blocks]
 * u32Index: as in pfnParameter; s32Value: the new value. pfnSet gets no read-only one. */
typedef int32_t (*ZE_KEST_ModuleGet)(void *pvSelf, uint32_t u32Index);
typedef void (*ZE_KEST_ModuleSet)(void *pvSelf, uint32_t u32Index, int32_t s32Value);

/* A command for the instance. [command thread beside pfnProcess, with the registry of the debug layer locked:
 * do not block, do not call ze_kest/debug.h except ze_kest_Debug_Log, with which it may answer]
 * pszCommand: the text; any length and any bytes but NUL. kest-player answers "get" and "state" itself.
 * ZE_KEST_OK: done; ZE_KEST_INVALID_ARGUMENT: not a command of this kind, nothing has changed. */
typedef uint32_t (*ZE_KEST_ModuleCommand)(void *pvSelf, const char *pszCommand);

/* A kind of filter. Entries that are not marked optional must be there. */
struct ZE_KEST_ModuleFilter_s {
  uint32_t u32Size;       /* sizeof(ZE_KEST_ModuleFilter_s) */
  uint32_t u32FilterSize; /* sizeof(ZE_KEST_Filter_s) and sizeof(ZE_KEST_Port_s), as the module knows them; a
                             host refuses a module with other records than its own */
  uint32_t u32PortSize;   /* see u32FilterSize */
  uint32_t u32Flags;      /* ZE_KEST_ModuleFlag_e; other bits are 0 */
  const char *pszName;    /* a name, different from the module's other kinds'; a host may refuse one that it
                             has itself */
  const char *pszVersion; /* of the filter, in any form; may be "" */
  const char *pszDescription;       /* one line without its end; may be "" */
  uint32_t u32Widths;               /* ZE_KEST_ModuleWidth_e, at least one; other bits are 0 */
  uint32_t u32LeastChannels;        /* channels that an instance can have: 1 to 22, least not above most */
  uint32_t u32MostChannels;         /* see u32LeastChannels */
  ZE_KEST_ModuleCreate pfnCreate;   /* makes an instance */
  ZE_KEST_ModuleDestroy pfnDestroy; /* ends it */
  ZE_KEST_ModuleProcess pfnProcess; /* takes a turn */
  ZE_KEST_ModuleLatency pfnLatency; /* optional; without it, 0 */
  ZE_KEST_ModulePending pfnPending; /* optional; without it, 0 */
  ZE_KEST_ModuleParameter pfnParameter; /* optional; without it there are no parameters */
  ZE_KEST_ModuleGet pfnGet;             /* optional without parameters */
  ZE_KEST_ModuleSet pfnSet;             /* optional when no parameter can be set */
  ZE_KEST_ModuleCommand pfnCommand;     /* optional; without it, no commands */
};

#ifdef __cplusplus
}
#endif

#endif
