// SPDX-License-Identifier: Apache-2.0
// kest-bench [--quick] [--benchmark_...] [TEXT...]: prints the table, or only the rows that contain one of
// the texts.
#include <cstdio>

#include <android/log.h>
#include <unistd.h>

#include "ze_kest/debug.h"

#include "bench/rows.h"
#include "bench/table.h"

int main(int s32Args, char **apszArgs) {
  if (access(KEST_DEBUG_DIR, W_OK) != 0) {
    perror(KEST_DEBUG_DIR);
    return 1;
  }
  // Android log messages are formatted but then dropped; a host without a log daemon would print them.
  __android_log_set_logger([](const __android_logger_data *, const char *) {});
  ze_kest_Debug_Init();
  kest::bench::AddInterleaveRows();
  kest::bench::AddPortRows();
  kest::bench::AddRingRows();
  kest::bench::AddWidthRows();
  kest::bench::AddByteRingRows();
  kest::bench::AddCycleRows();
  kest::bench::AddPortWalkRows();
  kest::bench::AddLogRows();
  kest::bench::AddCommandRows();
  kest::bench::AddJsonRows();
  return kest::bench::RunRows(s32Args, apszArgs);
}
