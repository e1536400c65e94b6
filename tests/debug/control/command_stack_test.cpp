// SPDX-License-Identifier: Apache-2.0
// How much of the command thread's stack the commands take.
#include <algorithm>
#include <iostream>

#include <pthread.h>
#include <sys/mman.h>

#include "tests/debug/registry/registry_fixture.h"

namespace kest::test {
namespace {

constexpr size_t kStackBytes = 65536;
constexpr uint8_t kUntouched = 0xA5;

// A stack that shows how deep a thread has come.
class PaintedStack {
 public:
  PaintedStack()
      : pv_(mmap(nullptr, kStackBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1,
                 0)) {
    memset(pv_, kUntouched, kStackBytes);
  }
  ~PaintedStack() { munmap(pv_, kStackBytes); }
  PaintedStack(const PaintedStack &) = delete;
  PaintedStack &operator=(const PaintedStack &) = delete;

  // Gives the bytes that the function and its thread have touched.
  size_t Run(void *(*pfn)(void *), void *pv) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    EXPECT_EQ(0, pthread_attr_setstack(&attributes, pv_, kStackBytes));
    pthread_t thread;
    EXPECT_EQ(0, pthread_create(&thread, &attributes, pfn, pv));
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    const auto *pu8 = static_cast<const uint8_t *>(pv_);
    return kStackBytes -
           static_cast<size_t>(
               std::find_if(pu8, pu8 + kStackBytes, [](uint8_t u8) { return u8 != kUntouched; }) - pu8);
  }

 private:
  void *pv_;
};

// The commands as the help shows them, and those that it leaves out.
Texts EveryCommand() {
  const ReportCapture capture;
  ze_kest_Debug_SetParameter("help");
  Texts lines = LinesOf(
      "kest_debug_list=status;kest_debug_list=parameter;kest_debug_set_parameter=pipe,filter,Gain,1,4;"
      "kest_debug_send_cmd_by_text=pipe,filter,state;kest_filter_debug_level=filter,all;"
      "kest_latency_config=a,b,c,d;kest_dump_filter_io=pipe,filter;kest_process_status=filter,a:b;"
      "kest_send_test_tone=a,b:1;kest_calpcmlev=a,b,1;kest_calculate_data_rate=a,b:1,2;"
      "kest_json_parser=" KEST_DEBUG_DIR "x.json;no command at all",
      ';');
  for (const std::string &text : capture.Texts("<PRINT>")) {
    if (text.rfind("echo ", 0) == 0) lines.push_back(text.substr(5, text.rfind(" >D") - 5));
  }
  return lines;
}

using CommandStack = RegistryTest;

TEST_F(CommandStack, IsNotHalfUsedByAnyCommand) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "a sanitizer makes every frame larger";
#endif
  AddPipeline("pipe");
  AddFilter("pipe", "filter");
  WriteFile(KEST_DEBUG_DIR "x.json", "{\"a\": [1, 2, {\"b\": \"c\"}]}");
  size_t sztDeepest = 0;
  const Texts lines = EveryCommand();
  EXPECT_GT(lines.size(), 60u);
  const ReportCapture capture;
  for (const std::string &line : lines) {
    const size_t szt = PaintedStack().Run(
        [](void *pv) -> void * {
          ze_kest_Debug_SetParameter(static_cast<const char *>(pv));
          return nullptr;
        },
        const_cast<char *>(line.c_str()));
    EXPECT_LT(szt, kStackBytes / 2) << line;
    sztDeepest = std::max(sztDeepest, szt);
  }
  std::cout << "deepest: " << sztDeepest << " of " << kStackBytes << " bytes" << std::endl;
  ze_kest_Debug_SetParameter("kest_debug_filter_io=release");
}

}  // namespace
}  // namespace kest::test
