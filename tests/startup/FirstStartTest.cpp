// The first start of an installed program on which no "Quarn.ini" names a project: the
// question, the folder dialog, the demo project's copy and the user's "Quarn.ini".

#include "FileSystem.h"
#include "FirstStart.h"
#include "ScriptedUserInteraction.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace qi {
namespace {

namespace fs = std::filesystem;
using test::TempDir;
using test::readFile;
using test::writeFile;

class FirstStartTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        folders = ProgramFolders{dir.file("Installation"), dir.file("Nutzer")};
        fs::create_directories(folders.installation + "/Demo/Inventur");
        fs::create_directories(folders.own);
        writeFile(folders.installation + "/Quarn.ini", "[Quarn]\r\nProjekt=\r\n");
        writeFile(folders.installation + "/Demo/Projekt.ini", "[Inventur]\r\nModul=INVENTAR\r\n");
        writeFile(folders.installation + "/Demo/QGebaeude.mdb", "Gebäude");
        writeFile(folders.installation + "/Demo/Inventur/Alt.mdb", "Auftrag");
    }

    std::string userIni() const { return folders.own + "/Quarn.ini"; }
    std::string userDemo() const { return folders.own + "/Demo"; }

    void expectQuestion(std::size_t index, bool withDemo = true)
    {
        ASSERT_LT(index, ui.choiceQuestions.size());
        const auto& [message, choices] = ui.choiceQuestions[index];
        EXPECT_EQ(message.text, withDemo ? "Es ist noch kein Projekt eingestellt. Wählen Sie einen Projektordner "
                                           "oder öffnen Sie das Demoprojekt."
                                         : "Es ist noch kein Projekt eingestellt. Wählen Sie einen Projektordner.");
        EXPECT_EQ(message.title, "QInventur");
        EXPECT_EQ(message.icon, MsgIcon::Question);
        const std::vector<std::string> expected =
            withDemo ? std::vector<std::string>{"Projektordner wählen …", "Demoprojekt öffnen"}
                     : std::vector<std::string>{"Projektordner wählen …"};
        EXPECT_EQ(choices, expected);
    }

    TempDir dir;
    ProgramFolders folders;
    ScriptedUserInteraction ui;
};

TEST_F(FirstStartTest, CancelEndsWithoutWritingAnything)
{
    ASSERT_TRUE(needsProjectChoice(folders));
    ui.choiceAnswers = {std::nullopt};
    EXPECT_FALSE(chooseFirstProject(folders, ui));
    expectQuestion(0);
    EXPECT_EQ(ui.choiceQuestions.size(), 1u);
    EXPECT_TRUE(ui.folderTitles.empty());
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_TRUE(fs::is_empty(folders.own));
    EXPECT_TRUE(needsProjectChoice(folders));
}

TEST_F(FirstStartTest, DemoProjectIsCopiedOnceAndNamedInTheUsersQuarnIni)
{
    ui.choiceAnswers = {1};
    EXPECT_TRUE(chooseFirstProject(folders, ui));
    expectQuestion(0);
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(readFile(userDemo() + "/Projekt.ini"), "[Inventur]\r\nModul=INVENTAR\r\n");
    EXPECT_EQ(readFile(userDemo() + "/Inventur/Alt.mdb"), "Auftrag");
    EXPECT_FALSE(fs::exists(userDemo() + ".neu"));
    EXPECT_EQ(readFile(userIni()), "[Quarn]\r\nProjekt=" + userDemo() + "\r\n");
    EXPECT_FALSE(needsProjectChoice(folders));
    EXPECT_EQ(projectNamedIn(folders.own), userDemo());

    // The user's copy is the user's: a second choice of the demo keeps it as it is.
    writeFile(userDemo() + "/Inventur/Neu.mdb", "mein Auftrag");
    fs::remove(userIni());
    ui.choiceAnswers = {1};
    EXPECT_TRUE(chooseFirstProject(folders, ui));
    EXPECT_EQ(readFile(userDemo() + "/Inventur/Neu.mdb"), "mein Auftrag");
    EXPECT_EQ(readFile(userIni()), "[Quarn]\r\nProjekt=" + userDemo() + "\r\n");
}

TEST_F(FirstStartTest, ChosenFolderIsNamedAndAnEmptyOneRefused)
{
    const std::string empty = dir.file("Leer");
    const std::string project = dir.file("Projekt");
    fs::create_directories(empty);
    fs::create_directories(project);
    writeFile(project + "/Projekt.ini", "");
    // The folder dialog cancelled, then an empty folder, then the project.
    ui.choiceAnswers = {0, 0, 0};
    ui.folderChoices = {std::nullopt, empty, project};
    EXPECT_TRUE(chooseFirstProject(folders, ui));
    EXPECT_EQ(ui.choiceQuestions.size(), 3u);
    EXPECT_EQ(ui.folderTitles, (std::vector<std::string>{"Projektordner wählen", "Projektordner wählen",
                                                         "Projektordner wählen"}));
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "Der Ordner '" + empty +
                                       "' enthält keine Datei. Ein Projekt von Quarn enthält mindestens seine "
                                       "\"Projekt.ini\" oder seine Datenbanken.");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(readFile(userIni()), "[Quarn]\r\nProjekt=" + project + "\r\n");
    EXPECT_FALSE(fs::exists(userDemo()));
}

TEST_F(FirstStartTest, FolderDialogCancelledThenQuestionCancelled)
{
    ui.choiceAnswers = {0, std::nullopt};
    EXPECT_FALSE(chooseFirstProject(folders, ui));
    EXPECT_EQ(ui.choiceQuestions.size(), 2u);
    EXPECT_FALSE(fs::exists(userIni()));
}

TEST_F(FirstStartTest, WithoutADemoOnlyTheFolderIsOffered)
{
    fs::remove_all(folders.installation + "/Demo");
    ui.choiceAnswers = {std::nullopt};
    EXPECT_FALSE(chooseFirstProject(folders, ui));
    expectQuestion(0, false);
}

TEST_F(FirstStartTest, DemoThatCantBeCopiedIsToldAndAskedAgain)
{
    // A file where the user's program folder should be: nothing can be copied into it.
    folders.own = dir.file("KeinOrdner");
    writeFile(folders.own, "");
    ui.choiceAnswers = {1, std::nullopt};
    EXPECT_FALSE(chooseFirstProject(folders, ui));
    ASSERT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(ui.messages[0].text, "Das Demoprojekt konnte nicht nach '" + folders.own + "/Demo' kopiert werden.");
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_EQ(ui.choiceQuestions.size(), 2u);
}

} // namespace
} // namespace qi
