// SPDX-License-Identifier: Apache-2.0
#include <exception>
#include <string>

#include "player/check/check_test.h"
#include "player/check/rig.h"

namespace kest::player {
namespace {

bool IsMeant(std::string_view test, std::string_view name) {
  return name.empty() || test == name || test.substr(0, test.find('.')) == name;
}

}  // namespace

const char *NameOf(Verdict verdict) {
  constexpr const char *kNames[kVerdicts] = {"success", "failed", "crashed", "skipped", "warning"};
  return kNames[static_cast<int>(verdict)];
}

std::vector<const CheckTest *> FindTests(std::string_view name) {
  const Table<CheckTest> *const groups[] = {
      &kLoadTests,       &kLifeTests,     &kShapeTests,  &kSupplyTests,   &kBoundsTests,
      &kAccountingTests, &kMetadataTests, &kResultTests, &kRealTimeTests, &kParameterTests};
  std::vector<const CheckTest *> found;
  for (const Table<CheckTest> *group : groups) {
    for (const CheckTest &test : *group) {
      if (IsMeant(test.name, name)) found.push_back(&test);
    }
  }
  return found;
}

bool IsOfFile(const CheckTest &test) {
  return IsMeant(test.name, "Load");
}

Finding RunHere(const CheckTest &test, const Subject &subject) {
  try {
    return test.run(subject);
  } catch (const NoInstance &refusal) {
    return Skipped(std::string("there is no instance: ") + refusal.what());
  } catch (const std::exception &error) {
    return Failed(error.what());
  }
}

}  // namespace kest::player
