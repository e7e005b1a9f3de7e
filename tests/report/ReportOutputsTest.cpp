// A report written to files: PDF pages, the Excel sheet read back, CSV as a German
// spreadsheet reads it, plain text; the call for the command line, and the message
// when a file can't be written.

#include "ReportFixture.h"

#include "FileSystem.h"
#include "ReportError.h"

#include <QString>

#include <algorithm>

namespace qi::test {
namespace {

class ReportOutputsTest : public ReportFixture {
protected:
    void SetUp() override
    {
        ReportFixture::SetUp();
        sql("CREATE TABLE T_Daten (stRaum TEXT, stWer TEXT, stName TEXT, iAnz INTEGER, dWert REAL);"
            "INSERT INTO T_Daten VALUES ('101', 'Köhler, Günther', 'Schrank; groß', 2, 1234.5);"
            "INSERT INTO T_Daten VALUES ('101', 'Köhler, Günther', 'Tisch \"Eiche\"', 3, 0.25);"
            "INSERT INTO T_Daten VALUES ('102', NULL, 'Stuhl' || char(10) || 'grau', 1, -1);");
        report = definition("liste.rpt", "[Bericht]\nTitel = Inventar\nQuelle = T_Daten\nSortierung = stName\n"
                                         "[Gruppe]\nFeld = stRaum\nÜberschrift = Raum\nZusatzfeld = stWer | Verantwortlich\n"
                                         "Kopf = Raum {stRaum}\n"
                                         "[Spalte]\nFeld = stName\nÜberschrift = Bezeichnung\n"
                                         "[Spalte]\nFeld = iAnz\nÜberschrift = Anzahl\nFormat = Zahl\nSumme = ja\n"
                                         "[Spalte]\nFeld = dWert\nÜberschrift = Wert\nFormat = Zahl 2\n");
    }
    std::string report;
};

TEST_F(ReportOutputsTest, CsvHasByteOrderMarkGermanHeadingsSemicolonsAndTheGroupFieldsOnEveryLine)
{
    const std::string csv = dir.file("liste.csv");
    open(report)->writeCsv(csv);
    EXPECT_EQ(readFile(csv), "\xEF\xBB\xBF"
                             "Raum;Verantwortlich;Bezeichnung;Anzahl;Wert\r\n"
                             "101;Köhler, Günther;\"Schrank; groß\";2;1234,50\r\n"
                             "101;Köhler, Günther;\"Tisch \"\"Eiche\"\"\";3;0,25\r\n"
                             "102;;\"Stuhl\ngrau\";1;-1,00\r\n");
}

TEST_F(ReportOutputsTest, ExcelSheetHasBoldHeadingsWidthsNumbersAndGroupsAsRows)
{
    const std::string xlsx = dir.file("liste.xlsx");
    open(report)->writeXlsx(xlsx);
    EXPECT_EQ(xlsxRow(xlsx, 1), std::vector<std::string>{"Inventar"});
    EXPECT_EQ(xlsxRow(xlsx, 4), (std::vector<std::string>{"Raum", "Verantwortlich", "Bezeichnung", "Anzahl", "Wert"}));
    EXPECT_EQ(xlsxRow(xlsx, 5)[0], "Raum 101");
    EXPECT_EQ(xlsxRow(xlsx, 6), (std::vector<std::string>{"101", "Köhler, Günther", "Schrank; groß", "2", "1234.5"}));
    EXPECT_TRUE(xlsxCellIsNumber(xlsx, "D6"));
    EXPECT_TRUE(xlsxCellIsNumber(xlsx, "E6"));
    EXPECT_FALSE(xlsxCellIsNumber(xlsx, "A6"));
    EXPECT_EQ(xlsxRow(xlsx, 7)[2], "Tisch \"Eiche\"");
    // The group's sum row, the next group's header, its row.
    EXPECT_EQ(xlsxRow(xlsx, 8), (std::vector<std::string>{"Summe", "5"}));
    EXPECT_EQ(xlsxRow(xlsx, 9)[0], "Raum 102");
    EXPECT_EQ(xlsxRow(xlsx, 10)[2], "Stuhl\ngrau");
    const std::string sheet = zipEntry(xlsx, "xl/worksheets/sheet1.xml");
    EXPECT_NE(sheet.find("<col min=\"3\" max=\"3\" width="), std::string::npos);
    // The headings' style is bold.
    const std::string styles = zipEntry(xlsx, "xl/styles.xml");
    EXPECT_NE(styles.find("<b/>"), std::string::npos);
    const auto heading = QString::fromStdString(sheet).indexOf(QStringLiteral("<c r=\"A4\" s=\""));
    ASSERT_GE(heading, 0);
    EXPECT_NE(zipEntry(xlsx, "docProps/core.xml").find("<dc:title>Titel</dc:title>"), std::string::npos);
}

TEST_F(ReportOutputsTest, PdfHasEveryPageWithItsNumber)
{
    std::string script = "BEGIN;";
    for (int i = 0; i < 200; ++i)
        script += "INSERT INTO T_Daten VALUES ('103', 'X', 'Lampe " + std::to_string(i) + "', 1, 1);";
    sql(script + "COMMIT;");
    auto r = open(report);
    const std::string pdf = dir.file("liste.pdf");
    r->writePdf(pdf);
    const std::string text = pdfText(pdf);
    ASSERT_GT(r->pageCount(), 1);
    for (int p = 1; p <= r->pageCount(); ++p) {
        EXPECT_NE(text.find("Seite " + std::to_string(p) + " von " + std::to_string(r->pageCount())),
                  std::string::npos);
    }
    EXPECT_NE(text.find("Inventar"), std::string::npos);
    EXPECT_NE(text.find("Raum 103 (Fortsetzung)"), std::string::npos);
    EXPECT_NE(text.find("Lampe 199"), std::string::npos);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\f'), r->pageCount());
}

TEST_F(ReportOutputsTest, AFileThatCannotBeWrittenIsNamed)
{
    auto r = open(report);
    const std::string path = dir.file("fehlt/liste.csv");
    for (ReportFormat f : {ReportFormat::Pdf, ReportFormat::Xlsx, ReportFormat::Csv, ReportFormat::Text}) {
        try {
            r->write(f, path);
            ADD_FAILURE() << reportFormatExtension(f);
        } catch (const ReportError& e) {
            EXPECT_EQ(std::string(e.what()).rfind("Die Datei '" + displayPath(path) + "' kann nicht geschrieben werden", 0),
                      0u)
                << e.what();
        }
    }
}

TEST_F(ReportOutputsTest, TheCommandLinesCallWritesEachFormatOrSaysWhyNot)
{
    for (ReportFormat f : {ReportFormat::Pdf, ReportFormat::Xlsx, ReportFormat::Csv, ReportFormat::Text}) {
        const std::string out = dir.file(std::string("aus.") + reportFormatExtension(f));
        // The project folder as the settings hold it, with its separator at the end.
        EXPECT_EQ(writeReportFile(report, dataFile, "Inventarliste", "A 7", "C:\\Quarn\\Projekt\\", f, out), "");
        EXPECT_TRUE(fileExists(out));
    }
    EXPECT_NE(readFile(dir.file("aus.txt")).find("Projekt: C:/Quarn/Projekt | Auftrag: A 7"), std::string::npos);
    EXPECT_EQ(writeReportFile(dir.file("fehlt.rpt"), dataFile, "T", "", "", ReportFormat::Pdf, dir.file("x.pdf")),
              "Die Berichtsdatei '" + dir.file("fehlt.rpt") + "' wurde nicht gefunden.");
    EXPECT_FALSE(fileExists(dir.file("x.pdf")));
}

TEST_F(ReportOutputsTest, FormatsAreNamedByTheirExtension)
{
    EXPECT_EQ(reportFormatNamed("pdf"), ReportFormat::Pdf);
    EXPECT_EQ(reportFormatNamed("XLSX"), ReportFormat::Xlsx);
    EXPECT_EQ(reportFormatNamed("Csv"), ReportFormat::Csv);
    EXPECT_EQ(reportFormatNamed("txt"), ReportFormat::Text);
    EXPECT_EQ(reportFormatNamed("doc"), std::nullopt);
}

} // namespace
} // namespace qi::test
