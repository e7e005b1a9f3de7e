#include "QtUserInteraction.h"
#include "ScriptedUserInteraction.h"

#include <gtest/gtest.h>

#include "TestSupport.h"

#include <QApplication>
#include <QAbstractButton>
#include <QDialog>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

using namespace qi;

TEST(UserInteraction, CommonErrorMessage)
{
    ScriptedUserInteraction ui;
    ui.showError("frmWork.GetDataFromDat", "Überlauf");
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "frmWork.GetDataFromDat\r\nÜberlauf");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(ui.messages[0].buttons, MsgButtons::Ok);
    EXPECT_EQ(ui.messages[0].title, "QInventur");
}

TEST(UserInteraction, ScriptedAnswers)
{
    ScriptedUserInteraction ui;
    ui.answers = {MsgResult::No};
    EXPECT_FALSE(ui.askYesNo("Räume speichern?", "QInventur"));
    EXPECT_TRUE(ui.askYesNo("Noch einmal?", "QInventur")); // unscripted: first button
    EXPECT_EQ(ui.messages[0].buttons, MsgButtons::YesNo);
    EXPECT_FALSE(ui.openFile({}).has_value());
    ui.fileChoices = {std::string("/tmp/a.dat")};
    EXPECT_EQ(ui.openFile({}).value(), "/tmp/a.dat");
    ui.setBusy(true);
    ui.setBusy(false);
    EXPECT_EQ(ui.busyChanges, (std::vector<bool>{true, false}));
}

TEST(UserInteraction, ScriptedConflictsTakeTheirAnswersThenTheDefault)
{
    ScriptedUserInteraction ui;
    ConflictInfo info;
    info.stInvNr = "4711";
    EXPECT_FALSE(ui.resolveConflict(info)); // no script: the first scan is kept
    ui.conflictAnswers = {true, false};
    ui.conflictDefault = true;
    EXPECT_TRUE(ui.resolveConflict(info));
    EXPECT_FALSE(ui.resolveConflict(info));
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(ui.resolveConflict(info)) << i;
    ui.conflictDefault = false;
    EXPECT_FALSE(ui.resolveConflict(info));
    ASSERT_EQ(ui.conflicts.size(), 7u);
    EXPECT_EQ(ui.conflicts[6].stInvNr, "4711");
}

TEST(QtUserInteraction, FileFilterTakesEveryFileForStarDotStar)
{
    const QStringList f = qtNameFilters("Alle Dateien (*.*)|*.*|Scannerdaten (*.dat)|*.dat");
    ASSERT_EQ(f.size(), 2);
    EXPECT_EQ(f[0], QStringLiteral("Alle Dateien (*)"));
    EXPECT_EQ(f[1], QStringLiteral("Scannerdaten (*.dat)"));
    EXPECT_EQ(qtNameFilters("Texte|*.txt"), QStringList{QStringLiteral("Texte (*.txt)")});
}

TEST(QtUserInteraction, DialogsOpenOverTheModalDialogInFront)
{
    test::qtApplication();
    QWidget main;
    QtUserInteraction ui(&main);
    EXPECT_EQ(ui.dialogParent(), &main); // nothing of the program is active
    QDialog dialog(&main);
    dialog.setModal(true);
    dialog.show();
    EXPECT_EQ(ui.dialogParent(), &dialog);
    dialog.hide();
    EXPECT_EQ(ui.dialogParent(), &main);
}

TEST(QtUserInteraction, DialogsStayOverTheWindowInUseWhileNoWindowIsActive)
{
    test::qtApplication();
    QWidget main;
    main.show();
    QWidget work(&main, Qt::Window);
    work.show();
    work.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&work));
    QtUserInteraction ui(&main);
    EXPECT_EQ(ui.dialogParent(), &work); // the command's first dialog, asked for from the active window

    // A dialog of the command came and went; no window of the program is active yet.
    {
        QDialog question(&work);
        question.show();
        question.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&question));
        question.hide();
    }
    QApplication::processEvents();
    ASSERT_EQ(QApplication::activeWindow(), nullptr);
    EXPECT_EQ(ui.dialogParent(), &work);

    // Once the window is gone the owner given takes the dialogs again.
    work.hide();
    EXPECT_EQ(ui.dialogParent(), &main);
}

namespace {

/// Presses the button of the message box in front whose text is `text`, once the box is shown;
/// the box's texts are kept in `shown` (its text, then its buttons).
void pressWhenShown(const QString& text, QStringList& shown)
{
    QTimer::singleShot(0, [text, &shown] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box)
            return pressWhenShown(text, shown);
        shown << box->text();
        for (QAbstractButton* button : box->buttons())
            shown << button->text();
        for (QAbstractButton* button : box->buttons())
            if (button->text() == text)
                return button->click();
    });
}

} // namespace

TEST(QtUserInteraction, ChoiceAnswersTheButtonPressedAndNothingForCancel)
{
    test::qtApplication();
    QtUserInteraction ui;
    const std::vector<std::string> choices = {"Projektordner wählen …", "Demoprojekt öffnen"};
    QStringList shown;
    pressWhenShown(QStringLiteral("Demoprojekt öffnen"), shown);
    EXPECT_EQ(ui.askChoice("Welches?", "QInventur", MsgIcon::Question, choices), std::optional<int>(1));
    EXPECT_EQ(shown, (QStringList{QStringLiteral("Welches?"), QStringLiteral("Projektordner wählen …"),
                                  QStringLiteral("Demoprojekt öffnen"), QStringLiteral("Abbrechen")}));
    shown.clear();
    pressWhenShown(QStringLiteral("Projektordner wählen …"), shown);
    EXPECT_EQ(ui.askChoice("Welches?", "QInventur", MsgIcon::Question, choices), std::optional<int>(0));
    shown.clear();
    pressWhenShown(QStringLiteral("Abbrechen"), shown);
    EXPECT_EQ(ui.askChoice("Welches?", "QInventur", MsgIcon::Question, choices), std::nullopt);
}

TEST(UserInteraction, ScriptedChoicesAndFoldersAreRecordedAndCancelledWithoutAnswer)
{
    ScriptedUserInteraction ui;
    ui.choiceAnswers = {1};
    ui.folderChoices = {std::string("/tmp/Projekt")};
    EXPECT_EQ(ui.askChoice("Frage", "Titel", MsgIcon::Question, {"A", "B"}), std::optional<int>(1));
    EXPECT_EQ(ui.askChoice("Frage", "Titel", MsgIcon::Question, {"A", "B"}), std::nullopt);
    EXPECT_EQ(ui.chooseFolder("Ordner", "/tmp"), std::optional<std::string>("/tmp/Projekt"));
    EXPECT_EQ(ui.chooseFolder("Ordner", "/tmp"), std::nullopt);
    ASSERT_EQ(ui.choiceQuestions.size(), 2u);
    EXPECT_EQ(ui.choiceQuestions[0].first.text, "Frage");
    EXPECT_EQ(ui.choiceQuestions[0].second, (std::vector<std::string>{"A", "B"}));
    EXPECT_EQ(ui.folderTitles, (std::vector<std::string>{"Ordner", "Ordner"}));
}
