#pragma once
// The keyboard on push buttons: Return (and Enter) on a push button presses it, as Space
// does, in every window of the program, also in main windows, where Qt by itself lets
// Return pass by.

namespace qi {

/// Installs, once per application, the filter that lets Return press the push button it
/// is sent to (an enabled, visible button; held down, the key presses it once).
void installReturnPressesButtons();

} // namespace qi
