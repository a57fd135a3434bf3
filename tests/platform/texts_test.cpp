#include "platform/texts.hpp"

#include <clocale>
#include <cstdlib>
#include <gtest/gtest.h>

#include "platform/standard_streams.hpp"
#include "support/temporary_folder.hpp"

namespace corvana {
namespace {

using namespace test;

TEST(Texts, CataloguesNeverComeFromTheCurrentFolder) {
  const TemporaryFolder folder;
  for (const char* path : {"locale/x", "share/locale/x", "built/locale/x", "bin/corvana"})
    folder.write(path, "");
  const fs::path earlier = fs::current_path();
  fs::current_path(folder / "built");
  const fs::path unknown = catalogueFolder({});
  const fs::path relative = catalogueFolder(".");
  fs::current_path(earlier);
  EXPECT_TRUE(unknown.is_absolute() && unknown.native().ends_with("/locale")) << unknown;
  EXPECT_EQ(relative, unknown);
  EXPECT_EQ(catalogueFolder(folder / "built"), folder / "built/locale");
  EXPECT_EQ(catalogueFolder(folder / "bin"), folder / "bin/../share/locale");
  EXPECT_EQ(catalogueFolder("/nowhere/bin"), unknown);
}

TEST(Texts, TheProgramIsWhereAShellFindsIt) {
  const TemporaryFolder folder;
  for (const char* path : {"a/tool", "b/tool", "b/other"})
    fs::permissions(folder.write(path, ""), fs::perms::owner_all);
  fs::permissions(folder / "a/tool", fs::perms::owner_read);
  fs::create_directories(folder / "a/other");
  fs::create_symlink("b/other", folder / "link");
  const std::string a = (folder / "a").native();
  const std::string b = (folder / "b").native();
  const struct {
    std::string command, path, found;
  } cases[] = {
      {"tool", a + ":" + b, b},
      {"other", ":" + a + ":" + b, b},
      {"tool", "", ""},
      {"none", b, ""},
      {b + "/tool", "", b},
      {b + "/none", b, ""},
      {"tool", "a:b:.::", ""},
      {(folder / "link").native(), "", b},
      {"", b, ""},
  };
  for (const auto& c : cases)
    EXPECT_EQ(folderOfCommand(c.command, c.path), c.found) << c.command << " in " << c.path;
}

TEST(Texts, DigitsAreGroupedInUtf8Only) {
  const TemporaryFolder locales;
  const struct {
    const char *character_set, *text;
  } cases[] = {{"UTF-8", "1\u202F234\u202F567 files"}, {"ISO-8859-1", "1234567 files"}};
  for (const auto& c : cases) {
    const std::string name = std::string("fr_FR.") + c.character_set;
    const std::string command = std::string("localedef -i fr_FR -f ") + c.character_set + " '" +
                                (locales / name).native() + "' >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0) GTEST_SKIP() << "no localedef";
    ::setenv("LOCPATH", locales.path().c_str(), 1);
    ASSERT_NE(std::setlocale(LC_NUMERIC, name.c_str()), nullptr);
    EXPECT_EQ(localisedCount("%ld file", "%ld files", 1'234'567), c.text);
  }
  std::setlocale(LC_NUMERIC, "C");
  ::unsetenv("LOCPATH");
}

TEST(Terminal, CutsALineAtAColumn) {
  const std::string whole = "e\u0301音🎹\u200Dx";
  const std::size_t lengths[] = {0, 3, 3, 6, 6, 13, 14, 14};  // by the columns there are
  for (std::size_t columns = 0; columns < std::size(lengths); ++columns)
    EXPECT_EQ(firstColumns(whole, columns), whole.substr(0, lengths[columns])) << columns;
}

}  // namespace
}  // namespace corvana
