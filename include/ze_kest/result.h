/* SPDX-License-Identifier: Apache-2.0
 *
 * Result codes, log levels and the attributes of the interface. */
#ifndef ZE_KEST_RESULT_H
#define ZE_KEST_RESULT_H

#define ZE_KEST_API __attribute__((visibility("default")))

/* Lets the compiler check the arguments of a printf-like function. */
#define ZE_KEST_PRINTF(format_index, first_argument) \
  __attribute__((format(printf, format_index, first_argument)))

/* What every operation returns, unless its comment says otherwise. The numbers are part of the interface:
 * callers compare them. */
enum ZE_KEST_Result_e {
  ZE_KEST_OK = 0,
  ZE_KEST_NO = 1,                 /* a negative answer that is not an error; nothing to update */
  ZE_KEST_FAILED = 3,             /* the operation failed */
  ZE_KEST_NOT_INITIALISED = 4,    /* not initialised, or a resource could not be set up */
  ZE_KEST_MISSING_ARGUMENT = 7,   /* a missing argument of a performance measurement */
  ZE_KEST_INVALID_ARGUMENT = 8,   /* a missing or invalid argument; a command that nothing handled */
  ZE_KEST_OUT_OF_MEMORY = 10,     /* only from operations that distinguish this from ZE_KEST_FAILED */
  ZE_KEST_NOTHING_TO_PROCESS = 12 /* process size 0, sizes that differ, a path that cannot be formatted */
};

/* Verbosity: a report is made when u32KestDebugLevel is at least the report's level. */
enum ZE_KEST_Level_e {
  ZE_KEST_LEVEL_PRINT = 1, /* always reported; as a setting it lets only PRINT through ("none") */
  ZE_KEST_LEVEL_ERR = 32,
  ZE_KEST_LEVEL_SYNC = 33, /* behaves like ERR here; other components test for it */
  ZE_KEST_LEVEL_HDMI = 34, /* behaves like ERR here; other components test for it */
  ZE_KEST_LEVEL_WRN = 48,
  ZE_KEST_LEVEL_INFO = 64,
  ZE_KEST_LEVEL_TRACE = 80,
  ZE_KEST_LEVEL_ENTER = 240, /* as a setting it lets everything through ("all") */
  ZE_KEST_LEVEL_EXIT = 241,
  ZE_KEST_LEVEL_ERR2 = 242 /* a second form of ERR with the same label */
};

#endif
