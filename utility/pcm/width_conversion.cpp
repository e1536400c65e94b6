// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/port.h"

#include "utility/core/report.h"
#include "utility/pcm/width_kernels.h"

namespace {

// Whether converting in blocks, each read completely before it is stored, gives the same result as converting
// sample by sample. This matters only when source and destination overlap.
template <typename Sample>
bool MayGoInBlocks(const uint8_t *pu8Src, const uint8_t *pu8Dst, size_t sztSamples) {
  const auto uSrc = reinterpret_cast<uintptr_t>(pu8Src);
  const auto uDst = reinterpret_cast<uintptr_t>(pu8Dst);
  if (Sample::kDstBytes <= Sample::kSrcBytes && uDst <= uSrc) return true;
  return uDst - uSrc >= sztSamples * Sample::kSrcBytes && uSrc - uDst >= sztSamples * Sample::kDstBytes;
}

// Returns the number of samples converted.
template <typename Sample>
uint32_t ConvertInBlocks(const uint8_t *pu8Src, uint8_t *pu8Dst, uint32_t u32Samples) {
  const kest::BlockKernel pfnConvert = kest::KernelOf<Sample>();
  if (pfnConvert == nullptr || !MayGoInBlocks<Sample>(pu8Src, pu8Dst, u32Samples)) return 0;
  pfnConvert(pu8Src, pu8Dst, u32Samples / kest::kBlockSamples);
  return u32Samples / kest::kBlockSamples * kest::kBlockSamples;
}

template <typename Sample>
uint32_t Convert(const void *pvSrc, void *pvDst, uint32_t u32Samples) {
  const auto *pu8Src = static_cast<const uint8_t *>(pvSrc);
  auto *pu8Dst = static_cast<uint8_t *>(pvDst);
  const uint32_t u32Done = ConvertInBlocks<Sample>(pu8Src, pu8Dst, u32Samples);
  kest::ConvertSamples<Sample>(pu8Src + u32Done * Sample::kSrcBytes, pu8Dst + u32Done * Sample::kDstBytes,
                               u32Samples - u32Done);
  return ZE_KEST_OK;
}

// For the functions that refuse a count of 0.
template <typename Sample>
uint32_t ConvertSome(const char *pszFunction, void *pvDst, const void *pvSrc, uint32_t sztSamples) {
  KEST_REQUIRE_AS(pszFunction, sztSamples != 0, "Invalid parameter: sztSamples!\n");
  return Convert<Sample>(pvSrc, pvDst, sztSamples);
}

}  // namespace

uint32_t ze_kest_Utility_ConvertPcmFrom16BitTo24Bit(const uint16_t *pu16Ptr, uint8_t *pu8Ptr,
                                                    uint32_t u32Count) {
  KEST_REQUIRE(pu16Ptr != nullptr, "pu16Ptr is NULL.\n");
  KEST_REQUIRE(pu8Ptr != nullptr, "pu8Ptr is NULL.\n");
  return Convert<kest::From16To24>(pu16Ptr, pu8Ptr, u32Count);
}

uint32_t ze_kest_Utility_ConvertPcmFrom24BitTo16Bit(const uint8_t *pu8Ptr, uint16_t *pu16Ptr,
                                                    uint32_t u32Count) {
  KEST_REQUIRE(pu8Ptr != nullptr, "pu8Ptr is NULL.\n");
  KEST_REQUIRE(pu16Ptr != nullptr, "pu16Ptr is NULL.\n");
  return Convert<kest::From24To16>(pu8Ptr, pu16Ptr, u32Count);
}

uint32_t ze_kest_Utility_ConvertPcmFrom16BitTo32Bit(const uint16_t *pu16Ptr, uint32_t *pu32Dest,
                                                    uint32_t u32Count) {
  KEST_REQUIRE(pu16Ptr != nullptr, "pu16Ptr is NULL.\n");
  KEST_REQUIRE(pu32Dest != nullptr, "pu32Dest is NULL.\n");
  return Convert<kest::From16To32>(pu16Ptr, pu32Dest, u32Count);
}

uint32_t ze_kest_Utility_ConvertPcmFrom32BitTo16Bit(const uint32_t *pu32PtrSrc, uint16_t *pu16PtrDes,
                                                    uint32_t u32Count) {
  KEST_REQUIRE(pu32PtrSrc != nullptr, "pu32PtrSrc is NULL.\n");
  KEST_REQUIRE(pu16PtrDes != nullptr, "pu16PtrDes is NULL.\n");
  return Convert<kest::From32To16>(pu32PtrSrc, pu16PtrDes, u32Count);
}

uint32_t ze_kest_Utility_ConvertPcmFrom24BitTo32Bit(const uint8_t *pu8Ptr, uint32_t *pu32Ptr,
                                                    uint32_t u32Count) {
  KEST_REQUIRE(pu8Ptr != nullptr, "pu8Ptr is NULL.\n");
  KEST_REQUIRE(pu32Ptr != nullptr, "pu32Ptr is NULL.\n");
  return Convert<kest::From24To32>(pu8Ptr, pu32Ptr, u32Count);
}

uint32_t ze_kest_Utility_ConvertPcmFrom24LETo16Bit(const uint32_t *pu32Ptr, uint16_t *pu16Ptr,
                                                   uint32_t u32Count) {
  KEST_REQUIRE(pu32Ptr != nullptr, "pu32Ptr is NULL.\n");
  KEST_REQUIRE(pu16Ptr != nullptr, "pu16Ptr is NULL.\n");
  return Convert<kest::From24LeTo16>(pu32Ptr, pu16Ptr, u32Count);
}

uint32_t ze_kest_Utility_ConvertPcmFrom24LETo32Bit(const uint32_t *pu32Src, uint32_t *pu32Dest,
                                                   uint32_t u32Count) {
  KEST_REQUIRE(pu32Src != nullptr, "pu32Src is NULL.\n");
  KEST_REQUIRE(pu32Dest != nullptr, "pu32Dest is NULL.\n");
  return Convert<kest::From24LeTo32>(pu32Src, pu32Dest, u32Count);
}

uint32_t ze_kest_Utility_Convert16BitPcmTo32BitPcm(int32_t *ps32Dst, const int16_t *ps16Src,
                                                   uint32_t sztSamples) {
  KEST_REQUIRE(ps32Dst != nullptr, "ps32Dst is NULL.\n");
  KEST_REQUIRE(ps16Src != nullptr, "ps16Src is NULL.\n");
  return ConvertSome<kest::From16To32>(__func__, ps32Dst, ps16Src, sztSamples);
}

uint32_t ze_kest_Utility_Convert32BitPcmFromLow24BitToHigh24Bit(int32_t *ps32Src, uint32_t sztSamples) {
  KEST_REQUIRE(ps32Src != nullptr, "ps32Src is NULL.\n");
  return ConvertSome<kest::From24LeTo32>(__func__, ps32Src, ps32Src, sztSamples);
}

// Deliberate: the destination is not checked.
uint32_t ze_kest_Utility_Convert32BitPcmFromLow24BitTo16BitPcm(int16_t *ps16Dst, const int32_t *ps32Src,
                                                               uint32_t sztSamples) {
  KEST_REQUIRE(ps32Src != nullptr, "ps32Src is NULL.\n");
  return ConvertSome<kest::From24LeTo16>(__func__, ps16Dst, ps32Src, sztSamples);
}
