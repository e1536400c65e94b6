// SPDX-License-Identifier: Apache-2.0
#include "player/check/check_report.h"

#include <iomanip>
#include <iostream>
#include <utility>

#include <nlohmann/json.hpp>

namespace kest::player {
namespace {

using Json = nlohmann::ordered_json;
constexpr int kNameWidth = 26;

bool IsBad(Verdict verdict) {
  return verdict == Verdict::kFailed || verdict == Verdict::kCrashed;
}

}  // namespace

CheckReport::CheckReport(std::string file, uint32_t seed, bool json)
    : file_(std::move(file)), seed_(seed), json_(json) {
  (json_ ? std::cerr : std::cout) << file_ << ", seed " << seed_ << std::endl;
}

void CheckReport::Begin(const std::string &kind, const CheckTest &test) {
  std::ostream &out = json_ ? std::cerr : std::cout;
  if (kind != kind_) out << (kind.empty() ? "the file" : kind) << "\n";
  kind_ = kind;
  out << "  " << std::left << std::setw(kNameWidth) << test.name << std::flush;
}

void CheckReport::Add(CheckRow row) {
  std::ostream &out = json_ ? std::cerr : std::cout;
  const Verdict verdict = row.finding.verdict;
  out << NameOf(verdict);
  if (verdict == Verdict::kSkipped) out << ": " << row.finding.seen;
  out << "\n";
  if (IsBad(verdict) || verdict == Verdict::kWarning) {
    out << "      expected  " << row.test->expected << "\n"
        << "      seen      " << row.finding.seen << "\n"
        << "      repeat    " << row.repeat << "\n";
  }
  out << std::flush;
  ++counts_[static_cast<size_t>(verdict)];
  rows_.push_back(std::move(row));
}

bool CheckReport::HasFailed() const {
  return Count(Verdict::kFailed) + Count(Verdict::kCrashed) > 0;
}

void CheckReport::Finish() const {
  if (json_) {
    PrintJson();
  } else {
    PrintSums();
  }
}

void CheckReport::PrintSums() const {
  std::cout << rows_.size() << (rows_.size() == 1 ? " test:" : " tests:");
  const char *separator = " ";
  for (int i = 0; i < kVerdicts; ++i) {
    if (counts_[static_cast<size_t>(i)] == 0) continue;
    std::cout << separator << counts_[static_cast<size_t>(i)] << " " << NameOf(static_cast<Verdict>(i));
    separator = ", ";
  }
  std::cout << "\n";
  for (const CheckRow &row : rows_) {
    if (!IsBad(row.finding.verdict)) continue;
    std::cout << NameOf(row.finding.verdict) << ": " << (row.kind.empty() ? "" : row.kind + " ")
              << row.test->name << ": " << row.finding.seen << "\n";
  }
  std::cout << std::flush;
}

void CheckReport::PrintJson() const {
  Json json = {{"file", file_}, {"seed", seed_}, {"counts", Json::object()}, {"results", Json::array()}};
  for (int i = 0; i < kVerdicts; ++i) {
    json["counts"][NameOf(static_cast<Verdict>(i))] = counts_[static_cast<size_t>(i)];
  }
  for (const CheckRow &row : rows_) {
    json["results"].push_back({{"kind", row.kind},
                               {"test", row.test->name},
                               {"result", NameOf(row.finding.verdict)},
                               {"expected", row.test->expected},
                               {"seen", row.finding.seen},
                               {"repeat", row.repeat}});
  }
  std::cout << json.dump(2, ' ', false, Json::error_handler_t::replace) << std::endl;
}

}  // namespace kest::player
