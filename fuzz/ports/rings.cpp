// SPDX-License-Identifier: Apache-2.0
// Rings without ports: copies of bytes, and of one channel to or from a linear buffer.
#include "fuzz/ports/check.h"

namespace kest::fuzz {
namespace {

using Reader = uint32_t (*)(const uint8_t *, const uint8_t *, uint32_t, uint8_t *, uint64_t, uint32_t,
                            uint32_t);

struct ChannelReader {
  Reader pfnRead;
  uint32_t u32DstBytes;  // bytes of a sample; 0: as in the ring
  int as32Shift[5];      // indexed by the width in the ring
};

constexpr ChannelReader kReaders[] = {
    {ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer, 0, {}},
    {ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To16Bit, 2, {0, 0, 0, 0, -16}},
    {ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To24Le, 4, {0, 0, 8, 0, -8}},
    {ze_kest_Utility_ReadDataFromNonInterleaveRingBuffer_To32Bit, 4, {0, 0, 16, 0, 0}},
};

// A transfer between a channel's ring and a linear buffer.
struct Transfer {
  Bytes ring;
  uint32_t u32Position;
  uint32_t u32Bytes;
  uint32_t u32Stride;
  uint32_t u32Width;

  // Number of samples moved; a partial one counts.
  [[nodiscard]] uint32_t Samples() const { return (u32Bytes + u32Width - 1) / u32Width; }
  [[nodiscard]] size_t LinearSize(uint32_t u32LinearBytes) const {
    if (u32Stride == 1) return u32Bytes;
    return Samples() == 0 ? 0 : (size_t{Samples() - 1} * u32Stride + 1) * u32LinearBytes;
  }
};

Transfer DrawTransfer(Run &run) {
  Transfer transfer = {};
  transfer.u32Width = run.Draw(1, 5);
  transfer.u32Stride = run.Draw(0, 3) == 0 ? 1 : run.Draw(0, 12);
  const uint32_t u32Samples = run.Draw(1, 64);
  transfer.ring = Noise(size_t{u32Samples} * transfer.u32Width, 11);
  transfer.u32Position = run.Draw(0, u32Samples - 1) * transfer.u32Width;
  transfer.u32Bytes = run.Draw(0, u32Samples * transfer.u32Width);
  return transfer;
}

bool IsMoved(const Transfer &transfer, bool bAnyWidth) {
  const uint32_t w = transfer.u32Width;
  return w == 2 || w == 4 || (w == 3 && bAnyWidth);
}

void CheckRead(Run &run, Transfer &transfer) {
  const ChannelReader &reader = kReaders[run.Draw(0, 3)];
  const uint32_t w = transfer.u32Width;
  const uint32_t u32DstBytes = reader.u32DstBytes == 0 ? w : reader.u32DstBytes;
  Bytes dst = Noise(transfer.LinearSize(u32DstBytes), 12);
  Bytes expected = dst;
  const size_t sztRing = transfer.ring.size();
  if (transfer.u32Stride == 1) {
    for (uint32_t i = 0; i < transfer.u32Bytes; ++i)
      expected[i] = transfer.ring[(transfer.u32Position + i) % sztRing];
  } else if (IsMoved(transfer, reader.u32DstBytes == 0)) {
    for (uint32_t i = 0; i < transfer.Samples(); ++i) {
      Convert(&expected[size_t{i} * transfer.u32Stride * u32DstBytes], u32DstBytes,
              &transfer.ring[(transfer.u32Position + i * w) % sztRing], w, w < 5 ? reader.as32Shift[w] : 0);
    }
  }
  reader.pfnRead(transfer.ring.data(), transfer.ring.data() + transfer.u32Position,
                 static_cast<uint32_t>(sztRing), dst.data(), transfer.u32Bytes, transfer.u32Stride, w);
  ExpectBytes(expected, dst, "a channel read");
}

void CheckWrite(Transfer &transfer) {
  const uint32_t w = transfer.u32Width;
  const Bytes src = Noise(transfer.LinearSize(w), 13);
  Bytes expected = transfer.ring;
  const size_t sztRing = expected.size();
  if (transfer.u32Stride == 1) {
    for (uint32_t i = 0; i < transfer.u32Bytes; ++i)
      expected[(transfer.u32Position + i) % sztRing] = src[i];
  } else if (IsMoved(transfer, true)) {
    for (uint32_t i = 0; i < transfer.Samples(); ++i) {
      CopyBytes(&expected[(transfer.u32Position + i * w) % sztRing], &src[size_t{i} * transfer.u32Stride * w],
                w);
    }
  }
  ze_kest_Utility_WriteDataToNonInterleaveRingBuffer(
      transfer.ring.data(), transfer.ring.data() + transfer.u32Position, static_cast<uint32_t>(sztRing),
      src.data(), transfer.u32Bytes, transfer.u32Stride, w);
  ExpectBytes(expected, transfer.ring, "a channel write");
}

struct Place {
  uint32_t u32Size;
  uint32_t u32Offset;
  uint32_t u32Advance;
};

Place DrawPlace(Run &run) {
  const uint32_t u32Size = run.Draw(1, 100);
  const uint32_t u32Offset = run.Draw(0, u32Size - 1);
  return {u32Size, u32Offset, run.Draw(0, u32Size)};
}

// Arbitrary positions and sizes: only memory safety is checked.
void CopyAnyhow(Run &run, const Place &to, const Place &from) {
  Bytes dst = Noise(to.u32Size, 14);
  const Bytes src = Noise(from.u32Size, 15);
  ze_kest_Utility_CopyFromRingToRingBuffer(dst.data(), to.u32Size, run.bytes.ConsumeIntegral<uint32_t>(),
                                           to.u32Advance, src.data(), from.u32Size, from.u32Offset,
                                           run.bytes.ConsumeIntegral<uint32_t>(), run.Draw(0, 300));
}

}  // namespace

void CheckChannelRing(Run &run) {
  Transfer transfer = DrawTransfer(run);
  if (run.bytes.ConsumeBool()) {
    CheckRead(run, transfer);
  } else {
    CheckWrite(transfer);
  }
}

void CheckByteRings(Run &run) {
  const Place to = DrawPlace(run);
  const Place from = DrawPlace(run);
  if (!run.bConsistent) return CopyAnyhow(run, to, from);
  const uint32_t n = run.Draw(0, std::min(to.u32Size, from.u32Size));
  const Bytes src = Noise(from.u32Size, 15);
  Bytes ring = Noise(to.u32Size, 14);
  Bytes linear = Noise(n, 16);
  Bytes expectedRing = ring;
  Bytes expectedLinear = linear;
  for (uint32_t i = 0; i < n; ++i) {
    const uint8_t u8Byte = src[(from.u32Offset + from.u32Advance + i) % from.u32Size];
    expectedRing[(to.u32Offset + to.u32Advance + i) % to.u32Size] = u8Byte;
    expectedLinear[i] = u8Byte;
  }
  ze_kest_Utility_CopyFromRingToRingBuffer(ring.data(), to.u32Size, to.u32Offset, to.u32Advance, src.data(),
                                           from.u32Size, from.u32Offset, from.u32Advance, n);
  ExpectBytes(expectedRing, ring, "ring to ring");
  ze_kest_Utility_CopyFromRingToNonRingBuffer(linear.data(), src.data(), from.u32Size, from.u32Offset,
                                              from.u32Advance, n);
  ExpectBytes(expectedLinear, linear, "ring to linear buffer");
}

}  // namespace kest::fuzz
