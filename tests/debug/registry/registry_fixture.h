// SPDX-License-Identifier: Apache-2.0
// A debug layer with a registry that is empty before and after every case.
#pragma once

#include <cstring>
#include <deque>

#include "debug/base/debug_mutex.h"
#include "debug/registry/registry.h"
#include "tests/support/library_test.h"

namespace kest::test {

class RegistryTest : public testing::Test {
 protected:
  ~RegistryTest() override {
    if (Head() != nullptr) _ZE_KEST_Debug_ReleaseDebugInfoList();
  }

  // Unchecked, like Entries: no other thread uses the registry meanwhile.
  KEST_UNCHECKED_LOCKS static ZE_KEST_DebugInfoNode_s *&Head() { return _pstKestDebugInfoList; }

  // Registers a pipeline; its filters come after it.
  void AddPipeline(const char *pszName, uint32_t u32Tid = 0) {
    ZE_KEST_Pipeline_s &pipeline = pipelines_.emplace_back();
    strcpy(pipeline.szName, pszName);
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_RegisterInfo(pszName, nullptr, u32Tid, "thread", nullptr));
  }

  // Registers a filter of the pipeline of that name, which need not be registered.
  ZE_KEST_Filter_s &AddFilter(const char *pszPipeline, const char *pszName,
                              ZE_KEST_DebugCallback pfnCallback = nullptr) {
    ZE_KEST_Filter_s &filter = filters_.emplace_back();
    strcpy(filter.szName, pszName);
    filter.pstParentPipeline = PipelineNamed(pszPipeline);
    EXPECT_EQ(ZE_KEST_OK, ze_kest_Debug_RegisterInfo(pszPipeline, &filter, 7, "worker", pfnCallback));
    return filter;
  }

  // The entries, "pipeline" or "pipeline:filter", in order.
  KEST_UNCHECKED_LOCKS static Texts Entries() {
    Texts entries;
    for (const ZE_KEST_DebugInfo_s &info : Registry()) {
      entries.push_back(std::string(info.szName) +
                        (info.pstFilter == nullptr ? "" : std::string(":") + info.pstFilter->szName));
    }
    return entries;
  }

  // What a command prints behind its echo, without the set-parameter command's remarks on lines passing by.
  static Texts PrintsOf(const char *pszLine, uint32_t u32Expected = ZE_KEST_OK) {
    const ReportCapture capture;
    EXPECT_EQ(u32Expected, ze_kest_Debug_SetParameter(pszLine)) << pszLine;
    Texts prints;
    for (const Report &report : capture.Reports()) {
      const bool bPassingBy =
          report.function == "_ZE_KEST_Debug_Cmd_SetParameter" && strncmp(pszLine, "kest_debug_set", 14) != 0;
      if (report.label == "<PRINT>" && !bPassingBy) prints.push_back(report.text);
    }
    if (prints.size() < 2) return {"no reply at all"};
    return {prints.begin() + 2, prints.end()};
  }

  // Whether the registry's mutex is held, as it must be around every call into a filter.
  static bool IsRegistryLocked() {
    const bool bLocked = pthread_mutex_trylock(&_stKestDebugMutex) == EBUSY;
    if (!bLocked) pthread_mutex_unlock(&_stKestDebugMutex);
    return bLocked;
  }

  DebugLayer layer_;

 private:
  ZE_KEST_Pipeline_s *PipelineNamed(const char *pszName) {
    for (ZE_KEST_Pipeline_s &pipeline : pipelines_) {
      if (strcmp(pipeline.szName, pszName) == 0) return &pipeline;
    }
    strcpy(pipelines_.emplace_back().szName, pszName);
    return &pipelines_.back();
  }

  std::deque<ZE_KEST_Pipeline_s> pipelines_;
  std::deque<ZE_KEST_Filter_s> filters_;
};

}  // namespace kest::test
