#pragma once
// The whole program on a generated project: a program folder of its own (template
// folder, report database, help file, "Quarn.ini" naming the demo beside it) with
// the demo installation, the program's windows wired as the program wires them, and
// the user played through the scripted seam. Modal windows are played by steps that
// run once the window waits for its user.

#include "DemoInstallation.h"
#include "ScriptedMain.h"
#include "TestSupport.h"
#include "frmRaumWindow.h"
#include "frmWorkWindow.h"

#include "Database.h"

#include <QApplication>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QTreeWidget;

namespace qi::test {

class ProgramFixture : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Starts the main window on the program folder (start-up, shown).
    void startProgram();
    /// The same with the user met through `interaction` instead of the scripted `ui`.
    void startProgram(UserInteraction& interaction);
    /// Creates an order through the new-order dialog.
    void newOrder(const std::string& name, const std::string& person = "Meier");
    /// Selects the order in the main window's list and opens it with a double click.
    void openOrder(const std::string& name);
    /// The work window of the open order (null when none).
    frmWorkWindow* work();

    /// Runs `step` on the modal window of type W as soon as it waits for its user
    /// (started after this call); the step closes it, or else it is closed afterwards.
    template <class W>
    void whenModal(std::function<void(W&)> step, int attempts = 200)
    {
        QTimer::singleShot(0, [this, step, attempts] {
            if (auto* w = qobject_cast<W*>(QApplication::activeModalWidget())) {
                QPointer<W> window(w);
                step(*w);
                if (window && window->isVisible())
                    window->close();
                return;
            }
            if (attempts > 0)
                whenModal<W>(step, attempts - 1);
            else
                ADD_FAILURE() << "no modal window appeared";
        });
    }

    /// A database file of the project, read through a connection of the test's own.
    std::unique_ptr<Database> read(const std::string& file);
    /// The order's database file.
    std::string orderFile(const std::string& name) const;
    /// One number from a statement on a database file.
    std::int64_t count(const std::string& file, const std::string& sql);
    /// The demo's scanner file.
    std::string scanFile(const std::string& name) const;
    /// The id of the installation's first floor.
    std::int32_t firstFloor() const;
    /// Puts the rooms of the first floor into the open order through the room selection.
    void chooseFirstFloor();
    /// Adds both of the demo's ground-floor scanner files to the open order through "&Hinzufügen".
    void addDemoScanFiles();

    /// Item of a tree or list view whose first column reads `text`, or null.
    static QTreeWidgetItem* itemWithText(QTreeWidget& view, const QString& text);

    TempDir root;
    std::string programDir; ///< without trailing separator
    std::string demoDir;    ///< the project, without trailing separator
    demo::Installation inst;
    ScriptedUserInteraction ui;
    std::unique_ptr<ScriptedMain> main;
};

} // namespace qi::test
