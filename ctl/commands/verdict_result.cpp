// SPDX-License-Identifier: Apache-2.0
#include "ctl/commands/verdict_result.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace kest::ctl {

Result ResultOf(const Verdict &verdict, Json asked, const std::string &done, const std::string &refused) {
  Result result;
  result.data = std::move(asked);
  result.data["accepted"] = verdict.accepted ? Json(*verdict.accepted) : Json();
  result.data["reported"] = ToJson(verdict.reported);
  if (!verdict.accepted) {
    result.exit = ExitCode::kLost;
    result.message = "whether it was accepted is not known: the log level hides refusals";
    result.hint = "set a level at which they show: kestctl level err";
  } else if (*verdict.accepted) {
    result.text = done;
  } else {
    result.exit = ExitCode::kRefused;
    result.message = refused;
    result.hint = fmt::format("the process says: {}", fmt::join(verdict.reported, "; "));
  }
  return result;
}

}  // namespace kest::ctl
