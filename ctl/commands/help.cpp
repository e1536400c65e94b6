// SPDX-License-Identifier: Apache-2.0
#include "ctl/commands/command_table.h"
#include "ctl/commands/commands.h"
#include "ctl/commands/help_text.h"

namespace kest::ctl {

Result RunHelp(Context & /*context*/, const Arguments &arguments) {
  Result result;
  if (arguments.Has("man")) {
    result.text = ManPage();
  } else {
    result.text = arguments.words.empty() ? HelpText() : HelpText(CommandNamed(arguments.words[0]));
  }
  result.data["text"] = result.text;
  return result;
}

}  // namespace kest::ctl
