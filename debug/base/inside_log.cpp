// SPDX-License-Identifier: Apache-2.0
#include "debug/base/inside_log.h"

namespace kest {
namespace {

thread_local bool t_bInside = false;

}  // namespace

InsideLog::InsideLog() : bBefore_(t_bInside) {
  t_bInside = true;
}

InsideLog::~InsideLog() {
  t_bInside = bBefore_;
}

bool InsideLog::IsThisThread() {
  return t_bInside;
}

}  // namespace kest
