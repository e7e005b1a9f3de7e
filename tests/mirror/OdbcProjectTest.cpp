// One demo installation kept twice: as Quarn's files in a Jet project and on a
// PostgreSQL server (started by the test) in an ODBC project. Start-up, the room
// tree, adding the demo scanner files and the evaluation give the same rooms,
// scan rows and difference list in both. The report database's links of an ODBC
// project carry the connection string and read the server's mirror; a Jet project
// whose links still carry an ODBC string gets them made anew.

#include "CAuftragDb.h"
#include "DemoInstallation.h"
#include "FileSystem.h"
#include "HostMirror.h"
#include "LinkedDatabase.h"
#include "PostgresCluster.h"
#include "QuarnHost.h"
#include "ReportDatabase.h"
#include "ReportLinks.h"
#include "ScannerFile.h"
#include "Startup.h"
#include "TestSupport.h"
#include "bGeneral.h"
#include "frmWork.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <set>

namespace qi {
namespace {

namespace fs = std::filesystem;

/// What a user sees of one project after the same steps.
struct ProjectResult {
    std::vector<std::string> tree;      ///< the structure nodes
    std::vector<std::string> allRooms;  ///< every room of the installation
    std::vector<std::string> orderRooms; ///< T_Raum after the import and evaluation
    std::vector<std::string> scans;     ///< T_DatInventur
    std::vector<std::string> differences; ///< T_Differenzliste with its room
    std::vector<std::string> messages;  ///< every message shown
    int ok = 0;                         ///< rows "1 OK"
};

std::vector<std::string> rowsOf(Database& db, const std::string& sql)
{
    std::vector<std::string> rows;
    const Recordset rs = db.query(sql);
    for (const auto& row : rs.rows()) {
        std::string line;
        for (const Value& v : row)
            line += toText(v) + "|";
        rows.push_back(line);
    }
    return rows;
}

class OdbcProject : public ::testing::Test {
protected:
    void SetUp() override
    {
        try {
            cluster = std::make_unique<demo::PostgresCluster>();
        } catch (const std::exception& e) {
            FAIL() << e.what();
        }
        inst = demo::buildInstallation(demo::smallSizes());
        cluster->createDatabase("quarn");
        cluster->loadInstallation(inst, "quarn");
        connection = cluster->connectionString("quarn");
    }

    /// A program folder with its report database and a demo project ("ptJet" with Quarn's files,
    /// or ODBC without them), both seeded as the program seeds them.
    void makeProject(const std::string& name, bool odbc)
    {
        const std::string program = dir.path() + "/" + name + "/Programm";
        const std::string project = dir.path() + "/" + name + "/Projekt";
        ASSERT_TRUE(fs::create_directories(program));
        demo::writeDemoProject(demo::smallSizes(), project, "");
        demo::writeQuarnIni(program + "/Quarn.ini", project);
        createReportDatabase(program + "/QInventurRpt.mdb");
        test::makeRegisterDatabase(project + "/QInventur.mdb");
        ASSERT_TRUE(createFolder(project + "/Inventur"));
        if (odbc) {
            for (const char* file :
                 {"QGebaeude.mdb", "QOvInventar.mdb", "QOvTechnik.mdb", "QOvBrandschutz.mdb", "QStammdaten.mdb"})
                ASSERT_TRUE(removeFile(project + "/" + file));
            test::writeFile(project + "/Projekt.ini", "[ODBC]\r\nProjekttyp=ptODBC\r\nConnectionString=" + connection +
                                                          "\r\n[Inventur]\r\nModul=INVENTAR\r\n");
        }
    }

    ProjectResult run(const std::string& name)
    {
        ProjectResult result;
        const std::string program = dir.path() + "/" + name + "/Programm";
        const std::string project = dir.path() + "/" + name + "/Projekt";
        ScriptedUserInteraction ui;
        Settings settings;
        StartupResult start = RunStartup(program, settings, ui);
        EXPECT_TRUE(start.completed);
        if (!start.gebDb || !start.gebDb->IsOpen()) {
            ADD_FAILURE() << (start.gebDb ? start.gebDb->LastError() : "no building component");
            return result;
        }
        const auto tree = start.gebDb->GetGebStruktur(1);
        EXPECT_TRUE(tree.has_value());
        for (const GebNode& n : tree->nodes)
            result.tree.push_back(std::to_string(n.lId) + "/" + std::to_string(n.lParentId) + "/" +
                                  std::to_string(n.byTyp) + "/" + n.stNr + "/" + n.stBezeichnung);
        std::vector<GebRoom> rooms;
        EXPECT_TRUE(start.gebDb->GetAllRooms(rooms));
        for (const GebRoom& r : rooms)
            result.allRooms.push_back(std::to_string(r.lId) + "/" + r.stRaumNr + "/" + r.stBezeichnung);

        // The order: every room of the two ground-floor files, as the room window adds them.
        const auto files = demo::scannerFiles(inst, 0);
        std::set<std::string> wanted;
        for (int f = 0; f < 2; ++f)
            for (const std::string& line : files[std::size_t(f)].lines)
                if (FieldCount(line, ",") >= 8)
                    wanted.insert(normaliseRoom(GetField(line, ",", 5)));
        const std::string dbFile = project + "/Inventur/Demo.mdb";
        test::makeOrderDatabase(dbFile);
        CAuftragDb db(ui);
        db.setDbPath(dbFile);
        EXPECT_TRUE(db.OpenDb()) << db.LastError();
        for (const GebRoom& r : rooms) {
            if (!wanted.count(r.stRaumNr))
                continue;
            CRaumRec room;
            room.lIdRB = r.lId;
            room.stRaumNr = r.stRaumNr;
            room.ststatus = "N";
            room.stAuftrag = "Demo";
            EXPECT_TRUE(db.AddNewRaumRec(&room)) << db.LastError();
        }
        EXPECT_TRUE(CheckReportMdbLink(settings, dbFile, ui));

        frmWork w(db, settings, ui);
        EXPECT_TRUE(w.Init());
        EXPECT_TRUE(w.InitData());
        for (const demo::ScanFile& f : files)
            ui.fileChoices.push_back(project + "/" + f.name);
        ui.conflictAnswers = {false, true};
        for (std::size_t i = 0; i < files.size(); ++i)
            w.pbAdd_Click();
        EXPECT_TRUE(w.ReportDifferenzListe());

        Database& sql = *db.database();
        result.orderRooms = rowsOf(sql, "SELECT lIdRB, stRaumNr, ststatus, stAuftrag FROM T_Raum ORDER BY lID");
        result.scans = rowsOf(sql, "SELECT stMitarbNr, stAuftragsNr, Datum, Uhrzeit, stRaum, stInvNr, stArtNr, "
                                   "stTaet, lDatID, iReihenfolge FROM T_DatInventur ORDER BY lID");
        result.differences =
            rowsOf(sql, "SELECT r.stRaumNr, d.stSollInvNR, d.stIstInvNR, d.stTyp, d.stZiel, d.stQuelle, d.stQuarn, "
                        "d.stArtNr, d.stBeschreibung, d.stObjBemerkung, d.Datum, d.Uhrzeit FROM T_Differenzliste d "
                        "LEFT JOIN T_Raum r ON r.lID = d.lRaumID ORDER BY d.lID");
        result.ok = int(toLong(sql.scalar("SELECT count(*) FROM T_Differenzliste WHERE stTyp = '1 OK'")));
        // Messages name the project's files: the two projects lie in different folders.
        for (const RecordedMessage& m : ui.messages) {
            std::string text = m.title + ": " + m.text;
            for (auto at = text.find(project); at != std::string::npos; at = text.find(project))
                text.replace(at, project.size(), "<Projekt>");
            result.messages.push_back(text);
        }
        return result;
    }

    test::TempDir dir;
    std::unique_ptr<demo::PostgresCluster> cluster;
    demo::Installation inst;
    std::string connection;
};

TEST_F(OdbcProject, GivesTheSameRoomsScansAndDifferencesAsTheSameInstallationAsFiles)
{
    makeProject("Jet", false);
    makeProject("Odbc", true);
    const ProjectResult files = run("Jet");
    const ProjectResult server = run("Odbc");

    EXPECT_EQ(files.tree.size(), inst.nodes.size());
    EXPECT_EQ(files.allRooms.size(), inst.rooms.size());
    EXPECT_GT(files.scans.size(), 10u);
    EXPECT_GT(files.ok, 5);

    EXPECT_EQ(server.tree, files.tree);
    EXPECT_EQ(server.allRooms, files.allRooms);
    EXPECT_EQ(server.orderRooms, files.orderRooms);
    EXPECT_EQ(server.scans, files.scans);
    EXPECT_EQ(server.differences, files.differences);
    EXPECT_EQ(server.ok, files.ok);
    EXPECT_EQ(server.messages, files.messages);
    EXPECT_EQ(files.messages.size(), 4u);
}

// ------------------------------------------------------------------ report links

class OdbcReportLinks : public OdbcProject {
protected:
    void SetUp() override
    {
        OdbcProject::SetUp();
        if (HasFatalFailure())
            return;
        program = dir.path() + "/Programm";
        project = dir.path() + "/Projekt/";
        ASSERT_TRUE(fs::create_directories(program));
        demo::writeDemoProject(demo::smallSizes(), project, "");
        reportDb = program + "/QInventurRpt.mdb";
        createReportDatabase(reportDb);
        ASSERT_TRUE(createFolder(project + "Inventur"));
        order = project + "Inventur/A.mdb";
        test::makeOrderDatabase(order);
        settings.gstAppPfad = program;
        settings.gstProjektPfad = project;
        settings.gstProjekttyp = "ptODBC";
        settings.gstConnectionString = connection;
        settings.giModul = 0;
        useHostMirrorForLinks(QI_PROGRAM_DIR);
    }
    void TearDown() override { setLinkSourceResolver(nullptr); }

    std::string link(const std::string& name) { return LinkedDatabase::open(reportDb)->connect(name); }
    std::string source(const std::string& name)
    {
        for (const TableLink& l : LinkedDatabase::open(reportDb)->links())
            if (l.name == name)
                return l.sourceTable;
        return "(none)";
    }

    std::string program, project, reportDb, order;
    Settings settings;
    ScriptedUserInteraction ui;
};

TEST_F(OdbcReportLinks, OdbcProjectPointsTheHostLinksAtTheConnectionStringAndReadsTheServer)
{
    LinkedDatabase::open(reportDb)->storeLink({"T_TObjekt", ";DATABASE=C:\\alt\\QOvTechnik.mdb", "T_TObjekt"});
    ASSERT_TRUE(CheckReportMdbLink(settings, order, ui)) << (ui.messages.empty() ? "" : ui.messages[0].text);
    for (const char* name : {"T_Raumkern", "T_IObjekt", "T_IArtikel", "T_AnsprechPartner", "T_KST"})
        EXPECT_EQ(link(name), connection) << name;
    EXPECT_EQ(link("T_Auftrag"), ";DATABASE=" + order);
    EXPECT_EQ(link("T_TObjekt"), ";DATABASE=C:\\alt\\QOvTechnik.mdb");
    EXPECT_EQ(link("T_BArtikel"), ";DATABASE=QOvBrandschutz.mdb");

    // Statements and reports read the server's tables through the links.
    auto rpt = LinkedDatabase::open(reportDb)->openForStatements();
    EXPECT_EQ(toLong(rpt->scalar("SELECT count(*) FROM T_IObjekt")), std::int64_t(inst.modules[0].objects.size()));
    EXPECT_EQ(toLong(rpt->scalar("SELECT count(*) FROM T_Raumkern")), std::int64_t(inst.rooms.size()));
    EXPECT_EQ(toLong(rpt->scalar("SELECT count(*) FROM T_KST")), std::int64_t(inst.costCentres.size()));
    EXPECT_NO_THROW(rpt->query("SELECT * FROM Q_DiffListe"));
}

TEST_F(OdbcReportLinks, OpeningAnOrderReadsTheServerAnew)
{
    ASSERT_TRUE(CheckReportMdbLink(settings, order, ui));
    cluster->runSql("quarn", "DELETE FROM \"T_KST\";\n");
    ASSERT_TRUE(CheckReportMdbLink(settings, order, ui));
    auto rpt = LinkedDatabase::open(reportDb)->openForStatements();
    EXPECT_EQ(toLong(rpt->scalar("SELECT count(*) FROM T_KST")), 0);
}

TEST_F(OdbcReportLinks, JetProjectWhoseLinksCarryAnOdbcStringGetsThemMadeAnew)
{
    ASSERT_TRUE(CheckReportMdbLink(settings, order, ui));
    // A source table spelled otherwise shows that the link was made anew, not redirected.
    auto db = LinkedDatabase::open(reportDb);
    db->execute("DROP TABLE T_KST");
    db->storeLink({"T_KST", connection, "t_kst"});
    db.reset();
    ASSERT_EQ(source("T_KST"), "t_kst");

    settings.gstProjekttyp = "ptJet";
    ASSERT_TRUE(CheckReportMdbLink(settings, order, ui)) << (ui.messages.empty() ? "" : ui.messages[0].text);
    EXPECT_EQ(link("T_Raumkern"), ";DATABASE=" + project + "QGebaeude.mdb");
    EXPECT_EQ(link("T_IObjekt"), ";DATABASE=" + project + "QOvInventar.mdb");
    EXPECT_EQ(link("T_IArtikel"), ";DATABASE=" + project + "QOvInventar.mdb");
    EXPECT_EQ(link("T_AnsprechPartner"), ";DATABASE=" + project + "QStammdaten.mdb");
    EXPECT_EQ(link("T_KST"), ";DATABASE=" + project + "QStammdaten.mdb");
    EXPECT_EQ(source("T_KST"), "T_KST");
    // The other modules' links stay as they were.
    EXPECT_EQ(link("T_TObjekt"), ";DATABASE=QOvTechnik.mdb");
}

TEST_F(OdbcReportLinks, OdbcProjectWhoseLinksCarryFileStringsIsOnlyRedirected)
{
    settings.gstProjekttyp = "ptJet";
    ASSERT_TRUE(CheckReportMdbLink(settings, order, ui));
    auto db = LinkedDatabase::open(reportDb);
    db->storeLink({"T_KST", ";DATABASE=" + project + "QStammdaten.mdb", "t_kst"});
    db.reset();

    settings.gstProjekttyp = "ptODBC";
    ASSERT_TRUE(CheckReportMdbLink(settings, order, ui)) << (ui.messages.empty() ? "" : ui.messages[0].text);
    EXPECT_EQ(link("T_KST"), connection);
    EXPECT_EQ(source("T_KST"), "t_kst");
    EXPECT_EQ(link("T_Raumkern"), connection);
    EXPECT_TRUE(ui.messages.empty());
}

} // namespace
} // namespace qi
