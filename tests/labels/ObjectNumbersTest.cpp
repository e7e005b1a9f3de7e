// The inventory numbers of object labels: ranges with a prefix and leading zeros, lists from
// text files, and the refusals with their German messages.

#include "LabelContent.h"
#include "LabelJob.h"
#include "ObjectNumbers.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

namespace qi {
namespace {

using test::TempDir;
using test::writeFile;

std::string refusalOf(const std::string& first, const std::string& last)
{
    try {
        numbersInRange(first, last);
    } catch (const LabelSourceError& e) {
        return e.what();
    }
    return {};
}

TEST(ObjectNumbersTest, ARangeKeepsItsPrefixAndLeadingZeros)
{
    const std::vector<std::string> numbers = numbersInRange("I0100000", "I0100199");
    ASSERT_EQ(numbers.size(), 200u);
    EXPECT_EQ(numbers.front(), "I0100000");
    EXPECT_EQ(numbers[1], "I0100001");
    EXPECT_EQ(numbers[99], "I0100099");
    EXPECT_EQ(numbers.back(), "I0100199");
    EXPECT_EQ(numbersInRange("0098", "0102"), (std::vector<std::string>{"0098", "0099", "0100", "0101", "0102"}));
    EXPECT_EQ(numbersInRange(" INV-7 ", "INV-7"), std::vector<std::string>{"INV-7"});
}

TEST(ObjectNumbersTest, AWrongRangeIsRefusedWithAGermanMessage)
{
    EXPECT_EQ(refusalOf("I0100000", "J0100199"),
              "Anfang 'I0100000' und Ende 'J0100199' des Bereichs beginnen verschieden ('I' und 'J').");
    EXPECT_EQ(refusalOf("I0100000", "I100199"),
              "Anfang 'I0100000' und Ende 'I100199' des Bereichs haben verschieden viele Ziffern (7 und 6).");
    EXPECT_EQ(refusalOf("I0100199", "I0100000"), "Das Ende 'I0100000' des Bereichs liegt vor seinem Anfang 'I0100199'.");
    EXPECT_EQ(refusalOf("Inventar", "I0100000"),
              "Die Nummer 'Inventar' endet nicht auf Ziffern; ein Bereich braucht Nummern wie I0100000 bis I0100199.");
    EXPECT_EQ(refusalOf("I0000000", "I0100000"),
              "Der Bereich von 'I0000000' bis 'I0100000' umfasst 100.001 Nummern; mehr als 100.000 Etiketten auf "
              "einmal sind nicht möglich.");
    EXPECT_EQ(refusalOf("1234567890123456789", "1234567890123456789"),
              "Die Nummer '1234567890123456789' hat mehr als 18 Ziffern am Ende.");
    // The largest range allowed.
    EXPECT_EQ(numbersInRange("I0000000", "I0099999").size(), kMaxLabels);
}

TEST(ObjectNumbersTest, AFileGivesItsNumbersTrimmedInOrderWithDuplicatesKept)
{
    TempDir dir;
    const std::string file = dir.file("nummern.txt");
    writeFile(file, "\xEF\xBB\xBF  100001 \r\n\r\n\t100002\n100001\n   \nI0100000");
    EXPECT_EQ(numbersFromFile(file), (std::vector<std::string>{"100001", "100002", "100001", "I0100000"}));

    const std::string empty = dir.file("leer.txt");
    writeFile(empty, " \r\n\r\n");
    try {
        numbersFromFile(empty);
        ADD_FAILURE() << "an empty file gave numbers";
    } catch (const LabelSourceError& e) {
        EXPECT_EQ(std::string(e.what()), "Die Datei '" + empty + "' enthält keine Inventarnummern.");
    }
    try {
        numbersFromFile(dir.file("fehlt.txt"));
        ADD_FAILURE() << "a missing file gave numbers";
    } catch (const LabelSourceError& e) {
        EXPECT_EQ(std::string(e.what()), "Die Datei '" + dir.file("fehlt.txt") + "' kann nicht gelesen werden.");
    }
}

TEST(ObjectNumbersTest, CopiesCountTowardsTheMostLabels)
{
    EXPECT_NO_THROW(checkLabelCount(50000, 2));
    try {
        checkLabelCount(50001, 2);
        ADD_FAILURE() << "100.002 labels were taken";
    } catch (const LabelSourceError& e) {
        EXPECT_EQ(std::string(e.what()),
                  "Das wären 100.002 Etiketten; mehr als 100.000 Etiketten auf einmal sind nicht möglich.");
    }
}

TEST(LabelContentTest, ARoomLabelCarriesItsNumberNameBuildingAndFloor)
{
    const Label label = roomLabel(LabelRoom{12, "1001", "Büro", "Hauptgebäude", "Erdgeschoss"});
    EXPECT_EQ(label.code, "1001");
    EXPECT_EQ(label.symbology, Symbology::Code128);
    EXPECT_EQ(label.lines, (std::vector<std::string>{"1001", "Büro", "Hauptgebäude \u00b7 Erdgeschoss"}));
    EXPECT_EQ(roomLabel(LabelRoom{13, "2001", "", "", "1. OG"}).lines,
              (std::vector<std::string>{"2001", "", "1. OG"}));
}

TEST(LabelContentTest, ObjectLabelsTakeTheSymbologyAsked)
{
    const std::vector<Label> labels = objectLabels({"I0100000", "I0100001"}, Symbology::DataMatrix);
    ASSERT_EQ(labels.size(), 2u);
    EXPECT_EQ(labels[1].code, "I0100001");
    EXPECT_EQ(labels[1].lines, std::vector<std::string>{"I0100001"});
    EXPECT_EQ(labels[0].symbology, Symbology::DataMatrix);
    Symbology s = Symbology::Code128;
    EXPECT_TRUE(symbologyNamed("QR", s));
    EXPECT_EQ(s, Symbology::QrCode);
    EXPECT_TRUE(symbologyNamed("datamatrix", s));
    EXPECT_EQ(s, Symbology::DataMatrix);
    EXPECT_FALSE(symbologyNamed("ean13", s));
    EXPECT_EQ(symbologyNames(), "code128, datamatrix, qr");
    EXPECT_EQ(symbologyDisplayName(Symbology::QrCode), "QR-Code");
}

TEST(LabelContentTest, TheMessagesOfARun)
{
    EXPECT_EQ(labelsWrittenText("/tmp/t.pdf", 20, 1), "Etiketten geschrieben: /tmp/t.pdf (20 Etiketten, 1 Seite).");
    EXPECT_EQ(labelsWrittenText("/tmp/t.pdf", 1, 2), "Etiketten geschrieben: /tmp/t.pdf (1 Etikett, 2 Seiten).");
    LabelLayout layout;
    layout.name = "A4 3×8";
    layout.columns = 3;
    layout.rows = 8;
    EXPECT_EQ(refusedChoice(layout, LabelChoice{"A4 3×8", 24, 1}), "");
    EXPECT_EQ(refusedChoice(layout, LabelChoice{"A4 3×8", 25, 1}),
              "Die Startposition 25 gibt es auf dem Bogen 'A4 3×8' nicht; er hat die Plätze 1 bis 24.");
    EXPECT_EQ(refusedChoice(layout, LabelChoice{"A4 3×8", 1, 100}),
              "Die Zahl der Kopien muss zwischen 1 und 99 liegen, nicht 100.");
}

} // namespace
} // namespace qi
