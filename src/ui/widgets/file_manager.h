#pragma once
// Shows an item in the desktop's file manager without waiting for it: the FileManager1 interface
// over the session bus selects the item in its folder; where no file manager answers there, the
// folder itself is opened with the desktop's default application.

class QString;

namespace FileManager {

void show(const QString& path);

}  // namespace FileManager
