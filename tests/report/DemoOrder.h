#pragma once
// An evaluated order of the demo installation: the demo project with its report
// files, the rooms of the two ground-floor scanner files, both files imported
// (conflicts answered as a user would) and every entry of the work window's
// report menus run. A user interaction that renders each report it is asked to
// show keeps what the reports looked like.

#include "CAuftragDb.h"
#include "Report.h"
#include "ReportFixture.h"
#include "ScriptedUserInteraction.h"
#include "Settings.h"
#include "TestSupport.h"
#include "frmWork.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace qi::test {

/// What one report looked like when the window showed it.
struct RenderedReport {
    std::string reportFile; ///< as the window asked for it
    std::string title;      ///< window title
    std::string file;       ///< the definition file read
    std::string text;       ///< Report::text()
    std::string pdf, xlsx, csv; ///< files written
    int pages = 0;
    std::size_t rows = 0;
};

/// Shows every report by rendering it into a folder; a report that can't be opened
/// raises its error to the menu, as the preview window does.
class RenderingUserInteraction : public ScriptedUserInteraction {
public:
    explicit RenderingUserInteraction(std::string outputFolder) : folder_(std::move(outputFolder)) {}
    void showReport(const std::string& reportFile, const std::string& dataFile, const std::string& title) override;
    /// Rendered reports in call order.
    std::vector<RenderedReport> rendered;

private:
    std::string folder_;
};

/// The evaluated demo order (see above).
class DemoOrder {
public:
    /// An order of module `modul` (0 INVENTAR), evaluated with every menu entry run.
    explicit DemoOrder(int modul = 0);
    /// The INVENTAR order shared by the tests of a program, made on first use.
    static DemoOrder& shared();

    /// Runs an entry of "&Berichte" or "&Fehlerlisten (Auftragsbereich)" and returns the
    /// report it showed (null when it showed none).
    const RenderedReport* runReportMenu(int index);
    const RenderedReport* runErrorMenu(int index);
    /// Switches the project's module: the report links follow as when the order is opened anew.
    void switchModule(int modul);

    /// The report shown by each menu entry: "Raumerfassung", "Inventur", "Inventurauswertung",
    /// "Differenz", "Artikel", "Neu", "Verschoben", "Fehlend".
    std::map<std::string, RenderedReport> reports;

    TempDir dir;
    std::string program, project, dbFile, reportDb;
    Settings settings;
    std::unique_ptr<RenderingUserInteraction> ui;
    std::unique_ptr<CAuftragDb> db;
    std::unique_ptr<frmWork> work;
};

/// The project folder's path in a report's text replaced by "<Projekt>".
std::string withoutProjectFolder(std::string text, const std::string& project);

} // namespace qi::test
