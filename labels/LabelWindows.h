#pragma once
// The label commands in the windows: the work window's menu "&Etiketten" (room labels,
// object labels of the new inventory, walk list) after its own menus, and in the room
// selection a context menu of the building tree for the node under the mouse (room labels
// and walk list of the rooms below it). The sheets are shown in a preview of their own or
// printed; the walk list opens in the report preview.

#include "LabelCommands.h"
#include "QuarnHost.h"

#include <QDialog>

#include <vector>

class QAction;
class QMenu;
class QPrinter;
class QScrollArea;

namespace qi {

class ReportPageView;
class frmRaumWindow;
class frmWorkWindow;

/// Captions of the entries.
namespace labelmenu {
inline constexpr const char* Caption = "&Etiketten";
inline constexpr const char* Raumetiketten = "&Raumetiketten …";
inline constexpr const char* Objektetiketten = "&Objektetiketten (neues Inventar) …";
inline constexpr const char* Begehungsliste = "&Begehungsliste …";
} // namespace labelmenu

/// Adds the menu "&Etiketten" to the work window after its own menus; answers it.
QMenu* installLabelMenu(frmWorkWindow& window, const Settings& settings, UserInteraction& ui);
/// Adds the context menu with "Raumetiketten …" and "Begehungsliste …" for the node under the
/// mouse (else the selected node) to the room selection's building tree; answers the menu.
QMenu* installRoomLabelEntries(frmRaumWindow& window, QGebDb* geb, const Settings& settings, UserInteraction& ui);


/// The pages of label sheets in a window of their own, one below the other as the report
/// preview shows a page, with a button that prints them.
class LabelPreview : public QDialog {
    Q_OBJECT
public:
    /// `title`: the window's and the printed document's; a failed print is shown through `ui`.
    LabelPreview(LabelSheets sheets, const std::string& title, UserInteraction& ui, QWidget* parent = nullptr);
    ~LabelPreview() override;
    const LabelSheets& sheets() const { return sheets_; }
    /// The view of each page, in order.
    const std::vector<ReportPageView*>& pageViews() const { return pageViews_; }

private:
    LabelSheets sheets_;
    QScrollArea* area_;
    std::vector<ReportPageView*> pageViews_;
};

/// Prints the sheets after the print dialog (the printer's page size set to the layout's, the
/// sheets' title as the document name) as the reports are printed: the pages printed shown in
/// a progress window, a failure shown through `ui`. Answers whether they were printed.
bool printLabelSheets(const LabelSheets& sheets, UserInteraction& ui, QWidget* parent);
/// Prints the sheets on a printer chosen before (the print dialog's), as printLabelSheets does.
bool printSheetsOn(const LabelSheets& sheets, QPrinter& printer, UserInteraction& ui);

/// Plugs the Qt windows into the commands: the dialog, the preview, the printer and the report preview.
void connectLabelCommands(LabelCommands& commands, UserInteraction& ui, QWidget* parent);

} // namespace qi
