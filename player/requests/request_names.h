// SPDX-License-Identifier: Apache-2.0
// Whom a request names. The command thread writes the names while the pipelines read them.
#pragma once

#include "ze_kest/model.h"

namespace kest::player {

using NameField = char[ZE_KEST_NAME_SIZE];

// Whole names count. An empty field means every name.
bool IsNamed(const NameField &field, const char *name);
bool IsNamed(const NameField &pipelineField, const NameField &filterField, const ZE_KEST_Filter_s &filter);

}  // namespace kest::player
