// SPDX-License-Identifier: Apache-2.0
// The tests of `kest-player --check`. Each group has a file; the table is in check_tests.cpp.
#pragma once

#include <string_view>
#include <vector>

#include "player/check/finding.h"
#include "player/check/subject.h"
#include "player/framework/table.h"

namespace kest::player {

struct CheckTest {
  const char *name;      // "Group.Name"
  const char *expected;  // what a sound module does, a sentence
  Finding (*run)(const Subject &subject);
};

// Tests of the file as a whole, then of each kind.
extern const Table<CheckTest> kLoadTests;
extern const Table<CheckTest> kLifeTests;
extern const Table<CheckTest> kShapeTests;
extern const Table<CheckTest> kSupplyTests;
extern const Table<CheckTest> kBoundsTests;
extern const Table<CheckTest> kAccountingTests;
extern const Table<CheckTest> kMetadataTests;
extern const Table<CheckTest> kResultTests;
extern const Table<CheckTest> kRealTimeTests;
extern const Table<CheckTest> kParameterTests;

// All, or those of the name or the group; empty when there is no such one.
std::vector<const CheckTest *> FindTests(std::string_view name);
// Whether it is a test of the file as a whole.
bool IsOfFile(const CheckTest &test);

// Runs it in this process. A test whose kind makes no instance is skipped, other than by the test for that.
Finding RunHere(const CheckTest &test, const Subject &subject);

}  // namespace kest::player
