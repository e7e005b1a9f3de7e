// The road of a user whose colleague prints from another project on the same program
// folder: the work window of the order "Erdgeschoss" is open, qinventur-cli writes a
// report of the order "Dup" of another project (and so relinks the program folder's
// report database), and the window's "Raumerfassung" still shows "Erdgeschoss" and the
// window's project.

#include "CliFixture.h"
#include "ProgramFixture.h"

#include "FileSystem.h"
#include "LinkedDatabase.h"
#include "Report.h"
#include "ReportDatabase.h"
#include "ReportMenus.h"

#include <QAction>

#include <filesystem>
#include <sstream>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

class ReportIsolationRoadTest : public ProgramFixture {
protected:
    /// Runs qinventur-cli from the program folder; its exit code must be 0.
    CliRun cli(const std::vector<std::string>& args)
    {
        const std::string program = programDir + "/qinventur-cli";
        if (!fileExists(program)) {
            std::error_code ec;
            fs::create_hard_link(QI_CLI, program, ec);
            if (ec)
                fs::copy_file(QI_CLI, program);
        }
        CliRun r = runProgram(program, args);
        EXPECT_EQ(r.code, 0) << r.out << r.err;
        return r;
    }
};

TEST_F(ReportIsolationRoadTest, TheWindowsRoomReportShowsItsOrderAfterACommandPrintedAnotherProject)
{
    startProgram();
    newOrder("Erdgeschoss");
    openOrder("Erdgeschoss");
    ASSERT_NE(work(), nullptr);
    chooseFirstFloor();
    ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    const std::string shared = programDir + "/QInventurRpt.mdb";
    ASSERT_EQ(fileNamePart(LinkedDatabase::open(shared)->connect("t_Raum")), "Erdgeschoss.mdb");

    // Another project on the same program folder, and a colleague printing its order.
    const std::string other = root.file("Andere");
    demo::writeDemoProject(demo::smallSizes(), other, "");
    cli({"--projekt", other, "anlegen", "Dup"});
    cli({"--projekt", other, "bericht", "Dup", "artikel", "--ausgabe", root.file("dup.pdf")});
    ASSERT_EQ(fileNamePart(LinkedDatabase::open(shared)->connect("t_Raum")), "Dup.mdb");

    work()->mnuReportFkt.at(reportmenu::Raumerfassung)->trigger();
    ASSERT_TRUE(ui.messages.empty()) << ui.messages[0].text;
    ASSERT_EQ(ui.reports.size(), 1u);
    const RecordedReport& r = ui.reports[0];
    EXPECT_EQ(r.dataFile, reportDatabasePath(main->settings()));
    EXPECT_EQ(r.dataFile.find(programDir), std::string::npos) << r.dataFile;
    const std::string text = Report::open(r.reportFile, r.dataFile, r.title)->text();
    std::istringstream lines(text);
    std::string header, line;
    std::size_t rows = 0;
    while (std::getline(lines, line)) {
        if (line.rfind("Raumliste |", 0) == 0)
            header = line;
        if (line.rfind("  ", 0) == 0 && line.find(" | ") != std::string::npos) {
            ++rows;
            EXPECT_EQ(line.substr(2, 3), "100") << line; // a room of the ground floor
        }
    }
    EXPECT_NE(header.find("| Auftrag: Erdgeschoss |"), std::string::npos) << text;
    EXPECT_NE(header.find("Projekt: " + displayFolder(demoDir) + " |"), std::string::npos) << text;
    EXPECT_EQ(text.find("Dup"), std::string::npos) << text;
    EXPECT_GT(rows, 0u) << text;
}

} // namespace
} // namespace qi::test
