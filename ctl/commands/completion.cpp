// SPDX-License-Identifier: Apache-2.0
// The scripts only pass on what is typed: kestctl itself knows the words, and asks the process for names.
#include <algorithm>

#include <fmt/format.h>

#include "ctl/commands/commands.h"

namespace kest::ctl {
namespace {

struct Script {
  const char *shell;
  const char *text;
};

// COMP_LINE, because bash takes words apart at = and : as well.
constexpr const char *kBash = R"(# Completion of kestctl for bash.
_kestctl() {
  mapfile -t COMPREPLY < <("$1" __complete_bash "${COMP_LINE:0:COMP_POINT}" "$2" 2>/dev/null)
  [[ ${#COMPREPLY[@]} -ne 1 || ${COMPREPLY[0]} != */ ]] || compopt -o nospace
}
complete -F _kestctl kestctl
)";

constexpr const char *kZsh = R"(#compdef kestctl
# Completion of kestctl for zsh.
_kestctl() {
  local line text
  local -a texts shown parts partsShown
  for line in "${(@f)$("${(Q)words[1]}" __complete "${(@Q)words[2,CURRENT-1]}" "${(Q)PREFIX}" 2>/dev/null)}"; do
    text=${line%%$'\t'*}
    [[ -n $text ]] || continue
    line=${${line%$'\t'}/$'\t'/  -- }
    if [[ $text == */ ]]; then
      parts+=("$text") partsShown+=("$line")
    else
      texts+=("$text") shown+=("$line")
    fi
  done
  (( $#parts )) && compadd -l -S '' -d partsShown -a -- parts
  (( $#texts )) && compadd -l -d shown -a -- texts
  (( $#parts + $#texts ))
}
if [[ $funcstack[1] == _kestctl ]]; then _kestctl "$@"; else compdef _kestctl kestctl; fi
)";

constexpr const char *kFish = R"(# Completion of kestctl for fish.
function __kestctl_complete
    set -l words (commandline -opc) (commandline -ct | string unescape)
    $words[1] __complete $words[2..-1] 2>/dev/null
end
complete -c kestctl -f -a '(__kestctl_complete)'
)";

constexpr Script kScripts[] = {{"bash", kBash}, {"zsh", kZsh}, {"fish", kFish}};

}  // namespace

Result RunCompletion(Context & /*context*/, const Arguments &arguments) {
  const std::string &shell = arguments.words[0];
  const auto script = std::find_if(std::begin(kScripts), std::end(kScripts),
                                   [&](const Script &known) { return shell == known.shell; });
  if (script == std::end(kScripts)) {
    throw CtlError(ExitCode::kUsage, fmt::format("completion does not know the shell \"{}\"", shell),
                   "it knows bash, zsh and fish");
  }
  Result result;
  result.text = script->text;
  result.data["text"] = result.text;
  return result;
}

}  // namespace kest::ctl
