// Files that are no good: the order register, an order's database, the template of new
// orders, the report database and Quarn's files, each missing, empty, cut short, no
// database, a database of another kind, without a table or a column, or locked by
// another program. Each gives its message, never a crash, and no file changes but the
// ones the command is meant to change. (Read-only files and folders: ProjectAccessTest.)

#include "ProjectFixture.h"
#include "ScriptedMain.h"

#include "FileDigests.h"
#include "FileSystem.h"
#include "LinkedDatabase.h"
#include "ProgramWindows.h"
#include "ReportLinks.h"
#include "Startup.h"
#include "frmRaum.h"
#include "frmWorkWindow.h"

#include <QTreeWidget>

#include <chrono>
#include <filesystem>
#include <optional>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

enum class Spoil { Missing, Empty, CutShort, NoDatabase, OtherKind, NoTable, NoColumn, Locked };

const char* nameOf(Spoil s)
{
    switch (s) {
    case Spoil::Missing: return "Missing";
    case Spoil::Empty: return "Empty";
    case Spoil::CutShort: return "CutShort";
    case Spoil::NoDatabase: return "NoDatabase";
    case Spoil::OtherKind: return "OtherKind";
    case Spoil::NoTable: return "NoTable";
    case Spoil::NoColumn: return "NoColumn";
    case Spoil::Locked: return "Locked";
    }
    return "";
}

/// How a file of one kind is spoilt: which table or column goes, and what stands in for another kind.
struct KindOf {
    std::string table;           ///< the table that goes (NoTable)
    std::string columnTable;     ///< the table that loses a column (NoColumn)
    std::string column;          ///< the column
    std::function<void(const std::string&)> makeOtherKind; ///< writes a database of another kind there
};

/// Spoils `file`; a locked file stays locked while the answer lives.
std::unique_ptr<Database> spoil(const std::string& file, Spoil how, const KindOf& kind)
{
    switch (how) {
    case Spoil::Missing:
        fs::remove(file);
        break;
    case Spoil::Empty:
        writeFile(file, "");
        break;
    case Spoil::CutShort: {
        const std::string bytes = readFile(file);
        writeFile(file, bytes.substr(0, bytes.size() / 2 + 100));
        break;
    }
    case Spoil::NoDatabase:
        writeFile(file, "Das ist keine Datenbank, nur ein Text mit einer Endung .mdb.\r\n");
        break;
    case Spoil::OtherKind:
        fs::remove(file);
        kind.makeOtherKind(file);
        break;
    case Spoil::NoTable:
        Database::open(file)->executeScript("DROP TABLE " + kind.table);
        break;
    case Spoil::NoColumn:
        Database::open(file)->executeScript("ALTER TABLE " + kind.columnTable + " DROP COLUMN " + kind.column);
        break;
    case Spoil::Locked: {
        auto holder = Database::open(file);
        holder->executeScript("BEGIN EXCLUSIVE");
        return holder;
    }
    }
    return nullptr;
}

/// The engine's or the structure check's reason for a spoilt file, as the messages give it.
std::string reasonFor(Spoil how, const std::string& file, const std::string& structureReason)
{
    const std::string shown = displayPath(file);
    switch (how) {
    case Spoil::Missing: return "Die Datei '" + shown + "' konnte nicht gefunden werden.";
    case Spoil::Empty: return "Die Datei '" + shown + "' ist leer.";
    case Spoil::CutShort: return "Die Datei '" + shown + "' ist beschädigt: sie ist unvollständig.";
    case Spoil::NoDatabase: return "Nicht erkanntes Datenbankformat '" + shown + "'.";
    case Spoil::Locked: return "Die Datei '" + shown + "' ist bereits in Verwendung.";
    default: return structureReason;
    }
}

const std::vector<Spoil> kAllSpoils = {Spoil::Missing,   Spoil::Empty,   Spoil::CutShort, Spoil::NoDatabase,
                                       Spoil::OtherKind, Spoil::NoTable, Spoil::NoColumn, Spoil::Locked};

std::string spoilName(const ::testing::TestParamInfo<Spoil>& info) { return nameOf(info.param); }

/// The project of the fixture with its register and an order "Alpha" of two rooms, made by the window.
class BadFiles : public ProjectFixture {
protected:
    void SetUp() override
    {
        qtApplication();
        ProjectFixture::SetUp();
        start();
        window->script.push_back(enter("Alpha"));
        window->mnuDateiFkt_Click(menuindex::NewOrder);
        ASSERT_TRUE(ui.messages.empty());
        {
            auto order = Database::open(orderFile());
            order->execute("INSERT INTO T_Raum (lIdRB, stRaumNr, ststatus, stAuftrag) VALUES (10, '101', 'E', 'Alpha'), "
                           "(11, '102', 'N', 'Alpha')");
        }
        project = window->settings().gstProjektPfad;
    }
    void TearDown() override
    {
        window.reset();
        holder.reset();
    }

    void start()
    {
        window = std::make_unique<ScriptedMain>(ui, programDir);
        connectWindows(*window);
        window->Form_Load();
    }
    std::string orderFile() const { return projectDir + "Inventur/Alpha.mdb"; }
    std::string registerFile() const { return projectDir + "QInventur.mdb"; }
    std::string shown(const std::string& file) const { return displayPath(file); }

    /// Every file of the test's folders, the project's lock file aside (each program names itself in it).
    FileDigests files() const
    {
        FileDigests d = digestFiles(root.path());
        d.erase("Projekt 1/" + std::string(ProjectLock::kFileName));
        return d;
    }
    void release() { holder.reset(); }

    void openAlpha()
    {
        for (int i = 0; i < window->lvAuftraege->topLevelItemCount(); ++i)
            if (window->lvAuftraege->topLevelItem(i)->text(0) == QStringLiteral("Alpha")) {
                QTreeWidgetItem* item = window->lvAuftraege->topLevelItem(i);
                window->lvAuftraege->setCurrentItem(item);
                item->setSelected(true);
                window->lvAuftraege_ItemClick(item);
            }
        window->lvAuftraege_DblClick();
    }

    void expectMessage(std::size_t i, const std::string& text, MsgIcon icon, const std::string& title)
    {
        ASSERT_GT(ui.messages.size(), i);
        EXPECT_EQ(ui.messages[i].text, text);
        EXPECT_EQ(ui.messages[i].icon, icon);
        EXPECT_EQ(ui.messages[i].title, title);
    }

    std::unique_ptr<ScriptedMain> window;
    std::unique_ptr<Database> holder;
    std::string project; ///< gstProjektPfad
};

class BadFilesTest : public BadFiles, public ::testing::WithParamInterface<Spoil> {};

// ---------------------------------------------------------------- the order register

class BadRegister : public BadFilesTest {};

TEST_P(BadRegister, EndsStartUpWithItsReasonAndIsNotWritten)
{
    window.reset();
    const KindOf kind{"T_Auftrag", "T_Auftrag", "stErsteller", [](const std::string& f) { makeOrderDatabase(f); }};
    holder = spoil(registerFile(), GetParam(), kind);
    const FileDigests before = files();
    ui.messages.clear();
    start();

    const std::string reg = project + "QInventur.mdb";
    if (GetParam() == Spoil::Missing) {
        // A project without register is a new one: it is seeded from the template (the order's
        // file stays, unknown to the new register).
        EXPECT_TRUE(ui.messages.empty()) << ui.messages[0].text;
        ASSERT_NE(window->inventurDb(), nullptr);
        EXPECT_EQ(window->lvAuftraege->topLevelItemCount(), 0);
        std::set<std::string> seeded = {"Projekt 1/QInventur.mdb", "Projekt 1/QAuftrag.mdb"};
        for (const char* r : kReportFiles)
            seeded.insert("Projekt 1/Report" + std::string(r));
        EXPECT_EQ(changedFiles(before, files(), seeded), "");
        return;
    }
    const std::string structure =
        GetParam() == Spoil::NoColumn ? "Sie ist kein Auftragsregister: in der Tabelle T_Auftrag fehlt die Spalte stErsteller."
        : GetParam() == Spoil::OtherKind
            ? "Sie ist kein Auftragsregister: in der Tabelle T_Auftrag fehlt die Spalte stBezeichung."
            : "Sie ist kein Auftragsregister: die Tabelle T_Auftrag fehlt.";
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(0, "Die Datenbank " + shown(reg) + " konnte nicht geöffnet werden!\r\n" +
                         reasonFor(GetParam(), reg, structure),
                  MsgIcon::Critical, "Problem");
    EXPECT_EQ(window->inventurDb(), nullptr);
    EXPECT_EQ(window->lvAuftraege->topLevelItemCount(), 0);
    // Without a register the window can only be closed; closing writes nothing.
    window->close();
    window.reset();
    release();
    EXPECT_EQ(changedFiles(before, files()), "");
}

INSTANTIATE_TEST_SUITE_P(Spoilt, BadRegister, ::testing::ValuesIn(kAllSpoils), spoilName);

// ---------------------------------------------------------------- the database of an order

class BadOrder : public BadFilesTest {};

TEST_P(BadOrder, IsNotOpenedAndItsRecordIsNotStamped)
{
    const KindOf kind{"T_Raum", "T_Dateien", "stPfad", [](const std::string& f) { makeRegisterDatabase(f); }};
    holder = spoil(orderFile(), GetParam(), kind);
    const FileDigests before = files();
    ui.messages.clear();
    openAlpha();

    const std::string file = project + "Inventur\\Alpha.mdb";
    const std::string structure =
        GetParam() == Spoil::NoColumn   ? "Sie ist keine Auftragsdatenbank: in der Tabelle T_Dateien fehlt die Spalte stPfad."
        : GetParam() == Spoil::NoTable ? "Sie ist keine Auftragsdatenbank: die Tabelle T_Raum fehlt."
                                        : "Sie ist keine Auftragsdatenbank: die Tabelle T_Abschreibung fehlt.";
    ASSERT_EQ(ui.messages.size(), 1u);
    expectMessage(0, "frmMain.lvAuftraege_DblClick\r\nDie Datenbank " + shown(file) +
                         " konnte nicht geöffnet werden!\r\n" + reasonFor(GetParam(), file, structure),
                  MsgIcon::Critical, "QInventur");
    EXPECT_EQ(window->workWindow(), nullptr);
    EXPECT_TRUE(window->isActiveState());
    release();
    // Neither the register (its stamp "geändert") nor the report database nor the file changed.
    EXPECT_EQ(changedFiles(before, files()), "");
}

INSTANTIATE_TEST_SUITE_P(Spoilt, BadOrder, ::testing::ValuesIn(kAllSpoils), spoilName);

// ---------------------------------------------------------------- the template of new orders

class BadTemplate : public BadFilesTest {};

TEST_P(BadTemplate, MakesNoOrder)
{
    const KindOf kind{"T_Raum", "T_Dateien", "stPfad", [](const std::string& f) { makeRegisterDatabase(f); }};
    holder = spoil(projectDir + "QAuftrag.mdb", GetParam(), kind);
    const FileDigests before = files();
    ui.messages.clear();
    window->script.push_back(enter("Beta"));
    window->mnuDateiFkt_Click(menuindex::NewOrder);

    const std::string file = project + "QAuftrag.mdb";
    ASSERT_EQ(ui.messages.size(), 1u);
    if (GetParam() == Spoil::Missing) {
        expectMessage(0, "frmMain.MakeDatabase\r\nDatei nicht gefunden", MsgIcon::Critical, "QInventur");
    } else {
        const std::string structure =
            GetParam() == Spoil::NoColumn ? "Sie ist keine Auftragsdatenbank: in der Tabelle T_Dateien fehlt die Spalte stPfad."
            : GetParam() == Spoil::NoTable ? "Sie ist keine Auftragsdatenbank: die Tabelle T_Raum fehlt."
                                            : "Sie ist keine Auftragsdatenbank: die Tabelle T_Abschreibung fehlt.";
        expectMessage(0, "frmMain.MakeDatabase\r\nDie Datenbank " + shown(file) + " konnte nicht geöffnet werden!\r\n" +
                             reasonFor(GetParam(), file, structure),
                      MsgIcon::Critical, "QInventur");
    }
    EXPECT_EQ(window->lvAuftraege->topLevelItemCount(), 1);
    release();
    EXPECT_EQ(changedFiles(before, files()), "");
    EXPECT_FALSE(fs::exists(projectDir + "Inventur/Beta.mdb"));
}

INSTANTIATE_TEST_SUITE_P(Spoilt, BadTemplate, ::testing::ValuesIn(kAllSpoils), spoilName);

TEST_F(BadFiles, AWriteProtectedTemplateGivesOrdersTheProgramCanWrite)
{
    fs::permissions(projectDir + "QAuftrag.mdb", fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    window->script.push_back(enter("Beta"));
    window->mnuDateiFkt_Click(menuindex::NewOrder);
    ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    const auto rights = fs::status(projectDir + "Inventur/Beta.mdb").permissions();
    EXPECT_NE(rights & fs::perms::owner_write, fs::perms::none);
    EXPECT_EQ(toText(Database::open(projectDir + "Inventur/Beta.mdb")->scalar("SELECT stAuftrag FROM T_Auftrag")), "Beta");
}

// ---------------------------------------------------------------- the report database

class BadReportDatabase : public BadFilesTest {};

TEST_P(BadReportDatabase, IsNamedWhenTheOrderIsOpenedAndStaysAsItIs)
{
    const KindOf kind{"QI_Queries", "QI_Links", "stSourceTable", [](const std::string& f) { makeOrderDatabase(f); }};
    holder = spoil(reportDb, GetParam(), kind);
    const FileDigests before = files();
    ui.messages.clear();
    openAlpha();

    const std::string file = window->settings().gstAppPfad + "\\QInventurRpt.mdb";
    const std::string what = "Die Datei '" + shown(file) + "' ist keine Datenbank mit Tabellenverknüpfungen: ";
    const std::string structure = GetParam() == Spoil::NoColumn ? what + "in der Tabelle QI_Links fehlt die Spalte stSourceTable."
                                  : GetParam() == Spoil::NoTable ? what + "die Tabelle QI_Queries fehlt."
                                                                  : what + "die Tabelle QI_Links fehlt.";
    ASSERT_GE(ui.messages.size(), 1u);
    expectMessage(0, "COVRpt.CheckReportMdbLink\r\n" + reasonFor(GetParam(), file, structure), MsgIcon::Critical,
                  "QInventur");
    EXPECT_EQ(ui.messages.size(), 1u) << ui.messages.back().text;
    // The order is open all the same; its stamp is the one change.
    ASSERT_NE(window->workWindow(), nullptr);
    window->workWindow()->close();
    release();
    EXPECT_EQ(changedFiles(before, files(), {"Projekt 1/QInventur.mdb"}), "");
}

INSTANTIATE_TEST_SUITE_P(Spoilt, BadReportDatabase, ::testing::ValuesIn(kAllSpoils), spoilName);

// ---------------------------------------------------------------- Quarn's files

struct HostCase {
    const char* file;
    Spoil how;
};

class BadHostFile : public BadFiles, public ::testing::WithParamInterface<HostCase> {};

std::string hostCaseName(const ::testing::TestParamInfo<HostCase>& info)
{
    std::string file = info.param.file;
    return file.substr(0, file.find('.')) + "_" + nameOf(info.param.how);
}

std::vector<HostCase> hostCases()
{
    std::vector<HostCase> out;
    for (const char* file : {"QGebaeude.mdb", "QOvInventar.mdb", "QStammdaten.mdb"})
        for (Spoil how : kAllSpoils)
            out.push_back({file, how});
    return out;
}

/// Quarn's files are only ever read, through their mirror: when the report database is linked
/// to them at the opening of an order, when the room selection lists the rooms, when the
/// evaluation reads the objects of the rooms, and when a report reads the persons responsible.
TEST_P(BadHostFile, GivesItsReasonAndIsNeverWritten)
{
    const HostCase c = GetParam();
    const std::string name = c.file;
    const std::string file = projectDir + name;
    struct Parts {
        const char* firstLinked; ///< the file's first table the relinking asks for
        const char* dropped;     ///< the table that goes
        const char* columnTable;
        const char* column;      ///< a column that goes
    };
    const Parts parts = name == "QGebaeude.mdb"     ? Parts{"T_Raumkern", "T_Raumkern", "T_Raumkern", "stRaumNr"}
                        : name == "QOvInventar.mdb" ? Parts{"T_IObjekt", "T_IObjekt", "T_IObjekt", "stOrt"}
                                                    : Parts{"T_AnsprechPartner", "T_KST", "T_AnsprechPartner", "stVorname"};
    const KindOf kind{parts.dropped, parts.columnTable, parts.column,
                      [](const std::string& f) { Database::create(f)->executeScript("CREATE TABLE T_Fremd (a)"); }};
    holder = spoil(file, c.how, kind);
    if (c.how == Spoil::Locked) {
        // A program that writes the file changes it: its mirror must be made anew.
        fs::last_write_time(file, fs::last_write_time(file) + std::chrono::seconds(5));
    }
    const FileDigests before = files();
    window.reset();
    ui.messages.clear();
    start();
    openAlpha();
    auto* work = dynamic_cast<frmWorkWindow*>(window->workWindow());
    ASSERT_NE(work, nullptr);

    const std::string shownFile = project + name;
    const std::string notFound = "Das Objekt '%' wurde in der Datenbank '" + shown(shownFile) +
                                 "' nicht gefunden. Stellen Sie sicher, dass das Objekt existiert und dass Sie den "
                                 "Namen richtig geschrieben haben.";
    const auto objectNotFound = [&](const std::string& table) {
        std::string text = notFound;
        return text.replace(text.find('%'), 1, table);
    };
    if (c.how == Spoil::NoColumn) {
        // The file's tables are there: the order opens, and the step that reads the column names it.
        EXPECT_TRUE(ui.messages.empty()) << ui.messages[0].text;
        ui.messages.clear();
        if (name == "QGebaeude.mdb") {
            frmRaum rooms(work->form().f_DBAuftrag, window->gebDb(), window->settings(), ui);
            rooms.Form_Load();
            rooms.cbAllRooms = true;
            rooms.cbAllRooms_Click();
            ASSERT_FALSE(ui.messages.empty());
            expectMessage(0, "frmRaum.cbAllRooms_Click\r\nElement in dieser Auflistung nicht gefunden (stRaumNr).",
                          MsgIcon::Critical, "QInventur");
        } else if (name == "QOvInventar.mdb") {
            EXPECT_FALSE(work->form().ReportDifferenzListe());
            expectMessage(0, "frmWork.ReportDifferenzListe\r\nElement in dieser Auflistung nicht gefunden (o.stOrt).",
                          MsgIcon::Critical, "QInventur");
        } else {
            // Only the difference list's report reads the persons responsible.
            EXPECT_TRUE(work->form().ReportDifferenzListe());
            auto report = LinkedDatabase::open(reportDb)->openForStatements();
            try {
                report->query("SELECT * FROM Q_DiffListe");
                ADD_FAILURE() << "the report's query ran";
            } catch (const DbError& e) {
                EXPECT_EQ(e.description(), "Element in dieser Auflistung nicht gefunden (T_AnsprechPartner.stVorname).");
            }
        }
    } else {
        const std::string structure = c.how == Spoil::NoTable ? objectNotFound(parts.dropped)
                                                              : objectNotFound(parts.firstLinked);
        ASSERT_FALSE(ui.messages.empty());
        expectMessage(0, "COVRpt.CheckReportMdbLink\r\n" + reasonFor(c.how, shownFile, structure), MsgIcon::Critical,
                      "QInventur");
    }
    work->close();
    release();
    // What the commands write may change (the stamp, the links, the evaluation); Quarn's files never.
    EXPECT_EQ(changedFiles(before, files(),
                           {"Projekt 1/QInventur.mdb", "Projekt 1/Inventur/Alpha.mdb", "prog/QInventurRpt.mdb"}),
              "");
}

INSTANTIATE_TEST_SUITE_P(Spoilt, BadHostFile, ::testing::ValuesIn(hostCases()), hostCaseName);

} // namespace
} // namespace qi::test
