// Finding a report file: letter case ignored in every part of the path, the template
// folder's copy when the project has none, and a message naming the file when there
// is none at all or it can't be read.

#include "ReportFixture.h"

#include "FileSystem.h"
#include "ReportError.h"
#include "ReportFiles.h"

namespace qi::test {
namespace {

const char* const kDefinition = "[Bericht]\nTitel = Neu\nQuelle = T_Daten\n[Spalte]\nFeld = a\n";

class ReportFilesTest : public ReportFixture {
protected:
    void SetUp() override
    {
        ReportFixture::SetUp();
        sql("CREATE TABLE T_Daten (a TEXT); INSERT INTO T_Daten VALUES ('x');");
        project = dir.file("Projekt") + "/";
        createFolder(project);
    }
    std::string locateError(const std::string& file)
    {
        try {
            locateReportFile(file, dataFile);
        } catch (const ReportError& e) {
            return e.what();
        }
        return {};
    }
    std::string project;
};

TEST_F(ReportFilesTest, TheMenusNameFindsTheFileWhateverItsLetterCase)
{
    createFolder(project + "report");
    writeFile(project + "report/invneu.rpt", kDefinition);
    EXPECT_EQ(locateReportFile(project + "Report\\InvNeu.rpt", dataFile), project + "report/invneu.rpt");
    EXPECT_EQ(open(project + "Report\\InvNeu.rpt")->model().definition().title, "Neu");
}

TEST_F(ReportFilesTest, AnExactNameWinsOverOneInOtherLetters)
{
    createFolder(project + "Report");
    writeFile(project + "Report/InvNeu.rpt", kDefinition);
    writeFile(project + "Report/invneu.rpt", kDefinition);
    EXPECT_EQ(locateReportFile(project + "Report\\invneu.rpt", dataFile), project + "Report/invneu.rpt");
}

TEST_F(ReportFilesTest, AProjectWithoutReportFolderPrintsWithTheTemplatesFile)
{
    // A project the program seeded holds its copies as "Reportinvneu.rpt" beside the register.
    writeFile(project + "Reportinvneu.rpt", "kaputt");
    createFolder(dir.file("Leeres Projekt"));
    createFolder(dir.file("Leeres Projekt/Report"));
    writeFile(dir.file("Leeres Projekt/Report/invneu.rpt"), kDefinition);
    EXPECT_EQ(locateReportFile(project + "Report\\InvNeu.rpt", dataFile), dir.file("Leeres Projekt/Report/invneu.rpt"));
    EXPECT_EQ(open(project + "Report\\InvNeu.rpt")->file(), dir.file("Leeres Projekt/Report/invneu.rpt"));
    // The seeded copy stays as it is.
    EXPECT_EQ(readFile(project + "Reportinvneu.rpt"), "kaputt");
}

TEST_F(ReportFilesTest, AReportFolderWithoutTheFileAlsoFallsBackToTheTemplate)
{
    createFolder(project + "Report");
    createFolder(dir.file("Leeres Projekt"));
    createFolder(dir.file("Leeres Projekt/Report"));
    writeFile(dir.file("Leeres Projekt/Report/invneu.rpt"), kDefinition);
    EXPECT_EQ(locateReportFile(project + "Report\\InvNeu.rpt", dataFile), dir.file("Leeres Projekt/Report/invneu.rpt"));
}

TEST_F(ReportFilesTest, AMissingFileIsNamedWithOneKindOfSeparator)
{
    EXPECT_EQ(locateError(project + "Report\\InvNeu.rpt"),
              "Die Berichtsdatei '" + displayPath(project + "Report\\InvNeu.rpt") + "' wurde nicht gefunden.");
}

TEST_F(ReportFilesTest, AFolderOfTheNameIsNoReportFile)
{
    createFolder(project + "Report");
    createFolder(project + "Report/invneu.rpt");
    EXPECT_NE(locateError(project + "Report\\invneu.rpt"), "");
}

TEST_F(ReportFilesTest, WindowsTextAndUtf8WithByteOrderMarkAreRead)
{
    writeFile(project + "a.rpt", "[Bericht]\nTitel = Fl\xE4" "che\nQuelle = T_Daten\n[Spalte]\nFeld = a\n");
    EXPECT_EQ(open(project + "a.rpt")->model().definition().title, "Fläche");
    writeFile(project + "b.rpt", "\xEF\xBB\xBF[Bericht]\nTitel = Fläche\nQuelle = T_Daten\n[Spalte]\nFeld = a\n");
    EXPECT_EQ(open(project + "b.rpt")->model().definition().title, "Fläche");
}

TEST_F(ReportFilesTest, BinaryEmptyAndHugeFilesGiveTheirMessage)
{
    writeFile(project + "bin.rpt", std::string("MZ\0\0\x90", 5));
    EXPECT_NE(openError(project + "bin.rpt").find("ist keine Textdatei"), std::string::npos);
    writeFile(project + "leer.rpt", "");
    EXPECT_EQ(openError(project + "leer.rpt"),
              "Fehler in der Berichtsdatei '" + project + "leer.rpt': Der Abschnitt [Bericht] fehlt.");
    writeFile(project + "gross.rpt", std::string(2 << 20, '#'));
    EXPECT_NE(openError(project + "gross.rpt").find("ist zu groß"), std::string::npos);
}

TEST_F(ReportFilesTest, AMissingOrBrokenReportDatabaseIsNamed)
{
    writeFile(project + "a.rpt", kDefinition);
    ASSERT_TRUE(removeFile(dataFile));
    EXPECT_EQ(openError(project + "a.rpt"),
              "Die Berichtsdatenbank '" + displayPath(dataFile) + "' wurde nicht gefunden.");
    writeFile(dataFile, "keine Datenbank");
    EXPECT_EQ(openError(project + "a.rpt").rfind("Die Berichtsdatenbank '" + displayPath(dataFile) +
                                                     "' kann nicht geöffnet werden: ",
                                                 0),
              0u);
}

} // namespace
} // namespace qi::test
