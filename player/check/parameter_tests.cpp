// SPDX-License-Identifier: Apache-2.0
// Parameters and commands.
#include <atomic>
#include <cstring>
#include <memory>
#include <thread>

#include "player/check/check_test.h"
#include "player/check/parameters.h"
#include "player/check/stream.h"
#include "player/modules/record_check.h"

namespace kest::player {

std::vector<ZE_KEST_ModuleParameter_s> ParametersOf(const Rig &rig) {
  constexpr uint32_t kMost = 4096;
  std::vector<ZE_KEST_ModuleParameter_s> parameters;
  for (uint32_t i = 0; rig.Entries().pfnParameter != nullptr && i < kMost; ++i) {
    const ZE_KEST_ModuleParameter_s *own = rig.Entries().pfnParameter(rig.Self(), i);
    if (own == nullptr) break;
    parameters.push_back(Known(*own));
  }
  return parameters;
}

bool CanBeSet(const ZE_KEST_ModuleParameter_s &parameter) {
  return (parameter.u32Flags & ZE_KEST_MODULE_READ_ONLY) == 0;
}

int32_t RandomValue(const ZE_KEST_ModuleParameter_s &parameter, uint32_t &seed) {
  int32_t random = 0;
  ze_kest_Harness_Noise(&random, 1, 32, &seed);
  const uint64_t values = static_cast<uint64_t>(int64_t{parameter.s32Most} - parameter.s32Least) + 1;
  return static_cast<int32_t>(parameter.s32Least +
                              static_cast<int64_t>(static_cast<uint32_t>(random) % values));
}

namespace {

// An instance that has taken a turn: that it can be destroyed without one is another test's.
std::unique_ptr<Rig> MakeUsedRig(const Subject &subject) {
  auto rig = MakeRig(subject, UsualShape(subject));
  rig->Turn(false);
  return rig;
}

constexpr const char *kNoParameters = "it has no parameter that can be set";
using Parameters = std::vector<ZE_KEST_ModuleParameter_s>;

bool HasSettable(const Parameters &parameters) {
  for (const ZE_KEST_ModuleParameter_s &parameter : parameters) {
    if (CanBeSet(parameter)) return true;
  }
  return false;
}

Finding Records(const Subject &subject) {
  const auto rig = MakeUsedRig(subject);
  const Parameters parameters = ParametersOf(*rig);
  for (size_t i = 0; i < parameters.size(); ++i) {
    std::string fault = FaultOf(rig->Entries(), parameters[i]);
    if (!fault.empty()) return Failed("parameter " + std::to_string(i) + ": " + fault);
    for (size_t j = 0; j < i; ++j) {
      if (std::strcmp(parameters[i].pszName, parameters[j].pszName) == 0) {
        return Failed(std::string("two parameters are called ") + parameters[i].pszName);
      }
    }
  }
  return Success();
}

// Calls the function with every parameter that can be set; stops at the first text.
template <typename Function>
std::string ForEachSettable(const Rig &rig, const Function &function) {
  const Parameters parameters = ParametersOf(rig);
  for (uint32_t i = 0; i < parameters.size(); ++i) {
    if (!CanBeSet(parameters[i])) continue;
    const std::string fault = function(i, parameters[i]);
    if (!fault.empty()) return std::string(parameters[i].pszName) + " " + fault;
  }
  return "";
}

Finding JudgeText(const std::string &fault) {
  return fault.empty() ? Success() : Failed(fault);
}

Finding Defaults(const Subject &subject) {
  const auto rig = MakeUsedRig(subject);
  return JudgeText(ForEachSettable(*rig, [&](uint32_t index, const ZE_KEST_ModuleParameter_s &parameter) {
    const int32_t value = rig->Entries().pfnGet(rig->Self(), index);
    if (value == parameter.s32Default) return std::string();
    return "is " + std::to_string(value) + " after pfnCreate; its default is " +
           std::to_string(parameter.s32Default);
  }));
}

Finding RoundTrip(const Subject &subject) {
  const auto rig = MakeUsedRig(subject);
  if (!HasSettable(ParametersOf(*rig))) return Skipped(kNoParameters);
  uint32_t seed = subject.seed;
  return JudgeText(ForEachSettable(*rig, [&](uint32_t index, const ZE_KEST_ModuleParameter_s &parameter) {
    for (const int32_t value : {parameter.s32Least, parameter.s32Most, RandomValue(parameter, seed),
                                RandomValue(parameter, seed), parameter.s32Default}) {
      rig->Entries().pfnSet(rig->Self(), index, value);
      const int32_t got = rig->Entries().pfnGet(rig->Self(), index);
      if (got != value) return "is " + std::to_string(got) + " after it was set to " + std::to_string(value);
    }
    return std::string();
  }));
}

// A stream with the parameter at each of its limits.
Finding Limits(const Subject &subject) {
  const auto rig = MakeUsedRig(subject);
  if (!HasSettable(ParametersOf(*rig))) return Skipped(kNoParameters);
  const Samples in = Noise(*rig, 2000, subject.seed);
  return JudgeText(ForEachSettable(*rig, [&](uint32_t index, const ZE_KEST_ModuleParameter_s &parameter) {
    for (const int32_t value : {parameter.s32Least, parameter.s32Most, parameter.s32Default}) {
      rig->Entries().pfnSet(rig->Self(), index, value);
      Stream stream;
      Feed(*rig, in, {256, 0}, stream);
      if (!stream.stall.empty()) return "at " + std::to_string(value) + ": " + stream.stall;
    }
    return std::string();
  }));
}

void SetAtRandom(const Rig &rig, const Parameters &parameters, uint32_t &seed) {
  for (uint32_t i = 0; i < parameters.size(); ++i) {
    if (CanBeSet(parameters[i])) rig.Entries().pfnSet(rig.Self(), i, RandomValue(parameters[i], seed));
  }
}

Finding RandomSets(const Subject &subject) {
  const auto rig = MakeUsedRig(subject);
  const Parameters parameters = ParametersOf(*rig);
  if (!HasSettable(parameters)) return Skipped(kNoParameters);
  uint32_t seed = subject.seed;
  Stream stream;
  for (uint32_t i = 0; i < 500 && stream.stall.empty(); ++i) {
    SetAtRandom(*rig, parameters, seed);
    stream.out.clear();
    Feed(*rig, Noise(*rig, 64, seed), {0, seed}, stream);
  }
  return JudgeText(stream.stall);
}

Finding SecondThread(const Subject &subject) {
  const auto rig = MakeUsedRig(subject);
  const Parameters parameters = ParametersOf(*rig);
  if (!HasSettable(parameters)) return Skipped(kNoParameters);
  std::atomic<bool> isDone{false};
  std::thread other([&, seed = subject.seed]() mutable {
    while (!isDone) {
      SetAtRandom(*rig, parameters, seed);
      for (uint32_t i = 0; i < parameters.size(); ++i) {
        rig->Entries().pfnGet(rig->Self(), i);
      }
    }
  });
  const Samples in = Noise(*rig, 256, subject.seed);
  Stream stream;
  for (uint32_t i = 0; i < 500 && stream.stall.empty(); ++i) {
    stream.out.clear();
    Feed(*rig, in, {0, subject.seed + i}, stream);
  }
  isDone = true;
  other.join();
  return JudgeText(stream.stall);
}

Finding Commands(const Subject &subject) {
  const auto rig = MakeUsedRig(subject);
  if (rig->Entries().pfnCommand == nullptr) return Skipped("it takes no commands");
  const struct {
    const char *name;
    std::string text;
  } commands[] = {{"an empty command", ""},
                  {"an unknown command", "no_such_command=1"},
                  {"4096 characters", std::string(4096, 'a')},
                  {"a command that is not ASCII", "l\xC3\xA4uter \xFF\xFE"},
                  {"\"%n%s\"", "%n%s%n%s"}};
  for (const auto &command : commands) {
    const uint32_t result = rig->Entries().pfnCommand(rig->Self(), command.text.c_str());
    if (result == ZE_KEST_INVALID_ARGUMENT) continue;
    return Failed(std::string(command.name) + " is answered with " + std::to_string(result));
  }
  return Success();
}

constexpr CheckTest kTests[] = {
    {"Parameters.Records", "the parameters' records keep to the interface", Records},
    {"Parameters.Defaults", "after pfnCreate every parameter has its default", Defaults},
    {"Parameters.RoundTrip", "what was set can be got", RoundTrip},
    {"Parameters.Limits", "at the limits of its parameters it works on", Limits},
    {"Parameters.RandomSets", "random values between the turns do no harm", RandomSets},
    {"Parameters.SecondThread", "random values from a second thread do no harm", SecondThread},
    {"Parameters.Commands", "a command that it does not know is answered with ZE_KEST_INVALID_ARGUMENT (8)",
     Commands},
};

}  // namespace

const Table<CheckTest> kParameterTests = kTests;

}  // namespace kest::player
