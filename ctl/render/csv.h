// SPDX-License-Identifier: Apache-2.0
// Comma-separated values, as spreadsheets read them.
#pragma once

#include <string>
#include <vector>

namespace kest::ctl {

// One row with its line end. Text that could be taken for more than one value is quoted.
std::string CsvRow(const std::vector<std::string> &values);

}  // namespace kest::ctl
