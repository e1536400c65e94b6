// SPDX-License-Identifier: Apache-2.0
#include "debug/datapath/io_debug_command.h"

#include "tests/debug/registry/registry_fixture.h"

namespace kest::test {
namespace {

using IoDebugCommand = RegistryTest;

#define NAME "_ZE_KEST_Debug_Cmd_DebugIo "

// What a line reports behind the two reports of how it was split.
Texts ReportsOf(const char *pszLine, uint32_t u32Expected) {
  const ReportCapture capture;
  EXPECT_EQ(u32Expected, _ZE_KEST_Debug_Cmd_DebugIo(pszLine)) << pszLine;
  const Texts texts = capture.Lines();
  EXPECT_EQ("<INFO>" NAME "pszDup=" + std::string(pszLine) + "\n", texts.at(0));
  return {texts.begin() + std::min<ptrdiff_t>(2, static_cast<ptrdiff_t>(texts.size())), texts.end()};
}

TEST_F(IoDebugCommand, TakesItsFourKeywordsAndReportsWhatItDid) {
  const std::tuple<const char *, uint32_t, Texts> aLines[] = {
      {"kest_output_sinewave_filter=p,f,g", 0, {"<INFO>" NAME "output sine wave pipeline:p filter:f,g\n"}},
      {"kest_output_sinewave=on", 0, {"<INFO>" NAME "output sine wave enable p:f,g\n"}},
      {"kest_output_sinewave=off", 0, {"<INFO>" NAME "output sine wave disable p:f,g\n"}},
      {"kest_output_sinewave_filter=p", 8, {"<ERR>" NAME "pszSub1 is NULL, format error\n"}},
      {"kest_output_sinewave_filter", 8, {"<ERR>" NAME "pszSub1 is NULL, format error\n"}},
      {"kest_output_sinewave=On", 0, {}},
      {"kest_output_sinewave", 0, {}},
      {"kest_print_filter_info=on", 0, {"<INFO>" NAME "print filter enable\n"}},
      {"kest_print_filter_info=off", 0, {"<INFO>" NAME "print filter disable\n"}},
      {"kest_print_filter_info=1", 0, {}},
      {"kest_filter_debug_level=dec", 8, {"<ERR>" NAME "pszSub1 is NULL, format error\n"}},
      {"kest_other=on", 8, {}},
      {"", 8, {}},
  };
  for (const auto &[pszLine, u32Result, reports] : aLines)
    EXPECT_EQ(reports, ReportsOf(pszLine, u32Result)) << pszLine;
}

TEST_F(IoDebugCommand, SetsTheLevelOfEveryFilterWhoseNameBeginsAlike) {
  AddPipeline("pipe");
  const ZE_KEST_Filter_s &dec = AddFilter("pipe", "dec");
  const ZE_KEST_Filter_s &decoder = AddFilter("other", "decoder");
  const ZE_KEST_Filter_s &de = AddFilter("pipe", "de");
  const std::tuple<const char *, uint32_t, const char *> aWords[] = {
      {"all", 240, "info"}, {"trace", 80, "info"}, {"info", 64, "info"}, {"wrn", 48, "warn"},
      {"err", 32, "error"}, {"none", 0, "none"},   {"foo", 0, nullptr},  {"all,", 0, nullptr}};
  for (const auto &[pszWord, u32Level, pszShown] : aWords) {
    SCOPED_TRACE(pszWord);
    const std::string level = std::to_string(u32Level);
    Texts expected = {"<PRINT>dec setDbgLvl " + level + "\n", "<PRINT>decoder setDbgLvl " + level + "\n"};
    if (pszShown != nullptr) {
      expected.insert(expected.begin(),
                      "<PRINT>" NAME "filter dec debug level " + std::string(pszShown) + "\n");
    }
    EXPECT_EQ(expected,
              ReportsOf((std::string("kest_filter_debug_level=dec,") + pszWord).c_str(), ZE_KEST_OK));
    EXPECT_EQ(u32Level, dec.u32DbgLvl);
    EXPECT_EQ(u32Level, decoder.u32DbgLvl);
    EXPECT_EQ(0u, de.u32DbgLvl);
  }
}

}  // namespace
}  // namespace kest::test
