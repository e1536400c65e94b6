// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/utility.h"

#include "utility/core/report.h"
#include "utility/pcm/shift_sample.h"

namespace {

using From16To24 = kest::ShiftSample<2, 3, 8>;
using From16To32 = kest::ShiftSample<2, 4, 16>;
using From24To16 = kest::ShiftSample<3, 2, -8>;
using From24To32 = kest::ShiftSample<3, 4, 8>;
using From24LeTo16 = kest::ShiftSample<4, 2, -8>;
using From24LeTo32 = kest::ShiftSample<4, 4, 8>;
using From32To16 = kest::ShiftSample<4, 2, -16>;

template <typename Kernel>
uint32_t Convert(const void *pvSrc, void *pvDst, uint32_t u32Samples) {
  kest::ConvertSamples<Kernel>(static_cast<const uint8_t *>(pvSrc), static_cast<uint8_t *>(pvDst),
                               u32Samples);
  return ZE_KEST_OK;
}

// For the functions that refuse to convert nothing.
template <typename Kernel>
uint32_t ConvertSome(const char *pszFunction, void *pvDst, const void *pvSrc, uint32_t sztSamples) {
  KEST_REQUIRE_AS(pszFunction, sztSamples != 0, "Invalid parameter: sztSamples!\n");
  return Convert<Kernel>(pvSrc, pvDst, sztSamples);
}

}  // namespace

uint32_t ze_kest_Utility_ConvertPcmFrom16BitTo24Bit(const uint16_t *pu16Ptr, uint8_t *pu8Ptr,
                                                    uint32_t u32Count) {
  KEST_REQUIRE(pu16Ptr != nullptr, "pu16Ptr is NULL.\n");
  KEST_REQUIRE(pu8Ptr != nullptr, "pu8Ptr is NULL.\n");
  return Convert<From16To24>(pu16Ptr, pu8Ptr, u32Count);
}

uint32_t ze_kest_Utility_ConvertPcmFrom24BitTo16Bit(const uint8_t *pu8Ptr, uint16_t *pu16Ptr,
                                                    uint32_t u32Count) {
  KEST_REQUIRE(pu8Ptr != nullptr, "pu8Ptr is NULL.\n");
  KEST_REQUIRE(pu16Ptr != nullptr, "pu16Ptr is NULL.\n");
  return Convert<From24To16>(pu8Ptr, pu16Ptr, u32Count);
}

uint32_t ze_kest_Utility_ConvertPcmFrom16BitTo32Bit(const uint16_t *pu16Ptr, uint32_t *pu32Dest,
                                                    uint32_t u32Count) {
  KEST_REQUIRE(pu16Ptr != nullptr, "pu16Ptr is NULL.\n");
  KEST_REQUIRE(pu32Dest != nullptr, "pu32Dest is NULL.\n");
  return Convert<From16To32>(pu16Ptr, pu32Dest, u32Count);
}

uint32_t ze_kest_Utility_ConvertPcmFrom32BitTo16Bit(const uint32_t *pu32PtrSrc, uint16_t *pu16PtrDes,
                                                    uint32_t u32Count) {
  KEST_REQUIRE(pu32PtrSrc != nullptr, "pu32PtrSrc is NULL.\n");
  KEST_REQUIRE(pu16PtrDes != nullptr, "pu16PtrDes is NULL.\n");
  return Convert<From32To16>(pu32PtrSrc, pu16PtrDes, u32Count);
}

uint32_t ze_kest_Utility_ConvertPcmFrom24BitTo32Bit(const uint8_t *pu8Ptr, uint32_t *pu32Ptr,
                                                    uint32_t u32Count) {
  KEST_REQUIRE(pu8Ptr != nullptr, "pu8Ptr is NULL.\n");
  KEST_REQUIRE(pu32Ptr != nullptr, "pu32Ptr is NULL.\n");
  return Convert<From24To32>(pu8Ptr, pu32Ptr, u32Count);
}

uint32_t ze_kest_Utility_ConvertPcmFrom24LETo16Bit(const uint32_t *pu32Ptr, uint16_t *pu16Ptr,
                                                   uint32_t u32Count) {
  KEST_REQUIRE(pu32Ptr != nullptr, "pu32Ptr is NULL.\n");
  KEST_REQUIRE(pu16Ptr != nullptr, "pu16Ptr is NULL.\n");
  return Convert<From24LeTo16>(pu32Ptr, pu16Ptr, u32Count);
}

uint32_t ze_kest_Utility_ConvertPcmFrom24LETo32Bit(const uint32_t *pu32Src, uint32_t *pu32Dest,
                                                   uint32_t u32Count) {
  KEST_REQUIRE(pu32Src != nullptr, "pu32Src is NULL.\n");
  KEST_REQUIRE(pu32Dest != nullptr, "pu32Dest is NULL.\n");
  return Convert<From24LeTo32>(pu32Src, pu32Dest, u32Count);
}

uint32_t ze_kest_Utility_Convert16BitPcmTo32BitPcm(int32_t *ps32Dst, const int16_t *ps16Src,
                                                   uint32_t sztSamples) {
  KEST_REQUIRE(ps32Dst != nullptr, "ps32Dst is NULL.\n");
  KEST_REQUIRE(ps16Src != nullptr, "ps16Src is NULL.\n");
  return ConvertSome<From16To32>(__func__, ps32Dst, ps16Src, sztSamples);
}

uint32_t ze_kest_Utility_Convert32BitPcmFromLow24BitToHigh24Bit(int32_t *ps32Src, uint32_t sztSamples) {
  KEST_REQUIRE(ps32Src != nullptr, "ps32Src is NULL.\n");
  return ConvertSome<From24LeTo32>(__func__, ps32Src, ps32Src, sztSamples);
}

// The destination is not checked, and that is meant.
uint32_t ze_kest_Utility_Convert32BitPcmFromLow24BitTo16BitPcm(int16_t *ps16Dst, const int32_t *ps32Src,
                                                               uint32_t sztSamples) {
  KEST_REQUIRE(ps32Src != nullptr, "ps32Src is NULL.\n");
  return ConvertSome<From24LeTo16>(__func__, ps16Dst, ps32Src, sztSamples);
}
