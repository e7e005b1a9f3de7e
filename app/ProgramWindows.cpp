#include "ProgramWindows.h"

#include "MainWindowOverview.h"
#include "ReportDatabase.h"
#include "ReturnPressesButtons.h"
#include "frmMain.h"
#include "LabelWindows.h"
#include "frmRaumWindow.h"

#include <memory>

namespace qi {

RoomWindowFactory roomWindowFactory()
{
    return [](const RoomSelectionRequest& r) -> QDialog* {
        auto* window = new frmRaumWindow(r.db, r.gebDb, r.settings, r.ui, r.owner);
        window->InitData();
        // Room labels and the walk list of a node of the building tree.
        installRoomLabelEntries(*window, r.gebDb, r.settings, r.ui);
        return window;
    };
}

OrderWindowFactory workWindowFactory()
{
    return [](const OpenOrder& o) -> OrderWindow* {
        auto* window = new frmWorkWindow(o.db, o.settings, o.ui, o.owner);
        window->setRoomWindowFactory(roomWindowFactory());
        // The menu "&Etiketten" after the window's own menus.
        installLabelMenu(*window, o.settings, o.ui);
        return window;
    };
}

void connectWindows(frmMain& main)
{
    main.setOrderWindowFactory(workWindowFactory());
    // The reports of this program read a copy of the report database of its own (see ReportDatabase.h).
    main.settings().privateReportDatabase = std::make_shared<PrivateReportDatabase>();
    // The menu "&Projekt" with the project overview, and the orders' progress in the order list.
    connectProjectOverview(main);
    // Return presses a push button in every window, as Space does.
    installReturnPressesButtons();
}

} // namespace qi
