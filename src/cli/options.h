#pragma once
// The one parser of every verb's options. A verb names the flags it knows and the options that take
// a value ("--title T" or "--title=T"); anything else starting with "--" is an error, "--" ends the
// options, and every other argument is an operand, kept exactly as given (raw bytes included).

#include <QHash>
#include <QSet>
#include <QStringList>
#include <optional>

namespace Options {

struct Known {
    QStringList flags;   // "--json", …
    QStringList valued;  // "--title", …
};

struct Parsed {
    QSet<QString> flags;
    QHash<QString, QString> values;
    QStringList operands;

    bool has(const char* flag) const { return flags.contains(QLatin1String(flag)); }
    std::optional<QString> value(const char* option) const;
};

// The parsed command line, or nothing after an error line naming the verb and its `usage`.
std::optional<Parsed> parse(const QString& verb, const QStringList& args, const Known& known, const QString& usage);

// For the verbs whose only option is --json: whether it was given; nothing after an error line.
std::optional<bool> json(const QString& verb, const QStringList& args);

}  // namespace Options
