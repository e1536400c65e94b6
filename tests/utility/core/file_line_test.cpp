// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ze_kest/utility.h"

#include "tests/support/debug_layer.h"
#include "utility/core/owned_file.h"
#include "utility/core/owned_memory.h"

using kest::OwnedFile;
using kest::test::WriteFile;

namespace {

constexpr const char *kPath = KEST_DEBUG_DIR "file";

// All lines of a file with the contents, read through a scratch buffer of the size.
std::vector<std::string> LinesOf(const std::string &contents, int s32ScratchSize) {
  WriteFile(kPath, contents);
  const OwnedFile file(ze_kest_Utility_FileOpen(kPath, "r"));
  std::vector<char> scratch(static_cast<size_t>(s32ScratchSize));
  std::vector<std::string> lines;
  while (true) {
    const kest::Owned<char> line(ze_kest_Utility_FileReadLine(scratch.data(), s32ScratchSize, file.get()));
    if (line == nullptr) return lines;
    lines.emplace_back(line.get());
  }
}

}  // namespace

TEST(FileLine, LinesOfAnyLengthComeWholeAndWithoutTheirEnds) {
  const std::string longLine(1000, 'x');
  const std::vector<std::string> expected = {"one", "", "two", longLine, "last"};
  for (const char *pszEnd : {"\n", "\r\n"}) {
    std::string contents;
    for (const std::string &line : expected)
      contents += line + pszEnd;
    for (const int s32Scratch : {2, 3, 8, 2000})
      EXPECT_EQ(expected, LinesOf(contents, s32Scratch));
  }
  EXPECT_EQ((std::vector<std::string>{"a", "b"}), LinesOf("a\nb", 16));
  EXPECT_EQ((std::vector<std::string>{"a"}), LinesOf("a\r", 16));
  EXPECT_TRUE(LinesOf("", 16).empty());
}
