// Pages of a report, laid out once: every row on exactly one page in order, column
// headings on every page, group headers kept with their first row and repeated on
// the pages a group runs on to, long texts wrapped, "Seite x von y" on every page.

#include "ReportFixture.h"

#include <QString>

namespace qi::test {
namespace {

class ReportLayoutTest : public ReportFixture {
protected:
    /// `rooms` rooms of `perRoom` rows each.
    void rows(int rooms, int perRoom, const std::string& note = "kurz")
    {
        std::string script = "CREATE TABLE T_Daten (stRaum TEXT, iNr INTEGER, stText TEXT); BEGIN;";
        for (int r = 0; r < rooms; ++r)
            for (int i = 0; i < perRoom; ++i)
                script += "INSERT INTO T_Daten VALUES ('R" + std::to_string(100 + r) + "', " + std::to_string(i) +
                          ", '" + note + "');";
        sql(script + "COMMIT;");
    }
    std::string grouped(const std::string& groupExtra = {}, const std::string& page = "Hochformat")
    {
        return definition("g.rpt", "[Bericht]\nTitel = Liste\nQuelle = T_Daten\nSortierung = iNr\nSeite = " + page +
                                       "\n[Gruppe]\nFeld = stRaum\nKopf = Raum {stRaum}\nFuß = {Anzahl} Zeilen\n" +
                                       groupExtra + "[Spalte]\nFeld = iNr\nBreite = 20\n[Spalte]\nFeld = stText\n"
                                                    "Umbruch = ja\n");
    }
};

TEST_F(ReportLayoutTest, EveryRowLandsOnceInOrderAndEveryPageHasHeadings)
{
    rows(3, 120);
    auto r = open(grouped());
    const ReportLayout& l = r->layout();
    ASSERT_GT(l.pageCount(), 3);
    std::size_t next = 0;
    for (int p = 0; p < l.pageCount(); ++p) {
        const auto bands = l.bands(p);
        ASSERT_FALSE(bands.empty());
        EXPECT_EQ(bands.front().kind, Band::Kind::ColumnHeadings) << "page " << p;
        float bottom = 0;
        for (const Band& b : bands) {
            EXPECT_GE(b.y, bottom - 0.01f);
            bottom = b.y + b.height;
            if (b.kind == Band::Kind::Row) {
                EXPECT_EQ(b.index, next++);
            }
        }
        EXPECT_LE(bottom, l.footerRule()) << "page " << p;
    }
    EXPECT_EQ(next, 360u);
}

TEST_F(ReportLayoutTest, AGroupRunningOnIsRepeatedAsContinuation)
{
    rows(1, 200);
    auto r = open(grouped());
    ASSERT_GT(r->pageCount(), 1);
    const auto second = r->layout().bands(1);
    ASSERT_GE(second.size(), 2u);
    EXPECT_EQ(second[1].kind, Band::Kind::GroupHeader);
    EXPECT_TRUE(second[1].continued);
    EXPECT_NE(r->text().find("# Raum R100 (Fortsetzung)"), std::string::npos);
}

TEST_F(ReportLayoutTest, AGroupHeaderNeverStandsAloneAtThePagesFoot)
{
    rows(40, 7);
    auto r = open(grouped());
    for (int p = 0; p < r->pageCount(); ++p) {
        const auto bands = r->layout().bands(p);
        for (std::size_t i = 0; i < bands.size(); ++i) {
            if (bands[i].kind == Band::Kind::GroupHeader && !bands[i].continued) {
                ASSERT_LT(i + 1, bands.size()) << "page " << p;
                EXPECT_EQ(bands[i + 1].kind, Band::Kind::Row) << "page " << p;
            }
        }
    }
}

TEST_F(ReportLayoutTest, AGroupsFooterNeverStartsAPageWithoutItsLastRow)
{
    // Rooms of 1 to 23 rows in two kinds each, so that groups of both levels end at every
    // place of a page somewhere in the report.
    std::string script = "CREATE TABLE T_Daten (stRaum TEXT, stTyp TEXT, iNr INTEGER); BEGIN;";
    int nr = 0;
    for (int room = 0; room < 120; ++room)
        for (int i = 0; i < room * 7 % 23 + 1; ++i)
            script += "INSERT INTO T_Daten VALUES ('R" + std::to_string(1000 + room) + "', '" +
                      (i % 3 == 0 ? "A" : "B") + "', " + std::to_string(nr++) + ");";
    sql(script + "COMMIT;");
    auto r = open(definition("f.rpt", "[Bericht]\nTitel = Liste\nQuelle = T_Daten\nSortierung = stRaum, stTyp, iNr\n"
                                      "[Gruppe]\nFeld = stRaum\nKopf = Raum {stRaum}\nFuß = {Anzahl} in {stRaum}\n"
                                      "[Gruppe]\nFeld = stTyp\nKopf = {stTyp}\nFuß = {Anzahl}\n"
                                      "[Spalte]\nFeld = iNr\n"));
    const ReportLayout& l = r->layout();
    ASSERT_GT(l.pageCount(), 20);
    int continuedPages = 0;
    for (int p = 1; p < l.pageCount(); ++p) {
        const auto bands = l.bands(p);
        std::size_t i = 0;
        while (i < bands.size() &&
               (bands[i].kind == Band::Kind::ColumnHeadings ||
                (bands[i].kind == Band::Kind::GroupHeader && bands[i].continued)))
            ++i;
        continuedPages += i > 1 ? 1 : 0;
        ASSERT_LT(i, bands.size()) << "page " << p + 1;
        EXPECT_NE(bands[i].kind, Band::Kind::GroupFooter) << "page " << p + 1 << " starts with a footer";
        // A footer stands after its group's last row on the same page.
        for (std::size_t j = i; j < bands.size(); ++j)
            if (bands[j].kind == Band::Kind::GroupFooter) {
                const RowRange& g = r->model().groups(bands[j].level)[bands[j].index];
                bool lastRowHere = false;
                for (std::size_t k = 0; k < j; ++k)
                    lastRowHere |= bands[k].kind == Band::Kind::Row && bands[k].index == g.first + g.count - 1;
                EXPECT_TRUE(lastRowHere) << "page " << p + 1 << ", footer of group " << bands[j].index;
            }
    }
    EXPECT_GT(continuedPages, 0);
}

TEST_F(ReportLayoutTest, GroupsThatAskForANewPageStartOne)
{
    rows(3, 5);
    auto r = open(grouped("NeueSeite = ja\n"));
    EXPECT_EQ(r->pageCount(), 3);
    for (int p = 0; p < 3; ++p) {
        EXPECT_EQ(r->layout().bands(p)[1].kind, Band::Kind::GroupHeader);
    }
}

TEST_F(ReportLayoutTest, LongTextsWrapAndMakeTheirRowTaller)
{
    rows(1, 2, std::string(60, 'x') + " " + std::string(60, 'y') + " " + std::string(60, 'z'));
    sql("UPDATE T_Daten SET stText = 'kurz' WHERE iNr = 1");
    auto r = open(grouped());
    const auto bands = r->layout().bands(0);
    std::vector<float> heights;
    for (const Band& b : bands)
        if (b.kind == Band::Kind::Row)
            heights.push_back(b.height);
    ASSERT_EQ(heights.size(), 2u);
    EXPECT_GT(heights[0], 1.8f * heights[1]);
}

TEST_F(ReportLayoutTest, EveryPageSaysWhichOfHowManyItIs)
{
    rows(2, 150);
    auto r = open(grouped());
    const std::string text = r->text();
    const int pages = r->pageCount();
    for (int p = 1; p <= pages; ++p) {
        EXPECT_NE(text.find("--- g.rpt | Seite " + std::to_string(p) + " von " + std::to_string(pages) + "\n"),
                  std::string::npos)
            << p;
    }
}

TEST_F(ReportLayoutTest, AnEmptyReportIsOnePageWithItsText)
{
    rows(0, 0);
    auto r = open(grouped());
    EXPECT_EQ(r->pageCount(), 1);
    EXPECT_NE(r->text().find("Keine Einträge vorhanden."), std::string::npos);
}

TEST_F(ReportLayoutTest, LandscapeTurnsThePage)
{
    rows(1, 1);
    auto portrait = open(grouped());
    auto landscape = open(grouped({}, "Querformat"));
    EXPECT_GT(portrait->layout().pageHeight(), portrait->layout().pageWidth());
    EXPECT_NEAR(landscape->layout().pageWidth(), portrait->layout().pageHeight(), 0.01);
    // The shared column takes what the fixed one leaves.
    EXPECT_GT(landscape->layout().columns()[1].width, portrait->layout().columns()[1].width);
}

TEST_F(ReportLayoutTest, TheLayoutGrowsWithTheRowsAlone)
{
    rows(10, 100);
    auto small = open(grouped());
    sql("INSERT INTO T_Daten SELECT * FROM T_Daten; INSERT INTO T_Daten SELECT * FROM T_Daten;");
    auto large = open(grouped());
    // Four times the rows: four times the rows' bands, groups as before; no band is made twice.
    EXPECT_EQ(large->model().rowCount(), 4 * small->model().rowCount());
    std::size_t smallRows = 0, largeRows = 0;
    for (int p = 0; p < small->pageCount(); ++p)
        for (const Band& b : small->layout().bands(p))
            smallRows += b.kind == Band::Kind::Row;
    for (int p = 0; p < large->pageCount(); ++p)
        for (const Band& b : large->layout().bands(p))
            largeRows += b.kind == Band::Kind::Row;
    EXPECT_EQ(largeRows, 4 * smallRows);
    EXPECT_LE(large->layout().bandCount(), 4 * small->layout().bandCount() + std::size_t(large->pageCount()) * 2);
}

} // namespace
} // namespace qi::test
