// SPDX-License-Identifier: Apache-2.0
// The parts of the NEON tiles that are assembly, because g++ 12.2 generates slower code from the intrinsics.
// The counts are the instructions of a call that bench/arm/run.sh prints, here and with intrinsics instead.
#pragma once

#include "utility/port/frame_tile.h"

#if defined(__arm__) && defined(__ARM_NEON)

#include <arm_neon.h>

namespace kest::neon {

// No instruction, but it makes the compiler keep the advanced pointers. Without it, the address of each run
// is computed separately, and the free post-increment of the loads and stores is lost: "read 2ch 16" 812,
// else 1204; "write 2ch 32" 1329, else 2107.
template <typename Ring, typename Linear>
KEST_TILE_PART void KeepAdvanced(Ring *&pu8Left, Ring *&pu8Right, Linear *&pu8Linear) {
  asm("" : "+r"(pu8Left), "+r"(pu8Right), "+r"(pu8Linear));
}

// Stores eight stereo frames of 32 bits, given the even and the odd samples of both channels. For vst4q_u32
// the address of its second store is computed separately: "readTo24Le 2ch 16" 1471, else 1601.
KEST_TILE_PART void StoreEvenOddStereo(uint8_t *&pu8Linear, const uint32x4x2_t &stLeft,
                                       const uint32x4x2_t &stRight) {
  register uint32x4_t u32LeftEven asm("q12") = stLeft.val[0];
  register uint32x4_t u32RightEven asm("q13") = stRight.val[0];
  register uint32x4_t u32LeftOdd asm("q14") = stLeft.val[1];
  register uint32x4_t u32RightOdd asm("q15") = stRight.val[1];
  asm volatile(
      "vst4.32 {d24, d26, d28, d30}, [%[linear]]!\n\t"
      "vst4.32 {d25, d27, d29, d31}, [%[linear]]!"
      : [linear] "+r"(pu8Linear)
      : "w"(u32LeftEven), "w"(u32RightEven), "w"(u32LeftOdd), "w"(u32RightOdd)
      : "memory");
}

// Moves eight stereo frames of packed samples from two rings to a linear buffer or back, and advances the
// pointers. With vzip_u8 and vuzp_u8, registers are moved between them and the structured accesses:
// "read 2ch 24" 1525, else 3329; "write 2ch 24" 1584, else 3388.
KEST_TILE_PART void MovePackedStereo(const uint8_t *&pu8Left, const uint8_t *&pu8Right, uint8_t *&pu8Linear) {
  asm volatile(
      "vld3.8 {d16-d18}, [%[left]]!\n\t"
      "vld3.8 {d20-d22}, [%[right]]!\n\t"
      "vzip.8 d16, d20\n\t"
      "vzip.8 d17, d21\n\t"
      "vzip.8 d18, d22\n\t"
      "vst3.8 {d16-d18}, [%[linear]]!\n\t"
      "vst3.8 {d20-d22}, [%[linear]]!"
      : [left] "+r"(pu8Left), [right] "+r"(pu8Right), [linear] "+r"(pu8Linear)
      :
      : "d16", "d17", "d18", "d20", "d21", "d22", "memory");
}
KEST_TILE_PART void MovePackedStereo(uint8_t *&pu8Left, uint8_t *&pu8Right, const uint8_t *&pu8Linear) {
  asm volatile(
      "vld3.8 {d16-d18}, [%[linear]]!\n\t"
      "vld3.8 {d20-d22}, [%[linear]]!\n\t"
      "vuzp.8 d16, d20\n\t"
      "vuzp.8 d17, d21\n\t"
      "vuzp.8 d18, d22\n\t"
      "vst3.8 {d16-d18}, [%[left]]!\n\t"
      "vst3.8 {d20-d22}, [%[right]]!"
      : [left] "+r"(pu8Left), [right] "+r"(pu8Right), [linear] "+r"(pu8Linear)
      :
      : "d16", "d17", "d18", "d20", "d21", "d22", "memory");
}

}  // namespace kest::neon

#endif
