#pragma once
// Every test program runs inside a sandbox folder of its own under /tmp: HOME, QUARLE_ROOT, the
// XDG folders and QUARLE_SYSTEM_ROOT (an empty root()/system) point into it, and it is removed when
// the program ends. Nothing a test does can reach the real home folder, preferences or Trash, nor
// read this machine's system folders.

#include <QString>

#include "support/printers.h"

namespace Sandbox {

// Creates the sandbox and points the environment at it; called once by the test main.
void enter();
// Removes the sandbox and everything in it.
void leave();

QString root();
QString home();  // root()/home: HOME and QUARLE_ROOT
// A fresh, empty folder under the sandbox (outside home), unique per call.
QString scratch(const QString& hint = QStringLiteral("t"));
// Empties the home folder, keeping the folder itself.
void clearHome();

}  // namespace Sandbox
