/* SPDX-License-Identifier: Apache-2.0
 *
 * The records that a framework hands to the library: filters, their ports, and the rings of the ports.
 *
 * The framework owns every record and every ring. The library reads them, copies data through them and adds
 * to the sizes of the current cycle; it never allocates, frees or resizes one.
 *
 * Units: PCM positions, levels and sizes are in samples per channel, those of metadata and raw data in bytes.
 *
 * Who changes what in a cycle:
 *
 *   the filter reads and writes     through ze_kest/port.h; no field of a ring changes
 *   the filter accounts for it      the Update functions add to the read sizes of inputs and to the write
 *                                   sizes of outputs
 *   the debug hook                  ze_kest_Debug_Filter looks at those sizes; they must still stand
 *   the framework, every input      read offset += read size (around the end), level -= read size,
 *                                   space += read size, read size = 0; the time stamps move on by what
 *                                   was read
 *   the framework, every output     level += write size, space -= write size, write size = 0
 *
 * So the framework clears the read and write sizes, and nobody else does. They are 0 when a cycle begins. */
#ifndef ZE_KEST_MODEL_H
#define ZE_KEST_MODEL_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define ZE_KEST_NAME_SIZE 64         /* bytes of a name field, including its NUL */
#define ZE_KEST_MAX_PORTS 8          /* port slots on each side of a filter */
#define ZE_KEST_PCM_GROUPS 3         /* channel groups of a port */
#define ZE_KEST_PCM_GROUP_SLOTS 10   /* channel slots of a group */
#define ZE_KEST_PCM_GROUP_ENTRIES 12 /* entries per group in the per-channel arrays handed to filters */
/* Entries of such an array: slot k of group g is at 12 * g + k. */
#define ZE_KEST_PCM_CHANNEL_ENTRIES 36
#define ZE_KEST_NO_BOUND UINT32_MAX /* a process-size bound that never limits */

/* Option bit of a filter: if the filter also has a bound on its output process size, its PCM writes go
 * straight into the ring without wrap-around, and the caller must keep every write inside the ring. */
#define ZE_KEST_OPTION_DIRECT_WRITE 0x04u

/* One metadata block covers this many PCM samples. */
#define ZE_KEST_METADATA_SAMPLES 256u
/* Bytes of a metadata block's header: its tag (uint32_t), the payload's length in bytes (uint32_t), 8 more
 * bytes. The payload follows. A header is read in place, so it never straddles the end of a ring. */
#define ZE_KEST_METADATA_HEADER_SIZE 16u

typedef struct ZE_KEST_Filter_s ZE_KEST_Filter_s;

/* A filter's functions for its parameters. pstFilter: the filter; pszParameterName: the parameter; pData: the
 * value; u32Size: its size in bytes. They return a result code. They may be called with the library's
 * registry locked and must not call back into it. For a value that comes from a command, pData holds only 4
 * bytes whereas u32Size is whatever was typed, so refuse any size that is not the parameter's. */
typedef uint32_t (*ZE_KEST_SetParameter)(ZE_KEST_Filter_s *pstFilter, const char *pszParameterName,
                                         const void *pData, uint32_t u32Size);
typedef uint32_t (*ZE_KEST_GetParameter)(ZE_KEST_Filter_s *pstFilter, const char *pszParameterName,
                                         void *pData, uint32_t u32Size);

/* PCM format of a port.
 * Outputs carry the format that their filter announces with ze_kest_Utility_UpdatePcmInfoToAllOutputPort and
 * ze_kest_Utility_UpdatePcmGroupToAllOutputPort, before its first cycle and whenever the format changes. The
 * framework gives an input the format of the output that feeds it. */
typedef struct ZE_KEST_PcmInfo_s {
  uint32_t u32TotalChannels; /* channels over all groups */
  uint32_t u32SampleRate;    /* Hz */
  uint32_t u32BitWidth;      /* bits of a sample's container: 16, 24 (packed) or 32 */
  uint32_t au32Reserved[2];  /* not used by the library */
} ZE_KEST_PcmInfo_s;

/* One channel group of a port. Mono is group 0 with one channel: {0, 1, {0, -1, -1, ...}}. */
typedef struct ZE_KEST_PcmGroup_s {
  int32_t ePcmGroupType;    /* the group's own number (0, 1, 2); -1: the port does not carry the group */
  uint32_t u32ChannelCount; /* channel slots in use, 0 to 10 */
  /* One entry per slot; -1: the slot carries no channel. The library asks for nothing else; kest-player
   * stores the global channel number, 0 to 21. Entries from u32ChannelCount on must be -1, because the reads
   * of ze_kest/port.h look at the map and not at the count: they would read a ring that need not exist. */
  int32_t as32ChMap[ZE_KEST_PCM_GROUP_SLOTS];
} ZE_KEST_PcmGroup_s;

/* PCM of a port: one ring per channel, not interleaved; the rings of a group follow each other in memory.
 * The debug layer takes the storage of a group to have a ring for every channel that the group can have (2,
 * 10, 10), also when the format has fewer, unless asztPcmAllocSize says less. */
typedef struct ZE_KEST_PcmBuffer_s {
  uint8_t *apu8PcmGroupBuf[ZE_KEST_PCM_GROUPS]; /* storage of each group; NULL: the port has no such group.
                                                   Slot k begins k * sztPcmRingSamples samples after it */
  uint32_t sztPcmRingSamples;                   /* length of every ring, in samples; 0: no PCM on this port */
  uint32_t asztPcmAllocSize[ZE_KEST_PCM_GROUPS]; /* bytes allocated for each group; 0: rings for all channels
                                                    that the group can have */
  uint32_t sztPcmLevel;                          /* samples held in each ring */
  uint32_t sztPcmSpace;                          /* samples free in each ring */
  uint32_t sztPcmReadSize;                       /* samples consumed in this cycle (input ports) */
  uint32_t sztPcmWriteSize;                      /* samples produced in this cycle (output ports) */
  uint32_t sztPcmTotalRead;                      /* running total of consumed samples; wraps */
  uint32_t sztPcmReadOffset;                     /* ring index of the oldest unread sample */
  uint32_t u32Reserved;                          /* not used by the library */
  int64_t s64PcmPts;           /* time stamp of the oldest unread sample, in the framework's unit; the library
                                  only prints it. kest-player: microseconds since the port's first sample */
  uint64_t u64PcmReadCount;    /* number of updates of the read size */
  uint64_t u64PcmXrunCount;    /* underruns of an input port, overruns of an output port */
  uint64_t u64PcmPassCount;    /* frames passed by an A/V sync filter */
  uint64_t u64PcmSkipCount;    /* frames skipped by an A/V sync filter */
  ZE_KEST_PcmInfo_s stPcmInfo; /* the format */
  uint32_t u32PcmGroupNum;     /* 3 once the group records are valid, 0 before: set when they are announced */
  ZE_KEST_PcmGroup_s astPcmGroup[ZE_KEST_PCM_GROUPS]; /* groups 0, 1 and 2 */
} ZE_KEST_PcmBuffer_s;

/* A byte ring: the metadata or the raw (compressed) data of a port. */
typedef struct ZE_KEST_DataBuffer_s {
  uint8_t *pu8Buf;             /* storage of the ring; NULL: none */
  uint32_t au32RawReserved[2]; /* not used by the library */
  uint32_t sztSize;            /* capacity in bytes; 0: the port has no such ring */
  uint32_t sztLevel;           /* bytes held */
  uint32_t sztSpace;           /* bytes free */
  uint32_t sztReadSize;        /* bytes consumed in this cycle */
  uint32_t sztWriteSize;       /* bytes produced in this cycle */
  uint32_t sztTotalRead;       /* running total of consumed bytes; wraps */
  uint32_t u32RawReserved;     /* not used by the library */
  uint32_t sztReadOffset;      /* offset of the oldest unread byte */
  int64_t s64Pts;              /* time stamp of the oldest unread byte, like s64PcmPts */
  uint64_t au64Count[4];       /* [0]: read-size updates other than by 0; the rest belong to the framework */
} ZE_KEST_DataBuffer_s;

/* A port of a filter. */
typedef struct ZE_KEST_Port_s {
  uint32_t u32Reserved; /* not used by the library */
  /* Boolean. Some ports are served even when not connected: the first non-NULL port in operations that walk
   * all ports of a side, and slot 0 in operations that take a port index. */
  uint32_t bConnected;
  uint32_t au32Reserved[4];    /* not used by the library */
  ZE_KEST_PcmBuffer_s stPcm;   /* its PCM */
  ZE_KEST_DataBuffer_s stRaw;  /* its raw (compressed) data */
  ZE_KEST_DataBuffer_s stMeta; /* its metadata */
} ZE_KEST_Port_s;

/* A pipeline. Its sleep settings are what ze_kest_Utility_UpdatePipelineSleepConfiguration merged into it. */
typedef struct ZE_KEST_Pipeline_s {
  char szName[ZE_KEST_NAME_SIZE]; /* its name */
  uint32_t u32State;              /* 0 none, 1 idle, 2 stop, 3 prepare, 4 run, 5 pause, 6 drain */
  uint8_t u8AutoConsume;          /* the framework's; the library only prints it */
  uint32_t u32SleepPriority;      /* highest priority of its filters' settings */
  int32_t s32SleepTime;           /* sleep time that goes with it, in the framework's unit */
  uint32_t u32WakeUp;             /* first wake-up setting of its filters that is not 0 */
} ZE_KEST_Pipeline_s;

/* A filter. */
struct ZE_KEST_Filter_s {
  char szName[ZE_KEST_NAME_SIZE];                 /* its name */
  ZE_KEST_Pipeline_s *pstParentPipeline;          /* the pipeline that it belongs to */
  uint32_t u32InPortCount;                        /* input slots to serve, 0 to 8 */
  uint32_t u32OutPortCount;                       /* output slots to serve, 0 to 8 */
  ZE_KEST_Port_s *apstInPort[ZE_KEST_MAX_PORTS];  /* a slot may be NULL */
  ZE_KEST_Port_s *apstOutPort[ZE_KEST_MAX_PORTS]; /* a slot may be NULL */
  uint32_t u32Reserved;                           /* not used by the library */
  uint32_t sztMaxInPcmProcessSize;                /* samples, or ZE_KEST_NO_BOUND */
  uint32_t sztMaxOutPcmProcessSize;               /* samples, or ZE_KEST_NO_BOUND */
  uint8_t u8Option;          /* ZE_KEST_OPTION_DIRECT_WRITE; the other bits belong to the framework */
  const char *pszConfig;     /* configuration text; may be NULL */
  uint32_t u32SleepPriority; /* whose sleep time counts: the highest wins; 0: no setting */
  int32_t s32SleepTime;      /* in the framework's unit */
  uint32_t u32WakeUp;        /* the framework's wake-up setting; 0: none */
  ZE_KEST_SetParameter pfnSetParameter; /* may be NULL */
  ZE_KEST_GetParameter pfnGetParameter; /* may be NULL */
  uint8_t u8Ds;                         /* the framework's; the library only prints it, as "ds" */
  int32_t s32Tgt;                       /* the framework's; the library only prints it, as "tgt" */
  uint32_t u32DbgLvl; /* the filter's own debug level, of result.h, or 0 ("kest_filter_debug_level") */
};

#ifdef __cplusplus
}
#endif

#endif
