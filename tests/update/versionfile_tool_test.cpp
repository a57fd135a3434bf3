// Runs the maker's tool as a release script does.

#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>

#include "support/temporary_folder.hpp"

namespace {

TEST(VersionfileTool, DoesWhatAReleaseScriptExpects) {
  const corvana::test::TemporaryFolder folder;
  folder.write(
      "plain",
      "$APP$:Corvana\n$VERMAC$ 1.2.0\n$INFOMAC$ Faster.\n"
      "$URLMAC$ https://www.corvana.example/d\n$URLINFO$ https://www.corvana.example/\n$\n");
  folder.write("2.txt", "$APP$:Corvana\n$VERMAC$ 1.2$\n$APP$:Vantor\n$VERMAC$ 3\n$");
  folder.write("umlaut", "a\nb \xC3\xA4\n");
  folder.write("case", "a\n\nthe corvana-cli\n");
  folder.write("binary", "\xFF");
  folder.write("empty", "");
  const std::string enter = "cd '" + folder.path().native() +
                            "' && export LC_ALL=C && tool() { '" CORVANA_VERSIONFILE
                            "' \"$@\"; } && ";
  const struct {
    const char* line;
    int status;
    std::string message;  ///< a part of all output; no output at all where empty
  } cases[] = {
      {"tool scramble plain > ok && tool unscramble ok | cmp - plain", 0, ""},
      {"tool scramble 2.txt > two && (cat ok; echo) > feed", 0, ""},
      {"printf '\\357\\273\\277' | cat - ok > bom", 0, ""},
      {"tool check ok --installed 1.1.0", 0, "\nRelease Notes:\nCorvana 1.2.0\n"},
      {"tool check ok --installed 1.2.0", 0, "latest version 1.2.0.\n"},
      {"tool check ok --installed 1.2.0 > log", 0, ""},
      {"tool check ok --app Vantor --installed 1.2.0", 1, "ok: has no record of \"Vantor\""},
      {"tool check bom --installed 1.2.0", 1, "bom: a byte-order mark precedes"},
      {"tool check two --installed 1.0.0", 0, "two: version \"1.2\" is not three numbers"},
      {"tool check ok --installed 1.0", 0, "--installed: version \"1.0\" is not three numbers"},
      {"tool check empty --installed '\x1b\n'", 2, "not a version: \uFFFD\uFFFD\n"},
      {"tool scramble umlaut", 1, "umlaut:2:3: \"\xC3\xA4\" begins with a character beyond ASCII"},
      {"tool scramble case", 1, "case:3:5: \"corvana-cli\" would come out as \"Corvana-cli\""},
      {"tool scramble .", 1, ".: is a folder"},
      {"tool scramble empty > /dev/full", 0, ""},
      {"tool scramble plain > /dev/full", 1, "standard output: cannot be written"},
      {"tool --help > /dev/full", 1, "standard output cannot be written"},
      {"tool unscramble empty", 0, ""},
      {"tool unscramble feed", 1, "feed:1:77: a line break"},
      {"tool unscramble binary", 1, "binary: is not a scrambled text"},
      {"tool unscramble 'no\x1b\nforged'", 1, "corvana-versionfile: no\uFFFD\uFFFDforged: cannot"},
      {"tool", 2, "subcommand"},
  };
  for (const auto& c : cases) {
    FILE* pipe = ::popen((enter + "{ " + c.line + "; } 2>&1").c_str(), "r");
    std::string output;
    for (int byte = std::fgetc(pipe); byte != EOF; byte = std::fgetc(pipe))
      output += static_cast<char>(byte);
    EXPECT_EQ(WEXITSTATUS(::pclose(pipe)), c.status) << c.line;
    const bool isAsExpected =
        c.message.empty() ? output.empty() : output.find(c.message) != std::string::npos;
    EXPECT_TRUE(isAsExpected) << c.line << ": " << output;
  }
}

}  // namespace
