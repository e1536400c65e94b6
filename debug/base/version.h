// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace kest {

// Printed in every log prefix and at the end of the help.
constexpr const char *kVersion = "2023/06/01,01";

}  // namespace kest
