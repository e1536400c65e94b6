// SPDX-License-Identifier: Apache-2.0
// The directory of all files that the library writes. A build setting that ends in a slash.
#pragma once

#define KEST_DEBUG_PATH(name) KEST_DEBUG_DIR name
