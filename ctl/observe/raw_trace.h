// SPDX-License-Identifier: Apache-2.0
// The timing trace of a pipeline as the process writes it.
#pragma once

#include <chrono>
#include <string>

#include "ctl/commands/context.h"

namespace kest::ctl {

// Traces the pipelines whose names begin with the name. Whatever ends it, the trace is off again. Throws
// CtlError when it cannot be traced, or when somebody traces already.
std::string RecordRawTrace(Context &context, const std::string &pipeline, std::chrono::milliseconds duration);

}  // namespace kest::ctl
