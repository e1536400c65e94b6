// SPDX-License-Identifier: Apache-2.0
#include <cstddef>

#include "ze_kest/utility.h"

namespace {

// The names lie in the tables themselves, which need no relocation then.
constexpr char kDecPlayType[][11] = {"DTV", "HDMI", "SPDIF", "MMTS", "MMAVI", "MMUNI", "TLV_PARSER"};

constexpr char kFilterDecType[][7] = {"DUMMY", "AC3P",   "AC4",   "AAC",   "MAT",  "DTS",  "DTSX",
                                      "XPCM",  "VORBIS", "FLAC",  "WMA",   "MPEG", "COOK", "GAAC",
                                      "DRA",   "AMRNB",  "AMRWB", "MPEGH", "OPUS", "ALAC", "C3DA"};

constexpr char kDecodeFormat[][9] = {"LPCM",   "AC3",     "EAC3",     "AAC",   "HEAAC",  "AC4",   "MAT",
                                     "TRUEHD", "MPEG",    "MPEGH",    "DRA",   "DTS",    "DTSHD", "DTSUHD",
                                     "MP3",    "MSADPCM", "IMAADPCM", "WMA",   "WMAPRO", "COOK",  "VORBIS",
                                     "ALAC",   "OPUS",    "AMRNB",    "AMRWB", "FLAC"};

// 0 is shown as "Not Connected", not as the enumerator's own "NON".
constexpr char kDigitalOutput[][14] = {"Not Connected", "PCM", "DD", "DDP", "MAT", "BYPASS", "DTS", "DTSHD"};

// Deliberate: the sixth type, "LC_L4", has no name here.
constexpr char kMpeghStreamType[][6] = {"MHM1", "MHA1", "BL_L3", "BL_L4", "LC_L3"};

template <size_t kCount, size_t kSize>
const char *NameIn(const char (&aszNames)[kCount][kSize], uint32_t u32Value) {
  return u32Value < kCount ? aszNames[u32Value] : "Unkown";  // deliberate spelling
}

}  // namespace

const char *ze_kest_Utility_DecPlayTypeEnumString(uint32_t u32Value) {
  return NameIn(kDecPlayType, u32Value);
}

const char *ze_kest_Utility_FilterDecTypeEnumString(uint32_t u32Value) {
  return NameIn(kFilterDecType, u32Value);
}

const char *ze_kest_Utility_DecodeFormatEnumString(uint32_t u32Value) {
  return NameIn(kDecodeFormat, u32Value);
}

const char *ze_kest_Utility_DigitalOutputEnumString(uint32_t u32Value) {
  return NameIn(kDigitalOutput, u32Value);
}

const char *ze_kest_Utility_MpeghStreamTypeEnumString(uint32_t u32Value) {
  return NameIn(kMpeghStreamType, u32Value);
}
