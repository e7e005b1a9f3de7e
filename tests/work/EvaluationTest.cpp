// The evaluation run, the article tally, the inventory list and the report menus on
// an order of a small installation, for each of the three modules.

#include "EvaluationFixture.h"

#include "FileSystem.h"
#include "LinkedDatabase.h"
#include "ReportMenus.h"

#include <algorithm>
#include <map>
#include <set>

namespace qi::test {
namespace {

const char* moduleName(int modul)
{
    static const char* names[] = {"INVENTAR", "TECHNIK", "BRANDSCHUTZ"};
    return names[modul];
}

void expectRow(const EvalRow& got, const EvalRow& want)
{
    SCOPED_TRACE("room " + want.raum + ", Soll '" + want.soll + "', Ist '" + want.ist + "'");
    EXPECT_EQ(got.raum, want.raum);
    EXPECT_EQ(got.soll, want.soll);
    EXPECT_EQ(got.ist, want.ist);
    EXPECT_EQ(got.typ, want.typ);
    EXPECT_EQ(got.ziel, want.ziel);
    EXPECT_EQ(got.quelle, want.quelle);
    EXPECT_EQ(got.quarn, want.quarn);
    EXPECT_EQ(got.artNr, want.artNr);
    EXPECT_EQ(got.beschreibung, want.beschreibung);
    EXPECT_EQ(got.bemerkung, want.bemerkung);
    EXPECT_EQ(got.datum, want.datum);
    EXPECT_EQ(got.uhrzeit, want.uhrzeit);
}

void expectRows(const std::vector<EvalRow>& got, const std::vector<EvalRow>& want)
{
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t i = 0; i < want.size(); ++i)
        expectRow(got[i], want[i]);
}

} // namespace

// ---------------------------------------------------------------- the whole road

TEST_P(EvaluationTest, ScansOfThreeFilesReconcileIntoEveryCategory)
{
    importAll();
    // What the import said on the way.
    const std::string ohneNr = "In der Datei '" + file2 + "' steht ein Datensatz ohne Objektnummer.";
    EXPECT_EQ(messagesStartingWith(ohneNr), 1);
    EXPECT_EQ(messagesStartingWith("Warnung: Im Raum 101 ist die Objektnummer 'INV-001' mehrfach eingescannt worden."), 1);
    EXPECT_EQ(messagesStartingWith("In der Datei sind Räume enthalten, die nicht zum Auftrag gehören."), 1);
    ASSERT_EQ(ui.conflicts.size(), 2u);
    EXPECT_EQ(ui.conflicts[0].stInvNr, "INV-008");
    EXPECT_EQ(ui.conflicts[0].stRaumAlt, "101");
    EXPECT_EQ(ui.conflicts[0].stRaumNeu, "102");
    EXPECT_EQ(ui.conflicts[1].stInvNr, "INV-010");
    EXPECT_EQ(ui.conflicts[1].stDateiAlt, "Erfassung1.dat");
    const std::size_t messagesBefore = ui.messages.size();

    ASSERT_TRUE(w->ReportDifferenzListe());
    EXPECT_EQ(ui.messages.size(), messagesBefore) << ui.messages.back().text;
    EXPECT_FALSE(ui.busy);

    const std::string m = std::string(" ") + moduleName(modul());
    expectRows(rows(), {
        // Soll rows, room by room, each room's objects by number.
        {"101", "INV-001", "INV-001", k1, "", "", "", "ART-1", "Stuhl grau" + m, "Kratzer", "01.02.2015", "08:00:00"},
        {"101", "INV-002", "", k3a, "102", "", "", "ART-2", "Tisch eiche" + m, "", "02.02.2015", "09:00:00"},
        {"101", "INV-008", "INV-008", k1, "", "", "", "ART-3", "Regal niedrig" + m, "", "01.02.2015", "08:03:00"},
        {"102", "INV-003", "", k3b, "", "", "", "ART-1", "Stuhl blau" + m, "", "", ""},
        // Taken from room 103 in the conflict dialog: the second scan's date, the first scan's time.
        {"102", "INV-010", "INV-010", k1, "", "", "", "ART-2", "Tisch rund" + m, "", "02.02.2015", "08:11:00"},
        // A room where Quarn expects nothing is listed with one row of its own.
        {"103", "", "", k2c, "", "", "", "", "", "", "", ""},
        // Status "L": evaluated although nothing was scanned.
        {"104", "INV-005", "", k3b, "", "", "", "ART-2", "Tisch klein" + m, "", "", ""},
        // Scans without a Soll row, in the order they were read.
        {"101", "", "INV-004", k2b, "", "", "201", "ART-3", "Regal hoch" + m, "Leihgabe", "01.02.2015", "08:02:00"},
        {"103", "", "UNBEKANNT-1", k2c, "", "", "", "", "", "", "01.02.2015", "08:10:00"},
        {"102", "", "INV-002", k2a, "", "101", "", "ART-2", "Tisch eiche" + m, "", "02.02.2015", "09:00:00"},
        {"102", "", "Obj. ohne Nr.", k2c, "", "", "", "", "", "", "02.02.2015", "09:03:00"},
    });

    // The error lists cut the freshly evaluated list down.
    w->mnuFehlerFkt_Click(fehlermenu::Neu);
    expectRows(rows(), {
        {"101", "", "INV-004", k2b, "", "", "201", "ART-3", "Regal hoch" + m, "Leihgabe", "01.02.2015", "08:02:00"},
        {"103", "", "UNBEKANNT-1", k2c, "", "", "", "", "", "", "01.02.2015", "08:10:00"},
        {"102", "", "Obj. ohne Nr.", k2c, "", "", "", "", "", "", "02.02.2015", "09:03:00"},
    });
    w->mnuFehlerFkt_Click(fehlermenu::Verschoben);
    expectRows(rows(), {
        {"101", "INV-002", "", k3a, "102", "", "", "ART-2", "Tisch eiche" + m, "", "02.02.2015", "09:00:00"},
    });
    w->mnuFehlerFkt_Click(fehlermenu::Fehlend);
    expectRows(rows(), {
        {"102", "INV-003", "", k3b, "", "", "", "ART-1", "Stuhl blau" + m, "", "", ""},
        {"104", "INV-005", "", k3b, "", "", "", "ART-2", "Tisch klein" + m, "", "", ""},
    });
    ASSERT_EQ(ui.reports.size(), 3u);
    EXPECT_EQ(ui.reports[0].reportFile, project + "/Report\\InvNeu.rpt");
    EXPECT_EQ(ui.reports[0].title, "Liste Neu im Auftragsbereich");
    EXPECT_EQ(ui.reports[1].reportFile, project + "/Report\\InvVersch.rpt");
    EXPECT_EQ(ui.reports[1].title, "Liste Verschoben");
    EXPECT_EQ(ui.reports[2].reportFile, project + "/Report\\InvFehlend.rpt");
    EXPECT_EQ(ui.reports[2].title, "Liste Fehlend");
    for (const RecordedReport& r : ui.reports)
        EXPECT_EQ(r.dataFile, program + "\\QInventurRpt.mdb");
    EXPECT_EQ(ui.messages.size(), messagesBefore);
}

INSTANTIATE_TEST_SUITE_P(Modules, EvaluationTest, ::testing::Values(0, 1, 2),
                         [](const ::testing::TestParamInfo<int>& info) { return std::string(moduleName(info.param)); });

// ---------------------------------------------------------------- the run on its own

class EvaluationRun : public EvaluationTest {};
INSTANTIATE_TEST_SUITE_P(Inventar, EvaluationRun, ::testing::Values(0),
                         [](const ::testing::TestParamInfo<int>&) { return std::string("INVENTAR"); });

TEST_P(EvaluationRun, RoomWithStatusNContributesNoRowsAtAll)
{
    importAll();
    ASSERT_TRUE(w->ReportDifferenzListe());
    EXPECT_TRUE(rowsOf("105").empty());
    // Set to "L", the same room is evaluated.
    sql().execute("UPDATE T_Raum SET ststatus = 'L' WHERE stRaumNr = '105'");
    ASSERT_TRUE(w->ReportDifferenzListe());
    const auto r = rowsOf("105");
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].soll, "INV-006");
    EXPECT_EQ(r[0].typ, k3b);
}

TEST_P(EvaluationRun, RoomWithoutHostObjectsContributesExactlyOneRowWithOnlyItsRoom)
{
    sql().execute("UPDATE T_Raum SET ststatus = 'L' WHERE stRaumNr = '103'");
    ASSERT_TRUE(w->ReportDifferenzListe());
    const Recordset rs = sql().query("SELECT lRaumID, stSollInvNR, stIstInvNR, stBeschreibung, stZiel, stQuelle, "
                                     "stArtNr, Datum, Uhrzeit FROM T_Differenzliste WHERE lRaumID = ?1",
                                     {std::int64_t{roomKey("103")}});
    ASSERT_EQ(rs.size(), 1u);
    for (std::size_t c = 1; c < rs.columnNames().size(); ++c)
        EXPECT_EQ(toText(rs.rows()[0][c]), "") << rs.columnNames()[c];
    // Without numbers and without a place in Quarn, the row counts as unknown to Quarn.
    EXPECT_EQ(rowsOf("103")[0].typ, k2c);
}

TEST_P(EvaluationRun, UnknownScanIs2cAndAScanKnownElsewhereKeepsItsCategoryWithThatLocation)
{
    importAll();
    ASSERT_TRUE(w->ReportDifferenzListe());
    for (const EvalRow& r : rows()) {
        if (r.ist == "UNBEKANNT-1") {
            EXPECT_EQ(r.typ, k2c);
            EXPECT_EQ(r.quarn, "");
        }
        if (r.ist == "INV-004") {
            EXPECT_EQ(r.typ, k2b);
            EXPECT_EQ(r.quarn, "201");
        }
    }
}

TEST_P(EvaluationRun, EachRowCarriesTheRemarkOfTheObjectOfItsScannedNumberElseOfItsSollNumber)
{
    {
        const auto objects = Database::open(project + "/QOvInventar.mdb");
        objects->execute("UPDATE T_IObjekt SET stBemerkung = 'Bemerkung 2' WHERE stName = 'INV-002'");
        objects->execute("UPDATE T_IObjekt SET stBemerkung = 'Bemerkung 5' WHERE stName = 'INV-005'");
    }
    importAll();
    ASSERT_TRUE(w->ReportDifferenzListe());
    std::map<std::string, std::string> remarks;
    for (const EvalRow& r : rows())
        remarks[r.typ.substr(0, r.typ.find(' ')) + " " + r.soll + "/" + r.ist] = r.bemerkung;
    EXPECT_EQ(remarks["1 INV-001/INV-001"], "Kratzer");
    // Moved within the order: the missing row by its Soll number, the surplus row by its scan.
    EXPECT_EQ(remarks["3a INV-002/"], "Bemerkung 2");
    EXPECT_EQ(remarks["2a /INV-002"], "Bemerkung 2");
    // Expected and not scanned.
    EXPECT_EQ(remarks["3b INV-005/"], "Bemerkung 5");
    // Scanned, belonging elsewhere; and unknown to Quarn.
    EXPECT_EQ(remarks["2b /INV-004"], "Leihgabe");
    EXPECT_EQ(remarks["2c /UNBEKANNT-1"], "");
}

TEST_P(EvaluationRun, RunningTwiceGivesTheSameList)
{
    importAll();
    ASSERT_TRUE(w->ReportDifferenzListe());
    const auto first = rows();
    ASSERT_TRUE(w->ReportDifferenzListe());
    expectRows(rows(), first);
    // Keys are new: the list was made anew, not kept.
    EXPECT_GT(toLong(sql().scalar("SELECT min(lID) FROM T_Differenzliste")), std::int64_t(first.size()));
}

TEST_P(EvaluationRun, ProgressShowsRoomsDoneOfRoomsThenEachStep)
{
    importAll();
    ui.steps.clear();
    const int ended = ui.progressEnded;
    ASSERT_TRUE(w->ReportDifferenzListe());
    EXPECT_EQ(ui.progressTitles.back(), "Auswertung");
    EXPECT_EQ(ui.progressEnded, ended + 1);
    EXPECT_EQ(ui.progressDepth, 0);
    std::vector<std::pair<std::int64_t, std::int64_t>> rooms;
    std::vector<std::string> steps;
    for (const RecordedStep& s : ui.steps) {
        if (s.step == "Sollbestand der Räume")
            rooms.emplace_back(s.done, s.total);
        else
            steps.push_back(s.step);
    }
    ASSERT_EQ(rooms.size(), 6u);
    for (std::int64_t i = 0; i < 6; ++i)
        EXPECT_EQ(rooms[std::size_t(i)], std::make_pair(i, std::int64_t{5}));
    EXPECT_EQ(steps, (std::vector<std::string>{"Objekte am richtigen Platz", "Zusätzlich erfasste Objekte",
                                               "Artikeldaten der erfassten Objekte", "Verschobene Objekte",
                                               "Standorte in Quarn", "Bemerkungen der Objekte"}));
}

TEST_P(EvaluationRun, MissingReportDatabaseStopsTheRunAfterTheOrderStatements)
{
    importAll();
    ASSERT_TRUE(removeFile(reportDb));
    ui.messages.clear();
    EXPECT_FALSE(w->ReportDifferenzListe());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text.rfind("frmWork.ReportDifferenzListe\r\n", 0), 0u) << ui.messages[0].text;
    EXPECT_NE(ui.messages[0].text.find("QInventurRpt.mdb"), std::string::npos);
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(ui.messages[0].title, "QInventur");
    // The pointer stays busy on this path.
    EXPECT_TRUE(ui.busy);
    // The list stays as far as it was built: classified in the order, not yet against Quarn.
    bool sawOk = false, saw2a = false;
    for (const EvalRow& r : rows()) {
        sawOk = sawOk || r.typ == k1;
        saw2a = saw2a || r.typ == k2a;
        if (r.ist == "UNBEKANNT-1") {
            EXPECT_EQ(r.typ, k2b);
        }
        if (r.ist == "INV-004") {
            EXPECT_EQ(r.quarn, "");
        }
    }
    EXPECT_TRUE(sawOk);
    EXPECT_TRUE(saw2a);
}

TEST_P(EvaluationRun, FailingHostQueryStopsTheRunWithItsLabel)
{
    importAll();
    {
        auto host = Database::open(project + "/QOvInventar.mdb");
        host->execute("DROP TABLE T_IObjekt");
    }
    ui.messages.clear();
    EXPECT_FALSE(w->ReportDifferenzListe());
    ASSERT_FALSE(ui.messages.empty());
    EXPECT_EQ(ui.messages.back().text.rfind("frmWork.ReportDifferenzListe\r\n", 0), 0u) << ui.messages.back().text;
    EXPECT_NE(ui.messages.back().text.find("T_IObjekt"), std::string::npos) << ui.messages.back().text;
    EXPECT_TRUE(rows().empty());
}

TEST_P(EvaluationRun, AFalseFlagOfAStepEndsTheRunThereWithItsLabel)
{
    importAll();
    ASSERT_TRUE(w->ReportDifferenzListe());
    const auto whole = rows();
    // The evaluation has something for every step to do: a scan at its place, one in a room outside
    // the order, article data to complete, an object moved within the order.
    const auto has = [&](auto&& pred) { return std::any_of(whole.begin(), whole.end(), pred); };
    ASSERT_TRUE(has([](const EvalRow& r) { return r.typ == k1; }));
    ASSERT_TRUE(has([](const EvalRow& r) { return r.typ == k2b && !r.artNr.empty(); }));
    ASSERT_TRUE(has([](const EvalRow& r) { return r.typ == k3a; }));

    struct Case {
        const char* step;    ///< the step that answers False
        std::string trigger; ///< what makes it fail
        const char* firstLabel; ///< the message before the run's own
    };
    const std::string upd = "BEFORE UPDATE ON T_Differenzliste WHEN ";
    const std::vector<Case> cases{
        {"Objekte am richtigen Platz", upd + "NEW.stTyp = '1 OK'", "Problem"},
        {"Zusätzlich erfasste Objekte", "BEFORE INSERT ON T_Differenzliste WHEN NEW.stTyp LIKE '2b %'", "Problem"},
        {"Artikeldaten der erfassten Objekte", upd + "NEW.stArtNr IS NOT OLD.stArtNr", "frmWork.MakeArtikelIst\r\n"},
        {"Verschobene Objekte", upd + "NEW.stTyp LIKE '3a %'", "Problem"},
    };
    const std::vector<std::string> order{"Objekte am richtigen Platz", "Zusätzlich erfasste Objekte",
                                         "Artikeldaten der erfassten Objekte", "Verschobene Objekte",
                                         "Standorte in Quarn", "Bemerkungen der Objekte"};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.step);
        sql().execute("CREATE TRIGGER fails " + c.trigger + " BEGIN SELECT RAISE(ABORT, 'gesperrt'); END");
        ui.messages.clear();
        ui.steps.clear();
        ui.busy = false;
        EXPECT_FALSE(w->ReportDifferenzListe());
        // Two messages: the step's own, then the run's with its label; the pointer stays busy.
        ASSERT_EQ(ui.messages.size(), 2u);
        const std::string first(c.firstLabel);
        if (first == "Problem") {
            EXPECT_EQ(ui.messages[0].title, "Problem");
            EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
        } else {
            EXPECT_EQ(ui.messages[0].text.rfind(first, 0), 0u) << ui.messages[0].text;
        }
        EXPECT_NE(ui.messages[0].text.find("gesperrt"), std::string::npos) << ui.messages[0].text;
        EXPECT_EQ(ui.messages[1].text.rfind("frmWork.ReportDifferenzListe\r\n", 0), 0u) << ui.messages[1].text;
        EXPECT_EQ(ui.messages[1].icon, MsgIcon::Critical);
        EXPECT_EQ(ui.messages[1].title, "QInventur");
        EXPECT_TRUE(ui.busy);
        // No step after the failing one began.
        std::vector<std::string> steps;
        for (const RecordedStep& s : ui.steps)
            if (s.step != "Sollbestand der Räume")
                steps.push_back(s.step);
        ASSERT_FALSE(steps.empty());
        EXPECT_EQ(steps.back(), c.step);
        EXPECT_EQ(steps, std::vector<std::string>(order.begin(), order.begin() + std::ptrdiff_t(steps.size())));
        // The list stays as far as it was built: Soll rows, nothing of Quarn's places and remarks.
        const auto got = rows();
        EXPECT_TRUE(std::any_of(got.begin(), got.end(), [](const EvalRow& r) { return !r.soll.empty(); }));
        for (const EvalRow& r : got) {
            EXPECT_NE(r.typ, k2c) << r.ist;
            EXPECT_EQ(r.quarn, "") << r.ist;
            EXPECT_EQ(r.bemerkung, "") << r.soll;
            EXPECT_NE(r.typ, k3a) << r.soll;
        }
        const auto count = [&](const char* typ) {
            return std::count_if(got.begin(), got.end(), [&](const EvalRow& r) { return r.typ == typ; });
        };
        const std::size_t failed = steps.size() - 1;
        EXPECT_EQ(count(k1) > 0, failed > 0);
        EXPECT_EQ(count(k2b) > 0, failed > 1);
        sql().execute("DROP TRIGGER fails");
    }
    ASSERT_TRUE(w->ReportDifferenzListe());
    expectRows(rows(), whole);
}

// ---------------------------------------------------------------- article tally

TEST_P(EvaluationTest, TallyCountsTheObjectsOfTheOrderRoomsPerArticleAndTheScansPerArticle)
{
    importAll();
    ASSERT_TRUE(w->MakeArtikelAufstellung());

    // Counted here without SQL: Quarn's objects of the module whose location is a room of the order.
    static const char* files[] = {"QOvInventar.mdb", "QOvTechnik.mdb", "QOvBrandschutz.mdb"};
    static const char* prefixes[] = {"T_I", "T_T", "T_B"};
    const std::string prefix = prefixes[modul()];
    std::map<std::int64_t, std::string> articleNr;
    auto host = Database::open(project + "/" + files[modul()], true);
    const Recordset articles = host->query("SELECT lId, stArtNr FROM " + prefix + "Artikel");
    for (const auto& a : articles.rows())
        articleNr[toLong(a[0])] = toText(a[1]);
    const std::set<std::string> orderRooms = {"101", "102", "103", "104", "105"};
    std::map<std::string, int> soll;
    const Recordset objects = host->query("SELECT stOrt, lArtikelId FROM " + prefix + "Objekt");
    for (const auto& o : objects.rows())
        if (orderRooms.count(toText(o[0])))
            ++soll[articleNr.at(toLong(o[1]))];
    std::map<std::string, int> ist;
    CDatInventurRecColl scans;
    ASSERT_TRUE(db.ReadAllDatInventurRec2Coll(scans));
    for (const CDatInventurRec& s : scans)
        ++ist[s.stArtNr];

    CArtikellisteRecColl tally;
    ASSERT_TRUE(db.ReadAllArtikellisteRec2Coll(tally));
    ASSERT_EQ(tally.Count(), std::int32_t(soll.size()));
    for (const CArtikellisteRec& a : tally) {
        SCOPED_TRACE(a.stArtikel);
        EXPECT_EQ(a.iAnzSoll, soll[a.stArtikel]);
        EXPECT_EQ(a.iAnzIst, ist[a.stArtikel]);
        EXPECT_EQ(a.stAuftrag, "A1");
    }
    EXPECT_EQ(soll["ART-1"], 4); // the variant in room 101 is an object with a location too
    // The names come from the module's own article table.
    const std::string m = std::string(" ") + moduleName(modul());
    EXPECT_EQ(tally.Item(1)->stBeschreibung, "Bürostuhl" + m);
    for (const CArtikellisteRec& a : tally)
        EXPECT_TRUE(a.stBeschreibung.ends_with(m)) << a.stArtikel << ": " << a.stBeschreibung;

    ASSERT_EQ(ui.reports.size(), 1u);
    EXPECT_EQ(ui.reports[0].reportFile, project + "/Report\\invart.rpt");
    EXPECT_EQ(ui.reports[0].dataFile, program + "\\QInventurRpt.mdb");
    EXPECT_EQ(ui.reports[0].title, "Artikelaufstellung");
}

TEST_P(EvaluationRun, OrderWithoutRoomsGivesAnEmptyTallyAndStillAsksForTheReport)
{
    CArtikellisteRec old;
    old.stArtikel = "ALT";
    ASSERT_TRUE(db.AddNewArtikellisteRec(&old));
    ASSERT_TRUE(db.DelAllRaumRec());
    EXPECT_TRUE(w->MakeArtikelAufstellung());
    CArtikellisteRecColl tally;
    ASSERT_TRUE(db.ReadAllArtikellisteRec2Coll(tally));
    EXPECT_EQ(tally.Count(), 0);
    ASSERT_EQ(ui.reports.size(), 1u);
    EXPECT_EQ(ui.reports[0].title, "Artikelaufstellung");
    EXPECT_TRUE(ui.messages.empty());
}

TEST_P(EvaluationRun, GroupsWithoutArticleDoNotReachTheTally)
{
    {
        // An object in room 101 without article; room 103 has no objects at all.
        auto host = Database::open(project + "/QOvInventar.mdb");
        host->execute("INSERT INTO T_IObjekt (lId, stName, stOrt, lGebstruId, byGebstruTyp, lArtikelId) "
                      "VALUES (50, 'INV-050', '101', 10, 4, 0)");
    }
    ASSERT_TRUE(w->MakeArtikelAufstellung());
    CArtikellisteRecColl tally;
    ASSERT_TRUE(db.ReadAllArtikellisteRec2Coll(tally));
    EXPECT_EQ(tally.Count(), 3);
    for (const CArtikellisteRec& a : tally)
        EXPECT_FALSE(a.stArtikel.empty());
}

TEST_P(EvaluationRun, ArticleWithoutNameEndsTheTallyWithItsLabel)
{
    {
        auto host = Database::open(project + "/QOvInventar.mdb");
        host->execute("UPDATE T_IArtikel SET stName = NULL WHERE stArtNr = 'ART-2'");
    }
    EXPECT_FALSE(w->MakeArtikelAufstellung());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmWork.MakeArtikelAufstellung\r\nUnzulässige Verwendung von Null");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    // The articles before it were stored; no report is shown.
    CArtikellisteRecColl tally;
    ASSERT_TRUE(db.ReadAllArtikellisteRec2Coll(tally));
    EXPECT_EQ(tally.Count(), 1);
    EXPECT_TRUE(ui.reports.empty());
}

TEST_P(EvaluationRun, MissingReportDatabaseEmptiesTheTallyThenStops)
{
    CArtikellisteRec old;
    old.stArtikel = "ALT";
    ASSERT_TRUE(db.AddNewArtikellisteRec(&old));
    ASSERT_TRUE(removeFile(reportDb));
    EXPECT_FALSE(w->MakeArtikelAufstellung());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text.rfind("frmWork.MakeArtikelAufstellung\r\n", 0), 0u) << ui.messages[0].text;
    CArtikellisteRecColl tally;
    ASSERT_TRUE(db.ReadAllArtikellisteRec2Coll(tally));
    EXPECT_EQ(tally.Count(), 0);
}

// ---------------------------------------------------------------- inventory list

TEST_P(EvaluationTest, InventoryListHasOneRowPerDistinctScanLineWithTheArticlesDescription)
{
    // The descriptions come from the module's own article table.
    const std::string m = std::string(" ") + moduleName(modul());
    importAll();
    ASSERT_TRUE(w->MakeInvListe());
    const Recordset rs = sql().query("SELECT stRaumNr, stInvNr, stArtNr, stBeschreibung, iRFolge, Datum, Uhrzeit, "
                                     "stBeschreibung IS NULL FROM T_Invliste ORDER BY lID");
    struct Line {
        std::string raum, inv, art, beschreibung;
    };
    const std::vector<Line> want = {
        {"101", "INV-001", "ART-1", "Bürostuhl" + m},
        {"101", "INV-004", "ART-3", "Regal" + m},
        {"101", "INV-008", "ART-3", "Regal" + m},
        // The line taken over in the conflict dialog keeps its place among the lines read first.
        {"102", "INV-010", "ART-2", "Schreibtisch" + m},
        {"102", "INV-002", "ART-2", "Schreibtisch" + m},
        {"102", "Obj. ohne Nr.", "X", ""},
        {"103", "UNBEKANNT-1", "ART-9", ""},
    };
    ASSERT_EQ(rs.size(), want.size());
    for (std::size_t i = 0; i < want.size(); ++i) {
        SCOPED_TRACE(want[i].inv);
        const auto& v = rs.rows()[i];
        EXPECT_EQ(toText(v[0]), want[i].raum);
        EXPECT_EQ(toText(v[1]), want[i].inv);
        EXPECT_EQ(toText(v[2]), want[i].art);
        EXPECT_EQ(toText(v[3]), want[i].beschreibung);
        EXPECT_GT(toLong(v[4]), 0);
        // Every line was stored back, also one whose article is unknown: none is left Null.
        EXPECT_EQ(toLong(v[7]), 0);
    }
}

TEST_P(EvaluationRun, InventoryListStartsAnewEachTime)
{
    importAll();
    ASSERT_TRUE(w->MakeInvListe());
    ASSERT_TRUE(w->MakeInvListe());
    EXPECT_EQ(toLong(sql().scalar("SELECT count(*) FROM T_Invliste")), 7);
}

TEST_P(EvaluationRun, InventoryListFailureShowsItsLabel)
{
    db.CloseDb();
    EXPECT_FALSE(w->MakeInvListe());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmWork.MakeInvListe\r\nDie Datensätze konnten nicht in die Liste gelesen werden!");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(ui.messages[0].title, "QInventur");
}

// ---------------------------------------------------------------- article data of the scans

TEST_P(EvaluationRun, ArticleDataOfTheScansNeverOverwritesAnArticleNumber)
{
    CDifferenzlisteRec own;
    own.lRaumID = roomKey("101");
    own.stIstInvNR = "INV-004";
    own.stArtNr = "EIGEN";
    own.stBeschreibung = "bleibt";
    ASSERT_TRUE(db.AddNewDifferenzlisteRec(&own));
    CDifferenzlisteRec filled;
    filled.lRaumID = roomKey("101");
    filled.stIstInvNR = "inv-001";
    ASSERT_TRUE(db.AddNewDifferenzlisteRec(&filled));
    CDifferenzlisteRec unknown;
    unknown.lRaumID = roomKey("101");
    unknown.stIstInvNR = "UNBEKANNT-1";
    ASSERT_TRUE(db.AddNewDifferenzlisteRec(&unknown));
    CDifferenzlisteRec soll;
    soll.lRaumID = roomKey("101");
    soll.stSollInvNR = "INV-002";
    ASSERT_TRUE(db.AddNewDifferenzlisteRec(&soll));

    ASSERT_TRUE(w->MakeArtikelIst());
    const auto r = rows();
    EXPECT_EQ(r[0].artNr, "EIGEN");
    EXPECT_EQ(r[0].beschreibung, "bleibt");
    EXPECT_EQ(r[1].artNr, "ART-1");
    EXPECT_EQ(r[1].beschreibung, "Stuhl grau INVENTAR");
    EXPECT_EQ(r[2].artNr, "");
    EXPECT_EQ(r[3].artNr, ""); // no scanned number
    EXPECT_TRUE(ui.messages.empty());
}

TEST_P(EvaluationRun, ArticleDataFailureShowsItsLabel)
{
    CDifferenzlisteRec line;
    line.stIstInvNR = "INV-001";
    ASSERT_TRUE(db.AddNewDifferenzlisteRec(&line));
    ASSERT_TRUE(removeFile(project + "/QOvInventar.mdb"));
    EXPECT_FALSE(w->MakeArtikelIst());
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text.rfind("frmWork.MakeArtikelIst\r\n", 0), 0u) << ui.messages[0].text;
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
}

// ---------------------------------------------------------------- report menus

TEST_P(EvaluationRun, EveryReportEntryShowsItsFileAndTitle)
{
    importAll();
    for (const ReportMenuEntry& e : kReportMenu)
        w->mnuReportFkt_Click(e.index);
    ASSERT_EQ(ui.reports.size(), 5u);
    EXPECT_EQ(ui.reports[0].reportFile, project + "/Report\\invart.rpt");
    EXPECT_EQ(ui.reports[0].title, "Artikelaufstellung");
    EXPECT_EQ(ui.reports[1].reportFile, project + "/Report\\invraum.rpt");
    EXPECT_EQ(ui.reports[1].title, "Raumliste");
    EXPECT_EQ(ui.reports[2].reportFile, project + "/Report\\invliste.rpt");
    EXPECT_EQ(ui.reports[2].title, "Inventurliste");
    EXPECT_EQ(ui.reports[3].reportFile, project + "/Report\\invausw.rpt");
    EXPECT_EQ(ui.reports[3].title, "Differenzliste");
    EXPECT_EQ(ui.reports[4].reportFile, project + "/Report\\invdiff.rpt");
    EXPECT_EQ(ui.reports[4].title, "Differenzliste");
    for (const RecordedReport& r : ui.reports)
        EXPECT_EQ(r.dataFile, program + "\\QInventurRpt.mdb");
    EXPECT_FALSE(ui.busy);
    EXPECT_EQ(toLong(sql().scalar("SELECT count(*) FROM T_Invliste")), 7);
    EXPECT_EQ(toLong(sql().scalar("SELECT count(*) FROM T_Differenzliste")), 11);
    EXPECT_EQ(toLong(sql().scalar("SELECT count(*) FROM T_Artikelliste")), 3);
}

TEST_P(EvaluationRun, RoomListRunsNoEvaluation)
{
    CDifferenzlisteRec marker;
    marker.stIstInvNR = "MARKER";
    ASSERT_TRUE(db.AddNewDifferenzlisteRec(&marker));
    w->mnuReportFkt_Click(reportmenu::Raumerfassung);
    const auto r = rows();
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].ist, "MARKER");
    ASSERT_EQ(ui.reports.size(), 1u);
    EXPECT_EQ(ui.reports[0].title, "Raumliste");
}

TEST_P(EvaluationRun, EvaluationAndDifferenceShowTheSameFreshList)
{
    importAll();
    w->mnuReportFkt_Click(reportmenu::Inventurauswertung);
    const auto first = rows();
    ASSERT_FALSE(first.empty());
    w->mnuReportFkt_Click(reportmenu::Differenz);
    expectRows(rows(), first);
    // "&Differenz" evaluates afresh: a room set to "L" meanwhile is in its list.
    ASSERT_TRUE(rowsOf("105").empty());
    sql().execute("UPDATE T_Raum SET ststatus = 'L' WHERE stRaumNr = '105'");
    w->mnuReportFkt_Click(reportmenu::Differenz);
    ASSERT_EQ(rowsOf("105").size(), 1u);
    EXPECT_EQ(rowsOf("105")[0].soll, "INV-006");
    ASSERT_EQ(ui.reports.size(), 3u);
    ui.reports.pop_back();
    ASSERT_EQ(ui.reports.size(), 2u);
    EXPECT_EQ(ui.reports[0].title, ui.reports[1].title);
    EXPECT_NE(ui.reports[0].reportFile, ui.reports[1].reportFile);
}

TEST_P(EvaluationRun, SwitchingTheModuleChangesBothStoredQueriesAtTheNextReportEntry)
{
    w->mnuReportFkt_Click(reportmenu::Raumerfassung);
    auto before = LinkedDatabase::open(reportDb);
    EXPECT_NE(before->querySqlite("Q_AnzProRaum").find("T_IObjekt"), std::string::npos);
    before.reset();
    settings.giModul = 1;
    w->mnuReportFkt_Click(reportmenu::Raumerfassung);
    auto after = LinkedDatabase::open(reportDb);
    EXPECT_NE(after->querySqlite("Q_AnzProRaum").find("T_TObjekt"), std::string::npos);
    EXPECT_EQ(after->querySqlite("Q_AnzProRaum").find("T_IObjekt"), std::string::npos);
    EXPECT_NE(after->querySqlite("Q_DiffListe").find("T_TObjekt"), std::string::npos);
    EXPECT_NE(after->queryJet("Q_DiffListe").find("T_TObjekt"), std::string::npos);
}

TEST_P(EvaluationRun, AModuleOutsideTheThreeIsAnInvalidCallForTheQueriesAndTheTally)
{
    importAll();
    w->mnuReportFkt_Click(reportmenu::Raumerfassung);
    const std::string anzBefore = LinkedDatabase::open(reportDb)->queryJet("Q_AnzProRaum");
    const std::string diffBefore = LinkedDatabase::open(reportDb)->queryJet("Q_DiffListe");
    ui.messages.clear();
    ui.reports.clear();
    settings.giModul = 3;
    const std::string invalid = "Ungültiger Prozeduraufruf oder ungültiges Argument";

    // Every entry of the report menu stops where the stored queries are set, before its own work.
    for (int index : {reportmenu::Artikel, reportmenu::Raumerfassung, reportmenu::Differenz}) {
        ui.messages.clear();
        w->mnuReportFkt_Click(index);
        ASSERT_EQ(ui.messages.size(), 1u) << index;
        EXPECT_EQ(ui.messages[0].text, "frmWork.mnuReportFkt_Click\r\n" + invalid);
        EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    }
    EXPECT_TRUE(ui.reports.empty());
    auto report = LinkedDatabase::open(reportDb);
    EXPECT_EQ(report->queryJet("Q_AnzProRaum"), anzBefore);
    EXPECT_EQ(report->queryJet("Q_DiffListe"), diffBefore);
    report.reset();

    // The evaluation ends with its own label (Quarn has no object data for the module), the
    // tally with the same description as the queries.
    ui.messages.clear();
    EXPECT_FALSE(w->ReportDifferenzListe());
    ASSERT_FALSE(ui.messages.empty());
    EXPECT_EQ(ui.messages.back().text.rfind("frmWork.ReportDifferenzListe\r\n", 0), 0u);
    ui.messages.clear();
    EXPECT_FALSE(w->MakeArtikelAufstellung());
    ASSERT_FALSE(ui.messages.empty());
    EXPECT_EQ(ui.messages.back().text, "frmWork.MakeArtikelAufstellung\r\n" + invalid);
    EXPECT_TRUE(ui.reports.empty());
}

TEST_P(EvaluationRun, ReportMenuFailureShowsItsLabel)
{
    ASSERT_TRUE(removeFile(reportDb));
    w->mnuReportFkt_Click(reportmenu::Raumerfassung);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text.rfind("frmWork.mnuReportFkt_Click\r\n", 0), 0u) << ui.messages[0].text;
    EXPECT_TRUE(ui.reports.empty());
}

TEST_P(EvaluationRun, ErrorListOperationAnsweringFalseIsStillFollowedByItsReport)
{
    importAll();
    ui.messages.clear();
    ASSERT_TRUE(rows().empty());
    // The evaluation empties an empty list; the cut of the error list then can't delete.
    sql().execute("CREATE TRIGGER keep_all BEFORE DELETE ON T_Differenzliste BEGIN SELECT RAISE(ABORT, 'gesperrt'); END");
    w->mnuFehlerFkt_Click(fehlermenu::Neu);
    for (const auto& m : ui.messages)
        EXPECT_EQ(m.text.find("frmWork.mnuFehlerFkt_Click"), std::string::npos) << m.text;
    ASSERT_EQ(ui.reports.size(), 1u);
    EXPECT_EQ(ui.reports[0].reportFile, project + "/Report\\InvNeu.rpt");
    EXPECT_EQ(ui.reports[0].title, "Liste Neu im Auftragsbereich");
    EXPECT_FALSE(ui.busy);
}

} // namespace qi::test
