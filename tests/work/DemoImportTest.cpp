// The demo project's scanner files go through the import as a user would add
// them to an order of the ground-floor rooms, and the reconciliation statements
// then find every difference category in them.

#include "DemoInstallation.h"
#include "DemoOrderRooms.h"
#include "FileSystem.h"
#include "QuarnHost.h"
#include "ReportLinks.h"
#include "ScannerFile.h"
#include "Settings.h"
#include "TestSupport.h"
#include "bGeneral.h"
#include "frmWork.h"

#include <map>
#include <set>

using namespace qi;

namespace {

constexpr const char* k3b = "3b Fehlt im Auftrag (bisher). Könnte noch in diesem oder in anderem Auftrag auftauchen.";

class DemoImport : public ::testing::Test {
protected:
    void SetUp() override
    {
        project = dir.path() + "/Demo";
        sizes = demo::smallSizes();
        demo::writeDemoProject(sizes, project, "");
        inst = demo::buildInstallation(sizes);
        scanFiles = demo::scannerFiles(inst, 0);
        ASSERT_EQ(scanFiles.size(), 4u);

        settings.gstProjektPfad = project + "/";
        settings.gstProjekttyp = "ptJet";
        settings.gstAppPfad = dir.path();
        settings.giModul = 0;

        ASSERT_TRUE(createFolder(project + "/Inventur"));
        dbFile = project + "/Inventur/Demo.mdb";
        test::makeOrderDatabase(dbFile);
        db.setDbPath(dbFile);
        ASSERT_TRUE(db.OpenDb()) << db.LastError();

        // The order: every room of the two ground-floor files.
        const std::vector<demo::Room> rooms = test::groundFloorRooms(inst, scanFiles);
        ASSERT_FALSE(rooms.empty());
        ASSERT_EQ(test::addOrderRooms(db, rooms, "Demo"), "");
        for (const demo::Room& r : rooms)
            roomIds[r.nr] = r.id;
    }

    std::string path(int file) const { return project + "/" + scanFiles[std::size_t(file)].name; }

    bool hasMessage(const std::string& text, MsgIcon icon) const
    {
        for (const RecordedMessage& m : ui.messages)
            if (m.text == text && m.icon == icon && m.title == "Quarn-Inventur" && m.buttons == MsgButtons::Ok)
                return true;
        return false;
    }

    test::TempDir dir;
    std::string project, dbFile;
    demo::Sizes sizes;
    demo::Installation inst;
    std::vector<demo::ScanFile> scanFiles;
    Settings settings;
    ScriptedUserInteraction ui;
    CAuftragDb db{ui};
    std::map<std::string, std::int32_t> roomIds;
};

} // namespace

TEST_F(DemoImport, ScannerFilesImportWithTheirWarningsConflictsAndRefusals)
{
    frmWork w(db, settings, ui);
    ASSERT_TRUE(w.Init());
    ASSERT_TRUE(w.InitData());
    for (int i = 0; i < 4; ++i)
        ui.fileChoices.push_back(path(i));
    ui.conflictAnswers = {false, true}; // keep the first within a file, take the second across files

    for (int i = 0; i < 4; ++i)
        w.pbAdd_Click();

    // Part one: a line without number and an object counted twice in one room.
    EXPECT_TRUE(hasMessage("In der Datei '" + path(0) + "' steht ein Datensatz ohne Objektnummer.", MsgIcon::None));
    bool sameRoomWarning = false;
    for (const RecordedMessage& m : ui.messages)
        sameRoomWarning |= m.text.rfind("Warnung: Im Raum ", 0) == 0 && m.icon == MsgIcon::Exclamation &&
                           m.text.find("' mehrfach eingescannt worden.") != std::string::npos;
    EXPECT_TRUE(sameRoomWarning);
    // The two other files are refused before anything is written.
    EXPECT_TRUE(hasMessage("In der Datei sind Daten an verschiedenen Tagen aufgenommen worden. Bearbeiten Sie bitte "
                           "die Textdatei.",
                           MsgIcon::None));
    EXPECT_TRUE(hasMessage("In der Datei sind Räume enthalten, die nicht zum Auftrag gehören. Bearbeiten Sie bitte "
                           "die Textdatei.",
                           MsgIcon::None));
    for (const RecordedMessage& m : ui.messages)
        EXPECT_NE(m.icon, MsgIcon::Critical) << m.text;

    // Two conflicts: one within part one, one across the two parts.
    ASSERT_EQ(ui.conflicts.size(), 2u);
    EXPECT_EQ(ui.conflicts[0].stDateiAlt, "Scan_EG_Teil1.dat");
    EXPECT_EQ(ui.conflicts[0].stDateiNeu, "Scan_EG_Teil1.dat");
    EXPECT_NE(ui.conflicts[0].stRaumAlt, ui.conflicts[0].stRaumNeu);
    EXPECT_EQ(ui.conflicts[1].stDateiAlt, "Scan_EG_Teil1.dat");
    EXPECT_EQ(ui.conflicts[1].stDateiNeu, "Scan_EG_Teil2.dat");
    EXPECT_EQ(ui.conflicts[1].stDatumAlt, "14.03.2025");
    EXPECT_EQ(ui.conflicts[1].stDatumNeu, "17.03.2025");

    CDateienRecColl files;
    ASSERT_TRUE(db.ReadAllDateienRec2Coll(files));
    ASSERT_EQ(files.Count(), 2);
    EXPECT_EQ(files.Item(1)->stName, "Scan_EG_Teil1.dat");
    EXPECT_EQ(files.Item(1)->Datum, "14.03.2025");

    // One row per distinct inventory number of the two parts.
    std::set<std::string> numbers;
    for (int f = 0; f < 2; ++f)
        for (const std::string& line : scanFiles[std::size_t(f)].lines)
            if (FieldCount(line, ",") >= 8) {
                const std::string nr = trimBlanks(GetField(line, ",", 6));
                numbers.insert(nr.empty() ? "Obj. ohne Nr." : nr);
            }
    CDatInventurRecColl scans;
    ASSERT_TRUE(db.ReadAllDatInventurRec2Coll(scans));
    EXPECT_EQ(std::size_t(scans.Count()), numbers.size());

    // The object taken over from part two carries its room, date and file now.
    const std::string across = ui.conflicts[1].stInvNr;
    for (const CDatInventurRec& s : scans) {
        EXPECT_TRUE(roomIds.count(s.stRaum)) << "room " << s.stRaum << " is not one of the order";
        EXPECT_GT(s.iReihenfolge, 0);
        if (s.stInvNr == across) {
            EXPECT_EQ(s.stRaum, ui.conflicts[1].stRaumNeu);
            EXPECT_EQ(s.Datum, "17.03.2025");
            EXPECT_EQ(s.lDatID, files.Item(2)->lID);
        }
    }
    CRaumRecColl rooms;
    ASSERT_TRUE(db.ReadAllRaumRec2Coll(rooms));
    for (const CRaumRec& r : rooms)
        EXPECT_EQ(r.ststatus, "E") << r.stRaumNr;
}

TEST_F(DemoImport, EvaluationFindsEveryCategory)
{
    createReportDatabase(dir.path() + "/QInventurRpt.mdb");
    ASSERT_TRUE(CheckReportMdbLink(settings, dbFile, ui));
    frmWork w(db, settings, ui);
    ASSERT_TRUE(w.Init());
    ui.fileChoices = {path(0), path(1)};
    ui.conflictAnswers = {false, true};
    w.pbAdd_Click();
    w.pbAdd_Click();
    ASSERT_EQ(ui.messages.size(), 2u); // the two warnings of part one, nothing else

    ASSERT_TRUE(w.ReportDifferenzListe());
    EXPECT_EQ(ui.messages.size(), 2u) << ui.messages.back().text;

    CDifferenzlisteRecColl list;
    ASSERT_TRUE(db.ReadAllDifferenzlisteRec2Coll(list));
    std::map<std::string, int> byType;
    for (const CDifferenzlisteRec& d : list)
        ++byType[d.stTyp];
    for (const char* typ : {"1 OK", "2a Zuviel im Raum (verschoben aus anderem Raum des Auftrags)",
                            "2b Zuviel im Auftrag (gehört in einen Raum außerhalb des Auftrags)",
                            "2c Nicht in Quarn erfasst", "3a Fehlt im Raum (verschoben in anderen Raum des Auftrags)",
                            k3b})
        EXPECT_GT(byType[typ], 0) << typ;
    int categorised = 0;
    for (const auto& [typ, n] : byType)
        categorised += n;
    EXPECT_EQ(categorised, list.Count());
}
