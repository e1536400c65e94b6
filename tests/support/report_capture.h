// SPDX-License-Identifier: Apache-2.0
// Collects what reaches the Android log while it lives, with every level switched on unless told otherwise.
#pragma once

#include <string>
#include <vector>

#include <android/log.h>

#include "ze_kest/debug.h"

namespace kest::test {

struct Report {
  int s32Priority;
  std::string tag;
  std::string label;     // "<ERR>", "<WRN>", "<INFO>" or "<PRINT>"
  std::string function;  // the reporting function
  std::string text;      // what follows "[line]: "
};

using Texts = std::vector<std::string>;

class ReportCapture {
 public:
  explicit ReportCapture(uint32_t u32Level = ZE_KEST_LEVEL_ENTER);
  ~ReportCapture();
  ReportCapture(const ReportCapture &) = delete;
  ReportCapture &operator=(const ReportCapture &) = delete;

  // All reports so far.
  [[nodiscard]] std::vector<Report> Reports() const;
  // Their labels and texts.
  [[nodiscard]] kest::test::Texts Lines() const;
  // The texts of one label, in order.
  [[nodiscard]] kest::test::Texts Texts(const std::string &label) const;
  // Whether some report of the label contains the text.
  [[nodiscard]] bool Has(const std::string &label, const std::string &text) const;
  // How many reports of the label have exactly the text.
  [[nodiscard]] int64_t Count(const std::string &label, const std::string &text) const;
  void Clear();

 private:
  uint32_t u32LevelBefore_;
};

}  // namespace kest::test
