// The arithmetic of label sheets: where the first and the last label of each shipped layout
// go, the start position on a partly used sheet, copies, type set smaller (never cut) for a
// long room name, the refusal of a barcode too narrow to scan, the layout files and their
// errors, and the PDF's sheet size and vector drawing.

#include "FileSystem.h"
#include "LabelSheets.h"
#include "TestSupport.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <numeric>

namespace qi::test {
namespace {

std::string templateDir() { return std::string(QI_PROGRAM_DIR) + "/Leeres Projekt"; }

LabelLayout shipped(const std::string& name) { return findLabelLayout(templateDir(), name); }

std::vector<Label> numbered(int count, Symbology symbology = Symbology::Code128)
{
    std::vector<Label> labels;
    for (int i = 0; i < count; ++i) {
        char code[16];
        std::snprintf(code, sizeof code, "I%07d", 100000 + i);
        labels.push_back({code, symbology, {code, "Bürostuhl", "Gebäude A, EG"}});
    }
    return labels;
}

std::string messageOf(const std::function<void()>& f)
{
    try {
        f();
    } catch (const LabelError& e) {
        return e.what();
    }
    return "(kein Fehler)";
}

void expectRect(const RectMm& r, double x, double y, double w, double h)
{
    EXPECT_NEAR(r.x, x, 1e-9);
    EXPECT_NEAR(r.y, y, 1e-9);
    EXPECT_NEAR(r.width, w, 1e-9);
    EXPECT_NEAR(r.height, h, 1e-9);
}

struct Expected {
    const char* file;
    const char* name;
    int columns, rows;
    double firstX, firstY, lastX, lastY, width, height;
};

const Expected kShipped[] = {
    {"A4-3x8", "A4, 3 × 8 Etiketten, 70 × 37 mm", 3, 8, 0, 0.5, 140, 0.5 + 7 * 37, 70, 37},
    {"A4-2x7", "A4, 2 × 7 Etiketten, 99,1 × 38,1 mm", 2, 7, 4.65, 15.15, 4.65 + 99.1 + 2.5, 15.15 + 6 * 38.1, 99.1,
     38.1},
    {"A4-4x10", "A4, 4 × 10 Etiketten, 48,5 × 25,4 mm", 4, 10, 8, 21.5, 8 + 3 * 48.5, 21.5 + 9 * 25.4, 48.5, 25.4},
    {"Etikettendrucker-62x29", "Etikettendrucker, 62 × 29 mm", 1, 1, 0, 0, 0, 0, 62, 29},
};

TEST(LabelLayouts, TheTemplateFolderShipsFourLayoutsWithGermanNames)
{
    std::vector<std::string> expected;
    for (const Expected& e : kShipped)
        expected.push_back(e.name);
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(labelLayoutNames(templateDir()), expected);
    for (const Expected& e : kShipped) {
        EXPECT_EQ(shipped(e.file).name, e.name);
        EXPECT_EQ(shipped(e.name).name, e.name) << "found by its display name";
    }
    EXPECT_EQ(shipped("a4-3X8").name, kShipped[0].name) << "letter case ignored";
}

TEST(LabelLayouts, AnUnknownLayoutIsNamedWithTheOnesThere)
{
    EXPECT_EQ(messageOf([] { findLabelLayout(templateDir(), "A5"); }),
              "Das Etikettenformat 'A5' gibt es nicht. Vorhanden: A4-2x7, A4-3x8, A4-4x10, Etikettendrucker-62x29.");
}

TEST(LabelSheets, FirstAndLastLabelOfEachShippedLayout)
{
    for (const Expected& e : kShipped) {
        SCOPED_TRACE(e.file);
        const LabelLayout layout = shipped(e.file);
        ASSERT_EQ(layout.columns, e.columns);
        ASSERT_EQ(layout.rows, e.rows);
        const int perPage = e.columns * e.rows;
        const LabelSheets sheets(layout, numbered(perPage + 1));
        EXPECT_EQ(sheets.pageCount(), 2);
        expectRect(sheets.labelRect(0), e.firstX, e.firstY, e.width, e.height);
        expectRect(sheets.labelRect(perPage - 1), e.lastX, e.lastY, e.width, e.height);
        EXPECT_EQ(sheets.pageOf(perPage - 1), 0);
        EXPECT_EQ(sheets.pageOf(perPage), 1);
        expectRect(sheets.labelRect(perPage), e.firstX, e.firstY, e.width, e.height);
        // Every label inside the sheet, every barcode inside its label and wide enough.
        for (int i = 0; i <= perPage; ++i) {
            const RectMm l = sheets.labelRect(i), b = sheets.barcodeRect(i);
            EXPECT_LE(l.x + l.width, layout.pageWidthMm + 1e-9);
            EXPECT_LE(l.y + l.height, layout.pageHeightMm + 1e-9);
            EXPECT_GE(b.x, l.x);
            EXPECT_GE(b.y, l.y);
            EXPECT_LE(b.x + b.width, l.x + l.width);
            EXPECT_LE(b.y + b.height, l.y + l.height);
            EXPECT_GE(sheets.moduleMm(i), LabelSheets::kMinCode128ModuleMm);
        }
    }
}

TEST(LabelSheets, TheStartPositionSkipsThePlacesUsedBefore)
{
    const LabelSheets sheets(shipped("A4-3x8"), numbered(20), 5);
    // Place 5: the second column of the second row.
    expectRect(sheets.labelRect(0), 70, 0.5 + 37, 70, 37);
    EXPECT_EQ(sheets.pageOf(0), 0);
    EXPECT_EQ(sheets.pageOf(19), 0); // place 24
    expectRect(sheets.labelRect(19), 140, 0.5 + 7 * 37, 70, 37);
    EXPECT_EQ(sheets.pageCount(), 1);
    const LabelSheets more(shipped("A4-3x8"), numbered(21), 5);
    EXPECT_EQ(more.pageCount(), 2);
    EXPECT_EQ(more.pageOf(20), 1);
    expectRect(more.labelRect(20), 0, 0.5, 70, 37);
}

TEST(LabelSheets, CopiesOfALabelFollowOneAnother)
{
    const LabelSheets sheets(shipped("A4-2x7"), numbered(3), 1, 2);
    ASSERT_EQ(sheets.printedCount(), 6);
    const char* expected[] = {"I0100000", "I0100000", "I0100001", "I0100001", "I0100002", "I0100002"};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(sheets.printedLabel(i).code, expected[i]) << i;
    expectRect(sheets.labelRect(5), 4.65 + 99.1 + 2.5, 15.15 + 2 * 38.1, 99.1, 38.1);
    const LabelSheets printer(shipped("Etikettendrucker-62x29"), numbered(3), 1, 4);
    EXPECT_EQ(printer.pageCount(), 12);
}

TEST(LabelSheets, AStartPositionOffTheSheetAndNoCopiesAreRefused)
{
    EXPECT_EQ(messageOf([] { LabelSheets(shipped("A4-3x8"), numbered(1), 25); }),
              "Die Startposition muss zwischen 1 und 24 liegen.");
    EXPECT_EQ(messageOf([] { LabelSheets(shipped("A4-3x8"), numbered(1), 0); }),
              "Die Startposition muss zwischen 1 und 24 liegen.");
    EXPECT_EQ(messageOf([] { LabelSheets(shipped("A4-3x8"), numbered(1), 1, 0); }),
              "Die Zahl der Exemplare je Etikett muss zwischen 1 und 1000 liegen.");
    EXPECT_EQ(messageOf([] { LabelSheets(shipped("A4-3x8"), {}); }), "Es gibt keine Etiketten zu drucken.");
}

TEST(LabelSheets, ALongRoomNameIsSetSmallerAndNeverCut)
{
    const std::string longName = "Besprechungsraum der Geschäftsführung";
    const std::string veryLong =
        "Besprechungsraum der Geschäftsführung mit Teeküche, Garderobe und Zugang zur Dachterrasse";
    const std::vector<Label> labels = {{"1.01.003", Symbology::Code128, {"1.01.003", "Büro", "Gebäude A, 1. OG"}},
                                       {"1.01.004", Symbology::Code128, {"1.01.004", longName, "Gebäude A, 1. OG"}},
                                       {"1.01.005", Symbology::Code128, {"1.01.005", veryLong, "Gebäude A, 1. OG"}}};
    const LabelSheets sheets(shipped("A4-4x10"), labels);

    // A short name keeps the type's sizes: the number large, the other lines small.
    EXPECT_EQ(sheets.fontSizes(0), (std::vector<double>{14, 8, 8}));
    EXPECT_EQ(sheets.drawnLines(0), (std::vector<std::string>{"1.01.003", "Büro", "Gebäude A, 1. OG"}));

    // A long one is set smaller on its line, whole.
    const std::vector<double> sizes = sheets.fontSizes(1);
    ASSERT_EQ(sizes.size(), 3u);
    EXPECT_LT(sizes[1], 8);
    EXPECT_GE(sizes[1], LabelSheets::kMinFontPt);
    EXPECT_EQ(sheets.drawnLines(1)[1], longName);

    // One too long even for the smallest type is wrapped, and nothing of it is left out.
    const std::vector<std::string> lines = sheets.drawnLines(2);
    ASSERT_GE(lines.size(), 4u);
    std::string joined;
    for (std::size_t i = 1; i + 1 < lines.size(); ++i)
        joined += (i > 1 ? " " : "") + lines[i];
    EXPECT_EQ(joined, veryLong);
    for (double size : sheets.fontSizes(2))
        EXPECT_GE(size, LabelSheets::kMinFontPt);
}

TEST(LabelSheets, ABarcodeTooNarrowToScanIsRefusedNamingTheLabel)
{
    LabelLayout narrow = shipped("A4-3x8");
    narrow.labelWidthMm = 20;
    EXPECT_EQ(messageOf([&] {
                  LabelSheets(narrow, {{"I0100000", Symbology::Code128, {"I0100000"}},
                                       {"R-0815", Symbology::Code128, {"R-0815"}}});
              }),
              "Der Strichcode für 'I0100000' passt nicht lesbar auf das Etikett (20 × 37 mm).");
    // A long code on the shipped 70 mm label: its bars would be thinner than 0.19 mm.
    const std::string longCode = "R-0815-LAGER-NORD-KELLER-ZWEI";
    EXPECT_EQ(messageOf([&] { LabelSheets(shipped("A4-3x8"), {{longCode, Symbology::Code128, {longCode}}}); }),
              "Der Strichcode für '" + longCode + "' passt nicht lesbar auf das Etikett (70 × 37 mm).");
    // The same 2D symbols fit where their modules stay 0.35 mm wide, and not on a tiny label.
    LabelLayout tiny = shipped("A4-3x8");
    tiny.labelWidthMm = 8;
    tiny.labelHeightMm = 8;
    EXPECT_EQ(messageOf([&] { LabelSheets(tiny, {{"R-0815", Symbology::DataMatrix, {}}}); }),
              "Der Strichcode für 'R-0815' passt nicht lesbar auf das Etikett (8 × 8 mm).");
    const LabelSheets qr(shipped("A4-4x10"), {{"R-0815", Symbology::QrCode, {"R-0815", "Lager"}}});
    EXPECT_GE(qr.moduleMm(0), LabelSheets::kMin2dModuleMm);
    EXPECT_NEAR(qr.barcodeRect(0).width, qr.barcodeRect(0).height, 1e-9);
}

TEST(LabelSheets, TextTooTallEvenInTheSmallestTypeIsRefusedNamingTheLabel)
{
    // Twenty lines don't fit beside the barcode of a label printer's label even at 5 pt.
    std::vector<std::string> lines(20, "Zeile");
    EXPECT_EQ(messageOf([&] { LabelSheets(shipped("Etikettendrucker-62x29"), {{"R-1", Symbology::Code128, lines}}); }),
              "Der Text des Etiketts 'R-1' passt auch in der kleinsten Schrift nicht auf das Etikett (62 × 29 mm).");
    // Nor beside a QR code; the label refused is the one named, not the first.
    EXPECT_EQ(messageOf([&] {
                  LabelSheets(shipped("A4-4x10"), {{"R-1", Symbology::QrCode, {"R-1"}}, {"R-2", Symbology::QrCode, lines}});
              }),
              "Der Text des Etiketts 'R-2' passt auch in der kleinsten Schrift nicht auf das Etikett (48,5 × 25,4 mm).");
    // Three lines still fit there.
    EXPECT_NO_THROW(LabelSheets(shipped("Etikettendrucker-62x29"), numbered(1)));
}

TEST(LabelSheets, AFailedPrintSaysTheLabelsCannotBePrinted)
{
    const LabelSheets sheets(shipped("A4-3x8"), numbered(1));
    EXPECT_EQ(sheets.cannotPrintText(""), "Die Etiketten können nicht gedruckt werden.");
    EXPECT_EQ(sheets.cannotPrintText("Etikettendrucker"),
              "Die Etiketten können auf dem Drucker 'Etikettendrucker' nicht gedruckt werden.");
}

TEST(LabelSheets, AnEmptyCodeIsRefused)
{
    EXPECT_EQ(messageOf([] { LabelSheets(shipped("A4-3x8"), {{"", Symbology::Code128, {"Raum"}}}); }),
              "Ein Etikett ohne Inhalt für den Strichcode kann nicht gedruckt werden.");
}

class LabelLayoutFile : public ::testing::Test {
protected:
    std::string errorOf(const std::string& text)
    {
        const std::string file = dir.file("Bogen.etl");
        writeFile(file, text);
        return messageOf([&] { readLabelLayout(file); });
    }
    std::string where(int line) const
    {
        return "Fehler in der Etikettendatei '" + displayPath(dir.file("Bogen.etl")) + "'" +
               (line ? ", Zeile " + std::to_string(line) : std::string()) + ": ";
    }
    static std::string valid() { return readFile(templateDir() + "/Etiketten/A4-3x8.etl"); }
    TempDir dir;
};

TEST_F(LabelLayoutFile, AValidFileIsReadWithCommasOrPoints)
{
    const std::string file = dir.file("Bogen.etl");
    writeFile(file, "Name = Test\nSeitenbreite = 100.5\nSeitenhöhe=200\r\nEtikettenbreite = 50,25\n"
                    "etiketten-Höhe = 20\nSpalten = 2\nZeilen = 10\n; Ende\n");
    const LabelLayout l = readLabelLayout(file);
    EXPECT_EQ(l.name, "Test");
    EXPECT_DOUBLE_EQ(l.pageWidthMm, 100.5);
    EXPECT_DOUBLE_EQ(l.labelWidthMm, 50.25);
    EXPECT_DOUBLE_EQ(l.labelHeightMm, 20);
    EXPECT_DOUBLE_EQ(l.marginLeftMm, 0);
    EXPECT_DOUBLE_EQ(l.gapYMm, 0);
    EXPECT_EQ(l.labelsPerPage(), 20);
}

TEST_F(LabelLayoutFile, ErrorsNameTheFileAndTheLine)
{
    EXPECT_EQ(errorOf("Name = X\nFarbe = rot\n"), where(2) + "Unbekannter Schlüssel 'Farbe'.");
    EXPECT_EQ(errorOf("# Kommentar\nName X\n"), where(2) + "Erwartet wird 'Schlüssel = Wert'.");
    EXPECT_EQ(errorOf(valid() + "Spalten = 2\n"), where(14) + "Der Schlüssel 'Spalten' steht zweimal in der Datei.");
    std::string text = valid();
    text.replace(text.find("Etikettenbreite   = 70"), 22, "Etikettenbreite = 7O");
    EXPECT_EQ(errorOf(text), where(8) + "'7O' ist keine Zahl.");
    text = valid();
    text.replace(text.find("Zeilen            = 8"), 21, "Zeilen = 8,5");
    EXPECT_EQ(errorOf(text), where(13) + "Die Zahl muss eine ganze Zahl zwischen 1 und 1000 sein.");
    text = valid();
    text.replace(text.find("Etikettenhöhe     = 37"), 23, "Etikettenhöhe = 0");
    EXPECT_EQ(errorOf(text), where(9) + "Die Länge muss größer als 0 sein.");
    text = valid();
    text.replace(text.find("Rand links        = 0"), 21, "Rand links = -1");
    EXPECT_EQ(errorOf(text), where(6) + "Die Länge darf nicht negativ sein.");
    text = valid();
    text.replace(text.find("Spalten           = 3"), 21, "Spalten = 4");
    EXPECT_EQ(errorOf(text), where(12) + "Die Etiketten sind zusammen breiter als die Seite.");
    // Twelve rows of 25.4 mm need 304.8 mm: more than A4.
    text = valid();
    text.replace(text.find("Zeilen            = 8"), 21, "Zeilen = 12");
    text.replace(text.find("Etikettenhöhe     = 37"), 23, "Etikettenhöhe = 25,4");
    EXPECT_EQ(errorOf(text), where(13) + "Die Etiketten sind zusammen höher als die Seite.");
    EXPECT_EQ(errorOf("Name = X\nSeitenbreite = 210\n"), where(0) + "Der Schlüssel 'Seitenhöhe' fehlt.");
    EXPECT_EQ(errorOf("Name =\n"), where(1) + "Der Name fehlt.");
}

TEST_F(LabelLayoutFile, AMissingFileIsNamed)
{
    const std::string file = dir.file("fehlt.etl");
    EXPECT_NE(messageOf([&] { readLabelLayout(file); }).find(displayPath(file)), std::string::npos);
}

TEST(LabelPdf, TheSheetHasTheLayoutsSizeAndTheBarcodesAreVectors)
{
    TempDir dir;
    const std::string pdf = dir.file("etiketten.pdf");
    LabelSheets sheets(shipped("Etikettendrucker-62x29"), numbered(3));
    sheets.setTitle("Objektetiketten");
    std::vector<int> told;
    sheets.writePdf(pdf, [&](int page, int pages) { told.push_back(page * 10 + pages); });
    EXPECT_EQ(told, (std::vector<int>{13, 23, 33}));
    const std::string info = commandOutput("pdfinfo '" + pdf + "'");
    EXPECT_NE(info.find("Pages:           3"), std::string::npos) << info;
    EXPECT_NE(info.find("Page size:       176 x 82 pts"), std::string::npos) << info;
    EXPECT_NE(info.find("Title:           Objektetiketten"), std::string::npos) << info;
    // No pictures: the bars are filled shapes.
    const std::string images = commandOutput("pdfimages -list '" + pdf + "'");
    EXPECT_EQ(std::count(images.begin(), images.end(), '\n'), 2) << images;
}

TEST(LabelPdf, AFileThatCantBeWrittenIsNamed)
{
    const LabelSheets sheets(shipped("A4-3x8"), numbered(1));
    const std::string path = "/nonexistent-folder/etiketten.pdf";
    EXPECT_NE(messageOf([&] { sheets.writePdf(path); }).find("Die Datei '" + displayPath(path) + "' kann nicht"),
              std::string::npos);
}

} // namespace
} // namespace qi::test
