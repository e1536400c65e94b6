// SPDX-License-Identifier: Apache-2.0
#include "player/framework/registration.h"

#include <pthread.h>

#include "ze_kest/debug.h"
#include "ze_kest/utility.h"

#include "player/framework/filter_entries.h"

namespace kest::player {

// The library reports what it cannot register; playing goes on all the same.
Registration::Registration(const ZE_KEST_Pipeline_s &pipeline,
                           const std::vector<std::unique_ptr<Filter>> &filters,
                           const std::vector<std::string> &fedPipelines)
    : name_(pipeline.szName) {
  const auto tid = static_cast<uint32_t>(ze_kest_Utility_GetTid());
  char threadName[16] = "";
  pthread_getname_np(pthread_self(), threadName, sizeof(threadName));
  ze_kest_Debug_RegisterInfo(name_, nullptr, tid, threadName, nullptr);
  for (const auto &filter : filters) {
    ze_kest_Debug_RegisterInfo(name_, &filter->Record(), tid, threadName, RunFilterCommand);
  }
  for (const std::string &fed : fedPipelines) {
    ze_kest_Debug_ConnectPipeline(name_, fed.c_str());
  }
}

// Unregisters by the pipeline's name, which also removes its filters and connections.
Registration::~Registration() {
  ze_kest_Debug_UnRegisterInfo(name_, nullptr);
}

}  // namespace kest::player
