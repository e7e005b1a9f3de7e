// Labels and walk lists written by qinventur-cli on the demo order: the walk list's rows per
// room against the objects the test finds in Quarn's data, the room labels' barcodes read back
// from the PDF with zbar on every shipped layout, the object labels of a range and of the
// numbers Quarn doesn't know, and the refusals with their German messages.

#include "TestSupport.h"
#include "CliFixture.h"

#include "FileSystem.h"
#include "JetCollation.h"
#include "LabelJob.h"
#include "LabelSheets.h"

#include <QImage>

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>

namespace qi::test {
namespace {

std::string quoted(const std::string& s) { return "'" + s + "'"; }

/// The fields of a CSV line of the report engine (semicolons, double quotes around a field that needs them).
std::vector<std::string> csvFields(const std::string& line)
{
    std::vector<std::string> fields(1);
    bool inQuotes = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (inQuotes) {
            if (c == '"' && i + 1 < line.size() && line[i + 1] == '"')
                fields.back() += '"', ++i;
            else if (c == '"')
                inQuotes = false;
            else
                fields.back() += c;
        } else if (c == '"') {
            inQuotes = true;
        } else if (c == ';') {
            fields.emplace_back();
        } else {
            fields.back() += c;
        }
    }
    return fields;
}

/// The values the barcodes of each printed label of a PDF decode to, label by label: each
/// label's place cut out of its page (rendered at 300 dpi) and read by zbarimg.
std::vector<std::string> decodedLabels(const std::string& pdf, const LabelSheets& sheets, const TempDir& work)
{
    constexpr double kDpi = 300;
    std::vector<std::string> values;
    std::map<int, QImage> pages;
    for (int i = 0; i < sheets.printedCount(); ++i) {
        const int page = sheets.pageOf(i);
        if (!pages.count(page)) {
            const std::string prefix = work.file("seite" + std::to_string(page));
            commandOutput("pdftoppm -r 300 -gray -png -f " + std::to_string(page + 1) + " -l " +
                          std::to_string(page + 1) + " -singlefile " + quoted(pdf) + " " + quoted(prefix));
            pages[page] = QImage(QString::fromStdString(prefix + ".png"));
        }
        const RectMm r = sheets.labelRect(i);
        const auto px = [](double mm) { return int(mm / 25.4 * kDpi + 0.5); };
        const QImage label = pages[page].copy(px(r.x), px(r.y), px(r.width), px(r.height));
        const std::string file = work.file("etikett.png");
        label.save(QString::fromStdString(file));
        std::string value = commandOutput("zbarimg --raw -q " + quoted(file));
        while (!value.empty() && (value.back() == '\n' || value.back() == '\r'))
            value.pop_back();
        values.push_back(value);
    }
    return values;
}

class CliLabelsTest : public CliFixture {
protected:
    void SetUp() override
    {
        CliFixture::SetUp();
        prepareOrder("EG");
        expectCli(0, {"auswerten", "EG"});
    }

    std::string templateDir() const { return programDir + "/Leeres Projekt"; }

    /// The demo's room of that number.
    const demo::Room& room(const std::string& nr) const
    {
        for (const demo::Room& r : inst.rooms)
            if (r.nr == nr)
                return r;
        throw std::runtime_error("no room " + nr);
    }
};

TEST_F(CliLabelsTest, TheWalkListHoldsPerRoomTheObjectsQuarnExpectsThere)
{
    const std::string csv = root.file("begehung.csv");
    const CliRun r = expectCli(0, {"begehungsliste", "EG", "--ausgabe", csv});
    const std::string roomCount = std::to_string(orderRooms().size());
    EXPECT_NE(r.out.find("Begehungsliste geschrieben: " + csv + " (" + roomCount + " Räume, "), std::string::npos)
        << r.out;

    std::vector<std::string> lines = linesOf(readFile(csv));
    ASSERT_FALSE(lines.empty());
    ASSERT_EQ(lines[0].rfind("\xEF\xBB\xBF", 0), 0u);
    lines[0].erase(0, 3);
    EXPECT_EQ(lines[0], "Raum;Raumname;Gebäude;Geschoss;Raumverantwortlich;Inventar-Nr.;Artikel;Beschreibung;"
                        "Bemerkung;Gefunden");

    // What the test finds in Quarn's data: the module's objects standing in each room of the order.
    const demo::Module& module = inst.modules[0];
    std::map<std::string, std::multiset<std::string>> expected;
    for (const std::string& nr : orderRooms()) {
        expected[nr];
        for (const demo::Object& o : module.objects)
            if (o.gebstruId == room(nr).id && o.gebstruTyp == 4 && o.variante == 0)
                expected[nr].insert(o.name);
    }
    std::map<std::string, std::multiset<std::string>> listed;
    std::set<std::string> roomsListed;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::vector<std::string> f = csvFields(lines[i]);
        ASSERT_EQ(f.size(), 10u) << lines[i];
        const demo::Room& quarnRoom = room(f[0]);
        roomsListed.insert(f[0]);
        EXPECT_EQ(f[1], quarnRoom.name);
        EXPECT_EQ(f[2], "Hauptgebäude");
        EXPECT_EQ(f[3], "Erdgeschoss");
        std::string person;
        for (const demo::Person& p : inst.persons)
            if (p.id == quarnRoom.responsibleId)
                person = p.name + ", " + p.vorname;
        EXPECT_EQ(f[4], person) << f[0];
        if (f[5].empty()) {
            EXPECT_EQ(f[9], "");
            continue;
        }
        listed[f[0]].insert(f[5]);
        EXPECT_EQ(f[9], "☐");
        for (const demo::Object& o : module.objects)
            if (o.name == f[5]) {
                EXPECT_EQ(f[7], o.beschreibung);
                EXPECT_EQ(f[8], o.bemerkung);
                const demo::Article* a = module.articleOf(o);
                ASSERT_NE(a, nullptr);
                EXPECT_EQ(f[6], a->artNr + " " + a->name);
            }
    }
    EXPECT_EQ(roomsListed.size(), expected.size());
    for (const auto& [nr, numbers] : expected)
        EXPECT_EQ(listed[nr], numbers) << "room " << nr;
    std::size_t total = 0;
    for (const auto& [nr, numbers] : expected)
        total += numbers.size();
    EXPECT_GT(total, orderRooms().size());

    // The PDF has a page per room at least, and names the rooms' responsible persons.
    const std::string pdf = root.file("begehung.pdf");
    const CliRun p = expectCli(0, {"begehungsliste", "EG", "--ausgabe", pdf});
    const std::string info = commandOutput("pdfinfo " + quoted(pdf));
    const std::size_t at = info.find("Pages:");
    ASSERT_NE(at, std::string::npos);
    EXPECT_GE(std::stoi(info.substr(at + 6)), int(orderRooms().size()));
    EXPECT_NE(p.out.find("(" + roomCount + " Räume, " + std::to_string(std::stoi(info.substr(at + 6))) + " Seiten)."),
              std::string::npos)
        << p.out;
    const std::string text = commandOutput("pdftotext -layout " + quoted(pdf) + " -");
    EXPECT_NE(text.find("Raumverantwortlich:"), std::string::npos);
    EXPECT_NE(text.find("Begangen am:"), std::string::npos);
}

TEST_F(CliLabelsTest, TheWalkListOfANodeAndItsRefusals)
{
    std::int32_t floor = 0;
    for (const demo::Node& n : inst.nodes)
        if (n.typ == 3 && !floor)
            floor = n.id;
    const std::string xlsx = root.file("knoten.xlsx");
    const CliRun r = expectCli(0, {"begehungsliste", "--knoten", std::to_string(floor), "--ausgabe", xlsx});
    EXPECT_NE(r.out.find("Begehungsliste geschrieben: " + xlsx + " (" + std::to_string(orderRooms().size()) +
                         " Räume, "),
              std::string::npos)
        << r.out;
    EXPECT_TRUE(fileExists(xlsx));

    EXPECT_NE(expectCli(8, {"begehungsliste", "--knoten", "999999", "--ausgabe", xlsx})
                  .err.find("Einen Knoten 999999 gibt es in der Gebäudestruktur von Quarn nicht."),
              std::string::npos);
    EXPECT_NE(expectCli(2, {"begehungsliste", "EG", "--knoten", "3", "--ausgabe", xlsx})
                  .err.find("Die Begehungsliste braucht genau eines: den Namen eines Auftrags oder --knoten ID."),
              std::string::npos);
    EXPECT_NE(expectCli(2, {"begehungsliste", "EG"}).err.find("Es fehlt --ausgabe PFAD."), std::string::npos);
    EXPECT_NE(expectCli(2, {"begehungsliste", "EG", "--ausgabe", root.file("x.doc")})
                  .err.find("nennt kein Format (pdf, xlsx oder csv)"),
              std::string::npos);
    EXPECT_NE(expectCli(4, {"begehungsliste", "Süd", "--ausgabe", xlsx})
                  .err.find("Einen Auftrag 'Süd' gibt es im Projekt nicht."),
              std::string::npos);
}

TEST_F(CliLabelsTest, EveryRoomLabelOfTheDemoOrderScansAsItsRoomNumberOnEveryLayout)
{
    const std::vector<std::string> layouts = labelLayoutNames(templateDir());
    ASSERT_FALSE(layouts.empty());
    const std::vector<std::string> rooms = orderRooms();
    for (const std::string& name : layouts) {
        SCOPED_TRACE(name);
        TempDir work;
        const std::string pdf = work.file("raeume.pdf");
        const CliRun r = expectCli(0, {"etiketten", "raeume", "EG", "--layout", name, "--ausgabe", pdf});
        const LabelLayout layout = findLabelLayout(templateDir(), name);
        std::vector<Label> labels;
        for (const std::string& nr : rooms)
            labels.push_back(Label{nr, Symbology::Code128, {nr}});
        const LabelSheets sheets(layout, labels);
        EXPECT_EQ(r.out, "Etiketten geschrieben: " + pdf + " (" + std::to_string(rooms.size()) + " Etiketten, " + std::to_string(sheets.pageCount()) +
                             (sheets.pageCount() == 1 ? " Seite).\n" : " Seiten).\n"));
        EXPECT_EQ(decodedLabels(pdf, sheets, work), rooms);
    }
}

TEST_F(CliLabelsTest, ObjectLabelsOfARangeAndOfTheNumbersQuarnDoesntKnowScan)
{
    const std::string layout = labelLayoutNames(templateDir()).at(0);
    TempDir work;
    // zbar reads Code 128 and QR codes; DataMatrix it can't read (the label engine's own tests read those).
    const std::string dm = work.file("datamatrix.pdf");
    EXPECT_EQ(expectCli(0, {"etiketten", "objekte", "--von", "I0100098", "--bis", "I0100102", "--layout",
                            labelLayoutNames(templateDir()).at(0), "--ausgabe", dm, "--symbologie", "datamatrix"})
                  .out,
              "Etiketten geschrieben: " + dm + " (5 Etiketten, 1 Seite).\n");
    for (const char* symbology : {"code128", "qr"}) {
        SCOPED_TRACE(symbology);
        const std::string pdf = work.file(std::string(symbology) + ".pdf");
        expectCli(0, {"etiketten", "objekte", "--von", "I0100098", "--bis", "I0100102", "--layout", layout,
                      "--ausgabe", pdf, "--symbologie", symbology, "--start", "2", "--kopien", "2"});
        std::vector<Label> labels;
        std::vector<std::string> expected;
        for (const char* n : {"I0100098", "I0100099", "I0100100", "I0100101", "I0100102"}) {
            labels.push_back(Label{n, Symbology::Code128, {n}});
            expected.insert(expected.end(), 2, n);
        }
        const LabelSheets sheets(findLabelLayout(templateDir(), layout), labels, 2, 2);
        EXPECT_EQ(decodedLabels(pdf, sheets, work), expected);
    }

    // The numbers the order found that Quarn doesn't know, as its difference list has them.
    const Recordset unknown = read(orderFile("EG"))->query(
        "SELECT DISTINCT stIstInvNR FROM T_Differenzliste WHERE stTyp = '2c Nicht in Quarn erfasst'");
    // An object scanned without a number gets no label: it has no number to print yet.
    std::vector<std::string> numbers;
    bool withoutNumber = false;
    for (const auto& row : unknown.rows()) {
        if (toText(row[0]) == "Obj. ohne Nr.")
            withoutNumber = true;
        else
            numbers.push_back(toText(row[0]));
    }
    ASSERT_TRUE(withoutNumber) << "the demo order scans an object without a number";
    std::sort(numbers.begin(), numbers.end(), [](const std::string& a, const std::string& b) { return jetCompare(a, b) < 0; });
    ASSERT_FALSE(numbers.empty());
    const std::string pdf = work.file("neu.pdf");
    const CliRun r = expectCli(0, {"etiketten", "objekte", "EG", "--neu", "--layout", layout, "--ausgabe", pdf});
    const std::string count =
        numbers.size() == 1 ? std::string("1 Etikett") : std::to_string(numbers.size()) + " Etiketten";
    EXPECT_NE(r.out.find("(" + count + ", 1 Seite)."), std::string::npos) << r.out;
    std::vector<Label> labels;
    for (const std::string& n : numbers)
        labels.push_back(Label{n, Symbology::Code128, {n}});
    EXPECT_EQ(decodedLabels(pdf, LabelSheets(findLabelLayout(templateDir(), layout), labels), work), numbers);

    // A list in a file.
    const std::string list = work.file("liste.txt");
    writeFile(list, "A-1\n\n  B-2  \nA-1\n");
    const std::string listPdf = work.file("liste.pdf");
    expectCli(0, {"etiketten", "objekte", "--datei", list, "--layout", layout, "--ausgabe", listPdf});
    std::vector<Label> listed;
    for (const char* n : {"A-1", "B-2", "A-1"})
        listed.push_back(Label{n, Symbology::Code128, {n}});
    EXPECT_EQ(decodedLabels(listPdf, LabelSheets(findLabelLayout(templateDir(), layout), listed), work),
              (std::vector<std::string>{"A-1", "B-2", "A-1"}));
}

TEST_F(CliLabelsTest, WrongCallsAreRefusedWithGermanMessages)
{
    const std::string pdf = root.file("x.pdf");
    const auto refused = [&](int code, const std::vector<std::string>& args, const std::string& message) {
        const CliRun r = expectCli(code, args);
        EXPECT_NE(r.err.find(message), std::string::npos) << r.err;
        EXPECT_FALSE(fileExists(pdf));
    };
    refused(2, {"etiketten", "raeume", "--layout", "A4", "--ausgabe", pdf},
            "Raumetiketten brauchen genau eines: den Namen eines Auftrags, --knoten ID oder --alle.");
    refused(2, {"etiketten", "raeume", "EG", "--alle", "--layout", "A4", "--ausgabe", pdf},
            "Raumetiketten brauchen genau eines");
    refused(2, {"etiketten", "raeume", "EG", "--ausgabe", pdf}, "Es fehlt --layout LAYOUT.");
    refused(2, {"etiketten", "raeume", "EG", "--layout", "A4"}, "Es fehlt --ausgabe PFAD.");
    refused(2, {"etiketten", "tueren", "EG", "--layout", "A4", "--ausgabe", pdf},
            "\"etiketten\" braucht raeume oder objekte, nicht 'tueren'.");
    refused(2, {"etiketten", "raeume", "EG", "--layout", "Bogen 9x9", "--ausgabe", pdf},
            "Das Etikettenformat 'Bogen 9x9' gibt es nicht. Vorhanden: ");
    refused(2, {"etiketten", "raeume", "EG", "--layout", "A4", "--ausgabe", pdf, "--kopien", "zwei"},
            "--kopien nimmt eine ganze Zahl ab 1, nicht 'zwei'.");
    refused(2, {"etiketten", "raeume", "EG", "--layout", "A4", "--ausgabe", pdf, "--symbologie", "qr"},
            "--symbologie gehört zu \"etiketten objekte\".");
    refused(2, {"etiketten", "objekte", "--von", "I0100000", "--bis", "J0100199", "--layout", "A4", "--ausgabe", pdf},
            "Anfang 'I0100000' und Ende 'J0100199' des Bereichs beginnen verschieden ('I' und 'J').");
    refused(2, {"etiketten", "objekte", "--von", "I0100000", "--layout", "A4", "--ausgabe", pdf},
            "Ein Bereich braucht --von NUMMER und --bis NUMMER.");
    refused(2, {"etiketten", "objekte", "EG", "--datei", root.file("liste.txt"), "--layout", "A4", "--ausgabe", pdf},
            "Der Name eines Auftrags gehört zu --neu.");
    refused(2, {"etiketten", "objekte", "--neu", "--layout", "A4", "--ausgabe", pdf},
            "--neu braucht den Namen des Auftrags.");
    refused(2, {"etiketten", "objekte", "--von", "1", "--bis", "2", "--layout", "A4", "--ausgabe", pdf,
                "--symbologie", "ean13"},
            "--symbologie nimmt code128, datamatrix, qr, nicht 'ean13'.");
    refused(8, {"etiketten", "raeume", "--knoten", "999999", "--layout", labelLayoutNames(templateDir()).at(0),
                "--ausgabe", pdf},
            "Einen Knoten 999999 gibt es in der Gebäudestruktur von Quarn nicht.");
    refused(1, {"etiketten", "objekte", "--datei", root.file("fehlt.txt"), "--layout",
                labelLayoutNames(templateDir()).at(0), "--ausgabe", pdf},
            "Die Datei '" + root.file("fehlt.txt") + "' kann nicht gelesen werden.");
    refused(2, {"etiketten", "raeume", "EG", "--layout", labelLayoutNames(templateDir()).at(0), "--ausgabe", pdf,
                "--start", "1000"},
            "Die Startposition 1000 gibt es auf dem Bogen '");
}

} // namespace
} // namespace qi::test
