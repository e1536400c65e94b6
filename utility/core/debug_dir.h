// SPDX-License-Identifier: Apache-2.0
// The directory of everything that the library keeps in files. A build setting, with a slash at its end.
#pragma once

#define KEST_DEBUG_PATH(name) KEST_DEBUG_DIR name
