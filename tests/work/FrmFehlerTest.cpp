// The conflict dialog "Fehler", offscreen.

#include "frmFehler.h"

#include "QtUserInteraction.h"

#include <gtest/gtest.h>

#include <functional>

#include "TestSupport.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGroupBox>
#include <QLabel>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QKeyEvent>
#include <QRadioButton>
#include <QTimer>

namespace qi {
namespace {

QApplication& app() { return test::qtApplication(); }

ConflictInfo sample()
{
    return {"INV-7", "ART-1", "Bürostuhl", "1", "erste.dat", "01.02.2015", "2", "zweite.dat", "02.02.2015"};
}

QString text(const frmFehler& f, const char* name)
{
    const auto* l = f.findChild<QLabel*>(QString::fromLatin1(name));
    return l ? l->text() : QStringLiteral("<fehlt>");
}

/// Escape pressed in the dialog.
void escape(QWidget& w)
{
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(&w, &press);
}

class FrmFehlerTest : public ::testing::Test {
protected:
    void SetUp() override { app(); }
};

TEST_F(FrmFehlerTest, CaptionAndLabels)
{
    frmFehler f;
    f.setInfo(sample());
    EXPECT_EQ(f.windowTitle(), QStringLiteral("Fehler"));
    EXPECT_EQ(text(f, "lbMessage"), QStringLiteral("Bitte zwischen beiden Räumen entscheiden !"));
    EXPECT_EQ(text(f, "Label1"), QStringLiteral("Inventarnummer"));
    EXPECT_EQ(text(f, "Label2"), QStringLiteral("Artikelnummer"));
    EXPECT_EQ(text(f, "Label4"), QStringLiteral("Artikelbezeichnung"));
    EXPECT_EQ(text(f, "Label10"), QStringLiteral("Erstes Auftreten:"));
    EXPECT_EQ(text(f, "Label11"), QStringLiteral("Zweites Auftreten:"));
    EXPECT_EQ(text(f, "Label3"), QStringLiteral("Raum"));
    EXPECT_EQ(text(f, "Label5"), QStringLiteral("Datei"));
    EXPECT_EQ(text(f, "Label12"), QStringLiteral("Datum"));
    EXPECT_EQ(text(f, "lbInvNr"), QStringLiteral("INV-7"));
    EXPECT_EQ(text(f, "lbArtNr"), QStringLiteral("ART-1"));
    EXPECT_EQ(text(f, "lbArtName"), QStringLiteral("Bürostuhl"));
    EXPECT_EQ(text(f, "lbRNrAlt"), QStringLiteral("1"));
    EXPECT_EQ(text(f, "lbDatAlt"), QStringLiteral("erste.dat"));
    EXPECT_EQ(text(f, "lbDatumAlt"), QStringLiteral("01.02.2015"));
    EXPECT_EQ(text(f, "lbRNrNeu"), QStringLiteral("2"));
    EXPECT_EQ(text(f, "lbDatNeu"), QStringLiteral("zweite.dat"));
    EXPECT_EQ(text(f, "lbDatumNeu"), QStringLiteral("02.02.2015"));
    EXPECT_EQ(f.pbOk->text(), QStringLiteral("&OK"));
    EXPECT_EQ(f.Timer1->interval(), 500);
    EXPECT_EQ(f.opBehalten->parentWidget(), f.Frame2);
    EXPECT_EQ(f.opVerwerfen->parentWidget(), f.Frame2);
}

TEST_F(FrmFehlerTest, OkStaysDisabledWithoutAChoice)
{
    frmFehler f;
    f.opVerwerfen->setChecked(true);
    f.show();
    EXPECT_FALSE(f.opBehalten->isChecked());
    EXPECT_FALSE(f.opVerwerfen->isChecked());
    EXPECT_FALSE(f.pbOk->isEnabled());
    EXPECT_TRUE(f.Timer1->isActive());
    f.pbOk->click(); // a disabled button does nothing
    EXPECT_TRUE(f.isVisible());
    f.opVerwerfen->click();
    EXPECT_TRUE(f.pbOk->isEnabled());
    f.close();
}

TEST_F(FrmFehlerTest, VerwerfenThenBehaltenThenOkKeepsTheFirst)
{
    frmFehler f;
    f.show();
    f.opVerwerfen->click();
    f.opBehalten->click();
    f.pbOk->click();
    EXPECT_FALSE(f.bVerwerfen);
    EXPECT_FALSE(f.isVisible());
    EXPECT_EQ(f.result(), QDialog::Accepted);
}

TEST_F(FrmFehlerTest, VerwerfenThenOkDiscardsTheFirst)
{
    frmFehler f;
    f.show();
    f.opVerwerfen->click();
    f.pbOk->click();
    EXPECT_TRUE(f.bVerwerfen);
}

TEST_F(FrmFehlerTest, NeitherTheCloseButtonNorEscapeDecides)
{
    frmFehler f;
    f.show();
    QCloseEvent close;
    QApplication::sendEvent(&f, &close);
    EXPECT_TRUE(f.isVisible());
    escape(f);
    EXPECT_TRUE(f.isVisible());
    f.close();
    EXPECT_TRUE(f.isVisible());
    // A choice made, still only OK ends the dialog.
    f.opVerwerfen->click();
    escape(f);
    f.close();
    EXPECT_TRUE(f.isVisible());
    EXPECT_FALSE(f.bVerwerfen);
    f.pbOk->click();
    EXPECT_FALSE(f.isVisible());
    EXPECT_TRUE(f.bVerwerfen);
    EXPECT_EQ(f.result(), QDialog::Accepted);
}

TEST_F(FrmFehlerTest, TheModalDialogWaitsForAChoiceAndOk)
{
    QtUserInteraction ui;
    installFrmFehler(ui);
    int tries = 0;
    std::function<void()> step = [&] {
        frmFehler* f = qobject_cast<frmFehler*>(QApplication::activeModalWidget());
        if (!f) {
            QTimer::singleShot(0, step);
            return;
        }
        ++tries;
        if (tries == 1) {
            f->close();
            escape(*f);
            f->reject();
        } else {
            f->opVerwerfen->click();
            f->pbOk->click();
            return;
        }
        QTimer::singleShot(0, step);
    };
    QTimer::singleShot(0, step);
    EXPECT_TRUE(ui.resolveConflict(sample()));
    EXPECT_EQ(tries, 2);
}

TEST_F(FrmFehlerTest, TimerStopsOnceAChoiceIsMade)
{
    frmFehler f;
    f.show();
    f.opBehalten->click();
    QTimer::singleShot(700, &f, [&] { f.pbOk->click(); });
    while (f.isVisible())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_FALSE(f.Timer1->isActive());
}

TEST_F(FrmFehlerTest, OptionButtonsSitBesideTheirRowsAndSayWhatTheyDo)
{
    frmFehler f;
    f.setInfo(sample());
    f.show();
    QApplication::processEvents();
    const auto band = [&](QWidget* w) {
        const QPoint top = w->mapTo(&f, QPoint(0, 0));
        return std::pair{top.y(), top.y() + w->height()};
    };
    const auto centre = [&](QWidget* w) { return w->mapTo(&f, QPoint(0, w->height() / 2)).y(); };
    const auto [altTop, altBottom] = band(f.lbRNrAlt);
    const auto [neuTop, neuBottom] = band(f.lbRNrNeu);
    // Each option on the height of its row, to the right of the row's values.
    EXPECT_GE(centre(f.opBehalten), altTop);
    EXPECT_LE(centre(f.opBehalten), altBottom);
    EXPECT_GE(centre(f.opVerwerfen), neuTop);
    EXPECT_LE(centre(f.opVerwerfen), neuBottom);
    EXPECT_GT(f.opBehalten->mapTo(&f, QPoint(0, 0)).x(), f.lbDatumAlt->mapTo(&f, QPoint(0, 0)).x());
    EXPECT_GT(f.opVerwerfen->mapTo(&f, QPoint(0, 0)).x(), f.lbDatumNeu->mapTo(&f, QPoint(0, 0)).x());
    // They say what they do.
    EXPECT_EQ(f.opBehalten->accessibleName(), QStringLiteral("Erstes Auftreten behalten"));
    EXPECT_EQ(f.opVerwerfen->accessibleName(), QStringLiteral("Zweites Auftreten übernehmen"));
    EXPECT_TRUE(f.opBehalten->toolTip().contains(QStringLiteral("erste Auftreten behalten")));
    EXPECT_TRUE(f.opVerwerfen->toolTip().contains(QStringLiteral("zweite Auftreten übernehmen")));
    EXPECT_EQ(f.opBehalten->text(), QStringLiteral("&behalten"));
    EXPECT_EQ(f.opVerwerfen->text(), QStringLiteral("&übernehmen"));
    // The frame holds the two occurrences.
    EXPECT_EQ(f.lbRNrAlt->parentWidget(), f.Frame2);
    EXPECT_EQ(f.Label10->parentWidget(), f.Frame2);
}

TEST_F(FrmFehlerTest, QtUserInteractionShowsThePluggedDialog)
{
    QtUserInteraction ui;
    EXPECT_FALSE(ui.resolveConflict(sample())); // nothing plugged in: the first scan is kept
    installFrmFehler(ui);
    QString shownInvNr;
    QTimer::singleShot(0, [&] {
        for (QWidget* w : QApplication::topLevelWidgets())
            if (auto* f = qobject_cast<frmFehler*>(w); f && f->isVisible()) {
                shownInvNr = f->lbInvNr->text();
                f->opVerwerfen->click();
                f->pbOk->click();
            }
    });
    EXPECT_TRUE(ui.resolveConflict(sample()));
    EXPECT_EQ(shownInvNr, QStringLiteral("INV-7"));
}

TEST_F(FrmFehlerTest, QtProgressShowsTheFileAndGoesAwayAtTheEnd)
{
    QtUserInteraction ui;
    ui.beginProgress("Scannerdaten werden eingelesen");
    ui.beginProgress("innen"); // nested: the outer dialog stays
    ui.reportProgress("scan1.dat", 1000);
    QProgressDialog* shown = nullptr;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* p = qobject_cast<QProgressDialog*>(w); p && p->isVisible())
            shown = p;
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(shown->windowTitle(), QStringLiteral("Scannerdaten werden eingelesen"));
    EXPECT_TRUE(shown->labelText().contains(QStringLiteral("scan1.dat")));
    EXPECT_TRUE(shown->labelText().contains(QStringLiteral("1000")));
    ui.endProgress();
    ui.endProgress();
    ui.endProgress(); // one end too many does no harm
    for (QWidget* w : QApplication::topLevelWidgets())
        EXPECT_EQ(qobject_cast<QProgressDialog*>(w), nullptr);
}

TEST_F(FrmFehlerTest, QtProgressNeverShowsItselfAndStepsAsideForAQuestion)
{
    QtUserInteraction ui;
    ui.beginProgress("Auswertung");
    QProgressDialog* progress = nullptr;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* p = qobject_cast<QProgressDialog*>(w))
            progress = p;
    ASSERT_NE(progress, nullptr);
    EXPECT_FALSE(progress->isVisible());
    // No timer of its own that would show it after a while.
    for (const QTimer* t : progress->findChildren<QTimer*>())
        EXPECT_FALSE(t->isActive());
    ui.reportStep("Sollbestand der Räume", 1, 3);
    ASSERT_TRUE(progress->isVisible());

    bool asideDuringQuestion = false;
    bool questionInFront = false;
    QTimer::singleShot(0, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        questionInFront = box != nullptr;
        asideDuringQuestion = !progress->isVisible();
        if (box)
            box->buttons().first()->click();
    });
    ui.messageBox("Warnung", MsgButtons::Ok, MsgIcon::Exclamation, "Quarn-Inventur");
    EXPECT_TRUE(questionInFront);
    EXPECT_TRUE(asideDuringQuestion);
    EXPECT_TRUE(progress->isVisible()); // back after the answer
    ui.endProgress();
}

} // namespace
} // namespace qi
