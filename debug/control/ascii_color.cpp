// SPDX-License-Identifier: Apache-2.0
#include "debug/control/ascii_color.h"

#include "utility/core/report.h"

namespace kest {
namespace {

struct Colour {
  char szEscape[sizeof("\033[1;7;30m")];
  char szName[sizeof("COLOR_INVERSE_YELLOW")];
};

constexpr Colour kColours[] = {
    {"\033[30m", "COLOR_BLACK"},
    {"\033[31m", "COLOR_DARK_RED"},
    {"\033[32m", "COLOR_DARK_GREEN"},
    {"\033[33m", "COLOR_BROWN"},
    {"\033[34m", "COLOR_DARK_BLUE"},
    {"\033[35m", "COLOR_DARK_PURPLE"},
    {"\033[36m", "COLOR_DARK_CYAN"},
    {"\033[37m", "COLOR_GRAY"},
    {"\033[1;30m", "COLOR_DARK_GRAY"},
    {"\033[1;31m", "COLOR_RED"},
    {"\033[1;32m", "COLOR_GREEN"},
    {"\033[1;33m", "COLOR_YELLOW"},
    {"\033[1;34m", "COLOR_BLUE"},
    {"\033[1;35m", "COLOR_PURPLE"},
    {"\033[1;36m", "COLOR_CYAN"},
    {"\033[1;37m", "COLOR_WHITE"},
    {"\033[1;7;30m", "COLOR_INVERSE_BLACK"},
    {"\033[1;7;31m", "COLOR_INVERSE_RED"},
    {"\033[1;7;32m", "COLOR_INVERSE_GREEN"},
    {"\033[1;7;33m", "COLOR_INVERSE_YELLOW"},
    {"\033[1;7;34m", "COLOR_INVERSE_BLUE"},
    {"\033[1;7;35m", "COLOR_INVERSE_PURPLE"},
    {"\033[1;7;36m", "COLOR_INVERSE_CYAN"},
    {"\033[1;7;37m", "COLOR_INVERSE_WHITE"},
};

}  // namespace

uint32_t PrintAsciiColors(const CommandArguments & /*arguments*/) {
  int s32Number = 0;
  for (const Colour &colour : kColours) {
    ++s32Number;
    KEST_INFO_AS("_ZE_KEST_Debug_PrintAsciiColor", "<%02d>%s%s\033[0m\n", s32Number, colour.szEscape,
                 colour.szName);
  }
  return ZE_KEST_OK;
}

}  // namespace kest
