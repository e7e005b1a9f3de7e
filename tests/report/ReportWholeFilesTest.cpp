// A report written to a file replaces the earlier file only when it is complete: in every
// format, a write that fails (a full disk, a missing folder) leaves the earlier file as it
// was, says why in German and leaves no other file behind.

#include "ReportFixture.h"

#include "FileDigests.h"
#include "FileSystem.h"
#include "OwnMounts.h"
#include "ReportError.h"

#include <filesystem>

namespace qi::test {
namespace {

namespace fs = std::filesystem;

constexpr ReportFormat kFormats[] = {ReportFormat::Pdf, ReportFormat::Xlsx, ReportFormat::Csv, ReportFormat::Text};

class ReportWholeFilesTest : public ReportFixture {
protected:
    void SetUp() override
    {
        ReportFixture::SetUp();
        // Enough rows that no format fits into a few kilobytes.
        sql("CREATE TABLE T_Daten (stRaum TEXT, stName TEXT, iAnz INTEGER);"
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 3000) "
            "INSERT INTO T_Daten SELECT 'Raum ' || (i / 40), 'Gegenstand Nummer ' || i || ' mit langem Namen', i FROM n;");
        report = definition("liste.rpt", "[Bericht]\nTitel = Inventar\nQuelle = T_Daten\nSortierung = iAnz\n"
                                         "[Gruppe]\nFeld = stRaum\nÜberschrift = Raum\n"
                                         "[Spalte]\nFeld = stName\nÜberschrift = Bezeichnung\n"
                                         "[Spalte]\nFeld = iAnz\nÜberschrift = Anzahl\nFormat = Zahl\n");
    }
    std::string report;
};

TEST_F(ReportWholeFilesTest, EveryFormatReplacesTheEarlierFileAndLeavesNothingElse)
{
    auto r = open(report);
    const std::string out = dir.file("Ausgabe");
    fs::create_directories(out);
    for (ReportFormat f : kFormats) {
        const std::string path = out + "/liste." + reportFormatExtension(f);
        writeFile(path, "die frühere Datei");
        r->write(f, path);
        EXPECT_NE(readFile(path), "die frühere Datei") << reportFormatExtension(f);
    }
    EXPECT_EQ(digestFiles(out).size(), 4u);
    EXPECT_GT(xlsxRowCount(out + "/liste.xlsx"), 3000);
    EXPECT_NE(pdfText(out + "/liste.pdf").find("Gegenstand Nummer 3000"), std::string::npos);
}

TEST_F(ReportWholeFilesTest, AFileInAMissingFolderIsNamedInGermanForEveryFormat)
{
    auto r = open(report);
    const std::string path = dir.file("fehlt/liste.csv");
    for (ReportFormat f : kFormats) {
        try {
            r->write(f, path);
            ADD_FAILURE() << reportFormatExtension(f);
        } catch (const ReportError& e) {
            EXPECT_EQ(std::string(e.what()), "Die Datei '" + displayPath(path) +
                                                 "' kann nicht geschrieben werden: Die Datei oder der Ordner "
                                                 "existiert nicht.")
                << reportFormatExtension(f);
        }
    }
}

TEST_F(ReportWholeFilesTest, AFullDiskLeavesTheEarlierFileAndSaysSoInGermanForEveryFormat)
{
    auto r = open(report);
    ASSERT_GT(r->pageCount(), 10); // laid out before the disk fills
    const std::string disk = dir.file("Platte");
    fs::create_directories(disk);
    inOwnMounts([&] {
        mountRamDisk(disk, 1024 * 1024);
        for (ReportFormat f : kFormats)
            writeFile(disk + "/liste." + reportFormatExtension(f), "die frühere Datei");
        fillDisk(disk, 8 * 1024);
        const FileDigests before = digestFiles(disk);
        for (ReportFormat f : kFormats) {
            const std::string path = disk + "/liste." + reportFormatExtension(f);
            try {
                r->write(f, path);
                ADD_FAILURE() << reportFormatExtension(f) << " fit on the disk";
            } catch (const ReportError& e) {
                EXPECT_EQ(std::string(e.what()), "Die Datei '" + displayPath(path) +
                                                     "' kann nicht geschrieben werden: Kein Platz mehr auf dem "
                                                     "Datenträger.")
                    << reportFormatExtension(f);
            }
        }
        EXPECT_EQ(changedFiles(before, digestFiles(disk)), "");
    });
}

} // namespace
} // namespace qi::test
