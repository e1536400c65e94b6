// SPDX-License-Identifier: Apache-2.0
// What kestctl offers to shells, and the help that is made from the same table.
#include <sstream>

#include "ctl/commands/command_table.h"
#include "ctl/terminal/words.h"
#include "tests/ctl/ctl_test.h"

namespace kest::test {
namespace {

using testing::HasSubstr;

class Completions : public CtlTest {};

// What is offered in the place of the last word, without descriptions.
std::vector<std::string> Offered(const std::string &words) {
  std::istringstream lines(Ctl("__complete " + words).out);
  std::vector<std::string> offered;
  for (std::string line; std::getline(lines, line);)
    offered.push_back(line.substr(0, line.find('\t')));
  return offered;
}

TEST_F(Completions, NameWhatRuns) {
  const PlayerProcess &player = StartPlayer();
  const struct {
    const char *words;
    std::vector<std::string> offered;
  } kCases[] = {
      {"set ''", {"SpeakerOutput/", "Decoder_13/"}},
      {"set D", {"Decoder_13/Lpcm", "Decoder_13/Volume"}},
      {"set Dec/V", {"Dec/Volume"}},
      {"set Volume/", {}},
      {"set V", {"Volume"}},
      {"set nothing", {}},
      {"set nothing/V", {}},
      {"status D", {"Decoder_13", "Decoder_13/Lpcm", "Decoder_13/Volume"}},
      {"set Dec/Vol ''", {"Gain", "Mute"}},
      {"--json set --timeout 1000 Dec/Vol M", {"Mute"}},
      {"set nothing ''", {}},
      {"set Dec/Vol Gain ''", {}},
      {"--pid ''", {std::to_string(player.Pid())}},
      {"--dir /mnt/vendor/t", {"/mnt/vendor/tmp/"}},
      {"--dir=/mnt/vendor/t", {"--dir=/mnt/vendor/tmp/"}},
      {"--dir /nowhere set ''", {}},
      {"log --fo", {"--follow"}},
      {"log -f --fo", {}},
      {"comp", {"completion"}},
      {"help lev", {"level"}},
      {"nonsense ''", {}},
      {"set -- --j", {}},
  };
  for (const auto &expected : kCases)
    EXPECT_EQ(expected.offered, Offered(expected.words)) << expected.words;
}

TEST_F(Completions, OfferOnlyWordsThatAreTaken) {
  StartPlayer();
  for (const char *before : {"ls", "level", "log --level", "log --tid", "completion", "--color", "help"}) {
    const auto offered = Offered(std::string(before) + " ''");
    EXPECT_FALSE(offered.empty()) << before;
    for (const std::string &word : offered) {
      const std::string words = std::string(before) + " " + word;
      EXPECT_EQ(0, Ctl(words + (words[0] == '-' ? " ps" : "")).exitCode) << words;
    }
  }
}

TEST_F(Completions, BashGetsItsPartOfTheWord) {
  StartPlayer();
  const auto reply = [](const std::string &line, const std::string &word) {
    const std::string script = "ctl() { " KEST_CTL_COMMAND
                               " \"$@\"; }; compopt() { :; }; source <(ctl completion bash)\n"
                               "COMP_LINE='" +
                               line + "' COMP_POINT=" + std::to_string(line.size()) + "; _kestctl ctl '" +
                               word + "'; printf '%s|' \"${COMPREPLY[@]}\"";
    const std::string path = PlayerTest::Path("complete.bash");
    WriteFile(path, script);
    return Ctl("", "bash " + path + " #").out;
  };
  EXPECT_EQ("Decoder_13/Lpcm|Decoder_13/Volume|", reply("kestctl set Decoder_13/", "Decoder_13/"));
  EXPECT_EQ("Gain|", reply("kestctl set \"Decoder_13/Volume\" Ga", "Ga"));
  EXPECT_EQ("/mnt/vendor/|", reply("kestctl --dir=/mnt/v", "/mnt/v"));
}

TEST(Words, AreSplitAndQuotedAsAShellDoes) {
  using ctl::Quote;
  const auto split = [](const std::string &line) { return ctl::TextsOf(ctl::SplitWords(line)); };
  EXPECT_EQ((std::vector<std::string>{"a b", "c\"d", "", "e\\f"}), split(R"( 'a b'  c\"d "" "e\f")"));
  const auto open = ctl::SplitUnfinished("set 'My Pipe");
  EXPECT_EQ("My Pipe", open.back().text);
  EXPECT_EQ('\'', open.back().openQuote);
  EXPECT_EQ("", ctl::SplitUnfinished("set ").back().text);
  const std::string nasty = "a b'c\"d$(e)\\f;*\xc3\xbc";
  EXPECT_EQ((std::vector<std::string>{nasty}), split(Quote(nasty)));
  EXPECT_EQ((std::vector<std::string>{nasty}), split("'" + Quote(nasty, '\'') + "'"));
  EXPECT_EQ((std::vector<std::string>{nasty}), split("\"" + Quote(nasty, '"') + "\""));
}

TEST_F(Completions, HelpAndTheManualPageNameEveryCommandAndOption) {
  const std::string page = Ctl("help --man").out;
  const std::string help = Ctl("help").out;
  EXPECT_EQ(help, Ctl("--help").out);
  for (const ctl::Command &command : ctl::Commands()) {
    EXPECT_THAT(page, HasSubstr(std::string(".SS \\fB") + command.name));
    EXPECT_THAT(help, HasSubstr(std::string("\n  ") + command.name + " "));
    const std::string own = Ctl(std::string("help ") + command.name).out;
    EXPECT_EQ(own, Ctl(std::string(command.name) + " --help").out);
    for (const ctl::OptionInfo &option : command.options)
      EXPECT_THAT(own, HasSubstr(option.description)) << command.name;
  }
  const CtlResult unknown = Ctl("help stauts");
  EXPECT_EQ(2, unknown.exitCode);
  EXPECT_THAT(unknown.err, HasSubstr("did you mean status?"));
}

}  // namespace
}  // namespace kest::test
