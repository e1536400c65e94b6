// SPDX-License-Identifier: Apache-2.0
// The numbers of the calling thread and of its process, asked of the kernel once per thread.
#pragma once

#include <sys/types.h>

namespace kest {

struct ThreadIds {
  pid_t s32Pid;
  pid_t s32Tid;
};

// Right in the child of a fork too.
ThreadIds IdsOfThisThread();

}  // namespace kest
