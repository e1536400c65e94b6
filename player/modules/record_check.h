// SPDX-License-Identifier: Apache-2.0
// Whether the records of a module keep to the interface.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>

#include "ze_kest/module.h"

namespace kest::player {

// A copy of a module's record in this host's size: what lies beyond the record's own size is 0.
template <typename Record>
Record Known(const Record &own) {
  Record record{};
  std::memcpy(&record, &own, std::min<size_t>(own.u32Size, sizeof(record)));
  return record;
}

// What is wrong with a known record, for the module's author to read; empty when nothing is.
std::string FaultOf(const ZE_KEST_ModuleFilter_s &filter);
std::string FaultOf(const ZE_KEST_ModuleParameter_s &parameter);
// The parameters of an instance together with the entries of its kind.
std::string FaultOf(const ZE_KEST_ModuleFilter_s &filter, const ZE_KEST_ModuleParameter_s &parameter);

bool IsName(const char *text);

}  // namespace kest::player
