// SPDX-License-Identifier: Apache-2.0
#include "ctl/render/csv.h"

#include "ctl/render/escape.h"

namespace kest::ctl {
namespace {

std::string Quoted(const std::string &value) {
  std::string text = ToUtf8(value);
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char character : text)
    quoted += character == '"' ? std::string("\"\"") : std::string(1, character);
  return quoted + "\"";
}

}  // namespace

std::string CsvRow(const std::vector<std::string> &values) {
  std::string row;
  for (size_t i = 0; i < values.size(); ++i)
    row += (i == 0 ? "" : ",") + Quoted(values[i]);
  return row + "\n";
}

}  // namespace kest::ctl
