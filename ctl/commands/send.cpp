// SPDX-License-Identifier: Apache-2.0
#include "ctl/commands/commands.h"
#include "ctl/commands/context.h"
#include "ctl/parse/lines.h"
#include "ctl/render/escape.h"

namespace kest::ctl {

Result RunSend(Context &context, const Arguments &arguments) {
  const Reply reply = context.GetChannel().Send(arguments.words);
  Result result;
  result.data["lines"] = Json::array();
  for (const std::string &line : reply.lines) {
    result.data["lines"].push_back(ToJson(WithoutColours(line)));
    result.text += (context.UsesColour() ? EscapeButColours(line) : Escape(WithoutColours(line))) + "\n";
  }
  return result;
}

}  // namespace kest::ctl
