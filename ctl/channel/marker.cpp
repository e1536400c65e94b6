// SPDX-License-Identifier: Apache-2.0
#include "ctl/channel/marker.h"

#include <atomic>
#include <chrono>

#include <fmt/format.h>
#include <unistd.h>

#include "ctl/parse/lines.h"

namespace kest::ctl {

Marker Marker::Next() {
  // Begins at the time, since another run may have had this process's id and its lines may still be in the
  // pipe.
  static std::atomic<uint64_t> sequence =
      static_cast<uint64_t>(std::chrono::system_clock::now().time_since_epoch() /
                            std::chrono::milliseconds(1)) %
      1'000'000'000;
  return Marker(fmt::format("{}{}.{}", kName, getpid(), sequence++));
}

bool Marker::IsEcho(std::string_view line) {
  constexpr std::string_view kCommand = "_ZE_KEST_Debug_Cmd_SetParameter ";
  if (!BeginsWith(line, kCommand)) return false;
  line.remove_prefix(kCommand.size());
  for (const std::string_view part :
       {"pszDup=kest_debug_set_parameter=", "pszSub=kest_debug_set_parameter, pszCmd="}) {
    if (BeginsWith(line, part)) line.remove_prefix(part.size());
  }
  return BeginsWith(line, kName);
}

}  // namespace kest::ctl
