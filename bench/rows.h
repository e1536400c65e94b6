// SPDX-License-Identifier: Apache-2.0
// Each function adds its rows to the table.
#pragma once

namespace kest::bench {

void AddInterleaveRows();
void AddPortRows();
void AddRingRows();
void AddByteRingRows();
void AddWidthRows();
void AddCycleRows();
void AddPortWalkRows();
void AddLogRows();
void AddCommandRows();
void AddJsonRows();

}  // namespace kest::bench
