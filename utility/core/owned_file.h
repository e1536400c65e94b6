// SPDX-License-Identifier: Apache-2.0
// Owns an open stream and closes it on every path.
#pragma once

#include <memory>

#include "ze_kest/utility.h"

namespace kest {

struct CloseFile {
  void operator()(FILE *pFile) const { ze_kest_Utility_FileClose(pFile); }
};

using OwnedFile = std::unique_ptr<FILE, CloseFile>;

}  // namespace kest
