#include "update/version_file.hpp"

#include <gtest/gtest.h>

#include "platform/unicode.hpp"
#include "update/simple_encrypt_text.hpp"

namespace corvana {
namespace {

/// The line of hyphens below a heading in the notes.
const std::u16string rule = std::u16string(62, u'-') + u"\n";

VantorErgebnis parsePlain(std::u16string_view plain, std::u16string_view installed = u"1.0",
                          std::u16string_view application = u"Corvana") {
  return parseVersionFile(simpleEncryptText(plain, true), application, installed);
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
  const struct {
    std::optional<std::u16string> text;
    std::u16string_view application;
    std::u16string_view installed;
  } cases[] = {
      {std::nullopt, u"Corvana", u"1"},
      {u"", u"Corvana", u"1"},
      {text, u" \n", u"1"},
      {text, u"", u"1"},
      {text, u"Corvana", u""},
      {text, u"Corvana", u" \n"},
      {text, u"Corvana", u"beta"},
      {text, u"Corvana", u"0"},
      {text, u"Corvana", u"-1.2"},
      {u"\uFEFF" + text, u"Corvana", u"1"},
      {u"\u00E9t\u00E9 \uFFFD", u"Corvana", u"1"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(parseVersionFile(c.text, c.application, c.installed), VantorErgebnis())
        << utf8FromUtf16(c.application) << " / " << utf8FromUtf16(c.installed);
  EXPECT_TRUE(parseVersionFile(text, u"Corvana", u"1").neueVersionVorhanden);
}

struct RecordCase {
  const char* what;
  std::u16string_view plain;
  std::u16string_view installed;
  bool valid;
  std::u16string_view version;
  std::u16string_view download;
  std::u16string_view website;
};

TEST(ParseVersionFile, ChoosesTheRecord) {
  const RecordCase cases[] = {
      {"no marker at all", u"Corvana$VERMAC$ 2$", u"1", false, u"", u"", u""},
      {"a marker in another case starts no record, but there is one",
       u"Corvana$VERMAC$ 2$URLMAC$ d$app$:", u"1", true, u"2", u"d", u""},
      {"the piece in front of the first marker", u"Corvana$VERMAC$ 2$$APP$:Other", u"1", true, u"2",
       u"", u""},
      {"a space behind the marker", u"$APP$: Corvana$VERMAC$ 2$", u"1", false, u"", u"", u""},
      {"another application", u"$APP$:Vantor$VERMAC$ 2$URLINFO$ w$", u"1", false, u"", u"", u""},
      {"the name is a prefix, in any case", u"$APP$:CORVANA Pro$VERMAC$ 2$", u"1", true, u"2", u"",
       u""},
      {"keys in any case, the first one counts", u"$APP$:Corvana$verMac$ 3$VERMAC$ 2$", u"1", true,
       u"3", u"", u""},
      {"not newer: the first website that is not empty",
       u"$APP$:Corvana$VERMAC$ 1$URLINFO$ $$APP$:Corvana$VERMAC$ 1$URLINFO$ a$"
       u"$APP$:Corvana$VERMAC$ 0$URLINFO$ b$URLMAC$ d$",
       u"1", true, u"", u"", u"a"},
      {"no version: never newer, but valid", u"$APP$:Corvana$URLINFO$ a$INFOMAC$ i$", u"1", true,
       u"", u"", u"a"},
      {"the newest supplies all addresses, even an empty website",
       u"$APP$:Corvana$VERMAC$ 1$URLINFO$ old$$APP$:Corvana$VERMAC$ 3$URLMAC$ d3$"
       u"$APP$:Corvana$VERMAC$ 2$URLMAC$ d2$URLINFO$ w2$",
       u"1", true, u"3", u"d3", u""},
      {"an older record behind it fills an empty website",
       u"$APP$:Corvana$VERMAC$ 3$URLMAC$ d3$$APP$:Corvana$VERMAC$ 1$URLINFO$ old$", u"1", true,
       u"3", u"d3", u"old"},
      {"equal numbers keep the earlier",
       u"$APP$:Corvana$VERMAC$ 2.0$URLMAC$ a$$APP$:Corvana$VERMAC$ v2,0$URLMAC$ b$", u"1", true,
       u"2.0", u"a", u""},
      {"more components count as newer", u"$APP$:Corvana$VERMAC$ 1.1.5$", u"1.2", true, u"1.1.5",
       u"", u""},
      {"too many components are no version", u"$APP$:Corvana$VERMAC$ 9.1.1.1.1.1.1.1$", u"1.2",
       true, u"", u"", u""},
  };
  for (const RecordCase& c : cases) {
    SCOPED_TRACE(c.what);
    const VantorErgebnis ergebnis = parsePlain(c.plain, c.installed);
    EXPECT_EQ(ergebnis.warDasEineGueltigeDatei, c.valid);
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
  const std::u16string none = u"Various minor fixes and improvements\n\n";
  EXPECT_EQ(utf8FromUtf16(ergebnis.newReleaseNotes),
            utf8FromUtf16(u"Corvana 1.1\n" + rule + u"one\n\nCorvana v1.3\n" + rule + none +
                          u"Corvana 1.2\n" + rule + none));
  EXPECT_EQ(ergebnis.newAppVersion, u"v1.3");
}

TEST(ValueForKey, Table) {
  const struct {
    std::u16string_view record;
    std::u16string_view value;
  } cases[] = {
      {u"$K$ v$", u"v"},
      {u"$K$xv$", u"v"},  // any one character separates
      {u"$K$v$", u""},    // and it is never part of the value
      {u"$K$$", u""},
      {u"$K$", u""},
      {u"$K$ ", u""},
      {u"$K$ v", u""},  // not closed
      {u"$K$ $", u""},
      {u"k v", u""},
      {u"$k$ v$$K$ w$", u"v"},
      {u"$K$$K$ w$", u""},
      {u"$K$\n \u00A0v\r\nw#+# #+\n#x \n$", u"vw\n \nx"},
      {u"x$K$ a#b+c$", u"a#b+c"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(utf8FromUtf16(valueForKey(u"$K$", c.record)), utf8FromUtf16(c.value))
        << utf8FromUtf16(c.record);
}

}  // namespace
}  // namespace corvana
