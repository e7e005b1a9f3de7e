// A report's rows from the report database: the fields it names, in group and sort
// order (German reading order for texts), its groups, counts, sums and formats, and
// the error message with file and line for a field or source the database lacks.

#include "ReportFixture.h"

#include "FileSystem.h"
#include "ReportModel.h"
#include "ReportTable.h"

#include <array>

namespace qi::test {
namespace {

class ReportModelTest : public ReportFixture {
protected:
    void SetUp() override
    {
        ReportFixture::SetUp();
        sql("CREATE TABLE T_Daten (stRaum TEXT, stName TEXT, iAnz INTEGER, dWert REAL, Datum TEXT, stNotiz TEXT);"
            "INSERT INTO T_Daten VALUES ('102', 'Zange', 2, 1.5, '14.03.2025', NULL);"
            "INSERT INTO T_Daten VALUES ('101', 'Äpfel', 3, 1234.25, '2025-03-15 00:00:00', 'x');"
            "INSERT INTO T_Daten VALUES ('101', 'Birne', 1, 0.1, '', 'y');"
            "INSERT INTO T_Daten VALUES ('102', 'apfel', 4, -2, '16.03.2025', '');"
            "INSERT INTO T_Daten VALUES ('101', 'Öl', 5, 10, NULL, 'z');");
    }
    std::string file(const std::string& extra)
    {
        return definition("t.rpt", "[Bericht]\nTitel = Test\nQuelle = T_Daten\nSortierung = stName\n" + extra);
    }
    std::vector<std::string> column(const Report& r, std::size_t c)
    {
        std::vector<std::string> out;
        for (std::size_t row = 0; row < r.model().rowCount(); ++row)
            out.push_back(r.model().cellText(row, c));
        return out;
    }
};

TEST_F(ReportModelTest, TextsSortInGermanReadingOrderWithinGroups)
{
    auto r = open(file("[Gruppe]\nFeld = stRaum\n[Spalte]\nFeld = stName\n"));
    EXPECT_EQ(column(*r, 0), (std::vector<std::string>{"Äpfel", "Birne", "Öl", "apfel", "Zange"}));
    ASSERT_EQ(r->model().groups(0).size(), 2u);
    EXPECT_EQ(r->model().groups(0)[0].count, 3u);
    EXPECT_EQ(r->model().groups(0)[1].first, 3u);
}

TEST_F(ReportModelTest, DescendingSortAndNumbersAsNumbers)
{
    auto r = open(definition("t.rpt", "[Bericht]\nTitel = T\nQuelle = T_Daten\nSortierung = iAnz absteigend\n"
                                      "[Spalte]\nFeld = iAnz\nFormat = Zahl\n[Spalte]\nFeld = dWert\nFormat = Zahl 2\n"));
    EXPECT_EQ(column(*r, 0), (std::vector<std::string>{"5", "4", "3", "2", "1"}));
    EXPECT_EQ(column(*r, 1), (std::vector<std::string>{"10,00", "-2,00", "1.234,25", "1,50", "0,10"}));
    EXPECT_TRUE(r->model().cellIsNumber(0, 1));
    EXPECT_DOUBLE_EQ(r->model().cellNumber(2, 1), 1234.25);
    EXPECT_EQ(r->model().definition().columns[1].alignment, Alignment::Right);
}

TEST_F(ReportModelTest, DatesInTheirPatternAndOtherTextsAsTheyStand)
{
    auto r = open(file("[Spalte]\nFeld = Datum\nFormat = Datum TT.MM.JJ\n"));
    EXPECT_EQ(column(*r, 0), (std::vector<std::string>{"16.03.25", "15.03.25", "", "", "14.03.25"}));
}

TEST_F(ReportModelTest, GroupTextsCountsSumsAndFallbacks)
{
    auto r = open(file("[Gruppe]\nFeld = stRaum\nKopf = Raum {stRaum} mit {Anzahl|Eintrag|Einträgen}\n"
                       "Fuß = Summe {Summe(iAnz)}, Notiz {stNotiz|keine}\n"
                       "[Spalte]\nFeld = stName\n[Spalte]\nFeld = iAnz\nFormat = Zahl\nSumme = ja\n"
                       "[Zusammenfassung]\nZeile = {Anzahl} Zeilen, {Summe(iAnz)} Stück\n"));
    const ReportModel& m = r->model();
    const auto& def = m.definition();
    EXPECT_EQ(m.evaluate(def.groups[0].header[0], m.groups(0)[0]), "Raum 101 mit 3 Einträgen");
    EXPECT_EQ(m.evaluate(def.groups[0].footer[0], m.groups(0)[0]), "Summe 9, Notiz x");
    EXPECT_EQ(m.evaluate(def.groups[0].footer[0], m.groups(0)[1]), "Summe 6, Notiz keine");
    EXPECT_EQ(m.evaluate(def.summary[0], m.all()), "5 Zeilen, 15 Stück");
    EXPECT_EQ(m.columnSum(1, m.groups(0)[1]), "6");
    const RowRange one{0, 1};
    EXPECT_EQ(m.evaluate(def.groups[0].header[0], one), "Raum 101 mit 1 Eintrag");
}

TEST_F(ReportModelTest, ReportValuesInPlaceholders)
{
    auto r = open(file("[Berichtskopf]\nZeile = {Titel}|{Auftrag}|{Projekt}|{Druckdatum}|{Berichtsdatei}|{Seite}/{Seiten}\n"
                       "[Spalte]\nFeld = stName\n"));
    const ReportModel& m = r->model();
    EXPECT_EQ(m.evaluate(m.definition().reportHeader[0], m.all(), 2, 7),
              "Test|Auftrag 1|Projekt|01.04.2025, 10:00 Uhr|t.rpt|2/7");
}

TEST_F(ReportModelTest, BreakdownsCountPerValueInTheComparisonsOrder)
{
    sql("INSERT INTO T_Daten VALUES ('ä', 'Q', 1, 1, '', '');");
    auto r = open(file("[Spalte]\nFeld = stName\n[Aufschlüsselung]\nFeld = stRaum\nWert = Anzahl\n"
                       "[Aufschlüsselung]\nFeld = stRaum\nWert = Summe(iAnz)\n"));
    const auto& counts = r->model().breakdowns()[0];
    ASSERT_EQ(counts.size(), 3u);
    EXPECT_EQ(counts[0].value, "101");
    EXPECT_EQ(counts[0].amount, "3");
    EXPECT_EQ(counts[2].value, "ä");
    EXPECT_EQ(r->model().breakdowns()[1][1].amount, "6");
}

TEST_F(ReportModelTest, SqlSourceOverTheDatabase)
{
    auto r = open(definition("s.rpt", "[Bericht]\nTitel = T\nSQL = SELECT stRaum, count(*) AS n FROM T_Daten\n"
                                      "      GROUP BY stRaum\nSortierung = stRaum\n[Spalte]\nFeld = stRaum\n"
                                      "[Spalte]\nFeld = n\n"));
    EXPECT_EQ(column(*r, 1), (std::vector<std::string>{"3", "2"}));
}

TEST_F(ReportModelTest, FieldNamesIgnoreLetterCaseAndTakeBrackets)
{
    auto r = open(file("[Spalte]\nFeld = [STNAME]\n"));
    EXPECT_EQ(r->model().rowCount(), 5u);
}

TEST_F(ReportModelTest, AnOptionalColumnTheSourceLacksIsLeftOut)
{
    auto r = open(file("[Spalte]\nFeld = stName\n[Spalte]\nFeld = stObjBemerkung\nOptional = ja\n"));
    EXPECT_EQ(r->model().definition().columns.size(), 1u);
}

TEST_F(ReportModelTest, AnUnknownColumnNamesFileLineAndTheFieldsThereAre)
{
    const std::string f = file("\n[Spalte]\nFeld = stName\n\n[Spalte]\nFeld = stFarbe\n");
    EXPECT_EQ(openError(f), "Fehler in der Berichtsdatei '" + displayPath(f) +
                                "', Zeile 10: Unbekanntes Feld \"stFarbe\". Die Datenquelle hat die Felder stRaum, "
                                "stName, iAnz, dWert, Datum, stNotiz.");
}

TEST_F(ReportModelTest, UnknownFieldsInGroupsTextsAndSortNameTheirLine)
{
    EXPECT_NE(openError(file("[Spalte]\nFeld = stName\n[Gruppe]\nFeld = stEtage\n")).find("Zeile 8: Unbekanntes Feld \"stEtage\""),
              std::string::npos);
    EXPECT_NE(openError(file("[Spalte]\nFeld = stName\n[Zusammenfassung]\nZeile = {stX}\n")).find("Zeile 8: Unbekanntes Feld \"stX\""),
              std::string::npos);
    EXPECT_NE(openError(definition("u.rpt", "[Bericht]\nTitel = T\nQuelle = T_Daten\nSortierung = stY\n[Spalte]\n"
                                            "Feld = stName\n"))
                  .find("Zeile 4: Unbekanntes Feld \"stY\""),
              std::string::npos);
}

TEST_F(ReportModelTest, AnUnknownSourceOrFailingStatementNamesItsLine)
{
    EXPECT_NE(openError(definition("q.rpt", "[Bericht]\nTitel = T\nQuelle = T_Fehlt\n[Spalte]\nFeld = a\n"))
                  .find("Zeile 3: Die Datenquelle \"T_Fehlt\" gibt es in der Berichtsdatenbank nicht."),
              std::string::npos);
    EXPECT_NE(openError(definition("q.rpt", "[Bericht]\nTitel = T\nSQL = SELECT nix FROM T_Daten\n[Spalte]\nFeld = a\n"))
                  .find("Zeile 3: Die Datenquelle kann nicht gelesen werden: Element in dieser Auflistung nicht gefunden (nix)."),
              std::string::npos);
    EXPECT_NE(openError(definition("q.rpt", "[Bericht]\nTitel = T\nSQL = SELECT 1 AS a; SELECT 2 AS a\n[Spalte]\nFeld = a\n"))
                  .find("Zeile 3: \"SQL\" darf nur eine Abfrage enthalten."),
              std::string::npos);
}

TEST_F(ReportModelTest, AReportNeverWritesTheDatabase)
{
    EXPECT_NE(openError(definition("w.rpt", "[Bericht]\nTitel = T\nSQL = WITH x AS (SELECT 1) DELETE FROM T_Daten\n"
                                            "[Spalte]\nFeld = a\n")),
              "");
    EXPECT_EQ(toLong(Database::open(dataFile)->scalar("SELECT count(*) FROM T_Daten")), 5);
}

TEST(ReportTableTest, EveryValueReadsBackAsItWasAppendedAcrossBlocksRepeatsAndKinds)
{
    // Values of every length around the 1 MiB blocks the texts are packed in, one longer than
    // a block (2.5 MiB), empty texts, Nulls, and values that repeat the row above in their
    // field (kept once) next to the same text of another kind (kept apart).
    ReportTable table({"stRaum", "stText", "iNr"});
    std::vector<std::array<std::pair<ReportTable::Kind, std::string>, 3>> rows;
    const std::size_t lengths[] = {0, 1, 700000, 400000, 1048575, 1, 2621440, 3, 1048576, 12};
    for (std::size_t i = 0; i < std::size(lengths); ++i) {
        const std::string room = i < 5 ? "Raum 101" : "Raum 102";
        std::string text(lengths[i], char('a' + int(i)));
        if (!text.empty())
            text.back() = 'z';
        const ReportTable::Kind numberKind = i % 3 == 0 ? ReportTable::Kind::Text : ReportTable::Kind::Integer;
        rows.push_back({std::pair{ReportTable::Kind::Text, room}, std::pair{ReportTable::Kind::Text, text},
                        std::pair{i == 4 ? ReportTable::Kind::Null : numberKind, std::string(i == 4 ? "" : "7")}});
        rows.push_back(rows.back()); // the same values again
    }
    for (const auto& row : rows)
        for (const auto& [kind, text] : row)
            table.append(kind, text);

    ASSERT_EQ(table.rowCount(), rows.size());
    for (std::size_t r = 0; r < rows.size(); ++r)
        for (std::size_t f = 0; f < 3; ++f) {
            EXPECT_EQ(table.kind(r, f), rows[r][f].first) << "row " << r << ", field " << f;
            EXPECT_EQ(table.text(r, f), rows[r][f].second) << "row " << r << ", field " << f;
        }
    EXPECT_EQ(table.number(2, 2), 7);
    EXPECT_FALSE(table.isNumeric(8, 2));
}

TEST(ReportNumbers, GermanDigitsGroupingAndNoNegativeZero)
{
    EXPECT_EQ(formatNumber(1234567.5, 2), "1.234.567,50");
    EXPECT_EQ(formatNumber(1234567.5, 2, false), "1234567,50");
    EXPECT_EQ(formatNumber(0.125, -1), "0,125");
    EXPECT_EQ(formatNumber(-0.001, 2), "0,00");
    EXPECT_EQ(formatNumber(42, -1), "42");
}

TEST(ReportDates, TextAndDayNumbers)
{
    EXPECT_EQ(formatDate("14.03.2025", false, 0, "dd.MM.yyyy"), "14.03.2025");
    EXPECT_EQ(formatDate("1.3.2025", false, 0, "dd.MM.yyyy"), "01.03.2025");
    EXPECT_EQ(formatDate("14.03.25", false, 0, "dd.MM.yyyy"), "14.03.2025");
    EXPECT_EQ(formatDate("2025-03-14 08:30:00", false, 0, "dd.MM.yyyy HH:mm"), "14.03.2025 08:30");
    EXPECT_EQ(formatDate("45730", true, 45730, "dd.MM.yyyy"), "14.03.2025");
    EXPECT_EQ(formatDate("gestern", false, 0, "dd.MM.yyyy"), "gestern");
}

} // namespace
} // namespace qi::test
