// Quarn's own SQLite files carry no text comparison of ours and none of our
// indexes. Read through the mirror, an inventory number scanned in lower case or
// with trailing blanks is still the object Quarn keeps: its article is taken over
// and it reconciles as "1 OK" in its room. The project lies in a folder whose
// path holds "=", which is a folder like any other.

#include "CAuftragDb.h"
#include "Database.h"
#include "DemoInstallation.h"
#include "FileSystem.h"
#include "LinkedDatabase.h"
#include "ReportDatabase.h"
#include "ReportLinks.h"
#include "Startup.h"
#include "TestSupport.h"
#include "frmWork.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace qi {
namespace {

namespace fs = std::filesystem;

/// Rewrites every table of a file without our comparison and without indexes, as Quarn's files are.
void asQuarnWritesIt(const std::string& file)
{
    auto db = Database::open(file);
    const Recordset tables = db->query("SELECT name FROM sqlite_master WHERE type = 'table'");
    for (const auto& row : tables.rows()) {
        const std::string t = toText(row[0]);
        db->executeScript("ALTER TABLE " + t + " RENAME TO alt; CREATE TABLE " + t +
                          " AS SELECT * FROM alt; DROP TABLE alt;");
    }
}

std::string lower(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return s;
}

TEST(QuarnFiles, NumbersScannedInOtherCaseOrWithTrailingBlanksAreFoundAndReconcile)
{
    test::TempDir dir;
    const std::string program = dir.path() + "/Programm";
    const std::string project = dir.path() + "/Quarn=Nord/Projekt=1";
    ASSERT_TRUE(fs::create_directories(program));
    ASSERT_TRUE(fs::create_directories(project));
    // TECHNIK: its inventory numbers hold letters.
    demo::writeDemoProject(demo::smallSizes(), project, "", "TECHNIK");
    for (const char* file : {"QGebaeude.mdb", "QOvInventar.mdb", "QOvTechnik.mdb", "QStammdaten.mdb"})
        asQuarnWritesIt(project + "/" + file);
    demo::writeQuarnIni(program + "/Quarn.ini", project);
    createReportDatabase(program + "/QInventurRpt.mdb");
    test::makeRegisterDatabase(project + "/QInventur.mdb");
    ASSERT_TRUE(createFolder(project + "/Inventur"));

    ScriptedUserInteraction ui;
    Settings settings;
    StartupResult start = RunStartup(program, settings, ui);
    ASSERT_TRUE(start.completed);
    EXPECT_TRUE(ui.messages.empty());
    ASSERT_TRUE(start.gebDb && start.gebDb->IsOpen()) << (start.gebDb ? start.gebDb->LastError() : "");

    // A room with objects, and two of them scanned as a careless user types them.
    const demo::Installation inst = demo::buildInstallation(demo::smallSizes());
    const demo::Room* room = nullptr;
    for (const demo::Room& r : inst.rooms)
        if (!room && inst.objectsOfRoom(1, r.id).size() >= 2)
            room = &r;
    ASSERT_NE(room, nullptr);
    const auto objects = inst.objectsOfRoom(1, room->id);
    const demo::Object& first = *objects[0];
    const demo::Object& second = *objects[1];
    ASSERT_NE(lower(first.name), first.name);

    const std::string dbFile = project + "/Inventur/A.mdb";
    test::makeOrderDatabase(dbFile);
    CAuftragDb db(ui);
    db.setDbPath(dbFile);
    ASSERT_TRUE(db.OpenDb()) << db.LastError();
    CRaumRec r;
    r.lIdRB = room->id;
    r.stRaumNr = room->nr;
    r.ststatus = "N";
    r.stAuftrag = "A";
    ASSERT_TRUE(db.AddNewRaumRec(&r));
    ASSERT_TRUE(CheckReportMdbLink(settings, dbFile, ui)) << (ui.messages.empty() ? "" : ui.messages[0].text);
    {
        // The evaluation takes the remarks from the INVENTAR objects: as an earlier INVENTAR project left the link.
        auto links = LinkedDatabase::open(program + "/QInventurRpt.mdb");
        links->setConnect("T_IObjekt", ";DATABASE=" + project + "/QOvInventar.mdb");
        links->refreshLink("T_IObjekt");
    }

    const std::string scan = project + "/Erfassung.dat";
    test::writeFile(scan, "M7,4711,01.02.2025,08:00:00," + room->nr + "," + lower(first.name) + ",,E\r\n" +
                              "M7,4711,01.02.2025,08:01:00," + room->nr + "," + second.name + "  ,,E\r\n");
    frmWork w(db, settings, ui);
    ASSERT_TRUE(w.Init());
    ASSERT_TRUE(w.InitData());
    ui.fileChoices.push_back(scan);
    w.pbAdd_Click();
    ASSERT_TRUE(w.ReportDifferenzListe()) << (ui.messages.empty() ? "" : ui.messages.back().text);
    for (const RecordedMessage& m : ui.messages)
        ADD_FAILURE() << m.text;

    Database& sql = *db.database();
    // The article numbers are taken over from Quarn.
    EXPECT_EQ(toText(sql.scalar("SELECT stArtNr FROM T_DatInventur WHERE stInvNr = ?1", {first.name})),
              inst.modules[1].articleOf(first)->artNr);
    EXPECT_EQ(toText(sql.scalar("SELECT stArtNr FROM T_DatInventur WHERE stInvNr = ?1", {second.name})),
              inst.modules[1].articleOf(second)->artNr);
    // Both are where Quarn expects them.
    for (const demo::Object* o : {&first, &second})
        EXPECT_EQ(toText(sql.scalar("SELECT stTyp FROM T_Differenzliste WHERE stSollInvNR = ?1", {o->name})), "1 OK")
            << o->name;
    EXPECT_EQ(toLong(sql.scalar("SELECT count(*) FROM T_Differenzliste WHERE stTyp = '1 OK'")), 2);
    EXPECT_EQ(toLong(sql.scalar("SELECT count(*) FROM T_Differenzliste WHERE stTyp LIKE '2%'")), 0);
}

} // namespace
} // namespace qi
