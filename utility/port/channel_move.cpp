// SPDX-License-Identifier: Apache-2.0
#include "utility/port/channel_move.h"

#include <cstring>

namespace kest {
namespace {

void ReadBytes(const ChannelBlock<const uint8_t, uint8_t> &stBlock, const RingPlan &stPlan) {
  memcpy(stBlock.pu8Linear, stBlock.pu8Ring + stPlan.sztStart, stPlan.stFirst.sztWhole);
  if (stPlan.stSecond.sztWhole == 0) return;
  memcpy(stBlock.pu8Linear + stPlan.stFirst.sztWhole, stBlock.pu8Ring, stPlan.stSecond.sztWhole);
}

void WriteBytes(const ChannelBlock<uint8_t, const uint8_t> &stBlock, const RingPlan &stPlan) {
  memcpy(stBlock.pu8Ring + stPlan.sztStart, stBlock.pu8Linear, stPlan.stFirst.sztWhole);
  if (stPlan.stSecond.sztWhole == 0) return;
  memcpy(stBlock.pu8Ring, stBlock.pu8Linear + stPlan.stFirst.sztWhole, stPlan.stSecond.sztWhole);
}

}  // namespace

constexpr MoverTable<RingReader> kReadAsIs = {ReadBytes, MoveBlock<ReadAsIs<2>>, MoveBlock<ReadAsIs<3>>,
                                              MoveBlock<ReadAsIs<4>>, 0};
constexpr MoverTable<RingReader> kReadTo16 = {ReadBytes, MoveBlock<ReadAsIs<2>>, nullptr,
                                              MoveBlock<ReadShifted<4, 2, -16>>, 2};
constexpr MoverTable<RingReader> kReadTo24Le = {ReadBytes, MoveBlock<ReadShifted<2, 4, 8>>, nullptr,
                                                MoveBlock<ReadShifted<4, 4, -8>>, 4};
constexpr MoverTable<RingReader> kReadTo32 = {ReadBytes, MoveBlock<ReadShifted<2, 4, 16>>, nullptr,
                                              MoveBlock<ReadAsIs<4>>, 4};
constexpr MoverTable<RingWriter> kWriteAsIs = {WriteBytes, MoveBlock<WriteAsIs<2>>, MoveBlock<WriteAsIs<3>>,
                                               MoveBlock<WriteAsIs<4>>, 0};

}  // namespace kest
