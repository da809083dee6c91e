#pragma once
// "QUARLE_SELFTEST=1": once the window is up, drive it as a person would (every page by its key,
// the keys of the Clean and Apps pages, the tray's actions, the confirmation sheet and the questions opened and cancelled, a
// rescan, both palettes) while a watchdog notes every time the main thread did not answer within
// 50 ms. Nothing is ever confirmed, so nothing is removed. The report goes to standard output
// (as JSON with `--json`) and the application exits with its status.

class MainWindow;
class Model;
class TrayIcon;

namespace SelfCheck {

void run(MainWindow& window, Model& model, TrayIcon& tray, bool asJson);

}  // namespace SelfCheck
