#pragma once
// Writing to the terminal. Paths go out as the bytes they have on disk, as other tools print them.

#include <QByteArray>
#include <QString>

namespace Out {

void line(const QString& text = {});
void raw(const QByteArray& bytes);
// "quarle: " + text on standard error.
void error(const QString& text);
bool isTerminal();

}  // namespace Out
