// SPDX-License-Identifier: Apache-2.0
// What nearly every test of the library uses: its interface, its reports and logs, and what tests say of
// them.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ze_kest/debug.h"
#include "ze_kest/utility.h"

#include "tests/support/debug_layer.h"
#include "tests/support/report_capture.h"

namespace kest::test {

using testing::AllOf;
using testing::Contains;
using testing::ContainsRegex;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

}  // namespace kest::test
