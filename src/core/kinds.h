#pragma once
// The small enumerations every record uses, with their raw values (JSON) and titles.

#include <QString>
#include <QStringList>
#include <optional>

enum class Bucket { now, call, keep };
enum class Confidence { sure, likely, yours };
enum class Paint { mint, lavender, sky, peach, pink, butter, aqua, sand, stone };

QString rawValue(Bucket);
QString title(Bucket);
std::optional<Bucket> bucketFromRaw(const QString&);

QString rawValue(Confidence);
QString title(Confidence);
std::optional<Confidence> confidenceFromRaw(const QString&);

QString rawValue(Paint);
std::optional<Paint> paintFromRaw(const QString&);

// How the items of a finding are removed: moved to the Trash, by running a command (its argument
// vector, program first), or never (only shown).
struct Removal {
    enum class Kind { trash, command, none };
    Kind kind = Kind::trash;
    QStringList args;  // only for `command`

    static Removal trash() { return {Kind::trash, {}}; }
    static Removal command(QStringList args) { return {Kind::command, std::move(args)}; }
    static Removal none() { return {Kind::none, {}}; }

    bool isTrash() const { return kind == Kind::trash; }
    bool isCommand() const { return kind == Kind::command; }
    bool isNone() const { return kind == Kind::none; }
    bool operator==(const Removal& o) const {
        return kind == o.kind && (kind != Kind::command || args == o.args);
    }
};
