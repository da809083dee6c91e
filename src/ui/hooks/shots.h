#pragma once
// "QUARLE_SHOT=DIR": once the first scan is shown (or shows its progress), each page in turn in
// both palettes is written to DIR/<page>-<palette>.png; then the application quits.

#include <QString>

class MainWindow;
class Model;

namespace Shots {

void take(MainWindow& window, Model& model, const QString& dir);

}  // namespace Shots
