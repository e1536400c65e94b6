// SPDX-License-Identifier: Apache-2.0
#include "debug/registry/sad.h"

#include "ze_kest/debug.h"

#include "utility/core/report.h"

namespace kest {
namespace {

// Audio format codes of the entries.
enum Format { kAc3 = 2, kAac = 6, kDts = 7, kEac3 = 10, kDtsHd = 11, kMat = 12 };

constexpr size_t kEntrySize = 24;
constexpr size_t kByte3Offset = 16;

uint8_t _au8KestSadInfo[ZE_KEST_SAD_SIZE] = {};

unsigned int ByteAt(Format format, size_t sztOffset) {
  return Load(_au8KestSadInfo[static_cast<size_t>(format) * kEntrySize + sztOffset]);
}

unsigned int Support(Format format) {
  return ByteAt(format, 0);
}

// Stored as a little-endian word.
unsigned int Byte3(Format format) {
  unsigned int u32Word = 0;
  for (size_t i = 0; i < 4; ++i)
    u32Word |= ByteAt(format, kByte3Offset + i) << (8 * i);
  return u32Word;
}

}  // namespace

void _ZE_KEST_Debug_PrintSadInfo() {
  KEST_PRINT("[EDID_Arc][Cap] dd:%u, ddp:%u(atmos:%x), dts:%u, aac:%u, mat(truhd):%u, dtshd:%u\n",
             Support(kAc3), Support(kEac3), Byte3(kEac3), Support(kDts), Support(kAac), Support(kMat),
             Support(kDtsHd));
  KEST_PRINT("[EDID_Arc][Byte3] dd:%x, ddp:%x, dts:%x, aac:%x, mat(truhd):%x, dtshd:%x\n", Byte3(kAc3),
             Byte3(kEac3), Byte3(kDts), Byte3(kAac), Byte3(kMat), Byte3(kDtsHd));
}

}  // namespace kest

// Without a lock: a status report printed meanwhile may mix two blocks. Deliberate: always ZE_KEST_OK.
uint32_t ze_kest_Debug_SetSAD(const uint8_t *pu8Sad, int32_t s32Size) {
  KEST_REQUIRE_OR(pu8Sad != nullptr, ZE_KEST_OK, "pu8Sad is NULL.\n");
  if (s32Size != ZE_KEST_SAD_SIZE) {
    KEST_ERR("Error!! Size %d of not match with expect %d\n", s32Size, ZE_KEST_SAD_SIZE);
    return ZE_KEST_OK;
  }
  for (size_t i = 0; i < ZE_KEST_SAD_SIZE; ++i)
    kest::Store(kest::_au8KestSadInfo[i], pu8Sad[i]);
  return ZE_KEST_OK;
}
