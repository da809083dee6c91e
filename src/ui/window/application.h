#pragma once
// The application start: whether Quarle opens its window, and the window's whole run.

class QIcon;

namespace Ui {

// A window opens when a display is there: WAYLAND_DISPLAY or DISPLAY set, or QT_QPA_PLATFORM naming
// a platform that shows something. "QUARLE_SHOT" and "QUARLE_SELFTEST" open it on any platform,
// offscreen included.
bool hasDisplay();
// Quarle's icon, for the window and the tray: the icon theme's, else the one built in.
QIcon icon();
// Runs the window until it closes; the exit status of the process.
int run(int& argc, char** argv);

}  // namespace Ui
