// SPDX-License-Identifier: Apache-2.0
// The ids of the calling thread and of its process as text, obtained from the kernel once per thread.
#pragma once

#include <string_view>

namespace kest {

// "process thread", correct in the child of a fork too. Valid until the thread's next call.
std::string_view ThreadIdText();

}  // namespace kest
