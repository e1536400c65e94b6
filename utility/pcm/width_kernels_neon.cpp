// SPDX-License-Identifier: Apache-2.0
// The blocks are written in assembly. Between a structured load and a structured store, a plane of bytes can
// be moved merely by naming its register in a different position; with intrinsics the compiler copies the
// registers instead, and computes addresses that post-increment gives for nothing. Byte-wise accesses work at
// any address.
//
// Instructions per block and its loop, here and as g++ 12.2 compiles the same block from intrinsics:
//   16 to 24: 6, else 10     24 to 16: 5, else 9      24 to 32: 7, else 14
//   16 to 32: 9, else 18     32 to 16: 9, else 20     24 in 32 to 32: 10, else 22
#if defined(__arm__) && defined(__ARM_NEON)

#include "utility/pcm/width_kernels.h"

// Defines a kernel that runs the given block in a loop. The block advances the pointers past what it has read
// (%0) and written (%1).
#define KEST_BLOCKS(conversion, block)                                              \
  template <>                                                                       \
  kest::BlockKernel kest::KernelOf<kest::conversion>() {                            \
    return [](const uint8_t *pu8Src, uint8_t *pu8Dst, uint32_t u32Blocks) {         \
      for (; u32Blocks != 0; --u32Blocks) {                                         \
        asm volatile(block                                                          \
                     : "+r"(pu8Src), "+r"(pu8Dst)                                   \
                     :                                                              \
                     : "q0", "q1", "q2", "q3", "q8", "q9", "q10", "q11", "memory"); \
      }                                                                             \
    };                                                                              \
  }

KEST_BLOCKS(From16To24,
            "vmov.i8 q0, #0\n"
            "vld2.8 {d2, d3, d4, d5}, [%0]!\n"
            "vst3.8 {d0, d2, d4}, [%1]!\n"
            "vst3.8 {d1, d3, d5}, [%1]!\n")

KEST_BLOCKS(From24To16,
            "vld3.8 {d0, d2, d4}, [%0]!\n"
            "vld3.8 {d1, d3, d5}, [%0]!\n"
            "vst2.8 {d2, d3, d4, d5}, [%1]!\n")

KEST_BLOCKS(From24To32,
            "vmov.i8 q0, #0\n"
            "vld3.8 {d2, d4, d6}, [%0]!\n"
            "vld3.8 {d3, d5, d7}, [%0]!\n"
            "vst4.8 {d0, d2, d4, d6}, [%1]!\n"
            "vst4.8 {d1, d3, d5, d7}, [%1]!\n")

KEST_BLOCKS(From16To32,
            "vld1.8 {d0, d1, d2, d3}, [%0]!\n"
            "vshll.i16 q8, d0, #16\n"
            "vshll.i16 q9, d1, #16\n"
            "vshll.i16 q10, d2, #16\n"
            "vshll.i16 q11, d3, #16\n"
            "vst1.8 {d16, d17, d18, d19}, [%1]!\n"
            "vst1.8 {d20, d21, d22, d23}, [%1]!\n")

#define KEST_UPPER_16_BITS(shift)        \
  "vld1.8 {d16, d17, d18, d19}, [%0]!\n" \
  "vld1.8 {d20, d21, d22, d23}, [%0]!\n" \
  "vshrn.i32 d0, q8, #" shift            \
  "\n"                                   \
  "vshrn.i32 d1, q9, #" shift            \
  "\n"                                   \
  "vshrn.i32 d2, q10, #" shift           \
  "\n"                                   \
  "vshrn.i32 d3, q11, #" shift           \
  "\n"                                   \
  "vst1.8 {d0, d1, d2, d3}, [%1]!\n"

KEST_BLOCKS(From32To16, KEST_UPPER_16_BITS("16"))
KEST_BLOCKS(From24LeTo16, KEST_UPPER_16_BITS("8"))

KEST_BLOCKS(From24LeTo32,
            "vld1.8 {d16, d17, d18, d19}, [%0]!\n"
            "vld1.8 {d20, d21, d22, d23}, [%0]!\n"
            "vshl.i32 q8, q8, #8\n"
            "vshl.i32 q9, q9, #8\n"
            "vshl.i32 q10, q10, #8\n"
            "vshl.i32 q11, q11, #8\n"
            "vst1.8 {d16, d17, d18, d19}, [%1]!\n"
            "vst1.8 {d20, d21, d22, d23}, [%1]!\n")

#endif
