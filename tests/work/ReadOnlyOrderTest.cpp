// An order open read-only: every command that would change it refuses with a message,
// and the reports and error lists, which write their lists into the order and relink
// the report database first, are made in a private copy of both. The order and the
// program's report database stay as they were.

#include "EvaluationFixture.h"

#include "FileDigests.h"
#include "FileSystem.h"
#include "LinkedDatabase.h"
#include "ReportMenus.h"

#include <filesystem>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

class ReadOnlyOrder : public EvaluationTest {
protected:
    void SetUp() override
    {
        EvaluationTest::SetUp();
        importAll();
        // The difference list as a writable run of the same order makes it.
        ASSERT_TRUE(w->ReportDifferenzListe());
        expected = toLong(sql().scalar("SELECT count(*) FROM T_Differenzliste"));
        ASSERT_GT(expected, 0);
        ASSERT_TRUE(db.DelAllDiffListe());
        w.reset();
        db.CloseDb();
        db.setOpenReadOnly(Value(std::int64_t{-1}));
        ASSERT_TRUE(db.OpenDb());
        ASSERT_TRUE(db.isReadOnly());
        w = std::make_unique<frmWork>(db, settings, ui);
        ui.messages.clear();
        ui.reports.clear();
        ui.fileRequests.clear();
        before = digestFiles(dir.path());
    }

    /// The connect string of a link of a report database, as the report reads it.
    static std::string linkOf(const std::string& reportDatabase, const std::string& link)
    {
        return LinkedDatabase::open(reportDatabase)->connect(link);
    }

    std::int64_t expected = 0;
    FileDigests before;
};

INSTANTIATE_TEST_SUITE_P(Inventar, ReadOnlyOrder, ::testing::Values(0),
                         [](const ::testing::TestParamInfo<int>&) { return std::string("INVENTAR"); });

TEST_P(ReadOnlyOrder, CommandsThatWouldChangeItRefuseWithAMessage)
{
    ASSERT_TRUE(w->Init());
    EXPECT_FALSE(w->pbRemoveEnabled);
    EXPECT_EQ(w->lvDateien.size(), 2u);
    addFile(file3);
    w->pbRemove_Click(w->lvDateien[0].key, w->lvDateien[0].text);
    w->pbNeu_Click();
    EXPECT_EQ(w->MakeArchive(), "");
    ASSERT_EQ(ui.messages.size(), 4u);
    for (const RecordedMessage& m : ui.messages) {
        EXPECT_EQ(m.text, "Der Auftrag ist nur zum Ansehen geöffnet. Er kann nicht geändert werden.");
        EXPECT_EQ(m.icon, MsgIcon::Exclamation);
        EXPECT_EQ(m.buttons, MsgButtons::Ok);
        EXPECT_EQ(m.title, "Quarn-Inventur");
    }
    // Nothing was asked: no file dialog, no question.
    EXPECT_TRUE(ui.fileRequests.empty());
    db.CloseDb();
    EXPECT_EQ(changedFiles(before, digestFiles(dir.path())), "");
}

TEST_P(ReadOnlyOrder, ReportsAreMadeInAPrivateCopyOfTheOrderAndTheReportDatabase)
{
    w->mnuReportFkt_Click(reportmenu::Differenz);
    ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    ASSERT_EQ(ui.reports.size(), 1u);
    EXPECT_EQ(ui.reports[0].reportFile, settings.gstProjektPfad + "Report\\invdiff.rpt");
    EXPECT_EQ(ui.reports[0].title, "Differenzliste");
    const std::string privateDb = ui.reports[0].dataFile;
    ASSERT_NE(privateDb, reportDb);
    const std::string folder = folderPart(privateDb);
    EXPECT_EQ(folder.find(dir.path()), std::string::npos) << folder;

    // The private report database reads the private order, which holds the whole list.
    const std::string copy = linkOf(privateDb, "t_Differenzliste").substr(std::string(";DATABASE=").size());
    EXPECT_EQ(folderPart(copy), folder);
    EXPECT_EQ(linkOf(privateDb, "T_Raumkern"), linkOf(reportDb, "T_Raumkern"));
    EXPECT_EQ(toLong(Database::open(copy, true)->scalar("SELECT count(*) FROM T_Differenzliste")), expected);

    // An error list too; the copy of the report before goes.
    w->mnuFehlerFkt_Click(fehlermenu::Fehlend);
    ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    ASSERT_EQ(ui.reports.size(), 2u);
    EXPECT_EQ(ui.reports[1].title, "Liste Fehlend");
    EXPECT_FALSE(fs::exists(folder));
    const std::string second = folderPart(ui.reports[1].dataFile);
    EXPECT_TRUE(fs::exists(second));

    // The order and every file of the project and the program folder are as they were; the
    // private copy goes with the window.
    EXPECT_EQ(toLong(sql().scalar("SELECT count(*) FROM T_Differenzliste")), 0);
    w.reset();
    EXPECT_FALSE(fs::exists(second));
    db.CloseDb();
    EXPECT_EQ(changedFiles(before, digestFiles(dir.path())), "");
}

TEST_P(ReadOnlyOrder, AReportDatabaseThatCantBeReadIsNamedAndNothingChanges)
{
    writeFile(reportDb, "kaputt");
    before = digestFiles(dir.path());
    w->mnuReportFkt_Click(reportmenu::Inventurauswertung);
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text,
              "frmWork.mnuReportFkt_Click\r\nNicht erkanntes Datenbankformat '" + displayPath(reportDb) + "'.");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_TRUE(ui.reports.empty());
    EXPECT_FALSE(ui.busy);
    db.CloseDb();
    EXPECT_EQ(changedFiles(before, digestFiles(dir.path())), "");
}

} // namespace
} // namespace qi::test
