// SPDX-License-Identifier: Apache-2.0
#include <csignal>
#include <cstdlib>
#include <iostream>

#include <gtest/gtest.h>

// Exhausted memory is an answer, not an error of the program under test.
extern "C" const char *__asan_default_options() {
  return "allocator_may_return_null=1";
}
extern "C" const char *__tsan_default_options() {
  return "allocator_may_return_null=1";
}

int main(int argc, char **argv) {
  testing::InitGoogleTest(&argc, argv);
  const bool bListing = testing::GTEST_FLAG(list_tests);
  if (!bListing && getenv("KEST_TEST_NAMESPACE") == nullptr) {
    std::cerr << argv[0] << " writes below /mnt: run it through ctest, or as\n"
              << "  tests/support/in_namespace.sh " << argv[0] << "\n";
    return 1;
  }
  signal(SIGPIPE, SIG_IGN);  // a pipe whose reader has just gone is no failure of a test
  return RUN_ALL_TESTS();
}
