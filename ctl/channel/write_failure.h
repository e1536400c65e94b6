// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ctl/channel/host.h"
#include "ctl/error.h"

namespace kest::ctl {

// Why the pipe did not take the lines, with what to do about it.
CtlError WriteFailure(Host &host, const std::string &pipePath, WriteResult result);

}  // namespace kest::ctl
