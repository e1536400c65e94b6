// SPDX-License-Identifier: Apache-2.0
// An underrun or overrun as a line and as JSON.
#pragma once

#include <string>

#include "ctl/model/xrun.h"
#include "ctl/render/json.h"

namespace kest::ctl {

// "underrun SpeakerOutput/Mixer in0 +1 = 3  0/1024  before: ...  behind: ...  longest turn: ..."
std::string ShowXrun(const Xrun &xrun);
Json ToJson(const Xrun &xrun);

}  // namespace kest::ctl
