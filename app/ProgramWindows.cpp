#include "ProgramWindows.h"

#include "frmMain.h"
#include "frmRaumWindow.h"

namespace qi {

RoomWindowFactory roomWindowFactory()
{
    return [](const RoomSelectionRequest& r) -> QDialog* {
        auto* window = new frmRaumWindow(r.db, r.gebDb, r.settings, r.ui, r.owner);
        window->InitData();
        return window;
    };
}

OrderWindowFactory workWindowFactory()
{
    return [](const OpenOrder& o) -> OrderWindow* {
        auto* window = new frmWorkWindow(o.db, o.settings, o.ui, o.owner);
        window->setRoomWindowFactory(roomWindowFactory());
        return window;
    };
}

void connectWindows(frmMain& main) { main.setOrderWindowFactory(workWindowFactory()); }

} // namespace qi
