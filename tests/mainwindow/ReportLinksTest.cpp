// The report database: its links, stored queries and the relinking when an order opens.

#include "ProjectFixture.h"

#include "FileSystem.h"
#include "LinkedDatabase.h"
#include "ReportDatabase.h"
#include "ReportLinks.h"

#include <cstdlib>
#include <filesystem>
#include <memory>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

class ReportLinksTest : public ProjectFixture {
protected:
    void SetUp() override
    {
        ProjectFixture::SetUp();
        fs::create_directories(projectDir + "Inventur");
        orderA = projectDir + "Inventur\\A.mdb";
        orderB = projectDir + "Inventur\\B.mdb";
        makeOrderDatabase(orderA);
        makeOrderDatabase(orderB);
        settings.gstAppPfad = programDir;
        settings.gstProjektPfad = projectDir;
        settings.gstProjekttyp = "ptJet";
        settings.giModul = 0;
    }
    std::string link(const std::string& name) { return LinkedDatabase::open(reportDb)->connect(name); }
    std::string source(const std::string& name)
    {
        for (const TableLink& l : LinkedDatabase::open(reportDb)->links())
            if (l.name == name)
                return l.sourceTable;
        return "(none)";
    }
    void store(const TableLink& l) { LinkedDatabase::open(reportDb)->storeLink(l); }

    Settings settings;
    std::string orderA, orderB;
};

TEST_F(ReportLinksTest, NewReportDatabaseHoldsEveryLinkAndBothQueries)
{
    auto db = LinkedDatabase::open(reportDb);
    std::vector<std::string> names;
    for (const TableLink& l : db->links()) {
        names.push_back(l.name);
        EXPECT_EQ(l.name, l.sourceTable);
    }
    const std::vector<std::string> expected = {"t_Artikelliste", "t_DatInventur", "t_Differenzliste", "t_Invliste",
                                               "t_Raum", "T_AnsprechPartner", "T_Auftrag", "T_BArtikel", "T_BObjekt",
                                               "T_IArtikel", "T_IObjekt", "T_KST", "T_Raumkern", "T_TArtikel",
                                               "T_TObjekt"};
    std::vector<std::string> sortedNames = names, sortedExpected = expected;
    std::sort(sortedNames.begin(), sortedNames.end());
    std::sort(sortedExpected.begin(), sortedExpected.end());
    EXPECT_EQ(sortedNames, sortedExpected);
    EXPECT_EQ(db->queryJet("Q_AnzProRaum"), std::string(anzProRaumQuery(0).jet));
    EXPECT_EQ(db->querySqlite("Q_DiffListe"), std::string(diffListeQuery(0).sqlite));
}

TEST_F(ReportLinksTest, BuildMadeTheReportDatabaseOfTheProgramFolder)
{
    // The program folder's copy changes as the program opens orders there; the made one stays.
    ASSERT_TRUE(fileExists(std::string(QI_PROGRAM_DIR) + "/QInventurRpt.mdb"));
    const std::string made = QI_MADE_REPORT_DB;
    ASSERT_TRUE(fileExists(made));
    // Read from a copy, so that not even a reading lock touches the build's file.
    const std::string copy = root.file("made.mdb");
    ASSERT_TRUE(copyFile(made, copy));
    auto db = LinkedDatabase::open(copy);
    EXPECT_EQ(db->links().size(), 15u);
    EXPECT_EQ(db->connect("T_Raumkern"), ";DATABASE=QGebaeude.mdb");
}

TEST_F(ReportLinksTest, OpeningTwoOrdersLeavesTheOrderLinksAtTheSecond)
{
    ASSERT_TRUE(CheckReportMdbLink(settings, orderA, ui));
    ASSERT_TRUE(CheckReportMdbLink(settings, orderB, ui));
    EXPECT_TRUE(ui.messages.empty());
    for (const char* name : kOrderLinks)
        EXPECT_EQ(link(name), ";DATABASE=" + orderB) << name;
}

TEST_F(ReportLinksTest, JetProjectWithFileLinksIsRedirectedNeverRebuilt)
{
    // A source name in other letter case survives a redirect, a rebuild would respell it.
    store({"T_KST", ";DATABASE=elsewhere.mdb", "t_kst"});
    ASSERT_TRUE(CheckReportMdbLink(settings, orderA, ui));
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(source("T_KST"), "t_kst");
    EXPECT_EQ(link("T_KST"), ";DATABASE=" + projectDir + "QStammdaten.mdb");
    EXPECT_EQ(link("T_AnsprechPartner"), ";DATABASE=" + projectDir + "QStammdaten.mdb");
    EXPECT_EQ(link("T_Raumkern"), ";DATABASE=" + projectDir + "QGebaeude.mdb");
    EXPECT_EQ(link("T_IObjekt"), ";DATABASE=" + projectDir + "QOvInventar.mdb");
    EXPECT_EQ(link("T_IArtikel"), ";DATABASE=" + projectDir + "QOvInventar.mdb");
}

TEST_F(ReportLinksTest, InventarProjectLeavesTheOtherModulesLinksAlone)
{
    store({"T_TObjekt", ";DATABASE=C:\\alt\\QOvTechnik.mdb", "T_TObjekt"});
    ASSERT_TRUE(CheckReportMdbLink(settings, orderA, ui));
    EXPECT_EQ(link("T_TObjekt"), ";DATABASE=C:\\alt\\QOvTechnik.mdb");
    EXPECT_EQ(link("T_BObjekt"), ";DATABASE=QOvBrandschutz.mdb");
}

TEST_F(ReportLinksTest, TechnikProjectRelinksItsOwnPair)
{
    settings.giModul = 1;
    ASSERT_TRUE(CheckReportMdbLink(settings, orderA, ui));
    EXPECT_EQ(link("T_TObjekt"), ";DATABASE=" + projectDir + "QOvTechnik.mdb");
    EXPECT_EQ(link("T_TArtikel"), ";DATABASE=" + projectDir + "QOvTechnik.mdb");
    EXPECT_EQ(link("T_IObjekt"), ";DATABASE=QOvInventar.mdb");
}

TEST_F(ReportLinksTest, ModuleOutsideTheRangeSkipsTheModulePair)
{
    settings.giModul = 7;
    ASSERT_TRUE(CheckReportMdbLink(settings, orderA, ui));
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(link("T_IObjekt"), ";DATABASE=QOvInventar.mdb");
    EXPECT_EQ(link("T_Raumkern"), ";DATABASE=" + projectDir + "QGebaeude.mdb");
}

TEST_F(ReportLinksTest, JetProjectWithOdbcLinksRebuildsTheHostLinks)
{
    const std::string odbc = "ODBC;DSN=Quarn;UID=inv";
    for (const char* name : {"T_Raumkern", "T_IObjekt", "T_IArtikel", "T_AnsprechPartner", "T_KST", "T_TObjekt"})
        store({name, odbc, std::string("dbo.") + name});
    ASSERT_TRUE(CheckReportMdbLink(settings, orderA, ui));
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(link("T_Raumkern"), ";DATABASE=" + projectDir + "QGebaeude.mdb");
    EXPECT_EQ(source("T_Raumkern"), "T_Raumkern");
    EXPECT_EQ(link("T_IObjekt"), ";DATABASE=" + projectDir + "QOvInventar.mdb");
    EXPECT_EQ(source("T_IObjekt"), "T_IObjekt");
    EXPECT_EQ(link("T_IArtikel"), ";DATABASE=" + projectDir + "QOvInventar.mdb");
    EXPECT_EQ(link("T_AnsprechPartner"), ";DATABASE=" + projectDir + "QStammdaten.mdb");
    EXPECT_EQ(link("T_KST"), ";DATABASE=" + projectDir + "QStammdaten.mdb");
    EXPECT_EQ(source("T_KST"), "T_KST");
    EXPECT_EQ(link("T_TObjekt"), odbc); // another module's link stays as it was
    EXPECT_EQ(link("t_Raum"), ";DATABASE=" + orderA);
}

TEST_F(ReportLinksTest, RebuildStopsAtADropOfAMissingLinkAndKeepsWhatChanged)
{
    store({"T_Raumkern", "ODBC;DSN=Quarn", "T_Raumkern"});
    LinkedDatabase::open(reportDb)->execute("DROP TABLE T_IObjekt");
    EXPECT_FALSE(CheckReportMdbLink(settings, orderA, ui));
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "COVRpt.CheckReportMdbLink\r\nTabelle 'T_IObjekt' existiert nicht.");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(ui.messages[0].buttons, MsgButtons::Ok);
    EXPECT_EQ(ui.messages[0].title, "QInventur");
    EXPECT_EQ(link("T_Raumkern"), ";DATABASE=" + projectDir + "QGebaeude.mdb");
    EXPECT_EQ(link("T_IArtikel"), ";DATABASE=QOvInventar.mdb");
}

TEST_F(ReportLinksTest, MissingOrderLinkIsAnError)
{
    LinkedDatabase::open(reportDb)->execute("DROP TABLE t_Invliste");
    EXPECT_FALSE(CheckReportMdbLink(settings, orderA, ui));
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text,
              "COVRpt.CheckReportMdbLink\r\nElement in dieser Auflistung nicht gefunden (t_Invliste).");
    // The links before the failing step stay changed, those after it are untouched.
    EXPECT_EQ(link("t_Differenzliste"), ";DATABASE=" + orderA);
    EXPECT_EQ(link("t_Raum"), ";DATABASE=QAuftrag.mdb");
}

TEST_F(ReportLinksTest, MissingOrderFileFailsTheRefresh)
{
    EXPECT_FALSE(CheckReportMdbLink(settings, projectDir + "Inventur\\Fehlt.mdb", ui));
    ASSERT_EQ(ui.messages.size(), 1u);
    // The path as a person reads it, with one kind of separator.
    EXPECT_EQ(ui.messages[0].text, "COVRpt.CheckReportMdbLink\r\nDie Datei '" + displayPath(projectDir + "Inventur\\Fehlt.mdb") +
                                       "' konnte nicht gefunden werden.");
    EXPECT_EQ(link("t_Artikelliste"), ";DATABASE=QAuftrag.mdb");
}

TEST_F(ReportLinksTest, MissingReportDatabaseIsAnError)
{
    fs::remove(reportDb);
    EXPECT_FALSE(CheckReportMdbLink(settings, orderA, ui));
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text.rfind("COVRpt.CheckReportMdbLink\r\nDie Datei '", 0), 0u);
    EXPECT_FALSE(fileExists(reportDb));
}

TEST_F(ReportLinksTest, OdbcProjectWhoseServerIsOutOfReachKeepsItsHostLinks)
{
    settings.gstProjekttyp = "ptODBC";
    settings.gstConnectionString = "ODBC;DSN=QuarnSql;PWD=geheim";
    EXPECT_FALSE(CheckReportMdbLink(settings, orderA, ui));
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text.rfind("COVRpt.CheckReportMdbLink\r\nDie Quarn-Datenbank auf dem Server ist nicht "
                                        "erreichbar (ODBC;DSN=QuarnSql;PWD=***).\r\n",
                                        0),
              0u)
        << ui.messages[0].text;
    EXPECT_EQ(link("T_Auftrag"), ";DATABASE=" + orderA);
    EXPECT_EQ(link("T_IObjekt"), ";DATABASE=QOvInventar.mdb");
    EXPECT_EQ(link("T_Raumkern"), ";DATABASE=QGebaeude.mdb");
}

TEST_F(ReportLinksTest, MissingBuildingLinkFailsBeforeAnyHostLinkOfAnOdbcProject)
{
    settings.gstProjekttyp = "ptODBC";
    settings.gstConnectionString = "ODBC;DSN=QuarnSql";
    LinkedDatabase::open(reportDb)->execute("DROP TABLE T_Raumkern");
    EXPECT_FALSE(CheckReportMdbLink(settings, orderA, ui));
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text,
              "COVRpt.CheckReportMdbLink\r\nElement in dieser Auflistung nicht gefunden (T_Raumkern).");
    EXPECT_EQ(link("T_Auftrag"), ";DATABASE=" + orderA);
    EXPECT_EQ(link("T_IObjekt"), ";DATABASE=QOvInventar.mdb");
}

TEST_F(ReportLinksTest, UnknownProjectTypeKeepsTheOrderConnectForTheHostLinks)
{
    settings.gstProjekttyp = "ptjet";
    EXPECT_FALSE(CheckReportMdbLink(settings, orderA, ui));
    ASSERT_EQ(ui.messages.size(), 1u);
    // The file as a person reads paths.
    EXPECT_NE(ui.messages[0].text.find("Das Objekt 'T_IObjekt' wurde in der Datenbank '" + displayPath(orderA) + "'"),
              std::string::npos)
        << ui.messages[0].text;
}

// ------------------------------------------------------------------ the links as tables

TEST_F(ReportLinksTest, StatementsOnTheReportDatabaseReachTheOrderDatabase)
{
    ASSERT_TRUE(CheckReportMdbLink(settings, orderA, ui));
    {
        auto rpt = LinkedDatabase::open(reportDb)->openForStatements();
        rpt->execute("INSERT INTO t_Raum (lIdRB, stRaumNr, ststatus, stAuftrag) VALUES (10, '101', 'E', 'A')");
        rpt->execute("INSERT INTO t_Differenzliste (lRaumID, stSollInvNR, stIstInvNR, stTyp) VALUES (1, 'I-1', 'I-1', 'x')");
        EXPECT_EQ(rpt->execute("UPDATE t_Differenzliste SET stTyp = '1 OK' WHERE stIstInvNR = 'i-1'"), 1);
        EXPECT_EQ(toText(rpt->scalar("SELECT stRaumNr FROM T_Raumkern WHERE lId = 10")), "101");
    }
    auto order = Database::open(orderA);
    EXPECT_EQ(toText(order->scalar("SELECT stTyp FROM T_Differenzliste")), "1 OK");
    EXPECT_EQ(toLong(order->scalar("SELECT count(*) FROM T_Raum")), 1);
    auto other = Database::open(orderB);
    EXPECT_EQ(toLong(other->scalar("SELECT count(*) FROM T_Raum")), 0);
}

TEST_F(ReportLinksTest, StoredQueriesRunThroughTheLinks)
{
    ASSERT_TRUE(CheckReportMdbLink(settings, orderA, ui));
    {
        auto order = Database::open(orderA);
        order->execute("INSERT INTO T_Raum (lIdRB, stRaumNr, ststatus, stAuftrag) VALUES (10, '101', 'E', 'A')");
        order->execute("INSERT INTO T_Differenzliste (lRaumID, stSollInvNR, stIstInvNR, stTyp) VALUES "
                       "(1, 'I-1', 'I-1', '1 OK'), (1, 'I-2', '', '3a'), (1, '', 'X-9', '2c'), (1, '', '', 'leer')");
    }
    auto rpt = LinkedDatabase::open(reportDb)->openForStatements();
    Recordset a = rpt->query("SELECT * FROM Q_AnzProRaum");
    ASSERT_EQ(a.size(), 1u);
    EXPECT_EQ(toText(a.field("stRaumNr")), "101");
    EXPECT_EQ(toLong(a.field("Anzahl von stName")), 2);
    EXPECT_EQ(toText(a.field("stStatus")), "E");

    Recordset d = rpt->query("SELECT * FROM Q_DiffListe ORDER BY \"t_Differenzliste.lID\"");
    ASSERT_EQ(d.size(), 2u); // the known object found and the missing one
    EXPECT_EQ(toText(d.field("stIstInvNR")), "I-1");
    EXPECT_EQ(toText(d.field("Name")), "Muster, Erika");
    EXPECT_EQ(toText(d.field("stKST")), "4711");
    EXPECT_EQ(toText(d.field("stRaumNr")), "101");
    EXPECT_EQ(toLong(d.field("t_Raum.lID")), 1);
    d.moveNext();
    EXPECT_EQ(toText(d.field("stSollInvNR")), "I-2");
    EXPECT_TRUE(isNull(d.field("stKST")));
}

TEST_F(ReportLinksTest, SwitchingTheModuleChangesTheObjectTableOfBothQueries)
{
    auto db = LinkedDatabase::open(reportDb);
    setReportQueries(*db, 2);
    for (const char* q : {"Q_AnzProRaum", "Q_DiffListe"}) {
        EXPECT_NE(db->queryJet(q).find("T_BObjekt"), std::string::npos) << q;
        EXPECT_EQ(db->queryJet(q).find("T_IObjekt"), std::string::npos) << q;
        EXPECT_EQ(db->querySqlite(q).find("T_IObjekt"), std::string::npos) << q;
    }
    EXPECT_EQ(db->queryJet("Q_DiffListe").find("stObjBemerkung"), std::string::npos);
    EXPECT_EQ(db->querySqlite("Q_DiffListe").find("stObjBemerkung"), std::string::npos);
    setReportQueries(*db, 0);
    EXPECT_NE(db->queryJet("Q_DiffListe").find("t_Differenzliste.stObjBemerkung,  "), std::string::npos);
}

TEST_F(ReportLinksTest, AModuleOutsideTheThreeSetsNeitherQueryAndRaisesAnInvalidCall)
{
    auto db = LinkedDatabase::open(reportDb);
    setReportQueries(*db, 1);
    const std::string anz = db->queryJet("Q_AnzProRaum"), diff = db->queryJet("Q_DiffListe");
    for (std::int16_t m : {3, -1}) {
        try {
            setReportQueries(*db, m);
            ADD_FAILURE() << "module " << m << " was taken";
        } catch (const std::exception& e) {
            EXPECT_STREQ(e.what(), "Ungültiger Prozeduraufruf oder ungültiges Argument");
        }
        EXPECT_THROW(anzProRaumQuery(m), std::runtime_error);
        EXPECT_THROW(diffListeQuery(m), std::runtime_error);
        EXPECT_EQ(db->queryJet("Q_AnzProRaum"), anz);
        EXPECT_EQ(db->queryJet("Q_DiffListe"), diff);
    }
}

TEST_F(ReportLinksTest, QueriesOfEveryModuleRunAgainstTheirTables)
{
    for (std::int16_t m : {0, 1, 2}) {
        settings.giModul = m;
        ASSERT_TRUE(CheckReportMdbLink(settings, orderA, ui));
        auto db = LinkedDatabase::open(reportDb);
        setReportQueries(*db, m);
        auto rpt = db->openForStatements();
        EXPECT_NO_THROW(rpt->query("SELECT * FROM Q_AnzProRaum")) << m;
        EXPECT_NO_THROW(rpt->query("SELECT * FROM Q_DiffListe")) << m;
    }
    EXPECT_TRUE(ui.messages.empty());
}

TEST(ReportQueries, DiffListeIsItsTwelvePiecesForEachModule)
{
    const char* tables[] = {"T_IObjekt", "T_TObjekt", "T_BObjekt"};
    for (std::int16_t m : {0, 1, 2}) {
        const std::string x = tables[m];
        const std::string piece4 =
            m == 0 ? "t_Differenzliste.Uhrzeit, t_Differenzliste.iReihenfolge, t_Differenzliste.stTyp, "
                     "t_Differenzliste.stObjBemerkung,  "
                   : "t_Differenzliste.Uhrzeit, t_Differenzliste.iReihenfolge, t_Differenzliste.stTyp,  ";
        const std::string want =
            std::string("SELECT t_Differenzliste.lID, t_Differenzliste.lRaumId, t_Differenzliste.stSollInvNR,  ") +
            "t_Differenzliste.stIstInvNR, t_Differenzliste.stBeschreibung, t_Differenzliste.stZiel,  " +
            "t_Differenzliste.stQuelle, t_Differenzliste.stQuarn, t_Differenzliste.stArtNr, t_Differenzliste.Datum,  " +
            piece4 +
            "[T_AnsprechPartner]![stName]+\", \"+[T_AnsprechPartner]![stVorname] AS Name, T_KST.stKST, t_Raum.lID,  " +
            "t_Raum.lIdRB, t_Raum.stRaumNr, t_Raum.stStatus, t_Raum.lDatId, t_Raum.Datum, t_Raum.Uhrzeit,  " +
            "t_Raum.iAnzahl, t_Raum.stAuftrag, " + x + ".iVariante FROM (((t_Differenzliste LEFT JOIN t_Raum ON  " +
            "t_Differenzliste.lRaumId = t_Raum.lID) LEFT JOIN (T_Raumkern LEFT JOIN T_AnsprechPartner ON  " +
            "T_Raumkern.lRaumverantwId = T_AnsprechPartner.lId) ON t_Raum.lIdRB = T_Raumkern.lId) LEFT JOIN  " +
            x + " ON t_Differenzliste.stIstInvNR = " + x + ".stName) LEFT JOIN T_KST ON " + x + ".lKstId = T_KST.lId " +
            "Where (" + x + ".iVariante = 0 And t_Differenzliste.stIstInvNR <> \"\") Or  " +
            "(t_Differenzliste.stSollInvNR <> \"\" And t_Differenzliste.stIstInvNR = \"\")";
        EXPECT_EQ(std::string(diffListeQuery(m).jet), want) << m;
    }
}

TEST(ReportQueries, JetTextsAreKeptAsDesigned)
{
    EXPECT_EQ(std::string(anzProRaumQuery(1).jet),
              "SELECT t_Raum.stRaumNr, t_Raum.stAuftrag, Count(T_TObjekt.stName) AS [Anzahl von stName], "
              "t_Raum.stStatus FROM T_TObjekt INNER JOIN t_Raum ON T_TObjekt.lGebstruId = t_Raum.lIdRB GROUP BY "
              "t_Raum.stRaumNr, t_Raum.stAuftrag, t_Raum.stStatus, T_TObjekt.byGebstruTyp HAVING "
              "(((T_TObjekt.byGebstruTyp)=4))");
    const std::string d = std::string(diffListeQuery(0).jet);
    EXPECT_EQ(d.rfind("SELECT t_Differenzliste.lID, t_Differenzliste.lRaumId, t_Differenzliste.stSollInvNR,  "
                      "t_Differenzliste.stIstInvNR, ", 0), 0u);
    EXPECT_NE(d.find("[T_AnsprechPartner]![stName]+\", \"+[T_AnsprechPartner]![stVorname] AS Name"), std::string::npos);
    EXPECT_NE(d.find("T_KST.lId Where (T_IObjekt.iVariante = 0 And t_Differenzliste.stIstInvNR <> \"\") Or  "
                     "(t_Differenzliste.stSollInvNR <> \"\" And t_Differenzliste.stIstInvNR = \"\")"),
              std::string::npos);
    EXPECT_EQ(d.size(), std::string(diffListeQuery(1).jet).size() + std::string("t_Differenzliste.stObjBemerkung, ").size());
}

// ------------------------------------------------------------------ link operations

TEST_F(ReportLinksTest, LinkOperationsRaiseTheEngineErrors)
{
    auto db = LinkedDatabase::open(reportDb);
    try {
        db->connect("T_Nix");
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::ItemNotFound);
    }
    try {
        db->execute("DROP TABLE T_Nix");
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), linkerr::TableNotExist);
        EXPECT_EQ(e.description(), "Tabelle 'T_Nix' existiert nicht.");
    }
    try {
        db->appendLink({"T_KST", ";DATABASE=" + projectDir + "QStammdaten.mdb", "T_KST"});
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), linkerr::ObjectExists);
    }
    // A refresh that fails keeps the stored connect string.
    db->setConnect("T_KST", ";DATABASE=" + projectDir + "QGebaeude.mdb");
    try {
        db->refreshLink("T_KST");
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), linkerr::ObjectNotFound);
    }
    EXPECT_EQ(db->connect("T_KST"), ";DATABASE=QStammdaten.mdb");
    db->execute("drop table [T_KST];");
    EXPECT_FALSE(db->hasLink("T_KST"));
    db->appendLink({"T_KST", ";DATABASE=" + projectDir + "QStammdaten.mdb", "T_KST"});
    EXPECT_EQ(db->connect("t_kst"), ";DATABASE=" + projectDir + "QStammdaten.mdb");
    try {
        db->setQuerySql("Q_Nix", anzProRaumQuery(0));
        FAIL();
    } catch (const DbError& e) {
        EXPECT_EQ(e.number(), dberr::ItemNotFound);
    }
}

/// The links of another report database file.
std::string linkOf(const std::string& file, const std::string& name) { return LinkedDatabase::open(file)->connect(name); }

TEST_F(ReportLinksTest, AProgramsPrivateCopyIsLinkedToItsOrderAndStaysWhenAnotherProgramRelinks)
{
    settings.privateReportDatabase = std::make_shared<PrivateReportDatabase>();
    ASSERT_TRUE(CheckReportMdbLink(settings, orderA, ui));
    EXPECT_TRUE(ui.messages.empty());
    const std::string copy = settings.privateReportDatabase->file();
    ASSERT_NE(copy, "");
    EXPECT_EQ(reportDatabasePath(settings), copy);
    for (const char* name : kOrderLinks) {
        EXPECT_EQ(link(name), ";DATABASE=" + orderA) << name; // the shared file, as ever
        EXPECT_EQ(linkOf(copy, name), ";DATABASE=" + orderA) << name;
    }
    EXPECT_EQ(linkOf(copy, "T_Raumkern"), ";DATABASE=" + projectDir + "QGebaeude.mdb");
    EXPECT_EQ(linkOf(copy, "T_IObjekt"), ";DATABASE=" + projectDir + "QOvInventar.mdb");
    EXPECT_EQ(linkOf(copy, "T_KST"), ";DATABASE=" + projectDir + "QStammdaten.mdb");

    // Another program of the same folder opens another order (with a copy of its own or none).
    Settings other = settings;
    other.privateReportDatabase.reset();
    ASSERT_TRUE(CheckReportMdbLink(other, orderB, ui));
    EXPECT_EQ(link("t_Raum"), ";DATABASE=" + orderB);
    for (const char* name : kOrderLinks)
        EXPECT_EQ(linkOf(copy, name), ";DATABASE=" + orderA) << name;

    // The next order of this program: the copy follows.
    ASSERT_TRUE(CheckReportMdbLink(settings, orderB, ui));
    EXPECT_EQ(linkOf(copy, "T_Auftrag"), ";DATABASE=" + orderB);
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(ReportLinksTest, APrivateCopyThatCantBeWrittenIsReportedAsTheRelinking)
{
    settings.privateReportDatabase = std::make_shared<PrivateReportDatabase>();
    ASSERT_TRUE(CheckReportMdbLink(settings, orderB, ui));
    const std::string copy = settings.privateReportDatabase->file();
    fs::remove_all(fs::u8path(settings.privateReportDatabase->folder()));
    EXPECT_FALSE(CheckReportMdbLink(settings, orderA, ui));
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text,
              "COVRpt.CheckReportMdbLink\r\nDie Datei '" + displayPath(copy) + "' konnte nicht angelegt werden.");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    // The shared file was relinked as ever; no report reads it.
    EXPECT_EQ(link("t_Raum"), ";DATABASE=" + orderA);
    EXPECT_EQ(reportDatabasePath(settings), copy);
    EXPECT_FALSE(fileExists(copy));
}

TEST_F(ReportLinksTest, NoPrivateFolderIsReportedAsTheRelinking)
{
    const std::string missing = root.file("kein-temp");
    const char* before = std::getenv("TMPDIR");
    const std::string kept = before ? before : "";
    setenv("TMPDIR", missing.c_str(), 1);
    settings.privateReportDatabase = std::make_shared<PrivateReportDatabase>();
    const bool linked = CheckReportMdbLink(settings, orderA, ui);
    if (before)
        setenv("TMPDIR", kept.c_str(), 1);
    else
        unsetenv("TMPDIR");
    EXPECT_FALSE(linked);
    EXPECT_EQ(settings.privateReportDatabase->file(), "");
    EXPECT_EQ(reportDatabasePath(settings), "");
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text,
              "COVRpt.CheckReportMdbLink\r\nIm Ordner für temporäre Dateien kann kein Ordner angelegt werden.");
}

TEST_F(ReportLinksTest, AServerOutOfReachIsReportedOnceAndTheCopyReadsTheOrder)
{
    settings.gstProjekttyp = "ptODBC";
    settings.gstConnectionString = "ODBC;DSN=QuarnSql;PWD=geheim";
    settings.privateReportDatabase = std::make_shared<PrivateReportDatabase>();
    EXPECT_FALSE(CheckReportMdbLink(settings, orderA, ui));
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text.rfind("COVRpt.CheckReportMdbLink\r\nDie Quarn-Datenbank auf dem Server ist nicht ",
                                        0),
              0u)
        << ui.messages[0].text;
    for (const char* name : kOrderLinks)
        EXPECT_EQ(linkOf(settings.privateReportDatabase->file(), name), ";DATABASE=" + orderA) << name;
}

TEST(ConnectStrings, DatabaseFileIsReadFromJetConnectStringsOnly)
{
    EXPECT_EQ(connectDatabaseFile(";DATABASE=C:\\Quarn\\QGebaeude.mdb"), "C:\\Quarn\\QGebaeude.mdb");
    EXPECT_EQ(connectDatabaseFile(";database=x.mdb;PWD=geheim"), "x.mdb");
    EXPECT_EQ(connectDatabaseFile("ODBC;DSN=Quarn;DATABASE=quarn"), "");
    EXPECT_EQ(connectDatabaseFile(""), "");
}

TEST(ConnectStrings, TheFilesPathMayHoldSemicolons)
{
    EXPECT_EQ(connectDatabaseFile(";DATABASE=C:\\Projekt 'Süd'; DROP TABLE T_Auftrag; --\\Inventur\\a;b.mdb"),
              "C:\\Projekt 'Süd'; DROP TABLE T_Auftrag; --\\Inventur\\a;b.mdb");
    EXPECT_EQ(connectDatabaseFile(";DATABASE=C:\\a;b.mdb;PWD=geheim"), "C:\\a;b.mdb");
    EXPECT_EQ(connectDatabaseFile(";DATABASE=x; y.mdb; pwd = geheim"), "x; y.mdb");
    EXPECT_EQ(connectDatabaseFile(";DATABASE=x.mdb;"), "x.mdb");
    EXPECT_EQ(connectDatabaseFile(";DATABASE=a;=b.mdb"), "a;=b.mdb");
}

} // namespace
} // namespace qi::test
