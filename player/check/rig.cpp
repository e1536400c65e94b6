// SPDX-License-Identifier: Apache-2.0
#include "player/check/rig.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>

namespace kest::player {
namespace {

// The harnesses that exist, for the handler of a crash.
constexpr size_t kMostHarnesses = 8;
std::array<const ZE_KEST_Harness_s *, kMostHarnesses> g_harnesses{};

void Remember(const ZE_KEST_Harness_s *harness) {
  const auto place = std::find(g_harnesses.begin(), g_harnesses.end(), nullptr);
  if (place != g_harnesses.end()) *place = harness;
}

void Forget(const ZE_KEST_Harness_s *harness) {
  std::replace(g_harnesses.begin(), g_harnesses.end(), harness,
               static_cast<const ZE_KEST_Harness_s *>(nullptr));
}

uint32_t WiderWidth(const ZE_KEST_ModuleFilter_s &filter) {
  return (filter.u32Widths & ZE_KEST_MODULE_32_BITS) != 0 ? 32 : 16;
}

// Whether the kind takes so many channels; a configuration may narrow what it declares.
bool Takes(const Subject &subject, uint32_t channels) {
  const ZE_KEST_ModuleFilter_s filter = subject.Load().record;
  if (channels < filter.u32LeastChannels || channels > filter.u32MostChannels) return false;
  if (subject.config.empty()) return true;
  Rig rig(subject, {channels, WiderWidth(filter)});
  if (rig.TryCreate() != ZE_KEST_OK) return false;
  rig.Turn(false);
  return true;
}

// The next two: where the configuration refuses everything, what the kind declares.
uint32_t LeastChannels(const Subject &subject) {
  const ZE_KEST_ModuleFilter_s filter = subject.Load().record;
  for (uint32_t channels = filter.u32LeastChannels; channels <= filter.u32MostChannels; ++channels) {
    if (Takes(subject, channels)) return channels;
  }
  return filter.u32LeastChannels;
}

uint32_t MostChannels(const Subject &subject) {
  const ZE_KEST_ModuleFilter_s filter = subject.Load().record;
  for (uint32_t channels = filter.u32MostChannels; channels >= filter.u32LeastChannels; --channels) {
    if (Takes(subject, channels)) return channels;
  }
  return filter.u32MostChannels;
}

uint32_t UsualChannels(const Subject &subject) {
  constexpr uint32_t kStereo = 2;
  return Takes(subject, kStereo) ? kStereo : LeastChannels(subject);
}

}  // namespace

Shape UsualShape(const Subject &subject) {
  return {UsualChannels(subject), WiderWidth(subject.Load().record)};
}

std::vector<Shape> SomeShapes(const Subject &subject) {
  const ZE_KEST_ModuleFilter_s filter = subject.Load().record;
  const std::set<uint32_t> some = {LeastChannels(subject), UsualChannels(subject), MostChannels(subject)};
  std::vector<Shape> shapes;
  for (const auto &[bit, bits] :
       {std::pair(uint32_t{ZE_KEST_MODULE_16_BITS}, 16u), std::pair(uint32_t{ZE_KEST_MODULE_32_BITS}, 32u)}) {
    for (const uint32_t count : some) {
      if ((filter.u32Widths & bit) != 0) shapes.push_back({count, bits});
    }
  }
  return shapes;
}

std::string TextOf(const Shape &shape) {
  return std::to_string(shape.channels) + (shape.channels == 1 ? " channel, " : " channels, ") +
         std::to_string(shape.bits) + " bits";
}

Rig::Rig(const Subject &subject, const Shape &shape) : kind_(subject.Load()), shape_(shape) {
  ZE_KEST_HarnessSetup_s setup{};
  setup.u32Size = sizeof(setup);
  setup.u32Channels = shape.channels;
  setup.u32SampleRate = shape.sampleRate;
  setup.u32BitWidth = shape.bits;
  setup.u32InputSamples = shape.inputSamples;
  setup.u32OutputSamples = shape.outputSamples;
  setup.u32MaxSamples = shape.maxSamples;
  setup.u32InputBlocks = shape.metadataBlocks;
  setup.u32OutputBlocks = shape.outputBlocks > 0 ? shape.outputBlocks : shape.metadataBlocks;
  setup.eGuard = shape.guard;
  setup.u8Marker = shape.marker;
  setup.pszConfig = subject.config.c_str();
  const std::string directory = std::filesystem::current_path();
  setup.pszDirectory = directory.c_str();
  ZE_KEST_Harness_s *harness = nullptr;
  if (ze_kest_Harness_Open(&setup, &harness) != ZE_KEST_OK)
    throw std::runtime_error("the ports cannot be made");
  harness_.reset(harness);
  Remember(harness);
}

Rig::~Rig() {
  Forget(Get());
}

uint32_t Rig::TryCreate() {
  return ze_kest_Harness_Create(Get(), kind_.own);
}

void Rig::Create() {
  const uint32_t result = TryCreate();
  if (result == ZE_KEST_OK) return;
  throw NoInstance(TextOf(shape_) + ": " + (Error().empty() ? "result " + std::to_string(result) : Error()));
}

uint32_t Rig::Latency() const {
  return Entries().pfnLatency == nullptr ? 0 : Entries().pfnLatency(Self());
}

ZE_KEST_HarnessTurn_s Rig::Turn(bool ended) {
  ZE_KEST_HarnessTurn_s turn{};
  ze_kest_Harness_Turn(Get(), ended ? 1 : 0, &turn);
  ++turns_;
  for (size_t i = 0; turn.u32Faults != 0 && i < kFaults; ++i) {
    if ((turn.u32Faults >> i & 1) == 0 || !faults_[i].empty()) continue;
    faults_[i] = TextOf(shape_) + ", turn " + std::to_string(turns_) + ": " + turn.szSeen;
  }
  return turn;
}

std::string Rig::FaultsOf(uint32_t mask) const {
  for (size_t i = 0; i < kFaults; ++i) {
    if ((mask >> i & 1) != 0 && !faults_[i].empty()) return faults_[i];
  }
  return "";
}

std::unique_ptr<Rig> MakeRig(const Subject &subject, const Shape &shape) {
  auto rig = std::make_unique<Rig>(subject, shape);
  rig->Create();
  return rig;
}

void DescribeGuardHit(const void *address, char *text, uint32_t size) {
  text[0] = '\0';
  for (const ZE_KEST_Harness_s *harness : g_harnesses) {
    if (harness != nullptr && ze_kest_Harness_Where(harness, address, text, size) != 0) return;
  }
}

}  // namespace kest::player
