// SPDX-License-Identifier: Apache-2.0
#include "bench/block.h"
#include "bench/rows.h"

namespace kest::bench {
namespace {

using Convert = void (*)(const void *pvSrc, void *pvDst, size_t sztSamples);

template <typename Src, typename Dst, uint32_t (*kConvert)(const Src *, Dst *, uint32_t)>
void FromTo(const void *pvSrc, void *pvDst, size_t sztSamples) {
  kConvert(static_cast<const Src *>(pvSrc), static_cast<Dst *>(pvDst), static_cast<uint32_t>(sztSamples));
}

template <typename Src, typename Dst, uint32_t (*kConvert)(Dst *, const Src *, uint32_t)>
void ToFrom(const void *pvSrc, void *pvDst, size_t sztSamples) {
  kConvert(static_cast<Dst *>(pvDst), static_cast<const Src *>(pvSrc), static_cast<uint32_t>(sztSamples));
}

void InPlaceToHigh24(const void * /*pvSrc*/, void *pvDst, size_t sztSamples) {
  ze_kest_Utility_Convert32BitPcmFromLow24BitToHigh24Bit(static_cast<int32_t *>(pvDst),
                                                         static_cast<uint32_t>(sztSamples));
}

void PlainInPlaceToHigh24(const void * /*pvSrc*/, void *pvDst, size_t sztSamples) {
  Plain24LeTo32(pvDst, pvDst, sztSamples);
}

struct Conversion {
  const char *pszName;
  Convert pfnConvert;
  Convert pfnPlain;
  size_t sztWiderBytes;
  AVSampleFormat eIn;
  AVSampleFormat eOut;
};

constexpr AVSampleFormat kNone = AV_SAMPLE_FMT_NONE;

constexpr Conversion kConversions[] = {
    {"convert 16 to 32", FromTo<uint16_t, uint32_t, ze_kest_Utility_ConvertPcmFrom16BitTo32Bit>, Plain16To32,
     4, AV_SAMPLE_FMT_S16, AV_SAMPLE_FMT_S32},
    {"convert 32 to 16", FromTo<uint32_t, uint16_t, ze_kest_Utility_ConvertPcmFrom32BitTo16Bit>, Plain32To16,
     4, AV_SAMPLE_FMT_S32, AV_SAMPLE_FMT_S16},
    {"convert 16 to 24 packed", FromTo<uint16_t, uint8_t, ze_kest_Utility_ConvertPcmFrom16BitTo24Bit>,
     Plain16To24, 3, kNone, kNone},
    {"convert 24 packed to 16", FromTo<uint8_t, uint16_t, ze_kest_Utility_ConvertPcmFrom24BitTo16Bit>,
     Plain24To16, 3, kNone, kNone},
    {"convert 24 packed to 32", FromTo<uint8_t, uint32_t, ze_kest_Utility_ConvertPcmFrom24BitTo32Bit>,
     Plain24To32, 4, kNone, kNone},
    {"convert 24 in 32 to 16", FromTo<uint32_t, uint16_t, ze_kest_Utility_ConvertPcmFrom24LETo16Bit>,
     Plain24LeTo16, 4, kNone, kNone},
    {"convert 24 in 32 to 32", FromTo<uint32_t, uint32_t, ze_kest_Utility_ConvertPcmFrom24LETo32Bit>,
     Plain24LeTo32, 4, kNone, kNone},
    {"convert 16 to 32, signed", ToFrom<int16_t, int32_t, ze_kest_Utility_Convert16BitPcmTo32BitPcm>,
     Plain16To32, 4, AV_SAMPLE_FMT_S16, AV_SAMPLE_FMT_S32},
    {"convert 24 in 32 to 32, in place", InPlaceToHigh24, PlainInPlaceToHigh24, 4, kNone, kNone},
    {"convert 24 in 32 to 16, signed",
     ToFrom<int32_t, int16_t, ze_kest_Utility_Convert32BitPcmFromLow24BitTo16BitPcm>, Plain24LeTo16, 4, kNone,
     kNone},
};

// Converts as many samples as a block has, as one linear run.
void AddConversion(const Conversion &conversion, Shape shape) {
  const size_t sztSamples = size_t{shape.u32Channels} * shape.u32Frames;
  Row row(conversion.pszName, shape);
  const auto memory =
      std::make_shared<std::pair<Pages, Pages>>(sztSamples * sizeof(uint32_t), sztSamples * sizeof(uint32_t));
  uint8_t *const pu8Src = memory->first.One();
  uint8_t *const pu8Dst = memory->second.Other();
  for (const auto &[eWho, pfnConvert] :
       {std::pair{Who::kLibrary, conversion.pfnConvert}, std::pair{Who::kPlain, conversion.pfnPlain}}) {
    row.Add("", eWho, [memory, pu8Src, pu8Dst, sztSamples, pfnConvert = pfnConvert] {
      pfnConvert(pu8Src, pu8Dst, sztSamples);
    });
  }
  const size_t sztBytes = sztSamples * conversion.sztWiderBytes;
  row.Add("", Who::kLimit, [memory, pu8Src, pu8Dst, sztBytes] { memcpy(pu8Dst, pu8Src, sztBytes); });
  if (conversion.eIn == kNone) return;
  const auto resampler = std::make_shared<Resampler>(conversion.eIn, conversion.eOut, 1);
  row.Add("", Who::kSwresample, [memory, pu8Src, pu8Dst, sztSamples, resampler] {
    resampler->Convert({pu8Dst}, {pu8Src}, static_cast<uint32_t>(sztSamples));
  });
}

}  // namespace

void AddWidthRows() {
  for (const Conversion &conversion : kConversions)
    ForEachShape([&](Shape shape) { AddConversion(conversion, shape); });
}

}  // namespace kest::bench
