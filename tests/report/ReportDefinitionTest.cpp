// Reading report definition files: sections, keys, values and placeholders, and an
// error message naming the file and the line for everything it can't take.

#include "ReportDefinition.h"
#include "ReportError.h"

#include <gtest/gtest.h>

namespace qi::test {
namespace {

const char* const kMinimal = "[Bericht]\nTitel = Liste\nQuelle = T_Daten\n\n[Spalte]\nFeld = stName\n";

std::string errorOf(const std::string& text, const std::string& file = "/p/Report\\test.rpt")
{
    try {
        parseReportDefinition(text, file);
    } catch (const ReportError& e) {
        return e.what();
    }
    return {};
}

TEST(ReportDefinition, ReadsAMinimalReportWithItsDefaults)
{
    const ReportDefinition d = parseReportDefinition(kMinimal, "test.rpt");
    EXPECT_EQ(d.title, "Liste");
    EXPECT_EQ(d.source, "T_Daten");
    EXPECT_TRUE(d.sql.empty());
    EXPECT_FALSE(d.landscape);
    ASSERT_EQ(d.columns.size(), 1u);
    EXPECT_EQ(d.columns[0].field, "stName");
    EXPECT_EQ(d.columns[0].heading, "stName");
    EXPECT_EQ(d.columns[0].widthMm, 0);
    EXPECT_EQ(d.columns[0].line, 6);
    // The page header and footer every report has unless it says otherwise.
    ASSERT_EQ(d.pageFooterRight.size(), 1u);
    ASSERT_EQ(d.pageFooterRight[0].parts.size(), 4u);
    EXPECT_EQ(d.pageFooterRight[0].parts[0].text, "Seite ");
    EXPECT_EQ(d.pageFooterRight[0].parts[1].kind, TextTemplate::Part::Kind::Page);
    EXPECT_EQ(d.pageFooterRight[0].parts[3].kind, TextTemplate::Part::Kind::Pages);
    EXPECT_EQ(d.pageTitle.parts[0].kind, TextTemplate::Part::Kind::Title);
}

TEST(ReportDefinition, ReadsEveryPartOfAFullDefinition)
{
    const ReportDefinition d = parseReportDefinition(R"(# comment
; another comment
[Bericht]
Titel          = Differenzliste
SQL            = SELECT a, b,
                        c FROM T
Sortierung     = b absteigend, [c]
Seite          = Querformat
Schriftgröße   = 9,5
Leertext       = Nichts da.

[Seitenkopf]
Titel  = {Titel} – {Auftrag}
Links  = Projekt {Projekt}
Rechts = Stand {Druckdatum}
Rechts = zweite Zeile

[Seitenfuß]
Links = {Berichtsdatei}

[Berichtskopf]
Zeile = Kopf

[Gruppe]
Feld        = [a]
Überschrift = Raum
Zusatzfeld  = c | Verantwortlich
Kopf        = Raum {a|ohne}
Fuß         = {Anzahl|Objekt|Objekte}
NeueSeite   = ja

[Spalte]
Feld         = b
Überschrift  = Betrag
Breite       = 25 mm
Format       = Zahl 2
Summe        = ja

[Spalte]
Feld        = c
Breite      = *
Ausrichtung = zentriert
Format      = Datum TT.MM.JJ
Umbruch     = ja
Optional    = ja

[Zusammenfassung]
Summenzeile = Alles
Zeile       = {Anzahl} Zeilen, Summe {Summe(b)}

[Aufschlüsselung]
Feld        = a
Überschrift = Je Raum
Wert        = Summe(b)
)",
                                                     "voll.rpt");
    EXPECT_EQ(d.sql, "SELECT a, b,\nc FROM T");
    ASSERT_EQ(d.sort.size(), 2u);
    EXPECT_EQ(d.sort[0].field, "b");
    EXPECT_TRUE(d.sort[0].descending);
    EXPECT_EQ(d.sort[1].field, "c");
    EXPECT_FALSE(d.sort[1].descending);
    EXPECT_TRUE(d.landscape);
    EXPECT_DOUBLE_EQ(d.fontSize, 9.5);
    EXPECT_EQ(d.emptyText, "Nichts da.");
    EXPECT_EQ(d.pageHeaderLeft.size(), 1u);
    EXPECT_EQ(d.pageHeaderRight.size(), 2u);
    EXPECT_EQ(d.pageFooterLeft.size(), 1u);
    EXPECT_EQ(d.pageFooterRight.size(), 1u); // not given: the default "Seite x von y" stays
    ASSERT_EQ(d.reportHeader.size(), 1u);
    ASSERT_EQ(d.groups.size(), 1u);
    const GroupDef& g = d.groups[0];
    EXPECT_EQ(g.field, "a");
    EXPECT_EQ(g.heading, "Raum");
    ASSERT_EQ(g.extraFields.size(), 1u);
    EXPECT_EQ(g.extraFields[0].field, "c");
    EXPECT_EQ(g.extraFields[0].heading, "Verantwortlich");
    EXPECT_TRUE(g.newPage);
    ASSERT_EQ(g.header[0].parts.size(), 2u);
    EXPECT_EQ(g.header[0].parts[1].kind, TextTemplate::Part::Kind::Field);
    EXPECT_EQ(g.header[0].parts[1].fallback, "ohne");
    const auto& count = g.footer[0].parts[0];
    EXPECT_EQ(count.kind, TextTemplate::Part::Kind::Count);
    EXPECT_EQ(count.text, "Objekt");
    EXPECT_EQ(count.fallback, "Objekte");
    ASSERT_EQ(d.columns.size(), 2u);
    EXPECT_EQ(d.columns[0].heading, "Betrag");
    EXPECT_DOUBLE_EQ(d.columns[0].widthMm, 25);
    EXPECT_EQ(d.columns[0].format.kind, ValueFormat::Kind::Number);
    EXPECT_EQ(d.columns[0].format.decimals, 2);
    EXPECT_EQ(d.columns[0].alignment, Alignment::Right); // numbers stand right unless told
    EXPECT_TRUE(d.columns[0].sum);
    EXPECT_EQ(d.columns[1].alignment, Alignment::Center);
    EXPECT_EQ(d.columns[1].format.kind, ValueFormat::Kind::Date);
    EXPECT_EQ(d.columns[1].format.datePattern, "dd.MM.yy");
    EXPECT_TRUE(d.columns[1].wrap);
    EXPECT_TRUE(d.columns[1].optional);
    EXPECT_EQ(d.totalsLabel, "Alles");
    ASSERT_EQ(d.summary.size(), 1u);
    EXPECT_EQ(d.summary[0].parts[2].kind, TextTemplate::Part::Kind::Sum);
    ASSERT_EQ(d.breakdowns.size(), 1u);
    EXPECT_EQ(d.breakdowns[0].sumField, "b");
    EXPECT_TRUE(d.hasSums());
}

TEST(ReportDefinition, KeysAndSectionsIgnoreCaseBlanksAndUmlautSpelling)
{
    const ReportDefinition d = parseReportDefinition(
        "[ bericht ]\nTITEL = X\nquelle = T\n[SPALTE]\nfeld = a\nUeberschrift = A\n[seitenfuss]\nlinks = L\n",
        "test.rpt");
    EXPECT_EQ(d.title, "X");
    EXPECT_EQ(d.columns[0].heading, "A");
    EXPECT_EQ(d.pageFooterLeft.size(), 1u);
}

TEST(ReportDefinition, WindowsLineEndsAndAByteOrderMarkFreeTextRead)
{
    const ReportDefinition d =
        parseReportDefinition("[Bericht]\r\nTitel = Liste\r\nQuelle = T_Daten\r\n[Spalte]\r\nFeld = a\r\n", "t.rpt");
    EXPECT_EQ(d.title, "Liste");
    EXPECT_EQ(d.columns[0].field, "a");
}

struct BadDefinition {
    const char* name;
    const char* text;
    int line;
    const char* what;
};

void PrintTo(const BadDefinition& d, std::ostream* os) { *os << d.name; }

class ReportDefinitionErrors : public ::testing::TestWithParam<BadDefinition> {};

TEST_P(ReportDefinitionErrors, NameTheFileAndTheLine)
{
    const std::string message = errorOf(GetParam().text);
    const std::string where = "Fehler in der Berichtsdatei '/p/Report/test.rpt'" +
                              (GetParam().line > 0 ? ", Zeile " + std::to_string(GetParam().line) : std::string()) +
                              ": ";
    EXPECT_EQ(message.rfind(where, 0), 0u) << message;
    EXPECT_NE(message.find(GetParam().what), std::string::npos) << message;
}

INSTANTIATE_TEST_SUITE_P(
    Syntax, ReportDefinitionErrors,
    ::testing::Values(
        BadDefinition{"NoEquals", "[Bericht]\nTitel Liste\n", 2, "Erwartet wird \"Schlüssel = Wert\""},
        BadDefinition{"UnknownSection", "[Bericht]\nTitel = a\n\n[Tabelle]\n", 4, "Unbekannter Abschnitt [Tabelle]."},
        BadDefinition{"UnclosedSection", "[Bericht\n", 1, "muss mit ']' enden"},
        BadDefinition{"UnknownKey", "[Bericht]\nTitel = a\nQuelle = T\n[Spalte]\nFeld = a\nFarbe = rot\n", 6,
                      "Unbekannter Schlüssel \"Farbe\" im Abschnitt [Spalte]."},
        BadDefinition{"KeyBeforeSection", "Titel = a\n", 1, "Vor dem ersten Abschnitt"},
        BadDefinition{"RepeatedKey", "[Bericht]\nTitel = a\nTitel = b\n", 3, "schon in Zeile 2 angegeben"},
        BadDefinition{"RepeatedSection", "[Bericht]\nTitel = a\nQuelle = T\n[Spalte]\nFeld = a\n[Bericht]\n", 6,
                      "Der Abschnitt [Bericht] ist schon in Zeile 1 angegeben."},
        BadDefinition{"NoReportSection", "[Spalte]\nFeld = a\n", 1, "Der Abschnitt [Bericht] fehlt."},
        BadDefinition{"NoColumn", "[Bericht]\nTitel = a\nQuelle = T\n\n# Ende\n", 3, "keine Spalte"},
        BadDefinition{"NoTitle", "[Bericht]\nQuelle = T\n[Spalte]\nFeld = a\n", 1, "fehlt \"Titel\""},
        BadDefinition{"NoSource", "[Bericht]\nTitel = a\n[Spalte]\nFeld = a\n", 1, "fehlt die Datenquelle"},
        BadDefinition{"SourceAndSql", "[Bericht]\nTitel = a\nQuelle = T\nSQL = SELECT 1\n", 4,
                      "schließen einander aus"},
        BadDefinition{"SqlNoQuery", "[Bericht]\nTitel = a\nSQL = DELETE FROM T\n", 3, "mit SELECT oder WITH"},
        BadDefinition{"ColumnWithoutField", "[Bericht]\nTitel = a\nQuelle = T\n[Spalte]\nBreite = 20\n", 4,
                      "Im Abschnitt [Spalte] fehlt \"Feld\"."},
        BadDefinition{"EmptyField", "[Bericht]\nTitel = a\nQuelle = T\n[Spalte]\nFeld =\n", 5,
                      "\"Feld\" braucht einen Wert."},
        BadDefinition{"BadWidth", "[Bericht]\nTitel = a\nQuelle = T\n[Spalte]\nFeld = a\nBreite = breit\n", 6,
                      "Die Breite muss eine Zahl"},
        BadDefinition{"BadAlignment", "[Bericht]\nTitel = a\nQuelle = T\n[Spalte]\nFeld = a\nAusrichtung = oben\n",
                      6, "keine Ausrichtung"},
        BadDefinition{"BadFormat", "[Bericht]\nTitel = a\nQuelle = T\n[Spalte]\nFeld = a\nFormat = Währung\n", 6,
                      "kein Format"},
        BadDefinition{"BadDecimals", "[Bericht]\nTitel = a\nQuelle = T\n[Spalte]\nFeld = a\nFormat = Zahl 9\n", 6,
                      "Nachkommastellen (0 bis 6)"},
        BadDefinition{"BadYesNo", "[Bericht]\nTitel = a\nQuelle = T\n[Spalte]\nFeld = a\nSumme = vielleicht\n", 6,
                      "erlaubt sind ja und nein"},
        BadDefinition{"BadPage", "[Bericht]\nTitel = a\nQuelle = T\nSeite = A3\n", 4, "kein Seitenformat"},
        BadDefinition{"BadFontSize", "[Bericht]\nTitel = a\nQuelle = T\nSchriftgröße = 40\n", 4, "Schriftgröße"},
        BadDefinition{"UnclosedBrace", "[Bericht]\nTitel = a\nQuelle = T\n[Berichtskopf]\nZeile = {Titel\n", 5,
                      "wird nicht geschlossen"},
        BadDefinition{"EmptyPlaceholder", "[Bericht]\nTitel = a\nQuelle = T\n[Berichtskopf]\nZeile = {}\n", 5,
                      "Leerer Platzhalter"},
        BadDefinition{"CountWithOneWord", "[Bericht]\nTitel = a\nQuelle = T\n[Berichtskopf]\nZeile = {Anzahl|Stück}\n",
                      5, "{Anzahl|Einzahl|Mehrzahl}"},
        BadDefinition{"BadSum", "[Bericht]\nTitel = a\nQuelle = T\n[Berichtskopf]\nZeile = {Summe(b}\n", 5,
                      "{Summe(Feld)}"},
        BadDefinition{"BadBreakdownValue",
                      "[Bericht]\nTitel = a\nQuelle = T\n[Spalte]\nFeld = a\n[Aufschlüsselung]\nFeld = a\nWert = Mittel\n",
                      8, "\"Wert\" ist \"Anzahl\" oder \"Summe(Feld)\"."}),
    [](const ::testing::TestParamInfo<BadDefinition>& info) { return std::string(info.param.name); });

TEST(ReportDefinition, TooManyGroupsAreRefused)
{
    std::string text = "[Bericht]\nTitel = a\nQuelle = T\n[Spalte]\nFeld = a\n";
    for (int i = 0; i < 9; ++i)
        text += "[Gruppe]\nFeld = g" + std::to_string(i) + "\n";
    EXPECT_NE(errorOf(text).find("Mehr als 8 Gruppen"), std::string::npos);
}

TEST(ReportDefinition, AFileNameShowsOneKindOfSeparator)
{
    EXPECT_EQ(errorOf("[Bericht\n", "C:\\Quarn\\Demo\\Report\\invdiff.rpt")
                  .rfind("Fehler in der Berichtsdatei 'C:/Quarn/Demo/Report/invdiff.rpt', Zeile 1: ", 0),
              0u);
}

TEST(ReportDefinition, BracesAreWrittenDoubled)
{
    const TextTemplate t = parseTextTemplate("{{wörtlich}} {a}", "t.rpt", 1);
    ASSERT_EQ(t.parts.size(), 2u);
    EXPECT_EQ(t.parts[0].text, "{wörtlich} ");
    EXPECT_EQ(t.parts[1].kind, TextTemplate::Part::Kind::Field);
}

} // namespace
} // namespace qi::test
