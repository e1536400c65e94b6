// SPDX-License-Identifier: Apache-2.0
#include "ze_kest/debug.h"

uint32_t u32KestDebugLevel = 0;
