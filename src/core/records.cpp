#include "core/records.h"

#include <algorithm>

#include "core/checked.h"
#include "core/history_entry.h"

qint64 Volume::used() const { return Checked::sub(total, free); }

qint64 Volume::purgeable() const { return std::max<qint64>(Checked::sub(freeImportant, free), 0); }

qint64 InstalledApp::leftoverBytes() const {
    qint64 sum = 0;
    for (const Leftover& l : leftovers)
        if (l.confidence != Confidence::yours) sum = Checked::add(sum, l.bytes);
    return sum;
}

qint64 InstalledApp::total() const { return Checked::add(appBytes, leftoverBytes()); }

qint64 Orphan::bytes() const {
    qint64 sum = 0;
    for (const Leftover& l : leftovers) sum = Checked::add(sum, l.bytes);
    return sum;
}

QString LoginItem::scope() const {
    if (kind == Kind::daemon) return QStringLiteral("All users, as root");
    if (needsAdmin) return QStringLiteral("All users");
    return QStringLiteral("This user");
}

namespace {
constexpr const char* loginKinds[] = {"app", "agent", "daemon", "loginItem"};
constexpr const char* historyStates[] = {"inTrash", "emptied", "restored", "permanent"};
}  // namespace

QString rawValue(LoginItem::Kind k) { return QLatin1String(loginKinds[int(k)]); }

std::optional<LoginItem::Kind> loginKindFromRaw(const QString& s) {
    for (int i = 0; i < 4; ++i)
        if (s == QLatin1String(loginKinds[i])) return LoginItem::Kind(i);
    return std::nullopt;
}

QString rawValue(HistoryEntry::State s) { return QLatin1String(historyStates[int(s)]); }

std::optional<HistoryEntry::State> historyStateFromRaw(const QString& s) {
    for (int i = 0; i < 4; ++i)
        if (s == QLatin1String(historyStates[i])) return HistoryEntry::State(i);
    return std::nullopt;
}
