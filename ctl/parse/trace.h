// SPDX-License-Identifier: Apache-2.0
// The file of a traced pipeline:
//   [f:Volume,t1:3,t2:41,td:38]                          for each filter, since the cycle's start
//   [ct:5218340213,stop:5218340266][p:Decoder_13,t:53]   at the end of the cycle
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "ctl/model/trace.h"

namespace kest::ctl {

struct ParsedTrace {
  PipelineTrace trace;
  // More than one: the file was written by pipelines whose names begin alike, and whose filters ran when
  // cannot be told.
  std::set<std::string> pipelines;
};

ParsedTrace ParseTrace(std::string_view text);

}  // namespace kest::ctl
