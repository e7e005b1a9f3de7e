// Every barcode read back: label sheets of every shipped layout and symbology written as PDF,
// the pages rendered at 300 dpi (pdftoppm), each label cut out and decoded by zbar (zbarimg;
// Data Matrix by libdmtx's dmtxread, which zbar can't read); the values equal the labels'
// codes in their order.

#include "LabelSheets.h"
#include "TestSupport.h"

#include <QImage>
#include <QString>
#include <QXmlStreamReader>

#include <cstdio>
#include <map>

namespace qi::test {
namespace {

std::string templateDir() { return std::string(QI_PROGRAM_DIR) + "/Leeres Projekt"; }

std::string quoted(const std::string& s) { return "'" + s + "'"; }

/// What zbar decodes in each of the images: per file, the values of its symbols.
std::map<std::string, std::vector<std::string>> decodeImages(const std::vector<std::string>& files)
{
    std::string command = "zbarimg --xml -q";
    for (const std::string& f : files)
        command += " " + quoted(f);
    const std::string xml = commandOutput(command);
    std::map<std::string, std::vector<std::string>> found;
    QXmlStreamReader reader(QString::fromStdString(xml));
    std::string source;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && reader.name() == QStringLiteral("source"))
            source = reader.attributes().value(QStringLiteral("href")).toString().toStdString();
        else if (reader.isStartElement() && reader.name() == QStringLiteral("data"))
            found[source].push_back(reader.readElementText().toStdString());
    }
    return found;
}

/// Each printed label's decoded value ("" when none was found on it, "?" when several were):
/// every page rendered at 300 dpi, each label's place cut out of it and read by zbar.
std::vector<std::string> decodedLabels(const LabelSheets& sheets, const std::string& pdf, const TempDir& dir)
{
    constexpr double kDpi = 300;
    const auto px = [](double mm) { return int(mm / 25.4 * kDpi + 0.5); };
    std::vector<std::string> values(std::size_t(sheets.printedCount()));
    for (int page = 0; page < sheets.pageCount(); ++page) {
        const std::string prefix = dir.file("seite" + std::to_string(page));
        commandOutput("pdftoppm -r 300 -gray -png -f " + std::to_string(page + 1) + " -l " + std::to_string(page + 1) +
                      " -singlefile " + quoted(pdf) + " " + quoted(prefix));
        const QImage image(QString::fromStdString(prefix + ".png"));
        EXPECT_FALSE(image.isNull()) << "page " << page + 1 << " not rendered";
        std::vector<std::string> files;
        std::map<std::string, int> labelOf;
        for (int i = 0; i < sheets.printedCount(); ++i) {
            if (sheets.pageOf(i) != page)
                continue;
            const RectMm r = sheets.labelRect(i);
            const std::string file = dir.file("etikett" + std::to_string(i) + ".png");
            image.copy(px(r.x), px(r.y), px(r.width), px(r.height)).save(QString::fromStdString(file));
            files.push_back(file);
            labelOf[file] = i;
        }
        if (sheets.printedLabel(0).symbology == Symbology::DataMatrix) {
            // zbar reads no Data Matrix: libdmtx's reader, one label at a time.
            for (const std::string& file : files) {
                std::string value = commandOutput("dmtxread -N1 -m 20000 " + quoted(file));
                values[std::size_t(labelOf[file])] = value;
            }
            continue;
        }
        for (const auto& [file, found] : decodeImages(files))
            if (labelOf.count(file))
                values[std::size_t(labelOf[file])] = found.size() == 1 ? found.front() : "?";
    }
    return values;
}

const char* symbologyName(Symbology s)
{
    return s == Symbology::Code128 ? "Code 128" : s == Symbology::DataMatrix ? "DataMatrix" : "QR";
}

TEST(LabelReadBack, EveryBarcodeOfEveryLayoutAndSymbologyScansInOrder)
{
    const std::vector<std::string> layouts = {"A4-3x8", "A4-2x7", "A4-4x10", "Etikettendrucker-62x29"};
    for (const std::string& name : layouts) {
        const LabelLayout layout = findLabelLayout(templateDir(), name);
        // Room numbers and inventory numbers; on a sheet the first place is used already,
        // and the labels run on to a second sheet.
        const int count = layout.labelsPerPage() == 1 ? 3 : layout.labelsPerPage();
        for (Symbology symbology : {Symbology::Code128, Symbology::DataMatrix, Symbology::QrCode}) {
            SCOPED_TRACE(name + " " + symbologyName(symbology));
            std::vector<Label> labels = {
                {"1.01.003", symbology, {"1.01.003", "Besprechungsraum der Geschäftsführung", "Gebäude A, 1. OG"}},
                {"R-0815", symbology, {"R-0815", "Lager", "Halle 2, EG"}}};
            for (int i = 0; int(labels.size()) < count; ++i) {
                char code[16];
                std::snprintf(code, sizeof code, "I%07d", 100000 + i);
                labels.push_back({code, symbology, {code, "Schreibtisch 160 × 80"}});
            }
            const int start = layout.labelsPerPage() == 1 ? 1 : 2;
            const LabelSheets sheets(layout, labels, start);
            TempDir dir;
            const std::string pdf = dir.file("etiketten.pdf");
            sheets.writePdf(pdf);
            ASSERT_EQ(sheets.pageCount(), layout.labelsPerPage() == 1 ? 3 : 2);
            std::vector<std::string> expected;
            for (int i = 0; i < sheets.printedCount(); ++i)
                expected.push_back(sheets.printedLabel(i).code);
            EXPECT_EQ(decodedLabels(sheets, pdf, dir), expected);
        }
    }
}

TEST(LabelReadBack, CopiesScanAsTheirLabel)
{
    const LabelLayout layout = findLabelLayout(templateDir(), "A4-4x10");
    const LabelSheets sheets(layout, {{"R-0815", Symbology::Code128, {"R-0815"}},
                                      {"I0100000", Symbology::Code128, {"I0100000"}}},
                             39, 2);
    TempDir dir;
    const std::string pdf = dir.file("kopien.pdf");
    sheets.writePdf(pdf);
    EXPECT_EQ(decodedLabels(sheets, pdf, dir), (std::vector<std::string>{"R-0815", "R-0815", "I0100000", "I0100000"}));
}

} // namespace
} // namespace qi::test
