#pragma once
// The program's windows put together: the main window shows an opened order in
// the work window, and the work window opens the room selection of its order.
// The program and the tests that walk through the windows use the same wiring.

#include "OrderWindow.h"
#include "frmWorkWindow.h"

namespace qi {

class frmMain;

/// Makes the room selection window of an order and has it read the order's rooms.
RoomWindowFactory roomWindowFactory();
/// Makes the work window of an opened order, with the room selection plugged in.
OrderWindowFactory workWindowFactory();
/// Plugs the work window into the main window, gives the program its private copy of the
/// report database, which its reports read, adds the project overview (MainWindowOverview.h) and
/// lets Return press push buttons in every window (ReturnPressesButtons.h).
void connectWindows(frmMain& main);

} // namespace qi
