// The user at a terminal: messages as "[Titel] Text", questions answered Yes without
// a word, the conflict dialog by the command's policy, the progress line only where
// there is a terminal, reports handed to the command's writer.

#include "ConsoleUserInteraction.h"

#include <gtest/gtest.h>

#include <sstream>

namespace qi {
namespace {

ConflictInfo conflict()
{
    return {"4711", "A-1", "Stuhl", "101", "a.dat", "01.02.2015", "102", "b.dat", "02.02.2015"};
}

TEST(ConsoleUserInteraction, MessagesGoOutWithTheirTitleAndCountErrors)
{
    std::ostringstream err;
    ConsoleUserInteraction ui(err, false);
    EXPECT_EQ(ui.messageBox("Datei dieses Namens wurde bereits hinzugefügt.", MsgButtons::Ok, MsgIcon::None,
                            "Quarn-Inventur"),
              MsgResult::Ok);
    EXPECT_EQ(ui.errorCount(), 0);
    ui.showError("frmWork.GetDataFromDat", "Überlauf");
    ui.messageBox("Zuerst müssen Räume ausgewählt werden!", MsgButtons::Ok, MsgIcon::Exclamation, "Problem");
    EXPECT_EQ(ui.errorCount(), 2);
    EXPECT_EQ(err.str(), "[Quarn-Inventur] Datei dieses Namens wurde bereits hinzugefügt.\n"
                         "[QInventur] frmWork.GetDataFromDat\nÜberlauf\n"
                         "[Problem] Zuerst müssen Räume ausgewählt werden!\n");
}

TEST(ConsoleUserInteraction, MessagesTheWarningTestTakesAreWarningsNotErrors)
{
    std::ostringstream err;
    ConsoleUserInteraction ui(err, false);
    ui.setWarningTest([](const std::string& text) { return text.find("nicht erreichbar") != std::string::npos; });
    ui.messageBox("Der Server ist nicht erreichbar.", MsgButtons::Ok, MsgIcon::Critical, "Problem");
    ui.showError("COVRpt.CheckReportMdbLink", "Der Server ist nicht erreichbar.");
    EXPECT_EQ(ui.errorCount(), 0);
    EXPECT_EQ(ui.warningCount(), 2);
    ui.showError("frmWork.GetDataFromDat", "Überlauf");
    EXPECT_EQ(ui.errorCount(), 1);
    EXPECT_EQ(ui.warningCount(), 2);
    // Written as they are.
    EXPECT_EQ(err.str(), "[Problem] Der Server ist nicht erreichbar.\n"
                         "[QInventur] COVRpt.CheckReportMdbLink\nDer Server ist nicht erreichbar.\n"
                         "[QInventur] frmWork.GetDataFromDat\nÜberlauf\n");
}

TEST(ConsoleUserInteraction, QuestionsAreAnsweredYesWithoutAWord)
{
    std::ostringstream err;
    ConsoleUserInteraction ui(err, true);
    EXPECT_TRUE(ui.askYesNo("Auftrag 'Nord' löschen ?", "Quarn"));
    EXPECT_EQ(err.str(), "");
    EXPECT_FALSE(ui.openFile({}).has_value());
}

TEST(ConsoleUserInteraction, ConflictsFollowThePolicyOrStopTheCommand)
{
    std::ostringstream err;
    ConsoleUserInteraction ui(err, false);
    try {
        ui.resolveConflict(conflict());
        FAIL() << "no policy, no decision";
    } catch (const UnresolvedConflict& c) {
        EXPECT_EQ(c.info.stInvNr, "4711");
    }
    EXPECT_EQ(err.str(), "");
    ui.setConflictPolicy(ConflictPolicy::Keep);
    EXPECT_FALSE(ui.resolveConflict(conflict()));
    ui.setConflictPolicy(ConflictPolicy::Discard);
    EXPECT_TRUE(ui.resolveConflict(conflict()));
    const std::string shown = "[Fehler] Inventarnummer 4711, Artikelnummer A-1, Stuhl\n"
                              "Erstes Auftreten: Raum 101, Datei a.dat, Datum 01.02.2015\n"
                              "Zweites Auftreten: Raum 102, Datei b.dat, Datum 02.02.2015\n";
    EXPECT_EQ(err.str(), shown + "Entschieden mit --konflikt behalten: Das erste Auftreten bleibt.\n" + shown +
                             "Entschieden mit --konflikt verwerfen: Das zweite Auftreten ersetzt das erste.\n");
    EXPECT_EQ(ui.errorCount(), 0);
}

TEST(ConsoleUserInteraction, TheProgressLineIsDrawnOnlyOnATerminalAndClearedBeforeMessages)
{
    std::ostringstream quiet;
    ConsoleUserInteraction redirected(quiet, false);
    redirected.beginProgress("Auswertung");
    redirected.reportStep("Sollbestand der Räume", 1, 4);
    redirected.reportProgress("a.dat", 1000);
    redirected.endProgress();
    EXPECT_EQ(quiet.str(), "");

    std::ostringstream err;
    ConsoleUserInteraction ui(err, true);
    ui.beginProgress("Scannerdaten werden eingelesen");
    ui.beginProgress("innen"); // nested: the outer title stays
    ui.reportProgress("a.dat", 1000);
    ui.endProgress();
    ui.messageBox("Warnung", MsgButtons::Ok, MsgIcon::Exclamation, "Quarn-Inventur");
    ui.reportStep("Objekte am richtigen Platz", 0, 0);
    ui.endProgress();
    EXPECT_EQ(err.str(), "\r\x1b[KScannerdaten werden eingelesen"
                         "\r\x1b[KScannerdaten werden eingelesen: a.dat, 1000 Zeilen gelesen"
                         "\r\x1b[K[Quarn-Inventur] Warnung\n"
                         "\r\x1b[KScannerdaten werden eingelesen: Objekte am richtigen Platz"
                         "\r\x1b[K");
}

TEST(ConsoleUserInteraction, ReportsGoToTheWriter)
{
    std::ostringstream err;
    ConsoleUserInteraction ui(err, false);
    ui.showReport("x.rpt", "y.mdb", "Liste"); // no writer: nothing happens
    std::vector<std::string> seen;
    ui.setReportWriter([&](const std::string& file, const std::string& data, const std::string& title) {
        seen = {file, data, title};
    });
    ui.showReport("P\\Report\\invdiff.rpt", "Q\\QInventurRpt.mdb", "Differenzliste");
    EXPECT_EQ(seen, (std::vector<std::string>{"P\\Report\\invdiff.rpt", "Q\\QInventurRpt.mdb", "Differenzliste"}));
}

} // namespace
} // namespace qi
