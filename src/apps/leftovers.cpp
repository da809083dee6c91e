#include "apps/leftovers.h"

#include <QHash>
#include <algorithm>

#include "core/paths.h"

namespace {

// Characters as a person counts them (code points), not UTF-16 units.
qsizetype characters(const QString& s) {
    qsizetype n = 0;
    for (qsizetype i = 0; i < s.size(); ++i)
        if (!(s[i].isHighSurrogate() && i + 1 < s.size() && s[i + 1].isLowSurrogate())) ++n;
    return n;
}

// True when `s` begins with `prefix` followed by one of `separators`.
bool beginsWithThen(const QString& s, const QString& prefix, QLatin1StringView separators) {
    return s.size() > prefix.size() && s.startsWith(prefix) && separators.contains(s[prefix.size()]);
}

// An entry name with what the rules need of it, computed once for all apps.
struct PreparedEntry {
    const QString& name;
    const QString& place;
    QString lowerStem;
    QStringList words;
    bool ownFolder;  // in flatpakPlace
    bool desktop;    // in one of desktopPlaces
};

PreparedEntry prepareEntry(const QString& name, const QString& place) {
    const QString s = Leftovers::stem(name);
    return {name, place, s.toLower(), Leftovers::words(s), place == Leftovers::flatpakPlace,
            Leftovers::desktopPlaces.contains(place)};
}

Leftovers::PreparedName prepareName(const QString& name, const QString& wholeWhy) {
    Leftovers::PreparedName p{name, wholeWhy, Leftovers::words(name), 0};
    p.letters = characters(p.words.join(QString()));
    return p;
}

Leftovers::PreparedApp prepareApp(const Leftovers::AppIdentity& app, bool vendorIsShared) {
    Leftovers::PreparedApp p;
    p.app = app;
    p.bundleID = app.bundleID.toLower();
    if (const auto v = Leftovers::vendor(app.bundleID)) {
        const QString lower = v->toLower();
        if (!vendorIsShared && !Leftovers::broadVendors.contains(lower)) p.vendor = lower;
    }
    if (!p.bundleID.isEmpty()) p.names.append(prepareName(app.name, QStringLiteral("Named after the app")));
    for (const Leftovers::OtherName& other : app.otherNames) {
        Leftovers::PreparedName n = prepareName(other.name, other.why);
        // A window class or program spelled like the app's name adds nothing but a second reason.
        const bool known = std::any_of(p.names.cbegin(), p.names.cend(),
                                       [&](const Leftovers::PreparedName& k) { return k.words == n.words; });
        if (!known) p.names.append(std::move(n));
    }
    return p;
}

// Where the app's name words occur as a run of consecutive words, or -1.
qsizetype findRun(const QStringList& haystack, const QStringList& run) {
    for (qsizetype start = 0; start + run.size() <= haystack.size(); ++start) {
        qsizetype k = 0;
        while (k < run.size() && haystack[start + k] == run[k]) ++k;
        if (k == run.size()) return start;
    }
    return -1;
}

// The name rule for one name: the name's words as a run of the entry's words.
std::optional<Leftovers::Match> matchName(const QStringList& w, const Leftovers::PreparedName& n) {
    const QStringList& a = n.words;
    // Short names such as Go or X would match far too much.
    if (a.isEmpty() || n.letters < 4 || w.size() < a.size() || findRun(w, a) < 0) return std::nullopt;
    const bool whole = w.size() == a.size();
    const QString why = whole ? n.wholeWhy : QStringLiteral("Name contains \"%1\"").arg(n.name);
    const int base = whole ? 300 : 100;
    return Leftovers::Match{Confidence::likely, why, int(base + 2 * n.letters - (w.size() - a.size()))};
}

std::optional<Leftovers::Match> matchPrepared(const PreparedEntry& e, const Leftovers::PreparedApp& p) {
    using Leftovers::Match;
    if (!p.bundleID.isEmpty()) {
        const bool exact = e.lowerStem == p.bundleID;
        if (exact || (!e.ownFolder && beginsWithThen(e.lowerStem, p.bundleID, QLatin1StringView(".-"))))
            return Match{e.desktop ? Confidence::likely : Confidence::sure,
                         QStringLiteral("Bundle ID matches (%1)").arg(p.app.bundleID), int(1000 + characters(p.bundleID))};
        if (e.ownFolder) return std::nullopt;

        if (!p.app.team.isEmpty() && e.place == QLatin1String("Group Containers") &&
            e.name.startsWith(p.app.team + QLatin1Char('.')))
            return Match{Confidence::sure, QStringLiteral("Made by the same signing team (%1)").arg(p.app.team), 900};

        if (!p.vendor.isEmpty() && beginsWithThen(e.lowerStem, p.vendor, QLatin1StringView(".")))
            return Match{Confidence::likely, QStringLiteral("Same developer's ID (%1)").arg(p.vendor),
                         int(500 + characters(p.vendor))};
    }
    if (e.ownFolder) return std::nullopt;

    std::optional<Match> best;
    for (const Leftovers::PreparedName& n : p.names) {
        auto m = matchName(e.words, n);
        if (m && (!best || m->strength > best->strength)) best = std::move(m);
    }
    return best;
}

}  // namespace

namespace Leftovers {

QString stem(const QString& name) {
    for (const QString& suffix : stemSuffixes)
        if (name.endsWith(suffix)) return name.left(name.size() - suffix.size());
    return name;
}

std::optional<QString> vendor(const QString& bundleID) {
    const QStringList pieces = bundleID.split(QLatin1Char('.'), Qt::SkipEmptyParts);
    if (pieces.size() < 3) return std::nullopt;
    return pieces[0] + QLatin1Char('.') + pieces[1];
}

QStringList words(const QString& text) {
    // Names on disk are often decomposed (é as e + accent) while Info.plist names are composed:
    // both become composed, and an accent stays part of its word.
    const QString lower = text.normalized(QString::NormalizationForm_C).toLower();
    QStringList out;
    QString word;
    for (qsizetype i = 0; i < lower.size(); ++i) {
        char32_t c = lower[i].unicode();
        qsizetype width = 1;
        if (lower[i].isHighSurrogate() && i + 1 < lower.size() && lower[i + 1].isLowSurrogate()) {
            c = QChar::surrogateToUcs4(lower[i], lower[i + 1]);
            width = 2;
        }
        const bool inWord = QChar::isLetterOrNumber(c) || QChar::isMark(c);
        if (inWord) {
            word.append(lower.constData() + i, width);
        } else if (!word.isEmpty()) {
            out.append(word);
            word.clear();
        }
        i += width - 1;
    }
    if (!word.isEmpty()) out.append(word);
    return out;
}

bool looksLikeBundleID(const QString& name) {
    const QStringList pieces = stem(name).split(QLatin1Char('.'), Qt::SkipEmptyParts);
    return pieces.size() >= 3 && bundleIDFirstLabels.contains(pieces[0].toLower());
}

QSet<QString> sharedVendors(const QList<AppIdentity>& apps) {
    QHash<QString, int> count;
    for (const AppIdentity& app : apps)
        if (const auto v = vendor(app.bundleID)) ++count[v->toLower()];
    QSet<QString> shared;
    for (auto it = count.cbegin(); it != count.cend(); ++it)
        if (it.value() > 1) shared.insert(it.key());
    return shared;
}

std::optional<Match> match(const QString& name, const QString& place, const AppIdentity& app,
                           bool vendorIsShared) {
    return matchPrepared(prepareEntry(name, place), prepareApp(app, vendorIsShared));
}

QList<PreparedApp> prepare(const QList<AppIdentity>& apps, const QSet<QString>& shared) {
    QList<PreparedApp> out;
    out.reserve(apps.size());
    for (const AppIdentity& app : apps) {
        const auto v = vendor(app.bundleID);
        out.append(prepareApp(app, v && shared.contains(v->toLower())));
    }
    return out;
}

std::optional<std::pair<qsizetype, Match>> owner(const QString& name, const QString& place,
                                                 const QList<PreparedApp>& apps) {
    const PreparedEntry entry = prepareEntry(name, place);
    std::optional<std::pair<qsizetype, Match>> best;
    for (qsizetype i = 0; i < apps.size(); ++i) {
        auto m = matchPrepared(entry, apps[i]);
        if (m && (!best || m->strength > best->second.strength)) best.emplace(i, std::move(*m));
    }
    return best;
}

std::optional<std::pair<AppIdentity, Match>> owner(const QString& name, const QString& place,
                                                   const QList<AppIdentity>& apps,
                                                   const QSet<QString>& sharedVendors) {
    const auto found = owner(name, place, prepare(apps, sharedVendors));
    if (!found) return std::nullopt;
    return std::make_pair(apps[found->first], found->second);
}

QString displayName(const QString& bundlePath) {
    const QString file = Paths::lastComponent(bundlePath);
    const qsizetype dot = file.lastIndexOf(QLatin1Char('.'));
    return dot > 0 ? file.left(dot) : file;
}

}  // namespace Leftovers
