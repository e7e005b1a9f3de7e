// The archive of an order's scan lines: "Inventur\<order>.dat" in the project folder.

#include "WorkFixture.h"

#include "FileSystem.h"
#include "TextFile.h"

#include <filesystem>

namespace qi::test {
namespace {

class ArchiveTest : public WorkTest {
protected:
    void SetUp() override
    {
        WorkTest::SetUp();
        std::filesystem::create_directory(dir.file("Inventur"));
    }
    void store(const std::string& inv, const std::string& art, const std::string& room = "1")
    {
        CDatInventurRec r;
        r.stMitarbNr = "M7";
        r.stAuftragsNr = "4711";
        r.Datum = "01.02.2015";
        r.Uhrzeit = "10:00";
        r.stRaum = room;
        r.stInvNr = inv;
        r.stArtNr = art;
        r.stTaet = "E";
        r.stArtName = "nie geschrieben";
        r.iReihenfolge = 3;
        r.lDatID = 9;
        bool duplicate = false;
        ASSERT_TRUE(db.AddNewDatInventurRec(&r, duplicate));
        ASSERT_FALSE(duplicate);
    }
    std::string archive() const { return dir.file("Inventur/A1.dat"); }
};

TEST_F(ArchiveTest, WritesEightFieldsPerLineWithCrLf)
{
    store("INV-1", "ART-1");
    store("INV-2", "ART-2", "2");
    w.MakeArchive();
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(readFile(archive()), "M7,4711,01.02.2015,10:00,1,INV-1,ART-1,E\r\n"
                                   "M7,4711,01.02.2015,10:00,2,INV-2,ART-2,E\r\n");
}

TEST_F(ArchiveTest, OrderWithoutScansGivesAnEmptyFileReplacingTheOldOne)
{
    writeFile(archive(), "alter Inhalt\r\n");
    w.MakeArchive();
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_TRUE(fileExists(archive()));
    EXPECT_EQ(readFile(archive()), "");
}

TEST_F(ArchiveTest, FieldWithACommaIsWrittenAsItIs)
{
    store("INV-1", "A,B");
    w.MakeArchive();
    EXPECT_EQ(readFile(archive()), "M7,4711,01.02.2015,10:00,1,INV-1,A,B,E\r\n");
}

TEST_F(ArchiveTest, TextIsWrittenInWindows1252)
{
    store("INV-äöüß", "€-5");
    w.MakeArchive();
    EXPECT_EQ(readFile(archive()), "M7,4711,01.02.2015,10:00,1,INV-\xe4\xf6\xfc\xdf,\x80-5,E\r\n");
}

TEST_F(ArchiveTest, EveryWindows1252ByteSurvivesReadingAndWriting)
{
    std::string bytes;
    for (int b = 1; b < 256; ++b)
        if (b != '\r' && b != '\n')
            bytes += char(b);
    const std::string in = dir.file("alle.txt");
    writeFile(in, bytes + "\r\n");
    std::string line;
    {
        TextFileReader reader(in);
        ASSERT_TRUE(reader.readLine(line));
        std::string more;
        EXPECT_FALSE(reader.readLine(more));
    }
    EXPECT_EQ(line.substr(line.size() - 2), "ÿ"); // byte 0xFF
    EXPECT_NE(line.find("€"), std::string::npos); // byte 0x80
    const std::string out = dir.file("zurueck.txt");
    {
        TextFileWriter writer(out);
        writer.writeLine(line);
        writer.writeLine("Ω und 😀"); // not in the code page
        writer.close();
    }
    EXPECT_EQ(readFile(out), bytes + "\r\n? und ?\r\n");
}

TEST_F(ArchiveTest, ArchiveReadsBackAsTheSameScans)
{
    store("INV-ä", "ART-1");
    w.MakeArchive();
    ASSERT_TRUE(db.DelAllDatInventur());
    ASSERT_TRUE(import(archive()));
    const auto s = scans();
    ASSERT_EQ(s.size(), 1u);
    EXPECT_EQ(s[0].stInvNr, "INV-ä");
}

TEST_F(ArchiveTest, DatabaseNameShorterThanFourCharactersFails)
{
    db.CloseDb();
    const std::string shortName = dir.file("abc");
    makeOrderDatabase(shortName);
    db.setDbPath(shortName);
    ASSERT_TRUE(db.OpenDb());
    w.MakeArchive();
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmWork.MakeArchive\r\nUngültiger Prozeduraufruf oder ungültiges Argument");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(ui.messages[0].title, "QInventur");
    EXPECT_EQ(ui.messages[0].buttons, MsgButtons::Ok);
}

TEST_F(ArchiveTest, MissingInventurFolderFails)
{
    std::filesystem::remove(dir.file("Inventur"));
    store("INV-1", "ART-1");
    w.MakeArchive();
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmWork.MakeArchive\r\nPfad nicht gefunden");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(ui.messages[0].title, "QInventur");
}

TEST_F(ArchiveTest, ClosedDatabaseReportsTheReadFailure)
{
    db.CloseDb();
    w.MakeArchive();
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmWork.MakeArchive\r\nDie Datensätze konnten nicht in die Liste gelesen werden!");
    EXPECT_FALSE(fileExists(archive()));
}

} // namespace
} // namespace qi::test
