#pragma once
// Writing to the terminal. Paths go out as the bytes they have on disk, as other tools print them,
// except control characters: a name holding a newline or an escape sequence must not forge lines
// or drive the terminal, so `line` and `error` show them as \n, \r or \xNN. `raw` writes as is
// (JSON, which escapes its own, and the progress line's own sequences).

#include <QByteArray>
#include <QString>

namespace Out {

QString escape(const QString& text);
void line(const QString& text = {});
void raw(const QByteArray& bytes);
// "quarle: " + text on standard error.
void error(const QString& text);
bool isTerminal();

}  // namespace Out
