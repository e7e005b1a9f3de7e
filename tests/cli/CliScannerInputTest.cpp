// qinventur-cli handed what is no scanner file of the scanners, or one holding more than the
// order keeps: each is refused in German words, the order stays as it was, and no English
// text of the system, the engine or the toolkit reaches its standard error.

#include "CliFixture.h"

#include "FileSystem.h"
#include "TextFile.h"

#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace qi::test {
namespace {

class CliScannerInputTest : public CliFixture {
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        expectCli(0, {"anlegen", "Nord"});
        std::vector<std::string> args = {"raeume", "Nord", "--setzen"};
        for (const std::string& nr : orderRooms())
            args.push_back(nr);
        expectCli(0, args);
        before = contentDigest(orderFile("Nord"));
    }
    /// Adds the file, expects a refusal whose standard error holds `text`, and the order as before.
    void expectRefused(const std::string& path, const std::string& text)
    {
        const CliRun r = cli({"hinzufuegen", "Nord", path});
        EXPECT_NE(r.code, 0);
        EXPECT_EQ(r.out, "");
        EXPECT_NE(r.err.find(text), std::string::npos) << r.err;
        for (const char* english : {"No such", "Unknown error", "error", "Error", "denied", "Is a directory"})
            EXPECT_EQ(r.err.find(english), std::string::npos) << r.err;
        EXPECT_EQ(contentDigest(orderFile("Nord")), before);
    }
    /// A scanner line of the demo's first room of the order.
    std::string line(const std::string& invNr) { return "M1,4711,01.02.2015,10:00:00," + orderRooms().at(0) + "," + invNr + ",X-1,E"; }
    std::string shown(const std::string& path) { return "'" + displayPath(path) + "'"; }
    std::string before;
};

TEST_F(CliScannerInputTest, AFolderIsNamedAFolder)
{
    std::filesystem::create_directory(root.file("scans.dat"));
    const CliRun r = cli({"hinzufuegen", "Nord", root.file("scans.dat")});
    EXPECT_EQ(r.err, "[qinventur-cli] " + shown(root.file("scans.dat")) + " ist ein Ordner, keine Datei.\n");
    EXPECT_NE(r.code, 0);
    EXPECT_EQ(contentDigest(orderFile("Nord")), before);
}

TEST_F(CliScannerInputTest, APipeIsNoFile)
{
    ASSERT_EQ(mkfifo(root.file("pipe.dat").c_str(), 0600), 0);
    const CliRun r = cli({"hinzufuegen", "Nord", root.file("pipe.dat")});
    EXPECT_EQ(r.err, "[qinventur-cli] " + shown(root.file("pipe.dat")) + " ist keine Datei.\n");
    EXPECT_NE(r.code, 0);
    EXPECT_EQ(contentDigest(orderFile("Nord")), before);
}

TEST_F(CliScannerInputTest, AnEmptyFileIsCalledEmpty)
{
    writeFile(root.file("leer.dat"), "");
    expectRefused(root.file("leer.dat"), "Die Datei " + shown(root.file("leer.dat")) + " ist leer.");
}

TEST_F(CliScannerInputTest, NulBytesAndUtf16AreNoTextOfTheScanners)
{
    writeFile(root.file("nul.dat"), line(std::string("I\0B", 3)) + "\r\n");
    expectRefused(root.file("nul.dat"),
                  "Die Datei " + shown(root.file("nul.dat")) + " ist keine Textdatei der Scanner (sie enthält Nullzeichen).");
    std::string utf16 = "\xFF\xFE";
    for (const char c : line("A") + "\r\n") {
        utf16 += c;
        utf16 += '\0';
    }
    writeFile(root.file("utf16.dat"), utf16);
    expectRefused(root.file("utf16.dat"), "Die Datei " + shown(root.file("utf16.dat")) +
                                              " ist keine Textdatei der Scanner (sie ist in UTF-16 geschrieben).");
}

TEST_F(CliScannerInputTest, AFiftyMegabyteFieldAndAValueLongerThanItsFieldAreRefused)
{
    {
        std::ofstream out(root.file("gross.dat"), std::ios::binary);
        out << line("A") << "\r\n" << line("");
        const std::string block(1 << 20, 'I');
        for (int i = 0; i < 50; ++i)
            out << block;
        out << "\r\n";
    }
    expectRefused(root.file("gross.dat"), "Die Zeile 2 der Datei " + shown(root.file("gross.dat")) + " ist länger als " +
                                              std::to_string(kLongestTextLine) + " Zeichen.");
    writeFile(root.file("lang.dat"), line("A") + "\r\n" + line(std::string(256, 'L')) + "\r\n");
    expectRefused(root.file("lang.dat"), "Der Wert für das Feld 'stInvNr' der Tabelle 'T_DatInventur' ist 256 Zeichen "
                                         "lang; das Feld nimmt höchstens 255 Zeichen auf.");
}

} // namespace
} // namespace qi::test
