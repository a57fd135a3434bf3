// Runs the maker's tool as a release script does.

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "support/program.hpp"

namespace {

using corvana::test::Outcome;

class VersionfileTool : public testing::Test {
 protected:
  /// Runs a shell line in the test's folder; "TOOL" stands for the program. Errors are in the
  /// output.
  Outcome run(std::string line) const {
    line.replace(line.find("TOOL"), 4, "'" CORVANA_VERSIONFILE "'");
    return corvana::test::Process(folder.path(), {"/bin/sh", "-c", "exec 2>&1; " + line}).finish();
  }

  const corvana::test::TemporaryFolder folder;
};

constexpr const char* plain =
    "$APP$:Corvana\n$VERMAC$ 1.2.0\n$INFOMAC$ Faster.\n"
    "$URLMAC$ https://www.corvana.example/d\n$URLINFO$ https://www.corvana.example/\n$\n";

TEST_F(VersionfileTool, ScramblesUnscramblesAndChecks) {
  folder.write("plain.txt", plain);
  ASSERT_EQ(run("TOOL scramble plain.txt > server.txt").status, 0);
  const Outcome back = run("TOOL unscramble server.txt");
  EXPECT_EQ(back.status, 0);
  EXPECT_EQ(back.output, plain);

  const Outcome newer = run("TOOL check server.txt --installed 1.1.0");
  EXPECT_EQ(newer.status, 0);
  EXPECT_NE(newer.output.find("\nRelease Notes:\nCorvana 1.2.0\n"), std::string::npos);

  EXPECT_NE(run("TOOL check server.txt --installed 1.2.0").output.find("latest version 1.2.0.\n"),
            std::string::npos);
  const Outcome other = run("TOOL check server.txt --app Vantor --installed 1.2.0");
  EXPECT_EQ(other.status, 1);
  EXPECT_NE(other.output.find("has no record of \"Vantor\""), std::string::npos);
}

TEST_F(VersionfileTool, NamesThePlaceOfWhatWouldNotSurvive) {
  const struct {
    const char* text;
    const char* message;
  } cases[] = {
      {"a\nb \xC3\xA4\n", "p:2:3: \"\xC3\xA4\" begins with a character beyond ASCII"},
      {"\xFF", "p:1:1: "},
      {"\xEF\xBB\xBF", "p:1:1: "},
      {"a\n\nthe corvana-cli\n", "p:3:5: \"corvana-cli\" would come out as \"Corvana-cli\""},
  };
  for (const auto& c : cases) {
    folder.write("p", c.text);
    const Outcome outcome = run("TOOL scramble p");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.output.find(c.message), std::string::npos) << outcome.output;
  }
}

TEST_F(VersionfileTool, CheckSaysWhatAFileSuffersFrom) {
  folder.write("plain.txt", plain);
  ASSERT_EQ(run("TOOL scramble plain.txt > ok && printf '\\357\\273\\277' | cat - ok > bom && "
                "(cat ok; echo) > feed")
                .status,
            0);
  folder.write("other.txt", "$APP$:Corvana\n$VERMAC$ 1.2$\n$APP$:Vantor\n$VERMAC$ 3\n$");
  ASSERT_EQ(run("TOOL scramble other.txt > two").status, 0);
  const struct {
    const char* line;
    int status;
    const char* message;  ///< part of it; none at all where empty
  } cases[] = {
      {"check ok --installed 1.2.0", 0, ""},
      {"check bom --installed 1.2.0", 1, "bom: a byte-order mark precedes"},
      {"check feed --installed 1.2.0", 1, "feed:1:77: a line break"},
      {"unscramble feed", 1, "feed:1:77: a line break"},
      {"check two --installed 1.0.0", 0, "two: version \"1.2\" is not three numbers"},
      {"check ok --installed 1.0", 0, "--installed: version \"1.0\" is not three numbers"},
      {"unscramble 'no\x1b\nforged'", 1, "corvana-versionfile: no\uFFFD\uFFFDforged: cannot"},
      {"check ok --installed '\x1b\n'", 2, "not a version: \uFFFD\uFFFD\n"},
  };
  for (const auto& c : cases) {
    const Outcome outcome = run(std::string("TOOL ") + c.line);
    EXPECT_EQ(outcome.status, c.status) << outcome.output;
    EXPECT_NE(outcome.output.find(c.message), std::string::npos) << outcome.output;
    EXPECT_EQ(outcome.output.find("versionfile:") == std::string::npos,
              *c.message == 0 || c.status == 2);
  }
}

TEST_F(VersionfileTool, ExitStatusTellsFaultsFromWrongUsage) {
  folder.write("binary", "\xEF\xBF\xBD");
  folder.write("empty", "");
  folder.write("plain", plain);
  const std::pair<int, std::vector<const char*>> cases[] = {
      {0, {"unscramble empty", "scramble empty > /dev/full", "--help"}},
      {1, {"unscramble binary", "check empty --installed 1", "scramble missing", "scramble ."}},
      {1, {"scramble plain > /dev/full", "--help > /dev/full"}},
      {2, {"check plain --installed beta", ""}},
  };
  for (const auto& [status, lines] : cases)
    for (const char* line : lines)
      EXPECT_EQ(run(std::string("TOOL ") + line).status, status) << line;
}

}  // namespace
