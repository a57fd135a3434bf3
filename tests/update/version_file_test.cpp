#include "update/version_file.hpp"

#include <gtest/gtest.h>

#include "update/simple_encrypt_text.hpp"
#include "update/text_search.hpp"
#include "vocabulary/unicode.hpp"

namespace corvana {
namespace {

/// The line of hyphens below a heading in the notes.
const std::u16string rule = std::u16string(62, u'-') + u"\n";

VantorErgebnis parsePlain(std::u16string_view plain, std::u16string_view installed = u"1.0") {
  return parseVersionFile(simpleEncryptText(plain, true), u"Corvana", installed);
}

TEST(ParseVersionFile, ReadsANewVersion) {
  const VantorErgebnis expected = {
      .neueVersionVorhanden = true,
      .warDasEineGueltigeDatei = true,
      .newAppVersion = u"1.1",
      .newReleaseNotes = u"Corvana 1.1\n" + rule + u"First line, spread.\nSecond line.\n\n",
      .newDownloadURL = u"https://www.corvana.example/resources/downloads/c.zip",
      .newWebsiteForProgram = u"https://www.corvana.example/",
  };
  EXPECT_EQ(parsePlain(u"Made by hand.\n$APP$:Corvana\n$VERMAC$ 1.1\n$VERPC$ 9.9\n"
                       u"$INFOMAC$  First line,\r\n spread.#+#Second line.\n$INFOPC$ no\n"
                       u"$URLMAC$\thttps://www.corvana.example/resources/downloads/c.zip\n"
                       u"$URLPC$ https://no/\n$URLINFO$=https://www.corvana.example/$\n"),
            expected);
}

TEST(ParseVersionFile, NeedsNameVersionAndText) {
  const std::u16string text = simpleEncryptText(u"$APP$:Corvana$VERMAC$ 2$", true);
  EXPECT_TRUE(parseVersionFile(text, u"Corvana", u"1").neueVersionVorhanden);
  const VantorErgebnis nothing;
  EXPECT_EQ(parseVersionFile(std::nullopt, u"Corvana", u"1"), nothing);
  EXPECT_EQ(parseVersionFile(u"\uFEFF" + text, u"Corvana", u"1"), nothing);
  EXPECT_EQ(parseVersionFile(text, u" \n", u"1"), nothing);
  EXPECT_EQ(parseVersionFile(text, u"Corvana", u"beta"), nothing);
  EXPECT_EQ(parseVersionFile(text, u"Corvana", u"-1.2"), nothing);
}

TEST(ParseVersionFile, ChoosesTheRecord) {
  const struct {
    const char* what;
    std::u16string plain;  ///< "A:" stands for a record's marker
    std::u16string_view version;
    std::u16string_view download;
    std::u16string_view website;
    bool isValid = true;
  } cases[] = {
      {"no marker at all", u"Corvana$VERMAC$ 2$", u"", u"", u"", false},
      {"a marker in another case starts no record", u"Corvana$VERMAC$ 2$URLMAC$ d$app$:", u"2",
       u"d", u""},
      {"the piece in front of the first marker", u"Corvana$VERMAC$ 2$A:Other", u"2", u"", u""},
      {"a space behind the marker", u"A: Corvana$VERMAC$ 2$", u"", u"", u"", false},
      {"another application", u"A:Vantor$VERMAC$ 2$URLINFO$ w$", u"", u"", u"", false},
      {"the name is a prefix, in any case", u"A:CORVANA Pro$VERMAC$ 2$", u"2", u"", u""},
      {"not newer: the first website that is not empty",
       u"A:Corvana$VERMAC$ 1$URLINFO$ $A:Corvana$VERMAC$ 1$URLINFO$ a$"
       u"A:Corvana$VERMAC$ 0$URLINFO$ b$URLMAC$ d$",
       u"", u"", u"a"},
      {"no version: never newer", u"A:Corvana$URLINFO$ a$INFOMAC$ i$", u"", u"", u"a"},
      {"the newest supplies all addresses, even an empty website",
       u"A:Corvana$VERMAC$ 1$URLINFO$ old$A:Corvana$VERMAC$ 3$URLMAC$ d3$"
       u"A:Corvana$VERMAC$ 2$URLMAC$ d2$URLINFO$ w2$",
       u"3", u"d3", u""},
      {"an older record behind it fills an empty website",
       u"A:Corvana$VERMAC$ 3$URLMAC$ d3$A:Corvana$VERMAC$ 1$URLINFO$ old$", u"3", u"d3", u"old"},
      {"equal numbers keep the earlier",
       u"A:Corvana$VERMAC$ 2.0$URLMAC$ a$A:Corvana$VERMAC$ v2,0$URLMAC$ b$", u"2.0", u"a", u""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const VantorErgebnis ergebnis = parsePlain(replaceAll(c.plain, u"A:", u"$APP$:"), u"1");
    EXPECT_EQ(ergebnis.warDasEineGueltigeDatei, c.isValid);
    EXPECT_EQ(ergebnis.neueVersionVorhanden, !c.version.empty());
    EXPECT_EQ(utf8FromUtf16(ergebnis.newAppVersion), utf8FromUtf16(c.version));
    EXPECT_EQ(utf8FromUtf16(ergebnis.newDownloadURL), utf8FromUtf16(c.download));
    EXPECT_EQ(utf8FromUtf16(ergebnis.newWebsiteForProgram), utf8FromUtf16(c.website));
    EXPECT_EQ(ergebnis.newReleaseNotes.empty(), c.version.empty());
  }
}

TEST(ParseVersionFile, NotesListEveryNewerRecordInFileOrder) {
  const VantorErgebnis ergebnis = parsePlain(
      u"$APP$:corvana$VERMAC$ 1.1$INFOMAC$ one$$APP$:Corvana$VERMAC$ 1.0$INFOMAC$ installed$"
      u"$APP$:Corvana Pro$VERMAC$ v1.3$INFOMAC$ #+# $$APP$:Corvana$VERMAC$ 1.2$");
  const std::u16string none = rule + u"Various minor fixes and improvements\n\n";
  EXPECT_EQ(utf8FromUtf16(ergebnis.newReleaseNotes),
            utf8FromUtf16(u"Corvana 1.1\n" + rule + u"one\n\nCorvana v1.3\n" + none +
                          u"Corvana 1.2\n" + none));
}

TEST(ValueForKey, Table) {
  // Any one character separates, and it is never part of the value, which has to be closed.
  for (const std::u16string_view record :
       {u"$K$v$", u"$K$", u"$K$ ", u"$K$ v", u"k v", u"$K$$K$ w$"})
    EXPECT_EQ(valueForKey(u"$K$", record), u"") << utf8FromUtf16(record);
  for (const std::u16string_view record : {u"$K$ v$", u"$K$xv$", u"$k$ v$$K$ w$"})
    EXPECT_EQ(valueForKey(u"$K$", record), u"v") << utf8FromUtf16(record);
  EXPECT_EQ(valueForKey(u"$K$", u"x$K$\n \u00A0v#b\r\nw#+# #+\n#x \n$"), u"v#bw\n \nx");
}

}  // namespace
}  // namespace corvana
