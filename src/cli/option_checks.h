#pragma once
// Whether a verb's command line (the arguments after the verb) parses, without running the verb:
// what the fuzz harness of the options drives.

#include <QStringList>

bool duOptionsParse(const QStringList& args);
bool cleanOptionsParse(const QStringList& args);
bool trashOptionsParse(const QStringList& args);
bool appOptionsParse(const QString& verb, const QStringList& args);
