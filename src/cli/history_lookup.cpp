#include "cli/history_lookup.h"

#include <unistd.h>

#include <cstdlib>

#include "cli/output.h"
#include "core/fmt.h"
#include "core/paths.h"
#include "model/model.h"
#include "model/sentences.h"

namespace {

constexpr qsizetype shortestPrefix = 4;

QString idText(const HistoryEntry& e) { return e.id.toString(QUuid::WithoutBraces).toUpper(); }

}  // namespace

namespace HistoryLookup {

std::optional<HistoryEntry> find(const QList<HistoryEntry>& entries, const QString& text) {
    const QString wanted = text.trimmed().toUpper().remove(QLatin1Char('{')).remove(QLatin1Char('}'));
    QList<HistoryEntry> matches;
    for (const HistoryEntry& e : entries) {
        if (idText(e) == wanted) return e;
        if (wanted.size() >= shortestPrefix && idText(e).startsWith(wanted)) matches.append(e);
    }
    if (matches.size() == 1) return matches.first();
    if (matches.size() > 1)
        Out::error(QStringLiteral("%1 entries have an ID starting with %2; give more of it.").arg(matches.size()).arg(text));
    else
        Out::error(QStringLiteral("History has no entry with the ID %1. \"quarle history\" lists them.").arg(text));
    return std::nullopt;
}

std::optional<HistoryEntry> findInTrash(const QList<HistoryEntry>& entries, const QString& text, const QString& doing) {
    std::optional<HistoryEntry> entry = find(entries, text);
    if (entry && entry->state != HistoryEntry::State::inTrash) {
        Out::error(QStringLiteral("Nothing to %1: \"%2\" was %3.").arg(doing, entry->title, stateText(*entry, keepDays())));
        return std::nullopt;
    }
    return entry;
}

int keepDays() { return Model::storedKeepDays(); }

QString keepFor(int days) { return Sentences::keepFor(days); }

QString stateText(const HistoryEntry& entry, int days) {
    switch (entry.state) {
        case HistoryEntry::State::inTrash:
            return days < 1 ? QStringLiteral("in the Trash")
                            : QStringLiteral("in the Trash until ") + Fmt::emptyDay(entry.date, days);
        case HistoryEntry::State::emptied: return QStringLiteral("emptied from the Trash");
        case HistoryEntry::State::restored: return QStringLiteral("put back");
        case HistoryEntry::State::permanent: return QStringLiteral("deleted for good");
    }
    return {};
}

QString absolute(const QString& given) {
    QString path = given;
    if (!given.startsWith(QLatin1Char('/'))) {
        char* cwd = ::getcwd(nullptr, 0);  // as bytes: the current folder's name may not be UTF-8
        const QString here = cwd ? Paths::fromBytes(QByteArray(cwd)) : QStringLiteral("/");
        ::free(cwd);
        path = here + QLatin1Char('/') + given;
    }
    // ".." as the kernel reads it; a path whose ".." leads nowhere stays as given, to be refused.
    return Paths::resolveDotDot(path).value_or(path);
}

}  // namespace HistoryLookup
