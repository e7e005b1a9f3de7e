// The window "Korrekturliste" as a person meets it: its rows and columns, each filter, the
// decision of several rows at once with a comment and the counts at the foot, the history,
// a program that may only look, the road by keyboard alone, and opening it from the window
// "Projektübersicht".

#include "ProgramFixture.h"

#include "CorrectionListWindow.h"
#include "CorrectionTable.h"
#include "FileSystem.h"
#include "Corrections.h"
#include "Database.h"
#include "ProjectOverviewWindow.h"
#include "ProjectResultSchema.h"
#include "Screenshots.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>

#include <algorithm>

namespace qi::test {
namespace {

Proposal proposal(const char* art, const char* invNr, const char* raumQuarn, const char* raumNeu, const char* orders,
                  const char* part, const char* datum = "03.11.2026")
{
    Proposal p;
    p.art = art;
    p.invNr = invNr;
    p.artNr = "A-" + std::string(invNr);
    p.beschreibung = std::string("Objekt ") + invNr;
    p.raumQuarn = raumQuarn;
    p.raumNeu = raumNeu;
    p.auftraege = orders;
    p.raeume = *raumNeu ? raumNeu : raumQuarn;
    p.datei = *raumNeu ? "EG.dat" : "";
    p.datum = *raumNeu ? datum : "";
    p.uhrzeit = *raumNeu ? "14:05:09" : "";
    p.gebaeudeteil = part;
    p.beleg = std::string(orders) + "|" + raumQuarn + "|" + raumNeu;
    return p;
}

constexpr const char* kEG = "Hauptgebäude / Erdgeschoss";
constexpr const char* kKG = "Hauptgebäude / Keller";

/// Proposals of every kind, filled by hand.
std::vector<Proposal> handProposals()
{
    Proposal unclear = proposal(kArtKlaeren, "I300", "", "", "Erdgeschoss, Keller", kKG);
    unclear.raeume = "E0.1, K0.1";
    unclear.datei = "K.dat";
    unclear.datum = "04.11.2026";
    unclear.uhrzeit = "10:00:00";
    return {
        proposal(kArtStandort, "I100", "E0.1", "K0.1", "Erdgeschoss, Keller", kKG, "04.11.2026"),
        proposal(kArtStandort, "I101", "E0.2", "E0.3", "Erdgeschoss", kEG),
        proposal(kArtStandort, "I102", "K0.1", "E0.2", "Keller, Erdgeschoss", kEG),
        proposal(kArtNeu, "X1", "", "E0.1", "Erdgeschoss", kEG),
        proposal(kArtNeu, "X2", "", "K0.1", "Keller", kKG),
        proposal(kArtFehlt, "I500", "E0.3", "", "Erdgeschoss", kEG),
        unclear,
    };
}

QStringList row(const QTreeWidget& list, int i)
{
    QStringList out;
    for (int c = 0; c < list.columnCount(); ++c)
        out << list.topLevelItem(i)->text(c);
    return out;
}

QStringList column(const QTreeWidget& list, int c)
{
    QStringList out;
    for (int i = 0; i < list.topLevelItemCount(); ++i)
        out << list.topLevelItem(i)->text(c);
    return out;
}

QTreeWidgetItem* itemOf(QTreeWidget& list, const QString& invNr)
{
    for (int i = 0; i < list.topLevelItemCount(); ++i)
        if (list.topLevelItem(i)->text(korrcol::InvNr) == invNr)
            return list.topLevelItem(i);
    return nullptr;
}

void select(QTreeWidget& list, const QStringList& numbers)
{
    list.clearSelection();
    for (const QString& n : numbers) {
        QTreeWidgetItem* item = itemOf(list, n);
        ASSERT_NE(item, nullptr) << n.toStdString();
        item->setSelected(true);
    }
}

QString decisionOf(QTreeWidget& list, const QString& invNr)
{
    const QTreeWidgetItem* item = itemOf(list, invNr);
    return item ? item->text(korrcol::Entscheidung) : QStringLiteral("(nicht gezeigt)");
}

void choose(QComboBox& box, const QString& text)
{
    const int at = box.findText(text);
    ASSERT_GE(at, 0) << text.toStdString();
    box.setCurrentIndex(at);
}

class CorrectionListWindowTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        qtApplication();
        settings.gstProjektPfad = dir.path() + "/";
    }

    std::unique_ptr<CorrectionListWindow> open(bool readOnly = false)
    {
        Settings s = settings;
        s.readOnly = readOnly;
        if (readOnly)
            s.readOnlyReason = "Das Projekt wird bereits von mmuster auf PC7 bearbeitet.";
        auto window = std::make_unique<CorrectionListWindow>(ui, s);
        window->showProposals(handProposals());
        return window;
    }

    /// Presses a key in the window's focus widget, as the keyboard does.
    static void key(QWidget& window, Qt::Key k, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QWidget* target = QApplication::focusWidget() ? QApplication::focusWidget() : &window;
        QTest::keyClick(target, k, modifiers);
    }

    TempDir dir;
    Settings settings;
    ScriptedUserInteraction ui;
};

TEST_F(CorrectionListWindowTest, ShowsEveryProposalWithItsColumns)
{
    auto window = open();
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Korrekturliste"));
    EXPECT_TRUE(ui.messages.empty());
    QTreeWidget& list = *window->lvVorschlaege;
    QStringList headings;
    for (int c = 0; c < list.columnCount(); ++c)
        headings << list.headerItem()->text(c);
    EXPECT_EQ(headings, (QStringList{"Art", "Inventar-Nr.", "Artikel", "Bezeichnung", "Raum Quarn", "Raum neu",
                                     "Aufträge", "Gebäudeteil", "Datei", "Datum", "Entscheidung",
                                     "Frühere Entscheidung", "Kommentar", "Person"}));
    ASSERT_EQ(list.topLevelItemCount(), 7);
    EXPECT_EQ(row(list, 0), (QStringList{"Standort ändern", "I100", "A-I100", "Objekt I100", "E0.1", "K0.1",
                                         "Erdgeschoss, Keller", "Hauptgebäude / Keller", "EG.dat",
                                         "04.11.2026 14:05:09", "offen", "", "", ""}));
    EXPECT_EQ(row(list, 3).mid(0, 6), (QStringList{"Neu erfassen", "X1", "A-X1", "Objekt X1", "", "E0.1"}));
    EXPECT_EQ(row(list, 5).mid(0, 10), (QStringList{"Fehlt", "I500", "A-I500", "Objekt I500", "E0.3", "",
                                                    "Erdgeschoss", "Hauptgebäude / Erdgeschoss", "", ""}));
    EXPECT_EQ(row(list, 6).mid(0, 7), (QStringList{"Klären", "I300", "A-I300", "Objekt I300", "", "E0.1, K0.1",
                                                   "Erdgeschoss, Keller"}));
    EXPECT_EQ(window->tabs->tabText(0), QStringLiteral("&Vorschläge (7)"));
    EXPECT_EQ(window->tabs->tabText(1), QStringLiteral("Ver&lauf (0)"));
    EXPECT_EQ(window->lbZaehler->text(), QStringLiteral("Standort ändern: 3 (0 angenommen, 0 abgelehnt, 3 offen); "
                                                        "Neu erfassen: 2 (0 angenommen, 0 abgelehnt, 2 offen); "
                                                        "Fehlt: 1 (0 angenommen, 0 abgelehnt, 1 offen); "
                                                        "Klären: 1 (0 angenommen, 0 abgelehnt, 1 offen)"));
    EXPECT_EQ(window->lbAngezeigt->text(), QStringLiteral("7 von 7 Vorschlägen angezeigt"));
    // Nothing selected: nothing to decide.
    EXPECT_FALSE(window->pbAnnehmen->isEnabled());
    EXPECT_FALSE(window->pbAblehnen->isEnabled());
    EXPECT_FALSE(window->pbOffen->isEnabled());
    EXPECT_EQ(list.selectionMode(), QAbstractItemView::ExtendedSelection);

    // A click on a heading sorts by it; a second click turns the order round.
    list.sortByColumn(korrcol::InvNr, Qt::AscendingOrder);
    EXPECT_EQ(column(list, korrcol::InvNr), (QStringList{"I100", "I101", "I102", "I300", "I500", "X1", "X2"}));
    list.sortByColumn(korrcol::Datum, Qt::DescendingOrder);
    EXPECT_EQ(column(list, korrcol::InvNr).mid(0, 2), (QStringList{"I100", "I300"}));
}

TEST_F(CorrectionListWindowTest, EachFilterKeepsItsRows)
{
    auto window = open();
    QTreeWidget& list = *window->lvVorschlaege;
    EXPECT_EQ(window->cbArt->itemText(0), QStringLiteral("(alle)"));
    EXPECT_EQ(window->cbArt->count(), 5);
    QStringList orders;
    for (int i = 0; i < window->cbAuftrag->count(); ++i)
        orders << window->cbAuftrag->itemText(i);
    EXPECT_EQ(orders, (QStringList{"(alle)", "Erdgeschoss", "Keller"}));
    EXPECT_EQ(window->cbGebaeudeteil->count(), 3);
    EXPECT_EQ(window->cbEntscheidung->count(), 5);

    choose(*window->cbArt, QStringLiteral("Neu erfassen"));
    EXPECT_EQ(column(list, korrcol::InvNr), (QStringList{"X1", "X2"}));
    EXPECT_EQ(window->lbAngezeigt->text(), QStringLiteral("2 von 7 Vorschlägen angezeigt"));
    EXPECT_EQ(window->tabs->tabText(0), QStringLiteral("&Vorschläge (2)"));
    window->cbArt->setCurrentIndex(0);
    EXPECT_EQ(list.topLevelItemCount(), 7);

    choose(*window->cbAuftrag, QStringLiteral("Keller"));
    EXPECT_EQ(column(list, korrcol::InvNr), (QStringList{"I100", "I102", "X2", "I300"}));
    window->cbAuftrag->setCurrentIndex(0);

    choose(*window->cbGebaeudeteil, QStringLiteral("Hauptgebäude / Keller"));
    EXPECT_EQ(column(list, korrcol::InvNr), (QStringList{"I100", "X2", "I300"}));
    window->cbGebaeudeteil->setCurrentIndex(0);

    window->txRaum->setText(QStringLiteral("e0.3"));
    EXPECT_EQ(column(list, korrcol::InvNr), (QStringList{"I101", "I500"}));
    window->txRaum->clear();

    select(list, {"I101"});
    window->decideSelected(kAbgelehnt);
    choose(*window->cbEntscheidung, QStringLiteral("abgelehnt"));
    EXPECT_EQ(column(list, korrcol::InvNr), (QStringList{"I101"}));
    choose(*window->cbEntscheidung, QStringLiteral("offen"));
    EXPECT_EQ(list.topLevelItemCount(), 6);

    // Together: what every filter keeps.
    choose(*window->cbArt, QStringLiteral("Standort ändern"));
    choose(*window->cbAuftrag, QStringLiteral("Keller"));
    EXPECT_EQ(column(list, korrcol::InvNr), (QStringList{"I100", "I102"}));
    EXPECT_EQ(window->filter().art, kArtStandort);
    EXPECT_EQ(window->filter().auftrag, "Keller");
    EXPECT_EQ(window->filter().entscheidung, kOffen);
}

TEST_F(CorrectionListWindowTest, SelectedRowsAreDecidedAtOnceWithTheComment)
{
    auto window = open();
    QTreeWidget& list = *window->lvVorschlaege;
    select(list, {"I100", "I101", "X1"});
    EXPECT_TRUE(window->pbAnnehmen->isEnabled());
    window->txKommentar->setText(QStringLiteral("  vor Ort geprüft "));
    window->pbAnnehmen->click();

    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(decisionOf(list, "I100"), QStringLiteral("angenommen"));
    EXPECT_EQ(decisionOf(list, "I101"), QStringLiteral("angenommen"));
    EXPECT_EQ(decisionOf(list, "X1"), QStringLiteral("angenommen"));
    EXPECT_EQ(decisionOf(list, "I102"), QStringLiteral("offen"));
    const QTreeWidgetItem* decided = itemOf(list, "I101");
    EXPECT_EQ(decided->text(korrcol::Kommentar), QStringLiteral("vor Ort geprüft"));
    EXPECT_EQ(decided->text(korrcol::Person), QString::fromStdString(correctionPerson()));
    EXPECT_FALSE(correctionPerson().empty());
    // The selection stays, the comment field is emptied for the next decision.
    EXPECT_EQ(list.selectedItems().size(), 3);
    EXPECT_TRUE(window->txKommentar->text().isEmpty());
    EXPECT_EQ(window->statusBar()->currentMessage(), QStringLiteral("3 Vorschläge angenommen."));
    EXPECT_EQ(window->lbZaehler->text(), QStringLiteral("Standort ändern: 3 (2 angenommen, 0 abgelehnt, 1 offen); "
                                                        "Neu erfassen: 2 (1 angenommen, 0 abgelehnt, 1 offen); "
                                                        "Fehlt: 1 (0 angenommen, 0 abgelehnt, 1 offen); "
                                                        "Klären: 1 (0 angenommen, 0 abgelehnt, 1 offen)"));

    select(list, {"I500"});
    window->pbAblehnen->click();
    EXPECT_EQ(decisionOf(list, "I500"), QStringLiteral("abgelehnt"));
    EXPECT_EQ(window->statusBar()->currentMessage(), QStringLiteral("1 Vorschlag abgelehnt."));
    select(list, {"I100"});
    window->pbOffen->click();
    EXPECT_EQ(decisionOf(list, "I100"), QStringLiteral("offen"));
    EXPECT_EQ(itemOf(list, "I100")->text(korrcol::Kommentar), QString());
    EXPECT_EQ(window->statusBar()->currentMessage(), QStringLiteral("1 Vorschlag wieder offen."));
    EXPECT_EQ(window->lbZaehler->text(), QStringLiteral("Standort ändern: 3 (1 angenommen, 0 abgelehnt, 2 offen); "
                                                        "Neu erfassen: 2 (1 angenommen, 0 abgelehnt, 1 offen); "
                                                        "Fehlt: 1 (0 angenommen, 1 abgelehnt, 0 offen); "
                                                        "Klären: 1 (0 angenommen, 0 abgelehnt, 1 offen)"));

    // The decisions last: a window opened anew shows them.
    window.reset();
    auto again = open();
    EXPECT_EQ(decisionOf(*again->lvVorschlaege, "I101"), QStringLiteral("angenommen"));
    EXPECT_EQ(decisionOf(*again->lvVorschlaege, "I500"), QStringLiteral("abgelehnt"));
    EXPECT_EQ(itemOf(*again->lvVorschlaege, "I101")->text(korrcol::Kommentar), QStringLiteral("vor Ort geprüft"));
}

TEST_F(CorrectionListWindowTest, AChangedProposalShowsItsOldDecisionAndAGoneOneIsInTheHistory)
{
    auto window = open();
    select(*window->lvVorschlaege, {"I101", "X2"});
    window->txKommentar->setText(QStringLiteral("umgestellt"));
    window->decideSelected(kAngenommen);

    // A new evaluation: I101 was found in another room, X2 turned out to be known after all.
    std::vector<Proposal> next = handProposals();
    next[1].raumNeu = "E0.4";
    next[1].beleg = "Erdgeschoss|E0.2|E0.4";
    next.erase(next.begin() + 4);
    window->showProposals(next);
    QTreeWidget& list = *window->lvVorschlaege;
    ASSERT_EQ(list.topLevelItemCount(), 6);
    const QTreeWidgetItem* changed = itemOf(list, "I101");
    EXPECT_EQ(changed->text(korrcol::Entscheidung), QStringLiteral("geändert – bitte prüfen"));
    EXPECT_EQ(changed->text(korrcol::Frueher), QStringLiteral("angenommen"));
    EXPECT_EQ(changed->text(korrcol::RaumNeu), QStringLiteral("E0.4"));
    EXPECT_EQ(changed->text(korrcol::Kommentar), QStringLiteral("umgestellt"));
    EXPECT_EQ(window->lbZaehler->text().left(60),
              QStringLiteral("Standort ändern: 3 (0 angenommen, 0 abgelehnt, 2 offen, 1 geändert)").left(60));
    choose(*window->cbEntscheidung, QStringLiteral("geändert – bitte prüfen"));
    EXPECT_EQ(column(list, korrcol::InvNr), (QStringList{"I101"}));

    // The history keeps the decision whose proposal disappeared.
    EXPECT_EQ(window->tabs->tabText(1), QStringLiteral("Ver&lauf (1)"));
    QTreeWidget& history = *window->lvVerlauf;
    ASSERT_EQ(history.topLevelItemCount(), 1);
    EXPECT_EQ(row(history, 0).mid(0, 5), (QStringList{"Neu erfassen", "X2", "angenommen", "umgestellt",
                                                      QString::fromStdString(correctionPerson())}));
    QStringList headings;
    for (int c = 0; c < history.columnCount(); ++c)
        headings << history.headerItem()->text(c);
    EXPECT_EQ(headings, (QStringList{"Art", "Inventar-Nr.", "Entscheidung", "Kommentar", "Person", "Zeit", "Beleg"}));

    // Decided anew, the proposal is no longer marked.
    window->cbEntscheidung->setCurrentIndex(0);
    select(list, {"I101"});
    window->decideSelected(kAbgelehnt);
    EXPECT_EQ(decisionOf(list, "I101"), QStringLiteral("abgelehnt"));
    EXPECT_EQ(itemOf(list, "I101")->text(korrcol::Frueher), QString());
}

TEST_F(CorrectionListWindowTest, AReadOnlyProgramMayOnlyLook)
{
    {
        auto writer = open();
        select(*writer->lvVorschlaege, {"I100"});
        writer->decideSelected(kAngenommen);
    }
    const std::string before = readFile(correctionsPath(settings));
    auto window = open(true);
    EXPECT_TRUE(window->readOnly());
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(decisionOf(*window->lvVorschlaege, "I100"), QStringLiteral("angenommen"));
    select(*window->lvVorschlaege, {"I100", "I101"});
    EXPECT_FALSE(window->pbAnnehmen->isEnabled());
    EXPECT_FALSE(window->pbAblehnen->isEnabled());
    EXPECT_FALSE(window->pbOffen->isEnabled());
    EXPECT_FALSE(window->txKommentar->isEnabled());
    EXPECT_EQ(window->statusBar()->currentMessage(),
              QStringLiteral("Das Projekt ist nur zum Lesen geöffnet: Entscheidungen der Korrekturliste können nicht "
                             "geändert werden. Das Projekt wird bereits von mmuster auf PC7 bearbeitet."));
    window->decideSelected(kAbgelehnt);
    EXPECT_EQ(decisionOf(*window->lvVorschlaege, "I101"), QStringLiteral("offen"));
    EXPECT_EQ(readFile(correctionsPath(settings)), before);
    // The filters and the sort still serve the looking.
    choose(*window->cbEntscheidung, QStringLiteral("angenommen"));
    EXPECT_EQ(column(*window->lvVorschlaege, korrcol::InvNr), (QStringList{"I100"}));
}

TEST_F(CorrectionListWindowTest, AReadOnlyProgramWithoutDecisionsMakesNoFile)
{
    auto window = open(true);
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(window->lvVorschlaege->topLevelItemCount(), 7);
    EXPECT_EQ(decisionOf(*window->lvVorschlaege, "I100"), QStringLiteral("offen"));
    EXPECT_TRUE(sortedNames(dir.path()).empty());
}

TEST_F(CorrectionListWindowTest, EveryControlIsReachedByTabAndTheRoadWorksByKeyboardAlone)
{
    auto window = open();
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));

    // Tab goes round every control of the window, each once.
    window->cbArt->setFocus();
    std::vector<QWidget*> reached{QApplication::focusWidget()};
    for (int i = 0; i < 30; ++i) {
        key(*window, Qt::Key_Tab);
        QWidget* now = QApplication::focusWidget();
        if (now == reached.front())
            break;
        reached.push_back(now);
    }

    const std::vector<QWidget*> expected{window->cbArt,        window->cbAuftrag,   window->cbGebaeudeteil,
                                         window->txRaum,       window->cbEntscheidung};
    ASSERT_GE(reached.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(reached[i], expected[i]) << i;
    for (QWidget* w : {static_cast<QWidget*>(window->lvVorschlaege), static_cast<QWidget*>(window->txKommentar),
                       static_cast<QWidget*>(window->pbSchliessen)})
        EXPECT_NE(std::find(reached.begin(), reached.end(), w), reached.end()) << w->objectName().toStdString();
    const auto at = [&](QWidget* w) { return std::find(reached.begin(), reached.end(), w) - reached.begin(); };
    EXPECT_LT(at(window->lvVorschlaege), at(window->txKommentar));

    // From the filters by Tab into the list, the first two rows selected by the arrow keys.
    window->cbEntscheidung->setFocus();
    while (QApplication::focusWidget() != window->lvVorschlaege && QApplication::focusWidget() != window->cbArt)
        key(*window, Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), window->lvVorschlaege);
    key(*window, Qt::Key_Home);
    key(*window, Qt::Key_Down, Qt::ShiftModifier);
    ASSERT_EQ(window->lvVorschlaege->selectedItems().size(), 2);

    // The return key in the list decides nothing.
    key(*window, Qt::Key_Return);
    key(*window, Qt::Key_Enter);
    EXPECT_EQ(decisionOf(*window->lvVorschlaege, "I100"), QStringLiteral("offen"));
    EXPECT_EQ(decisionOf(*window->lvVorschlaege, "I101"), QStringLiteral("offen"));

    // Alt+K to the comment, Alt+A accepts the two rows with it.
    QTest::keyClick(window.get(), Qt::Key_K, Qt::AltModifier);
    ASSERT_EQ(QApplication::focusWidget(), window->txKommentar);
    QTest::keyClicks(window->txKommentar, QStringLiteral("gesehen"));
    QTest::keyClick(window.get(), Qt::Key_A, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return decisionOf(*window->lvVorschlaege, "I100") == "angenommen"; }));
    EXPECT_EQ(decisionOf(*window->lvVorschlaege, "I101"), QStringLiteral("angenommen"));
    EXPECT_EQ(itemOf(*window->lvVorschlaege, "I101")->text(korrcol::Kommentar), QStringLiteral("gesehen"));
    EXPECT_EQ(decisionOf(*window->lvVorschlaege, "I102"), QStringLiteral("offen"));
    // The keyboard is back in the list, the rows still selected.
    EXPECT_EQ(QApplication::focusWidget(), window->lvVorschlaege);
    EXPECT_EQ(window->lvVorschlaege->selectedItems().size(), 2);

    // Alt+B rejects them, Alt+O leaves them open again.
    QTest::keyClick(window.get(), Qt::Key_B, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return decisionOf(*window->lvVorschlaege, "I100") == "abgelehnt"; }));
    QTest::keyClick(window.get(), Qt::Key_O, Qt::AltModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return decisionOf(*window->lvVorschlaege, "I100") == "offen"; }));

    // Alt+T to the kind's filter; the arrow key takes the next kind.
    QTest::keyClick(window.get(), Qt::Key_T, Qt::AltModifier);
    ASSERT_EQ(QApplication::focusWidget(), window->cbArt);
    key(*window, Qt::Key_Down);
    EXPECT_EQ(window->cbArt->currentText(), QStringLiteral("Standort ändern"));
    EXPECT_EQ(window->lvVorschlaege->topLevelItemCount(), 3);

    // Alt+L shows the history, Alt+V the proposals again.
    QTest::keyClick(window.get(), Qt::Key_L, Qt::AltModifier);
    EXPECT_EQ(window->tabs->currentIndex(), 1);
    QTest::keyClick(window.get(), Qt::Key_V, Qt::AltModifier);
    EXPECT_EQ(window->tabs->currentIndex(), 0);
}

TEST_F(CorrectionListWindowTest, TheAcceptedProposalsAreWrittenForQuarn)
{
    auto window = open();
    EXPECT_EQ(window->pbExcel->text(), QStringLiteral("E&xcel…"));
    EXPECT_EQ(window->pbCsv->text(), QStringLiteral("&CSV…"));
    select(*window->lvVorschlaege, {"I100", "X1"});
    window->decideSelected(kAngenommen);

    // The dialog cancelled: nothing written.
    window->pbExcel->click();
    ASSERT_EQ(ui.saveRequests.size(), 1u);
    EXPECT_EQ(ui.saveRequests[0].title, "Korrekturen für Quarn speichern");
    EXPECT_EQ(ui.saveRequests[0].fileName, "Korrekturen.xlsx");
    EXPECT_EQ(ui.saveRequests[0].filter, "Excel-Arbeitsmappe (*.xlsx)|*.xlsx");
    EXPECT_EQ(sortedNames(dir.path()), (std::vector<std::string>{kCorrectionsFile}));

    TempDir out;
    ui.saveChoices.push_back(out.file("Korrekturen.xlsx"));
    window->pbExcel->click();
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, exportedText({out.file("Korrekturen.xlsx")}));
    EXPECT_EQ(ui.messages[0].title, "Korrekturliste");
    EXPECT_TRUE(fileExists(out.file("Korrekturen.xlsx")));
    EXPECT_EQ(window->statusBar()->currentMessage(), QStringLiteral("1 Datei gespeichert."));

    ui.saveChoices.push_back(out.file("Korrekturen_Standort.csv"));
    window->pbCsv->click();
    ASSERT_EQ(ui.messages.size(), 2u);
    EXPECT_EQ(ui.saveRequests.back().filter, "CSV-Datei, Semikolon getrennt (*.csv)|*.csv");
    EXPECT_EQ(window->statusBar()->currentMessage(), QStringLiteral("4 Dateien gespeichert."));
    // The accepted move is in its file, the open one is not.
    const std::string moves = readFile(out.file("Korrekturen_Standort.csv"));
    EXPECT_NE(moves.find("I100"), std::string::npos);
    EXPECT_EQ(moves.find("I101"), std::string::npos);
    EXPECT_NE(readFile(out.file("Korrekturen_Neu.csv")).find("X1"), std::string::npos);

    // The protocol needs a project result: without one its button is out of use.
    EXPECT_FALSE(window->pbProtokoll->isEnabled());
    EXPECT_EQ(window->pbProtokoll->text(), QStringLiteral("Inventur&protokoll…"));
}

TEST_F(CorrectionListWindowTest, TheHistoryTabDecidesNothing)
{
    auto window = open();
    select(*window->lvVorschlaege, {"I100"});
    EXPECT_TRUE(window->pbAnnehmen->isEnabled());
    window->tabs->setCurrentIndex(1);
    EXPECT_FALSE(window->pbAnnehmen->isEnabled());
    EXPECT_FALSE(window->pbAblehnen->isEnabled());
    window->tabs->setCurrentIndex(0);
    EXPECT_TRUE(window->pbAnnehmen->isEnabled());
}

TEST_F(CorrectionListWindowTest, EveryMnemonicIsUsedOnce)
{
    auto window = open();
    std::multimap<QChar, QString> marks;
    const auto add = [&](const QString& text) {
        const qsizetype at = text.indexOf(QLatin1Char('&'));
        if (at >= 0 && at + 1 < text.size())
            marks.emplace(text.at(at + 1).toLower(), text);
    };
    for (const QAbstractButton* b : window->findChildren<QAbstractButton*>())
        add(b->text());
    for (const QLabel* l : window->findChildren<QLabel*>())
        add(l->text());
    for (int i = 0; i < window->tabs->count(); ++i)
        add(window->tabs->tabText(i));
    for (const auto& [mark, text] : marks)
        EXPECT_EQ(marks.count(mark), 1u) << text.toStdString();
    EXPECT_GE(marks.size(), 14u);
}

TEST_F(CorrectionListWindowTest, Screenshot)
{
    auto window = open();
    select(*window->lvVorschlaege, {"I100", "X1", "X2"});
    window->txKommentar->setText(QStringLiteral("vor Ort geprüft"));
    window->decideSelected(kAngenommen);
    select(*window->lvVorschlaege, {"I500"});
    window->decideSelected(kAbgelehnt);
    std::vector<Proposal> next = handProposals();
    next[1].raumNeu = "E0.4";
    next[1].beleg = "changed";
    window->showProposals(next);
    select(*window->lvVorschlaege, {"I101"});
    window->decideSelected(kAngenommen);
    next[1].beleg = "changed again";
    next.erase(next.begin() + 4);
    window->showProposals(next);
    window->resize(1280, 560);
    window->show();
    expectOnScreen(*window, QStringLiteral("korrekturliste"),
                   {QStringLiteral("Ar&t:"), QStringLiteral("&Annehmen"), QStringLiteral("A&blehnen"),
                    QStringLiteral("Standort ändern"), QStringLiteral("geändert – bitte prüfen")});
    window->tabs->setCurrentIndex(1);
    expectOnScreen(*window, QStringLiteral("korrekturliste-verlauf"), {QStringLiteral("X2")});

    auto readOnly = open(true);
    readOnly->resize(1280, 560);
    readOnly->show();
    expectOnScreen(*readOnly, QStringLiteral("korrekturliste-nur-lesen"), {QStringLiteral("&Annehmen")});
}

// ------------------------------------------------------------------ opened from the project overview

/// A result with a move between orders, as the overview shows it.
std::unique_ptr<Database> overviewResult()
{
    auto db = Database::inMemory();
    createProjectResultSchema(*db);
    db->execute("INSERT INTO P_Auftrag (lAuftragID, stAuftrag, stStand, iRaeume, iRaeumeN, iRaeumeE, iRaeumeL, "
                "iDateien, iScans, iErwartet, iAmPlatz, i1, i3b, dProzent, dRaeumeFertig, stLetzterScan) VALUES "
                "(1, 'Erdgeschoss', 'aktuell', 1, 0, 1, 0, 1, 2, 2, 1, 1, 1, 50.0, 100, '2026-11-03 14:05:09')");
    return db;
}

TEST_F(CorrectionListWindowTest, TheOverviewOpensItOverItsResult)
{
    ProjectOverviewWindow overview(ui, [](const OverviewOptions&) { return overviewResult(); });
    overview.setSettings(settings);
    EXPECT_EQ(overview.pbKorrekturliste->text(), QStringLiteral("&Korrekturliste…"));
    EXPECT_EQ(overview.mnuKorrekturliste->text(), QStringLiteral("&Korrekturliste…"));
    EXPECT_FALSE(overview.pbKorrekturliste->isEnabled());
    EXPECT_FALSE(overview.mnuKorrekturliste->isEnabled());
    overview.openCorrectionList();
    EXPECT_EQ(overview.correctionList(), nullptr);

    std::shared_ptr<Database> result = overviewResult();
    overview.showResult(result);
    EXPECT_TRUE(overview.pbKorrekturliste->isEnabled());
    EXPECT_TRUE(overview.mnuKorrekturliste->isEnabled());
    overview.pbKorrekturliste->click();
    CorrectionListWindow* list = overview.correctionList();
    ASSERT_NE(list, nullptr);
    EXPECT_TRUE(list->isVisible());
    EXPECT_FALSE(list->readOnly());
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(list->rows().size(), makeProposals(*result).size());
    EXPECT_EQ(list->lvVorschlaege->topLevelItemCount(), int(makeProposals(*result).size()));
    EXPECT_TRUE(list->pbProtokoll->isEnabled());
    // Opened again, it is the same window; a new result of the overview is shown in it too.
    overview.mnuKorrekturliste->trigger();
    EXPECT_EQ(overview.correctionList(), list);
    overview.showResult(overviewResult());
    EXPECT_EQ(overview.correctionList(), list);
    list->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(overview.correctionList(), nullptr);

    // A program that may only look opens the decisions read-only.
    Settings readOnly = settings;
    readOnly.readOnly = true;
    overview.setSettings(readOnly);
    overview.openCorrectionList();
    ASSERT_NE(overview.correctionList(), nullptr);
    EXPECT_TRUE(overview.correctionList()->readOnly());
    overview.correctionList()->close();
}

} // namespace
} // namespace qi::test
