// Adding a scanner data file that is no text of the scanners, or that holds more than the
// order can keep: each is refused with a German message, and nothing of it stays in the order.

#include "WorkFixture.h"

#include "FileSystem.h"
#include "TextFile.h"

#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace qi::test {
namespace {

class ScannerInputTest : public WorkTest {
protected:
    void SetUp() override
    {
        WorkTest::SetUp();
        addRoom("1");
        addRoom("2");
    }
    /// Adds the file and expects the one message of the add procedure with `text`, and an order
    /// without any file or scan.
    void expectRefused(const std::string& path, const std::string& label, const std::string& text)
    {
        addFile(path);
        ASSERT_EQ(ui.messages.size(), 1u) << (ui.messages.empty() ? "" : ui.messages[0].text);
        EXPECT_EQ(ui.messages[0].text, label + "\r\n" + text);
        EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
        EXPECT_EQ(ui.messages[0].title, "QInventur");
        EXPECT_FALSE(ui.busy);
        EXPECT_TRUE(files().empty());
        EXPECT_TRUE(scans().empty());
        for (const CRaumRec& r : rooms())
            EXPECT_EQ(r.ststatus, "N") << r.stRaumNr;
    }
    std::string shown(const std::string& path) { return "'" + displayPath(path) + "'"; }
};

TEST_F(ScannerInputTest, AnEmptyFileIsCalledEmpty)
{
    const std::string f = dir.file("leer.dat");
    writeFile(f, "");
    expectRefused(f, "frmWork.pbAdd_Click", "Die Datei " + shown(f) + " ist leer.");
}

TEST_F(ScannerInputTest, AFolderIsNamedAFolder)
{
    const std::string folder = dir.file("scans.dat");
    ASSERT_TRUE(createFolder(folder));
    expectRefused(folder, "frmWork.pbAdd_Click", shown(folder) + " ist ein Ordner, keine Datei.");
}

TEST_F(ScannerInputTest, APipeIsNoFile)
{
    const std::string pipe = dir.file("pipe.dat");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    expectRefused(pipe, "frmWork.pbAdd_Click", shown(pipe) + " ist keine Datei.");
}

TEST_F(ScannerInputTest, NulBytesRefuseTheFileBeforeAnythingIsWritten)
{
    const std::string f = dir.file("nul.dat");
    writeFile(f, crlf({scanLine("1", "A"), scanLine("1", std::string("I\0B", 3))}));
    expectRefused(f, "frmWork.pbAdd_Click",
                  "Die Datei " + shown(f) + " ist keine Textdatei der Scanner (sie enthält Nullzeichen).");
}

TEST_F(ScannerInputTest, AUtf16FileIsRefusedBeforeAnythingIsWritten)
{
    const std::string f = dir.file("utf16.dat");
    std::string bytes = "\xFF\xFE";
    for (const char c : scanLine("1", "A") + "\r\n") {
        bytes += c;
        bytes += '\0';
    }
    writeFile(f, bytes);
    expectRefused(f, "frmWork.pbAdd_Click",
                  "Die Datei " + shown(f) + " ist keine Textdatei der Scanner (sie ist in UTF-16 geschrieben).");
}

TEST_F(ScannerInputTest, AUtf8ByteOrderMarkIsNoPartOfTheFirstField)
{
    const std::string f = dir.file("bom.dat");
    writeFile(f, "\xEF\xBB\xBF" + crlf({scanLine("1", "A"), scanLine("2", "B")}));
    addFile(f);
    EXPECT_TRUE(ui.messages.empty());
    const std::vector<CDatInventurRec> s = scans();
    ASSERT_EQ(s.size(), 2u);
    EXPECT_EQ(s[0].stMitarbNr, s[1].stMitarbNr);
    EXPECT_EQ(s[0].stMitarbNr.find('\xEF'), std::string::npos);
    ASSERT_EQ(files().size(), 1u);
    EXPECT_EQ(files()[0].Datum, "01.02.2015");
}

TEST_F(ScannerInputTest, AFiftyMegabyteFieldIsRefusedBeforeAnythingIsWritten)
{
    const std::string f = dir.file("gross.dat");
    {
        std::ofstream out(f, std::ios::binary);
        out << scanLine("1", "A") << "\r\n" << "M1,4711,01.02.2015,10:00:00,1,";
        const std::string block(1 << 20, 'I');
        for (int i = 0; i < 50; ++i)
            out << block;
        out << ",X-1,E\r\n";
    }
    expectRefused(f, "frmWork.pbAdd_Click",
                  "Die Zeile 2 der Datei " + shown(f) + " ist länger als " + std::to_string(kLongestTextLine) +
                      " Zeichen.");
}

TEST_F(ScannerInputTest, AValueLongerThanItsFieldRefusesTheWholeFile)
{
    const std::string f = datFile("lang.dat", {scanLine("1", "A"), scanLine("2", "B"), scanLine("2", std::string(256, 'L'))});
    expectRefused(f, "frmWork.GetDataFromDat",
                  "Der Datensatz konnte nicht gespeichert werden!\r\nDer Wert für das Feld 'stInvNr' der Tabelle "
                  "'T_DatInventur' ist 256 Zeichen lang; das Feld nimmt höchstens 255 Zeichen auf.");
}

TEST_F(ScannerInputTest, APathLongerThanItsFieldIsNamedSoAndNotTakenForANameAddedBefore)
{
    std::string folder = dir.path();
    while (folder.size() < 260)
        folder += "/Unterordner-mit-langem-Namen";
    std::filesystem::create_directories(folder);
    const std::string f = folder + "/a.dat";
    writeFile(f, crlf({scanLine("1", "A")}));
    expectRefused(f, "frmWork.pbAdd_Click",
                  "Der Datensatz konnte nicht gespeichert werden!\r\nDer Wert für das Feld 'stPfad' der Tabelle "
                  "'T_Dateien' ist " + std::to_string(f.size()) + " Zeichen lang; das Feld nimmt höchstens 255 Zeichen auf.");
}

TEST_F(ScannerInputTest, TwoHundredFiftyFiveCharactersFitTheField)
{
    const std::string number(255, 'L');
    const std::string umlauts = [] {
        std::string s;
        for (int i = 0; i < 255; ++i)
            s += "\xC4"; // "Ä" in the code page: one character, two bytes in the order
        return s;
    }();
    addFile(datFile("voll.dat", {scanLine("1", number), scanLine("2", umlauts)}));
    ASSERT_TRUE(ui.messages.empty()) << ui.messages.front().text;
    const std::vector<CDatInventurRec> s = scans();
    ASSERT_EQ(s.size(), 2u);
    EXPECT_EQ(s[0].stInvNr, number);
    EXPECT_EQ(s[1].stInvNr.size(), 510u);
}

} // namespace
} // namespace qi::test
