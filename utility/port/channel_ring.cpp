// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include "ze_kest/port.h"

#include "utility/port/channel_move.h"

namespace {

template <typename Ring, typename Linear>
void MovePlanned(const kest::MoverTable<kest::Mover<Ring, Linear>> &stTable, Ring *pu8RingBuf, Ring *pu8Pos,
                 uint32_t sztRingSize, Linear *pu8Data, uint64_t u64Bytes, uint32_t u32Stride,
                 uint32_t u32BytesPerSample) {
  const auto stWay = stTable.For(u32BytesPerSample, u32Stride);
  // A position before the ring becomes a huge offset, for which the plan is empty.
  const size_t sztStart = static_cast<size_t>(pu8Pos - pu8RingBuf);
  stWay.pfnMove({pu8RingBuf, 0, pu8Data, u32Stride, 1},
                kest::PlanRing(sztRingSize, sztStart, u64Bytes, stWay.u32Unit));
}

void CopyBytes(const uint8_t *pu8Ring, uint8_t *pu8Linear, size_t sztBytes) {
  memcpy(pu8Linear, pu8Ring, sztBytes);
}

void CopyBytes(uint8_t *pu8Ring, const uint8_t *pu8Linear, size_t sztBytes) {
  memcpy(pu8Ring, pu8Linear, sztBytes);
}

// Fast path, inlined to save instructions: a contiguous transfer that does not wrap is a plain copy.
template <typename Ring, typename Linear>
__attribute__((always_inline)) inline uint32_t MoveRingData(
    const kest::MoverTable<kest::Mover<Ring, Linear>> &stTable, Ring *pu8RingBuf, Ring *pu8Pos,
    uint32_t sztRingSize, Linear *pu8Data, uint64_t u64Bytes, uint32_t u32Stride,
    uint32_t u32BytesPerSample) {
  const size_t sztStart = static_cast<size_t>(pu8Pos - pu8RingBuf);
  if (u32Stride == 1 && sztStart <= sztRingSize && u64Bytes <= sztRingSize - sztStart) {
    CopyBytes(pu8Pos, pu8Data, static_cast<size_t>(u64Bytes));
  } else {
    MovePlanned(stTable, pu8RingBuf, pu8Pos, sztRingSize, pu8Data, u64Bytes, u32Stride, u32BytesPerSample);
  }
  return ZE_KEST_OK;
}

}  // namespace

uint32_t ze_kest_Utility_WriteDataToNonInterleaveRingBuffer(uint8_t *pu8RingBuf, uint8_t *pu8Pos,
                                                            uint32_t sztRingSize, const uint8_t *pu8Data,
                                                            uint64_t u64Bytes, uint32_t u32Stride,
                                                            uint32_t u32BytesPerSample) {
  return MoveRingData(kest::kWriteAsIs, pu8RingBuf, pu8Pos, sztRingSize, pu8Data, u64Bytes, u32Stride,
                      u32BytesPerSample);
}

uint32_t ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer(const uint8_t *pu8RingBuf, const uint8_t *pu8Pos,
                                                             uint32_t sztRingSize, uint8_t *pu8Data,
                                                             uint64_t u64Bytes, uint32_t u32Stride,
                                                             uint32_t u32BytesPerSample) {
  return MoveRingData(kest::kReadAsIs, pu8RingBuf, pu8Pos, sztRingSize, pu8Data, u64Bytes, u32Stride,
                      u32BytesPerSample);
}

uint32_t ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To16Bit(const uint8_t *pu8RingBuf,
                                                                     const uint8_t *pu8Pos,
                                                                     uint32_t sztRingSize, uint8_t *pu8Data,
                                                                     uint64_t u64Bytes, uint32_t u32Stride,
                                                                     uint32_t u32BytesPerSample) {
  return MoveRingData(kest::kReadTo16, pu8RingBuf, pu8Pos, sztRingSize, pu8Data, u64Bytes, u32Stride,
                      u32BytesPerSample);
}

uint32_t ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To24Le(const uint8_t *pu8RingBuf,
                                                                    const uint8_t *pu8Pos,
                                                                    uint32_t sztRingSize, uint8_t *pu8Data,
                                                                    uint64_t u64Bytes, uint32_t u32Stride,
                                                                    uint32_t u32BytesPerSample) {
  return MoveRingData(kest::kReadTo24Le, pu8RingBuf, pu8Pos, sztRingSize, pu8Data, u64Bytes, u32Stride,
                      u32BytesPerSample);
}

uint32_t ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To32Bit(const uint8_t *pu8RingBuf,
                                                                     const uint8_t *pu8Pos,
                                                                     uint32_t sztRingSize, uint8_t *pu8Data,
                                                                     uint64_t u64Bytes, uint32_t u32Stride,
                                                                     uint32_t u32BytesPerSample) {
  return MoveRingData(kest::kReadTo32, pu8RingBuf, pu8Pos, sztRingSize, pu8Data, u64Bytes, u32Stride,
                      u32BytesPerSample);
}
