// SPDX-License-Identifier: Apache-2.0
#include "player/modules/module_filter.h"

#include <algorithm>
#include <cstring>

#include "ze_kest/debug.h"
#include "ze_kest/utility.h"

#include "player/base/relaxed.h"
#include "player/base/text_list.h"
#include "player/framework/parameter_text.h"
#include "player/modules/module_error.h"
#include "player/modules/parameter_value.h"

namespace kest::player {
namespace {

// So long may a filter stand still while it could work. Then it never will, and the run would never end.
constexpr uint32_t kMostIdleTurns = 1000;

bool IsReadOnly(const ZE_KEST_ModuleParameter_s &parameter) {
  return (parameter.u32Flags & ZE_KEST_MODULE_READ_ONLY) != 0;
}

}  // namespace

ModuleFilter::ModuleFilter(const ModuleFilterKind &kind, const FilterLayout &layout, const PcmFormat &format)
    : Filter(kind, format, layout.name),
      config_(layout.config),
      instance_(*kind.module, {format, kCycleFrames, layout.config, layout.directory}) {
  Record().pszConfig = config_.c_str();
  DescribeParameters();
  for (const GivenParameter &given : layout.parameters) {
    SetGiven(given);
  }
}

void ModuleFilter::DescribeParameters() {
  const auto get = [](const Filter &filter, uint32_t index, void *value) {
    const int32_t number = static_cast<const ModuleFilter &>(filter).instance_.Get(index);
    std::memcpy(value, &number, sizeof(number));
  };
  const auto set = [](Filter &filter, uint32_t index, const void *value) {
    int32_t number = 0;
    std::memcpy(&number, value, sizeof(number));
    static_cast<ModuleFilter &>(filter).instance_.Set(index, number);
  };
  const auto &parameters = instance_.Parameters();
  rows_.reserve(parameters.size());
  for (const ZE_KEST_ModuleParameter_s &parameter : parameters) {
    Parameter row{parameter.pszName,
                  parameter.pszDescription,
                  RangeOf(parameter),
                  sizeof(int32_t),
                  get,
                  set,
                  static_cast<uint32_t>(rows_.size())};
    if (IsReadOnly(parameter)) row.set = nullptr;
    rows_.push_back(row);
  }
}

void ModuleFilter::SetGiven(const GivenParameter &given) {
  const auto &parameters = instance_.Parameters();
  const auto parameter = std::find_if(parameters.begin(), parameters.end(),
                                      [&](const auto &row) { return given.name == row.pszName; });
  if (parameter == parameters.end()) {
    const std::string known = ListNames(parameters, [](const auto &row) { return row.pszName; });
    throw PlayerError(given.place + ": unknown parameter; known: " + (known.empty() ? "none" : known));
  }
  if (IsReadOnly(*parameter)) throw PlayerError(given.place + ": it can only be read");
  const auto value = ParseValue(given.value, *parameter);
  if (!value) {
    throw PlayerError(given.place + " is " + given.value + "; a number from " +
                      RangeText(RangeOf(*parameter)) + ", with as many decimals at most, is needed");
  }
  instance_.Set(static_cast<size_t>(parameter - parameters.begin()), *value);
}

void ModuleFilter::Process() {
  CountOverrun();
  instance_.Process(Record(), UpstreamEnded());
  KeepWithinRings();
  const bool forwardsItself = (instance_.Kind().record.u32Flags & ZE_KEST_MODULE_FORWARDS_METADATA) != 0;
  if (!forwardsItself) ForwardMetadata(Record().apstInPort[0]->stPcm.sztPcmReadSize);
  if (UpstreamEnded()) pending_ = instance_.Pending();
  CheckThatItMoves();
}

bool ModuleFilter::IsComplete() const {
  return Filter::IsComplete() && pending_ == 0;
}

// A filter that accounts for more than there is must not break the rings of its neighbours.
void ModuleFilter::KeepWithinRings() {
  ZE_KEST_Port_s &input = *Record().apstInPort[0];
  ZE_KEST_Port_s &output = *Record().apstOutPort[0];
  KeepWithin(input.stPcm.sztPcmReadSize, input.stPcm.sztPcmLevel, "samples than it had");
  KeepWithin(output.stPcm.sztPcmWriteSize, output.stPcm.sztPcmSpace, "samples than it had room for");
  KeepWithin(input.stMeta.sztReadSize, input.stMeta.sztLevel, "bytes of metadata than it had");
  KeepWithin(output.stMeta.sztWriteSize, output.stMeta.sztSpace, "bytes of metadata than it had room for");
  KeepWholeBlocks();
}

void ModuleFilter::KeepWithin(uint32_t &moved, uint32_t limit, const char *what) {
  if (moved <= limit) return;
  Complain(std::string("accounts for more ") + what + ": " + std::to_string(moved) + ", " +
           std::to_string(limit));
  StoreRelaxed(moved, limit);
}

// The other filters go through the metadata from block to block: behind a wrong one they would find none.
void ModuleFilter::KeepWholeBlocks() {
  uint32_t &read = Record().apstInPort[0]->stMeta.sztReadSize;
  const uint32_t partOfBlock = read % kMetadataBlockBytes;
  if (partOfBlock == 0 && WroteWholeBlocks()) return;
  Complain("moves metadata that is not in whole blocks; it is dropped");
  StoreRelaxed(read, read - partOfBlock);
  StoreRelaxed(Record().apstOutPort[0]->stMeta.sztWriteSize, 0u);
}

bool ModuleFilter::WroteWholeBlocks() const {
  const ZE_KEST_DataBuffer_s &ring = Record().apstOutPort[0]->stMeta;
  for (uint32_t at = 0; at < ring.sztWriteSize; at += kMetadataBlockBytes) {
    MetadataBlock block{};
    ze_kest_Utility_CopyFromRingToNonRingBuffer(reinterpret_cast<uint8_t *>(&block), ring.pu8Buf,
                                                ring.sztSize, ring.sztReadOffset, ring.sztLevel + at,
                                                kMetadataBlockBytes);
    if (block.payloadLength != kMetadataPayloadBytes) return false;
  }
  return ring.sztWriteSize % kMetadataBlockBytes == 0;
}

// Once: what is wrong in one turn is wrong in the next ones too.
void ModuleFilter::Complain(const std::string &fault) {
  if (!hasComplained_) {
    ze_kest_Debug_Log(ZE_KEST_LEVEL_ERR, "%s %s %s\n", Record().pstParentPipeline->szName, Record().szName,
                      fault.c_str());
  }
  hasComplained_ = true;
}

// Samples wait for it, there is room for them, and nothing moves.
void ModuleFilter::CheckThatItMoves() {
  const ZE_KEST_PcmBuffer_s &input = Record().apstInPort[0]->stPcm;
  const ZE_KEST_PcmBuffer_s &output = Record().apstOutPort[0]->stPcm;
  const bool isDue = UpstreamEnded() ? input.sztPcmLevel > 0 || pending_ > 0 : input.sztPcmSpace == 0;
  const bool moves = input.sztPcmReadSize > 0 || output.sztPcmWriteSize > 0;
  idleTurns_ = isDue && !moves && output.sztPcmSpace > 0 ? idleTurns_ + 1 : 0;
  if (idleTurns_ < kMostIdleTurns) return;
  throw ModuleError(instance_.Kind().module->Path(),
                    std::string(Record().szName) + " stands still: it moved nothing in " +
                        std::to_string(kMostIdleTurns) + " turns, with " + std::to_string(input.sztPcmLevel) +
                        " samples in its input and " + std::to_string(pending_) + " pending");
}

}  // namespace kest::player
