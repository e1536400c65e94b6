// SPDX-License-Identifier: Apache-2.0
// The numbers of the calling thread and of its process, asked of the kernel and put into text once per
// thread.
#pragma once

#include <string_view>

namespace kest {

// "process thread", right in the child of a fork too. Valid until the thread's next call.
std::string_view ThreadIdText();

}  // namespace kest
