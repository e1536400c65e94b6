// SPDX-License-Identifier: Apache-2.0
// The blocks that travel with the samples.
#include "player/check/check_test.h"
#include "player/check/stream.h"
#include "player/check/tour.h"

namespace kest::player {
namespace {

constexpr uint32_t kFrames = 40 * ZE_KEST_METADATA_SAMPLES;
constexpr const char *kHostMoves = "it leaves the metadata to the host";

bool MovesMetadata(const Subject &subject) {
  return subject.Has(ZE_KEST_MODULE_FORWARDS_METADATA);
}

Shape ShapeWithMetadata(const Subject &subject) {
  Shape shape = UsualShape(subject);
  shape.metadataBlocks = 8;
  return shape;
}

// Every block once, in order and intact; "" when they are.
std::string FaultOfBlocks(const Stream &stream) {
  for (size_t i = 0; i < stream.blocks.size(); ++i) {
    const TakenBlock &block = stream.blocks[i];
    if (!block.isIntact) return "the bytes of block " + std::to_string(i) + " have changed";
    if (block.number != i) {
      return "where block " + std::to_string(i) + " is due, block " + std::to_string(block.number) + " comes";
    }
  }
  if (stream.blocks.size() == stream.blocksFed) return "";
  return std::to_string(stream.blocksFed) + " blocks went in, " + std::to_string(stream.blocks.size()) +
         " came out";
}

Finding JudgeBlocks(const Stream &stream) {
  if (!stream.stall.empty()) return Failed(stream.stall);
  std::string fault = FaultOfBlocks(stream);
  return fault.empty() ? Success() : Failed(std::move(fault));
}

Finding LeftAlone(const Subject &subject) {
  if (MovesMetadata(subject)) return Skipped("it moves the metadata itself");
  return JudgeTour(subject, ZE_KEST_HARNESS_MOVED_METADATA);
}

Finding EveryBlock(const Subject &subject) {
  if (!MovesMetadata(subject)) return Skipped(kHostMoves);
  for (const uint32_t amount : {256u, 17u, 0u}) {
    const auto rig = MakeRig(subject, ShapeWithMetadata(subject));
    Stream stream;
    Feed(*rig, QuietNoise(*rig, kFrames, subject.seed), {amount, subject.seed}, stream);
    End(*rig, stream);
    if (Finding finding = JudgeBlocks(stream); finding.verdict != Verdict::kSuccess) return finding;
  }
  return Success();
}

Finding WholeBlocks(const Subject &subject) {
  if (!MovesMetadata(subject)) return Skipped(kHostMoves);
  return JudgeTour(subject, ZE_KEST_HARNESS_METADATA_TOO_MUCH | ZE_KEST_HARNESS_SPLIT_METADATA);
}

Finding FullOutput(const Subject &subject) {
  if (!MovesMetadata(subject)) return Skipped(kHostMoves);
  Shape shape = ShapeWithMetadata(subject);
  shape.outputBlocks = 1;
  const auto rig = MakeRig(subject, shape);
  Stream stream;
  const Samples in = QuietNoise(*rig, kFrames, subject.seed);
  Feed(*rig, in, {ZE_KEST_METADATA_SAMPLES, 0}, stream);
  ze_kest_Harness_Fill(rig->Get(), nullptr, ZE_KEST_METADATA_SAMPLES);
  for (int i = 0; i < 10; ++i) {
    rig->Turn(false);
  }
  Feed(*rig, in, {2 * ZE_KEST_METADATA_SAMPLES, 0}, stream);
  End(*rig, stream);
  return JudgeBlocks(stream);
}

Finding InStep(const Subject &subject) {
  if (!MovesMetadata(subject)) return Skipped(kHostMoves);
  constexpr uint32_t kPiece = 100;
  const auto rig = MakeRig(subject, ShapeWithMetadata(subject));
  const Samples in = QuietNoise(*rig, kPiece, subject.seed);
  const uint64_t latency = rig->Latency();
  Stream stream;
  for (uint32_t fed = 0; fed < kFrames; fed += kPiece) {
    Feed(*rig, in, {kPiece, 0}, stream);
    const uint64_t out = stream.blocks.size();
    const uint64_t most = stream.read / ZE_KEST_METADATA_SAMPLES + 1;
    const uint64_t least = stream.written / ZE_KEST_METADATA_SAMPLES;
    if (out <= most && out + 1 + latency / ZE_KEST_METADATA_SAMPLES >= least) continue;
    return Failed(std::to_string(stream.read) + " samples are read and " + std::to_string(stream.written) +
                  " written, with " + std::to_string(out) + " blocks of " +
                  std::to_string(ZE_KEST_METADATA_SAMPLES) + " samples");
  }
  return Success();
}

constexpr CheckTest kTests[] = {
    {"Metadata.LeftAlone", "a kind that does not forward metadata leaves it alone", LeftAlone},
    {"Metadata.EveryBlock", "every block comes out once, in order, unchanged", EveryBlock},
    {"Metadata.WholeBlocks", "it moves whole blocks, as many as there are and have room", WholeBlocks},
    {"Metadata.FullOutput", "a full metadata output loses no block", FullOutput},
    {"Metadata.InStep", "blocks and samples stay in step", InStep},
};

}  // namespace

const Table<CheckTest> kMetadataTests = kTests;

}  // namespace kest::player
